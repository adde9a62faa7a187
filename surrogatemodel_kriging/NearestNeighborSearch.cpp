#include "surrogatemodel_kriging/NearestNeighborSearch.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

namespace
{

using fenn::kernels::Candidate;
using fenn::kernels::minimaPerGroup;

// With more groups their minima no longer fit into the cache: larger blocks have larger groups instead.
constexpr std::size_t maxNumGroups = 1024;

// DELIBERATE: the largest double itself is too far. Test:
// NearestNeighborSearchTest.APointAtTheLargestFiniteDistanceIsNeverFound
constexpr double largestDistance = 0x1.ffffffffffffep1023;

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// DELIBERATE: ties go to the point that stands first, by block and index. Which points a local system is built from
/// relies on it. Tests: NearestNeighborSearchTest.OfEquallyDistantPointsTheOneMetFirstIsKept,
/// OfEquallyDistantPointsTheOneOfTheLowerBlockIsKept
struct IsNearer // a function would not be inlined into the sort
{
    bool operator()(const Candidate& a, const Candidate& b) const
    {
        if (a.distance != b.distance)
            return a.distance < b.distance;
        return a.block != b.block ? a.block < b.block : a.point < b.point;
    }
};

/// The scan for one target. The smallest distances in groups of points give a bound within which about as many points
/// lie as are wanted. The groups that have points within the bound are then searched for them; where these are too few,
/// the bound is raised.
class Scan
{
public:
    Scan(const SurrogateModelDataBlock& dataBlock_, int numInputVars, int numBlocks_, const double* target)
        : dataBlock(dataBlock_), numBlocks(numBlocks_)
    {
        const std::vector<Normalizer>& normalizers = dataBlock.getInputVarNormalizers();
        points.target = target;
        // DELIBERATE: the scale of input variable 0 serves every variable. Which points a local system is built from
        // relies on it. Test: NearestNeighborSearchTest.EveryVariableUsesTheScaleOfTheFirst
        points.scale = normalizers.empty() ? 0.0 : normalizers[0].getScale(); // without variables all points coincide
        points.numVars = toIndex(numInputVars);
        for (int b = 0; b < numBlocks; ++b)
            numPts += toIndex(std::max(dataBlock.getNumPtsInBlock(b), 0));
    }

    /// Writes the at most maxPts nearest points, nearest first, and returns their number. Once for each object.
    int findNearest(int maxPts, std::vector<SourcePointRef>& nearestPts)
    {
        numNearest = std::min(toIndex(maxPts), numPts);
        makeRoom();
        forEachBlock([this](int) { fenn::kernels::groupMinima(points, minima); });
        // Blanked points count in the minima too: the more there are, the more points must be within the bound.
        const auto numUnblanked = toIndex(std::max(dataBlock.getTotalNumUnblankedPoints(), 1));
        std::size_t rank = numNearest * numPts / numUnblanked + 1;
        for (; rank <= folded.size() / 2 && list.count < numNearest; rank *= 4)
            collect(fenn::kernels::boundOfNearest(folded.data(), folded.size(), rank));
        if (list.count < numNearest)
            collect(largestDistance);
        std::sort(list.candidates, list.candidates + list.count, IsNearer());
        const std::size_t count = std::min(list.count, numNearest);
        for (std::size_t i = 0; i < count; ++i)
            nearestPts[i] = {list.candidates[i].block, list.candidates[i].point};
        return static_cast<int>(count);
    }

private:
    /// Of a block without points nothing is read: it need not have arrays.
    template <typename Visit>
    void forEachBlock(Visit visit)
    {
        std::size_t firstGroup = 0;
        for (int b = 0; b < numBlocks; ++b)
        {
            if (dataBlock.getNumPtsInBlock(b) < 1)
                continue;
            points.numPts = toIndex(dataBlock.getNumPtsInBlock(b));
            points.coords = dataBlock.getInputValueArraysForBlock(b).data();
            minima.ofGroups = minimaStore.get() + firstGroup * minimaPerGroup;
            minima.firstFolded = firstGroup % minima.numFolded;
            visit(b);
            firstGroup += (points.numPts + minima.groupSize - 1) / minima.groupSize;
        }
    }

    void makeRoom()
    {
        while (numPts / minima.groupSize > maxNumGroups)
            minima.groupSize *= 2;
        const std::size_t maxGroups = numPts / minima.groupSize + toIndex(numBlocks);
        minimaStore.reset(new double[maxGroups * minimaPerGroup]); // a vector would write zeros, to no use
        // Eight times as many minima as points are asked for: then few of those points share one.
        minima.numFolded = std::min(maxGroups, numNearest / 2 + 2);
        folded.assign(minima.numFolded * minimaPerGroup, std::numeric_limits<double>::infinity());
        minima.folded = folded.data();
        list.limit = 3 * numNearest + 32;
        candidateStore.reset(new Candidate[list.limit + minima.groupSize + 1]);
        list.candidates = candidateStore.get();
    }

    /// Collects the unblanked points within the bound; where there are too many for the list, the nearest of them.
    void collect(double bound)
    {
        double threshold = std::min(bound, largestDistance);
        list.count = 0;
        forEachBlock(
            [&](int b)
            {
                const std::vector<bool>& isUnblanked = dataBlock.getIncludePtArrayForBlock(b);
                for (std::size_t first = 0; first < points.numPts;)
                {
                    Candidate* const collected = list.candidates + list.count;
                    first = fenn::kernels::collectPtsWithin(points, minima, threshold, first, b, list);
                    Candidate* const end =
                        std::remove_if(collected, list.candidates + list.count,
                                       [&](const Candidate& point) { return !isUnblanked[toIndex(point.point)]; });
                    list.count = static_cast<std::size_t>(end - list.candidates);
                    if (list.count > list.limit)
                        threshold = keepNearest();
                }
            });
    }

    /// Drops all but the nearest points and returns the distance of the last of them.
    double keepNearest()
    {
        Candidate* const last = list.candidates + numNearest - 1;
        std::nth_element(list.candidates, last, list.candidates + list.count, IsNearer());
        list.count = numNearest;
        return last->distance;
    }

    const SurrogateModelDataBlock& dataBlock;
    int numBlocks;
    fenn::kernels::TargetAndPoints points{}; // of the block that is visited
    std::size_t numPts = 0;                  // of all blocks
    std::size_t numNearest = 0;

    fenn::kernels::GroupMinima minima{fenn::kernels::distanceGroup, nullptr, nullptr, 1, 0}; // likewise of one block
    std::unique_ptr<double[]> minimaStore;
    std::vector<double> folded;
    fenn::kernels::CandidateList list{};
    std::unique_ptr<Candidate[]> candidateStore;
};

} // namespace

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
    return Scan(*dataBlock, numInputVars, numBlocks, target.data()).findNearest(maxPts, nearestPts);
}
