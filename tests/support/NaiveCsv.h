#ifndef FENN_TESTS_SUPPORT_NAIVECSV_H
#define FENN_TESTS_SUPPORT_NAIVECSV_H

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "host/files/CsvReader.h"
#include "host/text/NumberText.h"

namespace fenn::test
{

/// A whole CSV text at once, character by character: what krige's reader finds in it, record by record.
class NaiveCsv
{
public:
    struct Record
    {
        std::vector<std::string> fields;
        std::size_t line = 0; // physical, on which it begins
    };

    NaiveCsv(std::string text_, const krige::CsvFormat& format_)
        : text(std::move(text_)), format(format_), delimiter(format_.delimiter)
    {
        if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
            text.erase(0, 3);
        if (delimiter == '\0')
            delimiter = toldDelimiter();
        while (position < text.size() && fault.empty())
            readLine();
        if (!fault.empty())
            return;
        if (state == State::quoted)
            fault = place(openRecord.line, openRecord.fields.size() + 1) +
                    "the quoted field is never closed: the file ends within it";
        else if (state != State::recordNotBegun)
            endRecord();
    }

    char getDelimiter() const
    {
        return delimiter;
    }

    std::vector<Record> records;
    std::string
        fault; // what follows the file's name in the message that ends the reading; empty at the end of the file
    std::string otherFault; // what may stand there instead, when one line has two faults

private:
    enum class State
    {
        recordNotBegun,
        fieldNotBegun,
        unquoted,
        quoted,
        afterQuote // a closing quote, perhaps followed by blanks, or the first of two
    };

    static std::string place(std::size_t line_, std::size_t column)
    {
        return ", line " + std::to_string(line_) + ", column " + std::to_string(column) + ": ";
    }

    static bool endsLine(char c)
    {
        return c == '\r' || c == '\n';
    }

    bool splitsAtBlanks() const
    {
        return delimiter == krige::CsvFormat::blankRuns;
    }

    bool isBlank(char c) const
    {
        return (c == ' ' || c == '\t') && c != delimiter;
    }

    bool separates(char c) const
    {
        return c == delimiter || (splitsAtBlanks() && c == '\t');
    }

    bool isComment(std::size_t begin) const
    {
        while (begin < text.size() && (text[begin] == ' ' || (text[begin] == '\t' && splitsAtBlanks())))
            ++begin;
        return !format.comment.empty() && text.compare(begin, format.comment.size(), format.comment) == 0;
    }

    /// Where the first line begins that is no comment and holds something other than spaces.
    std::size_t findFirstLine() const
    {
        std::size_t begin = 0;
        while (begin < text.size())
        {
            const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
            if (!isComment(begin) && text.find_first_not_of(' ', begin) < end)
                break;
            begin = end + 1;
        }
        return std::min(begin, text.size());
    }

    /// Of comma, semicolon and tab the one that the first line has most of outside quotes; a tab beside one of the
    /// others is a blank. Where numbers have a decimal comma, commas count without semicolons and tabs only.
    char toldDelimiter() const
    {
        const std::size_t begin = findFirstLine();
        std::size_t numCommas = 0;
        std::size_t numSemicolons = 0;
        std::size_t numTabs = 0;
        bool inQuotes = false;
        for (std::size_t i = begin; i < text.size() && (inQuotes || !endsLine(text[i])); ++i)
        {
            const auto isCommaOrSemicolon = [this](std::size_t k)
            {
                return k < text.size() && (text[k] == ',' || text[k] == ';');
            };
            if (text[i] == '"')
                inQuotes = !inQuotes;
            else if (!inQuotes && text[i] == '\t')
                numTabs += (i > 0 && isCommaOrSemicolon(i - 1)) || isCommaOrSemicolon(i + 1) ? 0 : 1;
            else if (!inQuotes)
            {
                numCommas += text[i] == ',' ? 1 : 0;
                numSemicolons += text[i] == ';' ? 1 : 0;
            }
        }
        if (format.hasDecimalComma && numSemicolons + numTabs > 0)
            numCommas = 0;
        if (numCommas >= numSemicolons && numCommas >= numTabs)
            return ',';
        return numSemicolons >= numTabs ? ';' : '\t';
    }

    /// Up to and with the next line end, of which "\r\n" is one. What comes before a fault has been read.
    void readLine()
    {
        ++line;
        const std::size_t lineEnd = std::min(text.find_first_of("\r\n", position), text.size());
        if (state == State::recordNotBegun)
            openRecord = {{}, line};
        bool holds = true;
        const std::size_t begin = position;
        if (state == State::recordNotBegun && isComment(begin))
        {
            const bool isPair = text.compare(lineEnd, 2, "\r\n") == 0;
            position = std::min(lineEnd + (isPair ? 2 : 1), text.size());
            return;
        }
        while (holds && position < lineEnd)
            holds = take(text[position++]);
        if (!holds)
            fault =
                place(line, openRecord.fields.size() + 1) +
                "a quote within an unquoted field, or text after a closing quote; a quote within a field is written "
                "twice, and the field in quotes";
        if (text.substr(begin, lineEnd - begin).find('\0') != std::string::npos)
        {
            otherFault = fault; // a line longer than the reader's memory is looked at in pieces
            fault = ", line " + std::to_string(line) +
                    ": a NUL byte: this is not a text file in UTF-8 or an 8-bit encoding";
        }
        if (!fault.empty() || position == text.size())
            return;
        const bool isPair = text.compare(position, 2, "\r\n") == 0;
        endLine(text[position]);
        if (isPair && state == State::quoted)
            field += '\n';
        position += isPair ? 2 : 1;
    }

