#ifndef FENN_HOST_FILES_CSVREADER_H
#define FENN_HOST_FILES_CSVREADER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/CsvFormat.h"
#include "host/files/InputFile.h"

namespace krige
{

/// One record: its fields and the line of the file on which it begins, counted from 1; line ends within quotes count
/// too.
///
/// The fields are valid until the reader reads again.
class CsvRecord
{
public:
    CsvRecord() = default;
    CsvRecord(const CsvRecord& other) = delete;
    CsvRecord& operator=(const CsvRecord& other) = delete;

    std::size_t getNumFields() const
    {
        return fields.size();
    }

    std::string_view operator[](std::size_t field) const
    {
        const char* const base = outside ? outside : text.data();
        return {base + fields[field].begin, fields[field].end - fields[field].begin};
    }

    std::size_t getLine() const
    {
        return line;
    }

    void clear()
    {
        outside = nullptr;
        text.clear();
        fields.clear();
    }

    /// Adds a copy of a field.
    void addField(const char* characters, std::size_t count)
    {
        fields.push_back({text.size(), text.size() + count});
        text.append(characters, count);
    }

private:
    friend class CsvReader;

    struct Extent
    {
        std::size_t begin;
        std::size_t end;
    };

    const char* outside = nullptr; // where the fields lie; null: in text
    std::string text;
    std::vector<Extent> fields;
    std::size_t line = 0;
};

/// Reads a CSV file record by record: quoted fields with embedded delimiters, quotes and line ends, line ends of every
/// kind, a byte-order mark. Blank lines are passed over; blanks around an unquoted field do not belong to it.
///
/// Lines without quotes are split in place; only lines with quotes are copied.
///
/// Holds one record and one block of the file at a time. Errors are InputError with file and line.
class CsvReader
{
public:
    /// Throws when the file cannot be opened.
    explicit CsvReader(const std::string& path, const CsvFormat& format = {});
    CsvReader(const CsvReader& other) = delete;
    CsvReader& operator=(const CsvReader& other) = delete;
    ~CsvReader();

    /// False at the end of the file. Throws on malformed quotes, NUL bytes and failing reads.
    bool read(CsvRecord& record);

    /// For messages: the path, or "standard input".
    const std::string& getPath() const
    {
        return input.getName();
    }

    /// NUL until the first record has been read, where the choice was left to the reader.
    char getDelimiter() const
    {
        return delimiter;
    }

private:
    struct Parser;

    bool fillBlock();
    bool passOverFirstLine();
    bool passOverComment();
    bool isAtComment();
    std::size_t findLineEnd() const;
    void chooseDelimiter();
    template <bool splitsAtBlanks>
    bool splitPlainLine(CsvRecord& record);
    void endLineAt(std::size_t end);
    void feedLine(CsvRecord& record);
    void finish(CsvRecord& record);
    [[noreturn]] void throwMalformed(const CsvRecord& record, bool atEnd) const;

    InputFile input;
    char delimiter;
    bool hasDecimalComma;
    std::string comment;
    std::unique_ptr<Parser> parser;
    std::vector<char> block;
    std::size_t blockSize = 0; // bytes of block that hold data
    std::size_t position = 0;  // first byte of block that has not been parsed
    std::size_t line = 1;      // of that byte
    bool afterCarriageReturn = false;
    bool inComment = false;        // the position is within one that began in an earlier block
    bool isDelimiterKnown = false; // to the parser too
    bool atStart = true;
    bool inputEnded = false;
    bool finished = false;
};

/// Splits one record, such as the value of an option: `x,"a,b"` gives x and a,b. Throws UsageError that begins with
/// what.
std::vector<std::string> splitCsvText(const std::string& text, const std::string& what);

/// Appends a field, in quotes where it could not be read back without them.
void appendCsvField(std::string& out, std::string_view field);

} // namespace krige

#endif
