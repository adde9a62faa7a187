#ifndef FENN_HOST_PICTURES_GNUPLOT_H
#define FENN_HOST_PICTURES_GNUPLOT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace krige
{

/// What gnuplot writes to its standard output for a script. path: of the picture, for messages. Throws InputError, with
/// gnuplot's message where it failed.
std::string runGnuplot(const std::string& path, const std::string& script);

/// Throws UsageError for another ending than .png, .svg, .pdf and .gp, InputError where gnuplot is needed and not
/// installed. Meant to be called before the work that the picture shows.
void checkPicturePath(const std::string& path);

/// The text as a gnuplot string: nothing in it is expanded. Control characters and what is not UTF-8 become '?', and
/// a text of more characters is shortened.
std::string quoteForGnuplot(std::string_view text, std::size_t mostCharacters = 100);

} // namespace krige

#endif
