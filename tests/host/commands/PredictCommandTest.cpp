#include "host/commands/PredictCommand.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/commands/CommandRun.h"

using krige::InputError;
using krige::UsageError;
using krige::test::CommandRun;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

/// Four samples at the corners of a square, on the plane z = x + 2 y.
class PredictCommandTest : public testing::Test
{
protected:
    PredictCommandTest()
    {
        folder.write("s.csv", "x,y,z\n0,0,0\n4,0,4\n0,4,8\n4,4,12\n");
    }

    /// What is written to out.csv.
    std::string predicted(std::vector<std::string> words)
    {
        run(std::move(words));
        return folder.read("out.csv");
    }

    void run(std::vector<std::string> words)
    {
        std::vector<std::string> all{folder.pathOf("s.csv"),   "--inputs", "x,y", "--outputs", "z", "-o",
                                     folder.pathOf("out.csv"), "--exact"};
        all.insert(all.end(), words.begin(), words.end());
        CommandRun<krige::PredictCommand> predict(all);
        predict.command.run(predict.out, predict.getConsole());
        report = predict.getReport();
    }

    std::string usageErrorOf(const std::vector<std::string>& words)
    {
        return messageOf<UsageError>([&] { run(words); });
    }

    TemporaryFolder folder;
    std::string report;
};

} // namespace

TEST_F(PredictCommandTest, AGridIsEstimatedNodeByNode)
{
    // Samples are met exactly where there is no nugget.
    EXPECT_EQ(predicted({"--grid", "2x2"}), "x,y,z\n0,0,0\n4,0,4\n0,4,8\n4,4,12\n");
}

TEST_F(PredictCommandTest, TargetsOfAFileKeepTheirOtherColumns)
{
    const std::string targets = folder.write("t.csv", "site,y,x\nA,0,4\nB,4,0\n");

    EXPECT_EQ(predicted({"--at", targets, "--keep", "site"}), "x,y,z,site\n4,0,4,A\n0,4,8,B\n");
}

TEST_F(PredictCommandTest, VariancesAddAColumnAndAStandardErrorPerOutput)
{
    EXPECT_THAT(predicted({"--grid", "2x2", "--variance"}), StartsWith("x,y,z,variance,z_stderr\n0,0,0,"));
}

TEST_F(PredictCommandTest, ShardsOneAfterTheOtherAreTheWhole)
{
    const std::string whole = predicted({"--grid", "3x3"});
    std::string joined;
    for (const char* const shard : {"1/2", "2/2"})
        joined += predicted({"--grid", "3x3", "--shard", shard});

    EXPECT_EQ(joined, whole);
}

TEST_F(PredictCommandTest, TheReportSaysWhatWasDone)
{
    predicted({"--grid", "2x2"});

    EXPECT_THAT(report,
                StartsWith("samples: 4 samples read from " + folder.pathOf("s.csv") + ", 2 inputs, 1 output\n"));
    EXPECT_THAT(report, HasSubstr("\nstrategy: global over 4 points\n"));
    EXPECT_THAT(report, HasSubstr("\ntime: "));
}

TEST_F(PredictCommandTest, TargetsAreAFileOrAGridAndNotBoth)
{
    EXPECT_EQ(usageErrorOf({}), "give the targets with either --at FILE or --grid AXES");
    EXPECT_EQ(usageErrorOf({"--grid", "2x2", "--at", "t.csv"}),
              "give the targets with either --at FILE or --grid AXES");
}

TEST_F(PredictCommandTest, TheFileOfTheSamplesIsNeverWrittenOver)
{
    EXPECT_THAT(
        usageErrorOf({"--grid", "2x2", "--duplicate-tolerance", "0", "--duplicates-report", folder.pathOf("./s.csv")}),
        HasSubstr("is the file that is read; name another one"));
}

TEST_F(PredictCommandTest, AColumnThatTheOutputWouldHaveTwiceIsRefused)
{
    EXPECT_EQ(usageErrorOf({"--at", "t.csv", "--keep", "x"}),
              "the output would have two columns 'x'; rename one, or leave it out of --keep");
}

TEST_F(PredictCommandTest, NoFileIsLeftWhenTheModelFails)
{
    folder.write("s.csv", "x,y,z\n0,0,0\n4,4,12\n");

    EXPECT_THAT(messageOf<InputError>(
                    [&] {
                        run({"--grid", "2x2"});
                    }),
                HasSubstr("2 samples are too few for 2 inputs"));
    EXPECT_EQ(folder.countFiles(), 1u);
}
