// The factorisation beside LAPACK's dgetrf and beside the plain loops that define its bits.
//
//     taskset -c 1 ./LuBenchmark
//
// Compares the bits first and refuses to time anything else; then takes the best of several runs of each and prints
// what it reaches of the processor's peak with separate roundings, and the ratios to the fastest of OpenBLAS's kernels,
// which round product and difference once. Pin it to one core.
//
// Every number of rows up to 80, to see that none costs much more than its neighbours: it is the systems of local
// Kriging that have them. Sizes beside LAPACK: 12 to 33 are the systems of local Kriging with 8 to 32 neighbours, 65 to
// 513 global ones of usual sample sizes plus a constant, 1000 to 4000 large ones.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/PeakRate.h"
#include "benchmarks/support/SizeSweep.h"
#include "benchmarks/support/ThreadTime.h"
#include "benchmarks/support/Yardstick.h"
#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/LuKernels.h"
#include "surrogatemodel_kriging/kernels/ScalarLuKernels.h"

extern "C" void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* pivots, int* info);

namespace
{

constexpr std::size_t largestCompared = 1000;

/// One matrix and everything that factorising copies of it takes.
class System
{
public:
    explicit System(std::size_t n_) : n(n_), rows(n), pivots(n), scale(n)
    {
        original.allocate(n * n);
        elements.allocate(n * n);
        workspace.allocate(fenn::kernels::luWorkspaceSize(n, 2));
        std::mt19937_64 engine(n);
        for (std::size_t i = 0; i < n * n; ++i)
            original.data()[i] = static_cast<double>(engine() >> 11) * 0x1p-53 - 0.5;
    }

    void refill()
    {
        std::memcpy(elements.data(), original.data(), n * n * sizeof(double));
        for (std::size_t i = 0; i < n; ++i)
            rows[i] = elements.data() + i * n;
    }

    void factorise()
    {
        fenn::kernels::factoriseLu(rows.data(), n, pivots.data(), workspace.data());
    }

    void factoriseByTwo()
    {
        fenn::kernels::SharedLu shared;
        fenn::kernels::prepareSharedLu(shared, rows.data(), n, pivots.data(), workspace.data(), 2);
        std::thread other([&] { fenn::kernels::workOnSharedLu(shared); });
        fenn::kernels::workOnSharedLu(shared);
        other.join();
    }

    void factorisePlainly()
    {
        fenn::kernels::scalar::factoriseLu(rows.data(), n, pivots.data(), scale.data());
    }

    void factoriseByLapack()
    {
        const int size = static_cast<int>(n);
        int info = 0;
        dgetrf_(&size, &size, elements.data(), &size, pivots.data(), &info);
    }

    /// Elements where they lie, and pivots.
    std::vector<double> outcome() const
    {
        std::vector<double> values(elements.data(), elements.data() + n * n);
        values.insert(values.end(), pivots.begin(), pivots.end());
        return values;
    }

    const std::size_t n;

private:
    fenn::ElementStore original;
    fenn::ElementStore elements;
    fenn::ElementStore workspace;
    std::vector<double*> rows;
    std::vector<int> pivots;
    std::vector<double> scale;
};

bool bitsAgree(std::size_t n)
{
    System system(n);
    system.refill();
    system.factorisePlainly();
    const std::vector<double> expected = system.outcome();
    for (const auto operation : {&System::factorise, &System::factoriseByTwo})
    {
        system.refill();
        (system.*operation)();
        const std::vector<double> actual = system.outcome();
        if (std::memcmp(actual.data(), expected.data(), actual.size() * sizeof(double)) != 0)
            return false;
    }
    return true;
}

double timeOnce(System& system, void (System::*operation)())
{
    // Reading the thread's own time takes as long as a small factorisation.
    constexpr std::size_t smallestForThreadTime = 128;
    system.refill();
    if (system.n >= smallestForThreadTime)
    {
        const double begin = fenn::benchmarks::threadSeconds();
        (system.*operation)();
        return fenn::benchmarks::threadSeconds() - begin;
    }
    const auto begin = std::chrono::steady_clock::now();
    (system.*operation)();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Best and median of repeated times, in seconds.
struct Times
{
    void add(double seconds)
    {
        all.push_back(seconds);
    }

    double best() const
    {
        return *std::min_element(all.begin(), all.end());
    }

    double median() const
    {
        std::vector<double> sorted = all;
        std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2), sorted.end());
        return sorted[sorted.size() / 2];
    }

    std::vector<double> all;
};

int numRepeats(std::size_t n)
{
    return n <= 40 ? 5000 : n <= 300 ? 1000 : n <= 600 ? 100 : n <= 1000 ? 30 : n <= 2000 ? 8 : 3;
}

Times repeated(System& system, void (System::*operation)())
{
    Times times;
    for (int r = 0; r < numRepeats(system.n); ++r)
        times.add(timeOnce(system, operation));
    return times;
}

