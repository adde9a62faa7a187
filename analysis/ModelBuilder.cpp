#include "analysis/ModelBuilder.h"

#include <set>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

namespace fenn::analysis
{

std::unique_ptr<KrigingSurrogateModel> buildModel(const SampleSet& samples, const ModelSettings& settings)
{
    checkSettings(settings, samples.getNumInputVars());
    auto model = std::make_unique<KrigingSurrogateModel>(
        samples.inputArrays(), samples.outputArrays(), static_cast<int>(samples.getNumSamples()),
        settings.duplicateTolerance, settings.scaleFactors, settings.driftOrder, settings.rangeFraction,
        settings.nugget, settings.numNearestPoints);
    std::set<int> allOutputVars;
    for (std::size_t w = 0; w < samples.getNumOutputVars(); ++w)
        allOutputVars.insert(static_cast<int>(w));
    model->activateDependentVariables(allOutputVars);
    return model;
}

std::unique_ptr<KrigingSurrogateModel> buildModelParts(const SampleSet& samples, const ModelSettings& settings)
{
    checkSettings(settings, samples.getNumInputVars());
    // The smallest local model: all its parts but the controller are made before a strategy is chosen. Where there are
    // no more included points than that, a global model is as small.
    ModelSettings smallest = settings;
    smallest.driftOrder = 0;
    smallest.numNearestPoints = static_cast<int>(samples.getNumInputVars()) + 1;
    return buildModel(samples, smallest);
}

} // namespace fenn::analysis
