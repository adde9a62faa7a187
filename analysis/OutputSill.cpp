#include "analysis/OutputSill.h"

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

using Rule = SillChoice::Rule;

} // namespace

bool operator==(const SillChoice& a, const SillChoice& b)
{
    return a.rule == b.rule && a.value == b.value;
}

SillChoice chooseSill(const std::vector<SillChoice>& choices, std::size_t output)
{
    return choices.empty() ? SillChoice() : choices[choices.size() == 1 ? 0 : output];
}

std::vector<OutputSill> applyChoices(const std::vector<SillChoice>& choices, const std::vector<Sill>& estimated)
{
    std::vector<OutputSill> sills;
    for (std::size_t output = 0; output < estimated.size(); ++output)
    {
        const SillChoice choice = chooseSill(choices, output);
        const Sill& sill = estimated[output];
        const double value = choice.rule == Rule::Given    ? choice.value
                             : choice.rule == Rule::Sample ? sill.sampleVariance
                                                           : sill.value;
        sills.push_back({value, sill.sampleVariance, choice.rule, sill.method, sill.numUsed});
    }
    return sills;
}

std::vector<OutputSill> calcOutputSills(const estimation::Estimator& estimator, const ModelSettings& settings,
                                        const std::vector<SillChoice>& choices, int numThreads,
                                        const Progress& progress)
{
    const SurrogateModelDataBlock& block = estimator.getParts().getDataBlock();
    std::vector<Sill> sills(static_cast<std::size_t>(block.getNumOutputVars()));
    bool needEstimates = false;
    for (std::size_t output = 0; output < sills.size(); ++output)
    {
        sills[output].sampleVariance = block.getOutputVarSampleVariance(static_cast<int>(output));
        needEstimates = needEstimates || chooseSill(choices, output).rule == Rule::Automatic;
    }
    if (needEstimates)
        sills = estimateSills(estimator, settings, numThreads, progress);
    return applyChoices(choices, sills);
}

} // namespace fenn::analysis
