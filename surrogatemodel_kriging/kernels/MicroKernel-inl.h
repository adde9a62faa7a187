// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_MICRO_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_MICRO_KERNEL_INL_H
#undef FENN_KERNELS_MICRO_KERNEL_INL_H
#else
#define FENN_KERNELS_MICRO_KERNEL_INL_H
#endif

#include <cstddef>

#include "hwy/cache_control.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"
#include "surrogatemodel_kriging/kernels/Vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace dense
{

/// The lines of a tile in a matrix: eight columns of row i.
struct RowLines
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
        hwy::Prefetch(rows[i] + nextColumn + stripWidth - 1);
    }
};

/// The lines of a tile in a strip: line i.
struct StripLines
{
    double* cells;
    double* at(std::size_t i) const
    {
        return cells + stripWidth * i;
    }
    void prefetchNext(std::size_t) const {}
};

/// The micro-kernel: updateTile for kRows rows from firstRow on and kVecs vectors of each line from vector firstVec on,
/// whose sums stay in registers.
template <std::size_t kRows, std::size_t kVecs, class Lines>
HWY_NOINLINE void microKernel(Lines c, const double* HWY_RESTRICT a, std::size_t aStride, const double* HWY_RESTRICT b,
                              std::size_t depth, std::size_t firstRow, std::size_t firstVec)
{
    if (depth == 0)
        return;
    const Tag d;
    const double* HWY_RESTRICT bVecs = b + kLanes * firstVec;
    const double* HWY_RESTRICT aLine = a + firstRow / stripWidth * aStride + firstRow % stripWidth;

    Vec sums[kRows][kVecs];
    FENN_UNROLL
    for (std::size_t i = 0; i < kRows; ++i)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            sums[i][v] = hn::LoadU(d, c.at(firstRow + i) + kLanes * (firstVec + v));
    }
    // The next tile is fetched a few rows at a time: all at once they would hold up the loads of A.
    const std::size_t prefetchesPerStrip = (stripWidth * kRows + depth - 1) / depth;
    std::size_t nextPrefetch = 0;
    for (std::size_t begin = 0; begin < depth; begin += stripWidth)
    {
        for (std::size_t p = 0; p < prefetchesPerStrip && nextPrefetch < kRows; ++p)
            c.prefetchNext(firstRow + nextPrefetch++);
        for (std::size_t k = begin; k < begin + stripWidth; ++k)
        {
            Vec lines[kVecs];
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
                lines[v] = hn::Load(d, bVecs + stripWidth * k + kLanes * v);
            FENN_UNROLL
            for (std::size_t i = 0; i < kRows; ++i)
            {
                const Vec factor = hn::Set(d, aLine[i / stripWidth * aStride + stripWidth * k + i % stripWidth]);
                FENN_UNROLL
                for (std::size_t v = 0; v < kVecs; ++v)
                    sums[i][v] = hn::Sub(sums[i][v], hn::Mul(factor, lines[v]));
            }
        }
    }
    FENN_UNROLL
    for (std::size_t i = 0; i < kRows; ++i)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            hn::StoreU(sums[i][v], d, c.at(firstRow + i) + kLanes * (firstVec + v));
    }
}

/// C -= A B for a tile of up to 24 rows (a multiple of eight) and eight columns, each product rounded before its
/// subtraction, k ascending:
///
///     C(i)[t] = C(i)[t] - A(i, k) B(k)[t]    for k = 0 .. depth - 1, i = 0 .. numRows - 1, t = 0 .. 7
///
/// depth is a multiple of eight and may be 0. A is packed in strips of eight rows, aStride doubles apart: A(i, k)
/// stands at a[i / 8 * aStride + 8 k + i % 8]. B is one strip: B(k)[t] stands at b[8 k + t], aligned to 64 bytes.
/// c.at(i) gives the eight doubles of C(i), which need no alignment and overlap neither A nor B; c.prefetchNext(i) may
/// fetch row i of the tile that comes next, or do nothing. What only fills a strip of A is multiplied like the rest:
/// keep it finite and not denormal.
///
/// Everything of cubic cost is this: the trailing updates of the factorisations and the parts of their triangular
/// solves that lie off the diagonal.
template <class Lines>
HWY_INLINE void updateTile(const Lines& c, const double* HWY_RESTRICT a, std::size_t aStride,
                           const double* HWY_RESTRICT b, std::size_t depth, std::size_t numRows)
{
    constexpr MicroKernelShape kShape = microKernelShape(kUnit);
    for (std::size_t v = 0; v < kVecsPerStrip; v += kShape.vecs)
    {
        if constexpr (kShape.rows == maxTileRows)
        {
            if (numRows == 3 * stripWidth)
                microKernel<3 * stripWidth, kShape.vecs>(c, a, aStride, b, depth, 0, v);
            else if (numRows == 2 * stripWidth)
                microKernel<2 * stripWidth, kShape.vecs>(c, a, aStride, b, depth, 0, v);
            else
                microKernel<stripWidth, kShape.vecs>(c, a, aStride, b, depth, 0, v);
        }
        else
        {
            for (std::size_t i = 0; i < numRows; i += kShape.rows)
                microKernel<kShape.rows, kShape.vecs>(c, a, aStride, b, depth, i, v);
        }
    }
}

/// The lines of a strip by a unit lower triangle of eight rows, packed as A above, in place: line(i) -= A(i, k) line(k)
/// for k ascending in [0, i).
HWY_INLINE void solveCorner(const double* HWY_RESTRICT a, double* lines)
{
    const Tag d;
    for (std::size_t v = 0; v < stripWidth; v += kLanes)
    {
        Vec sums[stripWidth];
        FENN_UNROLL
        for (std::size_t i = 0; i < stripWidth; ++i)
            sums[i] = hn::Load(d, lines + stripWidth * i + v);
        FENN_UNROLL
        for (std::size_t k = 0; k < stripWidth; ++k)
        {
            FENN_UNROLL
            for (std::size_t i = k + 1; i < stripWidth; ++i)
                sums[i] = hn::Sub(sums[i], hn::Mul(hn::Set(d, a[stripWidth * k + i]), sums[k]));
        }
        FENN_UNROLL
        for (std::size_t i = 0; i < stripWidth; ++i)
            hn::Store(sums[i], d, lines + stripWidth * i + v);
    }
}

/// The same for a triangle of depth rows, a multiple of eight.
HWY_INLINE void solveUnitLower(const double* a, std::size_t aStride, double* lines, std::size_t depth)
{
    for (std::size_t top = 0; top < depth; top += maxTileRows)
    {
        const double* aTile = a + top / stripWidth * aStride;
        const std::size_t numRows = depth - top < maxTileRows ? depth - top : maxTileRows;
        updateTile(StripLines{lines + stripWidth * top}, aTile, aStride, lines, top, numRows);
        for (std::size_t row = 0; row < numRows; row += stripWidth)
        {
            const double* aRows = aTile + row / stripWidth * aStride + stripWidth * top;
            double* rowLines = lines + stripWidth * (top + row);
            updateTile(StripLines{rowLines}, aRows, aStride, lines + stripWidth * top, row, stripWidth);
            solveCorner(aRows + stripWidth * row, rowLines);
        }
    }
}

} // namespace dense
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
