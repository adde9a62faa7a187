#include "host/pictures/Picture.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

#include "host/files/OutputFile.h"
#include "host/pictures/Gnuplot.h"
#include "host/pictures/PanelLayout.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

// Of one panel, in pixels: the size that everything is laid out for.
constexpr double usualWidth = 760.0;
constexpr double usualHeight = 600.0;
// Down to this size text keeps its size; below it shrinks along.
constexpr double smallWidth = 420.0;
constexpr double smallHeight = 340.0;
constexpr double leastScale = 0.5;
constexpr double titleHeight = 40.0;

int parseSide(std::string_view text)
{
    int value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() ? value : 0;
}

/// How much larger than laid out panels of this size are drawn.
double scaleOf(double width, double height)
{
    if (width < smallWidth || height < smallHeight)
        return std::max(leastScale, std::min(width / smallWidth, height / smallHeight));
    return std::max(1.0, std::min(width / usualWidth, height / usualHeight));
}

/// Labels with a light ground, so that they can be read on every colour.
std::string labelPlot(const std::vector<PointLabel>& labels, std::size_t number, std::string& dataBlocks)
{
    const std::string name = "$labels" + std::to_string(number);
    dataBlocks += name + " << END_OF_DATA\n";
    for (const PointLabel& label : labels)
        dataBlocks += formatNumber(label.x) + " " + formatNumber(label.y) + " " + label.text + "\n";
    dataBlocks += "END_OF_DATA\n";
    return ", " + name + " using 1:2:3 with labels boxed font smallFont notitle";
}

} // namespace

PictureSize parsePictureSize(const std::string& option, const std::string& text)
{
    constexpr int least = 200;
    constexpr int most = 10000;
    const std::size_t cross = text.find('x');
    PictureSize size;
    if (cross != std::string::npos)
        size = {parseSide(std::string_view(text).substr(0, cross)),
                parseSide(std::string_view(text).substr(cross + 1))};
    if (std::min(size.width, size.height) < least || std::max(size.width, size.height) > most)
        throw UsageError(option + ": needs width and height in pixels, each from 200 to 10000, such as 1200x900, not " +
                         quoteForMessage(text));
    return size;
}

Picture::Picture(std::size_t panelsPerRow_, std::string title_, PictureSize size_)
    : panelsPerRow(panelsPerRow_), title(std::move(title_)), size(size_)
{
}

std::string pointSize(double size)
{
    return "ps " + formatNumber(size) + "*dot";
}

std::string Picture::addData(const std::vector<std::vector<double>>& columns)
{
    const std::string name = "$data" + std::to_string(++numDataBlocks);
    dataBlocks += name + " << END_OF_DATA\n";
    for (std::size_t i = 0; i < columns.front().size(); ++i)
    {
        const auto isNone = [i](const std::vector<double>& column)
        {
            return std::isnan(column[i]);
        };
        if (std::all_of(columns.begin(), columns.end(), isNone))
        {
            dataBlocks += '\n';
            continue;
        }
        for (const std::vector<double>& column : columns)
        {
            appendNumber(dataBlocks, column[i]);
            dataBlocks += ' ';
        }
        dataBlocks.back() = '\n';
    }
    dataBlocks += "END_OF_DATA\n";
    return name;
}

std::string Picture::addMatrix(const std::vector<double>& values, std::size_t rowLength)
{
    const std::string name = "$data" + std::to_string(++numDataBlocks);
    dataBlocks += name + " << END_OF_DATA\n";
    char text[32];
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        std::snprintf(text, sizeof text, "%.9g", values[i]);
        dataBlocks += std::isnan(values[i]) ? "nan" : text;
        dataBlocks += (i + 1) % rowLength == 0 ? '\n' : ' ';
    }
    dataBlocks += "END_OF_DATA\n";
    return name;
}

void Picture::addPanel(Panel panel)
{
    panels.push_back(std::move(panel));
}

std::size_t Picture::countColumns() const
{
    if (panelsPerRow > 0)
        return std::min(panelsPerRow, panels.size());
    return static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(panels.size()))));
}

std::size_t Picture::countRows() const
{
    return (panels.size() + countColumns() - 1) / countColumns();
}

