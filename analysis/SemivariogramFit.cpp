#include "analysis/SemivariogramFit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace fenn::analysis
{

namespace
{

constexpr int maxSteps = 100;
constexpr double tolerance = 1e-9; // of a step, relative to the sill and to the range

constexpr int numGridRanges = 200; // evenly in their logarithms: 4 % apart for the widest bounds in use
constexpr int numRefinements = 60; // each leaves 0.62 of the interval

// Of the largest semivariance: what a model's value counts as at least when it weighs a bin, so that a model without a
// nugget does not rest on its first bin alone.
constexpr double smallestWeighing = 1e-3;

struct Parameters
{
    double nugget = 0.0;
    double partialSill = 0.0;
    double range = 0.0;
    double weightedSquares = std::numeric_limits<double>::infinity();
};

double shapeOf(double lag, double range)
{
    const double x = lag / range;
    return x < 1.0 ? x * (1.5 - 0.5 * x * x) : 1.0;
}

double valueOf(const Parameters& parameters, double lag)
{
    return parameters.nugget + parameters.partialSill * shapeOf(lag, parameters.range);
}

class WeightedFit
{
public:
    explicit WeightedFit(const std::vector<LagBin>& bins_) : bins(bins_)
    {
        for (const LagBin& bin : bins)
        {
            largest = std::max(largest, bin.semivariance);
            weights.push_back(static_cast<double>(bin.numPairs));
        }
    }

    double getLargest() const
    {
        return largest;
    }

    void weighBy(const Parameters& model)
    {
        for (std::size_t j = 0; j < bins.size(); ++j)
        {
            const double value = std::max(valueOf(model, bins[j].meanLag), smallestWeighing * largest);
            weights[j] = static_cast<double>(bins[j].numPairs) / (value * value);
        }
    }

    /// The best nugget and partial sill for a range.
    Parameters fit(double range) const
    {
        double sw = 0.0;
        double sws = 0.0;
        double swss = 0.0;
        double swg = 0.0;
        double swsg = 0.0;
        for (std::size_t j = 0; j < bins.size(); ++j)
        {
            const double shape = shapeOf(bins[j].meanLag, range);
            sw += weights[j];
            sws += weights[j] * shape;
            swss += weights[j] * shape * shape;
            swg += weights[j] * bins[j].semivariance;
            swsg += weights[j] * shape * bins[j].semivariance;
        }
        // Where both would be best with one of them negative, that one is 0.
        Parameters best = measured({swg / sw, 0.0, range, 0.0});
        const Parameters withoutNugget = measured({0.0, swss > 0.0 ? swsg / swss : 0.0, range, 0.0});
        if (withoutNugget.weightedSquares < best.weightedSquares)
            best = withoutNugget;
        const double determinant = sw * swss - sws * sws;
        if (determinant > 1e-12 * sw * swss)
        {
            const Parameters both =
                measured({(swss * swg - sws * swsg) / determinant, (sw * swsg - sws * swg) / determinant, range, 0.0});
            if (both.nugget >= 0.0 && both.partialSill >= 0.0 && both.weightedSquares < best.weightedSquares)
                best = both;
        }
        return best;
    }

    Parameters fitBetween(double lowest, double highest) const
    {
        const double ratio = std::pow(highest / lowest, 1.0 / (numGridRanges - 1));
        Parameters best;
        for (int k = 0; k < numGridRanges; ++k)
        {
            const double range = k + 1 == numGridRanges ? highest : lowest * std::pow(ratio, k);
            const Parameters candidate = fit(range);
            if (candidate.weightedSquares < best.weightedSquares)
                best = candidate;
        }
        return refined(best, std::max(lowest, best.range / ratio), std::min(highest, best.range * ratio));
    }

private:
    Parameters measured(Parameters parameters) const
    {
        parameters.weightedSquares = 0.0;
        for (std::size_t j = 0; j < bins.size(); ++j)
        {
            const double deviation = bins[j].semivariance - valueOf(parameters, bins[j].meanLag);
            parameters.weightedSquares += weights[j] * deviation * deviation;
        }
        return parameters;
    }

    /// Golden section.
    Parameters refined(Parameters best, double lower, double upper) const
    {
        const double section = 0.5 * (std::sqrt(5.0) - 1.0);
        for (int k = 0; k < numRefinements; ++k)
        {
            const Parameters left = fit(upper - section * (upper - lower));
            const Parameters right = fit(lower + section * (upper - lower));
            const bool isLeftBetter = left.weightedSquares <= right.weightedSquares;
            const Parameters& better = isLeftBetter ? left : right;
            if (better.weightedSquares < best.weightedSquares)
                best = better;
            (isLeftBetter ? upper : lower) = isLeftBetter ? right.range : left.range;
        }
        return best;
    }

    const std::vector<LagBin>& bins;
    std::vector<double> weights;
    double largest = 0.0;
};

bool isClose(const Parameters& a, const Parameters& b)
{
    const double sill = a.nugget + a.partialSill;
    return std::fabs(a.nugget - b.nugget) <= tolerance * sill &&
           std::fabs(a.partialSill - b.partialSill) <= tolerance * sill &&
           std::fabs(a.range - b.range) <= tolerance * a.range;
}

} // namespace

double SphericalFit::evaluate(double lag) const
{
    return sill * (nuggetFraction + (1.0 - nuggetFraction) * shapeOf(lag, range));
}

SphericalFit fitSpherical(const std::vector<LagBin>& bins, double rangeLimit)
{
    double smallestLag = std::numeric_limits<double>::infinity();
    double largestLag = 0.0;
    std::size_t numLags = 0;
    for (const LagBin& bin : bins)
    {
        if (!(bin.meanLag > 0.0))
            continue;
        smallestLag = std::min(smallestLag, bin.meanLag);
        largestLag = std::max(largestLag, bin.meanLag);
        ++numLags;
    }
    if (numLags < 3)
        throw std::invalid_argument("a semivariogram can be fitted to no fewer than 3 lags with pairs");
    const double highest = rangeLimit == 0.0 ? 4.0 * largestLag : rangeLimit;
    if (!(highest > smallestLag && std::isfinite(highest)))
        throw std::invalid_argument("the largest range must be finite and above the smallest lag");
    WeightedFit problem(bins);
    if (!(problem.getLargest() > 0.0))
        throw std::invalid_argument("there is nothing to fit: the semivariance is 0 at every lag");

    SphericalFit result;
    Parameters model = problem.fitBetween(smallestLag, highest);
    for (int step = 0; step < maxSteps && !result.hasConverged; ++step)
    {
        problem.weighBy(model);
        const Parameters next = problem.fitBetween(smallestLag, highest);
        result.hasConverged = isClose(model, next);
        model = next;
    }
    result.sill = model.nugget + model.partialSill;
    result.nuggetFraction = model.nugget / result.sill;
    result.range = model.range;
    result.isRangeAtUpperBound = model.partialSill > 0.0 && model.range >= highest * (1.0 - 1e-6);

    double numPairs = 0.0;
    for (const LagBin& bin : bins)
        numPairs += static_cast<double>(bin.numPairs);
    result.meanSquaredDeviation = model.weightedSquares / numPairs;
    return result;
}

double toRangeFraction(const ModelParts& parts, double normalisedRange)
{
    return normalisedRange / (2.0 * defaultMaxLag(parts));
}

} // namespace fenn::analysis
