#include "host/pictures/ValidationPicture.h"

#include <gmock/gmock.h>

#include "tests/host/TemporaryFolder.h"

using krige::ValidationResult;
using krige::test::TemporaryFolder;
using testing::HasSubstr;

namespace
{

/// Two outputs at two points.
std::string scriptOfTwoOutputs()
{
    ValidationResult result;
    result.outputNames = {"z", "it's"};
    result.truths = {{1, 2}, {10, 20}};
    result.estimates = {{1, 3}, {10, 20}};
    std::vector<fenn::analysis::ErrorStatistics> statistics(2);
    statistics[0].numCompared = 2;
    statistics[0].rmse = 0.5;
    statistics[0].r2 = 0.75;
    const TemporaryFolder folder;
    krige::drawValidation(folder.pathOf("fit.gp"), result, statistics);
    return folder.read("fit.gp");
}

} // namespace

TEST(ValidationPictureTest, EachOutputIsAPanelOfEstimatesOverMeasuredValues)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("set xlabel 'measured z'\nset ylabel 'estimated z'\n"));
    EXPECT_THAT(script, HasSubstr("set xlabel 'measured it''s'\n"));
    EXPECT_THAT(script, HasSubstr("\n1 1\n2 3\n"));
    EXPECT_THAT(script, HasSubstr("\n10 10\n20 20\n"));
}

TEST(ValidationPictureTest, TheTitleSaysHowWellTheyAgree)
{
    EXPECT_THAT(scriptOfTwoOutputs(), HasSubstr("set title 'RMSE 0.5, R2 0.75, 2 points'"));
}

TEST(ValidationPictureTest, BothAxesShowTheSameRange)
{
    EXPECT_THAT(scriptOfTwoOutputs(), HasSubstr("set xrange [0.9:3.1]\nset yrange [0.9:3.1]\n"));
}
