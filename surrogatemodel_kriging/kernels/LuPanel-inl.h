// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_LU_PANEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_LU_PANEL_INL_H
#undef FENN_KERNELS_LU_PANEL_INL_H
#else
#define FENN_KERNELS_LU_PANEL_INL_H
#endif

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "surrogatemodel_kriging/kernels/MicroKernel-inl.h"
#include "surrogatemodel_kriging/kernels/PivotRule-inl.h"
#include "surrogatemodel_kriging/kernels/Transpose-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace lu
{

/// Columns of the matrix copied out, with all rows from the first column's diagonal down, in strips of eight rows.
/// Rows are exchanged for good here; in the matrix only the row table is.
///
/// Rows past numRows fill the last strip, columns past numColumns the last eight: with zeros, which the elimination
/// leaves zeros. What the workspace held before could be denormal, and on many processors a product with a denormal
/// number takes a hundred times as long.
/// Test: LuWorkspaceTest.WhatItHeldBeforeIsNeverComputedWith
struct Panel
{
    double* cells; // row r, column c at cells[(r / 8 * columnStride + c) * 8 + r % 8]
    std::size_t columnStride;
    std::size_t numRows;
    std::size_t numColumns;
    double** rows;  // the row table from the panel's first row
    double* scale;  // the rows' scale factors
    int* pivots;    // the pivot table from the panel's first column
    int firstRow;   // of the panel, in the matrix
    double* strips; // room for numColumns x numColumns: the rows beside a triangle, in strips of columns

    std::size_t getNumStrips() const
    {
        return (numRows + stripWidth - 1) / stripWidth;
    }
    double* line(std::size_t strip, std::size_t column) const
    {
        return cells + (strip * columnStride + column) * stripWidth;
    }
    double& cell(std::size_t row, std::size_t column) const
    {
        return line(row / stripWidth, column)[row % stripWidth];
    }
};

/// One pass over all strips from the given one, for column first + kStep: scales column first + kStep - 1 by
/// reciprocal into multipliers, subtracts the products of the kStep earlier columns with above[0..kStep) in ascending
/// order, and returns the row with the greatest scaled magnitude. Not looked at: in the first strip its kStep finished
/// rows, in the last one what only fills it.
template <std::size_t kStep>
HWY_NOINLINE double sweepColumn(const Panel& panel, std::size_t firstStrip, std::size_t first, double reciprocal,
                                const double* above)
{
    const Tag d;
    const std::size_t numStrips = panel.getNumStrips();
    const Vec factor = hn::Set(d, reciprocal);
    Vec factors[kStep + 1];
    FENN_UNROLL
    for (std::size_t k = 0; k < kStep; ++k)
        factors[k] = hn::Set(d, above[k]);

    BestRows best[2] = {noRows(), noRows()};
    Vec row = hn::Iota(d, static_cast<double>(firstStrip * stripWidth));
    const Vec nextRow = hn::Set(d, static_cast<double>(kLanes));
    const Vec firstRow = hn::Set(d, static_cast<double>(first + kStep));
    const Vec endRow = hn::Set(d, static_cast<double>(panel.numRows));

    const auto sweepVec = [&](double* lines, const double* scale, BestRows& bestRows, auto isEndStrip) HWY_ATTR
    {
        Vec value = hn::Load(d, lines + stripWidth * kStep);
        if constexpr (kStep > 0)
        {
            FENN_UNROLL
            for (std::size_t k = 0; k + 1 < kStep; ++k)
                value = hn::Sub(value, hn::Mul(hn::Load(d, lines + stripWidth * k), factors[k]));
            const Vec multiplier = hn::Mul(hn::Load(d, lines + stripWidth * (kStep - 1)), factor);
            hn::Store(multiplier, d, lines + stripWidth * (kStep - 1));
            value = hn::Sub(value, hn::Mul(multiplier, factors[kStep - 1]));
            hn::Store(value, d, lines + stripWidth * kStep);
        }
        Vec magnitude = scaledMagnitude(hn::Load(d, scale), value);
        if constexpr (isEndStrip())
            magnitude = hn::IfThenElse(hn::And(hn::Ge(row, firstRow), hn::Lt(row, endRow)), magnitude,
                                       hn::Set(d, kNoCandidate));
        takeBetter(bestRows, magnitude, row);
        row = hn::Add(row, nextRow);
    };
    const auto sweepStrip = [&](std::size_t strip, auto isEndStrip) HWY_ATTR
    {
        double* lines = panel.line(strip, first);
        const double* scale = panel.scale + strip * stripWidth;
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecsPerStrip; ++v)
            sweepVec(lines + kLanes * v, scale + kLanes * v, best[(strip ^ v) & 1], isEndStrip);
    };
    sweepStrip(firstStrip, std::true_type());
    for (std::size_t strip = firstStrip + 1; strip + 1 < numStrips; ++strip)
        sweepStrip(strip, std::false_type());
    if (firstStrip + 1 < numStrips)
        sweepStrip(numStrips - 1, std::true_type());
    return lastOfBestRows(best[0], best[1]);
}

