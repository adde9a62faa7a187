#ifndef FENN_HOST_FILES_CSVFORMAT_H
#define FENN_HOST_FILES_CSVFORMAT_H

#include <string>

namespace krige
{

/// How a file of fields is written.
struct CsvFormat
{
    static constexpr char blankRuns = ' ';

    /// The character between fields, or blankRuns: any run of spaces and tabs, which at the ends of a line counts for
    /// nothing. NUL chooses comma, semicolon or tab: the one that occurs most often in the first line outside quotes,
    /// and in case of a tie the first in this list.
    char delimiter = '\0';

    /// Numbers have a comma before their decimals, or a point. With a comma, NUL above chooses the comma only for a
    /// first line without semicolons and tabs: it may hold numbers.
    bool hasDecimalComma = false;

    /// Lines that begin with this, perhaps behind spaces, are passed over; empty: there are none.
    std::string comment{};
};

/// "comma", "blanks", "'|'".
std::string nameOfDelimiter(char delimiter);

} // namespace krige

#endif
