#include "estimation/ExactEstimator.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "estimation/BorderedSystem.h"
#include "estimation/ThreadCount.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

/// Answers one target of a global model by the single forms of the Kriging system; a request of many targets has the
/// same bits. Samples do not change under an estimator, so their coordinates are gathered once.
class ExactEstimator::CallingThread
{
public:
    CallingThread(const AllPtsKrigingController& controller_, const ModelParts& parts)
        : controller(controller_),
          system(controller_.getSystem()),
          points(parts.getPoints()),
          rightHandSide(static_cast<std::size_t>(system.getDimension())),
          solution(rightHandSide.size()),
          target(parts.getNormalizers().size()),
          scratch(target.size())
    {
        system.gatherCoordinates(points, coordinates);
    }

    const KrigingMatrix& getSystem() const
    {
        return system;
    }

    void estimate(const Targets& targets, const Results& results)
    {
        for (std::size_t v = 0; v < target.size(); ++v)
            target[v] = targets.coords[v][0];
        system.buildRightHandSide(rightHandSide.data(), target.data(), coordinates, scratch);
        solution = rightHandSide;
        system.luSolve(solution.data());
        for (std::size_t w = 0; w < results.estimates.size(); ++w)
        {
            const auto outputVar = static_cast<int>(w);
            results.estimates[w][0] = system.estimateCentered(
                outputVar, controller.getOutputNormalizer(outputVar).getOffset(), points, solution.data());
        }
        if (results.variances != nullptr)
            results.variances[0] = system.dotProduct(solution.data(), rightHandSide.data());
        if (results.driftProducts != nullptr)
            results.driftProducts[0] = system.calcDriftProduct(solution.data(), rightHandSide.data());
    }

private:
    const AllPtsKrigingController& controller;
    const KrigingMatrix& system;
    const std::vector<SourcePointRef>& points;
    PointColumns coordinates;
    std::vector<double> rightHandSide;
    std::vector<double> solution;
    std::vector<double> target;
    std::vector<double> scratch;
};

ExactEstimator::ExactEstimator(std::shared_ptr<const ModelParts> parts_, const ModelSettings& settings, int numThreads,
                               const std::string& reason)
    : Estimator(std::move(parts_))
{
    const SurrogateModelDataBlock& block = getParts().getDataBlock();
    SphericalSemivariogram* const semivariogram = &getParts().getSemivariogram();
    const std::size_t numPoints = getParts().getPoints().size();
    std::string system;
    if (usesAllPoints(settings, numPoints))
    {
        global = std::make_unique<AllPtsKrigingController>(&block, semivariogram, settings.driftOrder,
                                                           chooseThreadCount(numThreads));
        callingThread = std::make_unique<CallingThread>(*global, getParts());
        system = "one system over all " + std::to_string(numPoints) + " points";
    }
    else
    {
        local = std::make_unique<NPtsKrigingController>(&block, semivariogram, settings.driftOrder,
                                                        settings.numNearestPoints);
        system = "a system per target over the nearest " + std::to_string(settings.numNearestPoints) + " of " +
                 std::to_string(numPoints) + " points";
    }
    for (int outputVar = 0; outputVar < block.getNumOutputVars(); ++outputVar)
        outputVars.insert(outputVars.end(), outputVar);
    if (global)
        global->setOutputVars(outputVars);
    else
        local->setOutputVars(outputVars);

    report.engine = "exact";
    report.sentence = "exact: " + system + ", to the bits of the plug-in" + (reason.empty() ? "" : "; " + reason);
}

ExactEstimator::~ExactEstimator() = default;

void ExactEstimator::estimate(const Targets& targets, const Results& results) const
{
    if (targets.count == 1 && callingThread)
    {
        callingThread->estimate(targets, results);
        return;
    }

    constexpr std::size_t mostTargets = std::numeric_limits<int>::max(); // of one request
    for (std::size_t first = 0; first < targets.count; first += mostTargets)
    {
        std::vector<double*> coords;
        for (const double* column : targets.coords)
            coords.push_back(const_cast<double*>(column + first)); // the host contract's type; it is only read
        std::vector<double*> values;
        for (double* column : results.estimates)
            values.push_back(column + first);
        std::vector<double*> variances;
        if (results.variances != nullptr) // the same for every output: they may all go to one place
            variances.assign(values.size(), results.variances + first);
        double* const driftProducts = results.driftProducts == nullptr ? nullptr : results.driftProducts + first;
        const auto count = static_cast<int>(std::min(mostTargets, targets.count - first));
        if (global)
            global->interpolateWithDrift(coords, outputVars, count, values, variances, driftProducts);
        else
            local->interpolateWithDrift(coords, outputVars, count, values, variances, driftProducts);
    }
}

EngineReport ExactEstimator::getReport() const
{
    return report;
}

std::vector<std::vector<double>> ExactEstimator::calcDualWeights() const
{
    if (!isGlobal())
        return {};
    const SurrogateModelDataBlock& block = getParts().getDataBlock();
    std::vector<std::vector<double>> weights;
    for (const int outputVar : outputVars)
    {
        std::vector<double> values; // centred: a common offset changes nothing but the rounding
        for (const auto& [b, i] : getParts().getPoints())
            values.push_back(block.getOutputValueArraysForBlock(b)[static_cast<std::size_t>(outputVar)][i] -
                             block.getOutputVarMean(outputVar));
        weights.push_back(solveForPoints(callingThread->getSystem(), values));
        for (double& weight : weights.back())
            weight = -weight; // on vectors that the drift terms annihilate, semivariances act as minus covariances
    }
    return weights;
}

double ExactEstimator::findReciprocalCondition() const
{
    return isGlobal() ? estimation::calcReciprocalCondition(callingThread->getSystem(), getParts())
                      : std::numeric_limits<double>::quiet_NaN();
}

bool ExactEstimator::isGlobal() const
{
    return callingThread != nullptr;
}

} // namespace fenn::estimation
