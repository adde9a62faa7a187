// Merging of duplicate points beside a sort of as many (value, block, point) triples.
//
//     taskset -c 1 ./DuplicateBenchmark
//
// Counts first what is merged and refuses to time anything else. A laser scan: 10^6 points, three variables, one in a
// hundred a copy of another; the tolerances are those of exact copies, of rounding errors and of a coarse merge, in
// which every point chains with the next in each variable and all are sorted three times.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <tuple>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/ScatteredSamples.h"

namespace
{

using fenn::benchmarks::RunTime;
using fenn::benchmarks::ScatteredSamples;

constexpr std::size_t numPts = 1000000;
constexpr std::size_t numVars = 3;

class Samples
{
public:
    Samples() : samples(numVars, numPts, 0)
    {
        std::mt19937_64 engine(1);
        for (std::size_t i = 0; i < numPts / 100; ++i)
        {
            const std::size_t from = engine() % numPts;
            const std::size_t to = engine() % numPts;
            for (std::vector<double>& variable : samples.inputs)
                variable[to] = variable[from];
        }
    }

    /// Points that are left when all exact copies are one.
    int numDistinct() const
    {
        std::vector<std::array<double, numVars>> points(numPts);
        for (std::size_t p = 0; p < numPts; ++p)
            points[p] = {samples.inputs[0][p], samples.inputs[1][p], samples.inputs[2][p]};
        std::sort(points.begin(), points.end());
        return static_cast<int>(std::unique(points.begin(), points.end()) - points.begin());
    }

    void restore()
    {
        samples.rebuildBlock();
    }

    int merge(double tolerance)
    {
        samples.block->removeDuplicatePts(tolerance);
        return samples.block->getTotalNumUnblankedPoints();
    }

    std::vector<std::tuple<double, int, int>> triples() const
    {
        std::vector<std::tuple<double, int, int>> result;
        for (std::size_t p = 0; p < numPts; ++p)
            result.emplace_back(samples.inputs[0][p], 0, static_cast<int>(p));
        return result;
    }

private:
    ScatteredSamples samples;
};

double bestOf(std::vector<double> times)
{
    return *std::min_element(times.begin(), times.end());
}

void printTolerance(Samples& samples, double tolerance)
{
    std::vector<double> merging, sorting;
    int numLeft = 0;
    for (int r = 0; r < 7; ++r)
    {
        samples.restore();
        merging.push_back(RunTime(1, [&] { numLeft = samples.merge(tolerance); }).best);
        std::vector<std::tuple<double, int, int>> triples = samples.triples();
        sorting.push_back(RunTime(1, [&] { std::sort(triples.begin(), triples.end()); }).best);
    }
    std::printf("%10g %8d %10.1f %10.1f %7.2f %6.1f\n", tolerance, numLeft, 1e3 * bestOf(merging),
                1e3 * bestOf(sorting), bestOf(merging) / bestOf(sorting), 1.5);
    if (tolerance == 0.0)
        fenn::benchmarks::reportTimesAsFast("merging duplicates", "`std::sort`", "10^6 points, d = 3, 1 % duplicates",
                                            bestOf(sorting) / bestOf(merging), 2.0 / 3.0);
}

void mergeDuplicates(benchmark::State& state)
{
    Samples samples;
    for (auto iteration : state)
    {
        static_cast<void>(iteration);
        samples.restore();
        state.SetIterationTime(RunTime(1, [&] { samples.merge(0.0); }).best);
    }
}

} // namespace

BENCHMARK(mergeDuplicates)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    Samples samples;
    samples.restore();
    if (samples.merge(0.0) != samples.numDistinct())
    {
        std::printf("exact copies are not merged into one point each\n");
        return EXIT_FAILURE;
    }
    std::printf("ms, best of repeats; %zu points, %zu variables\n", numPts, numVars);
    std::printf("%10s %8s %10s %10s %7s %6s\n", "tolerance", "left", "merge", "std::sort", "ratio", "bar");
    for (const double tolerance : {0.0, 1e-9, 1e-3})
        printTolerance(samples, tolerance);
    std::printf("\n");
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
