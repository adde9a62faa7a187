#include "host/pictures/PanelLayout.h"

#include <algorithm>
#include <cmath>

#include "host/pictures/Gnuplot.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

// All in pixels.
constexpr double tickLength = 9.0;
constexpr double edge = 8.0; // between any text and the end of the cell
constexpr double gap = 6.0;
constexpr double boxGap = 14.0; // between a map and its colour box
constexpr double boxWidth = 18.0;
constexpr double triangleHeight = 13.0;
constexpr double smallestPlot = 40.0;
constexpr double keyHeight = 26.0;

double widestOf(const Ticks& ticks)
{
    double widest = 0.0;
    for (const Tick& tick : ticks.ticks)
        widest = std::max(widest, widthOfText(tick.label));
    return widest;
}

/// "('a' 1, 'b' 2)".
std::string listOf(const Ticks& ticks)
{
    std::string text = "(";
    for (const Tick& tick : ticks.ticks)
        text += (text.size() > 1 ? ", " : "") + quoteForGnuplot(tick.label) + " " + formatNumber(tick.at);
    return text + ")";
}

std::string share(double part, double whole)
{
    return formatNumber(std::round(1e5 * part / whole) / 1e5);
}

bool overlap(const Rectangle& a, const Rectangle& b)
{
    return a.left < b.left + b.width && b.left < a.left + a.width && a.bottom < b.bottom + b.height &&
           b.bottom < a.bottom + a.height;
}

double spanOf(const AxisRange& range)
{
    return range.high - range.low;
}

} // namespace

PanelLayout::PanelLayout(const Panel& panel_, double cellWidth, double cellHeight) : panel(panel_)
{
    // Margins depend on labels, labels on lengths, lengths on margins: the second round starts from good lengths.
    plotWidth = cellWidth - 160.0;
    plotHeight = cellHeight - 110.0;
    for (int round = 0; round < 3; ++round)
    {
        x = chooseTicks(panel.x.range, plotWidth, AxisDirection::Across);
        y = chooseTicks(panel.y.range, plotHeight, AxisDirection::Up);
        if (panel.colours)
            colours = chooseTicks(panel.colours->limits, plotHeight, AxisDirection::Up);
        setMargins();
        plotWidth = std::max(smallestPlot, cellWidth - left - right);
        plotHeight = std::max(smallestPlot, cellHeight - bottom - top);
        const double ratio = panel.hasOneScale ? spanOf(panel.y.range) / spanOf(panel.x.range) : 1.0;
        if (!(panel.hasOneScale || panel.isSquare) || !std::isfinite(ratio) || !(ratio > 0.0))
            continue;
        plotWidth = std::min(plotWidth, plotHeight / ratio);
        plotHeight = plotWidth * ratio;
    }
}

void PanelLayout::setMargins()
{
    const double halfLabel = x.areUpright || x.ticks.empty() ? textHeight / 2 : widthOfText(x.ticks.back().label) / 2;
    left = 2 * edge + textHeight + gap + widestOf(y) + tickLength + gap;
    right = edge + halfLabel;
    bottom = 2 * edge + gap + textHeight + (x.areUpright ? widestOf(x) : textHeight) + tickLength + gap;
    top = 2 * edge;
    if (panel.colours)
        right = std::max(right, boxGap + boxWidth + tickLength + 2 * gap + widestOf(colours) + gap + textHeight + edge);
    if (panel.colours && panel.colours->isPassedAbove)
        top = std::max(top, triangleHeight + edge);
    if (panel.hasKeyAbove)
        top += keyHeight;
    if (!panel.title.empty())
        top += textHeight + gap;
}

std::string PanelLayout::axisCommands(const Rectangle& plot, double pictureWidth, double pictureHeight) const
{
    const auto axis = [](const char* letter, const PanelAxis& of, const Ticks& ticks)
    {
        return "set " + std::string(letter) + "range " + of.range.text() + "\nset " + letter + "tics out nomirror " +
               listOf(ticks) + (ticks.areUpright ? " rotate by 90 right" : "") + " scale tick\n";
    };
    // Labels of our own: every terminal of gnuplot has its own distance from the axis for them.
    const auto title = [&](int number, const PanelAxis& of, const Ticks& ticks, double px, double py)
    {
        return "set label " + std::to_string(number) + " " + quoteForGnuplot(axisTitle(of.name, of.unit, ticks)) +
               " at screen " + share(px, pictureWidth) + ",screen " + share(py, pictureHeight) + " center";
    };
    const double below = bottom - edge - textHeight / 2;
    const double beside = left - edge - textHeight / 2;
    return axis("x", panel.x, x) + axis("y", panel.y, y) +
           title(4, panel.x, x, plot.left + plot.width / 2, plot.bottom - below) + "\n" +
           title(5, panel.y, y, plot.left - beside, plot.bottom + plot.height / 2) + " rotate by 90\n" +
           (panel.hasGrid ? "set grid xtics ytics lt 1 lc rgb '#e4e4e4' lw 0.7\n" : "");
}

