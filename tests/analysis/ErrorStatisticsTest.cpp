#include "analysis/ErrorStatistics.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace
{

using fenn::analysis::calcErrorStatistics;
using fenn::analysis::ErrorStatistics;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// Errors 0, 1, 0, -2.
const std::vector<double> truths{1.0, 2.0, 3.0, 4.0};
const std::vector<double> estimates{1.0, 3.0, 3.0, 2.0};

TEST(ErrorStatisticsTest, FiguresMatchThoseWorkedOutByHand)
{
    const ErrorStatistics statistics = calcErrorStatistics(truths, estimates, {}, 1.0);

    EXPECT_EQ(statistics.numCompared, 4U);
    EXPECT_EQ(statistics.rmse, std::sqrt(5.0 / 4.0));
    EXPECT_EQ(statistics.mae, 0.75);
    EXPECT_EQ(statistics.bias, -0.25);
    EXPECT_EQ(statistics.r2, 0.0); // squared deviations of 1, 2, 3, 4 from 2.5 sum to 5 too
}

TEST(ErrorStatisticsTest, WorstPointsComeByFallingMagnitudeAndLowerIndexFirst)
{
    const ErrorStatistics statistics = calcErrorStatistics(truths, estimates, {}, 1.0, 3);

    EXPECT_EQ(statistics.worstError, -2.0);
    EXPECT_EQ(statistics.worstPoints, (std::vector<std::size_t>{3, 1, 0}));
}

TEST(ErrorStatisticsTest, StandardisedErrorScalesVariancesByThatOfTheOutput)
{
    // e^2 / (v s2): 0 / 2, 1 / 1, 4 / 4; the third point's variance is negative.
    const ErrorStatistics statistics = calcErrorStatistics(truths, estimates, {1.0, 0.5, -1.0, 2.0}, 2.0);

    EXPECT_EQ(statistics.meanSquaredStandardisedError, 2.0 / 3.0);
    EXPECT_EQ(statistics.numWithoutVariance, 1U);
}

TEST(ErrorStatisticsTest, ZeroAndNaNVariancesAreLeftOutOfTheStandardisedError)
{
    const ErrorStatistics statistics = calcErrorStatistics(truths, estimates, {0.0, notANumber, 1.0, 1.0}, 1.0);

    EXPECT_EQ(statistics.meanSquaredStandardisedError, 2.0); // (0 + 4) / 2
    EXPECT_EQ(statistics.numWithoutVariance, 2U);
}

TEST(ErrorStatisticsTest, MissingEstimatesAreCountedAndOtherwiseLeftOut)
{
    const ErrorStatistics statistics =
        calcErrorStatistics({1.0, 2.0, 4.0}, {2.0, notANumber, 4.0}, {1.0, 1.0, 1.0}, 1.0);

    EXPECT_EQ(statistics.numMissing, 1U);
    EXPECT_EQ(statistics.numCompared, 2U);
    EXPECT_EQ(statistics.mae, 0.5);
    EXPECT_EQ(statistics.r2, 1.0 - 1.0 / 4.5); // truths 1 and 4 about 2.5
    EXPECT_EQ(statistics.worstPoints, (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(statistics.numWithoutVariance, 0U);
}

TEST(ErrorStatisticsTest, FiguresWithoutAPointAreNaN)
{
    const ErrorStatistics statistics = calcErrorStatistics({1.0}, {notANumber}, {}, 1.0);

    EXPECT_TRUE(std::isnan(statistics.rmse));
    EXPECT_TRUE(std::isnan(statistics.mae));
    EXPECT_TRUE(std::isnan(statistics.bias));
    EXPECT_TRUE(std::isnan(statistics.worstError));
    EXPECT_TRUE(std::isnan(statistics.meanSquaredStandardisedError));
    EXPECT_TRUE(statistics.worstPoints.empty());
}

TEST(ErrorStatisticsTest, R2OfTruthsThatDoNotVaryIsNaN)
{
    EXPECT_TRUE(std::isnan(calcErrorStatistics({2.0, 2.0}, {2.0, 2.0}, {}, 1.0).r2));
}

TEST(ErrorStatisticsTest, ListsOfDifferentLengthsAreRefused)
{
    EXPECT_THROW(calcErrorStatistics({1.0}, {1.0, 2.0}, {}, 1.0), std::invalid_argument);
    EXPECT_THROW(calcErrorStatistics({1.0, 2.0}, {1.0, 2.0}, {1.0}, 1.0), std::invalid_argument);
}

} // namespace
