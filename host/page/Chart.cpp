#include "host/page/Chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>

#include "host/page/Html.h"

namespace krige
{

namespace
{

// Units of the picture: pixels on a narrow screen.
constexpr double pictureWidth = 440.0;
constexpr double widthOfLetter = 6.6;
constexpr double top = 10.0;
constexpr double bottom = 46.0; // labels and title of the x axis
constexpr double rightMargin = 14.0;
constexpr double barRoom = 92.0; // gap, bar, labels and title
constexpr double tallestPlot = 400.0;
constexpr double roomOfXLabel = 58.0;
constexpr double roomOfYLabel = 34.0;
constexpr std::size_t longestTitle = 48;

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value == 0.0 ? 0.0 : value);
    std::string digits = text;
    if (digits.size() > 2 && digits.compare(digits.size() - 2, 2, ".0") == 0)
        digits.resize(digits.size() - 2);
    return digits == "-0" ? "0" : digits;
}

std::string attribute(const char* name, double value)
{
    return std::string(" ") + name + "=\"" + number(value) + "\"";
}

std::string textAt(double x, double y, const std::string& text, const std::string& className,
                   const std::string& attributes = {})
{
    return "<text" + attribute("x", x) + attribute("y", y) + " class=\"" + className + "\"" + attributes + ">" +
           escapeHtml(text) + "</text>";
}

std::string lineFrom(double x1, double y1, double x2, double y2, const char* className)
{
    return std::string("<path class=\"") + className + "\" d=\"M" + number(x1) + " " + number(y1) + "L" + number(x2) +
           " " + number(y2) + "\"/>";
}

std::string titleWithOffset(const std::string& title, const std::string& offset)
{
    return shortenText(title, longestTitle) + (offset.empty() ? "" : " - " + offset);
}

int roomFor(double length, double room)
{
    return std::max(2, static_cast<int>(length / room));
}

/// So that labels of the y axis and its title fit.
double leftOf(const Axis& yAxis)
{
    std::size_t longest = 1;
    for (const Axis::Mark& mark : yAxis.getMarks())
        longest = std::max(longest, mark.label.size());
    return 30.0 + widthOfLetter * static_cast<double>(longest);
}

} // namespace

Chart::Chart(ChartFrame frame_, std::optional<ColourBar> bar_)
    : frame(std::move(frame_)),
      bar(std::move(bar_)),
      height(std::min(tallestPlot, frame.ratio * (pictureWidth - 72.0 - (bar ? barRoom : rightMargin)))),
      xAxis(frame.xLow, frame.xHigh, 2),
      yAxis(frame.yLow, frame.yHigh, roomFor(height, roomOfYLabel))
{
    left = leftOf(yAxis);
    width = std::min(pictureWidth - left - (bar ? barRoom : rightMargin), height / frame.ratio);
    height = std::min(tallestPlot, frame.ratio * width);
    xAxis = Axis(frame.xLow, frame.xHigh, roomFor(width, roomOfXLabel));
}

double Chart::toX(double x) const
{
    return left + width * xAxis.shareOf(x);
}

double Chart::toY(double y) const
{
    return top + height * (1.0 - yAxis.shareOf(y));
}

std::string Chart::clipped(const std::string& svg) const
{
    const std::string place = attribute("width", width) + attribute("height", height);
    return "<svg" + attribute("x", left) + attribute("y", top) + place + " viewBox=\"" + getPlotPlace() + "\">" + svg +
           "</svg>\n";
}

void Chart::addImage(const std::string& address)
{
    within += "<image class=\"raster\"" + attribute("x", left) + attribute("y", top) + attribute("width", width) +
              attribute("height", height) + " preserveAspectRatio=\"none\" href=\"" + address + "\"/>\n";
}

void Chart::addLine(const std::vector<double>& x, const std::vector<double>& y, const std::string& className)
{
    std::string path;
    bool isOpen = false;
    for (std::size_t i = 0; i < x.size(); ++i)
    {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i]))
        {
            isOpen = false;
            continue;
        }
        path += (isOpen ? "L" : "M") + number(toX(x[i])) + " " + number(toY(y[i]));
        isOpen = true;
    }
    within += clipped("<path class=\"" + className + "\" d=\"" + path + "\"/>");
}

