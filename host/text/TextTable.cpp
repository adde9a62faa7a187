#include "host/text/TextTable.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace krige
{

namespace
{

/// Characters on the screen: bytes that do not continue one in UTF-8.
std::size_t widthOf(const std::string& text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

} // namespace

void printTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows, const std::string& indent)
{
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size(), 0);
    for (const std::vector<std::string>& row : rows)
    {
        for (std::size_t c = 0; c < row.size(); ++c)
            widths[c] = std::max(widths[c], widthOf(row[c]));
    }
    for (const std::vector<std::string>& row : rows)
    {
        out << indent << row[0] << std::string(row.size() > 1 ? widths[0] - widthOf(row[0]) : 0, ' ');
        for (std::size_t c = 1; c < row.size(); ++c)
            out << "  " << std::string(widths[c] - widthOf(row[c]), ' ') << row[c];
        out << '\n';
    }
}

std::string nameForTable(const std::string& name)
{
    std::string shown = name;
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) <= 0x20 || c == 0x7f; }, '_');
    return shown;
}

std::string formatFigure(double value)
{
    if (std::isnan(value))
        return "nan"; // the sign of a NaN means nothing
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value == 0.0 ? 0.0 : value);
    return text;
}

} // namespace krige
