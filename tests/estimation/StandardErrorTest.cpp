#include "estimation/StandardError.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace
{

using fenn::estimation::acceptedVariance;
using fenn::estimation::standardErrorOf;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(StandardErrorTest, AVarianceThatIsRoundingIsNothingToCompareWith)
{
    EXPECT_EQ(fenn::estimation::comparableVariance(1e-12), 0.0);
    EXPECT_EQ(fenn::estimation::comparableVariance(1.1e-12), 1.1e-12);
    EXPECT_TRUE(std::isnan(fenn::estimation::comparableVariance(-1e-11)));
}

TEST(StandardErrorTest, VarianceTimesSillIsItsSquare)
{
    EXPECT_EQ(standardErrorOf(0.25, 9.0), 1.5);
    EXPECT_EQ(standardErrorOf(0.0, 9.0), 0.0);
    EXPECT_EQ(standardErrorOf(0.25, 0.0), 0.0);
}

TEST(StandardErrorTest, VariancesThatRoundedBelowZeroAreZero)
{
    EXPECT_EQ(acceptedVariance(-2e-17), 0.0);
    EXPECT_EQ(acceptedVariance(-1e-12), 0.0);
    EXPECT_FALSE(std::signbit(acceptedVariance(-0.0)));
    EXPECT_EQ(standardErrorOf(-2e-17, 4.0), 0.0);
    EXPECT_FALSE(std::signbit(standardErrorOf(-2e-17, 4.0)));
}

TEST(StandardErrorTest, VariancesBelowRoundingAreNoVariances)
{
    EXPECT_TRUE(std::isnan(acceptedVariance(-1.1e-12)));
    EXPECT_TRUE(std::isnan(standardErrorOf(-0.1, 4.0)));
}

TEST(StandardErrorTest, OtherVariancesAreKept)
{
    EXPECT_EQ(acceptedVariance(0.7), 0.7);
    EXPECT_EQ(acceptedVariance(5e-324), 5e-324);
    EXPECT_EQ(acceptedVariance(1.3), 1.3);
}

TEST(StandardErrorTest, NaNStaysNaN)
{
    EXPECT_TRUE(std::isnan(acceptedVariance(notANumber)));
    EXPECT_TRUE(std::isnan(standardErrorOf(notANumber, 1.0)));
    EXPECT_TRUE(std::isnan(standardErrorOf(1.0, notANumber)));
}

} // namespace
