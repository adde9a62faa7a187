#include "surrogatemodel_kriging/SortedPoints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

namespace fenn
{

namespace
{

constexpr unsigned digitBits = 11;
constexpr std::size_t numDigitValues = std::size_t{1} << digitBits;
constexpr std::size_t numDigits = 6; // of 64 bits

// Below this many points a comparison sort takes less than the counting of digits.
constexpr std::size_t minPtsForDigits = 1500;

/// Unsigned keys in the order of the values: the bits of a negative number inverted, those of another with the sign bit
/// set. Both zeros have one key, and all NaN share the greatest.
std::uint64_t keyOf(double value)
{
    if (std::isnan(value))
        return std::numeric_limits<std::uint64_t>::max();
    const double positiveZero = value + 0.0;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &positiveZero, sizeof bits);
    const std::uint64_t signBit = std::uint64_t{1} << 63;
    return (bits & signBit) != 0 ? ~bits : bits | signBit;
}

std::size_t digitOf(std::uint64_t key, std::size_t digit)
{
    return static_cast<std::size_t>(key >> (digit * digitBits)) & (numDigitValues - 1);
}

/// Least significant digit first; each pass keeps the order of equal digits.
void sortByDigits(std::vector<PointWithValue>& points)
{
    std::vector<std::array<std::size_t, numDigitValues>> counts(numDigits);
    for (const PointWithValue& point : points)
    {
        const std::uint64_t key = keyOf(point.value);
        for (std::size_t digit = 0; digit < numDigits; ++digit)
            ++counts[digit][digitOf(key, digit)];
    }
    std::vector<PointWithValue> sorted(points.size());
    for (std::size_t digit = 0; digit < numDigits; ++digit)
    {
        std::array<std::size_t, numDigitValues>& places = counts[digit];
        if (places[digitOf(keyOf(points[0].value), digit)] == points.size())
            continue;
        std::size_t place = 0;
        for (std::size_t& count : places)
            place += std::exchange(count, place);
        for (const PointWithValue& point : points)
            sorted[places[digitOf(keyOf(point.value), digit)]++] = point;
        points.swap(sorted);
    }
}

} // namespace

void sortByValue(std::vector<PointWithValue>& points)
{
    if (points.size() >= minPtsForDigits)
    {
        sortByDigits(points);
        return;
    }
    std::stable_sort(points.begin(), points.end(),
                     [](const PointWithValue& a, const PointWithValue& b)
                     { return a.value < b.value || (std::isnan(b.value) && !std::isnan(a.value)); });
}

} // namespace fenn
