#include "host/page/MapSection.h"

#include <algorithm>
#include <cmath>

#include "analysis/ConvexHull.h"
#include "host/page/Chart.h"
#include "host/page/DataSection.h"
#include "host/page/GridCode.h"
#include "host/page/Html.h"
#include "host/page/RasterImage.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

using Values = std::vector<double>;

constexpr double sliceHalfThickness = 0.1; // of the box

/// The values of a quantity of an output.
const Values& valuesOf(const MapData& data, const MapView& view, std::size_t output, Quantity quantity)
{
    const auto column =
        std::find_if(data.columns.begin(), data.columns.end(),
                     [&](const PredictionColumn& c) { return c.quantity == quantity && c.output == output; });
    return view.values[static_cast<std::size_t>(column - data.columns.begin())];
}

/// Samples on a view, or no farther from a slice than a tenth of the samples' box.
std::vector<std::size_t> samplesNear(const MapData& data, const MapView& view)
{
    constexpr std::size_t mostSamplesOnMap = 2000; // more would hide it
    const SampleTable& samples = data.samples;
    std::vector<bool> isNear(samples.inputs[0].size(), true);
    for (std::size_t v = 0; v < samples.inputs.size(); ++v)
    {
        if (v == view.x || v == view.y)
            continue;
        const auto [low, high] = std::minmax_element(samples.inputs[v].begin(), samples.inputs[v].end());
        const double reach = sliceHalfThickness * (*high - *low);
        for (std::size_t i = 0; i < isNear.size(); ++i)
            isNear[i] = isNear[i] && std::fabs(samples.inputs[v][i] - view.heldValues[v]) <= reach;
    }
    std::vector<std::size_t> near;
    for (std::size_t i = 0; i < isNear.size(); ++i)
    {
        if (isNear[i])
            near.push_back(i);
    }
    std::vector<std::size_t> drawn;
    for (const std::size_t k : thinned(near.size(), mostSamplesOnMap))
        drawn.push_back(near[k]);
    return drawn;
}

/// Where samples near to a view lie within its picture: x, then heights.
std::vector<Values> placesOfSamples(const MapData& data, const MapView& view, const ChartFrame& frame,
                                    const Values& heights)
{
    std::vector<Values> places(2);
    for (const std::size_t i : samplesNear(data, view))
    {
        const double x = data.samples.inputs[view.x][i];
        if (x < frame.xLow || x > frame.xHigh || heights[i] < frame.yLow || heights[i] > frame.yHigh)
            continue;
        places[0].push_back(x);
        places[1].push_back(heights[i]);
    }
    return places;
}

/// A dark dot within a light ring stands out from every colour of the map.
void addSites(Chart& chart, const std::vector<Values>& places)
{
    const std::string size = places[0].size() > 300 ? " small" : "";
    chart.addDots(places[0], places[1], "ring-light" + size);
    chart.addDots(places[0], places[1], "site" + size);
}

/// Half a step of an axis: a node of a raster is the middle of its cell.
double halfCell(const GridAxis& axis)
{
    return 0.5 * (axis.high - axis.low) / static_cast<double>(axis.count - 1);
}

/// The colours of an estimate span what samples surround: a trend soon leaves their range elsewhere.
ColourBar barOf(const MapData& data, const MapView& view, const Values& values, bool isEstimate,
                const std::string& title)
{
    Values coloured = values;
    if (isEstimate && view.y && !view.isSlice)
    {
        const fenn::analysis::ConvexHull hull(data.samples.inputs[view.x], data.samples.inputs[*view.y]);
        coloured.clear();
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            if (hull.contains(view.xAxis.getNode(i % view.xAxis.count), view.yAxis.getNode(i / view.xAxis.count)))
                coloured.push_back(values[i]);
        }
        if (std::none_of(coloured.begin(), coloured.end(), [](double value) { return std::isfinite(value); }))
            coloured = values;
    }
    ColourBar bar{scaleOverValues(coloured), title};
    bar.isExceededAbove =
        std::any_of(values.begin(), values.end(), [&](double v) { return v > bar.colours.getHigh(); });
    bar.isExceededBelow = std::any_of(values.begin(), values.end(), [&](double v) { return v < bar.colours.getLow(); });
    return bar;
}

