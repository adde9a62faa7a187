// The exhaustive search for the points nearest to one target.
//
//     taskset -c 1 ./NearestNeighborBenchmark
//
// Compares what is found with a full sort and refuses to time anything else. Points of real models: a survey (10 000),
// a dense one (50 000), a laser scan (10^6), wells in space (20 000, three variables); in random and in sorted order.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/ScatteredSamples.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"

namespace
{

using fenn::benchmarks::RunTime;
using fenn::benchmarks::ScatteredSamples;

struct Case
{
    std::size_t numVars;
    std::size_t numPts;
    int numNearest;
    double bar; // ns a point; 0 without
};

constexpr Case cases[] = {
    {2, 10000, 16, 0.0}, {2, 10000, 32, 0.45}, {2, 50000, 32, 0.22}, {2, 1000000, 32, 0.2}, {3, 20000, 24, 0.0}};
constexpr std::size_t numTargets = 64;

std::vector<SourcePointRef> nearestByFullSort(const ScatteredSamples& samples, const std::vector<double>& target,
                                              int numNearest)
{
    const double scale = samples.normalizers[0].getScale();
    std::vector<std::pair<double, int>> all(samples.output.size());
    for (std::size_t p = 0; p < all.size(); ++p)
    {
        double sum = 0.0;
        for (std::size_t v = 0; v < target.size(); ++v)
        {
            const double difference = (target[v] - samples.inputs[v][p]) * scale;
            sum += difference * difference;
        }
        all[p] = {sum, static_cast<int>(p)};
    }
    std::sort(all.begin(), all.end());
    std::vector<SourcePointRef> nearest;
    for (int i = 0; i < numNearest; ++i)
        nearest.emplace_back(0, all[static_cast<std::size_t>(i)].second);
    return nearest;
}

class Searches
{
public:
    Searches(const Case& shape, bool isSorted)
        : samples(shape.numVars, shape.numPts, numTargets, isSorted),
          numNearest(shape.numNearest),
          search(samples.block.get(), static_cast<int>(shape.numVars), 1),
          found(static_cast<std::size_t>(numNearest))
    {
        for (std::size_t t = 0; t < numTargets; ++t)
            targets.push_back(samples.target(t));
    }

    bool findWhatAFullSortFinds()
    {
        for (std::size_t t = 0; t < 4; ++t)
        {
            const std::vector<SourcePointRef> expected = nearestByFullSort(samples, targets[t], numNearest);
            findNearest(t);
            if (found != expected)
                return false;
        }
        return true;
    }

    void findNearest(std::size_t t)
    {
        search.findNearestPts(targets[t], numNearest, found);
    }

private:
    ScatteredSamples samples;
    int numNearest;
    NearestNeighborSearch search;
    std::vector<std::vector<double>> targets;
    std::vector<SourcePointRef> found;
};

/// Seconds a target, by turns, so that no branch of the last repeat is remembered: each target's best and median, and
/// the mean of those.
template <typename Search>
std::pair<double, double> timePerTarget(int numRepeats, const Search& search)
{
    std::vector<std::vector<double>> seconds(numTargets);
    for (int r = 0; r < numRepeats; ++r)
    {
        for (std::size_t t = 0; t < numTargets; ++t)
            seconds[t].push_back(RunTime(1, [&] { search(t); }).best);
    }
    std::pair<double, double> mean(0.0, 0.0);
    for (std::vector<double>& ofTarget : seconds)
    {
        std::sort(ofTarget.begin(), ofTarget.end());
        mean.first += ofTarget.front() / numTargets;
        mean.second += ofTarget[ofTarget.size() / 2] / numTargets;
    }
    return mean;
}

bool printCase(const Case& shape, bool isSorted)
{
    Searches searches(shape, isSorted);
    if (!searches.findWhatAFullSortFinds())
    {
        std::printf("d = %zu, %zu points: not the points that a full sort finds\n", shape.numVars, shape.numPts);
        return false;
    }
    const int numRepeats = shape.numPts > 100000 ? 40 : 200;
    const auto time = timePerTarget(numRepeats, [&](std::size_t t) { searches.findNearest(t); });
    const double perPoint = 1e9 / static_cast<double>(shape.numPts);
    std::printf("%2zu %8zu %4d %7s %9.2f %9.3f %9.3f %6.2f\n", shape.numVars, shape.numPts, shape.numNearest,
                isSorted ? "sorted" : "random", 1e6 * time.first, time.first * perPoint, time.second * perPoint,
                shape.bar);
    if (shape.bar > 0.0 && !isSorted)
        fenn::benchmarks::reportAtMost("scan for the nearest, single call",
                                       "d = " + std::to_string(shape.numVars) + ", " + std::to_string(shape.numPts) +
                                           " points, N = " + std::to_string(shape.numNearest),
                                       time.first * perPoint, "ns a point", shape.bar);
    return true;
}

void findNearest(benchmark::State& state)
{
    Searches searches(cases[state.range(0)], false);
    std::size_t t = 0;
    for (auto iteration : state)
    {
        static_cast<void>(iteration);
        searches.findNearest(t++ % numTargets);
    }
}

} // namespace

BENCHMARK(findNearest)->DenseRange(0, 4);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    std::printf("a target: us, ns a point (median) and its bar\n");
    std::printf("%2s %8s %4s %7s %9s %9s %9s %6s\n", "d", "points", "N", "order", "us", "ns/point", "(median)", "bar");
    for (const Case& shape : cases)
    {
        if (!printCase(shape, false) || !printCase(shape, true))
            return EXIT_FAILURE;
    }
    std::printf("\n");
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
