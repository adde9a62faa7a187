// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_CHOLESKY_TILES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_CHOLESKY_TILES_INL_H
#undef FENN_KERNELS_CHOLESKY_TILES_INL_H
#else
#define FENN_KERNELS_CHOLESKY_TILES_INL_H
#endif

#include <cmath>
#include <cstddef>

#include "surrogatemodel_kriging/kernels/CholeskyPlan.h"
#include "surrogatemodel_kriging/kernels/MicroKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace cholesky
{

using dense::kLanes;
using dense::StripLines;
using dense::Tag;
using dense::updateTile;
using dense::Vec;
namespace hn = dense::hn;

constexpr std::size_t kTileRows = triangleTileRows;

/// A strip's lines of the columns of a tile less the products with that tile's rows: line(c) -= factor(k, c) * line(k)
/// for k ascending in [begin, end), whole eights.
HWY_INLINE void subtractColumns(const PackedTriangle& triangle, std::size_t tile, double* strip, std::size_t begin,
                                std::size_t end)
{
    updateTile(StripLines{strip + stripWidth * kTileRows * tile}, triangle.strip(tile, 0) + stripWidth * begin,
               PackedTriangle::stripStride(tile), strip + stripWidth * begin, end - begin,
               stripWidth * triangle.numStripsOf(tile));
}

/// Eight lines of a strip by a triangle of eight rows: line(i) -= factors(k, i) * line(k) for k ascending in [0, i),
/// then line(i) *= reciprocals[i].
HWY_INLINE void solveCorner(const double* HWY_RESTRICT factors, const double* HWY_RESTRICT reciprocals, double* lines)
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
            sums[k] = hn::Mul(sums[k], hn::Set(d, reciprocals[k]));
            FENN_UNROLL
            for (std::size_t i = k + 1; i < stripWidth; ++i)
                sums[i] = hn::Sub(sums[i], hn::Mul(hn::Set(d, factors[stripWidth * k + i]), sums[k]));
        }
        FENN_UNROLL
        for (std::size_t i = 0; i < stripWidth; ++i)
            hn::Store(sums[i], d, lines + stripWidth * i + v);
    }
}

/// Solves for a strip's lines of the columns of a tile, its first numStrips eights, by the tile's triangle.
HWY_INLINE void solveTile(const PackedTriangle& triangle, std::size_t tile, const double* reciprocals, double* strip,
                          std::size_t numStrips)
{
    const std::size_t diagonal = kTileRows * tile;
    const std::size_t factorStride = PackedTriangle::stripStride(tile);
    double* lines = strip + stripWidth * diagonal;
    for (std::size_t s = 0; s < numStrips; ++s)
    {
        const double* factors = triangle.strip(tile, s) + stripWidth * diagonal;
        const std::size_t row = stripWidth * s;
        updateTile(StripLines{lines + stripWidth * row}, factors, factorStride, lines, row, stripWidth);
        solveCorner(factors + stripWidth * row, reciprocals + diagonal + row, lines + stripWidth * row);
    }
}

/// Factorises the eight rows of a diagonal corner, lines being their columns; false at a diagonal element not above 0.
HWY_INLINE bool factoriseCorner(double* lines, double* reciprocals)
{
    const Tag d;
    for (std::size_t k = 0; k < stripWidth; ++k)
    {
        double* line = lines + stripWidth * k;
        if (!(line[k] > 0.0))
            return false;
        const double diagonal = std::sqrt(line[k]);
        reciprocals[k] = 1.0 / diagonal;
        for (std::size_t v = 0; v < stripWidth; v += kLanes)
            hn::Store(hn::Mul(hn::Load(d, line + v), hn::Set(d, reciprocals[k])), d, line + v);
        for (std::size_t i = 0; i < k; ++i)
            line[i] = 0.0;
        line[k] = diagonal;
        for (std::size_t i = k + 1; i < stripWidth; ++i)
        {
            const Vec factor = hn::Set(d, line[i]);
            double* sums = lines + stripWidth * i;
            for (std::size_t v = 0; v < stripWidth; v += kLanes)
                hn::Store(hn::Sub(hn::Load(d, sums + v), hn::Mul(factor, hn::Load(d, line + v))), d, sums + v);
        }
    }
    return true;
}

/// Factorises a tile on the diagonal; its earlier columns are subtracted already.
inline bool factoriseTile(const PackedTriangle& triangle, std::size_t tile, double* reciprocals)
{
    const Tag d;
    const std::size_t numStrips = triangle.numStripsOf(tile);
    const std::size_t diagonal = kTileRows * tile;
    for (std::size_t s = 0; s < numStrips; ++s)
    {
        double* strip = triangle.strip(tile, s);
        const std::size_t row = stripWidth * s;
        solveTile(triangle, tile, reciprocals, strip, s);
        double* lines = strip + stripWidth * diagonal;
        updateTile(StripLines{lines + stripWidth * row}, lines, PackedTriangle::stripStride(tile), lines, row,
                   stripWidth);
        if (!factoriseCorner(lines + stripWidth * row, reciprocals + diagonal + row))
            return false;
        for (std::size_t i = stripWidth * (row + stripWidth); i < stripWidth * stripWidth * numStrips; i += kLanes)
            hn::Store(hn::Zero(d), d, lines + i);
    }
    return true;
}

} // namespace cholesky
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
