#include "host/files/BlankRuns.h"

namespace krige
{

void BlankRuns::append(std::string& out, std::string_view piece)
{
    for (const char c : piece)
    {
        const bool endsLine = !isQuoted && (c == '\n' || c == '\r');
        if (!isQuoted && (c == ' ' || c == '\t'))
        {
            isInRun = true;
            continue;
        }
        if (isInRun && !isAtLineBegin && !endsLine)
            out += ' ';
        isInRun = false;
        isAtLineBegin = endsLine;
        if (c == '"')
            isQuoted = !isQuoted;
        out += c;
    }
}

} // namespace krige
