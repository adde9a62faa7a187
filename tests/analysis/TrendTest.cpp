#include "analysis/Trend.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace
{

using fenn::analysis::Trend;

TEST(TrendTest, GramDeterminantIsThatOfTheProduct)
{
    // F^T F = (14 6; 6 3): 42 - 36.
    EXPECT_NEAR(Trend({{1.0, 2.0, 3.0}, {1.0, 1.0, 1.0}}).getLogGramDeterminant(), std::log(6.0), 1e-14);
}

TEST(TrendTest, ColumnsThatDependOnEachOtherHaveNoDeterminant)
{
    const double none = -std::numeric_limits<double>::infinity();
    EXPECT_EQ(Trend({{3.0, 4.0}, {6.0, 8.0}}).getLogGramDeterminant(), none);
    EXPECT_EQ(Trend({{0.0, 0.0}, {2.0, 2.0}}).getLogGramDeterminant(), none);
}

TEST(TrendTest, WhatIsLeftIsPerpendicularToTheColumns)
{
    const Trend trend({{1.0, 2.0, 3.0, 5.0}, {1.0, 1.0, 1.0, 1.0}});

    const std::vector<double> rest = trend.removeFrom({1.0, 0.0, 2.0, 1.0});

    EXPECT_NEAR(rest[0] + rest[1] + rest[2] + rest[3], 0.0, 1e-15);
    EXPECT_NEAR(rest[0] + 2.0 * rest[1] + 3.0 * rest[2] + 5.0 * rest[3], 0.0, 1e-15);
    EXPECT_NEAR(rest[0] - rest[1], 1.0 + 0.8 / 7.0, 1e-14); // a slope of 0.8 / 7
}

TEST(TrendTest, ACombinationOfTheColumnsLeavesRounding)
{
    const Trend trend({{1.0, 2.0, 3.0, 5.0}, {1.0, 1.0, 1.0, 1.0}});

    for (const double value : trend.removeFrom({1e6 + 2.0, 1e6 + 4.0, 1e6 + 6.0, 1e6 + 10.0}))
        EXPECT_NEAR(value, 0.0, 1e-9);
}

} // namespace
