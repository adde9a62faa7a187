#include "host/files/CsvReader.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <iterator>
#include <new>

#include <csv.h>

#include "host/files/BlankRuns.h"
#include "host/files/ForeignContent.h"
#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

constexpr std::size_t blockCapacity = std::size_t{1} << 18;
constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

// Strict: a stray or missing quote is an error, not a guess. Every line end is reported, so that a line without one is
// known to end within quotes.
constexpr unsigned char parserOptions = CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL;

/// What the callbacks of the C parser fill in. An exception is kept here: it must not pass through C code.
struct RecordSink
{
    CsvRecord* record = nullptr;
    bool recordEnded = false;
    std::exception_ptr failure;
};

void onField(void* characters, std::size_t count, void* sinkPointer)
{
    auto& sink = *static_cast<RecordSink*>(sinkPointer);
    try
    {
        sink.record->addField(static_cast<const char*>(characters), count);
    }
    catch (...)
    {
        sink.failure = std::current_exception();
    }
}

void onRecordEnd(int /*terminator*/, void* sinkPointer)
{
    static_cast<RecordSink*>(sinkPointer)->recordEnded = true;
}

/// The C parser's state, released with the object.
class CsvParser
{
public:
    CsvParser()
    {
        if (csv_init(&state, parserOptions) != 0)
            throw std::bad_alloc();
        csv_set_blk_size(&state, std::size_t{1} << 16); // growing by its default of 128 bytes crawls on long fields
    }

    CsvParser(const CsvParser& other) = delete;
    CsvParser& operator=(const CsvParser& other) = delete;

    ~CsvParser()
    {
        csv_free(&state);
    }

    void setDelimiter(char delimiter)
    {
        csv_set_delim(&state, static_cast<unsigned char>(delimiter));
    }

    /// False on malformed quotes.
    bool feed(const char* characters, std::size_t count)
    {
        sink.recordEnded = false;
        const bool complete = csv_parse(&state, characters, count, onField, onRecordEnd, &sink) == count;
        return checkState(complete);
    }

    bool finish()
    {
        sink.recordEnded = false;
        return checkState(csv_fini(&state, onField, onRecordEnd, &sink) == 0);
    }

    RecordSink sink;

private:
    bool checkState(bool complete)
    {
        if (sink.failure)
            std::rethrow_exception(sink.failure);
        if (!complete && csv_error(&state) != CSV_EPARSE)
            throw std::bad_alloc();
        return complete;
    }

    csv_parser state;
};

} // namespace

struct CsvReader::Parser : CsvParser
{
    bool recordOpen = false; // a record has begun on an earlier line or in an earlier block
    bool ends[256] = {};     // characters that end a run of plain ones
    BlankRuns blankRuns;     // where these separate fields
    std::string singleBlanks;
};

CsvReader::CsvReader(const std::string& path, const CsvFormat& format)
    : input(path),
      delimiter(format.delimiter),
      hasDecimalComma(format.hasDecimalComma),
      comment(format.comment),
      parser(std::make_unique<Parser>()),
      block(blockCapacity)
{
}

CsvReader::~CsvReader() = default;

bool CsvReader::read(CsvRecord& record)
{
    record.clear();
    parser->sink.record = &record;
    while (!finished)
    {
        const auto splitPlain = [&]
        {
            return delimiter == CsvFormat::blankRuns ? splitPlainLine<true>(record) : splitPlainLine<false>(record);
        };
        if (position == blockSize && !fillBlock())
            finish(record);
        else if (!isDelimiterKnown)
        {
            if (!passOverFirstLine())
                chooseDelimiter();
        }
        else if (!comment.empty() && !parser->recordOpen && passOverComment())
            continue;
        else if (!parser->recordOpen && splitPlain())
        {
            if (record.getNumFields() > 0)
                return true;
            continue;
        }
        else
            feedLine(record);
        if (parser->sink.recordEnded && record.getNumFields() > 0)
            return true;
    }
    return false;
}

/// Moves the unparsed rest to the front of the block and reads more behind it. False when nothing is left to parse.
bool CsvReader::fillBlock()
{
    std::memmove(block.data(), block.data() + position, blockSize - position);
    blockSize -= position;
    position = 0;
    const std::size_t wanted = block.size() - blockSize;
    const std::size_t count = inputEnded ? 0 : input.read(block.data() + blockSize, wanted);
    inputEnded = count < wanted;
    blockSize += count;
    if (atStart)
    {
        const std::string foreign = describeForeignContent({block.data(), blockSize});
        if (!foreign.empty())
            throw InputError(getPath() + ": " + foreign);
        if (blockSize >= 3 && std::memcmp(block.data(), byteOrderMark, 3) == 0)
            position = 3;
    }
    atStart = false;
    return position < blockSize;
}

