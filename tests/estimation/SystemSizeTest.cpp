#include "estimation/SystemSize.h"

#include <gtest/gtest.h>

namespace
{

using fenn::estimation::calcCovarianceBytes;
using fenn::estimation::calcSystemBytes;
using fenn::estimation::countDriftTerms;

TEST(SystemSizeTest, DriftTermsAreTheMonomialsWithoutTheConstant)
{
    EXPECT_EQ(countDriftTerms(0, 3), 0);
    EXPECT_EQ(countDriftTerms(1, 3), 3);
    EXPECT_EQ(countDriftTerms(2, 2), 5);
    EXPECT_EQ(countDriftTerms(4, 10), 1000);
}

TEST(SystemSizeTest, ASystemTakesASquareOfDoublesAndAWorkspaceThatLosesWeightAsItGrows)
{
    EXPECT_GT(calcSystemBytes(1000, 2, 0), 8.0 * 1001 * 1001);
    EXPECT_LT(calcSystemBytes(1000, 2, 0), 8.0 * 1001 * 1001 * 1.6);
    EXPECT_LT(calcSystemBytes(50000, 2, 0), 8.0 * 50001 * 50001 * 1.05);
}

TEST(SystemSizeTest, DriftTermsTakeRows)
{
    EXPECT_GT(calcSystemBytes(100, 10, 4), 8.0 * 1100 * 1100);
}

TEST(SystemSizeTest, EachThreadHoldsTheColumnsOfOneFold)
{
    using fenn::estimation::calcFoldBytes;

    EXPECT_GT(calcFoldBytes(10000, 2, 1, 10, 1), 8.0 * 10000 * 1000);
    EXPECT_LT(calcFoldBytes(10000, 2, 1, 10, 1), 8.0 * 10000 * 1000 * 1.3);
    EXPECT_EQ(calcFoldBytes(10000, 2, 1, 10, 4), 4.0 * calcFoldBytes(10000, 2, 1, 10, 1));
    EXPECT_EQ(calcFoldBytes(10000, 2, 1, 3, 4), calcFoldBytes(10000, 2, 1, 3, 3)); // no more threads than folds
}

TEST(SystemSizeTest, TheCovarianceFormTakesATriangleOfDoubles)
{
    EXPECT_GT(calcCovarianceBytes(15000, 2, 1), 8.0 * 15000 * 15000 / 2.0);
    EXPECT_LT(calcCovarianceBytes(15000, 2, 1), 8.0 * 15000 * 15000 / 2.0 * 1.05);
    EXPECT_GT(calcCovarianceBytes(100, 10, 4), 8.0 * 1100 * 1100 / 2.0);
}

} // namespace
