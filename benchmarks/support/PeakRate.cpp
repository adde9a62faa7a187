#include "benchmarks/support/PeakRate.h"

#include <algorithm>
#include <cstddef>

#include "benchmarks/support/ThreadTime.h"
#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "benchmarks/support/PeakRate.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::benchmarks
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/// Makes the compiler take the vector for a new value, in the register where it is.
template <class V>
HWY_INLINE V forgotten(V vector)
{
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    __asm__("" : "+m"(vector));
#else
    auto raw = vector.raw;
#if HWY_ARCH_X86
    __asm__("" : "+v"(raw));
#else
    __asm__("" : "+w"(raw));
#endif
    vector.raw = raw;
#endif
    return vector;
}

/// Twelve sums in registers, as in a tile: enough to hide the latency of both operations. Each of them has a product of
/// its own: were it computed once for all twelve, the rate would be that of the subtractions alone.
/// Test: benchmarks.peak_instructions
template <bool isFused>
HWY_INLINE double subtractProducts(std::size_t count, double* result)
{
    constexpr std::size_t kSums = 12;
    using Tag = hn::CappedTag<double, 8>;
    const Tag d;
    hn::Vec<Tag> sums[kSums];
#pragma GCC unroll 12
    for (std::size_t s = 0; s < kSums; ++s)
        sums[s] = hn::Set(d, static_cast<double>(s));
    hn::Vec<Tag> factor = hn::Set(d, 0x1p-20);
    const hn::Vec<Tag> other = hn::Set(d, 0x1p-20);
    for (std::size_t k = 0; k < count; ++k)
    {
#pragma GCC unroll 12
        for (std::size_t s = 0; s < kSums; ++s)
        {
            factor = forgotten(factor);
            if constexpr (isFused)
                sums[s] = hn::NegMulAdd(factor, other, sums[s]);
            else
                sums[s] = hn::Sub(sums[s], hn::Mul(factor, other));
        }
    }
    hn::Vec<Tag> total = sums[0];
#pragma GCC unroll 12
    for (std::size_t s = 1; s < kSums; ++s)
        total = hn::Max(total, sums[s]);
    hn::Store(total, d, result);
    return 2.0 * static_cast<double>(kSums * hn::Lanes(d)) * static_cast<double>(count);
}

double subtractFused(std::size_t count, double* result)
{
    return subtractProducts<true>(count, result);
}

double subtractRoundedApart(std::size_t count, double* result)
{
    return subtractProducts<false>(count, result);
}

} // namespace HWY_NAMESPACE
} // namespace fenn::benchmarks
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace fenn::benchmarks
{

namespace
{

HWY_EXPORT(subtractFused);
HWY_EXPORT(subtractRoundedApart);

template <class Operation>
double bestRate(const Operation& operation)
{
    alignas(64) double result[8];
    double best = 0.0;
    for (int repeat = 0; repeat < 6; ++repeat)
    {
        const double begin = threadSeconds();
        const double operations = operation(std::size_t{1} << 17, result);
        best = std::max(best, 1e-9 * operations / (threadSeconds() - begin));
    }
    return best;
}

} // namespace

double measureRoundedApartRate()
{
    return bestRate(HWY_DYNAMIC_DISPATCH(subtractRoundedApart));
}

double measureFusedRate()
{
    return bestRate(HWY_DYNAMIC_DISPATCH(subtractFused));
}

} // namespace fenn::benchmarks

#endif