/// The first line end from the position on, CR or LF; blockSize where the block has none.
std::size_t CsvReader::findLineEnd() const
{
    const auto begin = block.begin() + static_cast<std::ptrdiff_t>(position);
    const auto end = block.begin() + static_cast<std::ptrdiff_t>(blockSize);
    constexpr char lineEnds[] = {'\n', '\r'};
    return static_cast<std::size_t>(std::find_first_of(begin, end, std::begin(lineEnds), std::end(lineEnds)) -
                                    block.begin());
}

/// Before the delimiter is known: passes over a line that cannot tell it, a comment or one of spaces. False at a line
/// that can.
bool CsvReader::passOverFirstLine()
{
    if (!comment.empty() && passOverComment())
        return true;
    const std::size_t end = findLineEnd();
    const auto isSpace = [](char c)
    {
        return c == ' ';
    };
    if (end == blockSize || !std::all_of(block.data() + position, block.data() + end, isSpace))
        return false;
    endLineAt(end + 1);
    return true;
}

/// Passes over a comment, or as much of it as the block holds. False where none begins at the position.
bool CsvReader::passOverComment()
{
    if (!inComment && !isAtComment())
        return false;
    const std::size_t end = findLineEnd();
    inComment = end == blockSize;
    if (!inComment)
    {
        endLineAt(end + 1);
        return true;
    }
    position = end;
    afterCarriageReturn = false;
    return true;
}

bool CsvReader::isAtComment()
{
    for (;;)
    {
        std::size_t begin = position;
        while (begin < blockSize &&
               (block[begin] == ' ' || (block[begin] == '\t' && delimiter == CsvFormat::blankRuns)))
            ++begin;
        const std::size_t available = blockSize - begin;
        if (available >= comment.size())
            return std::memcmp(block.data() + begin, comment.data(), comment.size()) == 0;
        if (inputEnded || position == 0)
            return false;
        fillBlock();
    }
}

void CsvReader::chooseDelimiter()
{
    isDelimiterKnown = true;
    if (delimiter == '\0')
    {
        constexpr std::string_view candidates = ",;\t";
        const auto isSeparator = [](char c)
        {
            return c == ',' || c == ';';
        };
        std::size_t counts[candidates.size()] = {};
        bool quoted = false;
        for (std::size_t i = position; i < blockSize; ++i)
        {
            const char c = block[i];
            if ((c == '\n' || c == '\r') && !quoted)
                break;
            quoted = quoted != (c == '"');
            const std::size_t candidate = candidates.find(c);
            const bool besideAnother =
                (i > position && isSeparator(block[i - 1])) || (i + 1 < blockSize && isSeparator(block[i + 1]));
            if (!quoted && candidate != std::string_view::npos && !(c == '\t' && besideAnother)) // a mere blank
                ++counts[candidate];
        }
        if (hasDecimalComma && counts[1] + counts[2] > 0)
            counts[0] = 0;
        delimiter = candidates[static_cast<std::size_t>(std::max_element(counts, counts + candidates.size()) - counts)];
    }
    parser->setDelimiter(delimiter);
    for (const char c : {delimiter, '\n', '\r', '"', '\0'})
        parser->ends[static_cast<unsigned char>(c)] = true;
    if (delimiter == CsvFormat::blankRuns)
        parser->ends[static_cast<unsigned char>('\t')] = true;
}

/// Splits the line at the position if all of it lies in the block and it has no quotes and no NUL bytes; a blank line
/// gives no fields. Otherwise returns false; nothing has changed then, except that the block may have been moved and
/// filled.
template <bool splitsAtBlanks>
bool CsvReader::splitPlainLine(CsvRecord& record)
{
    if (afterCarriageReturn && block[position] == '\n') // the rest of a line end
    {
        ++position;
        afterCarriageReturn = false;
        return true;
    }
    [[maybe_unused]] const auto isBlank = [this](char c)
    {
        return (c == ' ' || c == '\t') && c != delimiter;
    };
    for (;;)
    {
        const char* const text = block.data();
        const bool* const ends = parser->ends;
        bool cutOff = true;
        std::size_t begin = position;
        for (std::size_t i = position; i < blockSize; ++i)
        {
            while (i < blockSize && !ends[static_cast<unsigned char>(text[i])])
                ++i;
            cutOff = i == blockSize || (text[i] != '"' && text[i] != '\0');
            if (i == blockSize || !cutOff)
                break;
            std::size_t end = i;
            if constexpr (!splitsAtBlanks)
            {
                while (begin < end && isBlank(text[begin]))
                    ++begin;
                while (begin < end && isBlank(text[end - 1]))
                    --end;
            }
            if (!splitsAtBlanks || begin < end)
                record.fields.push_back({begin, end});
            begin = i + 1;
            if (text[i] == delimiter || (splitsAtBlanks && text[i] == '\t'))
                continue;

            const bool blank = splitsAtBlanks
                                   ? record.fields.empty()
                                   : record.fields.size() == 1 && record.fields[0].begin == record.fields[0].end;
            if (blank)
                record.fields.clear();
            record.outside = blank ? nullptr : text; // the record may still become a copied one
            record.line = line;
            endLineAt(i + 1);
            return true;
        }
        record.fields.clear();
        if (!cutOff || position == 0 || inputEnded)
            return false;
        fillBlock();
    }
}

