#include "host/commands/ValidateCommand.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/commands/CommandRun.h"

using krige::UsageError;
using krige::test::CommandRun;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

/// Six samples on the line z = x.
class ValidateCommandTest : public testing::Test
{
protected:
    ValidateCommandTest()
    {
        folder.write("s.csv", "x,z\n0,0\n1,1\n2,2\n3,3\n4,4\n5,5\n");
    }

    std::string printed(const std::vector<std::string>& words)
    {
        std::vector<std::string> all{folder.pathOf("s.csv"), "--inputs", "x", "--outputs", "z"};
        all.insert(all.end(), words.begin(), words.end());
        CommandRun<krige::ValidateCommand> validate(all);
        validate.command.run(validate.out, validate.getConsole());
        report = validate.getReport();
        return validate.out.str();
    }

    TemporaryFolder folder;
    std::string report;
};

} // namespace

TEST_F(ValidateCommandTest, FoldsAreTheDefaultOrAsManyAsThereAreSamples)
{
    EXPECT_THAT(printed({}), StartsWith("output  points"));
    EXPECT_THAT(report, HasSubstr("\nmethod: 6 folds of 6 samples, seed 1\n"));
}

TEST_F(ValidateCommandTest, MoreFoldsThanSamplesAreRefused)
{
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed({"--folds", "7"});
                  }),
              "--folds: 7 folds need as many samples, but " + folder.pathOf("s.csv") +
                  " has 6; lower it, or use --leave-one-out");
}

TEST_F(ValidateCommandTest, LeavingOneOutEstimatesEveryPoint)
{
    printed({"--leave-one-out", "-o", folder.pathOf("points.csv")});
    const std::string points = folder.read("points.csv");

    EXPECT_THAT(report, HasSubstr("\nmethod: leave one out of 6 points\n"));
    EXPECT_THAT(points, StartsWith("line,x,z,z_estimate,z_error,z_stderr,variance\n2,0,0,"));
    EXPECT_THAT(points, HasSubstr("\n7,5,5,"));
}

TEST_F(ValidateCommandTest, KnownValuesAreComparedWithEstimatesOfTheWholeModel)
{
    const std::string truth = folder.write("t.csv", "x,z\n3,3.5\n");

    // The estimate at a sample is its value.
    EXPECT_THAT(printed({"--against", truth, "--exact"}), StartsWith("output  points  RMSE  MAE  bias   R2"));
    EXPECT_THAT(printed({"--against", truth, "--exact", "--worst", "1"}),
                HasSubstr("\n2     3       3.5         3   -0.5  "));
}

TEST_F(ValidateCommandTest, TheWorstPointsAreAsManyAsAskedFor)
{
    EXPECT_THAT(printed({"--worst", "0"}), Not(HasSubstr("worst of z")));
}
