#include "host/reports/RangeText.h"

#include <vector>

#include "estimation/RangeInUnits.h"
#include "estimation/SampleSet.h"
#include "estimation/makeModelParts.h"
#include "host/model/AnalysisInput.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

std::string behindDistance(const std::string& units)
{
    return units.empty() ? "" : " " + units;
}

std::string describeRange(const SampleTable& samples, const Settings& settings, const std::string& units)
{
    const fenn::estimation::SampleSet sampleSet = toSampleSet(samples);
    fenn::estimation::ModelSettings unmerged = withRangeFraction(sampleSet, settings);
    unmerged.duplicateTolerance = -1.0; // ranges do not depend on it, and merging takes time
    const std::vector<double> ranges = fenn::estimation::calcRangesPerInput(*makeModelParts(sampleSet, unmerged));
    std::string text;
    if (settings.anisotropy)
        text = formatFigure(ranges[0]) + behindDistance(units) + " at " +
               formatFigure(settings.anisotropy->getAngle()) + " degrees, " +
               formatFigure(ranges[0] / settings.anisotropy->getRatio()) + behindDistance(units) + " across";
    for (std::size_t v = 0; !settings.anisotropy && v < ranges.size(); ++v)
        text += (v == 0 ? "" : ", ") + formatFigure(ranges[v]) + behindDistance(units) + " in " +
                quoteForMessage(samples.inputNames[v]);
    return text + " (" + formatFigure(unmerged.rangeFraction) + " of the normalised diagonal)";
}

} // namespace krige
