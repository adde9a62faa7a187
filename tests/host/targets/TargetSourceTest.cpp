#include "host/targets/TargetSource.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/host/TemporaryFolder.h"

namespace
{

using Columns = std::vector<std::vector<double>>;

} // namespace

TEST(GridTargetsTest, TheFirstNamedAxisRunsFastest)
{
    const std::vector<std::string> inputs{"x", "y"};
    krige::GridTargets targets(krige::parseGridSpec("x=0:2:3,y=10:11:2", inputs), inputs);
    Columns columns;

    EXPECT_EQ(targets.read(columns, 100), 6u);
    EXPECT_EQ(columns, (Columns{{0, 1, 2, 0, 1, 2}, {10, 10, 10, 11, 11, 11}}));
}

TEST(GridTargetsTest, ColumnsKeepTheOrderOfTheInputsWhateverTheOrderOfTheAxes)
{
    const std::vector<std::string> inputs{"x", "y"};
    krige::GridTargets targets(krige::parseGridSpec("y=10:11:2,x=0:2:3", inputs), inputs);
    Columns columns;

    targets.read(columns, 100);

    EXPECT_EQ(columns, (Columns{{0, 0, 1, 1, 2, 2}, {10, 11, 10, 11, 10, 11}}));
}

TEST(GridTargetsTest, BlocksContinueWhereTheLastOneEnded)
{
    const std::vector<std::string> inputs{"x", "y"};
    krige::GridTargets targets(krige::parseGridSpec("x=0:2:3,y=10:11:2", inputs), inputs);
    Columns columns;

    EXPECT_EQ(targets.read(columns, 4), 4u);
    EXPECT_EQ(targets.read(columns, 4), 2u);
    EXPECT_EQ(columns, (Columns{{1, 2}, {11, 11}}));
    EXPECT_EQ(targets.read(columns, 4), 0u);
}

TEST(FileTargetsTest, TheInputsColumnsAreTheTargets)
{
    const krige::test::TemporaryFolder folder;
    krige::FileTargets targets(folder.write("t.csv", "y,id,x\n1,a,2\n"), {"x", "y"});
    Columns columns;

    EXPECT_EQ(targets.read(columns, 10), 1u);
    EXPECT_EQ(columns, (Columns{{2}, {1}}));
}
