#include "host/text/ShellWord.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace krige
{

std::string withoutControls(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '?');
    return text;
}

std::string quoteForShell(const std::string& word)
{
    const auto isPlain = [](unsigned char c)
    {
        return std::isalnum(c) != 0 || std::string_view("_-.,/:=").find(static_cast<char>(c)) != std::string_view::npos;
    };
    if (!word.empty() && word.front() != '-' && std::all_of(word.begin(), word.end(), isPlain))
        return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return withoutControls(quoted + "'");
}

} // namespace krige
