// Whole targets of local Kriging with variances: search, assembly, factorisation, right-hand side, solve, estimate.
//
//     taskset -c 1 ./NPointsBenchmark
//
// First every number of rows up to 80, to see that none costs much more than its neighbours. Then compares the bits
// with those of the single operations one after the other and refuses to time anything else. "Rest" is what the search
// leaves of a target's time.

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <set>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/ScatteredSamples.h"
#include "benchmarks/support/SingleForms.h"
#include "benchmarks/support/SizeSweep.h"
#include "benchmarks/support/ThreadTime.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"

namespace
{

using fenn::benchmarks::RunTime;
using fenn::benchmarks::ScatteredSamples;

struct Case
{
    std::size_t numVars;
    std::size_t numPts;
    int numNearest;
    double bar;     // us a target
    double restBar; // us of it beside the search; 0 without
};

constexpr Case cases[] = {{2, 10000, 16, 6.0, 2.0}, {2, 50000, 32, 24.0, 5.0}, {3, 20000, 24, 14.0, 0.0}};
constexpr std::size_t numTargets = 1000;

class Request
{
public:
    explicit Request(const Case& shape)
        : samples(shape.numVars, shape.numPts, numTargets),
          numNearest(shape.numNearest),
          semivariogram(samples.low, samples.normalizers, samples.low, samples.high, 1.0, 0.0),
          controller(samples.block.get(), &semivariogram, 0, numNearest),
          search(samples.block.get(), static_cast<int>(shape.numVars), 1),
          targetCoords(ScatteredSamples::pointersTo(samples.targets)),
          results(2, std::vector<double>(numTargets))
    {
    }

    void interpolate()
    {
        std::vector<double*> values{results[0].data()};
        std::vector<double*> variances{results[1].data()};
        controller.interpolate(targetCoords, {0}, static_cast<int>(numTargets), values, variances);
    }

    void searchOnly()
    {
        std::vector<SourcePointRef> found(static_cast<std::size_t>(numNearest));
        std::vector<double> target(samples.targets.size());
        for (std::size_t t = 0; t < numTargets; ++t)
        {
            for (std::size_t v = 0; v < target.size(); ++v)
                target[v] = targetCoords[v][t];
            search.findNearestPts(target, numNearest, found);
        }
    }

    bool bitsAgree()
    {
        interpolate();
        fenn::benchmarks::SingleForms singleForms(*samples.block, numNearest, semivariogram);
        std::vector<SourcePointRef> found(static_cast<std::size_t>(numNearest));
        for (std::size_t t = 0; t < numTargets; ++t)
        {
            const std::vector<double> target = samples.target(t);
            search.findNearestPts(target, numNearest, found);
            if (!singleForms.give(results[0][t], results[1][t], target, found))
                return false;
        }
        return true;
    }

private:
    ScatteredSamples samples;
    int numNearest;
    SphericalSemivariogram semivariogram;
    NPtsKrigingController controller;
    NearestNeighborSearch search;
    std::vector<double*> targetCoords;
    std::vector<std::vector<double>> results;
};

bool printCase(const Case& shape)
{
    Request request(shape);
    if (!request.bitsAgree())
    {
        std::printf("d = %zu, %zu points: bits differ from those of the single operations\n", shape.numVars,
                    shape.numPts);
        return false;
    }
    const double perTarget = 1e6 / static_cast<double>(numTargets);
    const RunTime whole(60, [&] { request.interpolate(); });
    const RunTime searching(60, [&] { request.searchOnly(); });
    std::printf("%2zu %8zu %4d %9.2f %9.2f %6.1f %9.2f %9.2f %6.1f\n", shape.numVars, shape.numPts, shape.numNearest,
                whole.best * perTarget, whole.median * perTarget, shape.bar, searching.best * perTarget,
                (whole.best - searching.best) * perTarget, shape.restBar);
    const std::string what = "d = " + std::to_string(shape.numVars) + ", " + std::to_string(shape.numPts) +
                             " points, N = " + std::to_string(shape.numNearest);
    fenn::benchmarks::reportAtMost("local target with variance", what, whole.best * perTarget, "us", shape.bar);
    if (shape.restBar > 0.0)
        fenn::benchmarks::reportAtMost("local target, all but the scan", what,
                                       (whole.best - searching.best) * perTarget, "us", shape.restBar);
    return true;
}

/// Seconds a target takes whose system has n rows, at least 4, out of so few points that the search hardly counts.
double secondsOfLocalTarget(std::size_t n)
{
    constexpr std::size_t numPts = 128;
    constexpr std::size_t numLocalTargets = 64;
    const ScatteredSamples samples(2, numPts, numLocalTargets);
    const SphericalSemivariogram semivariogram(samples.low, samples.normalizers, samples.low, samples.high, 1.0, 0.0);
    const auto numNearest = static_cast<int>(n - 1); // and a row for the constant
    KrigingMatrix matrix(*samples.block, numNearest, &semivariogram, 0);
    const NearestNeighborSearch search(samples.block.get(), 2, 1);
    std::vector<SourcePointRef> found(n - 1);
    std::vector<double> scratch(2), rhs(n), rhsCopy(n);
    double best = std::numeric_limits<double>::infinity();
    for (int run = 0; run < 8; ++run)
    {
        const double begin = fenn::benchmarks::threadSeconds();
        for (std::size_t t = 0; t < numLocalTargets; ++t)
        {
            const std::vector<double> target = samples.target(t);
            search.findNearestPts(target, numNearest, found);
            matrix.assemble(found, scratch);
            matrix.luDecompose();
            matrix.buildRightHandSide(rhs.data(), 0, target, found, scratch);
            rhsCopy = rhs;
            matrix.luSolve(rhs.data());
            benchmark::DoNotOptimize(matrix.estimate(0, found, rhs.data()));
            benchmark::DoNotOptimize(matrix.dotProduct(rhs.data(), rhsCopy.data()));
        }
        best = std::min(best, (fenn::benchmarks::threadSeconds() - begin) / static_cast<double>(numLocalTargets));
    }
    return best;
}

void interpolateTargets(benchmark::State& state)
{
    Request request(cases[state.range(0)]);
    for (auto iteration : state)
    {
        static_cast<void>(iteration);
        request.interpolate();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(numTargets));
}

} // namespace

BENCHMARK(interpolateTargets)->DenseRange(0, 2);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    fenn::benchmarks::SizeSweep(4, secondsOfLocalTarget).print("local target");
    std::printf("us a target in a request of %zu, value and variance; best of repeats\n", numTargets);
    std::printf("%2s %8s %4s %9s %9s %6s %9s %9s %6s\n", "d", "points", "N", "target", "(median)", "bar", "search",
                "rest", "bar");
    for (const Case& shape : cases)
    {
        if (!printCase(shape))
            return EXIT_FAILURE;
    }
    std::printf("\n");
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
