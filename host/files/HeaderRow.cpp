#include "host/files/HeaderRow.h"

#include <algorithm>
#include <cctype>

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Spelling.h"
#include "host/text/Utf8.h"

namespace krige
{

namespace
{

std::string listOfNames(const std::vector<std::string>& names)
{
    constexpr std::size_t mostShown = 12;
    std::string list;
    for (std::size_t i = 0; i < names.size() && i < mostShown; ++i)
        list += (i == 0 ? "" : ", ") + quoteForMessage(names[i]);
    if (names.size() > mostShown)
        list += " and " + std::to_string(names.size() - mostShown) + " more";
    return list;
}

/// What may be wrong with the way in which a file is read whose header row lacks a name.
std::string suggestSettings(const std::vector<std::string>& names, const ReadSettings& settings)
{
    const std::string& first = names.front();
    if (settings.comment.empty() && !first.empty() && (first[0] == '#' || first[0] == '%'))
        return "; if this row is a comment, add --comment '" + first.substr(0, 1) + "'";
    const bool holdsBlanks = first.find_first_of(" \t") != std::string::npos;
    if (names.size() == 1 && holdsBlanks && settings.delimiter == '\0')
        return "; if blanks separate its columns, add --delimiter space";
    const auto separates = [](unsigned char c)
    {
        return std::ispunct(c) != 0 && c != '_' && c != '.' && c != '-' && c != '[' && c != ']' && c != '(' && c != ')';
    };
    if (names.size() == 1 && std::any_of(first.begin(), first.end(), separates))
        return "; if another character than " + nameOfDelimiter(settings.delimiter) +
               " separates its columns, name it with --delimiter";
    return {};
}

} // namespace

HeaderRow::HeaderRow(CsvReader& reader, CsvRecord& record, const ReadSettings& settings_)
    : path(reader.getPath()), settings(settings_)
{
    if (!reader.read(record))
        throw InputError::atLine(path, 1,
                                 settings.hasHeader
                                     ? "the file is empty; it needs a header row with the names of its columns"
                                     : "the file is empty");
    line = record.getLine();
    for (std::size_t i = 0; i < record.getNumFields(); ++i)
        names.push_back(settings.hasHeader ? toUtf8(record[i]) : std::to_string(i + 1));
}

bool HeaderRow::isOfNumbers() const
{
    const auto isNumber = [this](const std::string& name)
    {
        double value = 0.0;
        return parseNumber(name, value, settings.hasDecimalComma) == NumberStatus::Ok;
    };
    return settings.hasHeader && std::all_of(names.begin(), names.end(), isNumber);
}

std::size_t HeaderRow::findColumn(const std::string& name) const
{
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        throwUnknown(name);
    const auto again = std::find(found + 1, names.end(), name);
    if (again != names.end())
        throw InputError::atColumn(path, line, name,
                                   "the header row has this name twice, as column " +
                                       std::to_string(found - names.begin() + 1) + " and column " +
                                       std::to_string(again - names.begin() + 1) + "; rename one of them");
    return static_cast<std::size_t>(found - names.begin());
}

void HeaderRow::throwUnknown(const std::string& name) const
{
    if (isOfNumbers())
        throwOfNumbers();
    if (!settings.hasHeader)
        throw InputError::atColumn(path, line, name,
                                   "there is no such column; without a header row columns have numbers, here 1 to " +
                                       std::to_string(names.size()));
    const std::string meant = suggestMeant(name, names);
    throw InputError::atColumn(path, line, name,
                               "there is no such column; the header row has " + listOfNames(names) +
                                   (meant.empty() ? suggestSettings(names, settings) : meant));
}

void HeaderRow::throwOfNumbers() const
{
    throw InputError::atLine(path, line,
                             "all cells of the first row are numbers: it is no header row; add --no-header and name "
                             "columns by number, as in --inputs 1,2 --outputs 3");
}

} // namespace krige
