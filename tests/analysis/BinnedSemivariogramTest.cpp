#include "analysis/BinnedSemivariogram.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::binnedSemivariogram;
using fenn::analysis::defaultMaxLag;
using fenn::analysis::LagBin;
using fenn::estimation::makeModelParts;
using fenn::estimation::SampleSet;

TEST(BinnedSemivariogramTest, BinsMatchThoseWorkedOutByHand)
{
    // Normalised as they stand: scale 1. Sample variance 4/3, range 2: the model is 0.6875 at lag 1 and 1 at lag 2.
    const SampleSet samples({{0.0, 1.0, 2.0}}, {{0.0, 2.0, 2.0}});
    const auto parts = makeModelParts(samples, {});

    const std::vector<LagBin> bins = binnedSemivariogram(*parts, 0, 4, 2.0);

    ASSERT_EQ(bins.size(), 2U); // two of four hold no pair
    EXPECT_EQ(bins[0].lowerLag, 1.0);
    EXPECT_EQ(bins[0].upperLag, 1.5);
    EXPECT_EQ(bins[0].meanLag, 1.0);
    EXPECT_EQ(bins[0].semivariance, 1.0); // (4 + 0) / 2 / 2
    EXPECT_DOUBLE_EQ(bins[0].modelValue, 0.6875 * 4.0 / 3.0);
    EXPECT_EQ(bins[0].numPairs, 2U);
    EXPECT_EQ(bins[1].upperLag, 2.0);
    EXPECT_EQ(bins[1].meanLag, 2.0); // the largest lag belongs to the last bin
    EXPECT_EQ(bins[1].semivariance, 2.0);
    EXPECT_DOUBLE_EQ(bins[1].modelValue, 4.0 / 3.0);
    EXPECT_EQ(bins[1].numPairs, 1U);
}

TEST(BinnedSemivariogramTest, LagsAreBoundedByHalfTheDiagonalUnlessSaid)
{
    const SampleSet samples({{0.0, 1.0, 2.0}}, {{0.0, 2.0, 2.0}});
    const auto parts = makeModelParts(samples, {});

    EXPECT_EQ(defaultMaxLag(*parts), 1.0);
    const std::vector<LagBin> bins = binnedSemivariogram(*parts, 0, 1);
    ASSERT_EQ(bins.size(), 1U);
    EXPECT_EQ(bins[0].numPairs, 2U);
}

TEST(BinnedSemivariogramTest, EveryUnorderedPairCountsOnce)
{
    const SampleSet samples = fenn::test::smoothSamples(50, 8);
    const auto parts = makeModelParts(samples, {});

    std::size_t numPairs = 0;
    for (const LagBin& bin : binnedSemivariogram(*parts, 1, 13, 100.0))
        numPairs += bin.numPairs;

    EXPECT_EQ(numPairs, 50U * 49U / 2U);
}

TEST(BinnedSemivariogramTest, BinsAscendAndHoldTheirMeanLag)
{
    const SampleSet samples = fenn::test::smoothSamples(80, 9);
    const auto parts = makeModelParts(samples, {});

    double lastUpper = 0.0;
    for (const LagBin& bin : binnedSemivariogram(*parts, 0, 20))
    {
        EXPECT_GE(bin.lowerLag, lastUpper);
        EXPECT_GE(bin.meanLag, bin.lowerLag);
        EXPECT_LE(bin.meanLag, bin.upperLag);
        EXPECT_GT(bin.numPairs, 0U);
        lastUpper = bin.upperLag;
    }
    EXPECT_EQ(lastUpper, defaultMaxLag(*parts));
}

TEST(BinnedSemivariogramTest, MergedSamplesCountAsTheirAverage)
{
    // 1 and 3 at the same place become 2; its only partner has 6: one pair, half of 16.
    const SampleSet samples({{0.0, 0.0, 2.0}}, {{1.0, 3.0, 6.0}});
    const auto parts = makeModelParts(samples, {0.0, {}, 0, 1.0, 0.0, 0});

    const std::vector<LagBin> bins = binnedSemivariogram(*parts, 0, 1, 2.0);

    ASSERT_EQ(bins.size(), 1U);
    EXPECT_EQ(bins[0].numPairs, 1U);
    EXPECT_EQ(bins[0].semivariance, 8.0);
}

TEST(BinnedSemivariogramTest, CoincidentSamplesThatAreNotMergedFormAPairOfLagZero)
{
    const SampleSet samples({{0.0, 0.0, 2.0}}, {{1.0, 3.0, 6.0}});
    const auto parts = makeModelParts(samples, {-1.0, {}, 0, 1.0, 0.25, 2});

    const std::vector<LagBin> bins = binnedSemivariogram(*parts, 0, 2, 1.0);

    ASSERT_EQ(bins.size(), 1U);
    EXPECT_EQ(bins[0].meanLag, 0.0);
    EXPECT_EQ(bins[0].semivariance, 2.0);
}

TEST(BinnedSemivariogramTest, WhatCannotBeBinnedIsRefused)
{
    const SampleSet samples({{0.0, 1.0, 2.0}}, {{0.0, 2.0, 2.0}});
    const auto parts = makeModelParts(samples, {});

    EXPECT_THROW(binnedSemivariogram(*parts, 1, 4), std::invalid_argument);
    EXPECT_THROW(binnedSemivariogram(*parts, 0, 0), std::invalid_argument);
    EXPECT_THROW(binnedSemivariogram(*parts, 0, 4, -1.0), std::invalid_argument);
    EXPECT_THROW(binnedSemivariogram(*parts, 0, 4, std::nan("")), std::invalid_argument);
}

} // namespace
