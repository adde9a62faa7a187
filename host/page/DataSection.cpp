#include "host/page/DataSection.h"

#include <algorithm>

#include "analysis/Distribution.h"
#include "host/page/Chart.h"
#include "host/page/Html.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

constexpr std::size_t mostHistograms = 12;

std::string tableOfColumns(const SampleTable& samples)
{
    std::vector<std::vector<std::string>> rows{{"column", "taken as", "least", "lower quartile", "median", "mean",
                                                "upper quartile", "greatest", "standard deviation"}};
    const auto add = [&rows](const std::string& name, const char* kind, const std::vector<double>& values)
    {
        const fenn::analysis::Distribution d = fenn::analysis::describeValues(values);
        rows.push_back({name, kind});
        for (const double figure :
             {d.least, d.lowerQuartile, d.median, d.mean, d.upperQuartile, d.greatest, d.standardDeviation})
            rows.back().push_back(formatFigure(figure));
    };
    for (std::size_t v = 0; v < samples.inputs.size(); ++v)
        add(samples.inputNames[v], "input", samples.inputs[v]);
    for (std::size_t w = 0; w < samples.outputs.size(); ++w)
        add(samples.outputNames[w], "output", samples.outputs[w]);
    return tableOf(rows);
}

std::string histogramOf(const std::string& name, const std::string& title, const std::vector<double>& values)
{
    const fenn::analysis::Histogram histogram = fenn::analysis::countInBins(values);
    const std::size_t most = *std::max_element(histogram.counts.begin(), histogram.counts.end());
    ChartFrame frame;
    frame.xLow = histogram.low;
    frame.xHigh = histogram.high;
    frame.yHigh = 1.05 * static_cast<double>(most);
    frame.xTitle = title;
    frame.yTitle = "samples";
    frame.ratio = 0.45;
    const auto numBins = static_cast<double>(histogram.counts.size());
    const Axis axis(histogram.low, histogram.high, 2); // which has a length also where the values have none
    Chart chart(frame);
    for (std::size_t bin = 0; bin < histogram.counts.size(); ++bin)
    {
        const auto edge = [&](std::size_t i)
        {
            const double share = static_cast<double>(i) / numBins;
            return axis.getLow() * (1.0 - share) + axis.getHigh() * share;
        };
        if (histogram.counts[bin] > 0)
            chart.addBar(edge(bin), edge(bin + 1), static_cast<double>(histogram.counts[bin]));
    }
    return figureOf("How " + name + " is distributed", chart.toSvg("Histogram of " + name));
}

std::string lineOfSamples(const SampleTable& samples, const std::string& units, std::size_t output)
{
    const std::vector<std::size_t> drawn = thinned(samples.inputs[0].size(), mostDots);
    const Axis x = axisOver(samples.inputs[0], 0.03, 2);
    const Axis y = axisOver(samples.outputs[output], 0.05, 2);
    Chart chart({x.getLow(), x.getHigh(), y.getLow(), y.getHigh(), nameWithUnits(samples.inputNames[0], units),
                 samples.outputNames[output], 0.6});
    chart.addDots(valuesAt(samples.inputs[0], drawn), valuesAt(samples.outputs[output], drawn),
                  styleOfDots(drawn.size()));
    return figureOf(samples.outputNames[output] + " over " + samples.inputNames[0],
                    chart.toSvg("Samples of " + samples.outputNames[output]));
}

std::string mapOfSamples(const SampleTable& samples, const std::string& units, std::size_t output)
{
    const std::string& name = samples.outputNames[output];
    const std::vector<std::size_t> drawn = thinned(samples.inputs[0].size(), mostDots);
    const Axis x = axisOver(samples.inputs[0], 0.04, 2);
    const Axis y = axisOver(samples.inputs[1], 0.04, 2);
    Chart chart({x.getLow(), x.getHigh(), y.getLow(), y.getHigh(), nameWithUnits(samples.inputNames[0], units),
                 nameWithUnits(samples.inputNames[1], units),
                 ratioOfMap(x.getHigh() - x.getLow(), y.getHigh() - y.getLow())},
                ColourBar{scaleOverValues(samples.outputs[output]), name});
    chart.addColouredDots(valuesAt(samples.inputs[0], drawn), valuesAt(samples.inputs[1], drawn),
                          valuesAt(samples.outputs[output], drawn));
    std::string caption = "Where " + name + " was sampled";
    if (samples.inputs.size() > 2)
        caption += ", seen along the other inputs";
    if (drawn.size() < samples.inputs[0].size())
        caption += "; " + std::to_string(drawn.size()) + " of " + countOf(samples.inputs[0].size(), "sample");
    return figureOf(caption, chart.toSvg("Map of the samples of " + name));
}

} // namespace

std::string nameWithUnits(const std::string& name, const std::string& units)
{
    return units.empty() ? name : name + " (" + units + ")";
}

std::string dataSection(const SampleTable& samples, const std::string& units, const std::vector<std::string>& warnings)
{
    std::string text = countOf(static_cast<unsigned>(samples.getNumSamples()), "sample") + " of " + samples.path +
                       " with " + countOf(samples.inputs.size(), "input") + " and " +
                       countOf(samples.outputs.size(), "output");
    if (samples.numSkipped > 0)
        text += "; " + countOf(samples.numSkipped, "row") + " with a missing value left out";
    std::string html = paragraphOf(text + ".") + listOf(warnings, "warnings") + tableOfColumns(samples);
    std::vector<std::string> figures;
    for (std::size_t w = 0; w < samples.outputs.size(); ++w)
    {
        figures.push_back(samples.inputs.size() == 1 ? lineOfSamples(samples, units, w)
                                                     : mapOfSamples(samples, units, w));
        figures.push_back(histogramOf(samples.outputNames[w], samples.outputNames[w], samples.outputs[w]));
    }
    std::size_t numHistograms = samples.outputs.size();
    for (std::size_t v = 0; v < samples.inputs.size() && numHistograms < mostHistograms; ++v, ++numHistograms)
        figures.push_back(
            histogramOf(samples.inputNames[v], nameWithUnits(samples.inputNames[v], units), samples.inputs[v]));
    return html + sideBySide(figures);
}

} // namespace krige
