// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_SOLVE_TILES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_SOLVE_TILES_INL_H
#undef FENN_KERNELS_SOLVE_TILES_INL_H
#else
#define FENN_KERNELS_SOLVE_TILES_INL_H
#endif

#include <cstddef>
#include <type_traits>

#include "surrogatemodel_kriging/kernels/Strips.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"
#include "surrogatemodel_kriging/kernels/Vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace solve
{

namespace hn = hwy::HWY_NAMESPACE;

using namespace dense;

constexpr SubstitutionShape kSubstitution = substitutionShape(kUnit);
constexpr std::size_t kForwardRows = kSubstitution.rows;
constexpr std::size_t kForwardVecs = kSubstitution.vecs;
constexpr std::size_t kBackStrips = kSubstitution.backStrips;

/// b -= a c, the product rounded first.
HWY_INLINE Vec subtractProduct(Vec b, double a, Vec c)
{
    return hn::Sub(b, hn::Mul(hn::Set(Tag(), a), c));
}

/// Subtracts the products of k in [begin, end) from kRows rows of a strip, first being the first of them: kVecs vectors
/// from vector 0 of lanes, whose entry k is at lanes + stripWidth * k. end - begin is a multiple of kUnroll.
template <std::size_t kRows, std::size_t kVecs, std::size_t kUnroll>
HWY_INLINE void subtractRows(const double* const* factorRows, std::size_t first, double* lanes, std::size_t begin,
                             std::size_t end)
{
    const Tag d;
    const double* row[kRows];
    Vec sums[kRows][kVecs];
    FENN_UNROLL
    for (std::size_t i = 0; i < kRows; ++i)
    {
        row[i] = factorRows[first + i];
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            sums[i][v] = hn::Load(d, lanes + stripWidth * (first + i) + kLanes * v);
    }
    for (std::size_t k = begin; k < end; k += kUnroll)
    {
        Vec solved[kUnroll][kVecs];
        FENN_UNROLL
        for (std::size_t q = 0; q < kUnroll; ++q)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
                solved[q][v] = hn::Load(d, lanes + stripWidth * (k + q) + kLanes * v);
        }
        FENN_UNROLL
        for (std::size_t i = 0; i < kRows; ++i)
        {
            FENN_UNROLL
            for (std::size_t q = 0; q < kUnroll; ++q)
            {
                FENN_UNROLL
                for (std::size_t v = 0; v < kVecs; ++v)
                    sums[i][v] = subtractProduct(sums[i][v], row[i][k + q], solved[q][v]);
            }
        }
    }
    FENN_UNROLL
    for (std::size_t i = 0; i < kRows; ++i)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            hn::Store(sums[i][v], d, lanes + stripWidth * (first + i) + kLanes * v);
    }
}

/// Finishes kRows rows of the forward substitution whose products of earlier rows are subtracted already.
template <std::size_t kRows, std::size_t kVecs>
HWY_INLINE void finishRows(const double* const* factorRows, std::size_t first, double* lanes)
{
    const Tag d;
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecs; ++v)
    {
        double* lane = lanes + stripWidth * first + kLanes * v;
        Vec sums[kRows];
        FENN_UNROLL
        for (std::size_t i = 0; i < kRows; ++i)
            sums[i] = hn::Load(d, lane + stripWidth * i);
        FENN_UNROLL
        for (std::size_t k = 0; k < kRows; ++k)
        {
            FENN_UNROLL
            for (std::size_t i = k + 1; i < kRows; ++i)
                sums[i] = subtractProduct(sums[i], factorRows[first + i][first + k], sums[k]);
        }
        FENN_UNROLL
        for (std::size_t i = 0; i < kRows; ++i)
            hn::Store(sums[i], d, lane + stripWidth * i);
    }
}

/// Rows first to first + kRows - 1 of the forward substitution, from product begin on (a multiple of kForwardRows).
template <std::size_t kRows>
HWY_INLINE void forwardRows(const double* const* rows, std::size_t first, double* strip, std::size_t begin)
{
    static_assert(kForwardRows % 4 == 0);
    FENN_UNROLL
    for (std::size_t v = 0; v < kVecsPerStrip; v += kForwardVecs)
    {
        subtractRows<kRows, kForwardVecs, 4>(rows, first, strip + kLanes * v, begin, first);
        finishRows<kRows, kForwardVecs>(rows, first, strip + kLanes * v);
    }
}

/// One row of kStrips strips as vectors.
template <std::size_t kStrips>
struct StripRow
{
    Vec sums[kStrips][kVecsPerStrip];

    // Written out: GCC would make one outside this instruction set, where NEON's vectors have no constructor to inline.
    HWY_INLINE StripRow() {}

