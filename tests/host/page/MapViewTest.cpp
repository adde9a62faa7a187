#include "host/page/MapView.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::chooseViews;
using krige::defaultGrid;
using krige::GridSpec;
using krige::MapView;
using krige::SampleTable;
using krige::UsageError;
using krige::test::messageOf;
using testing::HasSubstr;

namespace
{

using Columns = std::vector<std::vector<double>>;

SampleTable samplesOver(const Columns& inputs)
{
    SampleTable samples;
    for (std::size_t v = 0; v < inputs.size(); ++v)
        samples.inputNames.emplace_back(1, static_cast<char>('a' + v));
    samples.inputs = inputs;
    samples.outputNames = {"z"};
    samples.outputs = {inputs.front()};
    return samples;
}

GridSpec gridOf(const std::string& text, const SampleTable& samples)
{
    GridSpec grid = krige::parseGridSpec(text, samples.inputNames);
    krige::spanSamples(grid, samples.inputs);
    return grid;
}

} // namespace

TEST(MapViewTest, CellsOfADefaultMapAreAboutSquare)
{
    const GridSpec grid = defaultGrid(samplesOver({{0, 200}, {0, 100}}));

    EXPECT_EQ(grid.axes[0].count, 245u);
    EXPECT_EQ(grid.axes[1].count, 122u);
    EXPECT_EQ(grid.axes[0].high, 200.0);
}

TEST(MapViewTest, InputsOfOtherUnitsGetTwoHundredByAHundredAndFifty)
{
    const GridSpec grid = defaultGrid(samplesOver({{0, 1}, {0, 1000}}));

    EXPECT_EQ(grid.axes[0].count, 200u);
    EXPECT_EQ(grid.axes[1].count, 150u);
}

TEST(MapViewTest, OneInputGivesAProfile)
{
    const SampleTable samples = samplesOver({{0, 4}});
    const std::vector<MapView> views = chooseViews(defaultGrid(samples), samples);

    ASSERT_EQ(views.size(), 1u);
    EXPECT_FALSE(views[0].y);
    EXPECT_FALSE(views[0].isSlice);
    EXPECT_EQ(views[0].getNumNodes(), 400u);
}

TEST(MapViewTest, ThreeInputsGiveASlicePerPairThroughTheMeans)
{
    const SampleTable samples = samplesOver({{0, 4}, {0, 1}, {1, 2}});
    const std::vector<MapView> views = chooseViews(gridOf("5x4x3", samples), samples);

    ASSERT_EQ(views.size(), 3u);
    EXPECT_EQ(views[2].x, 1u);
    EXPECT_EQ(views[2].y, 2u);
    EXPECT_TRUE(views[2].isSlice);
    EXPECT_EQ(views[0].describeHeld(samples.inputNames), "c = 1.5");
}

TEST(MapViewTest, AnInputWithOneNodeIsHeldThere)
{
    const SampleTable samples = samplesOver({{0, 4}, {0, 1}, {1, 2}});
    const std::vector<MapView> views = chooseViews(gridOf("a=0:4:5,b=0:1:4,c=1.75:1.75:1", samples), samples);

    ASSERT_EQ(views.size(), 1u);
    EXPECT_EQ(views[0].describeHeld(samples.inputNames), "c = 1.75");
}

TEST(MapViewTest, OfManyInputsTheFirstPairsAreShown)
{
    const SampleTable samples = samplesOver(Columns(5, {0, 1}));
    const GridSpec grid = gridOf("3x3x3x3x3", samples);

    EXPECT_EQ(chooseViews(grid, samples).size(), krige::mostSlices);
    EXPECT_EQ(krige::countPairs(grid), 10u);
}

TEST(MapViewTest, WhatAPageCannotShowIsRefused)
{
    const SampleTable samples = samplesOver({{0, 4}, {0, 1}});

    EXPECT_THAT(messageOf<UsageError>([&] { chooseViews(gridOf("1x1", samples), samples); }),
                HasSubstr("needs an input with two nodes"));
    EXPECT_NO_THROW(chooseViews(gridOf("2000x2000", samples), samples));
    EXPECT_THAT(messageOf<UsageError>([&] { chooseViews(gridOf("2001x2000", samples), samples); }),
                HasSubstr("up to 4000000 nodes"));
}

TEST(MapViewTest, EveryNodeIsEstimatedAtItsPlace)
{
    const SampleTable samples = samplesOver({{0, 4}, {0, 1}, {10, 20}});
    MapView view = chooseViews(gridOf("401x201x2", samples), samples).front(); // more than one request
    std::size_t numRequests = 0;
    krige::estimateView(view,
                        [&](const Columns& targets, Columns& values)
                        {
                            ++numRequests;
                            values.assign(1, {});
                            for (std::size_t t = 0; t < targets[0].size(); ++t)
                                values[0].push_back(targets[0][t] + 10.0 * targets[1][t] + 100.0 * targets[2][t]);
                        });

    EXPECT_GT(numRequests, 1u);
    ASSERT_EQ(view.values[0].size(), 401u * 201u);
    EXPECT_DOUBLE_EQ(view.values[0][0], 1500.0);
    EXPECT_DOUBLE_EQ(view.values[0][401 * 200 + 100], 1.0 + 10.0 + 1500.0);
}
