#include "estimation/chooseEstimator.h"

#include <string>

#include "estimation/CovarianceEstimator.h"
#include "estimation/ExactEstimator.h"
#include "estimation/LocalEstimator.h"
#include "estimation/RangeInUnits.h"
#include "estimation/SystemSize.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

std::unique_ptr<Estimator> chooseEstimator(const SampleSet& samples, const ModelSettings& settings,
                                           const EstimatorOptions& options)
{
    const std::shared_ptr<const ModelParts> parts = makeModelParts(samples, settings);
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

} // namespace fenn::estimation
