#include "host/model/OutputSill.h"

#include <algorithm>

#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

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
