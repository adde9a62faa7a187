#include "host/pictures/VariogramPicture.h"

#include <algorithm>

#include "host/pictures/Gnuplot.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige
{

VariogramCurve curveOfModel(const fenn::ModelParts& parts, double maxLag)
{
    constexpr int numSteps = 200;
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    const double variance = parts.getDataBlock().getOutputVarSampleVariance(0);
    std::vector<double> separation(normalizers.size(), 0.0);
    VariogramCurve curve;
    for (int i = 0; i <= numSteps; ++i)
    {
        curve.lags.push_back(maxLag * (i == 0 ? 1e-6 : i / static_cast<double>(numSteps)));
        separation[0] = curve.lags.back() / normalizers[0].getScale();
        curve.values.push_back(variance * parts.getSemivariogram().evaluate(separation));
    }
    return curve;
}

void drawVariogram(const std::string& path, const std::string& outputName, const std::vector<fenn::LagGroup>& groups,
                   const std::vector<fenn::analysis::LagBin>& bins, const VariogramCurve& curve)
{
    Picture picture;
    std::vector<std::vector<double>> binned(2);
    std::vector<double> heights = curve.values;
    for (const fenn::analysis::LagBin& bin : bins)
    {
        binned[0].push_back(bin.meanLag);
        binned[1].push_back(bin.semivariance);
        heights.push_back(bin.semivariance);
    }
    std::string dots;
    if (!groups.empty())
    {
        std::vector<std::vector<double>> points(2);
        for (const fenn::LagGroup& group : groups)
        {
            points[0].push_back(group.lag);
            points[1].push_back(group.empirical);
        }
        // A few pairs far above all others would press the rest against the axis.
        std::vector<double> sorted = points[1];
        std::sort(sorted.begin(), sorted.end());
        heights.push_back(sorted[sorted.size() * 19 / 20]);
        dots =
            picture.addData(points) + " using 1:2 with points pt 7 ps 0.2 lc rgb '#999999' title 'pairs at one lag', ";
    }
    const double top = 1.1 * *std::max_element(heights.begin(), heights.end());
    const std::string line = picture.addData({curve.lags, curve.values});
    std::string circles;
    if (!bins.empty())
        circles = ", " + picture.addData(binned) +
                  " using 1:2 with points pt 7 ps 1.4 lc rgb '#21918c' title 'mean of each bin of lags'";
    picture.addPanel("set key outside top center horizontal reverse Left samplen 2\n"
                     "set xlabel 'lag (normalised)'\nset ylabel " +
                     quoteForGnuplot("semivariance of " + outputName) +
                     "\nset xrange [0:" + formatNumber(curve.lags.back()) +
                     "]\nset yrange [0:" + formatNumber(top > 0.0 ? top : 1.0) + "]\nplot " + dots + line +
                     " using 1:2 with lines lw 2.5 lc rgb '#440154' title 'model'" + circles + "\n");
    picture.save(path);
}

} // namespace krige
