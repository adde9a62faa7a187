#include "host/commands/VariogramCommand.h"

#include <cstdlib>

#include <gmock/gmock.h>

#include "host/model/SettingsFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
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

/// Three samples on a line, and eight in a plane whose values differ by 1 a step in x and by nothing in y.
class VariogramCommandTest : public testing::Test
{
protected:
    VariogramCommandTest()
    {
        folder.write("s.csv", "x,z,w\n0,0,5\n1,2,6\n2,4,7\n");
        folder.write("plane.csv", "x,y,z\n0,0,0\n10,0,1\n20,0,0\n30,0,1\n0,10,0\n10,10,1\n20,10,0\n30,10,1\n");
    }

    std::string printed(const std::vector<std::string>& words, const std::string& outputs = "z")
    {
        return run("s.csv", "x", outputs, words);
    }

    std::string printedOfPlane(const std::vector<std::string>& words)
    {
        return run("plane.csv", "x,y", "z", words);
    }

    TemporaryFolder folder;
    std::string report;

private:
    std::string run(const std::string& samples, const std::string& inputs, const std::string& outputs,
                    const std::vector<std::string>& words)
    {
        std::vector<std::string> all{folder.pathOf(samples), "--inputs", inputs, "--outputs", outputs};
        all.insert(all.end(), words.begin(), words.end());
        CommandRun<krige::VariogramCommand> variogram(all);
        variogram.command.run(variogram.out, variogram.getConsole());
        report = variogram.getReport();
        return variogram.out.str();
    }
};

} // namespace

TEST_F(VariogramCommandTest, BinsAreCsvInUnitsOfInputsOfOneScale)
{
    const std::string text = printed({"--lags", "2", "--max-lag", "2u", "--sill", "sample"});

    // One input has one scale. Half the variance of 4 at lag 1, twice; 16 / 2 at lag 2. The model reaches the sample
    // variance of 4 at lag 2.
    EXPECT_EQ(text, "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n"
                    "1,2,1.3333333333333333,4,3.1666666666666665,3\n");
}

TEST_F(VariogramCommandTest, EveryLagHasTheSameFormat)
{
    EXPECT_EQ(printed({"--lags", "all", "--max-lag", "2u", "--sill", "4"}),
              "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n"
              "1,1,1,2,2.75,2\n"
              "2,2,2,8,4,1\n");
}

TEST_F(VariogramCommandTest, LagsAreNormalisedWhereInputsAreStretchedOrOnDemand)
{
    EXPECT_THAT(printedOfPlane({"--lags", "1"}), HasSubstr("\n0,1.414213562373095"));
    EXPECT_THAT(printedOfPlane({"--lags", "1", "--scale", "1,1"}), HasSubstr("\n0,15.8113883008"));
    EXPECT_THAT(report, HasSubstr(" up to a lag of 15.8114 input units\n"));
    EXPECT_THAT(printedOfPlane({"--lags", "1", "--scale", "1,1", "--lag", "normalised"}),
                HasSubstr("\n0,1.8257418583"));
}

TEST_F(VariogramCommandTest, UnitsWithoutOneScaleAreRefusedWithTheWayOut)
{
    EXPECT_THAT(messageOf<UsageError>(
                    [&] {
                        printedOfPlane({"--lag", "units"});
                    }),
                StartsWith("--lag units: a distance in the inputs' units needs inputs of one scale; add --scale 1,1"));
    EXPECT_THAT(messageOf<UsageError>(
                    [&] {
                        printedOfPlane({"--max-lag", "10u"});
                    }),
                StartsWith("--max-lag 10u: a distance in the inputs' units needs inputs of one scale"));
}

TEST_F(VariogramCommandTest, ADirectionTakesItsPairsOnly)
{
    const std::vector<std::string> nearest{"--scale", "1,1", "--lags", "1", "--max-lag", "10u"};
    std::vector<std::string> along = nearest;
    along.insert(along.end(), {"--direction", "0"});
    std::vector<std::string> across = nearest;
    across.insert(across.end(), {"--direction", "90", "--tolerance", "10"});

    EXPECT_THAT(printedOfPlane(along), HasSubstr(",0.5,")); // all neighbours in x differ by 1
    EXPECT_THAT(report, HasSubstr("pairs: 6 pairs of 8 points, up to a lag of 10 input units, in the direction of 0 "
                                  "degrees, within 22.5\n"));
    EXPECT_THAT(printedOfPlane(across), HasSubstr(",0,"));
    EXPECT_THAT(report, HasSubstr("pairs: 4 pairs "));
}

