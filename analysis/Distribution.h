#ifndef FENN_ANALYSIS_DISTRIBUTION_H
#define FENN_ANALYSIS_DISTRIBUTION_H

#include <cstddef>
#include <vector>

namespace fenn::analysis
{

/// How the values of one column lie.
struct Distribution
{
    double least = 0.0;
    double lowerQuartile = 0.0;
    double median = 0.0;
    double mean = 0.0;
    double upperQuartile = 0.0;
    double greatest = 0.0;
    double standardDeviation = 0.0; // divided by n - 1; 0 for a single value
};

/// The quantile of ascending values, 0 <= fraction <= 1: between two values the straight line (R's type 7). Throws
/// std::invalid_argument for no values.
double quantileOf(const std::vector<double>& ascending, double fraction);

/// Of finite values. Throws std::invalid_argument for none.
Distribution describeValues(const std::vector<double>& values);

/// Numbers of values in bins of equal width from the least to the greatest value.
struct Histogram
{
    double low = 0.0;
    double high = 0.0; // of equal values: as low
    std::vector<std::size_t> counts;
};

/// Of finite values: a value belongs to the bin that begins at it, the greatest one to the last bin. Equal values make
/// one bin. The number of bins is the root of that of the values, 5 at least and 40 at most. Throws
/// std::invalid_argument for none.
Histogram countInBins(const std::vector<double>& values);

} // namespace fenn::analysis

#endif