HWY_INLINE double sweepStep(const Panel& panel, std::size_t firstStrip, std::size_t first, std::size_t step,
                            double reciprocal, const double* above)
{
    switch (step)
    {
    case 0:
        return sweepColumn<0>(panel, firstStrip, first, reciprocal, above);
    case 1:
        return sweepColumn<1>(panel, firstStrip, first, reciprocal, above);
    case 2:
        return sweepColumn<2>(panel, firstStrip, first, reciprocal, above);
    case 3:
        return sweepColumn<3>(panel, firstStrip, first, reciprocal, above);
    case 4:
        return sweepColumn<4>(panel, firstStrip, first, reciprocal, above);
    case 5:
        return sweepColumn<5>(panel, firstStrip, first, reciprocal, above);
    case 6:
        return sweepColumn<6>(panel, firstStrip, first, reciprocal, above);
    default:
        return sweepColumn<7>(panel, firstStrip, first, reciprocal, above);
    }
}

/// Exchanges two rows in the row table and in the columns [begin, end) of the panel.
HWY_INLINE void exchangeCells(const Panel& panel, std::size_t rowA, std::size_t rowB, std::size_t begin,
                              std::size_t end)
{
    double* a = &panel.cell(rowA, 0);
    double* b = &panel.cell(rowB, 0);
    for (std::size_t c = begin; c < end; ++c)
        std::swap(a[c * stripWidth], b[c * stripWidth]);
}

/// Factorises the columns [first, first + count), count at most eight and first a multiple of eight. Finished rows
/// are kept aside until the end: what the sweeps make of their places meanwhile is never read.
HWY_INLINE void factoriseColumns(const Panel& panel, std::size_t first, std::size_t count)
{
    const Tag d;
    const std::size_t topStrip = first / stripWidth;
    double done[stripWidth][stripWidth] = {}; // finished rows: multipliers, pivot, elements above the later columns
    double above[stripWidth] = {};
    double reciprocal = 0.0;

    for (std::size_t step = 0; step < count; ++step)
    {
        const std::size_t column = first + step;
        const double best = sweepStep(panel, topStrip, first, step, reciprocal, above);
        const std::size_t pivot = best < 0.0 ? column : static_cast<std::size_t>(best);
        panel.pivots[column] = panel.firstRow + static_cast<int>(pivot);

        double* finished = done[step];
        const double* pivotCells = &panel.cell(pivot, first);
        for (std::size_t c = 0; c < count; ++c)
            finished[c] = pivotCells[c * stripWidth];
        if (isTinyPivot(finished[step]))
            finished[step] = leastPivot;
        reciprocal = 1.0 / finished[step];
        for (std::size_t c = step + 1; c < count; ++c)
        {
            double value = finished[c];
            for (std::size_t k = 0; k < step; ++k)
                value = value - finished[k] * done[k][c];
            finished[c] = value;
        }
        if (step + 1 < count)
            for (std::size_t k = 0; k <= step; ++k)
                above[k] = done[k][step + 1];

        if (pivot != column)
        {
            std::swap(panel.rows[column], panel.rows[pivot]);
            panel.scale[pivot] = panel.scale[column];
            double* to = &panel.cell(pivot, first);
            const double* from = &panel.cell(column, first);
            for (std::size_t c = 0; c < count; ++c)
                to[c * stripWidth] = from[c * stripWidth];
            exchangeCells(panel, column, pivot, 0, first);
            exchangeCells(panel, column, pivot, first + count, panel.numColumns);
        }
    }

    const Vec factor = hn::Set(d, reciprocal);
    for (std::size_t strip = topStrip; strip < panel.getNumStrips(); ++strip)
    {
        double* last = panel.line(strip, first + count - 1);
        for (std::size_t v = 0; v < kVecsPerStrip; ++v)
            hn::Store(hn::Mul(hn::Load(d, last + kLanes * v), factor), d, last + kLanes * v);
    }
    for (std::size_t step = 0; step < count; ++step)
        for (std::size_t c = 0; c < count; ++c)
            panel.cell(first + step, first + c) = done[step][c];
}

