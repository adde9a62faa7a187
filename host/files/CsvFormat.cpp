#include "host/files/CsvFormat.h"

#include "host/text/NumberText.h"

namespace krige
{

std::string nameOfDelimiter(char delimiter)
{
    switch (delimiter)
    {
    case ',':
        return "comma";
    case ';':
        return "semicolon";
    case '\t':
        return "tab";
    case CsvFormat::blankRuns:
        return "blanks";
    case '\0':
        return "comma, semicolon and tab";
    default:
        return quoteForMessage(std::string(1, delimiter));
    }
}

} // namespace krige
