#include "estimation/StandardError.h"

#include <cmath>
#include <limits>

namespace fenn::estimation
{

namespace
{

/// A sum of weights times semivariogram values, both of the order of 1, rounds to this much below zero and no further
/// unless something is wrong with the system.
constexpr double largestRounding = 1e-12;

} // namespace

double acceptedVariance(double variance)
{
    if (variance < -largestRounding)
        return std::numeric_limits<double>::quiet_NaN();
    return variance <= 0.0 ? 0.0 : variance; // no negative zero either
}

double comparableVariance(double variance)
{
    const double accepted = acceptedVariance(variance);
    return accepted <= largestRounding ? 0.0 : accepted;
}

double standardErrorOf(double variance, double sill)
{
    return std::sqrt(sill * acceptedVariance(variance));
}

} // namespace fenn::estimation
