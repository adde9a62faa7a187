#include "host/pictures/SurfacePicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "analysis/ConvexHull.h"
#include "host/pictures/Gnuplot.h"
#include "host/reports/RangeText.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

using Columns = std::vector<std::vector<double>>;

constexpr std::size_t numNodesOfLine = 500;
constexpr std::size_t numNodesPerSide = 121; // finer than the eye asks for, and 15000 estimates are soon made
constexpr std::size_t mostPanels = 16;
constexpr std::size_t mostSamplesDrawn = 5000;
constexpr double sliceHalfThickness = 0.1; // of the box

double meanOf(const std::vector<double>& values)
{
    double mean = 0.0; // updated step by step: a sum may overflow
    for (std::size_t i = 0; i < values.size(); ++i)
        mean += (values[i] - mean) / static_cast<double>(i + 1);
    return mean;
}

double nodeOf(const PictureAxis& axis, std::size_t i, std::size_t count)
{
    const double share = static_cast<double>(i) / static_cast<double>(count - 1);
    return axis.low * (1.0 - share) + axis.high * share;
}

std::string rangeOf(const PictureAxis& axis)
{
    return plotRange({axis.low, axis.high}, 0.0);
}

/// Axes of one unit, as far as their lengths tell, are drawn to one scale.
std::string aspectLine(const PictureAxis& x, const PictureAxis& y)
{
    const double ratio = (y.high - y.low) / (x.high - x.low);
    return ratio > 1.0 / 3.0 && ratio < 3.0 ? "set size ratio -1\n" : "set size ratio 0.8\n";
}

/// The inputs that a panel varies; the same one twice on a line.
struct Slice
{
    std::size_t x = 0;
    std::size_t y = 1;
};

class SurfaceDrawing
{
public:
    SurfaceDrawing(const SampleTable& samples_, const std::vector<PictureAxis>& box_, const std::string& units_,
                   const Estimator& estimate_)
        : samples(samples_), box(box_), units(units_), estimate(estimate_), sampleBox(boxOfSamples(samples_))
    {
        for (std::size_t v = 0; v < box.size(); ++v)
        {
            fixedValues.push_back(std::clamp(meanOf(samples.inputs[v]), box[v].low, box[v].high));
            if (box[v].low < box[v].high)
                varying.push_back(v);
        }
        if (varying.empty())
            varying.push_back(0);
    }

    void addAll(Picture& picture) const
    {
        if (varying.size() == 1)
            addLines(picture, varying[0]);
        for (std::size_t i = 0; i < varying.size(); ++i)
        {
            for (std::size_t j = i + 1; j < varying.size() && picture.getNumPanels() < mostPanels; ++j)
                addSlice(picture, {varying[i], varying[j]});
        }
    }

private:
    void addLines(Picture& picture, std::size_t x) const
    {
        Columns targets = fixedTargets(numNodesOfLine);
        for (std::size_t i = 0; i < numNodesOfLine; ++i)
            targets[x][i] = nodeOf(box[x], i, numNodesOfLine);
        Columns results;
        estimate(targets, results);
        const std::vector<std::size_t> drawn = samplesNear({x, x});
        for (std::size_t w = 0; w < samples.outputs.size() && w < mostPanels; ++w)
        {
            const std::string line = picture.addData({targets[x], results[w]});
            std::vector<double> heights = results[w];
            std::string commands = "set grid lc rgb '#dddddd'\nset key outside top center horizontal\nset xlabel " +
                                   axisLabel(x) + "\n" + titleLine({x, x}, w) + "set ylabel " +
                                   quoteForGnuplot(samples.outputNames[w]) + "\nset xrange " + rangeOf(box[x]) + "\n";
            std::string dots;
            if (!drawn.empty())
            {
                const Columns points{pick(samples.inputs[x], drawn), pick(samples.outputs[w], drawn)};
                heights.insert(heights.end(), points[1].begin(), points[1].end());
                dots = ", " + picture.addData(points) + " using 1:2 with points pt 7 ps " + pointSize(drawn.size()) +
                       " lc rgb '#000000' title 'samples'";
            }
            commands += "set yrange " + plotRange(heights, 0.05) + "\nplot " + line +
                        " using 1:2 with lines lw 2.5 lc rgb '#21918c' title 'estimate'" + dots + "\n";
            picture.addPanel(commands);
        }
    }

