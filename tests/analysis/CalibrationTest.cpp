#include "analysis/Calibration.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "analysis/NormalDistribution.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::analysis::calcCalibration;
using fenn::analysis::calcCalibrationCurve;
using fenn::analysis::Calibration;
using fenn::analysis::IntervalCoverage;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The integral that the score is, of the squared difference between the distribution of the prediction and the step at
/// the truth, by the trapezium rule.
double integratedCrps(double error, double standardError)
{
    constexpr int numSteps = 200000;
    const double reach = std::fabs(error) + 12.0 * standardError;
    const double step = 2.0 * reach / numSteps;
    double sum = 0.0;
    for (int i = 0; i < numSteps; ++i)
    {
        const double x = -reach + (i + 0.5) * step; // less the truth
        const double difference =
            fenn::analysis::normalProbability((x - error) / standardError) - (x >= 0.0 ? 1.0 : 0.0);
        sum += difference * difference;
    }
    return sum * step;
}

TEST(CalibrationTest, FiguresMatchThoseWorkedOutByHand)
{
    // e / se: 0, 1, -1.8 and 4, of which intervals hold those within 0.67, 1.64 and 1.96.
    const Calibration calibration = calcCalibration({1.0, 2.0, 3.0, 4.0}, {1.0, 3.0, 1.2, 8.0}, {2.0, 1.0, 1.0, 1.0});

    EXPECT_EQ(calibration.numUsed, 4U);
    EXPECT_DOUBLE_EQ(calibration.meanSquaredStandardisedError, (0.0 + 1.0 + 3.24 + 16.0) / 4.0);
    ASSERT_EQ(calibration.coverages.size(), 3U);
    EXPECT_EQ(calibration.coverages[0].nominal, 0.5);
    EXPECT_EQ(calibration.coverages[0].actual, 0.25);
    EXPECT_EQ(calibration.coverages[1].nominal, 0.9);
    EXPECT_EQ(calibration.coverages[1].actual, 0.5);
    EXPECT_EQ(calibration.coverages[2].nominal, 0.95);
    EXPECT_EQ(calibration.coverages[2].actual, 0.75);
}

TEST(CalibrationTest, TheRankedProbabilityScoreIsTheIntegralThatDefinesIt)
{
    for (const double error : {0.0, 0.3, -1.0, 4.0})
    {
        for (const double standardError : {0.2, 1.0, 3.0})
        {
            EXPECT_NEAR(calcCalibration({7.0}, {7.0 + error}, {standardError}).crps,
                        integratedCrps(error, standardError), 1e-4)
                << error << ", " << standardError;
        }
    }
}

TEST(CalibrationTest, TheScoreFallsToTheErrorAsTheStandardErrorGoesToZero)
{
    EXPECT_NEAR(calcCalibration({1.0}, {3.0}, {1e-9}).crps, 2.0, 1e-8);
    EXPECT_EQ(calcCalibration({1.0}, {3.0}, {0.0}).crps, 2.0);
}

TEST(CalibrationTest, TheEndsBelongToAnInterval)
{
    const double end = fenn::analysis::intervalFactor(0.5);

    EXPECT_EQ(calcCalibration({0.0}, {end}, {1.0}).coverages[0].actual, 1.0);
    EXPECT_EQ(calcCalibration({0.0}, {-end}, {1.0}).coverages[0].actual, 1.0);
    EXPECT_EQ(calcCalibration({0.0}, {std::nextafter(end, 1.0)}, {1.0}).coverages[0].actual, 0.0);
}

TEST(CalibrationTest, CertainPointsAreCoveredOnlyWhenTheyAreRight)
{
    const Calibration calibration = calcCalibration({1.0, 1.0, 5.0}, {1.0 + 1e-15, 1.1, 5.5}, {0.0, 0.0, 1.0});

    EXPECT_EQ(calibration.numCertain, 2U);
    EXPECT_EQ(calibration.numUsed, 3U);
    EXPECT_EQ(calibration.coverages[2].actual, 2.0 / 3.0);
    EXPECT_EQ(calibration.meanSquaredStandardisedError, 0.25);
}

