#ifndef FENN_ANALYSIS_LEAVEONEOUT_H
#define FENN_ANALYSIS_LEAVEONEOUT_H

#include <cstddef>
#include <vector>

#include "analysis/Progress.h"
#include "analysis/Sill.h"
#include "estimation/Estimates.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn::analysis
{

using estimation::Estimates;
using estimation::ModelSettings;
using estimation::SampleSet;

/// One entry per point of the full model, merged samples counting as their averaged point: first the samples that were
/// not merged, in their order, then the averaged points.
struct LeaveOneOutResult
{
    Estimates estimates;                     // of each point, without it
    std::vector<std::vector<double>> truths; // a column per output variable: the point's value, averaged if merged
    std::vector<std::vector<std::size_t>> members; // the samples that the point stands for: one, or those merged
    std::vector<Sill> sills;                       // per output variable: of the full model
};

/// Leave-one-out cross-validation: each point of the model estimated from the others, with the normalisers, the range
/// and the merged points of the full model.
///
/// Globally from one factorisation instead of n. K is the symmetric system of all n points (KrigingMatrix), z an output
/// followed by zeros for the drift terms and the constraint. Then, for point i,
///
///     truth - estimate = (K^-1 z)_i / (K^-1)_ii        variance = -1 / (K^-1)_ii
///     mu^T f = -(sum over the drift terms k of f_k(x_i) (K^-1)_ki) / (K^-1)_ii
///
/// Source: O. Dubrule, "Cross validation of kriging in a unique neighborhood", Mathematical Geology 15 (1983). There
/// the system holds covariances and the variance is +1 / (K^-1)_ii. With semivariograms K_ii is 0, and the Schur
/// complement of the other rows is 0 - k^T lambda = -variance, k being column i without element i and lambda the
/// weights that the others get. A nugget changes nothing: k never holds the semivariogram at zero separation of point i
/// itself. Where the others alone have no solution, recognised by a variance beyond 1e10, estimate and variance are
/// NaN.
///
/// Costs 2/3 n^3 operations and n^2 / 2 doubles by Cholesky's method, 8/3 n^3 and n^2 where only the exact
/// factorisation is accurate (SystemInverse).
///
/// With numNearestPoints N above 0 and below the number of points, each point is estimated from its N nearest
/// neighbours by a system of its own (LocalEstimator).
///
/// progress counts points. options: isExact does not matter. Throws std::invalid_argument for the settings, Cancelled,
/// and the library's Error, also where all points but one are too few.
LeaveOneOutResult leaveOneOut(const SampleSet& samples, const ModelSettings& settings, const Progress& progress = {},
                              const estimation::EstimatorOptions& options = {});

} // namespace fenn::analysis

#endif
