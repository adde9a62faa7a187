// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_LU_TRAILING_UPDATE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_LU_TRAILING_UPDATE_INL_H
#undef FENN_KERNELS_LU_TRAILING_UPDATE_INL_H
#else
#define FENN_KERNELS_LU_TRAILING_UPDATE_INL_H
#endif

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "surrogatemodel_kriging/kernels/MicroKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace lu
{

using namespace dense;

/// scale[i] = 1 / max |row(i)[k]| over the n elements that are no NaN, for i in [begin, end); false at the first row
/// without an element of non-zero magnitude. A maximum rounds nothing: lanes may share it.
inline bool scaleRows(double* const* rows, std::size_t n, std::size_t begin, std::size_t end, double* scale)
{
    const Tag d;
    constexpr std::size_t kStep = 4 * kLanes;
    for (std::size_t i = begin; i < end; ++i)
    {
        const double* row = rows[i];
        Vec big[4] = {hn::Zero(d), hn::Zero(d), hn::Zero(d), hn::Zero(d)};
        std::size_t k = 0;
        for (; k + kStep <= n; k += kStep)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < 4; ++v)
            {
                const Vec magnitude = hn::Abs(hn::LoadU(d, row + k + v * kLanes));
                big[v] = hn::IfThenElse(hn::Gt(magnitude, big[v]), magnitude, big[v]);
            }
        }
        const Vec biggest = hn::MaxOfLanes(d, hn::Max(hn::Max(big[0], big[1]), hn::Max(big[2], big[3])));
        double greatest = hn::GetLane(biggest);
        for (; k < n; ++k)
        {
            if (std::fabs(row[k]) > greatest)
                greatest = std::fabs(row[k]);
        }
        if (greatest == 0.0)
            return false;
        scale[i] = 1.0 / greatest;
    }
    return true;
}

/// Copies numRows rows of count columns (at most eight) into lines of eight. What is missing of a line becomes zero.
HWY_INLINE void loadLines(double* const* rows, std::size_t numRows, std::size_t column, std::size_t count,
                          double* lines)
{
    const Tag d;
    for (std::size_t i = 0; i < numRows; ++i)
    {
        const double* from = rows[i] + column;
        double* line = lines + i * stripWidth;
        if (count == stripWidth)
        {
            for (std::size_t v = 0; v < stripWidth; v += kLanes)
                hn::Store(hn::LoadU(d, from + v), d, line + v);
        }
        else
        {
            for (std::size_t c = 0; c < stripWidth; ++c)
                line[c] = c < count ? from[c] : 0.0;
        }
    }
}

HWY_INLINE void storeLines(double* const* rows, std::size_t numRows, std::size_t column, std::size_t count,
                           const double* lines)
{
    const Tag d;
    for (std::size_t i = 0; i < numRows; ++i)
    {
        double* to = rows[i] + column;
        const double* line = lines + i * stripWidth;
        if (count == stripWidth)
        {
            for (std::size_t v = 0; v < stripWidth; v += kLanes)
                hn::StoreU(hn::Load(d, line + v), d, to + v);
        }
        else
        {
            for (std::size_t c = 0; c < count; ++c)
                to[c] = line[c];
        }
    }
}

/// A factorised panel as its update sees it (A11 over A21, see LuPlan): rows from the panel's first one, its strips,
/// its width.
struct FinishedPanel
{
    double* const* rows;
    std::size_t numRows;
    const double* cells;
    std::size_t columnStride;
    std::size_t width;
};

/// The triangular solve and the trailing update by a panel of the columns [begin, end) to its right: A12 and A22.
/// strips is room for (end - begin), rounded up to eight, times width doubles.
inline void updateColumnsBeside(const FinishedPanel& panel, std::size_t begin, std::size_t end, double* strips)
{
    const std::size_t factorStride = panel.columnStride * stripWidth;
    for (std::size_t column = begin; column < end; column += stripWidth)
    {
        double* strip = strips + (column - begin) * panel.width;
        const std::size_t count = std::min(stripWidth, end - column);
        loadLines(panel.rows, panel.width, column, count, strip);
        solveUnitLower(panel.cells, factorStride, strip, panel.width);
        storeLines(panel.rows, panel.width, column, count, strip);
    }

    // Tiles at the edge are updated in a copy that zeros fill.
    // Test: LuWorkspaceTest.WhatItHeldBeforeIsNeverComputedWith
    for (std::size_t row = panel.width; row < panel.numRows; row += maxTileRows)
    {
        const std::size_t numRows = std::min(maxTileRows, panel.numRows - row);
        const double* factors = panel.cells + row * panel.columnStride;
        double* const* rows = panel.rows + row;
        for (std::size_t column = begin; column < end; column += stripWidth)
        {
            const double* strip = strips + (column - begin) * panel.width;
            const std::size_t count = std::min(stripWidth, end - column);
            if (numRows % stripWidth == 0 && count == stripWidth)
            {
                const std::size_t nextColumn = column + 2 * stripWidth <= end ? column + stripWidth : column;
                updateTile(RowLines{rows, column, nextColumn}, factors, factorStride, strip, panel.width, numRows);
            }
            else
            {
                HWY_ALIGN double lines[maxTileRows * stripWidth] = {};
                loadLines(rows, numRows, column, count, lines);
                updateTile(StripLines{lines}, factors, factorStride, strip, panel.width, roundUpToStrip(numRows));
                storeLines(rows, numRows, column, count, lines);
            }
        }
    }
}

} // namespace lu
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
