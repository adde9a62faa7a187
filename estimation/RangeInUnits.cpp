#include "estimation/RangeInUnits.h"

#include <cmath>

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/kernels/SphericalModel.h"

namespace fenn::estimation
{

ModelSettings withRangeFraction(const SampleSet& samples, const ModelSettings& settings)
{
    if (!settings.rangeInInputUnits)
        return settings;
    // With one scale s the normalised range a s is this fraction of the normalised diagonal d s, whatever s is.
    double diagonal = 0.0;
    for (std::size_t v = 0; v < samples.getNumInputVars(); ++v)
        diagonal = std::hypot(diagonal, samples.calcInputRange(v));
    ModelSettings resolved = settings;
    resolved.rangeFraction = diagonal > 0.0 ? *settings.rangeInInputUnits / diagonal : 0.0;
    resolved.rangeInInputUnits.reset();
    return resolved;
}

std::vector<double> calcRangesPerInput(const ModelParts& parts)
{
    std::vector<double> scales(parts.getNormalizers().size());
    const double range = std::sqrt(parts.getSemivariogram().getKernelModel(scales.data()).rangeSquared);
    std::vector<double> ranges;
    for (const double scale : scales)
        ranges.push_back(range / scale);
    return ranges;
}

} // namespace fenn::estimation
