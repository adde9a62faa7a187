#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

#include <algorithm>
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

template <typename T>
using Position = hwy::MakeUnsigned<T>;

/// Points and a target. fixedNumVars: 0 when the number of variables is known at run time only; else pointers and
/// coordinates are held here, where the compiler keeps them in registers.
template <std::size_t fixedNumVars, class D, typename T = hn::TFromD<D>>
class LocalPoints
{
public:
    LocalPoints(const T* const* coords_, std::size_t numVars_, const T* target_)
        : coords(fixedNumVars != 0 ? localCoords : coords_),
          target(fixedNumVars != 0 ? localTarget : target_),
          numVars(fixedNumVars != 0 ? fixedNumVars : numVars_)
    {
        std::copy(coords_, coords_ + fixedNumVars, localCoords);
        std::copy(target_, target_ + fixedNumVars, localTarget);
    }

    LocalPoints(const LocalPoints& other) = delete;
    LocalPoints& operator=(const LocalPoints& other) = delete;

    /// Of the points from p on, one per lane.
    HWY_INLINE hn::Vec<D> distanceFrom(std::size_t p) const
    {
        return distance([p](const T* from) { return hn::LoadU(D(), from + p); });
    }

    /// The same, only the first count of them being there.
    HWY_INLINE hn::Vec<D> distanceOfRest(std::size_t p, std::size_t count) const
    {
        return distance(
            [p, count](const T* from)
            {
                HWY_ALIGN T padded[HWY_LANES(T)] = {};
                std::copy(from + p, from + p + count, padded);
                return hn::Load(D(), padded);
            });
    }

    /// Of one point.
    HWY_INLINE T distanceOf(std::size_t p) const
    {
        const std::size_t size = fixedNumVars != 0 ? fixedNumVars : numVars;
        T sum = 0;
        for (std::size_t v = 0; v < size; ++v)
        {
            const T difference = target[v] - coords[v][p];
            sum += difference * difference;
        }
        return sum;
    }

private:
    template <class Load>
    HWY_INLINE hn::Vec<D> distance(const Load& load) const
    {
        const D d;
        const std::size_t size = fixedNumVars != 0 ? fixedNumVars : numVars;
        auto sum = hn::Zero(d);
        for (std::size_t v = 0; v < size; ++v)
        {
            const auto difference = hn::Sub(hn::Set(d, target[v]), load(coords[v]));
            const auto square = hn::Mul(difference, difference);
            // Adding the first one to zero would change nothing: a square is never a negative zero.
            sum = v == 0 ? square : hn::Add(sum, square);
        }
        return sum;
    }

    const T* localCoords[fixedNumVars + 1];
    T localTarget[fixedNumVars + 1];
    const T* const* coords;
    const T* target;
    std::size_t numVars;
};

/// The smaller one, and held when either is NaN: the order of the operands decides that, and not on every processor.
template <class D>
HWY_INLINE hn::Vec<D> smaller(D /*d*/, hn::Vec<D> value, hn::Vec<D> held)
{
#if HWY_ARCH_X86
    return hn::Min(value, held);
#else
    return hn::IfThenElse(hn::Lt(value, held), value, held);
#endif
}

/// One column of minima per residue of the point's index, modulo minimaPerGroup.
template <std::size_t fixedNumVars, typename T>
void minimaOf(const T* const* coords, std::size_t numVars, std::size_t count, const T* target, std::size_t groupSize,
              T* minima, T* folded, std::size_t firstGroup, std::size_t numFoldedGroups)
{
    using D = hn::ScalableTag<T>;
    const D d;
    constexpr std::size_t lanes = HWY_LANES(T);
    constexpr std::size_t numColumnVectors = minimaPerGroup / lanes;
    // At least two chains of comparisons, for one waits on its own result.
    constexpr std::size_t numHeld = numColumnVectors < 2 ? 2 : numColumnVectors;
    constexpr std::size_t step = numHeld * lanes;
    static_assert(minimaPerGroup % lanes == 0 && distanceGroup % step == 0, "whole vectors fill a group");

    const LocalPoints<fixedNumVars, D> points(coords, numVars, target);
    for (std::size_t p = 0, g = firstGroup; p < count; p += groupSize, ++g)
    {
        hn::Vec<D> held[numHeld];
        for (std::size_t i = 0; i < numHeld; ++i)
            held[i] = hn::Set(d, std::numeric_limits<T>::infinity());
        const std::size_t groupEnd = std::min(p + groupSize, count);
        std::size_t q = p;
        for (; groupEnd - q >= step; q += step)
        {
            for (std::size_t i = 0; i < numHeld; ++i)
                held[i] = smaller(d, points.distanceFrom(q + i * lanes), held[i]);
        }
        for (std::size_t i = 0; q < groupEnd; q += lanes, ++i)
        {
            const std::size_t rest = groupEnd - q;
            const auto distance = rest >= lanes ? points.distanceFrom(q) : points.distanceOfRest(q, rest);
            const auto isPoint = hn::FirstN(d, std::min(rest, lanes));
            held[i] = smaller(d, hn::IfThenElse(isPoint, distance, held[i]), held[i]);
        }
        if (numHeld > numColumnVectors)
            held[0] = smaller(d, held[1], held[0]);
        T* foldedGroup = folded + g % numFoldedGroups * minimaPerGroup;
        for (std::size_t i = 0; i < numColumnVectors; ++i)
        {
            hn::StoreU(held[i], d, minima + g * minimaPerGroup + i * lanes);
            hn::StoreU(smaller(d, held[i], hn::LoadU(d, foldedGroup + i * lanes)), d, foldedGroup + i * lanes);
        }
    }
}

