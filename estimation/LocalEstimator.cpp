#include "estimation/LocalEstimator.h"

#include <string>
#include <utility>

#include "estimation/LocalSystems.h"
#include "estimation/ParallelRanges.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

namespace
{

// Targets that a thread takes at a time: some hundred microseconds of work, several times the cost of waking a thread.
constexpr std::size_t rangeSize = 64;

} // namespace

LocalEstimator::LocalEstimator(std::shared_ptr<const ModelParts> parts_, int driftOrder_, int numNeighbours_,
                               int numThreads)
    : Estimator(std::move(parts_)),
      driftOrder(driftOrder_),
      numNeighbours(numNeighbours_),
      points(getParts()),
      ranges(std::make_unique<ParallelRanges>(numThreads)),
      systems(ranges->getNumThreads())
{
    systemsOf(0); // the settings' failures
}

LocalEstimator::~LocalEstimator() = default;

LocalSystems& LocalEstimator::systemsOf(std::size_t slot) const
{
    if (systems[slot] == nullptr)
        systems[slot] = std::make_unique<LocalSystems>(getParts(), points, driftOrder, numNeighbours);
    return *systems[slot];
}

void LocalEstimator::estimate(const Targets& targets, const Results& results) const
{
    ranges->run(targets.count, rangeSize,
                [&](std::size_t slot, std::size_t first, std::size_t end)
                { systemsOf(slot).estimate(targets, first, end, results); });
}

void LocalEstimator::estimateWithoutEach(std::size_t first, std::size_t count, const Results& results) const
{
    ranges->run(count, rangeSize,
                [&](std::size_t slot, std::size_t begin, std::size_t end)
                { systemsOf(slot).estimateWithoutEach(first + begin, first + end, results); });
}

EngineReport LocalEstimator::getReport() const
{
    EngineReport report;
    report.engine = "local";
    report.sentence = "local: each target from its " + std::to_string(numNeighbours) +
                      " nearest points in normalised inputs, by the plug-in's own system over them";
    report.isExact = false;
    return report;
}

std::vector<std::vector<double>> LocalEstimator::calcDualWeights() const
{
    return {};
}

double LocalEstimator::findReciprocalCondition() const
{
    return std::numeric_limits<double>::quiet_NaN();
}

bool LocalEstimator::isGlobal() const
{
    return false;
}

} // namespace fenn::estimation
