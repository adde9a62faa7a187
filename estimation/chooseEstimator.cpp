#include "estimation/chooseEstimator.h"

#include <limits>
#include <string>

#include "estimation/CovarianceEstimator.h"
#include "estimation/ExactEstimator.h"
#include "estimation/LocalEstimator.h"
#include "estimation/RangeInUnits.h"
#include "estimation/Separation.h"
#include "estimation/SystemSize.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

namespace
{

std::unique_ptr<Estimator> choose(const std::shared_ptr<const ModelParts>& parts, const SampleSet& samples,
                                  const ModelSettings& settings, const EstimatorOptions& options)
{
    const ModelSettings resolved = withRangeFraction(samples, settings);
    const auto exact = [&](const std::string& reason)
    {
        return std::make_unique<ExactEstimator>(parts, resolved, options.numThreads, reason);
    };

    // The first engine that applies answers; each faster one stands between these two.
    if (options.isExact)
        return exact("asked for");
    if (!usesAllPoints(settings, parts->getPoints().size()))
        return std::make_unique<LocalEstimator>(parts, settings.driftOrder, settings.numNearestPoints,
                                                options.numThreads);
    std::string reason;
    if (auto estimator = CovarianceEstimator::makeWhereProven(parts, resolved, options.numThreads, reason))
        return estimator;
    if (options.checkStandIn)
        options.checkStandIn(
            calcSystemBytes(parts->getPoints().size(), samples.getNumInputVars(), settings.driftOrder));
    return exact(reason);
}

} // namespace

std::unique_ptr<Estimator> chooseEstimator(const SampleSet& samples, const ModelSettings& settings,
                                           const EstimatorOptions& options)
{
    const std::shared_ptr<const ModelParts> parts = makeModelParts(samples, settings);
    if (!options.mustTellPointsApart)
        return choose(parts, samples, settings, options);

    const std::size_t numPoints = parts->getPoints().size();
    const std::size_t numInSystem =
        usesAllPoints(settings, numPoints) ? numPoints : static_cast<std::size_t>(settings.numNearestPoints);
    requireSeparation(*parts, std::numeric_limits<double>::quiet_NaN(), numInSystem);
    std::unique_ptr<Estimator> estimator = choose(parts, samples, settings, options);
    requireSeparation(*parts, estimator->calcReciprocalCondition(), numInSystem);
    return estimator;
}

} // namespace fenn::estimation
