#include "analysis/NormalDistribution.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace
{

using fenn::analysis::intervalFactor;
using fenn::analysis::normalDensity;
using fenn::analysis::normalProbability;
using fenn::analysis::normalQuantile;

TEST(NormalDistributionTest, TabulatedValuesAreMet)
{
    EXPECT_NEAR(normalDensity(0.0), 0.398942280401432678, 1e-16);
    EXPECT_NEAR(normalProbability(1.0), 0.841344746068542949, 2e-16);
    EXPECT_NEAR(normalProbability(-6.0), 9.86587645037698e-10, 1e-23);
    EXPECT_NEAR(normalQuantile(0.975), 1.95996398454005424, 1e-15);
    EXPECT_NEAR(normalQuantile(0.25), -0.674489750196081743, 1e-15);
    EXPECT_NEAR(normalQuantile(1e-10), -6.36134090240406, 1e-13);
}

TEST(NormalDistributionTest, QuantilesInvertProbabilitiesFarIntoTheTails)
{
    for (const double probability : {1e-300, 1e-100, 1e-16, 1e-3, 0.1, 0.4999, 0.5, 0.6, 0.999, 1.0 - 1e-15})
        EXPECT_NEAR(normalProbability(normalQuantile(probability)) / probability, 1.0, 1e-12) << probability;
}

TEST(NormalDistributionTest, TheMedianIsZero)
{
    EXPECT_EQ(normalQuantile(0.5), 0.0);
}

TEST(NormalDistributionTest, QuantilesAtTheEndsAreInfiniteAndOutsideNaN)
{
    EXPECT_EQ(normalQuantile(0.0), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(normalQuantile(1.0), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(normalQuantile(-0.1)));
    EXPECT_TRUE(std::isnan(normalQuantile(1.1)));
    EXPECT_TRUE(std::isnan(normalQuantile(std::nan(""))));
}

TEST(NormalDistributionTest, IntervalsAreCentral)
{
    EXPECT_NEAR(intervalFactor(0.95), 1.95996398454005424, 1e-15);
    EXPECT_NEAR(intervalFactor(0.5), 0.674489750196081743, 1e-15);
}

TEST(NormalDistributionTest, IntervalsOfNothingAndOfEverythingAreRefused)
{
    for (const double coverage : {0.0, 1.0, -0.5, 95.0, std::nan("")})
        EXPECT_THROW(intervalFactor(coverage), std::invalid_argument) << coverage;
}

} // namespace
