#include "host/pictures/MapPanel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/pictures/Contours.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// Half a cell beyond the first and the last node.
AxisRange rangeOfCells(const std::vector<double>& nodes)
{
    const double half = (nodes[1] - nodes[0]) / 2;
    return {nodes.front() - half, nodes.back() + half};
}

/// `using` for a matrix of nodes: gnuplot counts them from 0.
std::string placesOf(const PanelNodes& nodes)
{
    const auto along = [](const std::vector<double>& places, const char* index)
    {
        const double step = (places.back() - places.front()) / static_cast<double>(places.size() - 1);
        return "(" + formatNumber(places.front()) + "+" + formatNumber(step) + "*" + index + ")";
    };
    return " matrix using " + along(nodes.xNodes, "$1") + ":" + along(nodes.yNodes, "$2") + ":";
}

class MapDrawing
{
public:
    MapDrawing(Picture& picture_, const Panel& panel_, const MapContent& content_, const SurfaceOptions& options_)
        : picture(picture_), panel(panel_), content(content_), options(options_)
    {
    }

    void draw()
    {
        panel.x.range = rangeOfCells(content.nodes.xNodes);
        panel.y.range = rangeOfCells(content.nodes.yNodes);
        panel.hasOneScale = haveOneScale(panel.x.range, panel.y.range);
        panel.commands = "unset key\n";
        choosePlainValues();
        drawCells();
        drawHatching();
        drawOutline();
        if (options.withContours)
            drawContours();
        drawTargets();
        drawSamples();
        picture.addPanel(panel);
    }

private:
    /// The values with colours, and the limits of these.
    void choosePlainValues()
    {
        std::vector<double> surrounded;
        for (std::size_t i = 0; i < content.values.size(); ++i)
        {
            coloured.push_back(content.reaches[i] == Reach::OutOfReach ? none : content.values[i]);
            if (content.reaches[i] == Reach::Surrounded)
                surrounded.push_back(content.values[i]);
        }
        const auto isAnyFinite = [](const std::vector<double>& values)
        {
            return std::any_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
        };
        chooseLimits(*panel.colours, isAnyFinite(surrounded) ? surrounded : coloured, coloured);
    }

    void drawCells()
    {
        constexpr std::size_t mostLargeCells = 10000;
        const std::string style = coloured.size() <= mostLargeCells ? " @largeCells" : "";
        const std::size_t numAcross = content.nodes.xNodes.size();
        std::vector<double> veil;
        for (std::size_t i = 0; i < content.reaches.size(); ++i)
            veil.push_back(isShown(i, Reach::OutOfReach) ? 255.0 : 0.0);
        if (std::any_of(veil.begin(), veil.end(), [](double alpha) { return alpha > 0.0; }))
            add(picture.addMatrix(veil, numAcross) + placesOf(content.nodes) + "(190):(190):(190):3 with rgbalpha" +
                style + " notitle");
        add(picture.addMatrix(coloured, numAcross) + placesOf(content.nodes) + "3 with image" + style + " notitle");
    }

    /// A place without a value is white, wherever it lies.
    bool isShown(std::size_t node, Reach reach) const
    {
        return content.reaches[node] == reach && std::isfinite(content.values[node]);
    }

    /// Diagonals over the extrapolated cells, as far apart in pixels whatever the axes.
    void drawHatching()
    {
        constexpr double spacing = 0.022; // of the longer side
        constexpr double sampling = 0.002;
        const PanelNodes& nodes = content.nodes;
        const double spanX = panel.x.range.high - panel.x.range.low;
        const double spanY = panel.y.range.high - panel.y.range.low;
        const double ratio = panel.hasOneScale ? spanY / spanX : 0.8;
        const double width = std::min(1.0, 1.0 / ratio);
        const double height = std::min(1.0, ratio);
        const auto isHatched = [&](double across, double up)
        {
            if (!(across >= 0.0 && across < width && up >= 0.0 && up < height))
                return false;
            const auto i = static_cast<std::size_t>(across / width * static_cast<double>(nodes.xNodes.size()));
            const auto j = static_cast<std::size_t>(up / height * static_cast<double>(nodes.yNodes.size()));
            return isShown(j * nodes.xNodes.size() + i, Reach::Extrapolated);
        };
        std::vector<std::vector<double>> strokes(4); // from, then by how much
        for (int line = 0; spacing / 2 - height + line * spacing < width; ++line)
        {
            const double start = spacing / 2 - height + line * spacing;
            double begin = -1.0;
            for (int sample = 0; sample * sampling <= height + 2 * sampling; ++sample)
            {
                const double up = sample * sampling;
                const bool isOn = isHatched(start + up, up);
                if (isOn && begin < 0.0)
                    begin = up;
                if (isOn || begin < 0.0)
                    continue;
                strokes[0].push_back(panel.x.range.low + (start + begin) / width * spanX);
                strokes[1].push_back(panel.y.range.low + begin / height * spanY);
                strokes[2].push_back((up - begin) / width * spanX);
                strokes[3].push_back((up - begin) / height * spanY);
                begin = -1.0;
            }
        }
        if (strokes[0].empty())
            return;
        const std::string data = picture.addData(strokes) + " using 1:2:3:4 with vectors nohead ";
        add(data + "lw 2 lc rgb '#a0ffffff' notitle");
        add(data + "lw 0.7 lc rgb '#404040' notitle");
    }

