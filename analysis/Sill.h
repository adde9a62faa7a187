#ifndef FENN_ANALYSIS_SILL_H
#define FENN_ANALYSIS_SILL_H

#include <cstddef>
#include <vector>

#include "analysis/Progress.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{
class Estimator;
class LocalEstimator;
} // namespace fenn::estimation

namespace fenn::analysis
{

using estimation::ModelSettings;
using estimation::SampleSet;

enum class SillMethod
{
    RestrictedLikelihood, // all points and one system
    LeaveOneOut,          // local models
    SampleVariance        // where neither can be had
};

/// The sill of an output: what turns Kriging variances, which hold for a sill of 1, into its own squared units.
struct Sill
{
    double value = 0.0;
    double sampleVariance = 0.0; // over the points, beside it
    SillMethod method = SillMethod::SampleVariance;
    std::size_t numUsed = 0; // points that the value comes from
};

/// The restricted maximum likelihood sill for a given range, nugget and drift,
///
///     sill = z^T P z / (n - q),    P = C^-1 - C^-1 F (F^T C^-1 F)^-1 F^T C^-1
///
/// for n values z of an output, C their covariances for a sill of 1 and F the q drift columns, the constant's among
/// them. Unbiased if the model holds. dualWeights: P z, one per point.
///
/// Source: R. Christensen, Linear Models for Multivariate, Time Series, and Spatial Data (Springer, 1991), section 6.4;
/// M. L. Stein, Interpolation of Spatial Data (Springer, 1999), section 6.4.
double restrictedSill(const std::vector<double>& values, const std::vector<double>& dualWeights,
                      std::size_t numDriftColumns);

/// Per output variable, the restricted maximum likelihood sill over all points of a model with these dual weights
/// (Estimator::calcDualWeights; empty where points cannot be told apart); the sample variance without weights, where
/// there are no more points than drift columns, and where z^T P z is not a number of 0 or above, for which the
/// semivariogram is not valid in so many inputs.
std::vector<Sill> restrictedSills(const ModelParts& parts, const std::vector<std::vector<double>>& dualWeights,
                                  int driftOrder);

/// Per output variable, the mean of e^2 / v over at most 1000 points, each estimated by the engine from its nearest
/// others: e the error, v the variance for a sill of 1. Unbiased too. All points up to 1000; beyond, a choice that
/// depends on their number alone. Points whose neighbours have no solution and those with v not above 1e-12 are left
/// out; the sample variance where none is left. progress counts points. Throws Cancelled and std::bad_alloc.
std::vector<Sill> leaveOneOutSills(const estimation::LocalEstimator& estimator, const Progress& progress = {});

/// Whichever of the two belongs to an estimator that is already built: no second factorisation. Throws Cancelled, the
/// library's Error and std::bad_alloc.
std::vector<Sill> estimateSills(const estimation::Estimator& estimator, const ModelSettings& settings, int numThreads,
                                const Progress& progress = {});

/// The same from samples. Throws std::invalid_argument for the settings, Cancelled, the library's
/// Error and std::bad_alloc.
std::vector<Sill> estimateSills(const SampleSet& samples, const ModelSettings& settings, const Progress& progress = {});

} // namespace fenn::analysis

#endif
