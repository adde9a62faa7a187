#include "host/files/ColumnReader.h"

#include <limits>

#include "host/files/settingsOf.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Utf8.h"

namespace krige
{

ColumnReader::ColumnReader(const std::string& path, const std::vector<std::string>& names_,
                           const ReadSettings& settings_, const std::vector<std::string>& textNames)
    : settings(settingsOf(path, settings_)),
      reader(path, settings),
      names(names_),
      header(reader, record, settings),
      isFirstRowAtHand(!settings.hasHeader)
{
    for (const std::string& name : names)
        fieldOfColumn.push_back(header.findColumn(name));
    for (const std::string& name : textNames)
        fieldOfText.push_back(header.findColumn(name));
}

bool ColumnReader::readRow()
{
    if (!isFirstRowAtHand)
        return reader.read(record);
    isFirstRowAtHand = false;
    return true;
}

std::size_t ColumnReader::read(std::vector<std::vector<double>>& columns, std::size_t maxRows)
{
    columns.resize(names.size());
    for (std::vector<double>& column : columns)
        column.clear();
    lines.clear();
    texts.clear();
    textEnds.clear();

    while (lines.size() < maxRows && readRow())
    {
        checkRowLength();
        for (std::size_t i = 0; i < names.size(); ++i)
            columns[i].push_back(parseField(i));
        lines.push_back(record.getLine());
        for (const std::size_t field : fieldOfText)
        {
            texts += ',';
            appendCsvField(texts, toUtf8(record[field]));
        }
        textEnds.push_back(texts.size());
    }
    return lines.size();
}

std::uint64_t ColumnReader::skip(std::uint64_t maxRows)
{
    std::uint64_t numRows = 0;
    while (numRows < maxRows && readRow())
        ++numRows;
    return numRows;
}

/// A longer row is as wrong as a shorter one: an unquoted comma has shifted its columns.
void ColumnReader::checkRowLength() const
{
    const std::size_t numFields = record.getNumFields();
    const std::size_t numColumns = header.getNames().size();
    const std::string firstRow = settings.hasHeader ? "the header row" : "the first row";
    if (numFields < numColumns)
        throw InputError::atColumn(getPath(), record.getLine(), header.getNames()[numFields],
                                   "the row ends before this column: it has " + countOf(numFields, "field") + ", " +
                                       firstRow + " " + std::to_string(numColumns));
    if (numFields > numColumns)
        throw InputError(reader.getPath() + ", line " + std::to_string(record.getLine()) + ", column " +
                         std::to_string(numColumns + 1) + ": the row is longer than " + firstRow + ": it has " +
                         countOf(numFields, "field") + ", " + firstRow + " " + std::to_string(numColumns) +
                         "; a text with a delimiter belongs in quotes");
}

double ColumnReader::parseField(std::size_t column) const
{
    const std::string_view text = record[fieldOfColumn[column]];
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value, settings.hasDecimalComma);
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
    else if (status == NumberStatus::Malformed &&
             parseNumber(text, value, !settings.hasDecimalComma) == NumberStatus::Ok)
        fault += settings.hasDecimalComma ? " with a decimal comma (--decimal ,)"
                                          : "; if it has a decimal comma, add --decimal ,";
    else if (status == NumberStatus::Malformed)
        fault += settings.missing.isEmpty() ? "; if it stands for no value, name it with --missing"
                                            : ", nor one of --missing; if it stands for no value, add it there";
    throw InputError::atColumn(getPath(), record.getLine(), names[column], fault);
}

} // namespace krige