    void drawOutline()
    {
        if (content.outline.x.empty())
            return;
        const std::string data = picture.addData({content.outline.x, content.outline.y}) + " using 1:2 with lines ";
        add(data + "lw 2 lc rgb '#ffffff' notitle");
        add(data + "lw 1 dt (8, 6) lc rgb '#000000' notitle");
    }

    void drawContours()
    {
        constexpr double usualLength = 440.0; // of a colour box, which has about as many ticks
        constexpr std::size_t fewPlaces = 12; // too short a line for its value
        std::vector<std::vector<double>> places(2);
        for (const Tick& level : chooseTicks(panel.colours->limits, usualLength, AxisDirection::Up).ticks)
        {
            for (const ContourLine& line :
                 calcContours({content.nodes.xNodes, content.nodes.yNodes, coloured}, level.at))
            {
                places[0].insert(places[0].end(), line.x.begin(), line.x.end());
                places[1].insert(places[1].end(), line.y.begin(), line.y.end());
                places[0].push_back(none); // a gap
                places[1].push_back(none);
                const std::size_t middle = line.x.size() / 2;
                if (line.x.size() >= fewPlaces)
                    panel.labels.push_back(labelOf(line.x[middle], line.y[middle], level.at));
            }
        }
        if (places[0].empty())
            return;
        const std::string data = picture.addData(places) + " using 1:2 with lines ";
        add(data + "lw 2.4 lc rgb '#80000000' notitle");
        add(data + "lw 1 lc rgb '#ffffff' notitle");
    }

    void drawTargets()
    {
        const MapPlaces& targets = content.targets;
        if (targets.x.empty())
            return;
        const std::string data = picture.addData({targets.x, targets.y, targets.values});
        const std::string size = pointSize(targets.x.size() > 500 ? 0.8 : 1.3);
        add(data + " using 1:2:3 with points pt 13 " + size + " palette notitle");
        const std::string rim = data + " using 1:2 with points pt 12 " + size;
        add(rim + " lw 3 lc rgb '#ffffff' notitle");
        add(rim + " lw 1 lc rgb '#000000' notitle");
    }

    void drawSamples()
    {
        const MapPlaces& samples = content.samples;
        if (samples.x.empty() || options.points == PointStyle::None)
            return;
        add(dotsOf(picture.addData({samples.x, samples.y}), samples.x.size()));
        if (options.points != PointStyle::Values)
            return;
        constexpr double above = 0.025; // of the axis
        std::vector<PointLabel> values;
        for (std::size_t i = 0; i < samples.x.size(); ++i)
            values.push_back(labelOf(samples.x[i], samples.y[i] + above * (panel.y.range.high - panel.y.range.low),
                                     samples.values[i]));
        panel.labels.insert(panel.labels.end(), values.begin(), values.end());
    }

    void add(const std::string& plot)
    {
        panel.plots += (panel.plots.empty() ? "" : ", ") + plot;
    }

    Picture& picture;
    Panel panel;
    const MapContent& content;
    const SurfaceOptions& options;
    std::vector<double> coloured; // NaN out of reach
};

} // namespace

void addMap(Picture& picture, const Panel& panel, const MapContent& content, const SurfaceOptions& options)
{
    MapDrawing(picture, panel, content, options).draw();
}

bool haveOneScale(const AxisRange& x, const AxisRange& y)
{
    constexpr double mostUnlike = 3.0;
    const double ratio = (y.high - y.low) / (x.high - x.low);
    return ratio > 1.0 / mostUnlike && ratio < mostUnlike;
}

std::string dotsOf(const std::string& data, std::size_t count)
{
    const double size = count > 1000 ? 0.4 : count > 200 ? 0.7 : 1.0;
    return data + " using 1:2 with points pt 7 " + pointSize(size) + " lc rgb '#ffffff' notitle, " + data +
           " using 1:2 with points pt 7 " + pointSize(0.6 * size) + " lc rgb '#000000' notitle";
}

PointLabel labelOf(double x, double y, double value)
{
    return {x, y, formatFigure(value)};
}

} // namespace krige
