#include "host/files/ColumnReader.h"

#include <algorithm>
#include <limits>

#include "host/geo/MapFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

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

} // namespace

ColumnReader::ColumnReader(const std::string& path, const std::vector<std::string>& names_,
                           const ReadSettings& settings_, const std::vector<std::string>& textNames)
    : reader(path, isMapFile(path) ? ',' : settings_.delimiter), settings(settings_), names(names_)
{
    if (!reader.read(record))
        throw InputError::atLine(getPath(), 1,
                                 "the file is empty; it needs a header row with the names of its columns");
    for (std::size_t i = 0; i < record.getNumFields(); ++i)
        header.emplace_back(record[i]);
    for (const std::string& name : names)
        fieldOfColumn.push_back(findColumn(name));
    for (const std::string& name : textNames)
        fieldOfText.push_back(findColumn(name));
}

std::size_t ColumnReader::findColumn(const std::string& name) const
{
    const auto found = std::find(header.begin(), header.end(), name);
    if (found == header.end())
        throw InputError::atColumn(getPath(), record.getLine(), name,
                                   "there is no such column; the header row has " + listOfNames(header));
    const auto again = std::find(found + 1, header.end(), name);
    if (again != header.end())
        throw InputError::atColumn(getPath(), record.getLine(), name,
                                   "the header row has this name twice, as column " +
                                       std::to_string(found - header.begin() + 1) + " and column " +
                                       std::to_string(again - header.begin() + 1) + "; rename one of them");
    return static_cast<std::size_t>(found - header.begin());
}

std::size_t ColumnReader::read(std::vector<std::vector<double>>& columns, std::size_t maxRows)
{
    columns.resize(names.size());
    for (std::vector<double>& column : columns)
        column.clear();
    lines.clear();
    texts.clear();
    textEnds.clear();

    while (lines.size() < maxRows && reader.read(record))
    {
        checkRowLength();
        for (std::size_t i = 0; i < names.size(); ++i)
            columns[i].push_back(parseField(i));
        lines.push_back(record.getLine());
        for (const std::size_t field : fieldOfText)
        {
            texts += ',';
            appendCsvField(texts, record[field]);
        }
        textEnds.push_back(texts.size());
    }
    return lines.size();
}

std::uint64_t ColumnReader::skip(std::uint64_t maxRows)
{
    std::uint64_t numRows = 0;
    while (numRows < maxRows && reader.read(record))
        ++numRows;
    return numRows;
}

/// A longer row is as wrong as a shorter one: an unquoted comma has shifted its columns.
void ColumnReader::checkRowLength() const
{
    const std::size_t numFields = record.getNumFields();
    if (numFields < header.size())
        throw InputError::atColumn(getPath(), record.getLine(), header[numFields],
                                   "the row ends before this column: it has " + countOf(numFields, "field") +
                                       ", the header row " + std::to_string(header.size()));
    if (numFields > header.size())
        throw InputError(reader.getPath() + ", line " + std::to_string(record.getLine()) + ", column " +
                         std::to_string(header.size() + 1) + ": the row is longer than the header row: it has " +
                         countOf(numFields, "field") + ", the header row " + std::to_string(header.size()) +
                         "; a text with a delimiter belongs in quotes");
}

double ColumnReader::parseField(std::size_t column) const
{
    const std::string_view text = record[fieldOfColumn[column]];
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (!settings.missing.isEmpty() && settings.missing.contains(text, status, value))
        return std::numeric_limits<double>::quiet_NaN();
    if (status == NumberStatus::Ok)
        return value;
    const bool isSkipped =
        status == NumberStatus::Missing || (status == NumberStatus::Malformed && settings.missing.isEmpty());
    if (settings.skipMissing && isSkipped)
        return std::numeric_limits<double>::quiet_NaN();
    std::string fault = describeNumberFault(text, status);
    if (status == NumberStatus::Missing)
        fault += "; --skip-missing leaves such rows out";
    else if (status == NumberStatus::Malformed)
        fault += settings.missing.isEmpty() ? "; if it stands for no value, name it with --missing"
                                            : ", nor one of --missing; if it stands for no value, add it there";
    throw InputError::atColumn(getPath(), record.getLine(), names[column], fault);
}

} // namespace krige
