#include "host/text/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "host/text/Utf8.h"

namespace krige
{

namespace
{

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// A control character, of those above 0x7f too: terminals obey them.
bool isControl(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character.front());
    return first < 0x20 || first == 0x7f ||
           (first == 0xc2 && character.size() > 1 && static_cast<unsigned char>(character[1]) < 0xa0);
}

/// Whether the part before an exponent holds a digit other than 0.
bool hasSignificantDigit(std::string_view number)
{
    const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
    return mantissa.find_first_of("123456789") != std::string_view::npos;
}

/// std::from_chars calls both directions out of range; the decimal place of the first digit other than 0 tells them
/// apart. Only for texts that it took for a number.
NumberStatus outOfRangeDirection(std::string_view number)
{
    const std::size_t exponentMark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, exponentMark);
    const auto point = static_cast<long long>(std::min(mantissa.find('.'), mantissa.size()));
    const auto firstDigit = static_cast<long long>(mantissa.find_first_of("123456789"));

    long long exponent = 0;
    std::string_view exponentText = number.substr(std::min(exponentMark + 1, number.size()));
    const bool negative = !exponentText.empty() && exponentText.front() == '-';
    if (negative || (!exponentText.empty() && exponentText.front() == '+'))
        exponentText.remove_prefix(1);
    constexpr long long beyondAnyText = 1000000000000000;
    const char* const end = exponentText.data() + exponentText.size();
    if (std::from_chars(exponentText.data(), end, exponent).ec == std::errc::result_out_of_range)
        exponent = beyondAnyText;
    exponent = std::min(exponent, beyondAnyText);
    return point - firstDigit + (negative ? -exponent : exponent) > 0 ? NumberStatus::TooLarge : NumberStatus::TooSmall;
}

} // namespace

std::string_view trimBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

NumberStatus parseNumber(std::string_view text, double& value)
{
    text = trimBlanks(text);
    if (text.empty())
        return NumberStatus::Missing;
    if (text.front() == '+')
    {
        text.remove_prefix(1);
        if (text.empty() || text.front() == '-' || text.front() == '+')
            return NumberStatus::Malformed;
    }

    double number = 0.0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    if (result.ec == std::errc::invalid_argument || result.ptr != end)
        return NumberStatus::Malformed;
    if (result.ec == std::errc::result_out_of_range)
        return outOfRangeDirection(text);
    if (!std::isfinite(number))
    {
        // Some standard libraries round an overflow to infinity without saying so.
        return std::isinf(number) && hasSignificantDigit(text) ? NumberStatus::TooLarge : NumberStatus::Missing;
    }
    if (number == 0.0 && hasSignificantDigit(text)) // likewise for an underflow
        return NumberStatus::TooSmall;
    value = number;
    return NumberStatus::Ok;
}

NumberStatus parseNumber(std::string_view text, double& value, bool hasDecimalComma)
{
    if (!hasDecimalComma)
        return parseNumber(text, value);
    std::string withPoint(trimBlanks(text));
    if (withPoint.find('.') != std::string::npos)
        return NumberStatus::Malformed;
    std::replace(withPoint.begin(), withPoint.end(), ',', '.');
    return parseNumber(withPoint, value);
}

std::string describeNumberFault(std::string_view text, NumberStatus status)
{
    switch (status)
    {
    case NumberStatus::Missing:
        if (trimBlanks(text).empty())
            return "the value is missing";
        return "the value is missing (" + quoteForMessage(text) + ")";
    case NumberStatus::TooLarge:
        return quoteForMessage(text) + " is too large for a double";
    case NumberStatus::TooSmall:
        return quoteForMessage(text) + " is too small for a double and would become zero";
    case NumberStatus::Malformed:
    case NumberStatus::Ok:
        break;
    }
    return quoteForMessage(text) + " is not a number";
}

void appendNumber(std::string& out, double value)
{
    if (std::isnan(value))
    {
        out += "nan"; // the sign and payload of a NaN mean nothing
        return;
    }
    char digits[32];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, result.ptr);
}

std::string formatNumber(double value)
{
    std::string text;
    appendNumber(text, value);
    return text;
}

std::string quoteForMessage(std::string_view text)
{
    constexpr std::size_t longest = 60;
    const std::string all = toUtf8(text);
    const bool shortened = all.size() > longest;
    const std::size_t mostShown = shortened ? longest - 3 : longest;
    std::string quoted = "'";
    for (std::string_view rest = all; !rest.empty();)
    {
        const std::size_t length = std::max<std::size_t>(utf8CharacterLength(rest), 1);
        if (quoted.size() - 1 + length > mostShown)
            break;
        quoted += isControl(rest.substr(0, length)) ? std::string_view("?") : rest.substr(0, length);
        rest.remove_prefix(length);
    }
    quoted += shortened ? "...'" : "'";
    return quoted;
}

std::string countOf(unsigned long long count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace krige
