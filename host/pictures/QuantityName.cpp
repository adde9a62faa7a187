#include "host/pictures/QuantityName.h"

#include <algorithm>
#include <cctype>

#include "host/text/NumberText.h"

namespace krige
{

std::string QuantityName::text() const
{
    return unit.empty() ? name : name + " (" + unit + ")";
}

QuantityName nameQuantity(const std::string& columnName, const std::string& unit)
{
    QuantityName quantity{columnName, unit};
    const std::string trimmed(trimBlanks(columnName));
    if (trimmed.size() < 3 || (trimmed.back() != ']' && trimmed.back() != ')'))
        return quantity;
    const std::size_t open = trimmed.rfind(trimmed.back() == ']' ? '[' : '(');
    if (open == std::string::npos)
        return quantity;
    const std::string name(trimBlanks(trimmed.substr(0, open)));
    const std::string inBrackets(trimBlanks(trimmed.substr(open + 1, trimmed.size() - open - 2)));
    if (name.empty() || inBrackets.empty())
        return quantity;
    return {name, unit.empty() ? inBrackets : unit};
}

std::string squareOf(const std::string& unit)
{
    const auto isLetter = [](unsigned char c)
    {
        return std::isalpha(c) != 0 || c >= 0x80;
    };
    if (unit.empty())
        return {};
    const bool isOneWord = std::all_of(unit.begin(), unit.end(), isLetter);
    return (isOneWord ? unit : "(" + unit + ")") + "\xc2\xb2";
}

} // namespace krige
