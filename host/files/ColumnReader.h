#ifndef FENN_HOST_FILES_COLUMNREADER_H
#define FENN_HOST_FILES_COLUMNREADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/CsvReader.h"
#include "host/files/HeaderRow.h"
#include "host/files/ReadSettings.h"

namespace krige
{

/// Reads some columns of a CSV file as numbers and others as text, a block of rows at a time. The header row names
/// them, or they have numbers from 1. Their order does not matter, and columns that were not asked for are ignored.
///
/// Errors are InputError with file, line and column: an unknown name, a chosen name that the header has twice, a row
/// that is not as long as the header, and a missing value or a text that is no number, unless it is a mark for a
/// missing value or such cells are skipped. A number outside the range of double is always an error: it is not missing.
class ColumnReader
{
public:
    /// Opens the file and finds the columns.
    ColumnReader(const std::string& path, const std::vector<std::string>& names_, const ReadSettings& settings_ = {},
                 const std::vector<std::string>& textNames = {});

    /// Replaces columns, one per name in the order of the names, by the values of up to maxRows rows; returns the
    /// number of rows, 0 at the end of the file. A value is NaN only where it is missing and that is no error.
    std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxRows);

    /// Skips up to maxRows rows without a look at their fields; returns their number.
    std::uint64_t skip(std::uint64_t maxRows);

    /// For a row of the last block: the line of the file on which it begins, and its text columns as the rest of a CSV
    /// line, in UTF-8, a comma before each, in quotes where needed.
    std::size_t getLine(std::size_t row) const
    {
        return lines[row];
    }
    std::string_view getTexts(std::size_t row) const
    {
        const std::size_t begin = row == 0 ? 0 : textEnds[row - 1];
        return std::string_view(texts).substr(begin, textEnds[row] - begin);
    }

    /// For messages.
    const std::string& getPath() const
    {
        return reader.getPath();
    }

private:
    bool readRow();
    void checkRowLength() const;
    double parseField(std::size_t column) const;

    ReadSettings settings;
    CsvReader reader;
    std::vector<std::string> names;
    CsvRecord record;
    HeaderRow header;
    bool isFirstRowAtHand;                  // in record, for it is no header row
    std::vector<std::size_t> fieldOfColumn; // per name
    std::vector<std::size_t> fieldOfText;   // per text name
    std::vector<std::size_t> lines;         // per row of the last block
    std::string texts;
    std::vector<std::size_t> textEnds;
};

} // namespace krige

#endif
