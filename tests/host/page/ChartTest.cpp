#include "host/page/Chart.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include <gmock/gmock.h>

using krige::Chart;
using krige::ChartFrame;
using krige::ColourBar;
using krige::ColourScale;
using krige::hexOf;
using testing::HasSubstr;
using testing::Not;

namespace
{

/// A plot from 0 to 10 along both axes, 370 units wide and 185 high, its left end at 56.4.
ChartFrame frame()
{
    return {0.0, 10.0, 0.0, 10.0, "x <m>", "z", 0.5};
}

ColourBar bar()
{
    return {ColourScale(ColourScale::Kind::Values, 0.0, 1.0), "value"};
}

const double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(ChartTest, MarksAndTitlesAreTexts)
{
    const std::string svg = Chart(frame()).toSvg("a \"b\"");

    EXPECT_THAT(svg, HasSubstr("aria-label=\"a &quot;b&quot;\""));
    EXPECT_THAT(svg, HasSubstr(">x &lt;m&gt;</text>"));
    EXPECT_THAT(svg, HasSubstr(">10</text>"));
}

TEST(ChartTest, DotsStandWhereTheirValuesAre)
{
    Chart chart(frame());
    const std::string place = chart.getPlotPlace();
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
    ASSERT_EQ(std::sscanf(place.c_str(), "%lf %lf %lf %lf", &left, &top, &width, &height), 4);
    chart.addDots({0.0, 10.0, 5.0, notANumber}, {0.0, 10.0, notANumber, 1.0}, "site");
    char expected[80];
    std::snprintf(expected, sizeof expected, "d=\"M%g %gh0M%g %gh0\"", left, top + height, left + width, top);

    EXPECT_THAT(chart.toSvg(""), HasSubstr(expected));
}

TEST(ChartTest, ALineBreaksWhereAValueIsMissing)
{
    Chart chart(frame());
    chart.addLine({0.0, 1.0, 2.0, 3.0, 4.0}, {1.0, 1.0, notANumber, 1.0, 1.0}, "curve");
    const std::string svg = chart.toSvg("");
    const std::size_t begin = svg.find("<path class=\"curve\" d=\"");
    ASSERT_NE(begin, std::string::npos);
    const std::string path = svg.substr(begin, svg.find("/>", begin) - begin);

    EXPECT_EQ(std::count(path.begin(), path.end(), 'M'), 2);
    EXPECT_EQ(std::count(path.begin(), path.end(), 'L'), 2);
}

TEST(ChartTest, ABandBreaksLikewise)
{
    Chart chart(frame());
    chart.addBand({0.0, 1.0, 2.0, 3.0}, {1.0, 1.0, notANumber, 1.0}, {2.0, 2.0, 2.0, 2.0}, "band");
    const std::string svg = chart.toSvg("");

    EXPECT_EQ(std::count(svg.begin(), svg.end(), 'Z'), 2);
}

TEST(ChartTest, ColoursOfDotsAreThoseOfTheBar)
{
    Chart chart(frame(), bar());
    chart.addColouredDots({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {0.0, 1.0, notANumber});
    const std::string svg = chart.toSvg("");

    EXPECT_THAT(svg, HasSubstr("stroke=\"" + hexOf(bar().colours.colourAt(4)) + "\""));
    EXPECT_THAT(svg, HasSubstr("stroke=\"" + hexOf(bar().colours.colourAt(252)) + "\""));
    EXPECT_THAT(svg, HasSubstr(">value</text>"));
}

TEST(ChartTest, TrianglesSayThatValuesLieBeyondTheBar)
{
    ColourBar beyond = bar();
    const std::string within = Chart(frame(), beyond).toSvg("");
    beyond.isExceededAbove = true;
    beyond.isExceededBelow = true;
    const std::string svg = Chart(frame(), beyond).toSvg("");

    EXPECT_THAT(within, Not(HasSubstr("Z\" fill=\"")));
    EXPECT_THAT(svg, HasSubstr("Z\" fill=\"#fde725\""));
    EXPECT_THAT(svg, HasSubstr("Z\" fill=\"#440154\""));
}

TEST(ChartTest, TallMapsAreNarrow)
{
    ChartFrame tall = frame();
    tall.ratio = 2.0;
    double width = 0.0;
    double height = 0.0;
    ASSERT_EQ(std::sscanf(Chart(tall, bar()).getPlotPlace().c_str(), "%*f %*f %lf %lf", &width, &height), 2);

    EXPECT_LE(height, 400.0);
    EXPECT_NEAR(height, 2.0 * width, 0.2);
}

TEST(ChartTest, ThinningIsEven)
{
    EXPECT_EQ(krige::thinned(3, 5), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(krige::thinned(10, 5), (std::vector<std::size_t>{0, 2, 4, 6, 8}));
    EXPECT_EQ(krige::valuesAt({1.0, 2.0, 3.0}, {2, 0}), (std::vector<double>{3.0, 1.0}));
}

TEST(ChartTest, MapsOfOneUnitAreToScale)
{
    EXPECT_EQ(krige::ratioOfMap(10.0, 20.0), 2.0);
    EXPECT_EQ(krige::ratioOfMap(10.0, 1000.0), 0.8);
}
