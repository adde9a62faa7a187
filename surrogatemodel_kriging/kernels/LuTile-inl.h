// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_LU_TILE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_LU_TILE_INL_H
#undef FENN_KERNELS_LU_TILE_INL_H
#else
#define FENN_KERNELS_LU_TILE_INL_H
#endif

#include <cstddef>

#include "hwy/cache_control.h"
#include "hwy/highway.h"
#include "surrogatemodel_kriging/kernels/LuPlan.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace lu
{

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::ScalableTag<double>;
using Vec = hn::Vec<Tag>;

constexpr std::size_t kLanes = hn::MaxLanes(Tag());
constexpr std::size_t kVecsPerStrip = kStrip / kLanes;
static_assert(kStrip % kLanes == 0);

// Shape of a tile: values of one strip times vectors of the other. AVX-512 (32 registers): one vector and 24 factors
// that the multiplication reads from memory itself; a factor spread into a register of its own takes a slot of the
// arithmetic pipes (Zen 4: 8 x 3 vectors 44 GFlop/s, 24 x 1 vectors 58 of 58.6).
#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
constexpr std::size_t kTileFactors = 24;
constexpr std::size_t kTileVecs = 1;
#elif HWY_TARGET == HWY_AVX2
constexpr std::size_t kTileFactors = 4;
constexpr std::size_t kTileVecs = 2;
#elif HWY_ARCH_ARM
constexpr std::size_t kTileFactors = 4;
constexpr std::size_t kTileVecs = 4;
#elif HWY_TARGET == HWY_SCALAR
constexpr std::size_t kTileFactors = 4;
constexpr std::size_t kTileVecs = 2;
#else
constexpr std::size_t kTileFactors = 4;
constexpr std::size_t kTileVecs = 2;
#endif
static_assert(kVecsPerStrip % kTileVecs == 0);
static_assert(kTileFactors % kStrip == 0 || kStrip % kTileFactors == 0);

/// Up to here a matrix is factorised as a whole from a copy by columns. Its work grows with half the cube of the rows
/// instead of a third, and soon needs more registers than there are. Where both are equally fast, in us (Xeon, 2.9
/// GHz): 8 lanes, 64 rows 12.3 and 13.4, 80 rows 21.6 and 22.2; 4 lanes, 32 rows 3.9 and 3.6; 2 lanes, 24 rows 2.8
/// and 2.6.
constexpr std::size_t kMaxSmallRows = kLanes == 8 ? 64 : kLanes == 4 ? 32 : 16;

/// Rows that an update takes at a time.
constexpr std::size_t kTileRows = 3 * kStrip;

/// Where a tile's vectors lie: eight columns of row i of the matrix.
struct RowTarget
{
    double* const* rows;
    std::size_t column;
    std::size_t nextColumn; // where the tile after this one lies in the same rows

    double* at(std::size_t i) const
    {
        return rows[i] + column;
    }

    void prefetchNext(std::size_t i) const
    {
        hwy::Prefetch(rows[i] + nextColumn + kStrip - 1);
    }
};

/// Where a tile's vectors lie: eight rows of column i of a strip.
struct StripTarget
{
    double* cells;
    double* at(std::size_t i) const
    {
        return cells + kStrip * i;
    }
    void prefetchNext(std::size_t) const {}
};

/// target(i)[lanes] -= factors(k, i) * source(k)[lanes] for k ascending in [0, depth), depth a multiple of eight, each
/// product rounded before its subtraction. factors(k, i) is the value i of line k of the strip, strips of eight i being
/// factorStride apart; source(k) is line k of the source strip. kFactors values of i from firstFactor, kVecs vectors
/// from firstVec.
template <std::size_t kFactors, std::size_t kVecs, class Target>
HWY_NOINLINE void subtractProducts(Target target, const double* HWY_RESTRICT factors, std::size_t factorStride,
                                   const double* HWY_RESTRICT source, std::size_t depth, std::size_t firstFactor,
                                   std::size_t firstVec)
{
    if (depth == 0)
        return;
    const Tag d;
    const double* HWY_RESTRICT sourceVecs = source + kLanes * firstVec;
    const double* HWY_RESTRICT factorLine = factors + (firstFactor / kStrip) * factorStride + firstFactor % kStrip;

    Vec sums[kFactors][kVecs];
    FENN_UNROLL
    for (std::size_t i = 0; i < kFactors; ++i)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            sums[i][v] = hn::LoadU(d, target.at(firstFactor + i) + kLanes * (firstVec + v));
    }
    // The next tile is fetched a few rows at a time: all at once they would hold up the loads of factors.
    const std::size_t prefetchesPerStrip = (kStrip * kFactors + depth - 1) / depth;
    std::size_t nextPrefetch = 0;
    for (std::size_t begin = 0; begin < depth; begin += kStrip)
    {
        for (std::size_t p = 0; p < prefetchesPerStrip && nextPrefetch < kFactors; ++p)
            target.prefetchNext(firstFactor + nextPrefetch++);
        for (std::size_t k = begin; k < begin + kStrip; ++k)
        {
            Vec lines[kVecs];
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
                lines[v] = hn::Load(d, sourceVecs + kStrip * k + kLanes * v);
            FENN_UNROLL
            for (std::size_t i = 0; i < kFactors; ++i)
            {
                const Vec factor = hn::Set(d, factorLine[(i / kStrip) * factorStride + kStrip * k + i % kStrip]);
                FENN_UNROLL
                for (std::size_t v = 0; v < kVecs; ++v)
                    sums[i][v] = hn::Sub(sums[i][v], hn::Mul(factor, lines[v]));
            }
        }
    }
    FENN_UNROLL
    for (std::size_t i = 0; i < kFactors; ++i)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            hn::StoreU(sums[i][v], d, target.at(firstFactor + i) + kLanes * (firstVec + v));
    }
}