    void addSlice(Picture& picture, const Slice& slice) const
    {
        Columns targets = fixedTargets(numNodesPerSide * numNodesPerSide);
        for (std::size_t j = 0; j < numNodesPerSide; ++j)
        {
            for (std::size_t i = 0; i < numNodesPerSide; ++i)
            {
                targets[slice.x][j * numNodesPerSide + i] = nodeOf(box[slice.x], i, numNodesPerSide);
                targets[slice.y][j * numNodesPerSide + i] = nodeOf(box[slice.y], j, numNodesPerSide);
            }
        }
        Columns results;
        estimate(targets, results);

        const bool isSlice = box.size() > 2; // where samples surround a place in more inputs is not asked
        const fenn::analysis::ConvexHull hull(samples.inputs[slice.x], samples.inputs[slice.y]);
        std::vector<std::size_t> surrounded; // nodes with samples around them
        for (std::size_t i = 0; i < targets[slice.x].size(); ++i)
        {
            if (isSlice || hull.contains(targets[slice.x][i], targets[slice.y][i]))
                surrounded.push_back(i);
        }
        const std::vector<std::size_t> drawn = samplesNear(slice);
        std::string dots;
        if (surrounded.size() < targets[slice.x].size())
            dots = ", " + picture.addData(hull.calcOutline()) +
                   " using 1:2 with lines dt (8, 6) lw 1.5 lc rgb '#ffffff' notitle";
        if (!drawn.empty())
        {
            const std::string data =
                picture.addData({pick(samples.inputs[slice.x], drawn), pick(samples.inputs[slice.y], drawn)});
            const std::string size = pointSize(drawn.size());
            // A dark dot within a light ring stands out from every colour of the map.
            dots += ", " + data + " using 1:2 with points pt 7 ps " + size + " lc rgb '#ffffff' notitle, " + data +
                    " using 1:2 with points pt 7 ps 0.6*" + size + " lc rgb '#000000' notitle";
        }
        for (std::size_t w = 0; w < samples.outputs.size() && picture.getNumPanels() < mostPanels; ++w)
        {
            // What is extrapolated does not take the colours: a trend soon leaves the range of the samples.
            std::vector<double> coloured = pick(results[w], surrounded);
            if (std::none_of(coloured.begin(), coloured.end(), [](double value) { return std::isfinite(value); }))
                coloured = results[w];
            const std::string surface = picture.addData({targets[slice.x], targets[slice.y], results[w]});
            picture.addPanel(viridisPalette + aspectLine(box[slice.x], box[slice.y]) + "unset key\n" +
                             titleLine(slice, w) + "set xlabel " + axisLabel(slice.x) + "\nset ylabel " +
                             axisLabel(slice.y) + "\nset cblabel " + quoteForGnuplot(samples.outputNames[w]) +
                             "\nset xrange " + rangeOf(box[slice.x]) + "\nset yrange " + rangeOf(box[slice.y]) +
                             "\nset cbrange " + plotRange(coloured, 0.0) + "\nplot " + surface +
                             " using 1:2:3 with image notitle" + dots + "\n");
        }
    }

    Columns fixedTargets(std::size_t count) const
    {
        Columns targets;
        for (const double value : fixedValues)
            targets.emplace_back(count, value);
        return targets;
    }

    static std::vector<double> pick(const std::vector<double>& values, const std::vector<std::size_t>& indices)
    {
        std::vector<double> picked;
        for (const std::size_t i : indices)
            picked.push_back(values[i]);
        return picked;
    }

    static std::string pointSize(std::size_t numPoints)
    {
        return formatNumber(numPoints > 1000 ? 0.4 : numPoints > 200 ? 0.7 : 1.0);
    }

    /// Samples that belong into a panel, evenly thinned where they are very many.
    std::vector<std::size_t> samplesNear(const Slice& slice) const
    {
        std::vector<std::size_t> inside;
        for (std::size_t i = 0; i < samples.inputs[0].size(); ++i)
        {
            bool isInside = true;
            for (std::size_t v = 0; v < box.size() && isInside; ++v)
            {
                const double value = samples.inputs[v][i];
                if (v == slice.x || v == slice.y)
                    isInside = value >= box[v].low && value <= box[v].high;
                else
                    isInside = std::fabs(value - fixedValues[v]) <=
                               sliceHalfThickness * (sampleBox[v].high - sampleBox[v].low);
            }
            if (isInside)
                inside.push_back(i);
        }
        const std::size_t step = inside.size() / mostSamplesDrawn + 1;
        std::vector<std::size_t> drawn;
        for (std::size_t i = 0; i < inside.size(); i += step)
            drawn.push_back(inside[i]);
        return drawn;
    }

    /// Where the panel lies, if that is a question.
    std::string titleLine(const Slice& slice, std::size_t output) const
    {
        std::string text;
        for (std::size_t v = 0; v < box.size(); ++v)
        {
            if (v != slice.x && v != slice.y)
                text += ", " + samples.inputNames[v] + " = " + formatFigure(fixedValues[v]) + behindDistance(units);
        }
        return text.empty() ? "" : "set title " + quoteForGnuplot(samples.outputNames[output] + text) + "\n";
    }

    std::string axisLabel(std::size_t input) const
    {
        return quoteForGnuplot(samples.inputNames[input] + (units.empty() ? "" : " (" + units + ")"));
    }

    const SampleTable& samples;
    const std::vector<PictureAxis>& box;
    const std::string& units;
    const Estimator& estimate;
    std::vector<PictureAxis> sampleBox;
    std::vector<double> fixedValues;  // of the inputs that a panel does not vary
    std::vector<std::size_t> varying; // inputs with more than one value in the box
};

} // namespace

std::vector<PictureAxis> boxOfSamples(const SampleTable& samples)
{
    std::vector<PictureAxis> box;
    for (const std::vector<double>& input : samples.inputs)
    {
        const auto [low, high] = std::minmax_element(input.begin(), input.end());
        box.push_back({*low, *high});
    }
    return box;
}

void drawSurface(const std::string& path, const SampleTable& samples, const std::vector<PictureAxis>& box,
                 const std::string& units, const Estimator& estimate)
{
    Picture picture;
    const SurfaceDrawing drawing(samples, box, units, estimate);
    drawing.addAll(picture);
    picture.save(path);
}

} // namespace krige
