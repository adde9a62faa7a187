#include "surrogatemodel_kriging/kernels/PointTreeKernels.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/PointTreeKernels.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

#ifndef FENN_KERNELS_POINT_TREE_ROOM
#define FENN_KERNELS_POINT_TREE_ROOM
namespace fenn::kernels
{

// DELIBERATE: below the largest number, which is no distance of a neighbour, as in the exhaustive search.
// Test: PointIndexTest.ADistanceOfTheLargestNumberIsNotFound
constexpr double farthestFound = 0x1.ffffffffffffep1023;

/// Up to so many candidates are ranked by comparing each with all others.
constexpr std::size_t mostRanked = 128;

struct Candidate
{
    double distance;
    double place;
    double position;

    bool operator<(const Candidate& other) const
    {
        return distance != other.distance ? distance < other.distance : position < other.position;
    }
};

/// Candidates that are kept before the farthest are sorted out: some more than wanted, so that it is seldom done.
inline std::size_t candidateRoom(std::size_t maxPts)
{
    return maxPts + std::max(maxPts / 2, 2 * PointTree::leafSize);
}

inline std::size_t roundUpToLine(std::size_t count)
{
    return (count + 7) / 8 * 8;
}

/// Behind the candidates there is room for a leaf that is added before they are counted, and for a whole vector.
inline std::size_t candidateArraySize(std::size_t maxPts)
{
    return roundUpToLine(candidateRoom(maxPts) + PointTree::leafSize + 8);
}

} // namespace fenn::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;

constexpr std::size_t kLanes = hn::MaxLanes(Tag());
static_assert(PointTree::leafSize % kLanes == 0);

/// One search. kNumVars: the number of variables, or 0 for any.
template <std::size_t kNumVars>
class TreeSearch
{
public:
    TreeSearch(const PointTree& tree_, const double* target_, std::size_t maxPts_, double* workspace)
        : tree(tree_),
          numVars(kNumVars > 0 ? kNumVars : tree_.numVars),
          target(target_),
          maxPts(maxPts_),
          room(candidateRoom(maxPts_)),
          distances(workspace),
          places(distances + candidateArraySize(maxPts_)),
          positions(places + candidateArraySize(maxPts_)),
          offsets(positions + candidateArraySize(maxPts_)),
          candidates(reinterpret_cast<Candidate*>(offsets + roundUpToLine((PointTree::mostLevels + 1) * numVars)))
    {
    }

    std::size_t run(double* nearestDistances, std::uint32_t* nearestPlaces)
    {
        visitLeaves();
        sortOut();
        return writeInOrder(nearestDistances, nearestPlaces);
    }

private:
    /// Distances along each variable that no point of a subtree lies nearer. Their sum of squares is made by the very
    /// operations of a point's distance, none of which has a smaller result for greater operands: with all roundings
    /// and overflows no point of the subtree has a smaller distance. A few variables stand in the object itself, which
    /// the compiler keeps in registers; others in the workspace.
    class Offsets
    {
    public:
        void setFirst(double* memory, std::size_t numVars_)
        {
            if constexpr (kNumVars == 0)
                values = memory;
            std::fill_n(data(), numVars_, 0.0);
        }

        /// Those of the farther part of a subtree, which is at least this far away along one variable.
        void setFarther(const Offsets& whole, std::size_t variable, double distance, double* memory,
                        std::size_t numVars_)
        {
            if constexpr (kNumVars == 0)
                values = memory;
            for (std::size_t v = 0; v < numVars_; ++v)
                data()[v] = v == variable ? std::max(whole.data()[v], distance) : whole.data()[v];
        }

        void copyFrom(const Offsets& other, std::size_t numVars_)
        {
            std::copy_n(other.data(), numVars_, data());
        }

        double calcSquaredDistance(std::size_t numVars_) const
        {
            double sum = 0.0;
            for (std::size_t v = 0; v < numVars_; ++v)
                sum += data()[v] * data()[v];
            return sum;
        }

    private:
        double* data()
        {
            if constexpr (kNumVars == 0)
                return values;
            else
                return values.data();
        }
        const double* data() const
        {
            return const_cast<Offsets*>(this)->data();
        }

        std::conditional_t<kNumVars == 0, double*, std::array<double, kNumVars>> values;
    };

    /// Leaves first to end - 1, no nearer than the root of this squared distance.
    struct Subtree
    {
        std::size_t first;
        std::size_t end;
        double distance;
        Offsets offsets;
    };

    double* memoryOf(std::size_t level) const
    {
        return offsets + level * numVars;
    }

