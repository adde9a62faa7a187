#ifndef FENN_ANALYSIS_LIKELIHOOD_H
#define FENN_ANALYSIS_LIKELIHOOD_H

#include <string>
#include <vector>

#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{
class SystemInverse;
}

namespace fenn::analysis
{

using estimation::ModelSettings;
using estimation::SampleSet;

/// How well range, nugget and scale factors explain the outputs, the sill being the best for them: minus twice the
/// logarithm of the restricted likelihood, without the constant (n - q) (1 + ln 2 pi),
///
///     deviance = (n - q) ln sill + ln|C| + ln|F^T C^-1 F| - ln|F^T F|
///
/// for n points with covariances C for a sill of 1, q drift columns F, the constant's among them, and the sill of
/// restrictedSill. The two terms in the middle are the logarithm of the determinant of the bordered system. Lower is
/// better; a difference of 4 between two settings is worth noticing.
///
/// Compares settings of one drift order only: the likelihood is that of contrasts which a higher order has fewer of,
/// so that across orders it always prefers the higher one. The last term makes it independent of the units and of the
/// normalisation of the inputs, so that scale factors can be compared.
///
/// Source: M. L. Stein, Interpolation of Spatial Data (Springer, 1999), section 6.4; T. J. Santner, B. J. Williams and
/// W. I. Notz, The Design and Analysis of Computer Experiments (Springer, 2003), section 3.3; D. A. Harville,
/// "Bayesian inference for variance components using only error contrasts", Biometrika 61 (1974).
struct RestrictedLikelihood
{
    // Per output variable. An output that is the same everywhere says nothing: 0. A sill below 1e-24 of the sample
    // variance is rounding and counts as that.
    std::vector<double> deviances;
    std::vector<double> sills;

    std::string failure; // why there are none; empty otherwise

    /// Of the outputs as if they were independent; infinite after a failure.
    double calcSum() const;
};

/// Fails where points cannot be told apart (a replaced pivot, a reciprocal condition below
/// estimation::smallestReciprocalCondition), where there are no more points than drift columns, and where a sill comes
/// out negative because the semivariogram is not valid in so many inputs. Throws the library's Error as
/// SystemInverse::solve.
RestrictedLikelihood calcRestrictedLikelihood(const ModelParts& parts, const estimation::SystemInverse& system,
                                              int driftOrder);

/// Of the global model, whatever the number of nearest points. Throws std::invalid_argument for the settings, the
/// library's Error about too few points, scales or a singular matrix, and std::bad_alloc.
RestrictedLikelihood calcRestrictedLikelihood(const SampleSet& samples, const ModelSettings& settings);

} // namespace fenn::analysis

#endif
