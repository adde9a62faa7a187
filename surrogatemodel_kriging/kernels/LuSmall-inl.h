// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_LU_SMALL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_LU_SMALL_INL_H
#undef FENN_KERNELS_LU_SMALL_INL_H
#else
#define FENN_KERNELS_LU_SMALL_INL_H
#endif

#include <algorithm>
#include <cstddef>

#include "surrogatemodel_kriging/kernels/PivotRule-inl.h"
#include "surrogatemodel_kriging/kernels/Transpose-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace lu
{

/// Where lines of a matrix copied out by columns lie: eight rows of column i.
struct ColumnLines
{
    double* cells;
    std::size_t stride;
    double* at(std::size_t i) const
    {
        return cells + stride * i;
    }
};

/// A matrix of at most kStrips * 8 rows, factorised from a copy by columns whose rows keep their places: lanes are
/// rows, one pass per pivot scales, updates and finds the next pivot, and only whole vectors are stored (a load that
/// follows a store of a part of it waits for the cache).
template <std::size_t kStrips>
class SmallLu
{
public:
    SmallLu(double** rows_, std::size_t n_, double* cells_, double* spareRow) : rows(rows_), n(n_), cells(cells_)
    {
        // Rows that only fill the last strip are multiplied like the others. Zeros stay zeros; what the workspace held
        // before could be denormal, and such a product takes a hundred times as long on many processors.
        // Test: LuWorkspaceTest.WhatItHeldBeforeIsNeverComputedWith
        std::fill_n(spareRow, kRows, 0.0);
        for (std::size_t i = 0; i < kRows; ++i)
        {
            places[i] = i < n ? rows[i] : spareRow;
            atPosition[i] = positionOf[i] = static_cast<int>(i);
        }
    }

    HWY_NOINLINE bool factorise(int* pivots)
    {
        copyIn();
        const Tag d;
        Vec scale[kVecs];
        if (!scaleRows(scale))
            return false;

        hn::Mask<Tag> open[kVecs]; // rows that have not been a pivot
        for (std::size_t v = 0; v < kVecs; ++v)
            open[v] = hn::Lt(hn::Iota(d, static_cast<double>(v * kLanes)), hn::Set(d, static_cast<double>(n)));

        Vec magnitudes[kVecs];
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            magnitudes[v] = candidates(scale[v], hn::Load(d, column(0) + v * kLanes), open[v]);
        std::size_t pivot = bestCandidate(magnitudes, atPosition, 0, n);
        for (std::size_t j = 0;; ++j)
        {
            pivots[j] = positionOf[pivot];
            exchangePositions(j, pivot);
            double& pivotValue = column(j)[pivot];
            if (isTinyPivot(pivotValue))
                pivotValue = leastPivot;
            if (j + 1 == n)
                break;

            const Vec reciprocal = hn::Set(d, 1.0 / pivotValue);
            const Vec pivotRow = hn::Set(d, static_cast<double>(pivot));
            Vec multipliers[kVecs];
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
            {
                open[v] = hn::And(open[v], hn::Ne(hn::Iota(d, static_cast<double>(v * kLanes)), pivotRow));
                const Vec values = hn::Load(d, column(j) + v * kLanes);
                multipliers[v] = hn::IfThenElse(open[v], hn::Mul(values, reciprocal), values);
                hn::Store(multipliers[v], d, column(j) + v * kLanes);
            }
            const Vec aboveNext = hn::Set(d, column(j + 1)[pivot]);
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
            {
                const Vec values = hn::Load(d, column(j + 1) + v * kLanes);
                const Vec updated =
                    hn::IfThenElse(open[v], hn::Sub(values, hn::Mul(multipliers[v], aboveNext)), values);
                hn::Store(updated, d, column(j + 1) + v * kLanes);
                magnitudes[v] = candidates(scale[v], updated, open[v]);
            }
            const std::size_t nextPivot = bestCandidate(magnitudes, atPosition, j + 1, n);
            for (std::size_t c = j + 2; c < n; ++c)
            {
                double* lines = column(c);
                const Vec above = hn::Set(d, lines[pivot]);
                FENN_UNROLL
                for (std::size_t v = 0; v < kVecs; ++v)
                {
                    const Vec values = hn::Load(d, lines + v * kLanes);
                    const Vec updated =
                        hn::IfThenElse(open[v], hn::Sub(values, hn::Mul(multipliers[v], above)), values);
                    hn::Store(updated, d, lines + v * kLanes);
                }
            }
            pivot = nextPivot;
        }
        copyOut();
        return true;
    }

private:
    static constexpr std::size_t kRows = kStrips * stripWidth;
    static constexpr std::size_t kVecs = kStrips * kVecsPerStrip;

    double* column(std::size_t c) const
    {
        return cells + c * kRows;
    }

    bool scaleRows(Vec (&scale)[kVecs]) const
    {
        const Tag d;
        Vec big[kVecs];
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            big[v] = hn::Zero(d);
        for (std::size_t c = 0; c < n; ++c)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
            {
                const Vec magnitude = hn::Abs(hn::Load(d, column(c) + v * kLanes));
                big[v] = hn::IfThenElse(hn::Gt(magnitude, big[v]), magnitude, big[v]);
            }
        }
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
        {
            const auto used = hn::Lt(hn::Iota(d, static_cast<double>(v * kLanes)), hn::Set(d, static_cast<double>(n)));
            if (!hn::AllFalse(d, hn::And(used, hn::Eq(big[v], hn::Zero(d)))))
                return false;
            scale[v] = hn::Div(hn::Set(d, 1.0), hn::IfThenElse(used, big[v], hn::Set(d, 1.0)));
        }
        return true;
    }

    void exchangePositions(std::size_t j, std::size_t pivot)
    {
        const int other = atPosition[j];
        const int position = positionOf[pivot];
        atPosition[position] = other;
        positionOf[other] = position;
        atPosition[j] = static_cast<int>(pivot);
        positionOf[pivot] = static_cast<int>(j);
    }

    void copyIn() const
    {
        if (n < stripWidth)
        {
            for (std::size_t c = 0; c < n; ++c)
                for (std::size_t i = 0; i < kRows; ++i)
                    column(c)[i] = i < n ? places[i][c] : 0.0;
            return;
        }
        for (std::size_t c = 0; c < n; c += stripWidth)
        {
            const std::size_t first = std::min(c, n - stripWidth); // the last eight columns overlap those before
            for (std::size_t s = 0; s < kStrips; ++s)
                transposeStrip(RowLines{places + s * stripWidth, first, 0},
                               ColumnLines{column(first) + s * stripWidth, kRows});
        }
    }

    void copyOut() const
    {
        if (n < stripWidth)
        {
            for (std::size_t c = 0; c < n; ++c)
                for (std::size_t i = 0; i < n; ++i)
                    places[i][c] = column(c)[i];
        }
        for (std::size_t c = 0; n >= stripWidth && c < n; c += stripWidth)
        {
            const std::size_t first = std::min(c, n - stripWidth);
            for (std::size_t s = 0; s < kStrips; ++s)
                transposeStrip(ColumnLines{column(first) + s * stripWidth, kRows},
                               RowLines{places + s * stripWidth, first, 0});
        }
        for (std::size_t i = 0; i < n; ++i)
            rows[i] = places[atPosition[i]];
    }

    double** rows;
    std::size_t n;
    double* cells;
    double* places[kRows]; // of the rows, as the row table had them at first
    int atPosition[kRows]; // row at each position of the row table
    int positionOf[kRows];
};

} // namespace lu
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
