#include "host/targets/GridSpec.h"

#include <string>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::GridAxis;
using krige::GridSpec;
using krige::parseGridSpec;
using testing::HasSubstr;

namespace
{

std::string errorOf(const std::string& text)
{
    return krige::test::messageOf<krige::UsageError>([&] { parseGridSpec(text, {"x", "y"}); });
}

} // namespace

TEST(GridSpecTest, AxesKeepTheOrderInWhichTheyWereNamed)
{
    const GridSpec grid = parseGridSpec("y=0:1:3,x=-1:+2.5:4", {"x", "y"});

    EXPECT_EQ(grid.axes[0].name, "y");
    EXPECT_EQ(grid.axes[1].name, "x");
    EXPECT_EQ(grid.axes[1].low, -1.0);
    EXPECT_EQ(grid.axes[1].high, 2.5);
    EXPECT_EQ(grid.axes[1].count, 4u);
    EXPECT_EQ(grid.numNodes, 12u);
}

TEST(GridSpecTest, ANodeIsTheLowEndPlusIndexTimesStep)
{
    const GridAxis axis{"x", 0.1, 0.7, 8};
    const double step = (0.7 - 0.1) / 7.0;
    const double rise = 3.0 * step;

    EXPECT_EQ(axis.getNode(0), 0.1);
    EXPECT_EQ(axis.getNode(3), 0.1 + rise);
}

TEST(GridSpecTest, TheLastNodeIsExactlyTheHighEnd)
{
    const GridAxis axis{"x", 0.1, 0.3, 4};
    const double step = (0.3 - 0.1) / 3.0;
    const double rise = 3.0 * step;

    ASSERT_NE(0.1 + rise, 0.3); // the rule alone would miss it
    EXPECT_EQ(axis.getNode(3), 0.3);
}

TEST(GridSpecTest, ASingleNodeIsTheLowEnd)
{
    EXPECT_EQ((GridAxis{"x", 2.0, 5.0, 1}.getNode(0)), 2.0);
}

TEST(GridSpecTest, EqualEndsAreAllowed)
{
    EXPECT_EQ(parseGridSpec("x=2:2:3,y=0:1:2", {"x", "y"}).axes[0].getNode(1), 2.0);
}

TEST(GridSpecTest, ANameMayHoldAnEqualsSign)
{
    EXPECT_EQ(parseGridSpec("a=b=0:1:2", {"a=b"}).axes[0].name, "a=b");
}

TEST(GridSpecTest, ANameMayHoldAColon)
{
    EXPECT_EQ(parseGridSpec("a:b=0:1:2", {"a:b"}).axes[0].name, "a:b");
}

TEST(GridSpecTest, AQuotedNameMayHoldAComma)
{
    EXPECT_EQ(parseGridSpec("\"a,b=0:1:2\"", {"a,b"}).axes[0].name, "a,b");
}

TEST(GridSpecTest, AHighEndBelowTheLowEndIsRefused)
{
    EXPECT_THAT(errorOf("x=1:0:2,y=0:1:2"), HasSubstr("'x=1:0:2': HI is below LO"));
}

TEST(GridSpecTest, ACountBelowOneIsRefused)
{
    EXPECT_THAT(errorOf("x=0:1:0,y=0:1:2"), HasSubstr("COUNT must be a whole number of at least 1, not '0'"));
    EXPECT_THAT(errorOf("x=0:1:-3,y=0:1:2"), HasSubstr("COUNT must be a whole number of at least 1, not '-3'"));
}

TEST(GridSpecTest, ACountThatIsNoWholeNumberIsRefused)
{
    for (const char* count : {"2.5", "", "ten", "1e3", "99999999999999999999999"})
        EXPECT_THAT(errorOf("x=0:1:" + std::string(count) + ",y=0:1:2"), HasSubstr("COUNT must be")) << count;
}

TEST(GridSpecTest, AnEndThatIsNoFiniteNumberIsRefused)
{
    EXPECT_THAT(errorOf("x=nan:1:2,y=0:1:2"), HasSubstr("the value is missing ('nan')"));
    EXPECT_THAT(errorOf("x=0:1e999:2,y=0:1:2"), HasSubstr("'1e999' is too large"));
    EXPECT_THAT(errorOf("x=0:b:2,y=0:1:2"), HasSubstr("'b' is not a number"));
}

TEST(GridSpecTest, ASpanBeyondTheDoublesIsRefused)
{
    EXPECT_THAT(errorOf("x=-1.7e308:1.7e308:3,y=0:1:2"), HasSubstr("HI - LO is too large"));
}

TEST(GridSpecTest, AnAxisOfAnotherShapeIsRefusedWithAnExample)
{
    for (const char* axis : {"x", "x=0", "x=0:1", "0:1:2"})
        EXPECT_THAT(errorOf(std::string(axis) + ",y=0:1:2"), HasSubstr("NAME=LO:HI:COUNT")) << axis;
    EXPECT_THAT(errorOf("x=0:1:2:3,y=0:1:2"), HasSubstr("COUNT must be"));
}