/// What the yardstick's process does.
int printLapackSeconds(std::size_t n)
{
    System system(n);
    std::printf("%.9g\n", repeated(system, &System::factoriseByLapack).best());
    return EXIT_SUCCESS;
}

void printRatios(std::size_t n)
{
    const double lapack = fenn::benchmarks::yardstickSeconds("--dgetrf " + std::to_string(n));
    System system(n);
    const Times kernels = repeated(system, &System::factorise);
    const double size = static_cast<double>(n);
    const double operations = 2.0 / 3.0 * size * size * size;
    std::printf("n = %zu: dgetrf %.2f us, %.1f GFlop/s; here %.2f us (median %.2f), %.1f GFlop/s\n", n, 1e6 * lapack,
                1e-9 * operations / lapack, 1e6 * kernels.best(), 1e6 * kernels.median(),
                1e-9 * operations / kernels.best());
    const std::string what = "n = " + std::to_string(n);
    fenn::benchmarks::reportAtLeast("factorisation, one core, beside `dgetrf`", what, lapack / kernels.best(), "x",
                                    n < 513 ? 1.0 : 1.2);
    // Of short runs the best of some: the first one finds everything out of the caches.
    const fenn::benchmarks::Repeats ofPeak =
        fenn::benchmarks::fractionsOfPeak(std::min(numRepeats(n), 11), operations,
                                          [&]
                                          {
                                              double best = timeOnce(system, &System::factorise);
                                              for (int r = 0; r < numRepeats(n) / 50; ++r)
                                                  best = std::min(best, timeOnce(system, &System::factorise));
                                              return best;
                                          });
    if (n >= 1000)
        fenn::benchmarks::reportAtLeast("factorisation, one core", what, ofPeak, "of the peak rounded apart",
                                        n < 2000 ? 0.85 : 0.88);
    else
        fenn::benchmarks::reportFigure("factorisation, one core", what, ofPeak, "of the peak rounded apart");
}

/// Seconds a factorisation of n rows takes, the best of some runs over several copies of a matrix. The workspace holds
/// denormal leftovers, as a used heap may.
double secondsOfSmallFactorisation(std::size_t n)
{
    constexpr std::size_t numCopies = 32;
    constexpr int numRuns = 8;
    fenn::ElementStore elements, workspace;
    elements.allocate(numCopies * n * n);
    workspace.allocate(fenn::kernels::luWorkspaceSize(n));
    std::vector<double*> rows(numCopies * n);
    std::vector<int> pivots(n);
    double best = std::numeric_limits<double>::infinity();
    for (int run = 0; run < numRuns; ++run)
    {
        std::mt19937_64 engine(n);
        for (std::size_t i = 0; i < numCopies * n * n; ++i)
            elements.data()[i] = static_cast<double>(engine() >> 11) * 0x1p-53 - 0.5;
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i] = elements.data() + i * n;
        std::fill_n(workspace.data(), fenn::kernels::luWorkspaceSize(n), 3e-310);
        const double begin = fenn::benchmarks::threadSeconds();
        for (std::size_t copy = 0; copy < numCopies; ++copy)
            fenn::kernels::factoriseLu(rows.data() + copy * n, n, pivots.data(), workspace.data());
        best = std::min(best, (fenn::benchmarks::threadSeconds() - begin) / static_cast<double>(numCopies));
    }
    return best;
}

void factoriseMatrix(benchmark::State& state, void (System::*operation)())
{
    System system(static_cast<std::size_t>(state.range(0)));
    for (auto iteration : state)
    {
        static_cast<void>(iteration);
        state.SetIterationTime(timeOnce(system, operation));
    }
}

} // namespace

BENCHMARK_CAPTURE(factoriseMatrix, kernels, &System::factorise)->UseManualTime()->Arg(17)->Arg(129)->Arg(1000);
BENCHMARK_CAPTURE(factoriseMatrix, two_threads, &System::factoriseByTwo)->UseManualTime()->Arg(513)->Arg(1000);
BENCHMARK_CAPTURE(factoriseMatrix, dgetrf, &System::factoriseByLapack)->UseManualTime()->Arg(17)->Arg(129)->Arg(1000);
BENCHMARK_CAPTURE(factoriseMatrix, plain_loops, &System::factorisePlainly)
    ->UseManualTime()
    ->Arg(17)
    ->Arg(129)
    ->Arg(513);

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--dgetrf") == 0)
        return printLapackSeconds(static_cast<std::size_t>(std::atoi(argv[2])));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    constexpr std::size_t sizes[] = {12, 17, 33, 65, 129, 257, 513, 1000, 2000, 4000};
    for (const std::size_t n : sizes)
    {
        if (n <= largestCompared && !bitsAgree(n))
        {
            std::printf("n = %zu: bits differ from those of the plain loops\n", n);
            return EXIT_FAILURE;
        }
    }
    fenn::benchmarks::SizeSweep(2, secondsOfSmallFactorisation).print("factorisation");
    for (const std::size_t n : sizes)
        printRatios(n);
    std::printf("\n");
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
