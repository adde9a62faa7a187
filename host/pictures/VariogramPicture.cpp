#include "host/pictures/VariogramPicture.h"

#include <algorithm>
#include <cmath>

#include "estimation/RangeInUnits.h"
#include "host/pictures/Picture.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"

namespace krige
{

namespace
{

/// Lags in a unit, semivariances and numbers of pairs.
std::vector<std::vector<double>> columnsOf(const std::vector<fenn::analysis::LagBin>& bins, const LagUnit& unit)
{
    std::vector<std::vector<double>> columns(3);
    for (const fenn::analysis::LagBin& bin : bins)
    {
        columns[0].push_back(bin.meanLag * unit.perNormalised);
        columns[1].push_back(bin.semivariance);
        columns[2].push_back(static_cast<double>(bin.numPairs));
    }
    return columns;
}

/// The number of pairs at each bin, on the side where the model's curve is not.
std::string countLabels(Picture& picture, const std::vector<fenn::analysis::LagBin>& bins, const LagUnit& unit)
{
    constexpr std::size_t mostCounts = 30; // more would overlap
    std::string commands;
    for (const bool isAbove : {true, false})
    {
        std::vector<fenn::analysis::LagBin> labelled;
        for (const fenn::analysis::LagBin& bin : bins)
        {
            if (bins.size() <= mostCounts && (bin.semivariance >= bin.modelValue) == isAbove)
                labelled.push_back(bin);
        }
        if (!labelled.empty())
            commands += ", " + picture.addData(columnsOf(labelled, unit)) + " using 1:2:3 with labels " +
                        (isAbove ? "offset 0,0.9" : "left offset 0.7,-0.5") +
                        " font smallFont tc rgb '#777777' notitle";
    }
    return commands;
}

} // namespace

VariogramCurve curveOfModel(const fenn::ModelParts& parts, double maxLag, double sill)
{
    constexpr int numSteps = 200;
    const double scale = parts.getNormalizers()[0].getScale();
    std::vector<double> separation(parts.getNormalizers().size(), 0.0);
    VariogramCurve curve;
    curve.sill = sill;
    curve.range = fenn::estimation::calcRangesPerInput(parts)[0] * scale;
    for (int i = 0; i <= numSteps; ++i)
    {
        curve.lags.push_back(maxLag * (i == 0 ? 1e-6 : i / static_cast<double>(numSteps)));
        separation[0] = curve.lags.back() / scale;
        curve.values.push_back(sill * parts.getSemivariogram().evaluate(separation));
    }
    return curve;
}

void drawVariogram(const PictureOptions& options, const QuantityName& semivariance, const LagUnit& unit,
                   const std::vector<fenn::analysis::LagBin>& singleLags,
                   const std::vector<fenn::analysis::LagBin>& bins, const VariogramCurve& curve)
{
    Picture picture(0, options.title, options.size);
    const std::vector<std::vector<double>> binned = columnsOf(bins, unit);
    std::vector<double> heights = curve.values;
    heights.insert(heights.end(), binned[1].begin(), binned[1].end());
    std::string dots;
    if (!singleLags.empty())
    {
        const std::vector<std::vector<double>> points = columnsOf(singleLags, unit);
        // A few pairs far above all others would press the rest against the axis.
        std::vector<double> sorted = points[1];
        std::sort(sorted.begin(), sorted.end());
        heights.push_back(sorted[sorted.size() * 19 / 20]);
        dots = picture.addData(points) + " using 1:2 with points pt 7 " + pointSize(0.2) +
               " lc rgb '#999999' title 'pairs at one lag', ";
    }
    const double highest = *std::max_element(heights.begin(), heights.end());
    std::vector<double> lags = curve.lags;
    for (double& lag : lags)
        lag *= unit.perNormalised;
    const std::string line = picture.addData({lags, curve.values});
    Panel panel;
    panel.hasKeyAbove = true;
    panel.hasGrid = true;
    panel.x = {{0.0, lags.back()}, "lag", unit.name};
    panel.y = {{0.0, highest > 0.0 ? 1.15 * highest : 1.0}, semivariance.name, semivariance.unit};
    const double range = curve.range * unit.perNormalised;
    const std::string dashed = " nohead dt 2 lc rgb '#888888' back\n";
    if (range < lags.back())
        panel.commands += "set arrow from " + formatNumber(range) + ",0 to " + formatNumber(range) + "," +
                          formatNumber(curve.sill) + dashed;
    panel.commands += "set arrow from 0," + formatNumber(curve.sill) + " to " + formatNumber(lags.back()) + "," +
                      formatNumber(curve.sill) + dashed;
    panel.plots = dots + line + " using 1:2 with lines lw 2.5 lc rgb '#440154' title 'model'";
    if (!bins.empty())
        panel.plots += ", " + picture.addData(binned) + " using 1:2 with points pt 7 " + pointSize(1.4) +
                       " lc rgb '#21918c' title 'bins and numbers of pairs'" + countLabels(picture, bins, unit);
    picture.addPanel(panel);
    picture.save(options.path);
}

} // namespace krige
