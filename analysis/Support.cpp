#include "analysis/Support.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/kernels/SphericalModel.h"

namespace fenn::analysis
{

namespace
{

/// Calls use(t, target) with the coordinates of each target together.
template <typename Use>
void forEachTarget(const Targets& targets, const Use& use)
{
    std::vector<double> target(targets.coords.size());
    for (std::size_t t = 0; t < targets.count; ++t)
    {
        for (std::size_t v = 0; v < target.size(); ++v)
            target[v] = targets.coords[v][t];
        use(t, target);
    }
}

bool isFinite(const std::vector<double>& target)
{
    return std::all_of(target.begin(), target.end(), [](double value) { return std::isfinite(value); });
}

} // namespace

Support::Support(const ModelParts& parts_)
    : parts(parts_), numInputVars(parts.getNormalizers().size()), rangeSquared(0.0), points(parts)
{
    std::vector<double> scales(numInputVars);
    rangeSquared = parts.getSemivariogram().getKernelModel(scales.data()).rangeSquared;
}

bool Support::isInsideBox(const double* target) const
{
    for (std::size_t v = 0; v < numInputVars; ++v)
    {
        if (!(target[v] >= parts.getMinValues()[v] && target[v] <= parts.getMaxValues()[v]))
            return false;
    }
    return true;
}

bool Support::isSupported(const double* target) const
{
    return isInsideBox(target) || isWithinRange(target);
}

bool Support::isWithinRange(const double* target) const
{
    // No point is nearer than the box: most targets far out need no search.
    if (!(calcSquaredDistanceToBox(target) < rangeSquared))
        return false;
    const double distance = calcDistanceToNearest(target);
    return distance * distance < rangeSquared;
}

double Support::calcSquaredDistanceToBox(const double* target) const
{
    double sum = 0.0;
    for (std::size_t v = 0; v < numInputVars; ++v)
    {
        const double below = parts.getMinValues()[v] - target[v];
        const double above = target[v] - parts.getMaxValues()[v];
        if (std::isnan(target[v]))
            return std::numeric_limits<double>::infinity();
        const double distance = std::max({below, above, 0.0}) * parts.getNormalizers()[v].getScale();
        sum += distance * distance;
    }
    return sum;
}

double Support::calcDistanceToNearest(const double* target) const
{
    std::vector<double> normalised(numInputVars);
    estimation::PointIndex::Neighbours nearest(1);
    points.find(target, normalised.data(), nearest);
    return nearest.size() == 0 ? std::numeric_limits<double>::infinity() : std::sqrt(nearest[0].distance);
}

SupportCounts Support::count(const Targets& targets) const
{
    SupportCounts counts;
    forEachTarget(targets,
                  [&](std::size_t /*t*/, const std::vector<double>& target)
                  {
                      if (!isFinite(target) || isInsideBox(target.data()))
                          return;
                      ++counts.numOutsideBox;
                      counts.numUnsupported += isSupported(target.data()) ? 0 : 1;
                  });
    return counts;
}

void Support::calcDistancesToNearest(const Targets& targets, double* distances) const
{
    forEachTarget(targets, [&](std::size_t t, const std::vector<double>& target)
                  { distances[t] = calcDistanceToNearest(target.data()); });
}

} // namespace fenn::analysis
