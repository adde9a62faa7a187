#include "host/targets/OutputSize.h"

#include <string>

#include <gtest/gtest.h>

using krige::forecastBytes;
using krige::GridSpec;

TEST(OutputSizeTest, BinaryFilesTakeEightBytesAValue)
{
    const GridSpec grid = krige::parseGridSpec("x=0:1:100000,y=0:1:100000", {"x", "y"});

    EXPECT_EQ(forecastBytes(grid, grid.numNodes, 3, true), 24e10);
    EXPECT_EQ(forecastBytes(grid, grid.numNodes / 2, 1, true), 4e10);
}

TEST(OutputSizeTest, TextTakesTheLengthOfItsNumbers)
{
    const GridSpec grid = krige::parseGridSpec("x=0:9:10,y=100:199:100", {"x", "y"});

    EXPECT_EQ(forecastBytes(grid, 1000, 1, false), 1000 * (2 + 4 + 19));
}

TEST(OutputSizeTest, CoordinatesOfLongAxesAreSampled)
{
    const GridSpec grid = krige::parseGridSpec("x=1000001:3000001:2000001", {"x"});

    EXPECT_EQ(forecastBytes(grid, grid.numNodes, 0, false), 2000001.0 * 8);
}
