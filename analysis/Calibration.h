#ifndef FENN_ANALYSIS_CALIBRATION_H
#define FENN_ANALYSIS_CALIBRATION_H

#include <cstddef>
#include <vector>

namespace fenn::analysis
{

/// How often central intervals held the truth, as fractions.
struct IntervalCoverage
{
    double nominal = 0.0; // that the normal distribution promises
    double actual = 0.0;  // NaN without a point
};

/// Whether standard errors say how large errors are. A prediction is taken as normal with the estimate as its mean.
/// A point is used when its estimate and its standard error are numbers; the others are counted and left out. Figures
/// that no point is left for are NaN.
struct Calibration
{
    std::size_t numUsed = 0;
    std::size_t numMissing = 0;              // estimates that are NaN
    std::size_t numWithoutStandardError = 0; // of the rest: standard errors that are NaN
    std::size_t numCertain = 0;              // of the used: standard errors of 0

    // Mean of (e / se)^2 over the used points that are not certain, e = estimate - truth: near 1 when the standard
    // errors are right, above 1 when they promise too much. N. Cressie, Statistics for Spatial Data (Wiley, 1993),
    // section 2.6.4.
    double meanSquaredStandardisedError = 0.0;

    // Of intervals of 50, 90 and 95 %, over the used points. The interval of a certain point is the estimate alone: it
    // holds the truth when the error is no more than rounding, 1e-12 of the truth's magnitude.
    std::vector<IntervalCoverage> coverages;

    // Mean continuous ranked probability score, in the output's units, lower is better: for x = e / se
    //
    //     se (x (2 Phi(x) - 1) + 2 phi(x) - 1 / sqrt(pi)),    and |e| for se = 0
    //
    // T. Gneiting and A. E. Raftery, "Strictly proper scoring rules, prediction, and estimation", Journal of the
    // American Statistical Association 102 (2007), section 4.2.
    double crps = 0.0;
};

/// One value per point in each list, in the output's units; a standard error is 0 or above, or NaN. Throws
/// std::invalid_argument for lists of different lengths.
Calibration calcCalibration(const std::vector<double>& truths, const std::vector<double>& estimates,
                            const std::vector<double>& standardErrors);

/// The calibration curve: coverage as in Calibration at numIntervals nominal fractions, k / (numIntervals + 1) for k
/// from 1, ascending.
std::vector<IntervalCoverage> calcCalibrationCurve(const std::vector<double>& truths,
                                                   const std::vector<double>& estimates,
                                                   const std::vector<double>& standardErrors, std::size_t numIntervals);

} // namespace fenn::analysis

#endif
