#include "host/page/FitSection.h"

#include "host/model/DataForm.h"
#include "host/model/SettingsFile.h"
#include "host/page/Html.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

std::string driftText(int order)
{
    switch (order)
    {
    case 0:
        return "order 0: a constant mean, no trend";
    case 1:
        return "order 1: a trend that rises or falls evenly, a tilted plane";
    case 2:
        return "order 2: a curved trend, a polynomial of degree 2";
    default:
        return "order " + std::to_string(order) + ": a polynomial of degree " + std::to_string(order);
    }
}

std::string nuggetText(double nugget)
{
    if (nugget == 0.0)
        return "0: estimates pass through every sample";
    return formatFigure(nugget) + ": so much of the variance is left at distance 0, as of measurement errors; "
                                  "estimates smooth the samples";
}

std::string neighboursText(const SampleModel& model, const Settings& settings)
{
    const std::string points = countOf(static_cast<unsigned>(model.getNumPoints()), "point");
    if (model.isGlobal())
        return "every estimate uses all " + points;
    return "every estimate uses the " + std::to_string(settings.numNearestPoints) + " nearest of " + points;
}

std::string scaleText(const SampleTable& samples, const Settings& settings)
{
    if (settings.anisotropy)
        return "values stay alike " + formatFigure(settings.anisotropy->getRatio()) + " times as far along " +
               formatFigure(settings.anisotropy->getAngle()) + " degrees, anticlockwise from the axis of " +
               samples.inputNames[0] + ", as across it";
    if (settings.scaleFactors.empty())
        return "automatic: the samples' range of every input counts alike";
    std::string text;
    for (std::size_t v = 0; v < settings.scaleFactors.size(); ++v)
        text += (v == 0 ? "" : ", ") + samples.inputNames[v] + " by " + formatFigure(settings.scaleFactors[v]);
    return text;
}

std::string duplicatesText(const SampleModel& model, const Settings& settings)
{
    if (settings.duplicateTolerance < 0.0)
        return settings.keepsDuplicates ? "kept as they are" : "none are merged";
    if (model.getNumMergedSamples() == 0)
        return "merged, but there are none";
    return countOf(static_cast<unsigned>(model.getNumMergedSamples()), "sample") + " averaged into " +
           countOf(static_cast<unsigned>(model.getNumAveragedPoints()), "point");
}

} // namespace

std::string fitSection(const FitData& data)
{
    const Settings& settings = data.settings;
    std::vector<std::vector<std::string>> rows{{"setting", "value"}};
    rows.push_back({"range", data.range});
    rows.push_back({"nugget", nuggetText(settings.nugget)});
    for (std::size_t output = 0; output < data.sills.size(); ++output)
        rows.push_back({"sill of " + data.samples.outputNames[output], describeSill(data.sills[output])});
    rows.push_back({"drift", driftText(settings.driftOrder)});
    rows.push_back({"scale", scaleText(data.samples, settings)});
    rows.push_back({"neighbours", neighboursText(data.model, settings)});
    rows.push_back({"samples at one place", duplicatesText(data.model, settings)});
    if (settings.units.areLogarithms)
        rows.push_back({"transform", "the model is one of natural logarithms; estimates are brought back into the "
                                     "data's units, without bias"});
    const std::string limits = clampText(settings.units.limits);
    if (!limits.empty())
        rows.push_back({"limits", "estimates are brought into " + limits});
    rows.push_back({"computed by", data.engine});
    return paragraphOf(data.origin) + tableOf(rows, "words") + paragraphOf("This page again:", "lead") +
           preformatted(data.repeat) +
           paragraphOf("Estimates and standard errors of these settings in a file:", "lead") +
           preformatted(data.predict) + paragraphOf("The settings as a file for --config:", "lead") +
           preformatted(settingsFileText(settings));
}

} // namespace krige
