#include "host/text/Utf8.h"

namespace krige
{

namespace
{

/// What Windows-1252 has in 0x80 to 0x9f, as code points; from 0xa0 on they are the bytes.
constexpr char16_t windowsCharacters[32] = {0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021,
                                            0x02c6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008d, 0x017d, 0x008f,
                                            0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
                                            0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

unsigned codePointOf(unsigned char windowsByte)
{
    return windowsByte >= 0x80 && windowsByte < 0xa0 ? windowsCharacters[windowsByte - 0x80] : windowsByte;
}

/// For code points below 0x10000.
void appendUtf8(std::string& out, unsigned codePoint)
{
    if (codePoint < 0x80)
        out += static_cast<char>(codePoint);
    else if (codePoint < 0x800)
    {
        out += static_cast<char>(0xc0 | codePoint >> 6);
        out += static_cast<char>(0x80 | (codePoint & 0x3f));
    }
    else
    {
        out += static_cast<char>(0xe0 | codePoint >> 12);
        out += static_cast<char>(0x80 | (codePoint >> 6 & 0x3f));
        out += static_cast<char>(0x80 | (codePoint & 0x3f));
    }
}

} // namespace

std::size_t utf8CharacterLength(std::string_view text)
{
    if (text.empty())
        return 0;
    const auto byteAt = [&](std::size_t i)
    {
        return static_cast<unsigned char>(text[i]);
    };
    const unsigned char first = byteAt(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xf5 ? 0 : first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : first >= 0xc2 ? 2 : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((byteAt(i) & 0xc0) != 0x80)
            return 0;
    }
    const unsigned char second = byteAt(1);
    const bool isOverlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isBeyondUnicode = first == 0xf4 && second >= 0x90;
    const bool isSurrogate = first == 0xed && second >= 0xa0;
    return isOverlong || isBeyondUnicode || isSurrogate ? 0 : length;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t length = utf8CharacterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string toUtf8(std::string_view text)
{
    if (isUtf8(text))
        return std::string(text);
    std::string converted;
    for (const char c : text)
        appendUtf8(converted, codePointOf(static_cast<unsigned char>(c)));
    return converted;
}

} // namespace krige
