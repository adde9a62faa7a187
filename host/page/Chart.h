#ifndef FENN_HOST_PAGE_CHART_H
#define FENN_HOST_PAGE_CHART_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/page/Axis.h"
#include "host/page/ColourScale.h"

namespace krige
{

/// What a chart spans and is called. Titles are texts, shortened where they are long.
struct ChartFrame
{
    double xLow = 0.0;
    double xHigh = 1.0;
    double yLow = 0.0;
    double yHigh = 1.0;
    std::string xTitle;
    std::string yTitle;
    double ratio = 0.75; // of the plot's height to its width
};

/// A colour bar beside a chart.
struct ColourBar
{
    ColourScale colours;
    std::string title;
    bool isExceededBelow = false; // values beyond its ends, which take their colours: a triangle says so
    bool isExceededAbove = false;
};

/// A chart in SVG, of one width wherever it stands: the style sheet of the page scales it, and gives classes of marks
/// their colours, which follow light and dark. Drawn in the order of the calls. Points with a NaN are left out.
class Chart
{
public:
    explicit Chart(ChartFrame frame_, std::optional<ColourBar> bar_ = std::nullopt);

    /// A picture over the whole plot, e.g. from dataAddressOf.
    void addImage(const std::string& address);

    /// Lines and areas end at the plot's rim. className: of the style sheet.
    void addLine(const std::vector<double>& x, const std::vector<double>& y, const std::string& className);
    void addBand(const std::vector<double>& x, const std::vector<double>& lows, const std::vector<double>& highs,
                 const std::string& className);
    void addBar(double xFrom, double xTo, double height);

    /// Dots may hang over it.
    void addDots(const std::vector<double>& x, const std::vector<double>& y, const std::string& className);
    /// In the colours of the bar, which there must be, with a thin ring.
    void addColouredDots(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& values);

    void addLabel(double x, double y, const std::string& text, const std::string& className);

    /// description: for readers who do not see it. svgAttributes: further ones of the element, markup.
    std::string toSvg(const std::string& description, const std::string& svgAttributes = {}) const;

    /// Where the plot lies within the picture, "left top width height", for a script.
    std::string getPlotPlace() const;

private:
    double toX(double x) const;
    double toY(double y) const;
    std::string clipped(const std::string& svg) const;
    std::string pathOfDots(const std::vector<double>& x, const std::vector<double>& y,
                           const std::vector<std::size_t>& which) const;
    std::string marksAndTitles() const;
    std::string colourBar() const;

    ChartFrame frame;
    std::optional<ColourBar> bar;
    double left = 0.0; // of the plot, in units of the picture
    double width = 0.0;
    double height = 0.0;
    Axis xAxis;
    Axis yAxis;
    std::string within; // marks that end at the rim, and those drawn among them
};

/// Of more samples a chart shows so many: a page stays small, and dots can be told apart.
constexpr std::size_t mostDots = 5000;

/// The values at these indices.
std::vector<double> valuesAt(const std::vector<double>& values, const std::vector<std::size_t>& indices);

/// Class of dots of one colour: large where there are few.
std::string styleOfDots(std::size_t count);

/// At most so many of the indices 0 to count - 1, evenly chosen.
std::vector<std::size_t> thinned(std::size_t count, std::size_t most);

/// Height over width of a map to scale, where its axes have one unit as far as their lengths tell; otherwise 0.8.
double ratioOfMap(double xSpan, double ySpan);

} // namespace krige

#endif
