// krige's reader of CSV files: whatever a file holds, it gives the records that a naive reading of the whole text
// gives, or the message with line and column that ends it, and they read back the same once they are written again.
// Numbers are compared with the C library's. The file may be packed, and long enough for several blocks of the reader.
//
// The first six characters choose how the file is read (see decodeOptions); "000000" reads it as krige does by default.
// The rest is the file.

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include "fuzz/InputBytes.h"
#include "host/files/ColumnReader.h"
#include "host/files/CsvReader.h"
#include "host/files/ForeignContent.h"
#include "host/files/InputFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Utf8.h"
#include "tests/support/Bits.h"
#include "tests/support/NaiveCsv.h"

using fenn::fuzz::check;
using fenn::fuzz::fail;
using fenn::fuzz::InputBytes;
using fenn::test::NaiveCsv;
using fenn::test::naiveNumber;
using fenn::test::sameBits;
using krige::ColumnReader;
using krige::CsvReader;
using krige::CsvRecord;
using krige::InputError;
using krige::NumberStatus;

namespace
{

constexpr std::size_t blockSize = std::size_t{1} << 18; // of the reader
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Options
{
    krige::ReadSettings settings;
    bool isPacked = false;
    bool isPackedInTwo = false;   // one packed file behind the other
    std::size_t padding = 0;      // 0: none; otherwise what is cut off a block of padding
    bool padsWithLines = false;   // otherwise with one long field
    std::size_t paddingPlace = 0; // in the file
    std::size_t maxRows = 1;
    std::size_t firstColumn = 0; // of those asked for
    std::size_t numColumns = 1;
};

Options decodeOptions(InputBytes& input)
{
    Options options;
    constexpr char delimiters[] = {'\0', ',', ';', '\t', '|', ':', krige::CsvFormat::blankRuns, '\0'};
    options.settings.delimiter = delimiters[input.byte() % 8];
    const std::size_t flags = input.byte();
    options.settings.skipMissing = (flags & 1U) != 0;
    options.isPacked = (flags & 2U) != 0;
    options.isPackedInTwo = (flags & 4U) != 0;
    options.settings.comment = (flags & 8U) != 0 ? "#!" : "";
    options.settings.hasDecimalComma = (flags & 64U) != 0;
    options.settings.hasHeader = (flags & 128U) == 0;
    options.maxRows = 1 + input.byte() % 16;
    const bool isPadded = input.byte() == '?'; // rarely: it takes its time
    const std::size_t padding = input.byte() % 64;
    options.padsWithLines = padding >= 32;
    options.paddingPlace = padding % 8;
    if (isPadded)
    {
        options.padding = 1 + padding / 8 % 4;
        // The first line tells the delimiter only as far as it lies in the first block.
        if (options.settings.delimiter == '\0')
            options.settings.delimiter = ',';
    }
    const std::size_t columns = input.byte() % 16;
    options.firstColumn = columns / 4;
    options.numColumns = 1 + columns % 4;
    return options;
}

std::string pack(const std::string& text)
{
    z_stream stream{};
    check(deflateInit2(&stream, 1, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) == Z_OK, "deflateInit2");
    std::string packed(deflateBound(&stream, static_cast<uLong>(text.size())) + 32, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    check(deflate(&stream, Z_FINISH) == Z_STREAM_END, "deflate");
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

/// A file in memory whose content is replaced from input to input.
class MemoryFile
{
public:
    MemoryFile() : descriptor(memfd_create("csv", 0)), path("/proc/self/fd/" + std::to_string(descriptor))
    {
        check(descriptor >= 0, "memfd_create");
    }

    const std::string& write(const std::string& content) const
    {
        const bool isWritten = ftruncate(descriptor, 0) == 0 && pwrite(descriptor, content.data(), content.size(), 0) ==
                                                                    static_cast<ssize_t>(content.size());
        check(isWritten, "writing the file");
        return path;
    }

private:
    int descriptor;
    std::string path;
};

void checkMessage(const InputError& error, const std::string& path, const NaiveCsv& expected)
{
    check(!expected.fault.empty() && (error.what() == path + expected.fault ||
                                      (!expected.otherFault.empty() && error.what() == path + expected.otherFault)),
          std::string("the message is '") + error.what() + "', expected '" + expected.fault + "'");
}

void compareRecords(const std::string& path, const krige::CsvFormat& format, const NaiveCsv& expected)
{
    CsvReader reader(path, format);
    CsvRecord record;
    std::size_t numRecords = 0;
    try
    {
        for (; reader.read(record); ++numRecords)
        {
            check(numRecords < expected.records.size(), "more records than there are");
            const NaiveCsv::Record& other = expected.records[numRecords];
            check(record.getLine() == other.line, "line of a record");
            check(record.getNumFields() == other.fields.size(), "number of fields");
            for (std::size_t i = 0; i < other.fields.size(); ++i)
                check(record[i] == other.fields[i], "field '" + other.fields[i] + "'");
        }
        check(expected.fault.empty(), "no message, expected '" + expected.fault + "'");
        check(reader.getDelimiter() == expected.getDelimiter() || expected.records.empty(), "delimiter");
    }
    catch (const InputError& error)
    {
        checkMessage(error, path, expected);
    }
    check(numRecords == expected.records.size(), "fewer records than there are");
}

void compareWrittenAgain(const MemoryFile& file, const std::vector<NaiveCsv::Record>& records)
{
    std::string text;
    for (const NaiveCsv::Record& record : records)
    {
        for (std::size_t i = 0; i < record.fields.size(); ++i)
        {
            text += i == 0 ? "" : ",";
            krige::appendCsvField(text, record.fields[i]);
        }
        text += '\n';
    }
    if (!krige::describeForeignContent(std::string_view(text).substr(0, blockSize)).empty())
        return; // without the quotes that it stood in
    krige::CsvFormat commas;
    commas.delimiter = ',';
    CsvReader reader(file.write(text), commas);
    CsvRecord record;
    for (const NaiveCsv::Record& other : records)
    {
        check(reader.read(record) && record.getNumFields() == other.fields.size(), "fields of a record written again");
        for (std::size_t i = 0; i < other.fields.size(); ++i)
            check(record[i] == other.fields[i], "field '" + other.fields[i] + "' written again");
    }
    check(!reader.read(record), "more records than were written");
}

void compareNumber(const std::string& text)
{
    double value = -77.25;
    double expected = value;
    const NumberStatus status = krige::parseNumber(text, value);
    check(status == naiveNumber(text, expected) && sameBits(value, expected), "number '" + text + "'");
    krige::describeNumberFault(text, status);
    double again = 0.0;
    check(krige::parseNumber(krige::formatNumber(value), again) == NumberStatus::Ok && sameBits(again, value),
          "number '" + text + "' written again");
}

/// Of its header row, else numbers from 1.
std::vector<std::string> namesOfColumns(const NaiveCsv& csv, const krige::ReadSettings& settings)
{
    std::vector<std::string> names;
    for (const std::string& field : csv.records[0].fields)
        names.push_back(settings.hasHeader ? krige::toUtf8(field) : std::to_string(names.size() + 1));
    return names;
}

/// What a column reader does with the records: the values and lines of rows, then an error that begins so.
struct NaiveColumns
{
    NaiveColumns(const NaiveCsv& csv, const std::vector<std::string>& names, const krige::ReadSettings& settings)
    {
        if (csv.records.empty())
        {
            errorBegin = csv.fault.empty() ? ", line 1: the file is empty" : csv.fault;
            return;
        }
        const NaiveCsv::Record header{namesOfColumns(csv, settings), csv.records[0].line};
        const bool isOfNumbers =
            std::all_of(header.fields.begin(), header.fields.end(),
                        [&](const std::string& field)
                        {
                            double value = 0.0;
                            return naiveNumber(field, value, settings.hasDecimalComma) == NumberStatus::Ok;
                        });
        std::vector<std::size_t> fields;
        for (const std::string& name : names)
        {
            const auto found = std::find(header.fields.begin(), header.fields.end(), name);
            const auto count = std::count(header.fields.begin(), header.fields.end(), name);
            if (count != 1)
            {
                const bool lacksHeader = count == 0 && isOfNumbers && settings.hasHeader;
                errorBegin =
                    ", line " + std::to_string(header.line) + (lacksHeader ? ": all cells of the" : ", column '");
                return;
            }
            fields.push_back(static_cast<std::size_t>(found - header.fields.begin()));
        }
        for (std::size_t r = settings.hasHeader ? 1 : 0; r < csv.records.size(); ++r)
        {
            const NaiveCsv::Record& record = csv.records[r];
            errorBegin = ", line " + std::to_string(record.line) + ", column ";
            if (record.fields.size() != header.fields.size())
                return;
            std::vector<double> row;
            for (const std::size_t field : fields)
            {
                double value = notANumber;
                const NumberStatus status = naiveNumber(record.fields[field], value, settings.hasDecimalComma);
                const bool isMissing = status == NumberStatus::Missing || status == NumberStatus::Malformed;
                if (status != NumberStatus::Ok && !(settings.skipMissing && isMissing))
                    return;
                row.push_back(value);
            }
            rows.push_back(row);
            lines.push_back(record.line);
        }
        errorBegin = csv.fault;
        otherErrorBegin = csv.otherFault;
    }

    std::vector<std::vector<double>> rows;
    std::vector<std::size_t> lines;
    std::string errorBegin; // after the file's name; empty: no error
    std::string otherErrorBegin;
};

std::vector<std::string> chooseNames(const NaiveCsv& csv, const Options& options)
{
    if (csv.records.empty())
        return {"x"};
    std::vector<std::string> header = namesOfColumns(csv, options.settings);
    header.emplace_back("no such column");
    std::vector<std::string> names;
    for (std::size_t i = 0; i < options.numColumns && i < header.size(); ++i)
        names.push_back(header[(options.firstColumn + i) % header.size()]);
    return names;
}

void compareColumns(const std::string& path, const NaiveCsv& csv, const Options& options)
{
    const std::vector<std::string> names = chooseNames(csv, options);
    const NaiveColumns expected(csv, names, options.settings);
    std::size_t numRows = 0;
    try
    {
        ColumnReader reader(path, names, options.settings, {names[0]});
        std::vector<std::vector<double>> columns;
        for (;;)
        {
            const std::size_t count = reader.read(columns, options.maxRows);
            check(count <= options.maxRows && numRows + count <= expected.rows.size(), "more rows than there are");
            for (std::size_t r = 0; r < count; ++r, ++numRows)
            {
                for (std::size_t i = 0; i < names.size(); ++i)
                    check(sameBits(columns[i][r], expected.rows[numRows][i]), "value of column '" + names[i] + "'");
                check(reader.getLine(r) == expected.lines[numRows], "line of a row");
                check(krige::splitCsvText(std::string(reader.getTexts(r)).substr(1), "a text").size() == 1,
                      "text of a row");
            }
            if (count < options.maxRows)
                break;
        }
        check(expected.errorBegin.empty(), "no error where one begins with '" + expected.errorBegin + "'");
        check(numRows == expected.rows.size(), "fewer rows than there are");
    }
    catch (const InputError& error)
    {
        const std::string message = error.what();
        const auto beginsWith = [&](const std::string& begin)
        {
            return !begin.empty() && message.compare(0, path.size() + begin.size(), path + begin) == 0;
        };
        check(beginsWith(expected.errorBegin) || beginsWith(expected.otherErrorBegin),
              "the error is '" + message + "', expected '" + expected.errorBegin + "'");
        check(expected.rows.size() - numRows <= options.maxRows, "an error before its time");
    }
}

/// The text as one record on a command line.
void compareSplitText(const std::string& text)
{
    if (text.find('\0') != std::string::npos || text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        return; // a byte-order mark and NUL are a file's business
    krige::CsvFormat commas;
    commas.delimiter = ',';
    const NaiveCsv expected(text, commas);
    const bool hasLineEnd = text.find_first_of("\r\n") != std::string::npos;
    try
    {
        const std::vector<std::string> fields = krige::splitCsvText(text, "a list");
        check(expected.fault.empty(), "no error, expected '" + expected.fault + "'");
        check(expected.records.empty() ? fields.empty()
                                       : expected.records.size() == 1 && fields == expected.records[0].fields,
              "fields of a text");
    }
    catch (const krige::UsageError&)
    {
        check(!expected.fault.empty() || hasLineEnd, "an error for a sound text");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFile file;

    InputBytes input(data, size);
    const Options options = decodeOptions(input);
    constexpr std::size_t numOptions = 6;
    std::string text(reinterpret_cast<const char*>(data) + std::min(size, numOptions),
                     size - std::min(size, numOptions));
    compareSplitText(text);
    if (options.padding > 0)
    {
        std::string padding(blockSize - options.padding, '7');
        for (std::size_t i = 3; options.padsWithLines && i < padding.size(); i += 10000)
            padding[i] = '\n';
        text.insert(std::min(options.paddingPlace, text.size()), padding);
    }
    const std::size_t packedFirst = options.isPackedInTwo ? text.size() / 2 : 0;
    const std::string& path = file.write(options.isPacked ? (packedFirst > 0 ? pack(text.substr(0, packedFirst)) : "") +
                                                                pack(text.substr(packedFirst))
                                                          : text);
    const bool isForeign = !krige::describeForeignContent(std::string_view(text).substr(0, blockSize)).empty();
    if (isForeign || (!options.isPacked && krige::beginsLikePackedData(text)))
    {
        // Taken for packed, and damaged as good as ever, or for no table: an error, or whatever was unpacked.
        try
        {
            CsvReader reader(path, options.settings);
            for (CsvRecord record; reader.read(record);)
                check(record.getLine() > 0, "line of a record");
        }
        catch (const InputError& error)
        {
            check(std::string(error.what()).compare(0, path.size(), path) == 0, "an error without the file's name");
        }
        return 0;
    }

    const NaiveCsv expected(text, options.settings);
    compareRecords(path, options.settings, expected);
    compareColumns(path, expected, options);
    if (options.padding > 0)
        return 0;
    for (const NaiveCsv::Record& record : expected.records)
    {
        for (const std::string& field : record.fields)
            compareNumber(field);
    }
    compareWrittenAgain(file, expected.records);
    return 0;
}
