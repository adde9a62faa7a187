#include "host/pictures/ValidationPicture.h"

#include <gmock/gmock.h>

#include "tests/host/TemporaryFolder.h"

using krige::ValidationFigures;
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
    std::vector<ValidationFigures> figures(2);
    figures[0].errors.numCompared = 2;
    figures[0].errors.rmse = 0.5;
    figures[0].errors.r2 = 0.75;
    figures[0].calibration.meanSquaredStandardisedError = 1.2;
    figures[0].calibration.crps = 0.25;
    figures[0].calibration.numUsed = 2;
    for (ValidationFigures& ofOutput : figures)
    {
        ofOutput.calibration.coverages = {{0.5, 0.25}, {0.9, 0.75}, {0.95, 0.875}};
        ofOutput.standardErrors = {0.5, 2.0};
    }
    const TemporaryFolder folder;
    krige::drawValidation(folder.pathOf("fit.gp"), result, figures);
    return folder.read("fit.gp");
}

} // namespace

TEST(ValidationPictureTest, EachOutputHasEstimatesOverMeasuredValues)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("set xlabel 'measured z'\nset ylabel 'estimated z'\n"));
    EXPECT_THAT(script, HasSubstr("set xlabel 'measured it''s'\n"));
    EXPECT_THAT(script, HasSubstr("\n1 1\n2 3\n"));
    EXPECT_THAT(script, HasSubstr("\n10 10\n20 20\n"));
}

TEST(ValidationPictureTest, EachOutputHasARowOfThreePanels)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr(" size 1680,1120\n"));
    EXPECT_THAT(script, HasSubstr("set multiplot layout 2,3\n"));
}

TEST(ValidationPictureTest, TheTitlesSayHowWellTheyAgree)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("set title 'RMSE 0.5, R2 0.75, 2 points'"));
    EXPECT_THAT(script, HasSubstr("set title 'MSSE 1.2, CRPS 0.25'"));
    EXPECT_THAT(script, HasSubstr("set title '95 % intervals hold 87.5 %'"));
}

TEST(ValidationPictureTest, BothAxesShowTheSameRange)
{
    EXPECT_THAT(scriptOfTwoOutputs(), HasSubstr("set xrange [0.9:3.1]\nset yrange [0.9:3.1]\n"));
}

TEST(ValidationPictureTest, ErrorsStandOverStandardErrors)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("\n0.5 0\n2 1\n"));
    EXPECT_THAT(script, HasSubstr("set xrange [0:2.1]\nset yrange [-4.32"));
    EXPECT_THAT(script, HasSubstr("'+' using 1:(-1.95996"));
    EXPECT_THAT(script, HasSubstr("'+' using 1:(-0.67448"));
}

TEST(ValidationPictureTest, TheCalibrationCurveIsInPercent)
{
    // Of two points, one is met exactly and the other is off by half its standard error: in intervals from 39 % on.
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("\n38 50\n39 100\n"));
    EXPECT_THAT(script, HasSubstr("\n99 100\n"));
}
