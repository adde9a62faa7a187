#include "analysis/MergedGroups.h"

#include <algorithm>
#include <cmath>

#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/Normalizer.h"

namespace fenn::analysis
{

namespace
{

using Iterator = std::vector<std::size_t>::iterator;

/// Splits [first, last) by one input variable after the other and appends what stays together through all of them.
void splitByVariable(const SampleSet& samples, const std::vector<double>& thresholds, std::size_t inputVar,
                     Iterator first, Iterator last, std::vector<std::vector<std::size_t>>& groups)
{
    const std::vector<double>& values = samples.getInput(inputVar);
    std::stable_sort(first, last, [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
    for (Iterator runFirst = first; runFirst != last;)
    {
        Iterator runLast = runFirst + 1;
        while (runLast != last && std::fabs(values[*runLast] - values[*(runLast - 1)]) <= thresholds[inputVar])
            ++runLast;
        if (runLast - runFirst > 1)
        {
            if (inputVar + 1 < thresholds.size())
                splitByVariable(samples, thresholds, inputVar + 1, runFirst, runLast, groups);
            else
            {
                groups.emplace_back(runFirst, runLast);
                std::sort(groups.back().begin(), groups.back().end());
            }
        }
        runFirst = runLast;
    }
}

} // namespace

std::vector<std::vector<std::size_t>> findMergedGroups(const SampleSet& samples, double tolerance)
{
    std::vector<std::vector<std::size_t>> groups;
    if (!(tolerance >= 0.0))
        return groups;
    std::vector<double> thresholds;
    for (std::size_t v = 0; v < samples.getNumInputVars(); ++v)
    {
        double min = 0.0;
        double max = 0.0;
        findMinMax(samples.getInput(v).data(), static_cast<int>(samples.getNumSamples()), min, max);
        const double range = max - min;
        thresholds.push_back(range < effectivelyZero ? 0.0 : range * tolerance);
    }
    std::vector<std::size_t> indices(samples.getNumSamples());
    for (std::size_t i = 0; i < indices.size(); ++i)
        indices[i] = i;
    splitByVariable(samples, thresholds, 0, indices.begin(), indices.end(), groups);
    return groups;
}

} // namespace fenn::analysis
