#include "analysis/BinnedSemivariogram.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <tuple>

#include "analysis/Folds.h"
#include "analysis/ModelPoints.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

constexpr std::uint64_t drawingSeed = 1;

constexpr double degree = 0.017453292519943295; // in radians

/// The points of a model side by side: one column per variable, raw units.
struct PointColumns
{
    std::vector<std::vector<double>> inputs;
    std::vector<double> output;
};

PointColumns gatherPoints(const ModelParts& parts, std::size_t outputVar)
{
    PointColumns columns;
    for (std::size_t v = 0; v < parts.getNormalizers().size(); ++v)
        columns.inputs.push_back(inputOfPoints(parts, v));
    columns.output = outputOfPoints(parts, outputVar);
    return columns;
}

std::vector<double> inOrder(const std::vector<double>& values, const std::vector<std::size_t>& order)
{
    std::vector<double> ordered;
    ordered.reserve(order.size());
    for (const std::size_t i : order)
        ordered.push_back(values[i]);
    return ordered;
}

PointColumns inOrder(const PointColumns& columns, const std::vector<std::size_t>& order)
{
    PointColumns ordered;
    for (const std::vector<double>& column : columns.inputs)
        ordered.inputs.push_back(inOrder(column, order));
    ordered.output = inOrder(columns.output, order);
    return ordered;
}

/// Some points after another, as the semivariogram takes them.
class PointTail
{
public:
    PointTail(const PointColumns& columns, std::size_t first, std::size_t numPts)
    {
        for (const std::vector<double>& column : columns.inputs)
            pointers.push_back(column.data() + first);
        arrays = {pointers.data(), static_cast<int>(pointers.size()), numPts};
    }

    PointTail(const PointTail& other) = delete;
    PointTail& operator=(const PointTail& other) = delete;

    const PointArrays& get() const
    {
        return arrays;
    }

private:
    std::vector<const double*> pointers;
    PointArrays arrays;
};

/// Which pairs to look at: point i with those after it and before ends[i].
struct Partners
{
    PointColumns points;
    std::vector<std::size_t> ends;
};

/// ends for points in ascending order of these values: up to the last one no farther away than reach.
std::vector<std::size_t> endsWithin(const std::vector<double>& ascending, double scale, double reach)
{
    std::vector<std::size_t> ends;
    std::size_t end = 0;
    for (const double value : ascending)
    {
        while (end < ascending.size() && (ascending[end] - value) * scale <= reach)
            ++end;
        ends.push_back(end);
    }
    return ends;
}

double countPairs(const std::vector<std::size_t>& ends)
{
    double count = 0.0;
    for (std::size_t i = 0; i < ends.size(); ++i)
        count += static_cast<double>(ends[i] - i - 1);
    return count;
}

Partners choosePartners(const ModelParts& parts, const BinningOptions& options, double maxLag)
{
    Partners partners{gatherPoints(parts, options.outputVar), {}};
    const std::size_t numPts = partners.points.output.size();
    const auto maxPairs = static_cast<double>(options.maxPairs);
    if (0.5 * static_cast<double>(numPts) * (static_cast<double>(numPts) - 1.0) <= maxPairs)
    {
        partners.ends.assign(numPts, numPts);
        return partners;
    }

    std::size_t bestVar = 0;
    double fewest = -1.0;
    for (std::size_t v = 0; v < partners.points.inputs.size(); ++v)
    {
        std::vector<double> ascending = partners.points.inputs[v];
        std::sort(ascending.begin(), ascending.end());
        const double count = countPairs(endsWithin(ascending, parts.getNormalizers()[v].getScale(), maxLag));
        if (fewest < 0.0 || count < fewest)
        {
            fewest = count;
            bestVar = v;
        }
    }
    // Of a share s of the points, s^2 of the pairs are expected.
    const double share = std::min(1.0, std::sqrt(maxPairs / fewest));
    std::vector<std::size_t> order = shuffledIndices(numPts, drawingSeed);
    order.resize(std::max<std::size_t>(2, static_cast<std::size_t>(share * static_cast<double>(numPts))));
    const std::vector<double>& sortedBy = partners.points.inputs[bestVar];
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b)
              { return sortedBy[a] != sortedBy[b] ? sortedBy[a] < sortedBy[b] : a < b; });
    partners.points = inOrder(partners.points, order);
    partners.ends = endsWithin(partners.points.inputs[bestVar], parts.getNormalizers()[bestVar].getScale(), maxLag);
    return partners;
}

