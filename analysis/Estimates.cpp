#include "analysis/Estimates.h"

#include <set>
#include <utility>

#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/KrigingModelAccess.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

Estimates estimateAt(const KrigingSurrogateModel& model, const SampleSet& targets)
{
    const auto numOutputVars = static_cast<std::size_t>(KrigingModelAccess::getDataBlock(model).getNumOutputVars());
    const std::size_t numTargets = targets.getNumSamples();
    std::vector<std::vector<double>> values(numOutputVars, std::vector<double>(numTargets));
    std::vector<std::vector<double>> variances(numOutputVars, std::vector<double>(numTargets));
    std::set<int> outputVars;
    std::vector<double*> valueArrays;
    std::vector<double*> varianceArrays;
    for (std::size_t w = 0; w < numOutputVars; ++w)
    {
        outputVars.insert(static_cast<int>(w));
        valueArrays.push_back(values[w].data());
        varianceArrays.push_back(variances[w].data());
    }
    KrigingModelAccess::getController(model).interpolate(targets.inputArrays(), outputVars,
                                                         static_cast<int>(numTargets), valueArrays, varianceArrays);
    return {std::move(values), std::move(variances[0])};
}

} // namespace fenn::analysis
