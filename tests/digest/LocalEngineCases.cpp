// The local engine of estimation/: neighbours by the index in normalised inputs, systems side by side, several threads.

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <vector>

#include "DigestCases.h"
#include "estimation/LocalEstimator.h"
#include "estimation/PointIndex.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/support/Samples.h"

namespace fenn::test
{
namespace
{

using estimation::LocalEstimator;
using estimation::PointIndex;

using Columns = std::vector<std::vector<double>>;

std::vector<const double*> pointersTo(const Columns& columns)
{
    std::vector<const double*> pointers;
    for (const std::vector<double>& column : columns)
        pointers.push_back(column.data());
    return pointers;
}

struct Shape
{
    std::size_t numInputVars;
    std::size_t numPts;
    int driftOrder;
    int numNeighbours;
    double nugget;
    double duplicateTolerance;
};

/// Both outputs and the variances at the targets, by so many threads.
Columns estimatesOf(const std::shared_ptr<const ModelParts>& parts, const Shape& shape, const Columns& targets,
                    int numThreads)
{
    const LocalEstimator estimator(parts, shape.driftOrder, shape.numNeighbours, numThreads);
    Columns results(3, std::vector<double>(targets[0].size()));
    estimator.estimate({pointersTo(targets), targets[0].size()},
                       {{results[0].data(), results[1].data()}, results[2].data()});
    return results;
}

/// A tenth of the samples lies where another one does; one input spans a thousand times what the others do.
void addEstimates(Digest& digest, const Shape& shape, std::uint64_t seed)
{
    Columns inputValues = randomValues(shape.numInputVars, shape.numPts, -5.0, 20.0, seed);
    for (double& value : inputValues.back())
        value *= 1000.0;
    for (std::size_t i = 9; shape.duplicateTolerance >= 0.0 && i < shape.numPts; i += 10)
    {
        for (std::vector<double>& column : inputValues)
            column[i] = column[i / 2];
    }
    ValueArrays inputs(inputValues);
    ValueArrays outputs(randomValues(2, shape.numPts, 0.0, 1000.0, seed + 1));
    const auto parts =
        std::make_shared<const ModelParts>(inputs.arrays(), outputs.arrays(), static_cast<int>(shape.numPts),
                                           shape.duplicateTolerance, std::vector<double>(), 0.7, shape.nugget);

    Columns targets = randomValues(shape.numInputVars, 203, -6.0, 21.0, seed + 2);
    for (double& value : targets.back())
        value *= 1000.0;
    for (std::size_t t = 0; t < 203; t += 40)
    {
        for (std::size_t v = 0; v < targets.size(); ++v)
            targets[v][t] = inputValues[v][t % shape.numPts];
    }
    const Columns results = estimatesOf(parts, shape, targets, 1);
    if (results != estimatesOf(parts, shape, targets, 3))
        throw std::runtime_error("three threads give other bits than one");
    for (const std::vector<double>& column : results)
        digest.add(column);
}

void localEngine(Digest& digest)
{
    const Shape shapes[] = {{1, 120, 0, 5, 0.0, -1.0},   {2, 400, 0, 16, 0.0, -1.0},  {2, 400, 1, 33, 0.1, -1.0},
                            {3, 500, 0, 24, 0.05, -1.0}, {3, 500, 2, 40, 0.05, -1.0}, {4, 300, 1, 9, 0.0, -1.0},
                            {2, 300, 4, 30, 0.2, -1.0},  {2, 300, 0, 140, 0.0, -1.0}};
    std::uint64_t seed = 9000;
    for (const Shape& shape : shapes)
        addEstimates(digest, shape, seed += 10);
}

void localEngineOfMergedSamples(Digest& digest)
{
    addEstimates(digest, {2, 300, 0, 16, 0.0, 0.0}, 9500);
    addEstimates(digest, {3, 400, 1, 20, 0.0, 1e-6}, 9600);
}

void indexOfPoints(Digest& digest)
{
    for (const std::size_t numVars : {1U, 2U, 3U, 5U})
    {
        Columns points = randomValues(numVars, 2000, 0.0, 12.0, 9700 + numVars);
        for (std::size_t i = 0; i < 2000; i += 2)
        {
            for (std::vector<double>& column : points)
                column[i] = static_cast<double>(static_cast<int>(column[i])); // half of them on a lattice
        }
        const PointIndex index(pointersTo(points), 2000);
        PointIndex::Neighbours nearest(25);
        const Columns targets = randomValues(numVars, 50, 0.0, 12.0, 9800 + numVars);
        std::vector<double> target(numVars);
        for (std::size_t t = 0; t < 50; ++t)
        {
            for (std::size_t v = 0; v < numVars; ++v)
                target[v] = t % 2 == 0 ? targets[v][t] : static_cast<double>(static_cast<int>(targets[v][t]));
            index.find(target.data(), nearest);
            for (std::size_t i = 0; i < nearest.size(); ++i)
            {
                digest.add(nearest[i].distance);
                digest.add(static_cast<int>(nearest[i].position));
            }
        }
    }
}

} // namespace

std::vector<DigestCase> localEngineCases()
{
    return {{"index-of-points", indexOfPoints},
            {"local-engine", localEngine},
            {"local-engine-of-merged-samples", localEngineOfMergedSamples}};
}

} // namespace fenn::test
