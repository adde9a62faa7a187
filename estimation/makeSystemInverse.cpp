#include "estimation/makeSystemInverse.h"

#include "estimation/CovarianceInverse.h"
#include "estimation/GlobalSystem.h"
#include "estimation/SystemSize.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

std::unique_ptr<SystemInverse> makeSystemInverse(const ModelParts& parts, int driftOrder,
                                                 const EstimatorOptions& options)
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

} // namespace fenn::estimation
