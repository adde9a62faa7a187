#include "host/commands/VariogramCommand.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/commands/CommandRun.h"

using krige::UsageError;
using krige::test::CommandRun;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

/// Three samples on a line.
class VariogramCommandTest : public testing::Test
{
protected:
    VariogramCommandTest()
    {
        folder.write("s.csv", "x,z,w\n0,0,5\n1,2,6\n2,4,7\n");
    }

    std::string printed(const std::vector<std::string>& words, const std::string& outputs = "z")
    {
        std::vector<std::string> all{folder.pathOf("s.csv"), "--inputs", "x", "--outputs", outputs};
        all.insert(all.end(), words.begin(), words.end());
        CommandRun<krige::VariogramCommand> variogram(all);
        variogram.command.run(variogram.out, variogram.getConsole());
        return variogram.out.str();
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(VariogramCommandTest, WithoutLagsEveryLagIsPrintedBelowTwoHeaderLines)
{
    const std::string text = printed({});

    EXPECT_THAT(text, StartsWith("#"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2 + 3); // lags 0, 1 and 2 steps
}

TEST_F(VariogramCommandTest, LagsAreBinnedAsCsv)
{
    const std::string text = printed({"--lags", "2", "--max-lag", "100"});

    EXPECT_THAT(text, StartsWith("lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n0,50,"));
    EXPECT_THAT(text, HasSubstr(",3\n")); // all pairs, each once
}

TEST_F(VariogramCommandTest, AFileHoldsWhatWouldBePrinted)
{
    const std::string text = printed({"--lags", "2"});

    EXPECT_EQ(printed({"--lags", "2", "-o", folder.pathOf("v.csv")}), "");
    EXPECT_EQ(folder.read("v.csv"), text);
}

TEST_F(VariogramCommandTest, APictureIsDrawnBeside)
{
    printed({"--plot", folder.pathOf("v.gp")});

    EXPECT_THAT(folder.read("v.gp"), HasSubstr("set ylabel 'semivariance of z'"));
}

TEST_F(VariogramCommandTest, ASemivariogramIsThatOfOneOutput)
{
    EXPECT_EQ(messageOf<UsageError>([&] { printed({}, "z,w"); }),
              "--outputs: a semivariogram is that of one output; name one at a time");
}
