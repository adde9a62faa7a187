#ifndef FENN_ANALYSIS_ANISOTROPY_H
#define FENN_ANALYSIS_ANISOTROPY_H

#include <cstddef>

#include "estimation/SampleSet.h"

namespace fenn::analysis
{

using estimation::SampleSet;

/// Two inputs in which values stay alike farther in one direction than across it: a rotation and a stretching of the
/// inputs after which the range is the same in every direction,
///
///     along = x cos + y sin,    across = ratio (y cos - x sin)
///
/// of the angle of the longer range, anticlockwise from the first input's axis; ratio is the longer range over the
/// shorter one. The model of these takes scale factors of 1: its range, in input units, is the longer one.
///
/// Source: E. H. Isaaks and R. M. Srivastava, An Introduction to Applied Geostatistics (Oxford, 1989), chapter 16.
///
/// A plain value. Where samples are transformed, targets must be too.
class Anisotropy
{
public:
    /// angle_: degrees, any finite value. Throws std::invalid_argument for a ratio that is below 1 or not finite and
    /// for an angle that is not finite.
    Anisotropy(double ratio_, double angle_);

    double getRatio() const
    {
        return ratio;
    }

    /// In degrees, at least 0 and below 180: a direction and its opposite are one.
    double getAngle() const
    {
        return angle;
    }

    /// Of count places; along and across may be the arrays of x and y.
    void apply(const double* x, const double* y, std::size_t count, double* along, double* across) const;

    /// The samples at the transformed places, outputs as they are. Throws std::invalid_argument unless there are two
    /// inputs, and where a place is no longer finite.
    SampleSet apply(const SampleSet& samples) const;

    friend bool operator==(const Anisotropy& a, const Anisotropy& b)
    {
        return a.ratio == b.ratio && a.angle == b.angle;
    }

private:
    double ratio;
    double angle;
    double cosine;
    double sine;
};

} // namespace fenn::analysis

#endif
