#include "host/page/MapSection.h"

#include <algorithm>

#include <gmock/gmock.h>

using krige::MapData;
using krige::mapSection;
using krige::MapView;
using krige::PredictionColumn;
using krige::Quantity;
using krige::SampleTable;
using testing::HasSubstr;
using testing::Not;

namespace
{

std::vector<PredictionColumn> columns()
{
    return {{"z", Quantity::Estimate, 0},
            {"z_stderr", Quantity::StandardError, 0},
            {"z_lo", Quantity::LowerEnd, 0},
            {"z_hi", Quantity::UpperEnd, 0}};
}

/// Four samples at the corners of a square, and a map of 3 x 2 nodes that reaches beyond it.
class MapSectionTest : public testing::Test
{
protected:
    MapSectionTest()
    {
        samples = {"s.csv", {"a\"", "b"}, {"z"}, {{0, 1, 0, 1}, {0, 0, 1, 1}}, {{1, 2, 3, 4}}, {2, 3, 4, 5}};
        MapView view;
        view.y = 1;
        view.xAxis = {"a\"", 0, 2, 3};
        view.yAxis = {"b", 0, 1, 2};
        view.heldValues = {0, 0};
        view.values = {{0, 5, 90, 1, 6, 80}, {1, 2, 3, 4, 5, 6}, {}, {}};
        views = {view};
    }

    std::string html()
    {
        const std::vector<PredictionColumn> all = columns();
        return mapSection({samples, views, numLeftOut, all, units, areLogarithms, "no target is off"});
    }

    SampleTable samples;
    std::vector<MapView> views;
    std::size_t numLeftOut = 0;
    std::string units;
    bool areLogarithms = false;
};

} // namespace

TEST_F(MapSectionTest, LayersHoldEstimateAndStandardError)
{
    EXPECT_THAT(html(), HasSubstr("data-name=\"estimate\" data-exponent=\"-2\" data-base=\"0\" data-codes=\""));
    EXPECT_THAT(html(), HasSubstr("data-name=\"standard error\" data-exponent=\"-4\" data-base=\"10000\""));
    EXPECT_THAT(html(), HasSubstr("<input type=\"radio\" name=\"map1\" id=\"map1-estimate\" checked>"));
}

TEST_F(MapSectionTest, TheScriptLearnsWhereTheNodesAre)
{
    units = "<m>";

    EXPECT_THAT(html(), HasSubstr("data-columns=\"3\" data-rows=\"2\" data-x=\"0 2\" data-y=\"0 1\" "
                                  "data-x-name=\"a&quot;\" data-y-name=\"b\" data-units=\"&lt;m&gt;\""));
}

TEST_F(MapSectionTest, ColoursSpanWhatSamplesSurround)
{
    // 90 and 80 lie outside of the hull: the colour bar ends at 6, with a triangle.
    EXPECT_THAT(html(), HasSubstr("Z\" fill=\"#fde725\""));
    EXPECT_THAT(html(), HasSubstr(">6</text>"));
    EXPECT_THAT(html(), Not(HasSubstr(">80</text>")));
}

TEST_F(MapSectionTest, SlicesNameWhatIsHeldAndShowSamplesNearby)
{
    samples.inputNames.emplace_back("c");
    samples.inputs.push_back({0, 10, 0, 0.5});
    views[0].heldValues = {0, 0, 0.25};
    views[0].isSlice = true;
    numLeftOut = 3;

    EXPECT_THAT(html(), HasSubstr("z at c = 0.25, 3 x 2 nodes"));
    EXPECT_THAT(html(), HasSubstr("3 other pairs of inputs are left out"));
    const std::string text = html();
    const std::size_t begin = text.find("class=\"dots site\" d=\"");
    const std::string dots = text.substr(begin, text.find("/>", begin) - begin);
    EXPECT_EQ(std::count(dots.begin(), dots.end(), 'M'), 3); // the sample at c = 10 is far from it
}

TEST_F(MapSectionTest, OneInputGivesAProfile)
{
    samples.inputNames.pop_back();
    samples.inputs.pop_back();
    views[0].y.reset();
    views[0].yAxis = {};
    views[0].values = {{1, 2, 4}, {1, 1, 1}, {0, 1, 3}, {2, 3, 5}};
    views[0].heldValues = {0};

    EXPECT_THAT(html(), HasSubstr("class=\"band\""));
    EXPECT_THAT(html(), HasSubstr("<div class=\"layer unseen\" data-name=\"standard error\""));
    EXPECT_THAT(html(), HasSubstr("the interval that holds 95 %"));
}

TEST_F(MapSectionTest, StandardErrorsOfLogarithmsAreCalledSo)
{
    areLogarithms = true;

    EXPECT_THAT(html(), HasSubstr("data-name=\"standard error of the logarithm\""));
}

TEST_F(MapSectionTest, TheSupportIsSaid)
{
    EXPECT_THAT(html(), HasSubstr("Support: no target is off."));
}
