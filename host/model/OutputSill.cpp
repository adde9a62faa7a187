#include "host/model/OutputSill.h"

#include <algorithm>

#include "host/text/NumberText.h"
#include "host/text/TextTable.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige
{

namespace
{

using fenn::analysis::SillMethod;
using Rule = SillChoice::Rule;

/// How a value was found, behind it.
std::string describeOrigin(const OutputSill& sill)
{
    if (sill.rule == Rule::Given)
        return " as given";
    if (sill.rule == Rule::Sample)
        return ", the sample variance";
    if (sill.method == SillMethod::SampleVariance)
        return ", the sample variance, for the points determine no other";
    return (sill.method == SillMethod::LeaveOneOut ? " by leaving out each of " : " by restricted likelihood over ") +
           countOf(sill.numUsed, "point");
}

bool isSampleVariance(const OutputSill& sill)
{
    return sill.rule == Rule::Sample || (sill.rule == Rule::Automatic && sill.method == SillMethod::SampleVariance);
}

} // namespace

std::vector<OutputSill> applyChoices(const std::vector<SillChoice>& choices,
                                     const std::vector<fenn::analysis::Sill>& estimated)
{
    std::vector<OutputSill> sills;
    for (std::size_t output = 0; output < estimated.size(); ++output)
    {
        const SillChoice choice = chooseSill(choices, output);
        const fenn::analysis::Sill& sill = estimated[output];
        const double value = choice.rule == Rule::Given    ? choice.value
                             : choice.rule == Rule::Sample ? sill.sampleVariance
                                                           : sill.value;
        sills.push_back({value, sill.sampleVariance, choice.rule, sill.method, sill.numUsed});
    }
    return sills;
}

std::vector<OutputSill> calcOutputSills(const fenn::estimation::Estimator& estimator,
                                        const fenn::estimation::ModelSettings& settings,
                                        const std::vector<SillChoice>& choices, int numThreads,
                                        const fenn::analysis::Progress& progress)
{
    const SurrogateModelDataBlock& block = estimator.getParts().getDataBlock();
    std::vector<fenn::analysis::Sill> sills(static_cast<std::size_t>(block.getNumOutputVars()));
    bool needEstimates = false;
    for (std::size_t output = 0; output < sills.size(); ++output)
    {
        sills[output].sampleVariance = block.getOutputVarSampleVariance(static_cast<int>(output));
        needEstimates = needEstimates || chooseSill(choices, output).rule == Rule::Automatic;
    }
    if (needEstimates)
        sills = fenn::analysis::estimateSills(estimator, settings, numThreads, progress);
    return applyChoices(choices, sills);
}

std::string describeSill(const OutputSill& sill)
{
    const std::string text = formatFigure(sill.value) + describeOrigin(sill);
    return isSampleVariance(sill) ? text : text + " (sample variance " + formatFigure(sill.sampleVariance) + ")";
}

std::string describeSillsOfFolds(const std::vector<OutputSill>& sills)
{
    if (sills.front().rule == Rule::Given)
        return formatFigure(sills.front().value) + " as given";
    const auto [least, greatest] = std::minmax_element(
        sills.begin(), sills.end(), [](const OutputSill& a, const OutputSill& b) { return a.value < b.value; });
    const std::string range = formatFigure(least->value) + " to " + formatFigure(greatest->value);
    if (sills.front().rule == Rule::Sample)
        return range + ", each fold's the variance of the samples outside it";
    const auto numVariances = static_cast<std::size_t>(std::count_if(sills.begin(), sills.end(), isSampleVariance));
    const std::string estimated = range + ", each fold's estimated from the samples outside it";
    return numVariances == 0 ? estimated
                             : estimated + "; in " + countOf(numVariances, "fold") +
                                   " the sample variance, for the points determine no other";
}

std::vector<SillChoice> choicesOf(const std::vector<OutputSill>& sills)
{
    std::vector<SillChoice> choices;
    for (const OutputSill& sill : sills)
    {
        const SillChoice asGiven = sill.value > 0.0 ? SillChoice{Rule::Given, sill.value} : SillChoice();
        choices.push_back(sill.rule == Rule::Sample ? SillChoice{Rule::Sample, 0.0} : asGiven);
    }
    return choices;
}

} // namespace krige
