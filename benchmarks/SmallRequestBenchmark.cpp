// Requests of few targets, as an optimiser makes them: one target after the other. Beside the time that Qt's pool takes
// for an empty task, and that of the single forms on the calling thread, in the same rounds. Checks the bits, then
// times; one thread, best of the rounds.
//
// Sizes: 30 samples, where handing over is all; 300, whose system fits the second cache level; 2000, whose does not.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <QRunnable>
#include <QThreadPool>

#include <benchmark/benchmark.h>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/BenchmarkSystem.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"

namespace
{

using fenn::benchmarks::BenchmarkSystem;
using fenn::benchmarks::bestTime;
using fenn::benchmarks::Columns;

constexpr int numInputVars = 2;
constexpr int maxTargets = 9; // one more than stand side by side in a strip

std::size_t roundsFor(int n)
{
    return n <= 30 ? 5000 : n <= 300 ? 1000 : 60;
}

class Times
{
public:
    template <class Operation>
    void add(const Operation& operation)
    {
        seconds.push_back(bestTime(
            1, [] {}, operation));
    }

    double getMedian()
    {
        const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
        std::nth_element(seconds.begin(), middle, seconds.end());
        return *middle;
    }

private:
    std::vector<double> seconds;
};

class EmptyTask : public QRunnable
{
public:
    void run() override {}
};

/// A system of n samples, a controller of one thread over the same samples, and targets for both.
struct SmallRequests
{
    explicit SmallRequests(int n)
        : system(n, numInputVars, 1, 0),
          controller(&system.dataBlock, &system.semivariogram, 0, 1),
          rhs(static_cast<std::size_t>(n) + 1),
          scratch(numInputVars)
    {
        system.assemble();
        system.matrix.luDecompose();
    }

    void request(int numTargets)
    {
        controller.interpolate(targets.arrays, system.outputVars, numTargets, values.arrays, none);
    }

    void solveSingly(std::size_t t)
    {
        const std::vector<double> target{targets.values[0][t], targets.values[1][t]};
        system.matrix.buildRightHandSide(rhs.data(), 0, target, system.points, scratch);
        system.matrix.luSolve(rhs.data());
    }

    /// Of requests of each number of targets, against the single forms.
    bool haveSameBits()
    {
        std::vector<double> expected;
        for (std::size_t t = 0; t < maxTargets; ++t)
        {
            solveSingly(t);
            expected.push_back(system.matrix.estimate(0, system.points, rhs.data()));
        }
        for (int numTargets = 1; numTargets <= maxTargets; ++numTargets)
        {
            std::fill(values.values[0].begin(), values.values[0].end(), 0.0);
            request(numTargets);
            const std::size_t numBytes = static_cast<std::size_t>(numTargets) * sizeof(double);
            if (std::memcmp(values.values[0].data(), expected.data(), numBytes) != 0)
                return false;
        }
        return true;
    }

    BenchmarkSystem system;
    AllPtsKrigingController controller;
    Columns targets{numInputVars, maxTargets, 4};
    Columns values{1, maxTargets, 5};
    std::vector<double*> none;
    std::vector<double> rhs, scratch;
};

void smallRequest(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    SmallRequests requests(n);
    if (!requests.haveSameBits())
    {
        state.SkipWithError("bits differ from the single forms");
        return;
    }
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    const auto handOverEmptyTask = [&pool]
    {
        pool.start(new EmptyTask);
        pool.waitForDone();
    };
    const std::array<int, 6> numbersOfTargets{0, 1, 2, 3, 8, maxTargets}; // 0: the empty task
    Times handOver, singleForms;
    std::map<int, Times> ofRequest;
    for ([[maybe_unused]] auto _ : state)
    {
        for (std::size_t round = 0; round < roundsFor(n); ++round)
        {
            for (std::size_t k = 0; k < numbersOfTargets.size(); ++k) // another one first each round
            {
                const int numTargets = numbersOfTargets[(k + round) % numbersOfTargets.size()];
                if (numTargets == 0)
                    handOver.add(handOverEmptyTask);
                else
                    ofRequest[numTargets].add([&] { requests.request(numTargets); });
            }
            singleForms.add([&] { requests.solveSingly(0); });
        }
        const double oneTarget = ofRequest[1].getMedian();
        state.SetIterationTime(oneTarget);
        state.counters["empty task, us"] = 1e6 * handOver.getMedian();
        state.counters["single forms, us"] = 1e6 * singleForms.getMedian();
        for (const int numTargets : {2, 3, 8, maxTargets})
            state.counters[std::to_string(numTargets) + " targets, us"] = 1e6 * ofRequest[numTargets].getMedian();
        const std::string what = "n = " + std::to_string(n);
        fenn::benchmarks::reportTimesAsFast("request of one target", "an empty task and 1.5 times the single forms",
                                            what, (handOver.getMedian() + 1.5 * singleForms.getMedian()) / oneTarget,
                                            1.0);
        fenn::benchmarks::reportAtMost("request of two targets, the first batch", what,
                                       ofRequest[2].getMedian() / oneTarget, "times that of one", 1.3);
    }
}

BENCHMARK(smallRequest)
    ->ArgName("n")
    ->Arg(30)
    ->Arg(300)
    ->Arg(2000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
