#include "surrogatemodel_kriging/NearestNeighborSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace
{

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

int writeNearest(const std::vector<NearestNeighborSearch::Candidate>& ranked, int maxPts,
                 std::vector<SourcePointRef>& nearestPts)
{
    const std::size_t count = std::min(ranked.size(), toIndex(maxPts));
    for (std::size_t i = 0; i < count; ++i)
        nearestPts[i] = {ranked[i].block, ranked[i].point};
    return static_cast<int>(count);
}

} // namespace

NearestNeighborSearch::Buffers::Buffers(int maxPts) : candidates(toIndex(maxPts)) {}

NearestNeighborSearch::NearestNeighborSearch(const SurrogateModelDataBlock* dataBlock_, int numInputVars_,
                                             int numBlocks_)
    : dataBlock(dataBlock_), numInputVars(numInputVars_), numBlocks(numBlocks_)
{
}

NearestNeighborSearch::~NearestNeighborSearch() = default;

int NearestNeighborSearch::findNearestPts(const std::vector<double>& target, int maxPts,
                                          std::vector<SourcePointRef>& nearestPts) const
{
    if (maxPts < 1)
        return 0;
    // More than there are need no buffers.
    Buffers buffers(totalNumPts() > maxPts ? maxPts : 1);
    return findNearestPts(target, maxPts, nearestPts, buffers);
}

int NearestNeighborSearch::findNearestPts(const std::vector<double>& target, int maxPts,
                                          std::vector<SourcePointRef>& nearestPts, Buffers& buffers) const
{
    std::vector<Candidate>& ranked = buffers.ranked;
    ranked.clear();
    if (totalNumPts() > maxPts && collectCandidates(target, maxPts, buffers.candidates))
    {
        for (std::size_t i = 0; i < buffers.candidates.size(); ++i)
        {
            const std::size_t position = buffers.candidates.getPosition(i);
            ranked.push_back({0.0, static_cast<int>(position >> 32), static_cast<int>(position & 0xffffffffU)});
        }
        return rankNearest(target, maxPts, nearestPts, buffers);
    }
    rankEveryPoint(target, toIndex(maxPts), ranked);
    return writeNearest(ranked, maxPts, nearestPts);
}

int NearestNeighborSearch::rankNearest(const std::vector<double>& target, int maxPts,
                                       std::vector<SourcePointRef>& nearestPts, Buffers& buffers) const
{
    const double scale = getScale();
    for (Candidate& candidate : buffers.ranked)
        candidate.distance = squaredDistance(target, candidate.block, candidate.point, scale);
    std::sort(buffers.ranked.begin(), buffers.ranked.end());
    return writeNearest(buffers.ranked, maxPts, nearestPts);
}

double NearestNeighborSearch::squaredDistance(const std::vector<double>& target, int block, int point,
                                              double scale) const
{
    const std::vector<double*>& inputs = dataBlock->getInputValueArraysForBlock(block);
    double sum = 0.0;
    for (std::size_t j = 0; j < toIndex(numInputVars); ++j)
    {
        const double difference = (target[j] - inputs[j][point]) * scale;
        sum += difference * difference;
    }
    return sum;
}

double NearestNeighborSearch::getScale() const
{
    // DELIBERATE: the scale of input variable 0 serves every variable. Which points a local system is built from relies
    // on it. Test: NearestNeighborSearchTest.EveryVariableUsesTheScaleOfTheFirst
    const std::vector<Normalizer>& normalizers = dataBlock->getInputVarNormalizers();
    return normalizers.empty() ? 0.0 : normalizers[0].getScale(); // without input variables all points coincide
}

bool NearestNeighborSearch::isOrdinaryScale(double scale)
{
    return std::fabs(scale) >= 0x1p-200 && std::fabs(scale) <= 0x1p200;
}

/// False when distances without the scale cannot tell: the points must then be compared one by one.
bool NearestNeighborSearch::collectCandidates(const std::vector<double>& target, int maxPts,
                                              fenn::NearestCandidates<double>& candidates) const
{
    if (!isOrdinaryScale(getScale()))
        return false;
    // Each of the two distances has at most numInputVars + 5 roundings of 2^-53 in its square, which its root halves.
    // What underflow adds is below 2^-520 in the unscaled distance and, divided by the scale, below 2^-320 in the
    // other. Up to the limit no square overflows, scaled or not.
    const auto numPts = static_cast<std::size_t>(totalNumPts());
    candidates.begin(numPts, toIndex(numBlocks), 0x1p500, (numInputVars + 5) * 0x1p-52, 0x1p-250);
    const auto numVars = toIndex(numInputVars);
    const auto coordsOf = [&](int b)
    {
        return dataBlock->getInputValueArraysForBlock(b).data();
    };
    const auto numPtsOf = [&](int b)
    {
        return toIndex(std::max(dataBlock->getNumPtsInBlock(b), 0));
    };
    for (int b = 0; b < numBlocks; ++b)
        candidates.measure(coordsOf(b), numVars, numPtsOf(b), target.data());

    // Blanked points count among the measured ones: the more there are, the more must be looked at.
    const auto numUnblanked = toIndex(std::max(dataBlock->getTotalNumUnblankedPoints(), 1));
    for (std::size_t rank = toIndex(maxPts) * numPts / numUnblanked + 1;; rank *= 4)
    {
        const bool isGuess = candidates.startCollection(rank);
        for (int b = 0; b < numBlocks; ++b)
        {
            const std::vector<bool>& isUnblanked = dataBlock->getIncludePtArrayForBlock(b);
            const auto blockBits = static_cast<std::uint64_t>(b) << 32;
            const auto admit = [&](std::uint64_t& position)
            {
                const bool takesPart = isUnblanked[position];
                position |= blockBits;
                return takesPart;
            };
            if (!candidates.collect(coordsOf(b), numVars, numPtsOf(b), target.data(), admit))
                return false;
        }
        if (candidates.isComplete())
            return true;
        if (!isGuess)
            return false;
    }
}

/// The definition: every point by the distance that counts, the best kept in a heap.
void NearestNeighborSearch::rankEveryPoint(const std::vector<double>& target, std::size_t maxPts,
                                           std::vector<Candidate>& ranked) const
{
    const double scale = getScale();
    double bound = std::numeric_limits<double>::max(); // ranked: the best so far, the farthest in front
    for (int b = 0; b < numBlocks; ++b)
    {
        const std::vector<bool>& isUnblanked = dataBlock->getIncludePtArrayForBlock(b);
        for (int p = 0; p < dataBlock->getNumPtsInBlock(b); ++p)
        {
            if (!isUnblanked[toIndex(p)])
                continue;
            const double distance = squaredDistance(target, b, p, scale);
            // DELIBERATE: strict. Of equally distant points the one met first stays.
            // Test: NearestNeighborSearchTest.OfEquallyDistantPointsTheOneMetFirstIsKept
            if (!(distance < bound))
                continue;
            ranked.push_back({distance, b, p});
            std::push_heap(ranked.begin(), ranked.end());
            if (ranked.size() > maxPts)
            {
                std::pop_heap(ranked.begin(), ranked.end());
                ranked.pop_back();
            }
            if (ranked.size() == maxPts)
                bound = ranked.front().distance;
        }
    }
    std::sort_heap(ranked.begin(), ranked.end());
}

std::int64_t NearestNeighborSearch::totalNumPts() const
{
    std::int64_t total = 0;
    for (int b = 0; b < numBlocks; ++b)
        total += std::max(dataBlock->getNumPtsInBlock(b), 0);
    return total;
}
