#ifndef FENN_ANALYSIS_SUPPORT_H
#define FENN_ANALYSIS_SUPPORT_H

#include <cstddef>

#include "estimation/Estimator.h"
#include "estimation/IndexedPoints.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::analysis
{

using estimation::Targets;

/// Targets of a job by where they lie; one with a coordinate that is not finite is neither.
struct SupportCounts
{
    std::size_t numOutsideBox = 0;  // of the samples, in at least one input
    std::size_t numUnsupported = 0; // of those: beyond the range of every sample
};

/// Which targets a model can say something of. Outside the box of the samples it extrapolates; a target that is beyond
/// the range of every point besides gets nothing but the drift.
///
/// Refers to the parts, which must outlive it. Immutable after construction: any number of threads may ask.
class Support
{
public:
    /// Builds an index of the points: n log n operations for n of them.
    explicit Support(const ModelParts& parts_);

    /// target: one raw coordinate per input variable. The faces belong to the box; false for NaN.
    bool isInsideBox(const double* target) const;

    /// At a distance below the range from some point. False for coordinates that are not finite.
    bool isWithinRange(const double* target) const;

    /// Inside the box, or at a distance below the range from some point. False for coordinates that are not finite.
    bool isSupported(const double* target) const;

    /// Normalised distance to the nearest point; infinite where none can be found, as for NaN.
    double calcDistanceToNearest(const double* target) const;

    SupportCounts count(const Targets& targets) const;

    /// One distance per target.
    void calcDistancesToNearest(const Targets& targets, double* distances) const;

private:
    double calcSquaredDistanceToBox(const double* target) const;

    const ModelParts& parts;
    std::size_t numInputVars;
    double rangeSquared; // normalised
    estimation::IndexedPoints points;
};

} // namespace fenn::analysis

#endif
