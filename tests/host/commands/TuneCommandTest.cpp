#include "host/commands/TuneCommand.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/commands/CommandRun.h"

using krige::UsageError;
using krige::test::CommandRun;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

/// Twelve samples of a parabola.
class TuneCommandTest : public testing::Test
{
protected:
    TuneCommandTest()
    {
        std::string text = "x,z\n";
        for (int i = 0; i < 12; ++i)
            text += std::to_string(i) + "," + std::to_string(i * i) + "\n";
        folder.write("s.csv", text);
    }

    std::string printed(const std::vector<std::string>& words)
    {
        std::vector<std::string> all{folder.pathOf("s.csv"), "--inputs", "x", "--outputs", "z", "--max-trials", "4"};
        all.insert(all.end(), words.begin(), words.end());
        CommandRun<krige::TuneCommand> tune(all);
        tune.command.run(tune.out, tune.getConsole());
        report = tune.getReport();
        return tune.out.str();
    }

    TemporaryFolder folder;
    std::string report;
};

} // namespace

TEST_F(TuneCommandTest, TheWinnersSettingsAreWrittenForTheNextRun)
{
    const std::string out = printed({"-o", folder.pathOf("best.toml")});

    EXPECT_THAT(out, HasSubstr("\nwinner, trial "));
    EXPECT_THAT(folder.read("best.toml"), StartsWith("# Settings of a krige model, for --config\n"));
}

TEST_F(TuneCommandTest, SettingsThatAreFixedKeepTheirStart)
{
    printed({"--drift", "2", "--fix", "drift", "-o", folder.pathOf("best.toml")});

    EXPECT_THAT(folder.read("best.toml"), HasSubstr("\ndrift = 2\n"));
}

TEST_F(TuneCommandTest, TheSillIsWrittenWithTheSettings)
{
    printed({"-o", folder.pathOf("best.toml")});
    EXPECT_THAT(folder.read("best.toml"), ContainsRegex("\nsill = \\[[0-9.e+]+\\]\n"));

    printed({"--sill", "sample", "-o", folder.pathOf("best.toml")});
    EXPECT_THAT(folder.read("best.toml"), HasSubstr("\nsill = [")); // of these samples
}

TEST_F(TuneCommandTest, ObjectivesHaveNames)
{
    for (const char* name : {"likelihood", "rmse", "mae", "crps"})
        EXPECT_THAT(printed({"--objective", name}), HasSubstr("\nwinner, trial ")) << name;
    EXPECT_THAT(printed({"--objective", "mae"}), HasSubstr("mean over outputs of MAE /"));
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--objective", "max"});
                  }),
              "--objective: must be likelihood, rmse, mae or crps, not 'max'");
}

TEST_F(TuneCommandTest, AnUnknownSettingToFixIsRefused)
{
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--fix", "sill"});
                  }),
              "--fix: 'sill' is none of drift, range, nugget, nearest and scale");
}

TEST_F(TuneCommandTest, TrialsAreATableOrAFile)
{
    printed({});
    EXPECT_THAT(report, HasSubstr("\ntrial  drift "));
    printed({"--trials", folder.pathOf("trials.csv")});
    EXPECT_THAT(report, Not(HasSubstr("\ntrial  drift ")));
    EXPECT_THAT(folder.read("trials.csv"), HasSubstr("\n4,"));
}

TEST_F(TuneCommandTest, AShareOfAllSamplesCannotBeHeldOut)
{
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--held-out", "1"});
                  }),
              "--held-out: must be at least 0 and below 1");
}

TEST_F(TuneCommandTest, FoldsAreAtMostTheSamplesThatAreNotHeldOut)
{
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--held-out", "0.5", "--folds", "7"});
                  }),
              "--folds: must be 2 to 6, the samples that are not held out");
}

TEST_F(TuneCommandTest, TheSameSeedGivesTheSameSearch)
{
    EXPECT_EQ(printed({"--seed", "5"}), printed({"--seed", "5"}));
}
