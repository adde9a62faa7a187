// Assembling the system of all points and building a right-hand side, against the factorisation they precede. Checks
// the bits against element-by-element loops, then times; one thread, best of repeats.
//
// Sizes: 33 is a local system, 2000 a large global one.

#include <cstring>
#include <memory>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/BenchmarkSystem.h"

namespace
{

using fenn::benchmarks::BenchmarkSystem;
using fenn::benchmarks::bestTime;

/// Element (i, j) of the system without drift, from the model itself.
double expectedElement(const BenchmarkSystem& system, std::size_t i, std::size_t j)
{
    const std::size_t numPts = system.points.size();
    if (i == j || (i >= numPts && j >= numPts))
        return 0.0;
    if (i >= numPts || j >= numPts)
        return 1.0;
    std::vector<double> separation;
    for (const std::vector<double>& variable : system.inputs.values)
        separation.push_back(variable[std::max(i, j)] - variable[std::min(i, j)]);
    return system.semivariogram.evaluate(separation);
}

bool isAssembledExactly(const BenchmarkSystem& system)
{
    const auto n = static_cast<std::size_t>(system.matrix.getDimension());
    for (std::size_t i = 0; i < n; ++i)
    {
        for (std::size_t j = 0; j < n; ++j)
        {
            const double expected = expectedElement(system, i, j);
            if (std::memcmp(system.matrix.getRow(static_cast<int>(i)) + j, &expected, sizeof expected) != 0)
                return false;
        }
    }
    return true;
}

void assembly(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    BenchmarkSystem system(n - 1, 2, 1, 0);
    system.assemble();
    if (!isAssembledExactly(system))
    {
        state.SkipWithError("bits differ from the model's single evaluations");
        return;
    }
    std::vector<double> target(2, 0.5), rhs(static_cast<std::size_t>(n)), scratch(2);
    const int repeats = n <= 300 ? 200 : 10;
    for ([[maybe_unused]] auto _ : state)
    {
        const double assemblySeconds = bestTime(
            repeats, [] {}, [&] { system.assemble(); });
        const double rhsSeconds = bestTime(
            repeats, [] {},
            [&]
            {
                system.matrix.buildRightHandSide(rhs.data(), target.data(), system.matrix.getAssembledPts(), scratch);
                benchmark::DoNotOptimize(rhs.data());
            });
        std::unique_ptr<BenchmarkSystem> fresh; // its memory is touched for the first time
        const double constructionSeconds = bestTime(
            repeats, [&] { fresh.reset(); },
            [&]
            {
                fresh = std::make_unique<BenchmarkSystem>(n - 1, 2, 1, 0);
                fresh->assemble();
            });
        const double factorisationSeconds = bestTime(
            n <= 300 ? 50 : 3, [&] { system.assemble(); }, [&] { system.matrix.luDecompose(); });
        state.SetIterationTime(assemblySeconds);
        state.counters["rhs_us"] = 1e6 * rhsSeconds;
        state.counters["fresh_ms"] = 1e3 * constructionSeconds;
        state.counters["lu_ms"] = 1e3 * factorisationSeconds;
        if (n == 2000)
            fenn::benchmarks::reportAtMost("all but the factorisation, of a construction", "n = 2000",
                                           100.0 * constructionSeconds / (constructionSeconds + factorisationSeconds),
                                           "%", 6.0);
    }
}

BENCHMARK(assembly)
    ->ArgName("n")
    ->Arg(17)
    ->Arg(33)
    ->Arg(257)
    ->Arg(1000)
    ->Arg(2000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
