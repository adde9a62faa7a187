#include "analysis/NormalDistribution.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace fenn::analysis
{

namespace
{

constexpr double rootOfTwo = 1.4142135623730951;
constexpr double rootOfTwoPi = 2.5066282746310002;

/// The x >= 0 that a value exceeds with this probability, above 0 and at most 1/2. Newton's method from 0: the
/// probability of exceeding x is convex there, so that no step goes too far, and each one goes up.
double upperQuantile(double tail)
{
    double x = 0.0;
    for (;;)
    {
        const double next = x + (0.5 * std::erfc(x / rootOfTwo) - tail) / normalDensity(x);
        if (!(next > x))
            return x;
        x = next;
    }
}

} // namespace

double normalDensity(double x)
{
    return std::exp(-0.5 * x * x) / rootOfTwoPi;
}

double normalProbability(double x)
{
    return 0.5 * std::erfc(-x / rootOfTwo);
}

double normalQuantile(double probability)
{
    if (!(probability >= 0.0 && probability <= 1.0))
        return std::numeric_limits<double>::quiet_NaN();
    if (probability == 0.0 || probability == 1.0)
        return probability == 0.0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    return probability < 0.5 ? -upperQuantile(probability) : upperQuantile(1.0 - probability);
}

double intervalFactor(double coverage)
{
    if (!(coverage > 0.0 && coverage < 1.0))
        throw std::invalid_argument("an interval must hold more than none and less than all values, not " +
                                    std::to_string(coverage));
    return upperQuantile(0.5 * (1.0 - coverage));
}

} // namespace fenn::analysis
