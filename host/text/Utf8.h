#ifndef FENN_HOST_TEXT_UTF8_H
#define FENN_HOST_TEXT_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

namespace krige
{

/// Bytes of the UTF-8 character at the front of text; 0 where none stands there, overlong forms and surrogates
/// included.
std::size_t utf8CharacterLength(std::string_view text);

bool isUtf8(std::string_view text);

/// The text in UTF-8. What is not UTF-8 is taken for Windows-1252, the usual 8-bit encoding of spreadsheet programs in
/// western Europe and America; its five bytes without a character become the control characters of the same number, so
/// that nothing is lost.
std::string toUtf8(std::string_view text);

} // namespace krige

#endif
