#include "host/pictures/ValidationPicture.h"

#include <gmock/gmock.h>

#include "tests/host/TemporaryFolder.h"

using krige::ValidationFigures;
using krige::ValidationResult;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

namespace
{

/// Two outputs at two points.
std::string scriptOfTwoOutputs(const std::vector<std::vector<double>>& inputs = {{5, 6}, {7, 8}})
{
    ValidationResult result;
    result.inputNames = {"x", "y"};
    result.inputs = inputs;
    result.outputNames = {"z [mm]", "it's"};
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
    krige::PictureOptions options;
    options.path = folder.pathOf("fit.gp");
    krige::drawValidation(options, "m", result, figures);
    return folder.read("fit.gp");
}

} // namespace

TEST(ValidationPictureTest, EachOutputHasEstimatesOverMeasuredValues)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("'measured z (mm)'"));
    EXPECT_THAT(script, HasSubstr("'estimated z (mm)'"));
    EXPECT_THAT(script, HasSubstr("'measured it''s'"));
    EXPECT_THAT(script, HasSubstr("\n1 1\n2 3\n"));
    EXPECT_THAT(script, HasSubstr("\n10 10\n20 20\n"));
}

TEST(ValidationPictureTest, EachOutputHasARowOfFourPanels)
{
    const std::string script = scriptOfTwoOutputs();
    std::size_t numPanels = 0;
    for (std::size_t i = script.find("\nplot "); i != std::string::npos; i = script.find("\nplot ", i + 1))
        ++numPanels;

    EXPECT_EQ(numPanels, 8u);
}

TEST(ValidationPictureTest, ErrorsStandAtTheirPlacesAndPointTheWayOfTheirSign)
{
    // Of z, the second point is estimated 1 too high; of the other output both are met.
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("\n5 7 0\n6 8 1\n"));
    EXPECT_THAT(script, HasSubstr("set cbrange [-1:1]\n"));
    EXPECT_THAT(script, HasSubstr("'error of z (mm)'"));
    EXPECT_THAT(script, HasSubstr("'x (m)'"));
    EXPECT_THAT(script, HasSubstr("title 'too high'"));
    EXPECT_THAT(script, HasSubstr("title 'too low'"));
}

TEST(ValidationPictureTest, WithOneInputErrorsStandOverIt)
{
    const std::string script = scriptOfTwoOutputs({{5, 6}});

    EXPECT_THAT(script, HasSubstr("\n5 0\n6 1\n"));
    EXPECT_THAT(script, Not(HasSubstr("palette")));
}

TEST(ValidationPictureTest, TheTitlesSayHowWellTheyAgree)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("'RMSE 0.5, R\xc2\xb2 0.75, 2 points'"));
    EXPECT_THAT(script, HasSubstr("'MSSE 1.2, CRPS 0.25'"));
    EXPECT_THAT(script, HasSubstr("'95 % intervals hold 87.5 %'"));
}

TEST(ValidationPictureTest, BothAxesShowTheSameRange)
{
    EXPECT_THAT(scriptOfTwoOutputs(), AllOf(HasSubstr("set xrange [0.9:3.1]\n"), HasSubstr("set yrange [0.9:3.1]\n")));
}

TEST(ValidationPictureTest, ErrorsStandOverStandardErrors)
{
    const std::string script = scriptOfTwoOutputs();

    EXPECT_THAT(script, HasSubstr("\n0.5 0\n2 1\n"));
    EXPECT_THAT(script, AllOf(HasSubstr("set xrange [0:2.1]\n"), HasSubstr("set yrange [-4.32")));
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
