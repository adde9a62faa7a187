#ifndef FENN_ANALYSIS_SEMIVARIOGRAMFIT_H
#define FENN_ANALYSIS_SEMIVARIOGRAMFIT_H

#include <cstddef>
#include <vector>

#include "analysis/BinnedSemivariogram.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::analysis
{

/// A spherical semivariogram fitted to the bins of an empirical one.
struct SphericalFit
{
    double sill = 0.0;           // nugget included, squared units of the output
    double nuggetFraction = 0.0; // of the sill: the model's nugget
    double range = 0.0;          // in the unit of the lags; means nothing for a nugget fraction of 1

    double meanSquaredDeviation = 0.0; // of (semivariance - model) / model, weighted by numbers of pairs
    bool isRangeAtUpperBound = false;  // the semivariogram still rises at the largest lag: no sill is in sight
    bool hasConverged = false;         // a fit that has not is that of the last step

    /// At a lag, 0 among them: there the nugget.
    double evaluate(double lag) const;
};

/// Weighted least squares: minimises, over nugget c0 >= 0, partial sill c >= 0 and range a,
///
///     sum over the bins of  N_j / g_j^2 (semivariance_j - c0 - c s(h_j / a))^2,    s(x) = 1.5 x - 0.5 x^3, 1 from x =
///     1
///
/// N_j pairs at mean lag h_j, g_j the model's value there. g is the model of the step before until nothing changes:
/// were it the model fitted, large values would hide their own errors. Starts from g = 1. In each step c0 and c are the
/// exact solution for a range, and the range is the best of a fine grid, refined. No random choices.
///
/// Source: N. Cressie, "Fitting variogram models by weighted least squares", Mathematical Geology 17 (1985).
///
/// The range lies between the smallest lag above 0 and rangeLimit, 0 for four times the largest lag. Throws
/// std::invalid_argument for fewer than 3 bins at lags above 0, semivariances that are all 0, and a rangeLimit that is
/// not above the smallest lag or not finite.
SphericalFit fitSpherical(const std::vector<LagBin>& bins, double rangeLimit = 0.0);

/// A normalised range as a model's setting: over the normalised diagonal of the sample box.
double toRangeFraction(const ModelParts& parts, double normalisedRange);

} // namespace fenn::analysis

#endif
