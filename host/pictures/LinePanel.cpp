#include "host/pictures/LinePanel.h"

#include <utility>

#include "host/pictures/Gnuplot.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

/// Rectangles behind everything, one for each run of nodes of the same reach that samples do not surround.
std::string groundCommands(const LineContent& content)
{
    std::string commands;
    const std::vector<double>& nodes = content.nodes;
    for (std::size_t begin = 0; begin < nodes.size();)
    {
        const Reach reach = content.reaches[begin];
        std::size_t end = begin + 1;
        while (end < nodes.size() && content.reaches[end] == reach)
            ++end;
        if (reach != Reach::Surrounded)
        {
            const auto boundary = [&](std::size_t i)
            {
                return i == 0 || i == nodes.size() ? "graph " + std::string(i == 0 ? "0" : "1")
                                                   : "first " + formatNumber(nodes[i - 1] / 2 + nodes[i] / 2);
            };
            commands += "set object rectangle from " + boundary(begin) + ",graph 0 to " + boundary(end) +
                        ",graph 1 behind fillcolor rgb '" + (reach == Reach::Extrapolated ? "#f0f0f0" : "#c8c8c8") +
                        "' fillstyle solid noborder\n";
        }
        begin = end;
    }
    return commands;
}

} // namespace

void addLine(Picture& picture, Panel panel, const LineContent& content, PointStyle points)
{
    panel.hasGrid = true;
    panel.hasKeyAbove = true;
    panel.commands = groundCommands(content);
    std::vector<double> heights = content.values;
    const auto addHeights = [&heights](const std::vector<double>& more)
    {
        heights.insert(heights.end(), more.begin(), more.end());
    };
    if (!content.lowerEnds.empty())
    {
        panel.plots = picture.addData({content.nodes, content.lowerEnds, content.upperEnds}) +
                      " using 1:2:3 with filledcurves lc rgb '#a6d3cf' title " + quoteForGnuplot(content.bandName) +
                      ", ";
        addHeights(content.lowerEnds);
        addHeights(content.upperEnds);
    }
    panel.plots += picture.addData({content.nodes, content.values}) +
                   " using 1:2 with lines lw 2.5 lc rgb '#0f5a58' title 'estimate'";
    const MapPlaces& samples = content.samples;
    if (!samples.x.empty() && points != PointStyle::None)
    {
        const std::string size = pointSize(samples.x.size() > 1000 ? 0.4 : samples.x.size() > 200 ? 0.6 : 0.8);
        panel.plots += ", " + picture.addData({samples.x, samples.y}) + " using 1:2 with points pt 7 " + size +
                       " lc rgb '#000000' title 'samples'";
        addHeights(samples.y);
    }
    if (!content.targets.x.empty())
        panel.plots += ", " + picture.addData({content.targets.x, content.targets.y}) +
                       " using 1:2 with points pt 12 " + pointSize(1.3) + " lw 1.3 lc rgb '#a03c00' title 'targets'";
    panel.x.range = rangeAround({content.nodes.front(), content.nodes.back()}, 0.0);
    panel.y.range = rangeAround(heights, 0.05);
    if (points == PointStyle::Values)
    {
        constexpr double above = 0.03; // of the axis
        for (std::size_t i = 0; i < samples.x.size(); ++i)
            panel.labels.push_back(
                labelOf(samples.x[i], samples.y[i] + above * (panel.y.range.high - panel.y.range.low), samples.y[i]));
    }
    picture.addPanel(std::move(panel));
}

} // namespace krige
