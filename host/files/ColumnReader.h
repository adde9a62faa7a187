#ifndef FENN_HOST_FILES_COLUMNREADER_H
#define FENN_HOST_FILES_COLUMNREADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/CsvReader.h"
#include "host/files/ReadSettings.h"

namespace krige
{

/// Reads chosen columns of a CSV file with a header row as numbers, a block of rows at a time, and others as text. The
/// columns may stand in any order, and others beside them are ignored, whatever they hold.
///
/// Errors are InputError with file, line and column: an unknown name, a chosen name that the header has twice, a row
/// that is not as long as the header, and, unless missing values are skipped, a missing value or a text that is no
/// number. A number beyond the doubles is an error all the same: it is there.
class ColumnReader
{
public:
    /// Opens the file and finds the columns.
    ColumnReader(const std::string& path, const std::vector<std::string>& names_, const ReadSettings& settings_ = {},
                 const std::vector<std::string>& textNames = {});

    /// Replaces columns, one per name in the order of the names, by the values of up to maxRows rows; returns the
    /// number of rows, 0 at the end of the file. What is missing and to be skipped is NaN; nothing else is.
    std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxRows);

    /// Passes over up to maxRows rows, whatever they hold; returns their number.
    std::uint64_t skip(std::uint64_t maxRows);

    /// Of the last block: the line on which a row begins, and its text columns in the order of their names, as the end
    /// of a line of CSV: each with a comma before it, in quotes where it needs them.
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
    std::size_t findColumn(const std::string& name) const;
    void checkRowLength() const;
    double parseField(std::size_t column) const;

    CsvReader reader;
    ReadSettings settings;
    std::vector<std::string> names;
    std::vector<std::string> header;
    std::vector<std::size_t> fieldOfColumn; // per name
    std::vector<std::size_t> fieldOfText;   // per text name
    CsvRecord record;
    std::vector<std::size_t> lines; // per row of the last block
    std::string texts;
    std::vector<std::size_t> textEnds;
};

} // namespace krige

#endif