    HWY_INLINE void load(const double* strips, std::size_t stride, std::size_t i)
    {
        FENN_UNROLL
        for (std::size_t s = 0; s < kStrips; ++s)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecsPerStrip; ++v)
                sums[s][v] = hn::Load(Tag(), strips + stride * s + stripWidth * i + kLanes * v);
        }
    }

    HWY_INLINE void store(double* strips, std::size_t stride, std::size_t i) const
    {
        FENN_UNROLL
        for (std::size_t s = 0; s < kStrips; ++s)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecsPerStrip; ++v)
                hn::Store(sums[s][v], Tag(), strips + stride * s + stripWidth * i + kLanes * v);
        }
    }

    HWY_INLINE void subtract(double factor, const double* strips, std::size_t stride, std::size_t k)
    {
        const Vec factors = hn::Set(Tag(), factor);
        FENN_UNROLL
        for (std::size_t s = 0; s < kStrips; ++s)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecsPerStrip; ++v)
            {
                const Vec solved = hn::Load(Tag(), strips + stride * s + stripWidth * k + kLanes * v);
                sums[s][v] = hn::Sub(sums[s][v], hn::Mul(factors, solved));
            }
        }
    }

    /// Subtracts the products with another row that is in registers still.
    HWY_INLINE void subtract(double factor, const StripRow& solved)
    {
        FENN_UNROLL
        for (std::size_t s = 0; s < kStrips; ++s)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecsPerStrip; ++v)
                sums[s][v] = subtractProduct(sums[s][v], factor, solved.sums[s][v]);
        }
    }

    /// Divides by the diagonal; adds the lanes beyond the limit to the mask.
    HWY_INLINE void divide(double diagonal, double limit, hn::Mask<Tag>& isBeyond)
    {
        const Tag d;
        FENN_UNROLL
        for (std::size_t s = 0; s < kStrips; ++s)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecsPerStrip; ++v)
            {
                sums[s][v] = hn::Div(sums[s][v], hn::Set(d, diagonal));
                isBeyond = hn::Or(isBeyond, hn::Gt(hn::Abs(sums[s][v]), hn::Set(d, limit)));
            }
        }
    }
};

/// The last rows of the forward substitution, fewer than kForwardRows: all strips at once, for one alone would wait for
/// each of its differences.
template <std::size_t kStrips>
HWY_INLINE void forwardTail(const double* const* rows, std::size_t first, std::size_t n, double* strips,
                            std::size_t stride)
{
    for (std::size_t i = first; i < n; ++i)
    {
        const double* factors = rows[i];
        StripRow<kStrips> row;
        row.load(strips, stride, i);
        std::size_t k = 0;
        for (; k + 4 <= i; k += 4)
        {
            FENN_UNROLL
            for (std::size_t q = 0; q < 4; ++q)
                row.subtract(factors[k + q], strips, stride, k + q);
        }
        for (; k < i; ++k)
            row.subtract(factors[k], strips, stride, k);
        row.store(strips, stride, i);
    }
}

/// Rows i to 0 of the back substitution of kStrips strips; the products of row i before begin are subtracted already.
template <std::size_t kStrips>
HWY_INLINE void backRows(const double* const* rows, std::size_t n, double* strips, std::size_t stride, double limit,
                         std::size_t i, std::size_t begin, hn::Mask<Tag>& isBeyond)
{
    StripRow<kStrips> row;
    row.load(strips, stride, i);
    for (std::size_t k = begin;;)
    {
        const double* factors = rows[i];
        for (; k + 4 <= n; k += 4)
        {
            FENN_UNROLL
            for (std::size_t q = 0; q < 4; ++q)
                row.subtract(factors[k + q], strips, stride, k + q);
        }
        for (; k < n; ++k)
            row.subtract(factors[k], strips, stride, k);
        row.divide(factors[i], limit, isBeyond);
        row.store(strips, stride, i);
        if (i == 0)
            return;
        const StripRow<kStrips> solved = row;
        row.load(strips, stride, i - 1);
        row.subtract(rows[i - 1][i], solved);
        k = i + 1;
        --i;
    }
}

/// Calls operation(a constant number of strips, the first of them) until all strips of the group are dealt with.
template <class Operation>
HWY_INLINE void forStripsTogether(const StripGroup& group, const Operation& operation)
{
    for (std::size_t s = 0; s < group.numStrips;)
    {
        const std::size_t numLeft = group.numStrips - s < kBackStrips ? group.numStrips - s : kBackStrips;
        double* strips = group.strips + group.stride * s;
        if (numLeft >= 4)
            operation(std::integral_constant < std::size_t, kBackStrips < 4 ? 1 : 4 > (), strips);
        else if (numLeft == 3)
            operation(std::integral_constant < std::size_t, kBackStrips < 3 ? 1 : 3 > (), strips);
        else if (numLeft == 2)
            operation(std::integral_constant < std::size_t, kBackStrips < 2 ? 1 : 2 > (), strips);
        else
            operation(std::integral_constant<std::size_t, 1>(), strips);
        s += numLeft;
    }
}

HWY_INLINE void substituteTail(const double* const* rows, std::size_t first, std::size_t n, const StripGroup& forward)
{
    forStripsTogether(forward, [&](auto numStrips, double* strips) HWY_ATTR
                      { forwardTail<numStrips()>(rows, first, n, strips, forward.stride); });
}

} // namespace solve
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
