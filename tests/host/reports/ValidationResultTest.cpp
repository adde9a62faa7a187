#include "host/reports/ValidationResult.h"

#include <cmath>
#include <limits>
#include <sstream>

#include <gmock/gmock.h>

using krige::ValidationResult;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

constexpr double noEstimate = std::numeric_limits<double>::quiet_NaN();

/// Three points of one output; the estimates are 1 too high, right, and 3 too low.
ValidationResult threePoints()
{
    ValidationResult result;
    result.inputNames = {"x"};
    result.outputNames = {"z"};
    result.lines = {"2", "3+5", "4"};
    result.inputs = {{10, 20, 30}};
    result.truths = {{1, 2, 6}};
    result.estimates = {{2, 2, 3}};
    result.variances = {0.25, 0.0, 1.0};
    result.sills = {{4.0, 4.0, 4.0}};
    return result;
}

} // namespace

TEST(ValidationResultTest, AStandardErrorHasTheOutputsUnits)
{
    EXPECT_EQ(threePoints().calcStandardErrors(0), (std::vector<double>{1.0, 0.0, 2.0})); // sqrt(variance * 4)
}

TEST(ValidationResultTest, ANegativeVarianceHasNoStandardError)
{
    ValidationResult result = threePoints();
    result.variances[0] = -0.25;

    EXPECT_TRUE(std::isnan(result.calcStandardErrors(0)[0]));
    EXPECT_THAT(krige::csvOfPoints(result, krige::summarise(result, 1)), HasSubstr("\n2,10,1,2,1,nan,nan\n"));
}

TEST(ValidationResultTest, AVarianceThatIsRoundingCountsAsZero)
{
    for (const double variance : {-1e-13, 1e-13})
    {
        ValidationResult result = threePoints();
        result.variances[0] = variance;
        const auto figures = krige::summarise(result, 1);

        EXPECT_EQ(figures[0].standardErrors[0], 0.0);
        EXPECT_EQ(figures[0].calibration.numCertain, 2u);
        EXPECT_EQ(figures[0].calibration.meanSquaredStandardisedError, 2.25); // of 9 / (1 * 4) alone
        EXPECT_THAT(krige::csvOfPoints(result, figures), HasSubstr("\n2,10,1,2,1,0,0\n"));
    }
}

TEST(ValidationResultTest, EachPointTakesTheSillOfTheModelThatEstimatedIt)
{
    ValidationResult result = threePoints();
    result.sills[0][2] = 9.0;

    EXPECT_EQ(result.calcStandardErrors(0), (std::vector<double>{1.0, 0.0, 3.0}));
}

TEST(ValidationResultTest, EachOutputIsSummarisedWithItsOwnSill)
{
    ValidationResult result = threePoints();
    result.outputNames = {"z", "w"};
    result.truths.push_back({1, 1, 1});
    result.estimates.push_back({1, noEstimate, 2});
    result.sills.push_back({1.0, 1.0, 1.0});
    const auto figures = krige::summarise(result, 1);

    ASSERT_EQ(figures.size(), 2u);
    EXPECT_EQ(figures[0].errors.worstError, -3.0);
    EXPECT_EQ(figures[0].calibration.meanSquaredStandardisedError, 1.625); // of 1 / (0.25 * 4) and 9 / (1 * 4)
    EXPECT_EQ(figures[1].errors.numMissing, 1u);
    EXPECT_EQ(figures[1].errors.worstPoints, (std::vector<std::size_t>{2}));
}

TEST(ValidationResultTest, TheTableOfErrorsHasALinePerOutput)
{
    const ValidationResult result = threePoints();
    std::ostringstream out;
    krige::printErrors(out, result, krige::summarise(result, 1));

    EXPECT_EQ(out.str(),
              "output  points     RMSE      MAE       bias        R2   MSSE  worst      CRPS  in50%  in90%  in95%\n"
              "z            3  1.82574  1.33333  -0.666667  0.285714  1.625     -3  0.863763   33.3  100.0  100.0\n");
}

TEST(ValidationResultTest, TheWorstPointsAreNamedByTheirLines)
{
    const ValidationResult result = threePoints();
    std::ostringstream out;
    krige::printWorstPoints(out, result, krige::summarise(result, 2));

    EXPECT_EQ(out.str(), "\nworst of z:\n"
                         "line   x  measured  estimate  error  stderr\n"
                         "4     30         6         3     -3       2\n"
                         "2     10         1         2      1       1\n");
}

TEST(ValidationResultTest, NoWorstPointsPrintNothing)
{
    const ValidationResult result = threePoints();
    std::ostringstream out;
    krige::printWorstPoints(out, result, krige::summarise(result, 0));

    EXPECT_EQ(out.str(), "");
}

TEST(ValidationResultTest, TheCsvHoldsEveryPointWithItsVariance)
{
    EXPECT_EQ(krige::csvOfPoints(threePoints(), krige::summarise(threePoints(), 1)),
              "line,x,z,z_estimate,z_error,z_stderr,variance\n"
              "2,10,1,2,1,1,0.25\n"
              "3+5,20,2,2,0,0,0\n"
              "4,30,6,3,-3,2,1\n");
}