std::string PanelLayout::colourCommands(const Rectangle& plot, double pictureWidth, double pictureHeight) const
{
    const ColourKey& scale = *panel.colours;
    const double boxLeft = plot.left + plot.width + boxGap;
    const auto place = [&](double px, double py)
    {
        return "screen " + share(px, pictureWidth) + ",screen " + share(py, pictureHeight);
    };
    std::string text = paletteCommand(scale.palette) + "set cbrange " + scale.limits.text() + "\nset cbtics out " +
                       listOf(colours) + " scale tick\nset colorbox vertical user origin " +
                       place(boxLeft, plot.bottom) + " size " + place(boxWidth, plot.height) + "\n";
    text += "set label 1 " + quoteForGnuplot(axisTitle(scale.name, scale.unit, colours)) + " at " +
            place(boxLeft + boxWidth + tickLength + 2 * gap + widestOf(colours) + gap + textHeight / 2,
                  plot.bottom + plot.height / 2) +
            " center rotate by 90\n";
    const auto triangle = [&](int number, double base, double height, const std::string& colour)
    {
        return "set object " + std::to_string(number) + " polygon from " + place(boxLeft, base) + " to " +
               place(boxLeft + boxWidth, base) + " to " + place(boxLeft + boxWidth / 2, base + height) + " to " +
               place(boxLeft, base) + " fillcolor rgb '" + colour + "' fillstyle solid border lc rgb '#000000'\n";
    };
    if (scale.isPassedAbove)
        text += triangle(1, plot.bottom + plot.height, triangleHeight, scale.palette.back());
    if (scale.isPassedBelow)
        text += triangle(2, plot.bottom, -triangleHeight, scale.palette.front());
    return text;
}

std::string PanelLayout::commands(const Rectangle& cell, double pictureWidth, double pictureHeight) const
{
    const double restAcross = std::max(0.0, cell.width - getNeededWidth());
    const double restUp = std::max(0.0, cell.height - getNeededHeight());
    const Rectangle plot{cell.left + restAcross / 2 + left, cell.bottom + restUp / 2 + bottom, plotWidth, plotHeight};
    std::string text = "set lmargin at screen " + share(plot.left, pictureWidth) + "\nset rmargin at screen " +
                       share(plot.left + plot.width, pictureWidth) + "\nset bmargin at screen " +
                       share(plot.bottom, pictureHeight) + "\nset tmargin at screen " +
                       share(plot.bottom + plot.height, pictureHeight) + "\n" +
                       axisCommands(plot, pictureWidth, pictureHeight);
    const double middle = plot.left + plot.width / 2;
    const double end = plot.bottom + plot.height;
    if (panel.colours)
        text += colourCommands(plot, pictureWidth, pictureHeight);
    if (panel.hasKeyAbove)
        text += "set key at screen " + share(middle, pictureWidth) + ",screen " +
                share(end + keyHeight / 2 + gap, pictureHeight) + " center horizontal reverse Left samplen 2\n";
    if (!panel.title.empty())
        text += "set label 2 " + quoteForGnuplot(panel.title) + " at screen " + share(middle, pictureWidth) +
                ",screen " + share(end + top - edge - textHeight / 2, pictureHeight) + " center\n";
    return text;
}

std::vector<PointLabel> PanelLayout::chooseLabels() const
{
    constexpr double labelHeight = 14.0; // of the small font
    constexpr double shareOfFont = 0.8;
    std::vector<PointLabel> chosen;
    std::vector<Rectangle> taken;
    for (const PointLabel& label : panel.labels)
    {
        const double width = shareOfFont * widthOfText(label.text);
        const Rectangle room{(label.x - panel.x.range.low) / spanOf(panel.x.range) * plotWidth - width / 2,
                             (label.y - panel.y.range.low) / spanOf(panel.y.range) * plotHeight - labelHeight / 2,
                             width, labelHeight};
        const bool isInside = room.left >= 0.0 && room.left + room.width <= plotWidth && room.bottom >= 0.0 &&
                              room.bottom + room.height <= plotHeight;
        if (!isInside ||
            std::any_of(taken.begin(), taken.end(), [&](const Rectangle& other) { return overlap(room, other); }))
            continue;
        taken.push_back(room);
        chosen.push_back(label);
    }
    return chosen;
}

std::string axisTitle(const std::string& name, const std::string& unit, const Ticks& ticks)
{
    std::string text = name;
    if (!ticks.offsetText.empty())
        text += (ticks.offset > 0.0 ? " - " : " + ") + ticks.offsetText;
    return unit.empty() ? text : text + " (" + unit + ")";
}

} // namespace krige
