// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_SOLVE_MIXED_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_SOLVE_MIXED_INL_H
#undef FENN_KERNELS_SOLVE_MIXED_INL_H
#else
#define FENN_KERNELS_SOLVE_MIXED_INL_H
#endif

#include <algorithm>
#include <cstddef>

#include "hwy/cache_control.h"

#include "surrogatemodel_kriging/kernels/SolveTiles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace solve
{

/// The back substitution of one group mixed, instruction by instruction, with the forward substitution of another.
///
/// A row of the back substitution begins only when the row before it has ended, so it reads all it needs anew: one
/// vector per product, from the second-level cache as soon as a group is larger than the first. A forward tile reads
/// little and computes much. Mixed, both together take hardly longer than the slower one. Needs 32 registers.
///
/// kStrips strips of the first group, at most as many of the other: then the forward substitution, which has fewer
/// products to mix (n^2/8 - n steps against n^2/8 - 5n/8), ends first.
template <std::size_t kStrips>
class MixedSubstitution
{
    static_assert(kStrips == 4 && kVecsPerStrip == 1 && kForwardVecs == 1);

public:
    MixedSubstitution(const double* const* rows_, std::size_t n_, const StripGroup& back_, const StripGroup& forward_,
                      double limit_)
        : rows(rows_), n(n_), back(back_), forward(forward_), limit(limit_), isBeyond(hn::MaskFromVec(hn::Zero(Tag())))
    {
    }

    bool run()
    {
        const std::size_t numTiledRows = n / kForwardRows * kForwardRows;
        backRow = n - 1;
        backNext = n;
        while (first < numTiledRows)
        {
            const std::size_t steps = std::min((n - backNext) / kBackSteps, (first - forwardNext) / kForwardSteps);
            if (steps > 0 && n >= kPrefetchFrom)
                advance<true>(steps);
            else if (steps > 0)
                advance<false>(steps);
            if (n - backNext < kBackSteps)
                turnBackRow();
            if (forwardNext == first)
                turnTile();
        }
        substituteTail(rows, numTiledRows, n, forward);
        backRows<kStrips>(rows, n, back.strips, back.stride, limit, backRow, backNext, isBeyond);
        return !hn::AllFalse(Tag(), isBeyond);
    }

private:
    // Products per step: kBackSteps x kStrips against kForwardSteps x kForwardRows, as many of one as of the other.
    static constexpr std::size_t kBackSteps = 4;
    static constexpr std::size_t kForwardSteps = 2;

    // The factors of fewer rows fit the second-level cache or come from the third in time.
    static constexpr std::size_t kPrefetchFrom = 700;

    template <bool kPrefetches>
    HWY_NOINLINE void advance(std::size_t steps)
    {
        const Tag d;
        // What comes next, should it have to come from beyond the second-level cache: the row before this one, and two
        // rows of the next tile; its others' turns come with the other strips.
        const double* nextBackFactors = rows[backRow - 1] + backNext;
        const std::size_t nextRow = std::min(first + kForwardRows + strip % 4 * 2, n - 2);
        const double* nextFactors[] = {rows[nextRow] + forwardNext, rows[nextRow + 1] + forwardNext};
        const double* HWY_RESTRICT backFactors = rows[backRow] + backNext;
        // The strips' places from two pointers and a distance: four pointers more would not fit the registers.
        std::size_t stride = back.stride;
        const double* near = back.strips + stripWidth * backNext;
        const double* far = near + 3 * stride;
        double* lanes = forward.strips + forward.stride * strip;
        const double* solvedForward = lanes + stripWidth * forwardNext;
        const double* factors[kForwardRows];
        Vec sums[kForwardRows];
        StripRow<kStrips> row;
        row.load(back.strips, stride, backRow);
        FENN_UNROLL
        for (std::size_t i = 0; i < kForwardRows; ++i)
        {
            factors[i] = rows[first + i] + forwardNext;
            sums[i] = hn::Load(d, lanes + stripWidth * (first + i));
        }
        for (std::size_t step = 0; step < steps; ++step)
        {
            FENN_KEEP_IN_REGISTER(stride);
            FENN_UNROLL
            for (std::size_t q = 0; q < kBackSteps; ++q)
            {
                const Vec factor = hn::Set(d, backFactors[q]);
                const double* places[] = {near, near + stride, near + 2 * stride, far};
                FENN_UNROLL
                for (std::size_t s = 0; s < kStrips; ++s)
                    row.sums[s][0] = hn::Sub(row.sums[s][0], hn::Mul(factor, hn::Load(d, places[s] + stripWidth * q)));
            }
            Vec solved[kForwardSteps];
            FENN_UNROLL
            for (std::size_t q = 0; q < kForwardSteps; ++q)
                solved[q] = hn::Load(d, solvedForward + stripWidth * q);
            FENN_UNROLL
            for (std::size_t i = 0; i < kForwardRows; ++i)
            {
                FENN_UNROLL
                for (std::size_t q = 0; q < kForwardSteps; ++q)
                    sums[i] = subtractProduct(sums[i], factors[i][step * kForwardSteps + q], solved[q]);
            }
            if (kPrefetches)
            {
                hwy::Prefetch(nextBackFactors + step * kBackSteps);
                hwy::Prefetch(nextFactors[step % 2] + step * kForwardSteps);
            }
            backFactors += kBackSteps;
            near += kBackSteps * stripWidth;
            far += kBackSteps * stripWidth;
            solvedForward += kForwardSteps * stripWidth;
        }
        row.store(back.strips, stride, backRow);
        FENN_UNROLL
        for (std::size_t i = 0; i < kForwardRows; ++i)
            hn::Store(sums[i], d, lanes + stripWidth * (first + i));
        backNext += steps * kBackSteps;
        forwardNext += steps * kForwardSteps;
    }

    /// Ends the row at hand, of which nothing is left to subtract, and begins the next one with what is not a multiple
    /// of kBackSteps.
    HWY_NOINLINE void turnBackRow()
    {
        StripRow<kStrips> row;
        row.load(back.strips, back.stride, backRow);
        row.divide(rows[backRow][backRow], limit, isBeyond);
        row.store(back.strips, back.stride, backRow);
        const StripRow<kStrips> solved = row;
        backNext = backRow + 1;
        --backRow;
        row.load(back.strips, back.stride, backRow);
        row.subtract(rows[backRow][backRow + 1], solved);
        for (; (n - backNext) % kBackSteps != 0; ++backNext)
            row.subtract(rows[backRow][backNext], back.strips, back.stride, backNext);
        row.store(back.strips, back.stride, backRow);
    }

    /// Ends the tile at hand and goes on to that of the next strip or, after the last, of the next rows.
    HWY_NOINLINE void turnTile()
    {
        finishRows<kForwardRows, kForwardVecs>(rows, first, forward.strips + forward.stride * strip);
        forwardNext = 0;
        if (++strip < forward.numStrips)
            return;
        strip = 0;
        first += kForwardRows;
    }

    const double* const* rows;
    const std::size_t n;
    const StripGroup back;
    const StripGroup forward;
    const double limit;
    hn::Mask<Tag> isBeyond;

    std::size_t backRow = 0;     // row of the back substitution at hand
    std::size_t backNext = 0;    // its next product
    std::size_t first = 0;       // first row of the forward tile at hand
    std::size_t strip = 0;       // its strip
    std::size_t forwardNext = 0; // its next product
};

} // namespace solve
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