/// Moves the position to end and counts the line. The byte before end is a line end.
void CsvReader::endLineAt(std::size_t end)
{
    const char last = block[end - 1];
    if (last == '\r' || (last == '\n' && !(afterCarriageReturn && end == position + 1)))
        ++line;
    afterCarriageReturn = last == '\r';
    position = end;
}

/// Feeds the parser up to the next line end, CR or LF. A record can then end only where the fed bytes end, so that the
/// line numbers in messages are right.
void CsvReader::feedLine(CsvRecord& record)
{
    const char* const begin = block.data() + position;
    const std::size_t available = blockSize - position;
    const auto* lineFeed = static_cast<const char*>(std::memchr(begin, '\n', available));
    std::size_t count = lineFeed ? static_cast<std::size_t>(lineFeed - begin) + 1 : available;
    if (const auto* carriageReturn = static_cast<const char*>(std::memchr(begin, '\r', count)))
        count = static_cast<std::size_t>(carriageReturn - begin) + 1;

    if (std::memchr(begin, '\0', count))
        throw InputError::atLine(getPath(), line, "a NUL byte: this is not a text file in UTF-8 or an 8-bit encoding");
    if (!parser->recordOpen)
        record.line = line;
    bool isSound = true;
    if (delimiter == CsvFormat::blankRuns)
    {
        parser->singleBlanks.clear();
        parser->blankRuns.append(parser->singleBlanks, {begin, count});
        isSound = parser->feed(parser->singleBlanks.data(), parser->singleBlanks.size());
    }
    else
        isSound = parser->feed(begin, count);
    if (!isSound)
        throwMalformed(record, false);
    parser->recordOpen = !parser->sink.recordEnded;

    endLineAt(position + count);
}

void CsvReader::finish(CsvRecord& record)
{
    finished = true;
    if (!parser->finish())
        throwMalformed(record, true);
}

void CsvReader::throwMalformed(const CsvRecord& record, bool atEnd) const
{
    const std::string column = ", column " + std::to_string(record.getNumFields() + 1) + ": ";
    if (atEnd)
        throw InputError(getPath() + ", line " + std::to_string(record.line) + column +
                         "the quoted field is never closed: the file ends within it");
    throw InputError(getPath() + ", line " + std::to_string(line) + column +
                     "a quote within an unquoted field, or text after a closing quote; a quote within a field is "
                     "written twice, and the field in quotes");
}

std::vector<std::string> splitCsvText(const std::string& text, const std::string& what)
{
    CsvParser parser;
    CsvRecord record;
    parser.sink.record = &record;
    const bool complete = parser.feed(text.data(), text.size()) && !parser.sink.recordEnded && parser.finish();
    if (!complete)
        throw UsageError(what + ": malformed quotes or more than one line");
    std::vector<std::string> fields;
    for (std::size_t i = 0; i < record.getNumFields(); ++i)
        fields.emplace_back(record[i]);
    return fields;
}

void appendCsvField(std::string& out, std::string_view field)
{
    const auto isBlank = [](char c)
    {
        return c == ' ' || c == '\t';
    };
    // At the beginning of a file such marks would not be taken for text.
    const bool needsQuotes = field.empty() || field.find_first_of(",;\t\"\r\n") != std::string_view::npos ||
                             isBlank(field.front()) || isBlank(field.back()) || field.substr(0, 3) == byteOrderMark ||
                             beginsLikePackedData(field);
    if (!needsQuotes)
    {
        out += field;
        return;
    }
    out += '"';
    for (const char c : field)
    {
        if (c == '"')
            out += '"';
        out += c;
    }
    out += '"';
}

} // namespace krige