/// Whether a pair of points lies in the direction asked for, if one is.
class DirectionFilter
{
public:
    explicit DirectionFilter(const BinningOptions& options) : isActive(options.direction.has_value())
    {
        if (!isActive)
            return;
        cosine = std::cos(*options.direction * degree);
        sine = std::sin(*options.direction * degree);
        // Widened by rounding, so that a pair just at the tolerance counts on both sides.
        smallestCosine = options.tolerance >= 90.0 ? 0.0 : std::cos(options.tolerance * degree) * (1.0 - 1e-12);
    }

    bool takes(const std::vector<std::vector<double>>& inputs, std::size_t i, std::size_t j) const
    {
        if (!isActive)
            return true;
        const double x = inputs[0][j] - inputs[0][i];
        const double y = inputs[1][j] - inputs[1][i];
        const double length = std::hypot(x, y);
        return length > 0.0 && std::fabs(x * cosine + y * sine) >= smallestCosine * length;
    }

private:
    bool isActive;
    double cosine = 0.0;
    double sine = 0.0;
    double smallestCosine = 0.0;
};

void checkOptions(const ModelParts& parts, const BinningOptions& options, double maxLag)
{
    if (options.outputVar >= static_cast<std::size_t>(parts.getDataBlock().getNumOutputVars()))
        throw std::invalid_argument("there is no output variable " + std::to_string(options.outputVar));
    if (options.numLags == 0)
        throw std::invalid_argument("the number of lags must be at least 1");
    if (!(maxLag > 0.0 && std::isfinite(maxLag)))
        throw std::invalid_argument("the maximum lag must be finite and above 0");
    if (!options.direction)
        return;
    if (parts.getNormalizers().size() != 2)
        throw std::invalid_argument("a direction needs two input variables");
    if (!std::isfinite(*options.direction) || !(options.tolerance > 0.0))
        throw std::invalid_argument("a direction must be finite and its tolerance above 0");
}

double chooseMaxLag(const ModelParts& parts, const BinningOptions& options)
{
    const double maxLag = options.maxLag == 0.0 ? defaultMaxLag(parts) : options.maxLag;
    checkOptions(parts, options, maxLag);
    return maxLag;
}

/// Two points, by what a semivariogram sees of them.
struct Pair
{
    double lag = 0.0;
    double squaredDifference = 0.0; // of the output
    double modelValue = 0.0;        // with a sill of 1
};

template <typename Visit>
void visitPairs(const ModelParts& parts, const Partners& partners, const BinningOptions& options, double maxLag,
                const Visit& visit)
{
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    const PointColumns& points = partners.points;
    const DirectionFilter filter(options);
    std::vector<double> modelValues(points.output.size());
    for (std::size_t i = 0; i + 1 < points.output.size(); ++i)
    {
        const std::size_t numPartners = partners.ends[i] - i - 1;
        const PointTail point(points, i, 1);
        const PointTail following(points, i + 1, numPartners);
        parts.getSemivariogram().evaluatePairs(point.get(), following.get(), modelValues.data(), numPartners);
        for (std::size_t k = 0; k < numPartners; ++k)
        {
            const std::size_t j = i + 1 + k;
            double lagSquared = 0.0;
            for (std::size_t v = 0; v < normalizers.size(); ++v)
            {
                const double difference = (points.inputs[v][i] - points.inputs[v][j]) * normalizers[v].getScale();
                lagSquared += difference * difference;
            }
            const double lag = std::sqrt(lagSquared);
            if (!(lag <= maxLag) || !filter.takes(points.inputs, i, j))
                continue;
            const double outputDifference = points.output[i] - points.output[j];
            visit(Pair{lag, outputDifference * outputDifference, modelValues[k]});
        }
    }
}

