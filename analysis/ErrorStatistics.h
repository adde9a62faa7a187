#ifndef FENN_ANALYSIS_ERRORSTATISTICS_H
#define FENN_ANALYSIS_ERRORSTATISTICS_H

#include <cstddef>
#include <vector>

namespace fenn::analysis
{

/// Estimates of one output variable compared with known values. An error is e = estimate - truth, in the output's
/// units. Points whose estimate is NaN are counted and left out of all other figures. A figure over no points is NaN.
struct ErrorStatistics
{
    std::size_t numCompared = 0;
    std::size_t numMissing = 0; // estimates that are NaN

    double rmse = 0.0;       // sqrt(mean e^2)
    double mae = 0.0;        // mean |e|
    double bias = 0.0;       // mean e: positive when estimates are too high
    double r2 = 0.0;         // 1 - sum e^2 / sum (truth - mean truth)^2; NaN for truths that do not vary
    double worstError = 0.0; // the e of largest magnitude, with its sign

    std::vector<std::size_t> worstPoints; // by falling |e|; of equal ones the lower index first

    // mean of e^2 / (variance * output variance): near 1 when the Kriging variances are as large as the squared errors,
    // above 1 when they are too small. N. Cressie, Statistics for Spatial Data (Wiley, 1993), section 2.6.4.
    double meanSquaredStandardisedError = 0.0;
    std::size_t numWithoutVariance = 0; // compared, but left out of that mean: variance zero, negative or NaN
};

/// truths, estimates: one value per point. variances: as many Kriging variances for a sill of 1, or none.
/// outputVariance: sample variance of the output variable, which scales them. numWorst: most worstPoints to list.
/// Throws std::invalid_argument for lists of different lengths.
ErrorStatistics calcErrorStatistics(const std::vector<double>& truths, const std::vector<double>& estimates,
                                    const std::vector<double>& variances, double outputVariance,
                                    std::size_t numWorst = 10);

} // namespace fenn::analysis

#endif
