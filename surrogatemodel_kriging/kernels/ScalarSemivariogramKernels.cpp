#include "surrogatemodel_kriging/kernels/ScalarSemivariogramKernels.h"

#include <cmath>

namespace fenn::kernels::scalar
{

double valueAtLag(const SphericalModel& model, double lagSquared)
{
    if (lagSquared <= 0.0)
        return model.nugget;
    if (lagSquared >= model.rangeSquared)
        return 1.0;
    return std::sqrt(lagSquared) * model.shapeCoefficient * (model.threeRangeSquared - lagSquared) + model.nugget;
}

void evaluateSpherical(const SphericalModel& model, const double* const* sources, std::size_t numSources,
                       const double* const* targets, std::size_t numTargets, double* values, std::size_t stride)
{
    for (std::size_t s = 0; s < numSources; ++s)
    {
        for (std::size_t t = 0; t < numTargets; ++t)
        {
            double lagSquared = 0.0;
            for (std::size_t v = 0; v < model.numInputVars; ++v)
            {
                const double difference = (sources[v][s] - targets[v][t]) * model.scales[v];
                lagSquared += difference * difference;
            }
            values[s * stride + t] = valueAtLag(model, lagSquared);
        }
    }
}

} // namespace fenn::kernels::scalar