/// Adds a pair to sums that averaged makes means of.
void add(const Pair& pair, LagBin& sums)
{
    sums.meanLag += pair.lag;
    sums.semivariance += pair.squaredDifference;
    sums.modelValue += pair.modelValue;
    ++sums.numPairs;
}

LagBin averaged(LagBin sums, double sill)
{
    const auto count = static_cast<double>(sums.numPairs);
    sums.meanLag /= count;
    sums.semivariance *= 0.5 / count;
    sums.modelValue *= sill / count;
    return sums;
}

double sillOf(const ModelParts& parts, const BinningOptions& options)
{
    return options.sill ? *options.sill : varianceOfPoints(parts, options.outputVar);
}

} // namespace

double defaultMaxLag(const ModelParts& parts)
{
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    double squaredDiagonal = 0.0;
    for (std::size_t v = 0; v < normalizers.size(); ++v)
    {
        const double range = (parts.getMaxValues()[v] - parts.getMinValues()[v]) * normalizers[v].getScale();
        squaredDiagonal += range * range;
    }
    return 0.5 * std::sqrt(squaredDiagonal);
}

std::optional<double> commonScale(const ModelParts& parts)
{
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    for (const Normalizer& normalizer : normalizers)
    {
        if (normalizer.getScale() != normalizers[0].getScale())
            return std::nullopt;
    }
    return normalizers[0].getScale();
}

BinnedSemivariogram binSemivariogram(const ModelParts& parts, const BinningOptions& options)
{
    const double maxLag = chooseMaxLag(parts, options);
    const Partners partners = choosePartners(parts, options, maxLag);
    const double width = maxLag / static_cast<double>(options.numLags);
    std::vector<LagBin> bins(options.numLags); // sums until the end
    visitPairs(parts, partners, options, maxLag,
               [&](const Pair& pair)
               {
                   const auto b = std::min(static_cast<std::size_t>(pair.lag / width), options.numLags - 1);
                   add(pair, bins[b]);
               });

    BinnedSemivariogram result{{}, parts.getPoints().size(), partners.points.output.size()};
    const double sill = sillOf(parts, options);
    for (std::size_t b = 0; b < options.numLags; ++b)
    {
        if (bins[b].numPairs == 0)
            continue;
        result.bins.push_back(averaged(bins[b], sill));
        result.bins.back().lowerLag = static_cast<double>(b) * width;
        result.bins.back().upperLag = b + 1 == options.numLags ? maxLag : static_cast<double>(b + 1) * width;
    }
    return result;
}

BinnedSemivariogram semivariogramAtEveryLag(const ModelParts& parts, const BinningOptions& options)
{
    constexpr double sameLag = 1e-6; // of the largest lag
    const double maxLag = chooseMaxLag(parts, options);
    const Partners partners = choosePartners(parts, options, maxLag);
    std::vector<Pair> pairs;
    visitPairs(parts, partners, options, maxLag, [&](const Pair& pair) { pairs.push_back(pair); });
    // By all three, so that sums do not depend on how equal lags are ordered.
    std::sort(pairs.begin(), pairs.end(),
              [](const Pair& a, const Pair& b) {
                  return std::tie(a.lag, a.squaredDifference, a.modelValue) <
                         std::tie(b.lag, b.squaredDifference, b.modelValue);
              });

    BinnedSemivariogram result{{}, parts.getPoints().size(), partners.points.output.size()};
    const double sill = sillOf(parts, options);
    for (std::size_t first = 0; first < pairs.size();)
    {
        LagBin sums;
        std::size_t end = first;
        for (; end < pairs.size() && pairs[end].lag - pairs[first].lag <= sameLag * maxLag; ++end)
            add(pairs[end], sums);
        result.bins.push_back(averaged(sums, sill));
        result.bins.back().lowerLag = pairs[first].lag;
        result.bins.back().upperLag = pairs[end - 1].lag;
        first = end;
    }
    return result;
}

} // namespace fenn::analysis
