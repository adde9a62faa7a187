// The covariance form on one core: its factorisation beside the LU, whole jobs beside the exact engine, a million
// targets, ten outputs, a single target; then 15 000 samples on two threads. Two cores, nothing else running:
//
//     taskset -c 0,1 ./CovarianceBenchmark
//
// Compares the factors with those of the plain loops and the answers with the exact engine's, and refuses to time
// anything that differs. Times on one core are processor time, the least of repeats. The peers of whole
// jobs are timed by script/bench --peers, with krige around them.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/support/Bars.h"
#include "estimation/CovarianceEstimator.h"
#include "estimation/ExactEstimator.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"
#include "surrogatemodel_kriging/kernels/LuKernels.h"
#include "surrogatemodel_kriging/kernels/ScalarCholeskyKernels.h"

namespace
{

using fenn::ElementStore;
using fenn::benchmarks::reportAtLeast;
using fenn::benchmarks::reportAtMost;
using fenn::benchmarks::reportFigure;
using fenn::estimation::CovarianceEstimator;
using fenn::estimation::Estimator;
using fenn::estimation::ExactEstimator;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::kernels::PackedTriangle;

using Columns = std::vector<std::vector<double>>;

const ModelSettings linearDrift{-1.0, {}, 1, 1.0, 0.01, 0};

/// Of all threads: the exact engine answers on those of a pool.
double processSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Least processor time; prepare is called before each run and not timed.
template <class Prepare, class Operation>
double leastSeconds(int numRepeats, const Prepare& prepare, const Operation& operation)
{
    double least = 1e30;
    for (int r = 0; r < numRepeats; ++r)
    {
        prepare();
        const double begin = processSeconds();
        operation();
        least = std::min(least, processSeconds() - begin);
    }
    return least;
}

template <class Operation>
double leastSeconds(int numRepeats, const Operation& operation)
{
    return leastSeconds(
        numRepeats, [] {}, operation);
}

template <class Operation>
double elapsedSeconds(const Operation& operation)
{
    const auto begin = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

Columns randomColumns(std::size_t numColumns, std::size_t count, std::uint64_t seed)
{
    std::mt19937_64 engine(seed);
    Columns columns(numColumns, std::vector<double>(count));
    for (std::vector<double>& column : columns)
    {
        for (double& value : column)
            value = static_cast<double>(engine() >> 11) * 0x1p-53;
    }
    return columns;
}

/// Waves with noise over the unit square.
SampleSet makeSamples(std::size_t numSamples, std::size_t numOutputs)
{
    Columns inputs = randomColumns(2, numSamples, 1);
    Columns outputs = randomColumns(numOutputs, numSamples, 2);
    for (std::size_t o = 0; o < numOutputs; ++o)
    {
        for (std::size_t i = 0; i < numSamples; ++i)
            outputs[o][i] = 0.1 * outputs[o][i] +
                            std::sin(7.0 * inputs[0][i] + static_cast<double>(o)) * std::cos(5.0 * inputs[1][i]);
    }
    return {std::move(inputs), std::move(outputs)};
}

/// A matrix of covariances in both forms, for the two factorisations.
class Systems
{
public:
    explicit Systems(std::size_t n) : size(n), places(randomColumns(2, n, 3))
    {
        cells.allocate(PackedTriangle::sizeFor(n));
        workspace.allocate(fenn::kernels::choleskyWorkspaceSize(n));
        triangle.cells = cells.data();
        triangle.numRows = triangle.numPositive = n;
        elements.allocate(n * n);
        luWorkspace.allocate(fenn::kernels::luWorkspaceSize(n));
        rows.resize(n);
        pivots.resize(n);
    }

    double covariance(std::size_t i, std::size_t j) const
    {
        return i == j ? 1.0 : 0.95 * std::exp(-std::hypot(places[0][i] - places[0][j], places[1][i] - places[1][j]));
    }

    void fillTriangle()
    {
        for (std::size_t i = 0; i < size; ++i)
        {
            for (std::size_t j = 0; j < (i / fenn::kernels::triangleTileRows + 1) * fenn::kernels::triangleTileRows;
                 ++j)
                triangle.at(i, j) = covariance(i, j);
        }
    }

    void fillSquare()
    {
        for (std::size_t i = 0; i < size; ++i)
        {
            rows[i] = elements.data() + i * size;
            for (std::size_t j = 0; j < size; ++j)
                rows[i][j] = 1.0 - covariance(i, j);
        }
    }

    void factoriseTriangle()
    {
        fenn::kernels::factoriseCholesky(triangle, workspace.data());
    }

    void factoriseSquare()
    {
        fenn::kernels::factoriseLu(rows.data(), size, pivots.data(), luWorkspace.data());
    }

    bool bitsAgree()
    {
        fillTriangle();
        factoriseTriangle();
        const std::vector<double> actual(cells.data(), cells.data() + PackedTriangle::sizeFor(size));
        fillTriangle();
        fenn::kernels::scalar::factoriseCholesky(triangle, workspace.data());
        return std::memcmp(actual.data(), cells.data(), actual.size() * sizeof(double)) == 0;
    }

private:
    const std::size_t size;
    const Columns places;
    PackedTriangle triangle;
    ElementStore cells;
    ElementStore workspace;
    ElementStore elements;
    ElementStore luWorkspace;
    std::vector<double*> rows;
    std::vector<int> pivots;
};

bool reportFactorisation()
{
    if (!Systems(504).bitsAgree())
    {
        std::printf("factors differ from those of the plain loops\n");
        return false;
    }
    for (const std::size_t n : {504U, 1008U, 2016U, 4008U})
    {
        Systems systems(n);
        const int numRepeats = n < 600 ? 40 : n < 1100 ? 10 : 3;
        const double cholesky = leastSeconds(
            numRepeats, [&] { systems.fillTriangle(); }, [&] { systems.factoriseTriangle(); });
        const double lu = leastSeconds(
            numRepeats, [&] { systems.fillSquare(); }, [&] { systems.factoriseSquare(); });
        const auto size = static_cast<double>(n);
        const double operations = size * size * size / 3.0;
        const std::string what = "n = " + std::to_string(n);
        std::printf("%s: Cholesky %.2f ms, %.1f GFlop/s; LU %.2f ms, %.1f GFlop/s\n", what.c_str(), 1e3 * cholesky,
                    1e-9 * operations / cholesky, 1e3 * lu, 2e-9 * operations / lu);
        const double ratio = lu / (2.0 * cholesky);
        if (n >= 1000)
            reportAtLeast("Cholesky, operations a second over those of the LU", what, ratio, "", 0.9);
        else
            reportFigure("Cholesky, operations a second over those of the LU", what, fenn::benchmarks::Repeats({ratio}),
                         "");
    }
    return true;
}

/// Targets at random with room for the answers.
class Request
{
public:
    Request(std::size_t numTargets_, std::size_t numOutputs)
        : numTargets(numTargets_),
          targets(randomColumns(2, numTargets_, 4)),
          values(numOutputs, std::vector<double>(numTargets_)),
          variances(numTargets_)
    {
    }

    void ask(const Estimator& estimator, bool wantsVariances)
    {
        std::vector<double*> pointers;
        for (std::vector<double>& column : values)
            pointers.push_back(column.data());
        estimator.estimate({{targets[0].data(), targets[1].data()}, numTargets},
                           {pointers, wantsVariances ? variances.data() : nullptr});
    }

    const std::size_t numTargets;
    Columns targets;
    Columns values;
    std::vector<double> variances;
};

std::unique_ptr<CovarianceEstimator> build(const SampleSet& samples, int numThreads)
{
    std::string reason;
    auto estimator = CovarianceEstimator::makeWhereProven(fenn::estimation::makeModelParts(samples, linearDrift),
                                                          linearDrift, numThreads, reason);
    if (!estimator)
    {
        std::fprintf(stderr, "%s\n", reason.c_str());
        std::exit(EXIT_FAILURE);
    }
    return estimator;
}

/// Both engines answer alike, before either is timed.
bool answersAgree()
{
    const SampleSet samples = makeSamples(400, 1);
    Request actual(500, 1);
    Request expected(500, 1);
    actual.ask(*build(samples, 1), true);
    expected.ask(ExactEstimator(fenn::estimation::makeModelParts(samples, linearDrift), linearDrift, 1, ""), true);
    double worst = 0.0;
    for (std::size_t t = 0; t < 500; ++t)
        worst = std::max({worst, std::fabs(actual.values[0][t] - expected.values[0][t]),
                          std::fabs(actual.variances[t] - expected.variances[t])});
    return worst < 1e-10;
}

/// Building and answering, on one core, beside the exact engine.
void reportJobs()
{
    for (const std::size_t numSamples : {500U, 2000U})
    {
        const SampleSet samples = makeSamples(numSamples, 1);
        Request request(10000, 1);
        for (const bool wantsVariances : {false, true})
        {
            const int numRepeats = numSamples < 1000 ? 10 : 3;
            const double covariance =
                leastSeconds(numRepeats, [&] { request.ask(*build(samples, 1), wantsVariances); });
            const double exact =
                leastSeconds(numSamples < 1000 ? 3 : 1,
                             [&]
                             {
                                 request.ask(ExactEstimator(fenn::estimation::makeModelParts(samples, linearDrift),
                                                            linearDrift, 1, ""),
                                             wantsVariances);
                             });
            const std::string what =
                "n = " + std::to_string(numSamples) + ", 10 000 targets" + (wantsVariances ? " with variances" : "");
            reportFigure("covariance form, building and answering on one core", what,
                         fenn::benchmarks::Repeats({1e3 * covariance}), "ms");
            fenn::benchmarks::reportTimesAsFast("covariance form, one core", "the exact engine", what,
                                                exact / covariance, 1.0);
        }
    }
}

void reportTenOutputs()
{
    double seconds[2] = {};
    for (const std::size_t numOutputs : {1U, 10U})
    {
        const SampleSet samples = makeSamples(2000, numOutputs);
        Request request(10000, numOutputs);
        seconds[numOutputs == 10 ? 1 : 0] = leastSeconds(3, [&] { request.ask(*build(samples, 1), false); });
    }
    reportAtMost("covariance form, ten outputs over one", "n = 2000, 10 000 targets", seconds[1] / seconds[0], "x",
                 1.5);
}

void reportManyTargets()
{
    const SampleSet samples = makeSamples(2000, 1);
    Request request(1000000, 1);
    const auto estimator = build(samples, 1);
    reportAtMost("covariance form, estimates on one core", "n = 2000, 1 000 000 targets",
                 leastSeconds(3, [&] { request.ask(*estimator, false); }), "s", 3.0);
}

void reportSingleTarget()
{
    const SampleSet samples = makeSamples(30, 1);
    Request request(1, 1);
    const auto estimator = build(samples, 1);
    constexpr int numCalls = 1000;
    const double seconds = leastSeconds(20,
                                        [&]
                                        {
                                            for (int i = 0; i < numCalls; ++i)
                                                request.ask(*estimator, false);
                                        });
    reportAtMost("covariance form, a single target", "n = 30", 1e6 * seconds / numCalls, "us", 3.0);
}

void reportLargeModel()
{
    const SampleSet samples = makeSamples(15000, 1);
    Request request(1600, 1);
    std::unique_ptr<CovarianceEstimator> estimator;
    const double begin = processSeconds();
    const double building = elapsedSeconds([&] { estimator = build(samples, 2); });
    std::printf("n = 15 000: building takes %.1f s of processor time, ", processSeconds() - begin);
    std::printf("%.2g standard deviations are proven\n", estimator->getReport().bound);
    reportAtMost("covariance form, building on two cores", "n = 15 000", building, "s", 25.0);
    reportAtMost("covariance form, variances on two cores", "n = 15 000, 1600 targets",
                 elapsedSeconds([&] { request.ask(*estimator, true); }), "s", 8.0);
}

} // namespace

int main()
{
    if (!reportFactorisation())
        return EXIT_FAILURE;
    if (!answersAgree())
    {
        std::printf("answers differ from the exact engine's\n");
        return EXIT_FAILURE;
    }
    reportJobs();
    reportTenOutputs();
    reportManyTargets();
    reportSingleTarget();
    reportLargeModel();
    return EXIT_SUCCESS;
}
