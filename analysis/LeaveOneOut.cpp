#include "analysis/LeaveOneOut.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "analysis/ModelPoints.h"
#include "estimation/LocalEstimator.h"
#include "estimation/Separation.h"
#include "estimation/SystemSize.h"
#include "estimation/makeModelParts.h"
#include "estimation/makeSystemInverse.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

/// A larger variance, in sills, means that the other points do not determine this one: without rounding it were
/// infinite.
constexpr double largestVariance = 1e10;

/// Local estimates between two calls of progress: some tens of milliseconds.
constexpr std::size_t pointsPerReport = 4096;

constexpr double noEstimate = std::numeric_limits<double>::quiet_NaN();

void estimateGlobally(const ModelParts& parts, int driftOrder, const estimation::EstimatorOptions& options,
                      const Progress& progress, LeaveOneOutResult& result)
{
    const std::size_t numPoints = parts.getPoints().size();
    if (numPoints == 0)
        throw SurrogateModelInterface::Error("Not enough source points for kriging.");
    estimation::checkPointsSuffice(numPoints - 1, parts.getNormalizers().size(), driftOrder);
    estimation::EstimatorOptions fastest = options;
    fastest.isExact = false; // one factorisation estimates every point: nothing here has the plug-in's bits
    const auto inverse = estimation::makeSystemInverse(parts, driftOrder, fastest);
    std::vector<double>& driftProducts = result.estimates.driftProducts;
    const std::vector<double> diagonal =
        inverse->calcDiagonal([&](std::size_t numDone) { report(progress, numDone, numPoints); }, &driftProducts);
    const auto isSolvable = [&](std::size_t i)
    {
        return std::fabs(1.0 / diagonal[i]) <= largestVariance;
    };
    for (std::size_t i = 0; i < numPoints; ++i)
    {
        result.estimates.variances[i] = isSolvable(i) ? -1.0 / diagonal[i] : noEstimate;
        driftProducts[i] = isSolvable(i) ? -driftProducts[i] / diagonal[i] : noEstimate;
    }

    std::vector<std::vector<double>> dualWeights;
    for (std::size_t w = 0; w < result.truths.size(); ++w)
    {
        dualWeights.push_back(inverse->solve(centred(result.truths[w], parts.getDataBlock(), w)));
        for (std::size_t i = 0; i < numPoints; ++i)
            result.estimates.values[w][i] =
                isSolvable(i) ? result.truths[w][i] - dualWeights[w][i] / diagonal[i] : noEstimate;
        for (double& weight : dualWeights[w])
            weight = -weight; // the semivariogram form has the other sign
    }
    if (!inverse->isWellConditioned())
        dualWeights.clear();
    result.sills = restrictedSills(parts, dualWeights, driftOrder);
}

void estimateLocally(const std::shared_ptr<const ModelParts>& parts, int driftOrder, int numNeighbours,
                     const estimation::EstimatorOptions& options, const Progress& progress, LeaveOneOutResult& result)
{
    if (options.mustTellPointsApart)
        estimation::requireSeparation(*parts, noEstimate, static_cast<std::size_t>(numNeighbours));
    const estimation::LocalEstimator estimator(parts, driftOrder, numNeighbours, options.numThreads);
    estimation::Results where;
    for (std::vector<double>& values : result.estimates.values)
        where.estimates.push_back(values.data());
    where.variances = result.estimates.variances.data();
    where.driftProducts = result.estimates.driftProducts.data();
    const std::size_t numPoints = parts->getPoints().size();
    for (std::size_t i = 0; i < numPoints; i += pointsPerReport)
    {
        const std::size_t count = std::min(pointsPerReport, numPoints - i);
        estimator.estimateWithoutEach(i, count, where);
        report(progress, i + count, numPoints);
    }
    result.sills = leaveOneOutSills(estimator);
}

} // namespace

LeaveOneOutResult leaveOneOut(const SampleSet& samples, const ModelSettings& settings, const Progress& progress,
                              const estimation::EstimatorOptions& options)
{
    const std::shared_ptr<const ModelParts> parts = estimation::makeModelParts(samples, settings);
    const std::size_t numPoints = parts->getPoints().size();

    LeaveOneOutResult result;
    result.members = membersOfPoints(*parts);
    result.truths = outputsOfPoints(*parts);
    result.estimates.values.assign(result.truths.size(), std::vector<double>(numPoints));
    result.estimates.variances.resize(numPoints);
    result.estimates.driftProducts.resize(numPoints);

    if (estimation::usesAllPoints(settings, numPoints))
        estimateGlobally(*parts, settings.driftOrder, options, progress, result);
    else
        estimateLocally(parts, settings.driftOrder, settings.numNearestPoints, options, progress, result);
    return result;
}

} // namespace fenn::analysis