std::string Picture::buildPanels(Canvas& canvas) const
{
    const auto numColumns = static_cast<double>(countColumns());
    const auto numRows = static_cast<double>(countRows());
    const double above = title.empty() ? 0.0 : titleHeight;
    double cellWidth = usualWidth;
    double cellHeight = usualHeight;
    const bool isSizeGiven = size.width > 0;
    if (isSizeGiven)
    {
        canvas.scale = scaleOf(size.width / numColumns, (size.height - above) / numRows);
        cellWidth = size.width / canvas.scale / numColumns;
        cellHeight = (size.height / canvas.scale - above) / numRows;
    }
    std::vector<PanelLayout> layouts;
    double neededWidth = 0.0;
    double neededHeight = 0.0;
    for (const Panel& panel : panels)
    {
        layouts.emplace_back(panel, cellWidth, cellHeight);
        neededWidth = std::max(neededWidth, layouts.back().getNeededWidth());
        neededHeight = std::max(neededHeight, layouts.back().getNeededHeight());
    }
    if (!isSizeGiven)
    {
        cellWidth = std::ceil(neededWidth);
        cellHeight = std::ceil(neededHeight);
    }
    canvas.width = isSizeGiven ? size.width / canvas.scale : numColumns * cellWidth;
    canvas.height = isSizeGiven ? size.height / canvas.scale : numRows * cellHeight + above;

    std::string labelData;
    std::string commands;
    for (std::size_t i = 0; i < panels.size(); ++i)
    {
        const auto column = static_cast<double>(i % countColumns());
        const std::size_t rowOfPanel = i / countColumns();
        const auto row = static_cast<double>(rowOfPanel);
        const Rectangle cell{column * cellWidth, canvas.height - above - (row + 1) * cellHeight, cellWidth, cellHeight};
        commands += "reset\nset style textbox opaque noborder margins 0.3,0.3 fillcolor '#50ffffff'\n" +
                    layouts[i].commands(cell, canvas.width, canvas.height) + panels[i].commands;
        if (i == 0 && !title.empty())
            commands += "set label 3 " + quoteForGnuplot(title) + " at screen 0.5,screen " +
                        formatNumber(1.0 - titleHeight / 2 / canvas.height) + " center font largeFont\n";
        commands += "plot " + panels[i].plots;
        const std::vector<PointLabel> labels = layouts[i].chooseLabels();
        commands += (labels.empty() ? "" : labelPlot(labels, i + 1, labelData)) + "\n";
    }
    return labelData + (panels.size() > 1 ? "set multiplot\n" + commands + "unset multiplot\n" : commands);
}

std::string Picture::terminalLine(const std::string& ending, const Canvas& canvas)
{
    // In each terminal's own units, so that all of them give the same picture.
    struct Sizes
    {
        int usualFont;
        int smallFont;
        int largeFont;
        double point;
        double tick;
    };
    constexpr double pixelsPerInch = 96.0;
    const bool isSvg = ending == ".svg";
    const bool isPdf = ending == ".pdf";
    const Sizes sizes = isSvg   ? Sizes{16, 13, 20, 0.55, 0.6}
                        : isPdf ? Sizes{9, 7, 12, 1.0, 1.0}
                                : Sizes{12, 10, 15, 1.0, 1.0};
    const auto fontOf = [](int points)
    {
        return "'sans," + std::to_string(points) + "'";
    };
    const auto length = [&](double side)
    {
        const double pixels = std::round(side * canvas.scale);
        return isPdf ? formatNumber(pixels / pixelsPerInch) + "in" : formatNumber(pixels);
    };
    const std::string scale = formatNumber(canvas.scale);
    // Viewers of .svg smooth an image of few pixels, so that large cells are drawn one by one there; elsewhere that
    // would leave seams between them.
    return "largeCells = '" + std::string(isSvg ? "pixels" : "") + "'\nsmallFont = " + fontOf(sizes.smallFont) +
           "\nlargeFont = " + fontOf(sizes.largeFont) + "\ndot = " + formatNumber(sizes.point * canvas.scale) +
           "\ntick = " + formatNumber(sizes.tick) + "\nset terminal " +
           (isSvg   ? "svg standalone background '#ffffff'"
            : isPdf ? "pdfcairo"
                    : "pngcairo") +
           " noenhanced font " + fontOf(sizes.usualFont) + " fontscale " + scale + " linewidth " + scale + " size " +
           length(canvas.width) + "," + length(canvas.height) + "\n";
}

std::string Picture::buildScript(const std::string& path, const std::string& ending) const
{
    Canvas canvas;
    const std::string panelCommands = buildPanels(canvas);
    return "# Made by krige. Draw it with: gnuplot FILE\n" + dataBlocks + "set encoding utf8\n" +
           terminalLine(ending, canvas) +
           (ending == ".gp"
                ? "set output " + quoteForGnuplot(path.substr(0, path.size() - 3) + ".png", path.size() + 1) + "\n"
                : "") +
           "set datafile missing 'nan'\n" + panelCommands + "unset output\n";
}

void Picture::save(const std::string& path) const
{
    const std::string ending = path.substr(path.rfind('.'));
    const std::string script = buildScript(path, ending);
    OutputFile file(path);
    file.write(ending == ".gp" ? script : runGnuplot(path, script));
    file.commit();
}

} // namespace krige
