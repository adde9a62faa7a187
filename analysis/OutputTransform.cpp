#include "analysis/OutputTransform.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "analysis/NormalDistribution.h"
#include "estimation/StandardError.h"

namespace fenn::analysis
{

namespace
{

constexpr double rootOfOneHalf = 0.70710678118654752;

} // namespace

Interval predictionInterval(double estimate, double standardError, double factor)
{
    const double halfWidth = factor * standardError;
    return {estimate - halfWidth, estimate + halfWidth};
}

double clamped(double value, const Interval& limits)
{
    if (value < limits.lower)
        return limits.lower;
    return value > limits.upper ? limits.upper : value;
}

std::vector<double> toLogarithms(const std::vector<double>& values)
{
    std::vector<double> logarithms;
    logarithms.reserve(values.size());
    for (const double value : values)
    {
        if (!(value > 0.0 && std::isfinite(value)))
            throw std::invalid_argument("the value of sample " + std::to_string(logarithms.size()) +
                                        " has no logarithm: it must be above 0");
        logarithms.push_back(std::log(value));
    }
    return logarithms;
}

double expectationOf(double estimate, double variance, double driftProduct, double sill)
{
    return std::exp(estimate + sill * (0.5 * estimation::acceptedVariance(variance) - driftProduct));
}

double medianOf(double estimate)
{
    return std::exp(estimate);
}

Interval fromLogarithms(const Interval& interval)
{
    return {std::exp(interval.lower), std::exp(interval.upper)};
}

double crpsOfLogarithm(double logarithmOfTruth, double estimate, double standardError)
{
    const double truth = std::exp(logarithmOfTruth);
    if (standardError == 0.0)
        return std::fabs(truth - std::exp(estimate));
    const double w = (logarithmOfTruth - estimate) / standardError;
    // Phi(w - s) - Phi(-s / sqrt(2)), which loses nothing where both are small.
    const double share = normalProbability(w - standardError) - normalProbability(-standardError * rootOfOneHalf);
    return truth * (2.0 * normalProbability(w) - 1.0) -
           2.0 * std::exp(estimate + 0.5 * standardError * standardError) * share;
}

double OutputUnits::estimateOf(double estimate, double variance, double driftProduct, double sill) const
{
    return clamped(areLogarithms ? expectationOf(estimate, variance, driftProduct, sill) : estimate, limits);
}

double OutputUnits::medianOf(double estimate) const
{
    return clamped(areLogarithms ? analysis::medianOf(estimate) : estimate, limits);
}

Interval OutputUnits::intervalOf(const Interval& interval) const
{
    const Interval ends = areLogarithms ? fromLogarithms(interval) : interval;
    return {clamped(ends.lower, limits), clamped(ends.upper, limits)};
}

bool operator==(const OutputUnits& a, const OutputUnits& b)
{
    return a.areLogarithms == b.areLogarithms && a.limits.lower == b.limits.lower && a.limits.upper == b.limits.upper;
}

} // namespace fenn::analysis
