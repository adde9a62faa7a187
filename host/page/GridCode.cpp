#include "host/page/GridCode.h"

#include <algorithm>
#include <cmath>

#include <zlib.h>

#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

constexpr double mostSteps = 65533.0; // rounding either end may add one to the 65534 codes that there are
constexpr int mostDigits = 14;        // of base and codes: exact in the doubles of a script, and rightly rounded

/// value / 10^exponent, rounded to a whole number. A power of ten above 10^22 is not exact, nor are so many digits
/// asked for.
double inSteps(double value, int exponent)
{
    if (exponent > 0)
        return std::round(value / std::pow(10.0, exponent));
    if (exponent < -300) // the power itself would overflow
        return std::round(value * 1e300 * std::pow(10.0, -exponent - 300));
    return std::round(value * std::pow(10.0, -exponent));
}

int chooseExponent(double low, double high)
{
    const double greatest = std::max(std::fabs(low), std::fabs(high));
    if (greatest == 0.0)
        return 0;
    const int leastForDigits = static_cast<int>(std::floor(std::log10(greatest))) + 1 - mostDigits;
    const double halfSpan = 0.5 * high - 0.5 * low; // the span may overflow
    if (halfSpan == 0.0)
        return leastForDigits + mostDigits - 6; // six digits of a constant
    const int forSteps = static_cast<int>(std::ceil(std::log10(halfSpan) - std::log10(0.5 * mostSteps)));
    return std::max({forSteps, leastForDigits, -307});
}

std::string deflated(const std::string& bytes)
{
    std::string packed(compressBound(bytes.size()), '\0');
    uLongf size = packed.size();
    const int status = compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                                 reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), Z_DEFAULT_COMPRESSION);
    if (status != Z_OK)
        throw InputError("a map cannot be packed: there is not enough memory");
    packed.resize(size);
    return packed;
}

} // namespace

GridCode encodeGrid(const std::vector<double>& values, std::size_t numColumns)
{
    double low = INFINITY;
    double high = -INFINITY;
    for (const double value : values)
    {
        low = std::isfinite(value) ? std::min(low, value) : low;
        high = std::isfinite(value) ? std::max(high, value) : high;
    }
    GridCode code;
    double base = 0.0;
    if (low <= high)
    {
        code.exponent = chooseExponent(low, high);
        base = inSteps(low, code.exponent);
        code.base = static_cast<std::int64_t>(base);
    }

    const std::size_t count = values.size();
    std::vector<std::uint16_t> codes(count, 0);
    for (std::size_t i = 0; i < count; ++i)
    {
        if (std::isfinite(values[i]))
            codes[i] = static_cast<std::uint16_t>(inSteps(values[i], code.exponent) - base + 1.0);
    }
    std::string bytes(2 * count, '\0');
    const auto codeAt = [&](std::size_t row, std::size_t column) // rows and columns from 1; 0 lies before the first
    {
        return row == 0 || column == 0 ? 0U : unsigned{codes[(row - 1) * numColumns + column - 1]};
    };
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::size_t row = i / numColumns + 1;
        const std::size_t column = i % numColumns + 1;
        const unsigned difference =
            codeAt(row, column) - codeAt(row, column - 1) - codeAt(row - 1, column) + codeAt(row - 1, column - 1);
        bytes[i] = static_cast<char>(difference & 0xffU);
        bytes[count + i] = static_cast<char>((difference >> 8U) & 0xffU);
    }
    code.packed = base64Of(deflated(bytes));
    return code;
}

std::string base64Of(std::string_view bytes)
{
    constexpr const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3)
    {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8U | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        text += letters[group >> 18U];
        text += letters[group >> 12U & 63U];
        text += i + 1 < bytes.size() ? letters[group >> 6U & 63U] : '=';
        text += i + 2 < bytes.size() ? letters[group & 63U] : '=';
    }
    return text;
}

} // namespace krige
