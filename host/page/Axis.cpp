#include "host/page/Axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace krige
{

namespace
{

constexpr int longestLabel = 7; // digits; more do not fit side by side

/// The smallest of 1, 2 and 5 times a power of ten that is not below the least step.
double roundStep(double leastStep)
{
    const double power = std::pow(10.0, std::floor(std::log10(leastStep)));
    for (const double factor : {1.0, 2.0, 5.0})
    {
        if (factor * power >= leastStep * (1.0 - 1e-9))
            return factor * power;
    }
    return 10.0 * power;
}

std::string fixedText(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value == 0.0 ? 0.0 : value);
    return text;
}

std::string scientificText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value == 0.0 ? 0.0 : value);
    return text;
}

} // namespace

Axis::Axis(double low_, double high_, int mostMarks) : low(low_), high(high_)
{
    // Without a length in doubles that marks can be counted in.
    const double least = 1e-12 * std::max(std::fabs(low), std::fabs(high));
    if (!(0.5 * high - 0.5 * low > least) || high - low < 1e-290)
    {
        const double half = low == 0.0 ? 1.0 : std::max(0.05 * std::fabs(low), 1e-290);
        low = std::max(low - half, -1.7e308);
        high = std::min(high + half, 1.7e308);
    }
    addMarks(mostMarks);
}

double Axis::shareOf(double value) const
{
    return (0.5 * value - 0.5 * low) / (0.5 * high - 0.5 * low); // a span may overflow
}

void Axis::addMarks(int mostMarks)
{
    const double halfSpan = 0.5 * high - 0.5 * low;
    double step = roundStep(std::min(2.0 * (halfSpan / mostMarks), 1e307));
    const double greatest = std::max(std::fabs(low), std::fabs(high));
    const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    const int wholeDigits = std::max(1, static_cast<int>(std::floor(std::log10(greatest))) + 1);
    bool isFixed = decimals + wholeDigits <= longestLabel;
    double base = 0.0;
    const double unit = 100.0 * std::pow(10.0, std::ceil(std::log10(step) - 1e-9));
    if (!isFixed && wholeDigits <= 15 && decimals <= longestLabel && 10.0 * unit <= greatest &&
        (low > 0.0 || high < 0.0))
    {
        isFixed = true;
        base = std::floor(low / unit) * unit;
        offset = fixedText(base, std::max(0, decimals - 2));
    }
    const double first = std::ceil(low / step - 1e-9);
    const double last = std::floor(high / step + 1e-9);
    for (int k = 0; first + k <= last; ++k)
    {
        const double i = first + k;
        const double value = std::clamp(i * step, low, high);
        marks.push_back({value, isFixed ? fixedText(i * step - base, decimals) : scientificText(i * step)});
    }
}

Axis axisOver(const std::vector<double>& values, double margin, int mostMarks)
{
    double low = INFINITY;
    double high = -INFINITY;
    for (const double value : values)
    {
        if (!std::isfinite(value))
            continue;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    if (low > high)
        return {0.0, 1.0, mostMarks};
    const double add = 2.0 * (margin * (0.5 * high - 0.5 * low));
    return {std::max(low - add, -1.7e308), std::min(high + add, 1.7e308), mostMarks};
}

} // namespace krige
