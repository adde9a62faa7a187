// Whole models on one core and on two, and the memory that a large one takes. Compares the bits of both before it times
// anything; best of repeats. Give it two cores.
//
// Sizes: 1000 samples and 10 000 targets are a usual request; 2000 samples a construction that is mostly factorisation;
// 8000 samples half a gigabyte, where a second matrix could not hide.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/BenchmarkSystem.h"
#include "benchmarks/support/Yardstick.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"

namespace
{

using fenn::benchmarks::BenchmarkSystem;
using fenn::benchmarks::bestTime;
using fenn::benchmarks::Columns;

constexpr std::size_t numInputVars = 2;
constexpr int numTargets = 10000;
const char* const memoryOption = "--peak-memory";

/// Samples without a matrix of their own, and what a controller over them refers to.
struct Samples
{
    explicit Samples(int numPts)
        : inputs(numInputVars, static_cast<std::size_t>(numPts), 1),
          outputs(1, static_cast<std::size_t>(numPts), 2),
          normalizers(numInputVars),
          low(numInputVars, 0.0),
          high(numInputVars, 1.0),
          dataBlock(numPts, inputs.arrays, outputs.arrays, std::vector<bool>(static_cast<std::size_t>(numPts), true),
                    normalizers, low, high),
          semivariogram(low, normalizers, low, high, 1.0, 0.01)
    {
    }

    Columns inputs;
    Columns outputs;
    std::vector<Normalizer> normalizers;
    std::vector<double> low;
    std::vector<double> high;
    SurrogateModelDataBlock dataBlock;
    SphericalSemivariogram semivariogram;
};

/// What the memory's process does: prints its peak in KiB, the program itself included.
int printPeakMemory(int numPts)
{
    Samples samples(numPts);
    const AllPtsKrigingController controller(&samples.dataBlock, &samples.semivariogram, 0);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%ld\n", usage.ru_maxrss);
    return EXIT_SUCCESS;
}

std::vector<double> interpolate(AllPtsKrigingController& controller, Columns& targets)
{
    Columns values(1, numTargets, 3);
    std::vector<double*> noVariances;
    controller.interpolate(targets.arrays, {0}, numTargets, values.arrays, noVariances);
    return values.values[0];
}

bool reportTwoCores()
{
    Samples samples(1000);
    Columns targets(numInputVars, numTargets, 4);
    AllPtsKrigingController one(&samples.dataBlock, &samples.semivariogram, 0, 1);
    AllPtsKrigingController two(&samples.dataBlock, &samples.semivariogram, 0, 2);
    const std::vector<double> expected = interpolate(one, targets);
    const std::vector<double> actual = interpolate(two, targets);
    if (std::memcmp(actual.data(), expected.data(), expected.size() * sizeof(double)) != 0)
    {
        std::printf("two threads give other bits than one\n");
        return false;
    }

    const auto nothing = [] {
    };
    const double requestByOne = bestTime(5, nothing, [&] { interpolate(one, targets); });
    const double requestByTwo = bestTime(5, nothing, [&] { interpolate(two, targets); });
    std::printf("10 000 targets: %.1f ms on one core, %.1f on two\n", 1e3 * requestByOne, 1e3 * requestByTwo);
    fenn::benchmarks::reportTimesAsFast("request by two cores", "one core", "n = 1000, 10 000 targets",
                                        requestByOne / requestByTwo, 1.9);

    Samples large(2000);
    const auto construct = [&](int numThreads)
    {
        return bestTime(5, nothing,
                        [&, numThreads] {
                            const AllPtsKrigingController built(&large.dataBlock, &large.semivariogram, 0, numThreads);
                        });
    };
    const double constructionByOne = construct(1);
    const double constructionByTwo = construct(2);
    std::printf("construction: %.1f ms on one core, %.1f on two\n", 1e3 * constructionByOne, 1e3 * constructionByTwo);
    fenn::benchmarks::reportTimesAsFast("construction by two cores", "one core", "n = 2000",
                                        constructionByOne / constructionByTwo, 1.8);
    return true;
}

void reportMemory()
{
    constexpr int numPts = 8000;
    const double kibibytes = fenn::benchmarks::figureOfChild("", memoryOption + (' ' + std::to_string(numPts)));
    const double matrix = static_cast<double>(numPts) * numPts * sizeof(double);
    fenn::benchmarks::reportAtMost("peak memory of a process that builds a model", "n = 8000", kibibytes / 1024.0,
                                   "MiB", (1.05 * matrix + (64 << 20)) / (1 << 20));
}

void requestByAllCores(benchmark::State& state)
{
    Samples samples(1000);
    Columns targets(numInputVars, numTargets, 4);
    AllPtsKrigingController controller(&samples.dataBlock, &samples.semivariogram, 0);
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(interpolate(controller, targets));
}

BENCHMARK(requestByAllCores)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], memoryOption) == 0)
        return printPeakMemory(std::atoi(argv[2]));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    if (!reportTwoCores())
        return EXIT_FAILURE;
    reportMemory();
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
