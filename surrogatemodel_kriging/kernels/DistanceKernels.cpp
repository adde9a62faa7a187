#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/DistanceKernels.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using Vec = hn::Vec<D>;

constexpr std::size_t lanes = HWY_LANES(double);

/// Distances of points from the target. fixedNumVars: 0 when the number of variables is known at run time only; else
/// pointers and coordinates are held here, where the compiler keeps them in registers.
template <std::size_t fixedNumVars>
class Distances
{
public:
    explicit Distances(const TargetAndPoints& points)
        : coords(fixedNumVars != 0 ? localCoords : points.coords),
          target(fixedNumVars != 0 ? localTarget : points.target),
          numVars(points.numVars),
          scale(points.scale)
    {
        std::copy(points.coords, points.coords + fixedNumVars, localCoords);
        std::copy(points.target, points.target + fixedNumVars, localTarget);
    }

    Distances(const Distances& other) = delete;
    Distances& operator=(const Distances& other) = delete;

    /// Of the points from p on, one per lane.
    HWY_INLINE Vec from(std::size_t p) const
    {
        return distance([p](const double* values) { return hn::LoadU(D(), values + p); });
    }

    /// The same, only the first count of them being there.
    HWY_INLINE Vec ofRest(std::size_t p, std::size_t count) const
    {
        return distance(
            [p, count](const double* values)
            {
                HWY_ALIGN double padded[lanes] = {};
                std::copy(values + p, values + p + count, padded);
                return hn::Load(D(), padded);
            });
    }

    /// Of one point.
    HWY_INLINE double of(std::size_t p) const
    {
        const std::size_t size = fixedNumVars != 0 ? fixedNumVars : numVars;
        double sum = 0.0;
        for (std::size_t v = 0; v < size; ++v)
        {
            const double difference = (target[v] - coords[v][p]) * scale;
            sum += difference * difference;
        }
        return sum;
    }

private:
    template <class Load>
    HWY_INLINE Vec distance(const Load& load) const
    {
        const D d;
        const std::size_t size = fixedNumVars != 0 ? fixedNumVars : numVars;
        auto sum = hn::Zero(d);
        for (std::size_t v = 0; v < size; ++v)
        {
            const auto difference = hn::Mul(hn::Sub(hn::Set(d, target[v]), load(coords[v])), hn::Set(d, scale));
            const auto square = hn::Mul(difference, difference);
            // Adding the first one to zero would change nothing: a square is never a negative zero.
            sum = v == 0 ? square : hn::Add(sum, square);
        }
        return sum;
    }

    const double* localCoords[fixedNumVars + 1];
    double localTarget[fixedNumVars + 1];
    const double* const* coords;
    const double* target;
    std::size_t numVars;
    double scale;
};

/// The smaller one, and held when either is NaN: the order of the operands decides that, and not on every processor.
HWY_INLINE Vec smaller(Vec value, Vec held)
{
#if HWY_ARCH_X86
    return hn::Min(value, held);
#else
    return hn::IfThenElse(hn::Lt(value, held), value, held);
#endif
}

template <std::size_t fixedNumVars>
void minimaOf(const TargetAndPoints& points, const GroupMinima& minima)
{
    const D d;
    constexpr std::size_t numColumnVectors = minimaPerGroup / lanes;
    // At least two chains of comparisons, for one waits on its own result.
    constexpr std::size_t numHeld = numColumnVectors < 2 ? 2 : numColumnVectors;
    constexpr std::size_t step = numHeld * lanes;
    static_assert(minimaPerGroup % lanes == 0 && distanceGroup % step == 0, "whole vectors fill a group");

    const Distances<fixedNumVars> distances(points);
    double* ofGroup = minima.ofGroups;
    std::size_t entry = minima.firstFolded;
    for (std::size_t first = 0; first < points.numPts; first += minima.groupSize)
    {
        Vec held[numHeld];
        for (std::size_t i = 0; i < numHeld; ++i)
            held[i] = hn::Set(d, std::numeric_limits<double>::infinity());
        const std::size_t groupEnd = std::min(first + minima.groupSize, points.numPts);
        std::size_t p = first;
        for (; groupEnd - p >= step; p += step)
        {
            for (std::size_t i = 0; i < numHeld; ++i)
                held[i] = smaller(distances.from(p + i * lanes), held[i]);
        }
        for (std::size_t i = 0; p < groupEnd; p += lanes, ++i)
        {
            const std::size_t rest = groupEnd - p;
            const auto distance = rest >= lanes ? distances.from(p) : distances.ofRest(p, rest);
            const auto isPoint = hn::FirstN(d, std::min(rest, lanes));
            held[i] = smaller(hn::IfThenElse(isPoint, distance, held[i]), held[i]);
        }
        if (numHeld > numColumnVectors)
            held[0] = smaller(held[1], held[0]);
        double* folded = minima.folded + entry * minimaPerGroup;
        for (std::size_t i = 0; i < numColumnVectors; ++i)
        {
            hn::StoreU(held[i], d, ofGroup + i * lanes);
            hn::StoreU(smaller(held[i], hn::LoadU(d, folded + i * lanes)), d, folded + i * lanes);
        }
        ofGroup += minimaPerGroup;
        entry = entry + 1 < minima.numFolded ? entry + 1 : 0;
    }
}

