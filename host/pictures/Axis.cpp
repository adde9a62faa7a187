#include "host/pictures/Axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr double widthOfCharacter = 10.0;
constexpr double gapAcross = 14.0; // between labels side by side
constexpr double pitchUp = 34.0;   // of labels over each other: closer ones look crowded
constexpr double pitchAcross = 50.0;
constexpr std::size_t longLabel = 7; // characters
constexpr std::size_t leastSaved = 3;
constexpr std::size_t fewTicks = 3;

/// mantissa times a power of ten.
struct Step
{
    int mantissa = 1;
    int exponent = 0;

    double getValue() const
    {
        return mantissa * std::pow(10.0, exponent);
    }
};

/// Decimal places for multiples of a power of ten, or significant digits for numbers that are long that way.
std::string formatTick(double value, double largest, int exponent)
{
    constexpr double largestPlain = 1e7;
    constexpr int mostDecimals = 5;
    if (value == 0.0)
        return "0";
    char text[64];
    if (largest < largestPlain && exponent >= -mostDecimals)
    {
        std::snprintf(text, sizeof text, "%.*f", std::max(0, -exponent), value);
        return text;
    }
    const int digits = static_cast<int>(std::floor(std::log10(std::fabs(value)))) - exponent + 1;
    std::snprintf(text, sizeof text, "%.*g", std::clamp(digits, 1, 17), value);
    std::string shorter = text; // 1e+06 is 1e6
    const std::size_t e = shorter.find('e');
    if (e != std::string::npos)
    {
        const bool isNegative = shorter[e + 1] == '-';
        const std::size_t digit = shorter.find_first_not_of("+-0", e + 1);
        shorter = shorter.substr(0, e + 1) + (isNegative ? "-" : "") + shorter.substr(digit);
    }
    return shorter;
}

std::size_t longestOf(const std::vector<Tick>& ticks)
{
    std::size_t longest = 0;
    for (const Tick& tick : ticks)
        longest = std::max(longest, tick.label.size());
    return longest;
}

void label(Ticks& ticks, int exponent)
{
    double largest = 0.0;
    for (const Tick& tick : ticks.ticks)
        largest = std::max(largest, std::fabs(tick.at - ticks.offset));
    for (Tick& tick : ticks.ticks)
        tick.label = formatTick(tick.at - ticks.offset, largest, exponent);
}

/// Takes what all labels begin with out of them, where that makes long ones much shorter.
void takeOffset(Ticks& ticks, const Step& step)
{
    constexpr int mostSharedDigits = 15;
    const double first = ticks.ticks.front().at;
    const double last = ticks.ticks.back().at;
    if (longestOf(ticks.ticks) < longLabel || (first > 0.0) != (last > 0.0) || first == 0.0 || last == 0.0)
        return;
    const double least = std::min(std::fabs(first), std::fabs(last));
    const double most = std::max(std::fabs(first), std::fabs(last));
    for (int power = step.exponent + 1; power < step.exponent + mostSharedDigits; ++power)
    {
        const double unit = std::pow(10.0, power);
        const double leading = std::floor(least / unit);
        if (leading != std::floor(most / unit))
            continue;
        if (!(leading >= 1.0))
            return;
        Ticks shorter = ticks;
        shorter.offset = std::copysign(leading * unit, first);
        shorter.offsetText = formatTick(leading * unit, leading * unit, power);
        label(shorter, step.exponent);
        if (longestOf(shorter.ticks) + leastSaved <= longestOf(ticks.ticks))
            ticks = shorter;
        return;
    }
}

Ticks makeTicks(const AxisRange& range, const Step& step)
{
    constexpr double slack = 1e-9; // of a step: an end that is a tick stays one
    constexpr double mostTicks = 1000.0;
    Ticks ticks;
    const double size = step.getValue();
    const double first = std::ceil(range.low / size - slack) + 0.0; // no negative zero
    const double last = std::floor(range.high / size + slack);
    if (last - first > mostTicks)
        return ticks;
    for (int k = 0; first + k <= last; ++k)
    {
        const double i = first + k;
        ticks.ticks.push_back({step.exponent < 0 ? i * step.mantissa / std::pow(10.0, -step.exponent) : i * size, {}});
    }
    if (ticks.ticks.empty())
        return ticks;
    label(ticks, step.exponent);
    takeOffset(ticks, step);
    return ticks;
}

} // namespace

std::string AxisRange::text() const
{
    return "[" + formatNumber(low) + ":" + formatNumber(high) + "]";
}

AxisRange rangeAround(const std::vector<double>& values, double margin)
{
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const double value : values)
    {
        if (!std::isfinite(value))
            continue;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    if (low > high)
        return {0.0, 1.0};
    const double extent = high / 2 - low / 2; // half of it: the whole may overflow
    // Below a few thousand spacings of doubles gnuplot cannot place tics.
    const double least = 1e-9 * std::max(std::fabs(low), std::fabs(high));
    const double added = extent > least ? 2 * margin * extent : std::max(0.05 * std::fabs(low), 1e-6);
    return {low - added, high + added};
}

Ticks chooseTicks(const AxisRange& range, double length, AxisDirection direction)
{
    const double span = range.high - range.low;
    if (!std::isfinite(span) || !(span > 0.0))
        return {{{range.low, formatNumber(range.low)}, {range.high, formatNumber(range.high)}}};
    const auto exponent = static_cast<int>(std::floor(std::log10(span)));
    Ticks sparse; // the finest that fit side by side
    Ticks upright;
    for (int power = exponent - 2; power <= exponent; ++power)
    {
        for (const int mantissa : {1, 2, 5})
        {
            Ticks ticks = makeTicks(range, {mantissa, power});
            if (ticks.ticks.empty())
                continue;
            const double pitch = length * (mantissa * std::pow(10.0, power) / span);
            double widest = 0.0;
            for (const Tick& tick : ticks.ticks)
                widest = std::max(widest, widthOfText(tick.label));
            const bool isAcross = direction == AxisDirection::Across;
            if (sparse.ticks.empty() && pitch >= (isAcross ? std::max(pitchAcross, widest + gapAcross) : pitchUp))
                sparse = ticks;
            if (upright.ticks.empty() && isAcross && pitch >= pitchUp)
                upright = ticks;
        }
    }
    if (direction == AxisDirection::Across && sparse.ticks.size() < fewTicks &&
        upright.ticks.size() > sparse.ticks.size())
    {
        upright.areUpright = true;
        return upright;
    }
    return sparse;
}

double widthOfText(std::string_view text)
{
    const auto isContinuation = [](char c)
    {
        return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
    };
    const auto numContinuations = std::count_if(text.begin(), text.end(), isContinuation);
    return widthOfCharacter * static_cast<double>(text.size() - static_cast<std::size_t>(numContinuations));
}

} // namespace krige
