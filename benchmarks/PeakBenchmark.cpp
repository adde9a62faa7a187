// How fast this processor multiplies and subtracts, each rounded, beside how fast it does both in one rounding: what
// the contract of exact bits costs at most. 1 where multipliers and adders are separate, 0.5 where they share ports.
// The library never fuses; this program does, to know the price.

#include <cstdio>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/PeakRate.h"

namespace
{

using fenn::benchmarks::measureFusedRate;
using fenn::benchmarks::measureRoundedApartRate;

void roundedApart(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(measureRoundedApartRate());
}

BENCHMARK(roundedApart)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const double fused = measureFusedRate();
    const double apart = measureRoundedApartRate();
    std::printf("in registers: fused %.1f GFlop/s, rounded apart %.1f\n", fused, apart);
    fenn::benchmarks::reportFigure("multiplying and subtracting, rounded apart", "in registers",
                                   fenn::benchmarks::Repeats({apart / fused}), "of the fused rate");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