void Chart::addBand(const std::vector<double>& x, const std::vector<double>& lows, const std::vector<double>& highs,
                    const std::string& className)
{
    const auto isWhole = [&](std::size_t i)
    {
        return std::isfinite(x[i]) && std::isfinite(lows[i]) && std::isfinite(highs[i]);
    };
    std::string path;
    for (std::size_t first = 0; first < x.size();)
    {
        if (!isWhole(first))
        {
            ++first;
            continue;
        }
        std::size_t end = first;
        for (; end < x.size() && isWhole(end); ++end)
            path += (end == first ? "M" : "L") + number(toX(x[end])) + " " + number(toY(highs[end]));
        for (std::size_t i = end; i-- > first;)
            path += "L" + number(toX(x[i])) + " " + number(toY(lows[i]));
        path += "Z";
        first = end;
    }
    within += clipped("<path class=\"" + className + "\" d=\"" + path + "\"/>");
}

void Chart::addBar(double xFrom, double xTo, double barHeight)
{
    const double x = toX(xFrom);
    const double y = toY(barHeight);
    within += "<rect class=\"bar\"" + attribute("x", x + 0.5) + attribute("y", y) +
              attribute("width", std::max(toX(xTo) - x - 1.0, 0.5)) + attribute("height", toY(0.0) - y) + "/>\n";
}

std::string Chart::pathOfDots(const std::vector<double>& x, const std::vector<double>& y,
                              const std::vector<std::size_t>& which) const
{
    std::string path;
    for (const std::size_t i : which)
        path += "M" + number(toX(x[i])) + " " + number(toY(y[i])) + "h0"; // its round ends are the dot
    return path;
}

void Chart::addDots(const std::vector<double>& x, const std::vector<double>& y, const std::string& className)
{
    std::vector<std::size_t> drawn;
    for (std::size_t i = 0; i < x.size(); ++i)
    {
        if (std::isfinite(x[i]) && std::isfinite(y[i]))
            drawn.push_back(i);
    }
    within += "<path class=\"dots " + className + "\" d=\"" + pathOfDots(x, y, drawn) + "\"/>\n";
}

void Chart::addColouredDots(const std::vector<double>& x, const std::vector<double>& y,
                            const std::vector<double>& values)
{
    constexpr std::size_t step = 8; // colours nearer to each other are not told apart
    std::map<std::size_t, std::vector<std::size_t>> byColour;
    std::vector<std::size_t> drawn;
    for (std::size_t i = 0; i < x.size(); ++i)
    {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i]) || std::isnan(values[i]))
            continue;
        const std::size_t index = bar->colours.indexOf(values[i]);
        byColour[std::min(index / step * step + step / 2, ColourScale::numColours - 1)].push_back(i);
        drawn.push_back(i);
    }
    const std::string size = drawn.size() > 800 ? " small" : "";
    within += "<path class=\"dots ring" + size + "\" d=\"" + pathOfDots(x, y, drawn) + "\"/>\n";
    for (const auto& [index, which] : byColour)
        within += "<path class=\"dots coloured" + size + "\" stroke=\"" + hexOf(bar->colours.colourAt(index)) +
                  "\" d=\"" + pathOfDots(x, y, which) + "\"/>\n";
}

void Chart::addLabel(double x, double y, const std::string& text, const std::string& className)
{
    within += textAt(toX(x), toY(y), text, className) + "\n";
}

std::string Chart::marksAndTitles() const
{
    const double base = top + height;
    std::string svg = "<rect class=\"rim\"" + attribute("x", left) + attribute("y", top) + attribute("width", width) +
                      attribute("height", height) + "/>\n";
    for (const Axis::Mark& mark : xAxis.getMarks())
    {
        const double x = toX(mark.value);
        svg += lineFrom(x, base, x, base + 4.0, "mark") + textAt(x, base + 16.0, mark.label, "middle") + "\n";
    }
    for (const Axis::Mark& mark : yAxis.getMarks())
    {
        const double y = toY(mark.value);
        svg += lineFrom(left - 4.0, y, left, y, "mark") + textAt(left - 7.0, y + 4.0, mark.label, "end") + "\n";
    }
    svg += textAt(left + 0.5 * width, base + 36.0, titleWithOffset(frame.xTitle, xAxis.getOffset()), "middle title") +
           "\n";
    const std::string turned = " transform=\"rotate(-90 12 " + number(top + 0.5 * height) + ")\"";
    svg += textAt(12.0, top + 0.5 * height, titleWithOffset(frame.yTitle, yAxis.getOffset()), "middle title", turned) +
           "\n";
    return svg;
}

