#include "analysis/Distribution.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace fenn::analysis
{

double quantileOf(const std::vector<double>& ascending, double fraction)
{
    if (ascending.empty())
        throw std::invalid_argument("a quantile needs a value");
    const double place = fraction * static_cast<double>(ascending.size() - 1);
    const auto below = std::min(static_cast<std::size_t>(place), ascending.size() - 1);
    const std::size_t above = std::min(below + 1, ascending.size() - 1);
    const double share = place - static_cast<double>(below);
    return ascending[below] * (1.0 - share) + ascending[above] * share; // a difference could overflow
}

Distribution describeValues(const std::vector<double>& values)
{
    std::vector<double> ascending = values;
    std::sort(ascending.begin(), ascending.end());
    Distribution distribution;
    distribution.lowerQuartile = quantileOf(ascending, 0.25); // throws for no values
    distribution.median = quantileOf(ascending, 0.5);
    distribution.upperQuartile = quantileOf(ascending, 0.75);
    distribution.least = ascending.front();
    distribution.greatest = ascending.back();

    // Of values below 1, which a power of two makes exactly: sums of large ones may overflow.
    int exponent = 0;
    static_cast<void>(std::frexp(std::max(std::fabs(distribution.least), std::fabs(distribution.greatest)), &exponent));
    const auto numValues = static_cast<double>(values.size());
    double sum = 0.0;
    for (const double value : values)
        sum += std::ldexp(value, -exponent);
    const double mean = sum / numValues;
    double sumOfSquares = 0.0;
    for (const double value : values)
        sumOfSquares += (std::ldexp(value, -exponent) - mean) * (std::ldexp(value, -exponent) - mean);
    distribution.mean = std::ldexp(mean, exponent);
    if (values.size() > 1)
        distribution.standardDeviation = std::ldexp(std::sqrt(sumOfSquares / (numValues - 1.0)), exponent);
    return distribution;
}

Histogram countInBins(const std::vector<double>& values)
{
    constexpr double fewestBins = 5.0;
    constexpr double mostBins = 40.0;
    if (values.empty())
        throw std::invalid_argument("a histogram needs a value");
    const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
    Histogram histogram{*least, *greatest, {}};
    if (histogram.low == histogram.high)
    {
        histogram.counts = {values.size()};
        return histogram;
    }
    const double numBins = std::clamp(std::ceil(std::sqrt(static_cast<double>(values.size()))), fewestBins, mostBins);
    histogram.counts.assign(static_cast<std::size_t>(numBins), 0);
    const double halfSpan = 0.5 * histogram.high - 0.5 * histogram.low; // the span itself may overflow
    for (const double value : values)
    {
        const double share = (0.5 * value - 0.5 * histogram.low) / halfSpan;
        ++histogram.counts[std::min(static_cast<std::size_t>(share * numBins), histogram.counts.size() - 1)];
    }
    return histogram;
}

} // namespace fenn::analysis