/// What the script needs to name the value under the pointer.
std::string codeAttributes(const std::string& name, const Values& values, const MapView& view)
{
    const GridCode code = encodeGrid(values, static_cast<std::size_t>(view.xAxis.count));
    return " data-name=\"" + escapeHtml(name) + "\" data-exponent=\"" + std::to_string(code.exponent) +
           "\" data-base=\"" + std::to_string(code.base) + "\" data-codes=\"" + code.packed + "\"";
}

std::string placeAttributes(const MapData& data, const MapView& view, const std::string& plotPlace)
{
    const auto ends = [](const GridAxis& axis)
    {
        return formatNumber(axis.low) + " " + formatNumber(axis.high);
    };
    std::string text = " data-plot=\"" + plotPlace + "\" data-columns=\"" + std::to_string(view.xAxis.count) +
                       "\" data-rows=\"" + std::to_string(view.yAxis.count) + "\" data-x=\"" + ends(view.xAxis) +
                       "\" data-y=\"" + ends(view.yAxis) + "\" data-x-name=\"" +
                       escapeHtml(data.samples.inputNames[view.x]) + "\"";
    if (view.y)
        text += " data-y-name=\"" + escapeHtml(data.samples.inputNames[*view.y]) + "\"";
    if (!data.units.empty())
        text += " data-units=\"" + escapeHtml(data.units) + "\"";
    return text;
}

constexpr const char* readout = "<p class=\"readout\" aria-live=\"polite\">Point at the picture to read its "
                                "values.</p>\n";
constexpr const char* picked = "tabindex=\"0\"";

std::string errorName(const MapData& data)
{
    return data.areLogarithms ? "standard error of the logarithm" : "standard error";
}

/// A map whose layers are the estimate and its standard error. number: of the map on the page.
std::string layersOf(const MapData& data, const MapView& view, std::size_t output, std::size_t number)
{
    const std::string& outputName = data.samples.outputNames[output];
    const std::size_t y = *view.y;
    const double xHalf = halfCell(view.xAxis);
    const double yHalf = halfCell(view.yAxis);
    const ChartFrame frame{view.xAxis.low - xHalf,
                           view.xAxis.high + xHalf,
                           view.yAxis.low - yHalf,
                           view.yAxis.high + yHalf,
                           nameWithUnits(data.samples.inputNames[view.x], data.units),
                           nameWithUnits(data.samples.inputNames[y], data.units),
                           ratioOfMap(view.xAxis.high - view.xAxis.low, view.yAxis.high - view.yAxis.low)};
    std::string buttons;
    std::string layers;
    std::string plotPlace;
    for (const Quantity quantity : {Quantity::Estimate, Quantity::StandardError})
    {
        const bool isEstimate = quantity == Quantity::Estimate;
        const std::string name = isEstimate ? "estimate" : errorName(data);
        const Values& values = valuesOf(data, view, output, quantity);
        const ColourBar bar = barOf(data, view, values, isEstimate, isEstimate ? outputName : name);
        Chart chart(frame, bar);
        chart.addImage(dataAddressOf(pngOf(values, static_cast<std::size_t>(view.xAxis.count), bar.colours)));
        if (!view.isSlice)
        {
            const std::vector<Values> outline =
                fenn::analysis::ConvexHull(data.samples.inputs[view.x], data.samples.inputs[y]).calcOutline();
            chart.addLine(outline[0], outline[1], "hull-under"); // seen on light colours
            chart.addLine(outline[0], outline[1], "hull");
        }
        addSites(chart, placesOfSamples(data, view, frame, data.samples.inputs[y]));
        plotPlace = chart.getPlotPlace();
        const std::string id = "map" + std::to_string(number) + (isEstimate ? "-estimate" : "-error");
        buttons += "<input type=\"radio\" name=\"map" + std::to_string(number) + "\" id=\"" + id + "\"" +
                   (isEstimate ? " checked" : "") + "><label for=\"" + id + "\">" +
                   (isEstimate ? "Estimate" : "Standard error") + "</label>\n";
        layers += "<div class=\"layer\"" + codeAttributes(name, values, view) + ">\n<p class=\"layer-title\">" +
                  escapeHtml((isEstimate ? "Estimate of " : "Standard error of ") + outputName) + "</p>\n" +
                  chart.toSvg("Map: " + name + " of " + outputName, picked) + "</div>\n";
    }
    return "<div class=\"layers\"" + placeAttributes(data, view, plotPlace) + ">\n" + buttons + layers + readout +
           "</div>\n";
}

