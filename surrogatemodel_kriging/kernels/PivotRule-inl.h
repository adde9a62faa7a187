// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_PIVOT_RULE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_PIVOT_RULE_INL_H
#undef FENN_KERNELS_PIVOT_RULE_INL_H
#else
#define FENN_KERNELS_PIVOT_RULE_INL_H
#endif

#include <cstddef>

#include "surrogatemodel_kriging/kernels/PivotRule.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"
#include "surrogatemodel_kriging/kernels/Vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace lu
{

using namespace dense;

/// Stands for a row that cannot become the pivot: below every scaled magnitude.
constexpr double kNoCandidate = -1.0;

/// Scaled magnitudes of rows side by side.
HWY_INLINE Vec scaledMagnitude(Vec scale, Vec values)
{
    return hn::Mul(scale, hn::Abs(values));
}

/// Best row so far in each lane; kNoCandidate where none was taken.
struct BestRows
{
    Vec magnitude;
    Vec row;
};

HWY_INLINE BestRows noRows()
{
    const Tag d;
    return {hn::Set(d, leastScaledMagnitude), hn::Set(d, kNoCandidate)};
}

/// isBetterPivot for rows that come later, in each lane, than those before them.
HWY_INLINE void takeBetter(BestRows& best, Vec magnitude, Vec row)
{
    const auto better = hn::Ge(magnitude, best.magnitude);
    best.magnitude = hn::IfThenElse(better, magnitude, best.magnitude);
    best.row = hn::IfThenElse(better, row, best.row);
}

/// The best row of all lanes, the last one among equals; kNoCandidate if none was taken.
HWY_INLINE double lastOfBestRows(const BestRows& even, const BestRows& odd)
{
    const Tag d;
    const Vec greatest = hn::MaxOfLanes(d, hn::Max(even.magnitude, odd.magnitude));
    const Vec none = hn::Set(d, kNoCandidate);
    const Vec evenRow = hn::IfThenElse(hn::Eq(even.magnitude, greatest), even.row, none);
    const Vec oddRow = hn::IfThenElse(hn::Eq(odd.magnitude, greatest), odd.row, none);
    return hn::GetLane(hn::MaxOfLanes(d, hn::Max(evenRow, oddRow)));
}

/// Scaled magnitudes of rows that stand in any order, kNoCandidate for NaN and for rows that are not candidates.
HWY_INLINE Vec candidates(Vec scale, Vec values, hn::Mask<Tag> isCandidate)
{
    const Vec magnitude = scaledMagnitude(scale, values);
    const auto wins = hn::Ge(magnitude, hn::Set(Tag(), leastScaledMagnitude));
    return hn::IfThenElse(hn::And(isCandidate, wins), magnitude, hn::Set(Tag(), kNoCandidate));
}

/// The last row in the order of the row table whose magnitude is best, of n; position(p) is the place of row p.
HWY_NOINLINE inline std::size_t lastOfEqualCandidates(const double* magnitudes, double best, const int* position,
                                                      std::size_t first, std::size_t n)
{
    if (best < leastScaledMagnitude)
        return static_cast<std::size_t>(position[first]);
    std::size_t row = n - 1;
    while (magnitudes[position[row]] != best)
        --row;
    return static_cast<std::size_t>(position[row]);
}

/// Of n rows that stand in any order the place of the pivot, position(p) being the place of row p of the row table and
/// first the first row that is looked at. Hardly a column has two rows that are equally good: without, the row table is
/// not needed.
template <std::size_t kVecs>
HWY_INLINE std::size_t bestCandidate(const Vec (&magnitudes)[kVecs], const int* position, std::size_t first,
                                     std::size_t n)
{
    const Tag d;
    Vec greatest = magnitudes[0];
    FENN_UNROLL
    for (std::size_t v = 1; v < kVecs; ++v)
        greatest = hn::Max(greatest, magnitudes[v]);
    greatest = hn::MaxOfLanes(d, greatest);

    std::size_t numEqual = 0;
    std::size_t found = 0;
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecs; ++v)
    {
        const auto equal = hn::Eq(magnitudes[v], greatest);
        const auto lane = hn::FindFirstTrue(d, equal);
        found = lane >= 0 ? v * kLanes + static_cast<std::size_t>(lane) : found;
        numEqual += hn::CountTrue(d, equal);
    }
    if (numEqual == 1)
        return found;
    HWY_ALIGN double all[kVecs * kLanes];
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecs; ++v)
        hn::Store(magnitudes[v], d, all + v * kLanes);
    return lastOfEqualCandidates(all, hn::GetLane(greatest), position, first, n);
}

} // namespace lu
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