TEST(GridSpecTest, AnInputWithoutAnAxisIsRefused)
{
    EXPECT_THAT(errorOf("x=0:1:2"), HasSubstr("the input 'y' has no axis"));
}

TEST(GridSpecTest, AnInputWithTwoAxesIsRefused)
{
    EXPECT_THAT(errorOf("x=0:1:2,y=0:1:2,x=0:1:2"), HasSubstr("the input 'x' has more than one axis"));
}

TEST(GridSpecTest, AnAxisThatIsNoInputIsRefused)
{
    EXPECT_THAT(errorOf("x=0:1:2,y=0:1:2,z=0:1:2"), HasSubstr("'z' is not one of --inputs"));
}

TEST(GridSpecTest, MoreNodesThanCanBeCountedAreRefused)
{
    EXPECT_THAT(errorOf("x=0:1:10000000000,y=0:1:10000000000"), HasSubstr("too many nodes"));
}

TEST(GridSpecTest, CellsCoverTheSamplesWithEdgesAtMultiplesOfTheirSize)
{
    GridSpec grid = parseGridSpec(" cell=40 ", {"x", "y"});
    spanSamples(grid, {{50.0, 130.0}, {-10.0, 80.0}});

    EXPECT_EQ(grid.axes[0].count, 3u); // 40 to 160
    EXPECT_EQ(grid.axes[0].getNode(0), 60.0);
    EXPECT_EQ(grid.axes[0].getNode(2), 140.0);
    EXPECT_EQ(grid.axes[0].low, 60.0);
    EXPECT_EQ(grid.axes[0].high, 140.0);
    EXPECT_EQ(grid.axes[1].count, 3u); // -40 to 80
    EXPECT_EQ(grid.axes[1].getNode(0), -20.0);
    EXPECT_EQ(grid.numNodes, 9u);
}

TEST(GridSpecTest, SamplesInOnePlaceGetOneCell)
{
    GridSpec grid = parseGridSpec("cell=10", {"x"});
    spanSamples(grid, {{20.0, 20.0}});

    EXPECT_EQ(grid.axes[0].count, 1u);
    EXPECT_EQ(grid.axes[0].getNode(0), 25.0);
}

TEST(GridSpecTest, CellsThatAreNoneAreRefused)
{
    EXPECT_THAT(errorOf("cell=0"), HasSubstr("'cell=0': the size of a cell must be above 0"));
    EXPECT_THAT(errorOf("cell=-5"), HasSubstr("the size of a cell must be above 0"));
    EXPECT_THAT(errorOf("cell=forty"), HasSubstr("--grid: 'cell=forty': "));
    EXPECT_THAT(errorOf("cell="), HasSubstr("--grid: 'cell=': "));
    GridSpec grid = parseGridSpec("cell=1e-300", {"x", "y"});
    EXPECT_THAT(krige::test::messageOf<krige::InputError>(
                    [&] {
                        spanSamples(grid, {{0.0, 1.0}, {0.0, 1.0}});
                    }),
                HasSubstr("cells of 1e-300 are too small for the samples' range of 'x'"));
}

TEST(GridSpecTest, AnInputNamedCellHasAnAxisOfThatName)
{
    const GridSpec grid = parseGridSpec("cell=0:1:3", {"cell"});

    EXPECT_EQ(grid.axes[0].count, 3u);
    EXPECT_EQ(grid.cellSize, 0.0);
}

TEST(GridSpecTest, TheCellsOfARasterAreThoseOfItsEdges)
{
    GridSpec grid = parseGridSpec("like=a b.tif", {"x", "y"});
    EXPECT_EQ(grid.likePath, "a b.tif");
    useCells(grid, {4, 3, 0.1, 7.3, 0.2, 0.7});

    EXPECT_EQ(grid.numNodes, 12u);
    EXPECT_EQ(grid.axes[0].getNode(3), 0.1 + 3.5 * 0.2);
    EXPECT_EQ(grid.axes[1].getNode(2), 7.3 - 0.5 * 0.7); // the first row, from the top
    EXPECT_EQ(grid.axes[1].getNode(0), 7.3 - 2.5 * 0.7);
    EXPECT_LT(grid.axes[1].low, grid.axes[1].high);
}

TEST(GridSpecTest, TheRowsOfARasterGoToTheLatitude)
{
    GridSpec grid = parseGridSpec("like=dem.tif", {"lat", "lon"});
    useCells(grid, {4, 3, 0.0, 3.0, 1.0, 1.0});

    EXPECT_EQ(grid.axes[0].count, 3u);
    EXPECT_EQ(grid.axes[1].count, 4u);
}

TEST(GridSpecTest, ARasterHasTwoInputs)
{
    EXPECT_THAT(krige::test::messageOf<krige::UsageError>([] { parseGridSpec("like=dem.tif", {"x"}); }),
                HasSubstr("--grid: a raster has the cells of two inputs, but there is 1 input"));
    EXPECT_THAT(errorOf("like="), HasSubstr("like= needs the name of a raster"));
}
