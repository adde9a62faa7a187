// How fast this processor multiplies and subtracts, each rounded, beside how fast it does both in one rounding: what
// the contract of exact bits costs at most. 1 where multipliers and adders are separate. The library never fuses; this
// program does, to know the price.

#include <chrono>
#include <cstddef>
#include <cstdio>

#include <benchmark/benchmark.h>

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "benchmarks/PeakBenchmark.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::benchmarks
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/// Twelve sums in registers, as in a tile: enough to hide the latency of both operations. Returns the operations done.
template <bool isFused>
double subtractProducts(const double* factors, std::size_t count, double* result)
{
    using Tag = hn::CappedTag<double, 8>;
    const Tag d;
    using Vec = hn::Vec<Tag>;
    Vec sums[12];
    for (std::size_t s = 0; s < 12; ++s)
        sums[s] = hn::Set(d, static_cast<double>(s));
    const Vec other = hn::Set(d, 0x1p-20);
    for (std::size_t k = 0; k < count; ++k)
    {
        const Vec factor = hn::Load(d, factors + 8 * (k % 128));
#pragma GCC unroll 12
        for (std::size_t s = 0; s < 12; ++s)
        {
            if constexpr (isFused)
                sums[s] = hn::NegMulAdd(factor, other, sums[s]);
            else
            {
                // A product of its own for every sum: it must not be computed once for all.
                Vec product = hn::Mul(factor, other);
#if HWY_ARCH_X86
                asm volatile("" : "+x"(product.raw));
#else
                asm volatile("" : "+w"(product.raw));
#endif
                sums[s] = hn::Sub(sums[s], product);
            }
        }
    }
    Vec total = hn::Zero(d);
    for (std::size_t s = 0; s < 12; ++s)
        total = hn::Add(total, sums[s]);
    hn::Store(total, d, result);
    return 2.0 * 12.0 * static_cast<double>(hn::Lanes(d)) * static_cast<double>(count);
}

double subtractFused(const double* factors, std::size_t count, double* result)
{
    return subtractProducts<true>(factors, count, result);
}

double subtractRoundedApart(const double* factors, std::size_t count, double* result)
{
    return subtractProducts<false>(factors, count, result);
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

/// Best of repeats, in operations a nanosecond.
template <typename Operation>
double measureRate(const Operation& operation)
{
    alignas(64) double factors[8 * 128];
    for (std::size_t i = 0; i < 8 * 128; ++i)
        factors[i] = 0x1p-30 * static_cast<double>(i);
    alignas(64) double result[8];
    double best = 0.0;
    for (int repeat = 0; repeat < 20; ++repeat)
    {
        const auto begin = std::chrono::steady_clock::now();
        const double operations = operation(factors, std::size_t{1} << 20, result);
        const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - begin;
        benchmark::DoNotOptimize(result[0]);
        best = operations / elapsed.count() > best ? operations / elapsed.count() : best;
    }
    return best;
}

void roundedApart(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(measureRate(HWY_DYNAMIC_DISPATCH(subtractRoundedApart)));
}

BENCHMARK(roundedApart)->Unit(benchmark::kMillisecond)->Iterations(1);

void printRates()
{
    const double fused = measureRate(HWY_DYNAMIC_DISPATCH(subtractFused));
    const double apart = measureRate(HWY_DYNAMIC_DISPATCH(subtractRoundedApart));
    std::printf("in registers: fused %.1f GFlop/s, rounded apart %.1f\n", fused, apart);
    std::printf("BAR | multiplying and subtracting, rounded apart beside fused | in registers | %.3f x | none | |\n",
                apart / fused);
}

} // namespace

} // namespace fenn::benchmarks

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    fenn::benchmarks::printRates();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

#endif
