#ifndef FENN_ESTIMATION_SEPARATION_H
#define FENN_ESTIMATION_SEPARATION_H

#include <cstddef>

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

enum class SeparationVerdict
{
    Separate,
    Repeated,    // points at one place, without a nugget that would make them replicates
    TooNear,     // points nearer to each other than the system can tell
    Undetermined // the system cannot be solved for another reason: a drift that the places do not determine, mostly
};

/// Whether a model can tell its points apart, and which two are nearest to each other.
///
/// A pair of semivariogram gamma(h) bounds the condition of the system of n points: along their difference the system
/// is as small as gamma(h), while its norm is about n. Points are too near where gamma(h) / n is below
/// smallestReciprocalCondition, whether global or local; a global system is judged by its own condition besides. gamma
/// never falls below the nugget: with one, repeats are replicates and nothing is too near.
struct Separation
{
    SeparationVerdict verdict = SeparationVerdict::Separate;
    std::size_t numRepeats = 0; // points at the place of another, but for the first at each place

    // Of the nearest two points: samples by their number, the lower first; of merged ones the first counts.
    std::size_t firstSample = 0;
    std::size_t secondSample = 0;
    double distance = 0.0; // normalised

    double reciprocalCondition = 0.0; // of the global system; NaN without one
};

/// reciprocalCondition: of the one system over all points (Estimator, SystemInverse); NaN for local models.
/// numPointsInSystem: all, or the number of neighbours.
Separation checkSeparation(const ModelParts& parts, double reciprocalCondition, std::size_t numPointsInSystem);

/// Throws the library's Error "Ill-conditioned matrix" unless these points are separate. Arguments as above; with NaN
/// for a condition that is not known yet, the nearest points alone decide.
void requireSeparation(const ModelParts& parts, double reciprocalCondition, std::size_t numPointsInSystem);

} // namespace fenn::estimation

#endif