    /// Nearer subtrees first; those that are put off wait in a stack.
    void visitLeaves()
    {
        Subtree waiting[PointTree::mostLevels];
        std::size_t numWaiting = 0;
        Subtree subtree{0, (tree.numPts - 1) / PointTree::leafSize + 1, 0.0, {}};
        subtree.offsets.setFirst(memoryOf(PointTree::mostLevels), numVars);
        for (;;)
        {
            while (subtree.end - subtree.first > 1)
            {
                const std::size_t middle = subtree.first + (subtree.end - subtree.first) / 2;
                const PointTree::Node& node = tree.nodes[middle];
                if (node.isOnePlace)
                {
                    scanAllButLast(subtree);
                    break;
                }
                const double fromLower = target[node.variable] - node.lowerEnd;
                const double toUpper = node.upperBegin - target[node.variable];
                const bool isLower = fromLower < toUpper;
                Subtree& farther = waiting[numWaiting];
                farther.offsets.setFarther(subtree.offsets, node.variable, isLower ? toUpper : fromLower,
                                           memoryOf(numWaiting), numVars);
                farther.distance = farther.offsets.calcSquaredDistance(numVars);
                farther.first = isLower ? middle : subtree.first;
                farther.end = isLower ? subtree.end : middle;
                numWaiting += farther.distance <= bound ? 1 : 0;
                subtree.first = isLower ? subtree.first : middle;
                subtree.end = isLower ? middle : subtree.end;
            }
            scanLeaf(subtree.first);
            do
            {
                if (numWaiting == 0)
                    return;
                --numWaiting;
            } while (waiting[numWaiting].distance > bound);
            subtree.first = waiting[numWaiting].first;
            subtree.end = waiting[numWaiting].end;
            subtree.offsets.copyFrom(waiting[numWaiting].offsets, numVars);
        }
    }

    /// Of points at one place, in the order of their positions: the first maxPts are equally far and before the others,
    /// which no search for maxPts points finds. The last of their leaves is left as the subtree.
    HWY_NOINLINE void scanAllButLast(Subtree& subtree)
    {
        const std::size_t numLeaves = (maxPts + PointTree::leafSize - 1) / PointTree::leafSize;
        const std::size_t last = std::min(subtree.end, subtree.first + numLeaves) - 1;
        for (std::size_t leaf = subtree.first; leaf < last; ++leaf)
            scanLeaf(leaf);
        subtree.first = last;
    }

    /// Points within the bound become candidates.
    HWY_INLINE void scanLeaf(std::size_t leaf)
    {
        const Tag d;
        const double* coordinates = tree.coordinates + leaf * numVars * PointTree::leafSize;
        HWY_ALIGN double found[PointTree::leafSize];
        Vec least = hn::Set(d, std::numeric_limits<double>::infinity());
        FENN_UNROLL
        for (std::size_t i = 0; i < PointTree::leafSize; i += kLanes)
        {
            Vec sum = hn::Zero(d);
            for (std::size_t v = 0; v < numVars; ++v)
            {
                const Vec difference =
                    hn::Sub(hn::Set(d, target[v]), hn::Load(d, coordinates + v * PointTree::leafSize + i));
                sum = hn::Add(sum, hn::Mul(difference, difference));
            }
            least = hn::Min(least, sum);
            hn::Store(sum, d, found + i);
        }
        if (hn::AllFalse(d, hn::Le(least, hn::Set(d, bound))))
            return;
        const auto firstPlace = static_cast<double>(leaf * PointTree::leafSize);
        // Written one behind the other and counted where near: no branch depends on which points are.
        std::size_t count = numCandidates;
        for (std::size_t i = 0; i < PointTree::leafSize; ++i)
        {
            distances[count] = found[i];
            places[count] = firstPlace + static_cast<double>(i);
            count += found[i] <= bound ? 1 : 0;
        }
        numCandidates = count;
        const bool isFirst = bound == farthestFound && numCandidates >= maxPts;
        if (isFirst || numCandidates > room)
            sortOut();
    }

    /// Lowers the bound and forgets the candidates beyond.
    void sortOut()
    {
        if (numCandidates < maxPts)
            return;
        bound = closeBound();
        keepWithinBound();
        if (numCandidates > maxPts + maxPts / 4 + PointTree::leafSize)
            sortOutTies();
    }

    /// Completes the last vector of candidates.
    void fillUp(double distance) const
    {
        hn::StoreU(hn::Set(Tag(), distance), Tag(), distances + numCandidates);
    }

    double farthestCandidate() const
    {
        fillUp(0.0);
        const Tag d;
        Vec farthest = hn::Zero(d);
        for (std::size_t i = 0; i < numCandidates; i += kLanes)
            farthest = hn::Max(farthest, hn::LoadU(d, distances + i));
        return hn::GetLane(hn::MaxOfLanes(d, farthest));
    }

    std::size_t countWithin(double value) const
    {
        const Tag d;
        const Vec most = hn::Set(d, value);
        std::size_t count = 0;
        for (std::size_t i = 0; i < numCandidates; i += kLanes)
            count += hn::CountTrue(d, hn::Le(hn::LoadU(d, distances + i), most));
        return count;
    }

