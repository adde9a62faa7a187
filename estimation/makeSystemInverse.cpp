#include "estimation/makeSystemInverse.h"

#include <limits>

#include "estimation/CovarianceInverse.h"
#include "estimation/GlobalSystem.h"
#include "estimation/Separation.h"
#include "estimation/SystemSize.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

namespace
{

std::unique_ptr<SystemInverse> choose(const ModelParts& parts, int driftOrder, const EstimatorOptions& options)
{
    if (!options.isExact)
    {
        if (auto inverse = CovarianceInverse::makeWhereAccurate(parts, driftOrder, options.numThreads))
            return inverse;
        if (options.checkStandIn)
            options.checkStandIn(calcSystemBytes(parts.getPoints().size(), parts.getNormalizers().size(), driftOrder));
    }
    return std::make_unique<GlobalSystem>(parts, driftOrder, options.numThreads);
}

} // namespace

std::unique_ptr<SystemInverse> makeSystemInverse(const ModelParts& parts, int driftOrder,
                                                 const EstimatorOptions& options)
{
    const std::size_t numPoints = parts.getPoints().size();
    if (options.mustTellPointsApart)
        requireSeparation(parts, std::numeric_limits<double>::quiet_NaN(), numPoints);
    std::unique_ptr<SystemInverse> inverse = choose(parts, driftOrder, options);
    if (options.mustTellPointsApart && !inverse->isWellConditioned())
        requireSeparation(parts, 0.0, numPoints);
    return inverse;
}

} // namespace fenn::estimation