/// The same for numFactors values of i (a multiple of eight, at most 24) and a whole strip of lanes.
template <class Target>
HWY_INLINE void subtractTile(const Target& target, const double* HWY_RESTRICT factors, std::size_t factorStride,
                             const double* HWY_RESTRICT source, std::size_t depth, std::size_t numFactors)
{
    if constexpr (kTileFactors >= kStrip)
    {
        if (numFactors == 3 * kStrip)
            subtractProducts<3 * kStrip, 1>(target, factors, factorStride, source, depth, 0, 0);
        else if (numFactors == 2 * kStrip)
            subtractProducts<2 * kStrip, 1>(target, factors, factorStride, source, depth, 0, 0);
        else
            subtractProducts<kStrip, 1>(target, factors, factorStride, source, depth, 0, 0);
    }
    else
    {
        for (std::size_t v = 0; v < kVecsPerStrip; v += kTileVecs)
            for (std::size_t i = 0; i < numFactors; i += kTileFactors)
                subtractProducts<kTileFactors, kTileVecs>(target, factors, factorStride, source, depth, i, v);
    }
}

/// Solves a unit lower triangle of eight rows for the lines of the strip, in place: line(i) -= factors(k, i) * line(k)
/// for k ascending in [0, i).
HWY_INLINE void solveCorner(const double* HWY_RESTRICT factors, double* lines)
{
    const Tag d;
    for (std::size_t v = 0; v < kStrip; v += kLanes)
    {
        Vec sums[kStrip];
        FENN_UNROLL
        for (std::size_t i = 0; i < kStrip; ++i)
            sums[i] = hn::Load(d, lines + kStrip * i + v);
        FENN_UNROLL
        for (std::size_t k = 0; k < kStrip; ++k)
        {
            FENN_UNROLL
            for (std::size_t i = k + 1; i < kStrip; ++i)
                sums[i] = hn::Sub(sums[i], hn::Mul(hn::Set(d, factors[kStrip * k + i]), sums[k]));
        }
        FENN_UNROLL
        for (std::size_t i = 0; i < kStrip; ++i)
            hn::Store(sums[i], d, lines + kStrip * i + v);
    }
}

/// The same for a triangle of depth rows (a multiple of eight), packed in strips factorStride apart.
HWY_INLINE void solveUnitLower(const double* factors, std::size_t factorStride, double* lines, std::size_t depth)
{
    for (std::size_t top = 0; top < depth; top += kTileRows)
    {
        const double* tileFactors = factors + top / kStrip * factorStride;
        const std::size_t numRows = depth - top < kTileRows ? depth - top : kTileRows;
        subtractTile(StripTarget{lines + kStrip * top}, tileFactors, factorStride, lines, top, numRows);
        for (std::size_t row = 0; row < numRows; row += kStrip)
        {
            const double* rowFactors = tileFactors + row / kStrip * factorStride + kStrip * top;
            double* rowLines = lines + kStrip * (top + row);
            subtractTile(StripTarget{rowLines}, rowFactors, factorStride, lines + kStrip * top, row, kStrip);
            solveCorner(rowFactors + kStrip * row, rowLines);
        }
    }
}

/// to(i)[j] = from(j)[i] for i, j in [0, 8). The two do not overlap.
template <class From, class To>
HWY_INLINE void transposeStrip(const From& from, const To& to)
{
#if HWY_TARGET == HWY_SCALAR
    for (std::size_t i = 0; i < kStrip; ++i)
        for (std::size_t j = 0; j < kStrip; ++j)
            to.at(i)[j] = from.at(j)[i];
#else
    const Tag d;
    for (std::size_t i = 0; i < kStrip; i += kLanes)
    {
        for (std::size_t j = 0; j < kStrip; j += kLanes)
        {
            Vec block[kLanes];
            FENN_UNROLL
            for (std::size_t r = 0; r < kLanes; ++r)
                block[r] = hn::LoadU(d, from.at(j + r) + i);
            if constexpr (kLanes == 8)
            {
                FENN_UNROLL
                for (std::size_t r = 0; r < kLanes / 2; ++r)
                {
                    const Vec low = block[r], high = block[r + kLanes / 2];
                    block[r] = hn::ConcatLowerLower(d, high, low);
                    block[r + kLanes / 2] = hn::ConcatUpperUpper(d, high, low);
                }
            }
#if HWY_MAX_BYTES >= 32
            if constexpr (kLanes >= 4)
            {
                FENN_UNROLL
                for (std::size_t half = 0; half < kLanes; half += 4)
                {
                    FENN_UNROLL
                    for (std::size_t r = half; r < half + 2; ++r)
                    {
                        const Vec even = block[r], odd = block[r + 2];
                        block[r] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(odd), even);
                        block[r + 2] = hn::OddEvenBlocks(odd, hn::SwapAdjacentBlocks(even));
                    }
                }
            }
#endif
            FENN_UNROLL
            for (std::size_t r = 0; r < kLanes; r += 2)
            {
                const Vec even = block[r], odd = block[r + 1];
                hn::StoreU(hn::InterleaveLower(d, even, odd), d, to.at(i + r) + j);
                hn::StoreU(hn::InterleaveUpper(d, even, odd), d, to.at(i + r + 1) + j);
            }
        }
    }
#endif
}

} // namespace lu
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
