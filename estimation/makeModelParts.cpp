#include "estimation/makeModelParts.h"

#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

std::shared_ptr<const ModelParts> makeModelParts(const SampleSet& samples, const ModelSettings& settings)
{
    checkSettings(settings, samples.getNumInputVars());
    return std::make_shared<const ModelParts>(samples.inputArrays(), samples.outputArrays(),
                                              static_cast<int>(samples.getNumSamples()), settings.duplicateTolerance,
                                              settings.scaleFactors, settings.rangeFraction, settings.nugget);
}

} // namespace fenn::estimation
