#include "host/text/ReportLog.h"

#include <algorithm>
#include <sstream>

namespace krige
{

ReportLog::Buffer::int_type ReportLog::Buffer::overflow(int_type character)
{
    if (traits_type::eq_int_type(character, traits_type::eof()))
        return traits_type::not_eof(character);
    kept += traits_type::to_char_type(character);
    shown.put(traits_type::to_char_type(character));
    return character;
}

std::streamsize ReportLog::Buffer::xsputn(const char* characters, std::streamsize count)
{
    kept.append(characters, static_cast<std::size_t>(count));
    shown.write(characters, count);
    return count;
}

std::vector<std::string> ReportLog::linesOf(const std::vector<std::string>& words) const
{
    std::vector<std::string> found;
    std::istringstream lines(buffer.getKept());
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t colon = line.find(": ");
        if (colon == std::string::npos || std::find(words.begin(), words.end(), line.substr(0, colon)) == words.end())
            continue;
        std::string text = line.substr(colon + 2);
        if (std::find(found.begin(), found.end(), text) == found.end())
            found.push_back(std::move(text));
    }
    return found;
}

} // namespace krige
