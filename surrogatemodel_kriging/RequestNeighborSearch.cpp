#include "surrogatemodel_kriging/RequestNeighborSearch.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn
{

namespace
{

// From here on the copy has paid for itself: making it costs about as much as it saves on this many targets.
constexpr int minTargets = 32;

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// The smallest and the largest finite value, in several chains at once; infinities where there is none. isIncluded(p)
/// tells whether value p counts.
template <typename IsIncluded>
std::pair<double, double> finiteRange(const double* values, std::size_t count, IsIncluded isIncluded)
{
    constexpr std::size_t numChains = 8;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double largest = std::numeric_limits<double>::max();
    double low[numChains + 1];
    double high[numChains + 1];
    std::fill(std::begin(low), std::end(low), infinity);
    std::fill(std::begin(high), std::end(high), -infinity);
    const auto widen = [&](std::size_t chain, std::size_t p)
    {
        const double value = values[p];
        const bool counts = std::fabs(value) <= largest && isIncluded(p);
        low[chain] = counts && value < low[chain] ? value : low[chain];
        high[chain] = counts && value > high[chain] ? value : high[chain];
    };
    std::size_t p = 0;
    for (; count - p >= numChains; p += numChains)
    {
        for (std::size_t chain = 0; chain < numChains; ++chain)
            widen(chain, p + chain);
    }
    for (; p < count; ++p)
        widen(numChains, p);
    return {*std::min_element(std::begin(low), std::end(low)), *std::max_element(std::begin(high), std::end(high))};
}

} // namespace

RequestNeighborSearch::RequestNeighborSearch(const SurrogateModelDataBlock& dataBlock_,
                                             const NearestNeighborSearch& search_, int numNearest_, int numTargets)
    : dataBlock(&dataBlock_),
      search(&search_),
      numNearest(numNearest_),
      buffers(numNearest_),
      candidates(toIndex(numNearest_))
{
    if (numTargets >= minTargets && NearestNeighborSearch::isOrdinaryScale(search->getScale()))
        gather();
}

int RequestNeighborSearch::findNearestPts(const std::vector<double>& target, std::vector<SourcePointRef>& nearestPts)
{
    if (!isGathered || !collectCandidates(target))
        return search->findNearestPts(target, numNearest, nearestPts, buffers);

    buffers.ranked.clear();
    for (std::size_t i = 0; i < candidates.size(); ++i)
    {
        const std::size_t position = candidates.getPosition(i);
        const auto next = std::upper_bound(blockStarts.begin(), blockStarts.end(), position);
        const auto block = static_cast<int>(next - blockStarts.begin() - 1);
        buffers.ranked.push_back({0.0, block, static_cast<int>(position - *(next - 1))});
    }
    return search->rankNearest(target, numNearest, nearestPts, buffers);
}

/// Calls visit(variable, values, count, index of the first among all points, flags) for every array of every block.
template <typename Visit>
void RequestNeighborSearch::forEachArray(Visit visit) const
{
    for (std::size_t b = 0; b < blockStarts.size(); ++b)
    {
        const auto block = static_cast<int>(b);
        const std::size_t count = toIndex(std::max(dataBlock->getNumPtsInBlock(block), 0));
        const std::vector<double*>& inputs = dataBlock->getInputValueArraysForBlock(block);
        for (std::size_t v = 0; count > 0 && v < inputs.size(); ++v)
            visit(v, inputs[v], count, blockStarts[b], dataBlock->getIncludePtArrayForBlock(block));
    }
}

void RequestNeighborSearch::gather()
{
    const auto numVars = toIndex(dataBlock->getNumInputVars());
    for (int b = 0; b < dataBlock->getNumBlocks(); ++b)
    {
        blockStarts.push_back(numPts);
        numPts += toIndex(std::max(dataBlock->getNumPtsInBlock(b), 0));
    }
    if (numVars == 0 || numPts == 0 || numPts > std::numeric_limits<std::uint32_t>::max())
        return;

    // The box of the finite coordinates. Points with any other are never found.
    const bool hasBlankedPts = toIndex(dataBlock->getTotalNumUnblankedPoints()) != numPts;
    std::vector<double> low(numVars, std::numeric_limits<double>::infinity());
    std::vector<double> high(numVars, -std::numeric_limits<double>::infinity());
    forEachArray(
        [&](std::size_t v, const double* values, std::size_t count, std::size_t /*start*/,
            const std::vector<bool>& isUnblanked)
        {
            const auto range = hasBlankedPts ? finiteRange(values, count, [&](std::size_t p) { return isUnblanked[p]; })
                                             : finiteRange(values, count, [](std::size_t) { return true; });
            low[v] = std::min(low[v], range.first);
            high[v] = std::max(high[v], range.second);
        });
    double halfRange = 0.0;
    origin.resize(numVars);
    for (std::size_t v = 0; v < numVars; ++v)
    {
        origin[v] = low[v] * 0.5 + high[v] * 0.5;
        halfRange = std::max({halfRange, high[v] - origin[v], origin[v] - low[v]});
    }
    if (!(halfRange >= 0x1p-190 && halfRange <= 0x1p190))
        return;
    int exponent = 0;
    std::frexp(halfRange, &exponent);
    unit = std::ldexp(1.0, -exponent);

    gathered.assign(numVars, std::vector<float>(numPts));
    forEachArray(
        [&](std::size_t v, const double* values, std::size_t count, std::size_t start,
            const std::vector<bool>& isUnblanked)
        {
            float* out = gathered[v].data() + start;
            const double middle = origin[v];
            const double factor = unit;
            for (std::size_t p = 0; p < count; ++p)
                out[p] = static_cast<float>((values[p] - middle) * factor);
            for (std::size_t p = 0; hasBlankedPts && p < count; ++p)
                out[p] = isUnblanked[p] ? out[p] : std::numeric_limits<float>::quiet_NaN();
        });
    for (const std::vector<float>& variable : gathered)
        coords.push_back(variable.data());
    floatTarget.resize(numVars);
    isGathered = true;
}

/// False when single precision cannot tell.
bool RequestNeighborSearch::collectCandidates(const std::vector<double>& target)
{
    const std::size_t numVars = gathered.size();
    for (std::size_t v = 0; v < numVars; ++v)
    {
        const double coordinate = (target[v] - origin[v]) * unit;
        if (!(std::fabs(coordinate) <= 2.0))
            return false;
        floatTarget[v] = static_cast<float>(coordinate);
    }
    // Absolute error, per variable: half a unit in the last place of a coordinate up to 1 (2^-25) and of the target's
    // up to 2 (2^-24), and far less from their differences with the origin. Relative error: numVars + 2 roundings of
    // 2^-24 in the square, which its root halves; those of the distances that count are of 2^-53. What underflows there
    // is below 2^-130 in this unit. An infinite coordinate stays one or becomes NaN: its q is never within a bound.
    const auto numRoundings = static_cast<double>(numVars + 5);
    candidates.begin(numPts, 1, std::numeric_limits<float>::max() / 4, numRoundings * 0x1p-23,
                     std::sqrt(static_cast<double>(numVars)) * 0x1p-23);
    candidates.measure(coords.data(), numVars, numPts, floatTarget.data());
    const auto admit = [](std::uint32_t)
    {
        return true;
    };
    for (std::size_t rank = toIndex(numNearest);; rank *= 4)
    {
        const bool isGuess = candidates.startCollection(rank);
        if (!candidates.collect(coords.data(), numVars, numPts, floatTarget.data(), admit))
            return false;
        if (candidates.isComplete())
            return true;
        if (!isGuess)
            return false;
    }
}

} // namespace fenn