/// The columns of a group, as bits, whose minimum is within the bound.
template <class D>
HWY_INLINE std::uint64_t columnsWithin(D d, const hn::TFromD<D>* minima, hn::Vec<D> bound)
{
    constexpr std::size_t lanes = HWY_LANES(hn::TFromD<D>);
    std::uint64_t columns = 0;
    for (std::size_t j = 0; j < minimaPerGroup; j += lanes)
    {
        std::uint8_t bytes[8] = {};
        hn::StoreMaskBits(d, hn::Le(hn::LoadU(d, minima + j), bound), bytes);
        std::uint64_t bits = 0;
        std::memcpy(&bits, bytes, sizeof bits);
        columns |= bits << j;
    }
    return columns;
}

// One point after the other: a column within the bound holds one hit among few points, and listing hits from vectors
// of masks took three times as long.
template <std::size_t fixedNumVars, typename T>
std::size_t collectFrom(const T* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                        const T* target, T threshold, std::size_t groupSize, const T* minima, T* distances,
                        Position<T>* positions, std::size_t& numHits, std::size_t limit)
{
    const hn::ScalableTag<T> d;
    const LocalPoints<fixedNumVars, hn::ScalableTag<T>> points(coords, numVars, target);
    const auto bound = hn::Set(d, threshold);
    std::size_t hits = numHits;
    std::size_t p = first;
    for (; p < count && hits <= limit; p += groupSize)
    {
        std::uint64_t columns = columnsWithin(d, minima + p / groupSize * minimaPerGroup, bound);
        const std::size_t groupEnd = std::min(p + groupSize, count);
        for (; columns != 0; columns &= columns - 1)
        {
            for (std::size_t q = p + hwy::Num0BitsBelowLS1Bit_Nonzero64(columns); q < groupEnd; q += minimaPerGroup)
            {
                const T distance = points.distanceOf(q);
                distances[hits] = distance;
                positions[hits] = static_cast<Position<T>>(q);
                hits += distance <= threshold ? 1 : 0;
            }
        }
    }
    numHits = hits;
    return std::min(p, count);
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

void minimaFloats(const float* const* coords, std::size_t numVars, std::size_t count, const float* target,
                  std::size_t groupSize, float* minima, float* folded, std::size_t firstGroup,
                  std::size_t numFoldedGroups)
{
    withFixedNumVars(numVars,
                     [&](auto fixed)
                     {
                         minimaOf<decltype(fixed)::value>(coords, numVars, count, target, groupSize, minima, folded,
                                                          firstGroup, numFoldedGroups);
                     });
}

std::size_t collectFloats(const float* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                          const float* target, float threshold, std::size_t groupSize, const float* minima,
                          float* distances, std::uint32_t* positions, std::size_t& numHits, std::size_t limit)
{
    return withFixedNumVars(numVars,
                            [&](auto fixed)
                            {
                                return collectFrom<decltype(fixed)::value>(coords, numVars, first, count, target,
                                                                           threshold, groupSize, minima, distances,
                                                                           positions, numHits, limit);
                            });
}

void minimaDoubles(const double* const* coords, std::size_t numVars, std::size_t count, const double* target,
                   std::size_t groupSize, double* minima, double* folded, std::size_t firstGroup,
                   std::size_t numFoldedGroups)
{
    withFixedNumVars(numVars,
                     [&](auto fixed)
                     {
                         minimaOf<decltype(fixed)::value>(coords, numVars, count, target, groupSize, minima, folded,
                                                          firstGroup, numFoldedGroups);
                     });
}

std::size_t collectDoubles(const double* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                           const double* target, double threshold, std::size_t groupSize, const double* minima,
                           double* distances, std::uint64_t* positions, std::size_t& numHits, std::size_t limit)
{
    return withFixedNumVars(numVars,
                            [&](auto fixed)
                            {
                                return collectFrom<decltype(fixed)::value>(coords, numVars, first, count, target,
                                                                           threshold, groupSize, minima, distances,
                                                                           positions, numHits, limit);
                            });
}

template <typename T>
T bitsToValue(Position<T> bits)
{
    T value;
    hwy::CopySameSize(&bits, &value);
    return value;
}

template <typename T>
T bound(const T* distances, std::size_t count, std::size_t numNearest)
{
    const hn::ScalableTag<T> d;
    constexpr std::size_t lanes = HWY_LANES(T);
    const std::size_t whole = count / lanes * lanes;

    auto smallestInLanes = hn::Set(d, distances[0]);
    auto largestInLanes = smallestInLanes;
    for (std::size_t i = 0; i < whole; i += lanes)
    {
        const auto distance = hn::LoadU(d, distances + i);
        smallestInLanes = hn::Min(smallestInLanes, distance);
        largestInLanes = hn::Max(largestInLanes, distance);
    }
    T smallest = hn::GetLane(hn::MinOfLanes(d, smallestInLanes));
    T largest = hn::GetLane(hn::MaxOfLanes(d, largestInLanes));
    for (std::size_t i = whole; i < count; ++i)
    {
        smallest = std::min(smallest, distances[i]);
        largest = std::max(largest, distances[i]);
    }

    Position<T> low = 0;
    Position<T> high = 0;
    hwy::CopySameSize(&smallest, &low);
    hwy::CopySameSize(&largest, &high);
    std::size_t numWithin = count;
    while (low < high && numWithin > numNearest + numNearest / 8)
    {
        const Position<T> middle = low + (high - low) / 2;
        const T threshold = bitsToValue<T>(middle);
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
    return bitsToValue<T>(high);
}

float boundFloats(const float* distances, std::size_t count, std::size_t numNearest)
{
    return bound(distances, count, numNearest);
}

double boundDoubles(const double* distances, std::size_t count, std::size_t numNearest)
{
    return bound(distances, count, numNearest);
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(minimaFloats);
HWY_EXPORT(minimaDoubles);
HWY_EXPORT(collectFloats);
HWY_EXPORT(collectDoubles);
HWY_EXPORT(boundFloats);
HWY_EXPORT(boundDoubles);

void groupMinima(const float* const* coords, std::size_t numVars, std::size_t count, const float* target,
                 std::size_t groupSize, float* minima, float* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups)
{
    HWY_DYNAMIC_DISPATCH(minimaFloats)
    (coords, numVars, count, target, groupSize, minima, folded, firstGroup, numFoldedGroups);
}

std::size_t collectPtsWithin(const float* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const float* target, float threshold, std::size_t groupSize, const float* minima,
                             float* distances, std::uint32_t* positions, std::size_t& numHits, std::size_t limit)
{
    return HWY_DYNAMIC_DISPATCH(collectFloats)(coords, numVars, first, count, target, threshold, groupSize, minima,
                                               distances, positions, numHits, limit);
}

float boundOfNearest(const float* distances, std::size_t count, std::size_t numNearest)
{
    return HWY_DYNAMIC_DISPATCH(boundFloats)(distances, count, numNearest);
}

void groupMinima(const double* const* coords, std::size_t numVars, std::size_t count, const double* target,
                 std::size_t groupSize, double* minima, double* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups)
{
    HWY_DYNAMIC_DISPATCH(minimaDoubles)
    (coords, numVars, count, target, groupSize, minima, folded, firstGroup, numFoldedGroups);
}

std::size_t collectPtsWithin(const double* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const double* target, double threshold, std::size_t groupSize, const double* minima,
                             double* distances, std::uint64_t* positions, std::size_t& numHits, std::size_t limit)
{
    return HWY_DYNAMIC_DISPATCH(collectDoubles)(coords, numVars, first, count, target, threshold, groupSize, minima,
                                                distances, positions, numHits, limit);
}

double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest)
{
    return HWY_DYNAMIC_DISPATCH(boundDoubles)(distances, count, numNearest);
}

} // namespace fenn::kernels
#endif
