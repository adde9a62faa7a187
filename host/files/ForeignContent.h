#ifndef FENN_HOST_FILES_FOREIGNCONTENT_H
#define FENN_HOST_FILES_FOREIGNCONTENT_H

#include <string>
#include <string_view>

namespace krige
{

/// What a file holds that is no table of text, by its first bytes, and what to do about it: "holds a PDF document, not
/// a table in CSV". Empty where nothing of the kind is known.
std::string describeForeignContent(std::string_view head);

} // namespace krige

#endif
