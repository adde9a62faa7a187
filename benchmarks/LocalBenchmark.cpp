// Whole targets of the local engine with variances, on one thread: search by the index, gather, systems, estimates.
//
//     taskset -c 1 ./LocalBenchmark
//
// Compares the bits with those of the exhaustive search over normalised inputs and the single operations one after the
// other, and refuses to time anything else. Times are processor time of the thread, the least of repeats. Then the
// building of the index beside sorting as many numbers, and the systems for every number of neighbours.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "benchmarks/support/Bars.h"
#include "benchmarks/support/SingleForms.h"
#include "estimation/LocalEstimator.h"
#include "estimation/PointIndex.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace
{

using fenn::ModelParts;
using fenn::estimation::LocalEstimator;
using fenn::estimation::PointIndex;

struct Case
{
    std::size_t numVars;
    std::size_t numPts;
    int numNeighbours;
    double bar; // us a target
};

constexpr Case cases[] = {{2, 10000, 16, 3.5}, {2, 50000, 32, 8.0}, {3, 20000, 24, 6.5}, {2, 1000000, 32, 12.0}};
constexpr std::size_t numTargets = 10000;
constexpr int numRepeats = 9;

double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <typename Operation>
double leastSeconds(int repeats, const Operation& operation)
{
    double least = std::numeric_limits<double>::infinity();
    for (int r = 0; r < repeats; ++r)
    {
        const double begin = threadSeconds();
        operation();
        least = std::min(least, threadSeconds() - begin);
    }
    return least;
}

using Columns = std::vector<std::vector<double>>;

Columns randomColumns(std::size_t numVars, std::size_t count, std::uint64_t seed)
{
    std::mt19937_64 engine(seed);
    Columns columns(numVars, std::vector<double>(count));
    for (std::vector<double>& column : columns)
    {
        for (double& value : column)
            value = static_cast<double>(engine() >> 11) * 0x1p-53;
    }
    return columns;
}

template <typename Pointer>
std::vector<Pointer> pointersTo(Columns& columns)
{
    std::vector<Pointer> pointers;
    for (std::vector<double>& column : columns)
        pointers.push_back(column.data());
    return pointers;
}

class Request
{
public:
    explicit Request(const Case& shape, std::size_t count = numTargets)
        : inputs(randomColumns(shape.numVars, shape.numPts, 1)),
          outputs(randomColumns(1, shape.numPts, 2)),
          targets(randomColumns(shape.numVars, count, 3)),
          results(randomColumns(2, count, 4)),
          parts(std::make_shared<const ModelParts>(pointersTo<double*>(inputs), pointersTo<double*>(outputs),
                                                   static_cast<int>(shape.numPts), -1.0, std::vector<double>(), 1.0,
                                                   0.0)),
          numNeighbours(shape.numNeighbours),
          estimator(parts, 0, numNeighbours, 1)
    {
    }

    void estimate()
    {
        estimator.estimate({pointersTo<const double*>(targets), targets[0].size()},
                           {{results[0].data()}, results[1].data()});
    }

    /// Of some targets: the whole search is what takes long.
    bool bitsAgree()
    {
        estimate();
        const auto numWanted = static_cast<std::size_t>(numNeighbours);
        fenn::benchmarks::SingleForms singleForms(parts->getDataBlock(), numNeighbours, parts->getSemivariogram());
        for (std::size_t t = 0; t < targets[0].size(); t += targets[0].size() / 50)
        {
            std::vector<double> target;
            for (const std::vector<double>& column : targets)
                target.push_back(column[t]);
            if (!singleForms.give(results[0][t], results[1][t], target, lookAtEveryPoint(target, numWanted)))
                return false;
        }
        return true;
    }

    const ModelParts& getParts() const
    {
        return *parts;
    }

private:
    std::vector<SourcePointRef> lookAtEveryPoint(const std::vector<double>& target, std::size_t numWanted) const
    {
        std::vector<std::pair<double, SourcePointRef>> byDistance;
        for (const SourcePointRef& point : parts->getPoints())
        {
            double sum = 0.0;
            for (std::size_t v = 0; v < target.size(); ++v)
            {
                const Normalizer& normalizer = parts->getNormalizers()[v];
                const double difference = normalizer.normalize(target[v]) -
                                          normalizer.normalize(inputs[v][static_cast<std::size_t>(point.second)]);
                sum += difference * difference;
            }
            byDistance.emplace_back(sum, point);
        }
        std::partial_sort(byDistance.begin(), byDistance.begin() + static_cast<std::ptrdiff_t>(numWanted),
                          byDistance.end());
        std::vector<SourcePointRef> nearest;
        for (std::size_t i = 0; i < numWanted; ++i)
            nearest.push_back(byDistance[i].second);
        return nearest;
    }

    Columns inputs;
    Columns outputs;
    Columns targets;
    Columns results;
    std::shared_ptr<const ModelParts> parts;
    int numNeighbours;
    LocalEstimator estimator;
};

std::string describe(const Case& shape)
{
    return "d = " + std::to_string(shape.numVars) + ", " + std::to_string(shape.numPts) +
           " points, N = " + std::to_string(shape.numNeighbours);
}

/// Searching alone, and building.
void printIndex(const Case& shape, double microsecondsPerTarget)
{
    Columns points = randomColumns(shape.numVars, shape.numPts, 1);
    Columns targets = randomColumns(shape.numVars, numTargets, 3);
    std::unique_ptr<PointIndex> index;
    const double building =
        leastSeconds(5, [&] { index = std::make_unique<PointIndex>(pointersTo<const double*>(points), shape.numPts); });
    const double sorting = leastSeconds(5,
                                        [&]
                                        {
                                            std::vector<double> values = points[0];
                                            std::sort(values.begin(), values.end());
                                        });
    PointIndex::Neighbours nearest(static_cast<std::size_t>(shape.numNeighbours));
    const double searching = leastSeconds(numRepeats,
                                          [&]
                                          {
                                              double target[3];
                                              for (std::size_t t = 0; t < numTargets; ++t)
                                              {
                                                  for (std::size_t v = 0; v < shape.numVars; ++v)
                                                      target[v] = targets[v][t];
                                                  index->find(target, nearest);
                                              }
                                          });
    const double perTarget = 1e6 / static_cast<double>(numTargets);
    std::printf("%2zu %8zu %4d %9.2f %6.1f %9.2f\n", shape.numVars, shape.numPts, shape.numNeighbours,
                microsecondsPerTarget, shape.bar, searching * perTarget);
    fenn::benchmarks::reportAtMost("local engine, target with variance", describe(shape), microsecondsPerTarget, "us",
                                   shape.bar);
    fenn::benchmarks::reportAtMost("index of points, building", describe(shape),
                                   building / sorting / static_cast<double>(shape.numVars), "sorts a variable", 3.5);
}

bool printCase(const Case& shape)
{
    Request request(shape);
    if (!request.bitsAgree())
    {
        std::printf("%s: bits differ from those of the single operations\n", describe(shape).c_str());
        return false;
    }
    printIndex(shape, leastSeconds(numRepeats, [&] { request.estimate(); }) * 1e6 / static_cast<double>(numTargets));
    return true;
}

/// No number of neighbours may cost far more than the ones beside it.
void printEverySize()
{
    double before = 0.0;
    double worst = 0.0;
    int worstAt = 0;
    for (int numNeighbours = 4; numNeighbours <= 80; ++numNeighbours)
    {
        Request request({2, 2000, numNeighbours, 0.0}, 400);
        request.estimate();
        const double time = leastSeconds(15, [&] { request.estimate(); }) * 1e6 / 400.0;
        std::printf("N = %2d %8.2f us\n", numNeighbours, time);
        if (before > 0.0 && time / before > worst)
        {
            worst = time / before;
            worstAt = numNeighbours;
        }
        before = time;
    }
    std::printf("steepest step: to N = %d\n", worstAt);
    fenn::benchmarks::reportAtMost("local engine, every N from 4 to 80", "steepest step", worst, "x", 1.4);
}

} // namespace

int main()
{
    std::printf("us a target in a request of %zu, value and variance; least of %d repeats\n", numTargets, numRepeats);
    std::printf("%2s %8s %4s %9s %6s %9s\n", "d", "points", "N", "target", "bar", "search");
    for (const Case& shape : cases)
    {
        if (!printCase(shape))
            return EXIT_FAILURE;
    }
    printEverySize();
    return EXIT_SUCCESS;
}
