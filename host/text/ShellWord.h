#ifndef FENN_HOST_TEXT_SHELLWORD_H
#define FENN_HOST_TEXT_SHELLWORD_H

#include <string>

namespace krige
{

/// A text as one word of a shell's command, in quotes where needed, for a person to copy. Control characters become
/// '?': no file may drive the terminal.
std::string quoteForShell(const std::string& word);

/// Text of a file for a terminal: control characters become '?'.
std::string withoutControls(std::string text);

} // namespace krige

#endif