    /// A value that at least maxPts candidates do not exceed and, unless many are equal, few more. In two dimensions
    /// squared distances are spread evenly: the first guess is then close.
    double closeBound() const
    {
        double low = 0.0; // fewer than maxPts candidates are within, or it is zero
        double high = bound < farthestFound ? bound : farthestCandidate();
        fillUp(std::numeric_limits<double>::infinity());
        std::size_t numLow = 0;
        std::size_t numHigh = numCandidates;
        const std::size_t enough = maxPts + maxPts / 16 + 1;
        for (int step = 0; step < 48 && numHigh > enough; ++step)
        {
            const double share =
                step % 3 == 2 ? 0.5
                              : (static_cast<double>(maxPts - numLow) + 0.5) / static_cast<double>(numHigh - numLow);
            const double guess = low + (high - low) * share;
            if (!(guess > low && guess < high))
                break;
            const std::size_t count = countWithin(guess);
            (count >= maxPts ? high : low) = guess;
            (count >= maxPts ? numHigh : numLow) = count;
        }
        return high;
    }

    void keepWithinBound()
    {
        std::size_t numKept = 0;
        for (std::size_t i = 0; i < numCandidates; ++i)
        {
            const double distance = distances[i];
            distances[numKept] = distance;
            places[numKept] = places[i];
            numKept += distance <= bound ? 1 : 0;
        }
        numCandidates = numKept;
    }

    /// Many candidates at the bound: of them those of the lowest positions are kept.
    HWY_NOINLINE void sortOutTies()
    {
        Candidate* const some = gatherCandidates();
        std::nth_element(some, some + maxPts - 1, some + numCandidates);
        numCandidates = maxPts;
        for (std::size_t i = 0; i < numCandidates; ++i)
        {
            distances[i] = some[i].distance;
            places[i] = some[i].place;
        }
    }

    Candidate* gatherCandidates() const
    {
        for (std::size_t i = 0; i < numCandidates; ++i)
            candidates[i] = {distances[i], places[i], positionOf(i)};
        return candidates;
    }

    double positionOf(std::size_t i) const
    {
        return tree.positions[static_cast<std::size_t>(places[i])];
    }

    std::size_t writeInOrder(double* nearestDistances, std::uint32_t* nearestPlaces) const
    {
        const std::size_t count = std::min(numCandidates, maxPts);
        const auto write = [=](std::size_t rank, double distance, double place)
        {
            nearestDistances[rank] = distance;
            nearestPlaces[rank] = static_cast<std::uint32_t>(place);
        };
        if (numCandidates > mostRanked)
        {
            Candidate* const some = gatherCandidates();
            std::sort(some, some + numCandidates);
            for (std::size_t i = 0; i < count; ++i)
                write(i, some[i].distance, some[i].place);
            return count;
        }
        // The rank of each is the number of those before it: no branch depends on the order.
        fillUp(std::numeric_limits<double>::infinity());
        for (std::size_t i = 0; i < numCandidates; ++i)
            positions[i] = positionOf(i);
        for (std::size_t i = 0; i < numCandidates; ++i)
        {
            const std::size_t rank = countNearer(i);
            if (rank < count)
                write(rank, distances[i], places[i]);
        }
        return count;
    }

    HWY_INLINE std::size_t countNearer(std::size_t i) const
    {
        const Tag d;
        const Vec distance = hn::Set(d, distances[i]);
        const Vec position = hn::Set(d, positions[i]);
        std::size_t count = 0;
        for (std::size_t k = 0; k < numCandidates; k += kLanes)
        {
            const Vec others = hn::LoadU(d, distances + k);
            const auto isTie = hn::And(hn::Eq(others, distance), hn::Lt(hn::LoadU(d, positions + k), position));
            count += hn::CountTrue(d, hn::Or(hn::Lt(others, distance), isTie));
        }
        return count;
    }

    const PointTree& tree;
    const std::size_t numVars;
    const double* const target;
    const std::size_t maxPts;
    const std::size_t room;
    double* const distances; // of the candidates
    double* const places;
    double* const positions;
    double* const offsets;
    Candidate* const candidates;
    std::size_t numCandidates = 0;
    double bound = farthestFound; // no point farther away is wanted
};

std::size_t findNearestInTree(const PointTree& tree, const double* target, std::size_t maxPts, double* distances,
                              std::uint32_t* places, double* workspace)
{
    switch (tree.numVars)
    {
    case 1:
        return TreeSearch<1>(tree, target, maxPts, workspace).run(distances, places);
    case 2:
        return TreeSearch<2>(tree, target, maxPts, workspace).run(distances, places);
    case 3:
        return TreeSearch<3>(tree, target, maxPts, workspace).run(distances, places);
    default:
        return TreeSearch<0>(tree, target, maxPts, workspace).run(distances, places);
    }
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(findNearestInTree);

std::size_t treeSearchWorkspaceSize(std::size_t numVars, std::size_t maxPts)
{
    static_assert(sizeof(Candidate) % sizeof(double) == 0);
    return 3 * candidateArraySize(maxPts) + roundUpToLine((PointTree::mostLevels + 1) * numVars) +
           candidateArraySize(maxPts) * (sizeof(Candidate) / sizeof(double));
}

std::size_t findNearestInTree(const PointTree& tree, const double* target, std::size_t maxPts, double* distances,
                              std::uint32_t* places, double* workspace)
{
    return HWY_DYNAMIC_DISPATCH(findNearestInTree)(tree, target, maxPts, distances, places, workspace);
}

} // namespace fenn::kernels
#endif
