#include "host/pictures/PictureNodes.h"

#include <cmath>

#include <gtest/gtest.h>

#include "host/targets/TargetSource.h"

using krige::GridNodes;
using krige::GridSpec;
using krige::GridTargets;
using krige::PanelNodes;
using krige::TargetSample;

namespace
{

using Columns = std::vector<std::vector<double>>;

const std::vector<std::string> names{"x", "y", "h"};

/// What a grid gives where the value of a node is 1000 h + 100 y + x, estimated in blocks of seven.
void collectAll(GridNodes& nodes, const GridSpec& grid, const std::vector<std::string>& inputs,
                const krige::Shard& shard = {})
{
    GridTargets source(grid, inputs, shard);
    Columns targets;
    while (source.read(targets, 7) > 0)
    {
        std::vector<double> values;
        for (std::size_t t = 0; t < targets[0].size(); ++t)
            values.push_back(targets[0][t] + (inputs.size() > 1 ? 100 * targets[1][t] : 0.0) +
                             (inputs.size() > 2 ? 1000 * targets[2][t] : 0.0));
        nodes.collect({std::vector<double>(values.size(), -1.0), values}, {1});
    }
}

} // namespace

TEST(GridNodesTest, EveryNodeOfASmallGridIsShown)
{
    const GridSpec grid = krige::parseGridSpec("y=0:2:3,x=0:3:4", {"x", "y"}); // y runs fastest
    GridNodes nodes(grid, {"x", "y"}, {0, 0}, 16, 0);
    collectAll(nodes, grid, {"x", "y"});

    ASSERT_EQ(nodes.getPanels().size(), 1u);
    const PanelNodes& panel = nodes.getPanels()[0];
    EXPECT_EQ(panel.xNodes, (std::vector<double>{0, 1, 2, 3}));
    EXPECT_EQ(panel.yNodes, (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(nodes.getValues(0)[0], (std::vector<double>{0, 1, 2, 3, 100, 101, 102, 103, 200, 201, 202, 203}));
    EXPECT_EQ(nodes.describeThinning(), "");
}

TEST(GridNodesTest, TargetsAreTheNodesInTheOrderOfTheValues)
{
    const GridSpec grid = krige::parseGridSpec("x=0:3:4,y=0:2:3,h=5:5:1", names);
    const GridNodes nodes(grid, names, {0, 0, 0}, 16, 0);

    const Columns targets = nodes.getPanels()[0].calcTargets();
    EXPECT_EQ(targets[0][5], 1.0);
    EXPECT_EQ(targets[1][5], 1.0);
    EXPECT_EQ(targets[2], std::vector<double>(12, 5.0));
}

TEST(GridNodesTest, OfManyNodesEverySoManyOnesAreShown)
{
    const GridSpec grid = krige::parseGridSpec("x=0:6999:7000,y=0:1:2", {"x", "y"});
    GridNodes nodes(grid, {"x", "y"}, {0, 0}, 16, 0);
    collectAll(nodes, grid, {"x", "y"});

    const std::vector<double>& shown = nodes.getPanels()[0].xNodes;
    ASSERT_LE(shown.size(), 600u);
    ASSERT_GT(shown.size(), 300u);
    EXPECT_LT(shown.front(), 12.0);
    EXPECT_GT(shown.back(), 6987.0);
    for (std::size_t i = 0; i < shown.size(); ++i)
        ASSERT_EQ(nodes.getValues(0)[0][i], shown[i]);
    EXPECT_EQ(nodes.describeThinning(), "shows " + std::to_string(shown.size()) + " of 7000 nodes along 'x'");
}

TEST(GridNodesTest, SlicesLieAtTheNodesNextToTheCentre)
{
    const GridSpec grid = krige::parseGridSpec("x=0:3:4,y=0:2:3,h=0:4:5", names);
    GridNodes nodes(grid, names, {2.2, 0.9, 3.4}, 16, 0);
    collectAll(nodes, grid, names);

    ASSERT_EQ(nodes.getPanels().size(), 3u); // x and y, x and h, y and h
    EXPECT_EQ(nodes.getPanels()[0].fixedValues[2], 3.0);
    EXPECT_EQ(nodes.getValues(0)[0][0], 3000.0);
    EXPECT_EQ(nodes.getPanels()[1].fixedValues[1], 1.0);
    EXPECT_EQ(nodes.getValues(1)[0][4], 1100.0); // x = 0, h = 1
    EXPECT_EQ(nodes.getPanels()[2].fixedValues[0], 2.0);
    EXPECT_EQ(nodes.getValues(2)[0][1], 102.0); // y = 1, h = 0
}

TEST(GridNodesTest, ACentreOutsideTheGridTakesItsRim)
{
    const GridSpec grid = krige::parseGridSpec("x=0:3:4,y=0:2:3,h=0:4:5", names);
    const GridNodes nodes(grid, names, {-50, 0, 1e6}, 1, 0);

    ASSERT_EQ(nodes.getPanels().size(), 1u);
    EXPECT_EQ(nodes.getPanels()[0].fixedValues[2], 4.0);
}

TEST(GridNodesTest, AGridAlongOneInputIsALine)
{
    const GridSpec grid = krige::parseGridSpec("x=7:7:1,y=0:2:3", {"x", "y"});
    GridNodes nodes(grid, {"x", "y"}, {0, 0}, 16, 0);
    collectAll(nodes, grid, {"x", "y"});

    ASSERT_EQ(nodes.getPanels().size(), 1u);
    EXPECT_TRUE(nodes.getPanels()[0].isLine());
    EXPECT_EQ(nodes.getPanels()[0].x, 1u);
    EXPECT_EQ(nodes.getValues(0)[0], (std::vector<double>{7, 107, 207}));
}

TEST(GridNodesTest, AGridOfOneNodeIsALineOfOne)
{
    const GridSpec grid = krige::parseGridSpec("x=7:7:1,y=2:2:1", {"x", "y"});
    GridNodes nodes(grid, {"x", "y"}, {0, 0}, 16, 0);
    collectAll(nodes, grid, {"x", "y"});

    EXPECT_EQ(nodes.getValues(0)[0], (std::vector<double>{207}));
}

TEST(GridNodesTest, ShardsShowTheirPart)
{
    const GridSpec grid = krige::parseGridSpec("x=0:3:4,y=0:1:2", {"x", "y"});
    const krige::Shard second{2, 2};
    GridNodes nodes(grid, {"x", "y"}, {0, 0}, 16, second.numBefore(grid.numNodes));
    collectAll(nodes, grid, {"x", "y"}, second);

    EXPECT_TRUE(std::isnan(nodes.getValues(0)[0][3]));
    EXPECT_EQ(nodes.getValues(0)[0][4], 100.0);
    EXPECT_EQ(nodes.getValues(0)[0][7], 103.0);
}

TEST(TargetSampleTest, FewTargetsAreAllKept)
{
    TargetSample sample;
    sample.collect({{1, 2}, {3, 4}});
    sample.collect({{5}, {6}});

    EXPECT_EQ(sample.getTargets(), (Columns{{1, 2, 5}, {3, 4, 6}}));
}

TEST(TargetSampleTest, ManyTargetsAreThinnedEvenly)
{
    TargetSample sample;
    for (int i = 0; i < 100000; ++i)
        sample.collect({{static_cast<double>(i)}});

    const std::vector<double>& kept = sample.getTargets()[0];
    ASSERT_GT(kept.size(), 2000u);
    ASSERT_LE(kept.size(), 4096u);
    for (std::size_t i = 1; i < kept.size(); ++i)
        ASSERT_EQ(kept[i] - kept[i - 1], kept[1] - kept[0]);
}
