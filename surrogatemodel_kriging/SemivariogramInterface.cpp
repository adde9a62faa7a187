#include "surrogatemodel_kriging/SemivariogramInterface.h"

SemivariogramInterface::~SemivariogramInterface() = default;

void SemivariogramInterface::evaluatePairs(const fenn::PointArrays& sources, const fenn::PointArrays& targets,
                                           double* values, std::size_t stride) const
{
    const auto numInputVars = static_cast<std::size_t>(sources.numInputVars);
    std::vector<double> separation(numInputVars);
    for (std::size_t s = 0; s < sources.numPts; ++s)
    {
        for (std::size_t t = 0; t < targets.numPts; ++t)
        {
            for (std::size_t v = 0; v < numInputVars; ++v)
                separation[v] = sources.coordinates[v][s] - targets.coordinates[v][t];
            values[s * stride + t] = evaluate(separation);
        }
    }
}

bool SemivariogramInterface::neverThrows() const
{
    return false;
}