std::string Chart::colourBar() const
{
    constexpr int numSteps = 51;
    constexpr double barWidth = 12.0;
    const double x = left + width + 14.0;
    const Axis axis(bar->colours.getLow(), bar->colours.getHigh(), roomFor(height, roomOfYLabel));
    std::string svg;
    for (int i = 0; i < numSteps; ++i)
    {
        const auto index = static_cast<std::size_t>((i + 0.5) / numSteps * ColourScale::numColours);
        const double y = top + height * (numSteps - 1 - i) / numSteps;
        svg += "<rect class=\"step\"" + attribute("x", x) + attribute("y", y) + attribute("width", barWidth) +
               attribute("height", height / numSteps + (i > 0 ? 0.6 : 0.0)) + " fill=\"" +
               hexOf(bar->colours.colourAt(index)) + "\"/>";
    }
    svg += "\n";
    std::size_t longest = 1;
    for (const Axis::Mark& mark : axis.getMarks())
    {
        longest = std::max(longest, mark.label.size());
        const double y = top + height * (1.0 - axis.shareOf(mark.value));
        svg += lineFrom(x + barWidth, y, x + barWidth + 4.0, y, "mark") +
               textAt(x + barWidth + 7.0, y + 4.0, mark.label, "start") + "\n";
    }
    const auto triangle = [&](double y, double tip, std::size_t index)
    {
        svg += "<path d=\"M" + number(x) + " " + number(y) + "h" + number(barWidth) + "L" + number(x + 0.5 * barWidth) +
               " " + number(tip) + "Z\" fill=\"" + hexOf(bar->colours.colourAt(index)) + "\"/>\n";
    };
    if (bar->isExceededAbove)
        triangle(top, top - 9.0, ColourScale::numColours - 1);
    if (bar->isExceededBelow)
        triangle(top + height, top + height + 9.0, 0);
    const double titleX =
        std::min(x + barWidth + 24.0 + widthOfLetter * static_cast<double>(longest), pictureWidth - 4.0);
    const std::string turned = " transform=\"rotate(-90 " + number(titleX) + " " + number(top + 0.5 * height) + ")\"";
    return svg +
           textAt(titleX, top + 0.5 * height, titleWithOffset(bar->title, axis.getOffset()), "middle title", turned) +
           "\n";
}

std::string Chart::toSvg(const std::string& description, const std::string& svgAttributes) const
{
    return "<svg viewBox=\"0 0 " + number(pictureWidth) + " " + number(top + height + bottom) +
           "\" role=\"img\" aria-label=\"" + escapeHtml(description) + "\"" +
           (svgAttributes.empty() ? "" : " " + svgAttributes) + ">\n" + within + marksAndTitles() +
           (bar ? colourBar() : "") + "</svg>\n";
}

std::string Chart::getPlotPlace() const
{
    return number(left) + " " + number(top) + " " + number(width) + " " + number(height);
}

std::vector<double> valuesAt(const std::vector<double>& values, const std::vector<std::size_t>& indices)
{
    std::vector<double> chosen;
    chosen.reserve(indices.size());
    for (const std::size_t i : indices)
        chosen.push_back(values[i]);
    return chosen;
}

std::string styleOfDots(std::size_t count)
{
    return count > 300 ? "accent" : "accent large";
}

std::vector<std::size_t> thinned(std::size_t count, std::size_t most)
{
    std::vector<std::size_t> indices;
    const std::size_t number = std::min(count, most);
    for (std::size_t k = 0; k < number; ++k)
        indices.push_back(k * count / number);
    return indices;
}

double ratioOfMap(double xSpan, double ySpan)
{
    const double ratio = ySpan / xSpan;
    return ratio > 1.0 / 3.0 && ratio < 3.0 ? ratio : 0.8;
}

} // namespace krige
