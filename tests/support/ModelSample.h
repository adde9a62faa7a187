#ifndef FENN_TESTS_SUPPORT_MODELSAMPLE_H
#define FENN_TESTS_SUPPORT_MODELSAMPLE_H

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

/// A model's settings, at their plainest: no merging, automatic scales, ordinary Kriging over all points.
struct ModelSettings
{
    double duplicateTolerance = -1.0;
    std::vector<double> scaleFactors = {};
    int driftOrder = 0;
    double rangeFraction = 1.0;
    double nugget = 0.0;
    int numNearestPoints = 0;
};

/// The host's side of a model: the arrays that must outlive it.
struct ModelSample
{
    ModelSample(std::vector<std::vector<double>> inputs_, std::vector<std::vector<double>> outputs_)
        : numPts(static_cast<int>(inputs_[0].size())), inputs(std::move(inputs_)), outputs(std::move(outputs_))
    {
    }

    KrigingSurrogateModel build(const ModelSettings& settings = {})
    {
        return KrigingSurrogateModel(inputs.arrays(), outputs.arrays(), numPts, settings.duplicateTolerance,
                                     settings.scaleFactors, settings.driftOrder, settings.rangeFraction,
                                     settings.nugget, settings.numNearestPoints);
    }

    ModelParts makeParts(const ModelSettings& settings = {})
    {
        return ModelParts(inputs.arrays(), outputs.arrays(), numPts, settings.duplicateTolerance, settings.scaleFactors,
                          settings.rangeFraction, settings.nugget);
    }

    /// The message of the error that building throws; empty when it throws none.
    std::string failureOf(const ModelSettings& settings = {})
    {
        try
        {
            build(settings);
        }
        catch (const SurrogateModelInterface::Error& error)
        {
            return error.what();
        }
        return {};
    }

    int numPts;
    ValueArrays inputs;
    ValueArrays outputs;
};

/// The model's estimates at targets (one list per input variable), one list per element of outputVars.
inline std::vector<std::vector<double>> estimatesOf(const SurrogateModelInterface& model,
                                                    const std::vector<std::vector<double>>& targets,
                                                    const std::set<int>& outputVars)
{
    ValueArrays targetArrays(targets);
    ValueArrays results(outputVars.size(), targets[0].size());
    model.interpolateDependentValues(targetArrays.arrays(), outputVars, results.arrays(), targets[0].size());
    std::vector<std::vector<double>> estimates;
    for (std::size_t k = 0; k < outputVars.size(); ++k)
        estimates.push_back(results[k]);
    return estimates;
}

} // namespace fenn::test

#endif