    /// False when the character must not stand there.
    bool take(char c)
    {
        switch (state)
        {
        case State::recordNotBegun:
        case State::fieldNotBegun:
            if (isBlank(c) || (splitsAtBlanks() && separates(c)))
                return true;
            state = State::unquoted;
            if (c == '"')
                state = State::quoted;
            else if (separates(c))
                endField();
            else
                field += c;
            return true;
        case State::unquoted:
            if (c == '"')
                return false;
            if (separates(c))
                endField();
            else
                field += c;
            return true;
        case State::quoted:
            if (c == '"')
                state = State::afterQuote;
            else
                field += c;
            numBlanksAfterQuote = 0;
            return true;
        case State::afterQuote:
            if (separates(c))
                endField();
            else if (isBlank(c))
                ++numBlanksAfterQuote;
            else if (c == '"' && numBlanksAfterQuote == 0)
            {
                field += '"';
                state = State::quoted;
            }
            else
                return false;
            return true;
        }
        return false;
    }

    void endLine(char c)
    {
        if (state == State::quoted)
            field += c;
        else if (state != State::recordNotBegun)
            endRecord();
    }

    void endField()
    {
        if (state == State::unquoted)
        {
            while (!field.empty() && isBlank(field.back()))
                field.pop_back();
        }
        openRecord.fields.push_back(field);
        field.clear();
        state = State::fieldNotBegun;
    }

    void endRecord()
    {
        if (!splitsAtBlanks() || state != State::fieldNotBegun) // a run at the end of a line separates nothing
            endField();
        records.push_back(openRecord);
        state = State::recordNotBegun;
    }

    std::string text;
    krige::CsvFormat format;
    char delimiter;
    std::size_t position = 0;
    std::size_t line = 0; // of what is being read
    State state = State::recordNotBegun;
    Record openRecord;
    std::string field;
    std::size_t numBlanksAfterQuote = 0;
};

/// Whether text, without its blanks, reads `-`, digits, `.`, digits, exponent, all of them optional but one digit.
inline bool isDecimalNumber(const std::string& text)
{
    std::size_t i = text.compare(0, 1, "-") == 0 ? 1 : 0;
    const auto numDigits = [&]
    {
        const std::size_t begin = i;
        while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])) != 0)
            ++i;
        return i - begin;
    };
    std::size_t digits = numDigits();
    if (i < text.size() && text[i] == '.')
    {
        ++i;
        digits += numDigits();
    }
    if (digits == 0)
        return false;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E'))
    {
        ++i;
        i += i < text.size() && (text[i] == '+' || text[i] == '-') ? 1 : 0;
        if (numDigits() == 0)
            return false;
    }
    return i == text.size();
}

/// An infinity or a NaN in a spelling that C++ reads.
inline bool isNonFiniteWord(std::string text)
{
    if (text.compare(0, 1, "-") == 0)
        text.erase(0, 1);
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (text == "inf" || text == "infinity" || text == "nan")
        return true;
    if (text.compare(0, 4, "nan(") != 0 || text.back() != ')')
        return false;
    return std::all_of(text.begin() + 4, text.end() - 1,
                       [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

/// What krige::parseNumber says of a text, by the C library.
inline krige::NumberStatus naiveNumber(std::string text, double& value, bool hasDecimalComma = false)
{
    if (hasDecimalComma)
    {
        if (text.find('.') != std::string::npos)
            return krige::NumberStatus::Malformed;
        std::replace(text.begin(), text.end(), ',', '.');
    }
    const auto isBlank = [](char c)
    {
        return c == ' ' || c == '\t';
    };
    while (!text.empty() && isBlank(text.front()))
        text.erase(0, 1);
    while (!text.empty() && isBlank(text.back()))
        text.pop_back();
    if (text.empty())
        return krige::NumberStatus::Missing;
    if (text[0] == '+')
    {
        text.erase(0, 1);
        if (text.compare(0, 1, "-") == 0)
            return krige::NumberStatus::Malformed;
    }
    if (isNonFiniteWord(text))
        return krige::NumberStatus::Missing;
    if (!isDecimalNumber(text))
        return krige::NumberStatus::Malformed;
    const double number = std::strtod(text.c_str(), nullptr);
    if (std::isinf(number))
        return krige::NumberStatus::TooLarge;
    const std::size_t mantissaEnd = std::min(text.find_first_of("eE"), text.size());
    if (number == 0.0 && std::any_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(mantissaEnd),
                                     [](char c) { return '1' <= c && c <= '9'; }))
        return krige::NumberStatus::TooSmall;
    value = number;
    return krige::NumberStatus::Ok;
}

} // namespace fenn::test

#endif