TEST_F(VariogramCommandTest, ADirectionNeedsTwoInputs)
{
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--direction", "45"});
                  }),
              "--direction: there must be two inputs, not 1");
}

TEST_F(VariogramCommandTest, AFitIsWrittenAsSettingsAndItsModelIsTabled)
{
    // A saw of period 4 on a line of 41: at lags 1 to 4 the semivariances are 0.5, 1, 0.5 and 0.
    std::string saw = "x,z\n";
    for (int i = 0; i <= 40; ++i)
        saw += std::to_string(i) + "," + std::to_string(std::abs(i % 4 - 2)) + "\n";
    folder.write("s.csv", saw);

    const std::string text =
        printed({"--lags", "20", "--max-lag", "20u", "--drift", "1", "--fit", "-o", folder.pathOf("best.toml")});

    krige::Settings settings;
    krige::readSettingsFile(folder.pathOf("best.toml"), settings);
    ASSERT_EQ(settings.sills.size(), 1u);
    EXPECT_EQ(settings.sills[0].rule, krige::SillChoice::Rule::Given);
    EXPECT_GT(settings.sills[0].value, 0.4);
    EXPECT_LT(settings.sills[0].value, 0.6);
    EXPECT_LT(settings.rangeFraction, 3.0 / 40.0);
    EXPECT_EQ(settings.driftOrder, 1);
    EXPECT_THAT(text, HasSubstr("," + krige::formatNumber(settings.sills[0].value) + ","));
    EXPECT_THAT(report, HasSubstr(" --range " + krige::formatNumber(settings.rangeFraction) + " --nugget "));
    EXPECT_THAT(report, HasSubstr("hint: the semivariogram is that of the values as they are"));
}

TEST_F(VariogramCommandTest, AFitWithoutASillInSightSaysSo)
{
    std::string slope = "x,z\n";
    for (int i = 0; i <= 40; ++i)
        slope += std::to_string(i) + "," + std::to_string(i * i) + "\n";
    folder.write("s.csv", slope);

    printed({"--fit"});

    EXPECT_THAT(report, HasSubstr("hint: the semivariogram still rises at the largest lag"));
}

TEST_F(VariogramCommandTest, AFitThatCannotBeIsRefusedWithTheWayOut)
{
    EXPECT_EQ(messageOf<InputError>([&] { printed({"--fit"}); }),
              folder.pathOf("s.csv") +
                  ": a semivariogram can be fitted to no fewer than 3 lags with pairs; add samples, "
                  "or raise --lags or --max-lag");
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--fit", "--lags", "all"});
                  }),
              "--fit: needs bins; leave out --lags all");
}

TEST_F(VariogramCommandTest, AFileHoldsWhatWouldBePrinted)
{
    const std::string text = printed({"--lags", "2"});

    EXPECT_EQ(printed({"--lags", "2", "-o", folder.pathOf("v.csv")}), "");
    EXPECT_EQ(folder.read("v.csv"), text);
}

TEST_F(VariogramCommandTest, APictureIsDrawnBeside)
{
    printed({"--units", "km", "--plot", folder.pathOf("v.gp")});

    EXPECT_THAT(folder.read("v.gp"), testing::AllOf(HasSubstr("'lag (km)'"), HasSubstr("'semivariance of z'")));
}

TEST_F(VariogramCommandTest, ASemivariogramIsThatOfOneOutput)
{
    EXPECT_EQ(messageOf<UsageError>([&] { printed({}, "z,w"); }),
              "--outputs: a semivariogram is that of one output; name one at a time");
}

TEST_F(VariogramCommandTest, WhatIsNoBinningIsRefused)
{
    EXPECT_THAT(messageOf<UsageError>([&] { printed({"--lags", "0"}); }), StartsWith("--lags: must be a whole number"));
    EXPECT_THAT(messageOf<UsageError>([&] { printed({"--lags", "1e3"}); }), StartsWith("--lags: must be a whole"));
    EXPECT_EQ(messageOf<UsageError>([&] { printed({"--max-lag", "0"}); }), "--max-lag: must be above 0, not '0'");
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--lag", "metres"});
                  }),
              "--lag: must be normalised or units, not 'metres'");
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printedOfPlane({"--direction", "north"});
                  }),
              "--direction: needs a number of degrees, not 'north'");
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printedOfPlane({"--direction", "0", "--tolerance", "0"});
                  }),
              "--tolerance: must be above 0 and at most 90 degrees, not '0'");
}