/// The minima of a group, as bits, that are within the bound.
HWY_INLINE std::uint64_t minimaWithin(const double* minima, Vec bound)
{
    const D d;
    std::uint64_t within = 0;
    for (std::size_t j = 0; j < minimaPerGroup; j += lanes)
    {
        std::uint8_t bytes[8] = {};
        hn::StoreMaskBits(d, hn::Le(hn::LoadU(d, minima + j), bound), bytes);
        std::uint64_t bits = 0;
        std::memcpy(&bits, bytes, sizeof bits);
        within |= bits << j;
    }
    return within;
}

// One point after the other: among the few points of a minimum within the threshold one is a candidate, and listing
// candidates from vectors of masks took three times as long.
template <std::size_t fixedNumVars>
std::size_t collectFrom(const TargetAndPoints& points, const GroupMinima& minima, double threshold, std::size_t first,
                        int block, CandidateList& list)
{
    const Distances<fixedNumVars> distances(points);
    const auto bound = hn::Set(D(), threshold);
    const double* ofGroup = minima.ofGroups + first / minima.groupSize * minimaPerGroup;
    std::size_t count = list.count;
    std::size_t p = first;
    for (; p < points.numPts && count <= list.limit; p += minima.groupSize, ofGroup += minimaPerGroup)
    {
        const std::size_t groupEnd = std::min(p + minima.groupSize, points.numPts);
        for (std::uint64_t within = minimaWithin(ofGroup, bound); within != 0; within &= within - 1)
        {
            for (std::size_t q = p + hwy::Num0BitsBelowLS1Bit_Nonzero64(within); q < groupEnd; q += minimaPerGroup)
            {
                const double distance = distances.of(q);
                list.candidates[count] = {distance, block, static_cast<int>(q)};
                count += distance <= threshold ? 1 : 0;
            }
        }
    }
    list.count = count;
    return std::min(p, points.numPts);
}

/// Calls run with the number of variables as a constant where that is worth a copy of the loops, else with 0.
template <class Run>
auto withFixedNumVars(std::size_t numVars, const Run& run)
{
    switch (numVars)
    {
    case 1:
        return run(std::integral_constant<std::size_t, 1>());
    case 2:
        return run(std::integral_constant<std::size_t, 2>());
    case 3:
        return run(std::integral_constant<std::size_t, 3>());
    default:
        return run(std::integral_constant<std::size_t, 0>());
    }
}

void minimaOfPoints(const TargetAndPoints& points, const GroupMinima& minima)
{
    withFixedNumVars(points.numVars, [&](auto fixed) { minimaOf<decltype(fixed)::value>(points, minima); });
}

std::size_t collectPoints(const TargetAndPoints& points, const GroupMinima& minima, double threshold, std::size_t first,
                          int block, CandidateList& list)
{
    return withFixedNumVars(
        points.numVars,
        [&](auto fixed) { return collectFrom<decltype(fixed)::value>(points, minima, threshold, first, block, list); });
}

double bound(const double* distances, std::size_t count, std::size_t numNearest)
{
    const D d;
    const std::size_t whole = count / lanes * lanes;

    auto smallestInLanes = hn::Set(d, distances[0]);
    auto largestInLanes = smallestInLanes;
    for (std::size_t i = 0; i < whole; i += lanes)
    {
        const auto distance = hn::LoadU(d, distances + i);
        smallestInLanes = hn::Min(smallestInLanes, distance);
        largestInLanes = hn::Max(largestInLanes, distance);
    }
    double smallest = hn::GetLane(hn::MinOfLanes(d, smallestInLanes));
    double largest = hn::GetLane(hn::MaxOfLanes(d, largestInLanes));
    for (std::size_t i = whole; i < count; ++i)
    {
        smallest = std::min(smallest, distances[i]);
        largest = std::max(largest, distances[i]);
    }

    std::uint64_t low = 0;
    std::uint64_t high = 0;
    std::memcpy(&low, &smallest, sizeof low);
    std::memcpy(&high, &largest, sizeof high);
    double threshold = largest;
    std::size_t numWithin = count;
    while (low < high && numWithin > numNearest + numNearest / 8)
    {
        const std::uint64_t middle = low + (high - low) / 2;
        std::memcpy(&threshold, &middle, sizeof threshold);
        const auto thresholds = hn::Set(d, threshold);
        std::size_t within = 0;
        for (std::size_t i = 0; i < whole; i += lanes)
            within += hn::CountTrue(d, hn::Le(hn::LoadU(d, distances + i), thresholds));
        for (std::size_t i = whole; i < count; ++i)
            within += distances[i] <= threshold ? 1 : 0;
        if (within >= numNearest)
        {
            high = middle;
            numWithin = within;
        }
        else
            low = middle + 1;
    }
    std::memcpy(&threshold, &high, sizeof threshold);
    return threshold;
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(minimaOfPoints);
HWY_EXPORT(collectPoints);
HWY_EXPORT(bound);

void groupMinima(const TargetAndPoints& points, const GroupMinima& minima)
{
    HWY_DYNAMIC_DISPATCH(minimaOfPoints)(points, minima);
}

std::size_t collectPtsWithin(const TargetAndPoints& points, const GroupMinima& minima, double threshold,
                             std::size_t first, int block, CandidateList& list)
{
    return HWY_DYNAMIC_DISPATCH(collectPoints)(points, minima, threshold, first, block, list);
}

double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest)
{
    return HWY_DYNAMIC_DISPATCH(bound)(distances, count, numNearest);
}

} // namespace fenn::kernels
#endif
