#include "host/targets/RasterGrid.h"

#include <algorithm>
#include <set>
#include <utility>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::frameOfGrid;
using krige::GridSpec;
using krige::InputError;
using krige::parseGridSpec;
using krige::RasterFrame;
using krige::RasterTargets;
using krige::RasterWindow;
using krige::Shard;
using krige::test::messageOf;
using testing::HasSubstr;

namespace
{

using Columns = std::vector<std::vector<double>>;

GridSpec gridOf(const std::string& text)
{
    return parseGridSpec(text, {"x", "y"});
}

/// Reads all targets and checks that each stands for the cell of its window that it lies in.
std::set<std::pair<double, double>> readAll(RasterTargets& targets, const RasterFrame& frame, std::size_t maxTargets)
{
    std::set<std::pair<double, double>> cells;
    Columns columns;
    while (const std::size_t count = targets.read(columns, maxTargets))
    {
        const RasterWindow& window = targets.getWindow();
        EXPECT_LE(count, maxTargets);
        EXPECT_EQ(count, window.width * window.height);
        for (std::size_t t = 0; t < count; ++t)
        {
            const auto column = static_cast<double>(window.column + t % window.width);
            const auto row = static_cast<double>(window.row + t / window.width);
            EXPECT_EQ(columns[0][t], frame.left + (column + 0.5) * frame.cellWidth);
            EXPECT_EQ(columns[1][t], frame.top - (row + 0.5) * frame.cellHeight);
            EXPECT_TRUE(cells.emplace(column, row).second) << column << ' ' << row;
        }
    }
    return cells;
}

} // namespace

TEST(RasterGridTest, NodesAreTheCentresOfCells)
{
    const RasterFrame frame = frameOfGrid(gridOf("y=10:14:3,x=0:3:7"), {"x", "y"});

    EXPECT_EQ(frame.width, 7u);
    EXPECT_EQ(frame.height, 3u);
    EXPECT_EQ(frame.left, -0.25);
    EXPECT_EQ(frame.top, 15.0);
    EXPECT_EQ(frame.cellWidth, 0.5);
    EXPECT_EQ(frame.cellHeight, 2.0);
}

TEST(RasterGridTest, TheFrameOfARasterComesBackAsItWas)
{
    const RasterFrame raster{11, 7, 0.1, 7.3, 0.2, 0.7};
    GridSpec grid = gridOf("like=dem.tif");
    useCells(grid, raster);
    const RasterFrame frame = frameOfGrid(grid, {"x", "y"});

    EXPECT_EQ(frame.left, raster.left);
    EXPECT_EQ(frame.top, raster.top);
    EXPECT_EQ(frame.cellWidth, raster.cellWidth);
    EXPECT_EQ(frame.cellHeight, raster.cellHeight);
}

TEST(RasterGridTest, ASingleRowHasTheCellSizeOfTheOtherAxis)
{
    const RasterFrame frame = frameOfGrid(gridOf("x=0:3:7,y=2:2:1"), {"x", "y"});

    EXPECT_EQ(frame.cellHeight, 0.5);
    EXPECT_EQ(frame.top, 2.25);
}

TEST(RasterGridTest, AThirdInputMayHaveASingleNode)
{
    const GridSpec grid = parseGridSpec("x=0:1:2,y=0:1:2,depth=5:5:1", {"x", "y", "depth"});
    RasterTargets targets(grid, {"x", "y", "depth"});
    Columns columns;

    EXPECT_EQ(frameOfGrid(grid, {"x", "y", "depth"}).width, 2u);
    ASSERT_EQ(targets.read(columns, 100), 4u);
    EXPECT_EQ(columns[2], std::vector<double>(4, 5.0));
    EXPECT_EQ(columns[1], (std::vector<double>{1, 1, 0, 0})); // from the top
}

TEST(RasterGridTest, WhatMakesNoRasterIsRefused)
{
    const auto errorOf = [](const std::string& text, const std::vector<std::string>& names)
    {
        return messageOf<InputError>([&] { frameOfGrid(parseGridSpec(text, names), names); });
    };
    EXPECT_THAT(errorOf("x=0:1:5", {"x"}), HasSubstr("a raster is that of two inputs"));
    EXPECT_THAT(errorOf("x=0:1:2,y=0:1:2,d=0:1:2", {"x", "y", "d"}),
                HasSubstr("give 'd' a single node, as in d=5:5:1"));
    EXPECT_THAT(errorOf("x=1:1:1,y=2:2:1", {"x", "y"}), HasSubstr("lie in one place and make no cells"));
    EXPECT_THAT(errorOf("x=1:1:3,y=2:3:2", {"x", "y"}), HasSubstr("lie in one place and make no cells"));
}

TEST(RasterGridTest, CellsAreSquareButForRounding)
{
    const RasterFrame square{2, 2, 0.0, 0.0, 0.1, 0.1 + 1e-16};
    const RasterFrame oblong{2, 2, 0.0, 0.0, 1.0, 1.001};

    EXPECT_EQ(messageOf<InputError>([&] { checkCellsAreSquare(square, "map.asc"); }), "nothing was thrown");
    EXPECT_THAT(messageOf<InputError>([&] { checkCellsAreSquare(oblong, "map.asc"); }),
                HasSubstr("map.asc: such a file has square cells, but these are 1 by 1.001"));
}

TEST(RasterTargetsTest, EveryCellComesOnceWhateverTheSizeOfBlocks)
{
    GridSpec grid = gridOf("like=dem.tif");
    const RasterFrame frame{600, 300, 0.0, 300.0, 1.0, 1.0};
    useCells(grid, frame);
    for (const std::size_t maxTargets : {std::size_t{65536}, std::size_t{5000}, std::size_t{100}, std::size_t{257}})
    {
        RasterTargets targets(grid, {"x", "y"});
        EXPECT_EQ(readAll(targets, frame, maxTargets).size(), 180000u) << maxTargets;
    }
}

TEST(RasterTargetsTest, AWholeRequestIsATile)
{
    GridSpec grid = gridOf("like=dem.tif");
    useCells(grid, {600, 300, 0.0, 300.0, 1.0, 1.0});
    RasterTargets targets(grid, {"x", "y"});
    Columns columns;

    EXPECT_EQ(targets.read(columns, krige::targetsPerRequest), 65536u);
    EXPECT_EQ(targets.getWindow().width, 256u);
    EXPECT_EQ(targets.read(columns, krige::targetsPerRequest), 65536u);
    EXPECT_EQ(targets.getWindow().column, 256u);
    EXPECT_EQ(targets.getWindow().row, 0u);
}

TEST(RasterTargetsTest, PartsAreRunsOfRows)
{
    GridSpec grid = gridOf("like=dem.tif");
    const RasterFrame frame{300, 700, 0.0, 700.0, 1.0, 1.0};
    useCells(grid, frame);
    std::size_t numCells = 0;
    for (std::uint64_t i = 1; i <= 3; ++i)
    {
        const Shard shard{i, 3};
        RasterTargets targets(grid, {"x", "y"}, shard);
        const RasterFrame part = partOf(frame, shard);
        numCells += readAll(targets, part, 65536).size();
        EXPECT_EQ(part.top, frame.top - static_cast<double>(shard.numBefore(700)));
    }
    EXPECT_EQ(numCells, 210000u);
}