/// The triangular solve and the trailing update (see LuPlan) inside the panel: of the columns [first + depth, end) by
/// the finished columns [first, first + depth).
HWY_INLINE void updateInsidePanel(const Panel& panel, std::size_t first, std::size_t depth, std::size_t end)
{
    const std::size_t begin = first + depth;
    const std::size_t topStrip = first / stripWidth;
    const std::size_t firstStrip = begin / stripWidth;
    const std::size_t numColumnStrips = (end - begin + stripWidth - 1) / stripWidth;
    const std::size_t factorStride = panel.columnStride * stripWidth;

    for (std::size_t s = 0; s < numColumnStrips; ++s)
    {
        double* strip = panel.strips + s * depth * stripWidth;
        const std::size_t column = begin + s * stripWidth;
        for (std::size_t k = 0; k < depth; k += stripWidth)
            transposeStrip(StripLines{panel.line(topStrip + k / stripWidth, column)},
                           StripLines{strip + k * stripWidth});
        solveUnitLower(panel.line(topStrip, first), factorStride, strip, depth);
        for (std::size_t k = 0; k < depth; k += stripWidth)
            transposeStrip(StripLines{strip + k * stripWidth},
                           StripLines{panel.line(topStrip + k / stripWidth, column)});
    }
    for (std::size_t s = 0; s < numColumnStrips; s += 3)
    {
        const std::size_t numFactors = stripWidth * std::min<std::size_t>(3, numColumnStrips - s);
        const double* strips = panel.strips + s * depth * stripWidth;
        for (std::size_t strip = firstStrip; strip < panel.getNumStrips(); ++strip)
            updateTile(StripLines{panel.line(strip, begin + s * stripWidth)}, strips, depth * stripWidth,
                       panel.line(strip, first), depth, numFactors);
    }
}

/// Factorises the columns [first, first + count) of the panel, as LuPlan shows it for the matrix: the left half, its
/// update of the right half, the right half; down to eight columns.
inline void factorisePanel(const Panel& panel, std::size_t first, std::size_t count)
{
    if (count <= stripWidth)
        return factoriseColumns(panel, first, count);

    const std::size_t left = (count / 2 + stripWidth - 1) / stripWidth * stripWidth;
    factorisePanel(panel, first, left);
    updateInsidePanel(panel, first, left, first + count);
    factorisePanel(panel, first + left, count - left);
}

/// Copies columns [firstColumn, firstColumn + numColumns) of the matrix into the panel and fills its last strip and its
/// last eight columns.
HWY_INLINE void packPanel(const Panel& panel, std::size_t firstColumn)
{
    const std::size_t wholeRows = panel.numRows / stripWidth * stripWidth;
    const std::size_t wholeColumns = panel.numColumns / stripWidth * stripWidth;
    const std::size_t numLines = roundUpToStrip(panel.numColumns);
    for (std::size_t r = 0; r < wholeRows; r += stripWidth)
    {
        for (std::size_t c = 0; c < wholeColumns; c += stripWidth)
            transposeStrip(RowLines{panel.rows + r, firstColumn + c, 0}, StripLines{panel.line(r / stripWidth, c)});
        for (std::size_t c = wholeColumns; c < panel.numColumns; ++c)
            for (std::size_t i = 0; i < stripWidth; ++i)
                panel.line(r / stripWidth, c)[i] = panel.rows[r + i][firstColumn + c];
        std::fill(panel.line(r / stripWidth, panel.numColumns), panel.line(r / stripWidth, numLines), 0.0);
    }
    if (wholeRows == panel.numRows)
        return;
    std::fill(panel.line(wholeRows / stripWidth, 0), panel.line(wholeRows / stripWidth, numLines), 0.0);
    std::fill_n(panel.scale + panel.numRows, wholeRows + stripWidth - panel.numRows, 1.0);
    for (std::size_t r = wholeRows; r < panel.numRows; ++r)
        for (std::size_t c = 0; c < panel.numColumns; ++c)
            panel.cell(r, c) = panel.rows[r][firstColumn + c];
}

/// Copies the panel back to where the row table now says.
HWY_INLINE void unpackPanel(const Panel& panel, std::size_t firstColumn)
{
    const std::size_t wholeRows = panel.numRows / stripWidth * stripWidth;
    const std::size_t wholeColumns = panel.numColumns / stripWidth * stripWidth;
    for (std::size_t r = 0; r < wholeRows; r += stripWidth)
    {
        for (std::size_t c = 0; c < wholeColumns; c += stripWidth)
            transposeStrip(StripLines{panel.line(r / stripWidth, c)}, RowLines{panel.rows + r, firstColumn + c, 0});
        for (std::size_t c = wholeColumns; c < panel.numColumns; ++c)
            for (std::size_t i = 0; i < stripWidth; ++i)
                panel.rows[r + i][firstColumn + c] = panel.line(r / stripWidth, c)[i];
    }
    for (std::size_t r = wholeRows; r < panel.numRows; ++r)
        for (std::size_t c = 0; c < panel.numColumns; ++c)
            panel.rows[r][firstColumn + c] = panel.cell(r, c);
}

} // namespace lu
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
