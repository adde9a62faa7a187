// A request of many targets, all points: right-hand sides, solves and estimates against OpenBLAS's dgetrs, which does
// the solves alone, and against the processor's peak with separate roundings. Checks the bits against the single forms,
// then times; one thread, best of repeats.
//
// Sizes: dimensions of systems from a few dozen samples to two thousand; 512 targets, as in the comparison's bars.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/BenchmarkSystem.h"
#include "benchmarks/support/PeakRate.h"
#include "benchmarks/support/ThreadTime.h"
#include "benchmarks/support/Yardstick.h"
#include "surrogatemodel_kriging/InterpolationTask.h"

extern "C"
{
    void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* pivots, int* info);
    void dgetrs_(const char* transposed, const int* n, const int* numRightHandSides, const double* a, const int* lda,
                 const int* pivots, double* b, const int* ldb, int* info);
}

namespace
{

using fenn::benchmarks::BenchmarkSystem;
using fenn::benchmarks::bestTime;
using fenn::benchmarks::Columns;
using fenn::benchmarks::threadSeconds;

constexpr int numTargets = 512;
constexpr int numInputVars = 2;
const char* const baselineOption = "--dgetrs";

const Normalizer uncentred;

int repeatsFor(int n)
{
    return n <= 300 ? 60 : n <= 600 ? 25 : n <= 1000 ? 10 : 6;
}

/// What the baseline process does: prints the best time of dgetrs for a system of n rows.
int printBaseline(int n)
{
    BenchmarkSystem system(n - 1, numInputVars, 1, 0);
    system.assemble();
    const auto size = static_cast<std::size_t>(n);
    std::vector<double> factors;
    for (int i = 0; i < n; ++i)
        factors.insert(factors.end(), system.matrix.getRow(i), system.matrix.getRow(i) + n);
    std::vector<int> pivots(size);
    int info = 0;
    dgetrf_(&n, &n, factors.data(), &n, pivots.data(), &info);
    const Columns rightHandSides(1, size * numTargets, 3);
    std::vector<double> solutions;
    const double seconds = bestTime(
        repeatsFor(n), [&] { solutions = rightHandSides.values[0]; },
        [&] { dgetrs_("N", &n, &numTargets, factors.data(), &n, pivots.data(), solutions.data(), &n, &info); },
        threadSeconds);
    std::printf("%.9g\n", seconds);
    return info;
}

/// Estimates and variances of all targets, one after the other, by the single forms.
void interpolateSingly(BenchmarkSystem& system, const Columns& targets, Columns& values, Columns& variances)
{
    const auto n = static_cast<std::size_t>(system.matrix.getDimension());
    std::vector<double> rhs(n), kept(n), scratch(numInputVars), target(numInputVars);
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        for (std::size_t v = 0; v < numInputVars; ++v)
            target[v] = targets.values[v][t];
        system.matrix.buildRightHandSide(rhs.data(), 0, target, system.points, scratch);
        kept = rhs;
        system.matrix.luSolve(rhs.data());
        for (std::size_t o = 0; o < values.values.size(); ++o)
        {
            values.values[o][t] = system.matrix.estimateCentered(static_cast<int>(o), 0.0, system.points, rhs.data());
            variances.values[o][t] = system.matrix.dotProduct(rhs.data(), kept.data());
        }
    }
}

bool haveSameBits(const Columns& a, const Columns& b)
{
    for (std::size_t v = 0; v < a.values.size(); ++v)
    {
        if (std::memcmp(a.values[v].data(), b.values[v].data(), a.values[v].size() * sizeof(double)) != 0)
            return false;
    }
    return true;
}

void request(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto numOutputs = static_cast<std::size_t>(state.range(1));
    BenchmarkSystem system(n - 1, numInputVars, numOutputs, 0);
    system.assemble();
    system.matrix.luDecompose();
    Columns targets(numInputVars, numTargets, 4);
    Columns values(numOutputs, numTargets, 5), variances(numOutputs, numTargets, 5);
    const auto run = [&](std::vector<double*>& varianceArrays)
    {
        InterpolationTask([](int) -> const Normalizer& { return uncentred; }, &system.matrix, &system.points,
                          numInputVars, &targets.arrays, &system.outputVars, 0, numTargets, &values.arrays,
                          &varianceArrays)
            .run();
    };

    Columns singleValues(numOutputs, numTargets, 6), singleVariances(numOutputs, numTargets, 6);
    interpolateSingly(system, targets, singleValues, singleVariances);
    run(variances.arrays);
    if (!haveSameBits(values, singleValues) || !haveSameBits(variances, singleVariances))
    {
        state.SkipWithError("bits differ from the single forms");
        return;
    }

    std::vector<double*> none;
    const double baseline = fenn::benchmarks::yardstickSeconds(std::string(baselineOption) + ' ' + std::to_string(n));
    for ([[maybe_unused]] auto _ : state)
    {
        const double seconds = bestTime(
            repeatsFor(n), [] {}, [&] { run(none); }, threadSeconds);
        const double withVariances = bestTime(
            repeatsFor(n), [] {}, [&] { run(variances.arrays); }, threadSeconds);
        state.SetIterationTime(seconds);
        state.counters["GFlop/s"] = 2.0 * n * n * numTargets / seconds / 1e9;
        state.counters["dgetrs"] = 2.0 * n * n * numTargets / baseline / 1e9;
        const std::string what =
            "n = " + std::to_string(n) + (numOutputs > 1 ? ", " + std::to_string(numOutputs) + " outputs" : "");
        // Of short runs the best of some: the first one finds everything out of the caches.
        const fenn::benchmarks::Repeats ofPeak =
            fenn::benchmarks::fractionsOfPeak(std::min(repeatsFor(n), 11), 2.0 * n * n * numTargets,
                                              [&]
                                              {
                                                  return bestTime(
                                                      n <= 300 ? 5 : 1, [] {}, [&] { run(none); }, threadSeconds);
                                              });
        if (n >= 500)
            fenn::benchmarks::reportAtLeast("request of 512 targets", what, ofPeak, "of the peak rounded apart", 0.75);
        else
            fenn::benchmarks::reportFigure("request of 512 targets", what, ofPeak, "of the peak rounded apart");
        fenn::benchmarks::reportAtLeast("request of 512 targets, beside `dgetrs` alone", what, baseline / seconds, "x",
                                        n <= 500    ? 1.2
                                        : n <= 1000 ? 1.0
                                                    : 0.75);
        fenn::benchmarks::reportTimesAsFast("request with variances", "without", what, seconds / withVariances,
                                            1.0 / 1.1);
    }
}

BENCHMARK(request)
    ->ArgNames({"n", "outputs"})
    ->ArgsProduct({{33, 65, 129, 257, 500, 1000, 2000}, {1, 10}})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], baselineOption) == 0)
        return printBaseline(std::atoi(argv[2]));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
