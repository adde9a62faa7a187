#include "estimation/makeModelParts.h"

#include "estimation/RangeInUnits.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

std::shared_ptr<const ModelParts> makeModelParts(const SampleSet& samples, const ModelSettings& settings)
{
    checkSettings(settings, samples.getNumInputVars());
    const ModelSettings resolved = withRangeFraction(samples, settings);
    checkSettings(resolved, samples.getNumInputVars()); // the fraction may have overflown
    return std::make_shared<const ModelParts>(samples.inputArrays(), samples.outputArrays(),
                                              static_cast<int>(samples.getNumSamples()), resolved.duplicateTolerance,
                                              resolved.scaleFactors, resolved.rangeFraction, resolved.nugget,
                                              samples.getIncludeFlags());
}

} // namespace fenn::estimation
