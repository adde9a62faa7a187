#include "analysis/Distribution.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

using fenn::analysis::countInBins;
using fenn::analysis::describeValues;
using fenn::analysis::Distribution;
using fenn::analysis::Histogram;
using fenn::analysis::quantileOf;

TEST(DistributionTest, FiguresOfAFewValues)
{
    const Distribution distribution = describeValues({4.0, 1.0, 2.0, 9.0, 4.0});

    EXPECT_EQ(distribution.least, 1.0);
    EXPECT_EQ(distribution.lowerQuartile, 2.0);
    EXPECT_EQ(distribution.median, 4.0);
    EXPECT_DOUBLE_EQ(distribution.mean, 4.0);
    EXPECT_EQ(distribution.upperQuartile, 4.0);
    EXPECT_EQ(distribution.greatest, 9.0);
    EXPECT_DOUBLE_EQ(distribution.standardDeviation, std::sqrt(38.0 / 4.0)); // 0 + 9 + 4 + 25 + 0 over n - 1
}

TEST(DistributionTest, QuantilesLieBetweenValues)
{
    EXPECT_EQ(quantileOf({1.0, 2.0, 4.0, 8.0}, 0.5), 3.0);
    EXPECT_EQ(quantileOf({1.0, 2.0, 4.0, 8.0}, 0.0), 1.0);
    EXPECT_EQ(quantileOf({1.0, 2.0, 4.0, 8.0}, 1.0), 8.0);
    EXPECT_EQ(quantileOf({7.0}, 0.3), 7.0);
}

TEST(DistributionTest, ASingleValueDoesNotVary)
{
    const Distribution distribution = describeValues({3.0});

    EXPECT_EQ(distribution.mean, 3.0);
    EXPECT_EQ(distribution.standardDeviation, 0.0);
}

TEST(DistributionTest, HugeValuesDoNotOverflow)
{
    const Distribution distribution = describeValues({-1e308, 1e308});
    EXPECT_EQ(distribution.median, 0.0);
    EXPECT_EQ(distribution.mean, 0.0);

    const Histogram histogram = countInBins({-1e308, 0.0, 1e308});
    EXPECT_EQ(histogram.counts, (std::vector<std::size_t>{1, 0, 1, 0, 1}));
}

TEST(DistributionTest, AValueBelongsToTheBinThatBeginsAtIt)
{
    const Histogram histogram = countInBins({0.0, 1.0, 2.0, 3.0, 4.0, 5.0});

    EXPECT_EQ(histogram.low, 0.0);
    EXPECT_EQ(histogram.high, 5.0);
    EXPECT_EQ(histogram.counts, (std::vector<std::size_t>{1, 1, 1, 1, 2})); // the greatest in the last bin
}

TEST(DistributionTest, BinsAreTheRootOfTheValuesUpToForty)
{
    std::vector<double> values(101);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>(i);
    EXPECT_EQ(countInBins(values).counts.size(), 11u);
    values.resize(5000, 50.0);
    EXPECT_EQ(countInBins(values).counts.size(), 40u);
}

TEST(DistributionTest, EqualValuesMakeOneBin)
{
    const Histogram histogram = countInBins({2.0, 2.0, 2.0});

    EXPECT_EQ(histogram.low, 2.0);
    EXPECT_EQ(histogram.high, 2.0);
    EXPECT_EQ(histogram.counts, (std::vector<std::size_t>{3}));
}

TEST(DistributionTest, NoValuesAreRefused)
{
    EXPECT_THROW(describeValues({}), std::invalid_argument);
    EXPECT_THROW(countInBins({}), std::invalid_argument);
}
