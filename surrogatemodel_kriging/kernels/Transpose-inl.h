// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_TRANSPOSE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_TRANSPOSE_INL_H
#undef FENN_KERNELS_TRANSPOSE_INL_H
#else
#define FENN_KERNELS_TRANSPOSE_INL_H
#endif

#include <cstddef>

#include "surrogatemodel_kriging/kernels/Unroll.h"
#include "surrogatemodel_kriging/kernels/Vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
namespace dense
{

/// to(i)[j] = from(j)[i] for i, j in [0, stripWidth). Both have at(i), eight doubles that need no alignment (RowLines,
/// StripLines, ...), and do not overlap.
template <class From, class To>
HWY_INLINE void transposeStrip(const From& from, const To& to)
{
#if HWY_MAX_BYTES == 8 // no vectors
    for (std::size_t i = 0; i < stripWidth; ++i)
        for (std::size_t j = 0; j < stripWidth; ++j)
            to.at(i)[j] = from.at(j)[i];
#else
    const Tag d;
    for (std::size_t i = 0; i < stripWidth; i += kLanes)
    {
        for (std::size_t j = 0; j < stripWidth; j += kLanes)
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

} // namespace dense
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
