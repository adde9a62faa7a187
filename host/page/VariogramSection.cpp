#include "host/page/VariogramSection.h"

#include <algorithm>

#include "host/page/Chart.h"
#include "host/page/Html.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

std::string figureOfView(const VariogramView& view, const LagUnit& unit)
{
    constexpr std::size_t mostCounts = 16; // more would overlap
    std::vector<double> lags = view.curve.lags;
    for (double& lag : lags)
        lag *= unit.perNormalised;
    double highest = *std::max_element(view.curve.values.begin(), view.curve.values.end());
    for (const fenn::analysis::LagBin& bin : view.bins)
        highest = std::max(highest, bin.semivariance);

    Chart chart({0.0, lags.back(), 0.0, highest > 0.0 ? 1.12 * highest : 1.0, "lag (" + unit.name + ")",
                 "semivariance of " + view.outputName, 0.65});
    chart.addLine({0.0, lags.back()}, {view.curve.sill, view.curve.sill}, "guide");
    const double range = view.curve.range * unit.perNormalised;
    if (range < lags.back())
        chart.addLine({range, range}, {0.0, view.curve.sill}, "guide");
    chart.addLine(lags, view.curve.values, "curve");
    std::vector<double> x;
    std::vector<double> y;
    for (const fenn::analysis::LagBin& bin : view.bins)
    {
        x.push_back(bin.meanLag * unit.perNormalised);
        y.push_back(bin.semivariance);
    }
    chart.addDots(x, y, "accent large");
    for (std::size_t i = 0; i < view.bins.size() && view.bins.size() <= mostCounts; ++i)
    {
        const bool isAbove = view.bins[i].semivariance >= view.bins[i].modelValue;
        chart.addLabel(x[i], y[i], std::to_string(view.bins[i].numPairs), isAbove ? "count above" : "count below");
    }
    return figureOf("Dots: half the mean squared difference of " + view.outputName +
                        " between samples so far apart, with the number of pairs. Line: the model. Dashed: its sill " +
                        formatFigure(view.curve.sill) + (range < lags.back() ? " and its range" : ""),
                    chart.toSvg("Semivariogram of " + view.outputName));
}

} // namespace

std::string variogramSection(const std::vector<VariogramView>& views, const LagUnit& unit, int driftOrder,
                             const std::string& without)
{
    if (views.empty())
        return paragraphOf("There is none: " + without);
    std::vector<std::string> figures;
    for (const VariogramView& view : views)
        figures.push_back(figureOfView(view, unit));
    std::string html = sideBySide(figures) + preformatted(views.front().pairs);
    if (driftOrder > 0)
        html += paragraphOf("The dots are of the values as they are, a trend among them. The model has its drift for "
                            "that, so that its line may lie below them.");
    return html;
}

} // namespace krige