TEST(CalibrationTest, MissingEstimatesAndStandardErrorsAreCountedAndLeftOut)
{
    const Calibration calibration =
        calcCalibration({1.0, 2.0, 3.0, 4.0}, {notANumber, 2.0, 4.0, notANumber}, {1.0, notANumber, 1.0, notANumber});

    EXPECT_EQ(calibration.numMissing, 2U);
    EXPECT_EQ(calibration.numWithoutStandardError, 1U);
    EXPECT_EQ(calibration.numUsed, 1U);
    EXPECT_EQ(calibration.numCertain, 0U);
    EXPECT_EQ(calibration.meanSquaredStandardisedError, 1.0);
}

TEST(CalibrationTest, FiguresWithoutAPointAreNaN)
{
    const Calibration calibration = calcCalibration({1.0}, {notANumber}, {1.0});

    EXPECT_TRUE(std::isnan(calibration.meanSquaredStandardisedError));
    EXPECT_TRUE(std::isnan(calibration.crps));
    EXPECT_TRUE(std::isnan(calibration.coverages[0].actual));
    EXPECT_TRUE(std::isnan(calcCalibrationCurve({}, {}, {}, 1)[0].actual));
}

TEST(CalibrationTest, NormalErrorsAreCoveredAsOftenAsPromised)
{
    constexpr std::size_t numPoints = 4000;
    fenn::test::RandomNumbers numbers(12);
    std::vector<double> estimates;
    std::vector<double> standardErrors;
    for (std::size_t i = 0; i < numPoints; ++i)
    {
        standardErrors.push_back(numbers.next(0.1, 10.0));
        estimates.push_back(standardErrors.back() * fenn::analysis::normalQuantile(numbers.next(1e-9, 1.0)));
    }
    const std::vector<double> truths(numPoints, 0.0);

    const Calibration calibration = calcCalibration(truths, estimates, standardErrors);
    std::vector<IntervalCoverage> coverages = calcCalibrationCurve(truths, estimates, standardErrors, 19);

    EXPECT_EQ(coverages[17].nominal, 0.9);
    EXPECT_EQ(coverages[17].actual, calibration.coverages[1].actual);
    coverages.insert(coverages.end(), calibration.coverages.begin(), calibration.coverages.end());
    for (const IntervalCoverage& coverage : coverages)
    {
        const double samplingError = std::sqrt(coverage.nominal * (1.0 - coverage.nominal) / numPoints);
        EXPECT_NEAR(coverage.actual, coverage.nominal, 4.0 * samplingError) << coverage.nominal;
    }
    EXPECT_NEAR(calibration.meanSquaredStandardisedError, 1.0, 4.0 * std::sqrt(2.0 / numPoints));
}

TEST(CalibrationTest, StandardErrorsThatAreTooSmallScoreWorseThanRightOnes)
{
    fenn::test::RandomNumbers numbers(13);
    std::vector<double> estimates;
    for (int i = 0; i < 1000; ++i)
        estimates.push_back(fenn::analysis::normalQuantile(numbers.next(1e-9, 1.0)));
    const std::vector<double> truths(estimates.size(), 0.0);
    const auto scoreWith = [&](double standardError)
    {
        return calcCalibration(truths, estimates, std::vector<double>(estimates.size(), standardError)).crps;
    };

    EXPECT_LT(scoreWith(1.0), scoreWith(0.5));
    EXPECT_LT(scoreWith(1.0), scoreWith(2.0));
}

TEST(CalibrationTest, ListsOfDifferentLengthsAreRefused)
{
    EXPECT_THROW(calcCalibration({1.0}, {1.0, 2.0}, {1.0}), std::invalid_argument);
    EXPECT_THROW(calcCalibration({1.0}, {1.0}, {}), std::invalid_argument);
    EXPECT_THROW(calcCalibrationCurve({1.0}, {1.0}, {}, 3), std::invalid_argument);
}

} // namespace