/// A line with its interval. Both columns of values are there for the pointer, the second without a picture.
std::string profileOf(const MapData& data, const MapView& view, std::size_t output)
{
    constexpr std::size_t mostNodesDrawn = 2000; // as many as a screen shows
    const std::string& outputName = data.samples.outputNames[output];
    const Values& estimates = valuesOf(data, view, output, Quantity::Estimate);
    const std::vector<std::size_t> drawn = thinned(estimates.size(), mostNodesDrawn);
    Values x;
    for (const std::size_t i : drawn)
        x.push_back(view.xAxis.getNode(i));
    const Values lows = valuesAt(valuesOf(data, view, output, Quantity::LowerEnd), drawn);
    const Values highs = valuesAt(valuesOf(data, view, output, Quantity::UpperEnd), drawn);
    Values heights = valuesAt(estimates, drawn);
    for (const Values* more : {&lows, &highs})
        heights.insert(heights.end(), more->begin(), more->end());
    for (const std::size_t i : samplesNear(data, view))
        heights.push_back(data.samples.outputs[output][i]);
    const Axis yAxis = axisOver(heights, 0.04, 2);
    const ChartFrame frame{view.xAxis.low,
                           view.xAxis.high,
                           yAxis.getLow(),
                           yAxis.getHigh(),
                           nameWithUnits(data.samples.inputNames[view.x], data.units),
                           outputName,
                           0.65};
    Chart chart(frame);
    chart.addBand(x, lows, highs, "band");
    chart.addLine(x, valuesAt(estimates, drawn), "curve");
    const std::vector<Values> places = placesOfSamples(data, view, frame, data.samples.outputs[output]);
    chart.addDots(places[0], places[1], styleOfDots(places[0].size()));
    return "<div class=\"layers\"" + placeAttributes(data, view, chart.getPlotPlace()) + ">\n<div class=\"layer\"" +
           codeAttributes("estimate", estimates, view) + ">\n" + chart.toSvg("Profile of " + outputName, picked) +
           "</div>\n<div class=\"layer unseen\"" +
           codeAttributes(errorName(data), valuesOf(data, view, output, Quantity::StandardError), view) + "></div>\n" +
           readout + "</div>\n";
}

std::string captionOf(const MapData& data, const MapView& view, std::size_t output)
{
    std::string caption = data.samples.outputNames[output];
    if (view.isSlice)
        caption += " at " + view.describeHeld(data.samples.inputNames);
    if (!view.y)
        return caption + ": estimate, with the interval that holds 95 % of new measurements. Dots: samples" +
               (view.isSlice ? " near to this line" : "");
    caption += ", " + std::to_string(view.xAxis.count) + " x " + std::to_string(view.yAxis.count) + " nodes";
    return caption + (view.isSlice ? ". Dots: samples no farther from the slice than a tenth of their box"
                                   : ". Dots: samples; beyond the dashed line, which surrounds them, estimates are "
                                     "extrapolated");
}

} // namespace

std::string mapSection(const MapData& data)
{
    std::string html;
    if (data.numViewsLeftOut > 0)
        html += paragraphOf("Shown are the first " + std::to_string(data.views.size()) + " slices; " +
                            std::to_string(data.numViewsLeftOut) +
                            " other pairs of inputs are left out. --grid with a single node of an input holds it.");
    std::size_t number = 0;
    for (std::size_t output = 0; output < data.samples.outputNames.size(); ++output)
    {
        for (const MapView& view : data.views)
            html += figureOf(captionOf(data, view, output),
                             view.y ? layersOf(data, view, output, ++number) : profileOf(data, view, output), "map");
    }
    html +=
        paragraphOf("The values shown under the pointer are those of the nearest node, rounded to the digits shown. "
                    "Standard errors are those of new measurements: nugget included.",
                    "legend");
    return html + paragraphOf("Support: " + data.support + ".");
}

} // namespace krige
