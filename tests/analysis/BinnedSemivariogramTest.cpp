#include "analysis/BinnedSemivariogram.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/analysis/BinsOf.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::BinnedSemivariogram;
using fenn::analysis::BinningOptions;
using fenn::analysis::binSemivariogram;
using fenn::analysis::commonScale;
using fenn::analysis::defaultMaxLag;
using fenn::analysis::LagBin;
using fenn::analysis::semivariogramAtEveryLag;
using fenn::estimation::makeModelParts;
using fenn::estimation::SampleSet;
using fenn::test::binnedSemivariogram;

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

TEST(BinnedSemivariogramTest, EveryLagHasItsOwnLineWithoutBins)
{
    // Normalised as they stand: scale 1. Sample variance 4/3, range 2: the model is 0.6875 at lag 1 and 1 at lag 2.
    const SampleSet samples({{0.0, 1.0, 2.0}}, {{0.0, 2.0, 2.0}});
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.maxLag = 2.0;

    const std::vector<LagBin> lags = semivariogramAtEveryLag(*parts, options).bins;

    ASSERT_EQ(lags.size(), 2U);
    EXPECT_EQ(lags[0].lowerLag, 1.0);
    EXPECT_EQ(lags[0].upperLag, 1.0);
    EXPECT_EQ(lags[0].meanLag, 1.0);
    EXPECT_EQ(lags[0].semivariance, 1.0);
    EXPECT_DOUBLE_EQ(lags[0].modelValue, 0.6875 * 4.0 / 3.0);
    EXPECT_EQ(lags[0].numPairs, 2U);
    EXPECT_EQ(lags[1].meanLag, 2.0);
    EXPECT_EQ(lags[1].numPairs, 1U);
}

TEST(BinnedSemivariogramTest, LagsThatDifferByRoundingAreOne)
{
    const SampleSet samples({{0.0, 0.1, 0.2, 0.3, 1.0}}, {{0.0, 2.0, 2.0, 1.0, 5.0}}); // 0.3 - 0.2 is not 0.1
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.maxLag = 100.0;

    const std::vector<LagBin> lags = semivariogramAtEveryLag(*parts, options).bins;

    ASSERT_EQ(lags.size(), 7U); // 0.1, 0.2, 0.3, 0.7, 0.8, 0.9 and 1
    EXPECT_EQ(lags[0].numPairs, 3U);
    EXPECT_LT(lags[0].lowerLag, lags[0].upperLag);
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

TEST(BinnedSemivariogramTest, TheModelMayHaveASillOfItsOwn)
{
    const SampleSet samples({{0.0, 1.0, 2.0}}, {{0.0, 2.0, 2.0}});
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.numLags = 4;
    options.maxLag = 2.0;
    options.sill = 10.0;

    const std::vector<LagBin> bins = binSemivariogram(*parts, options).bins;

    EXPECT_DOUBLE_EQ(bins[0].modelValue, 6.875);
    EXPECT_EQ(bins[1].modelValue, 10.0);
}

TEST(BinnedSemivariogramTest, InputsOfOneScaleShareIt)
{
    const SampleSet samples({{0.0, 1.0, 4.0}, {0.0, 2.0, 1.0}}, {{0.0, 2.0, 2.0}});

    const auto equal = makeModelParts(samples, {-1.0, {1.0, 1.0}, 0, 1.0, 0.0, 0});
    EXPECT_EQ(commonScale(*equal), equal->getNormalizers()[0].getScale());
    EXPECT_EQ(commonScale(*makeModelParts(samples, {})), std::nullopt);
}

TEST(BinnedSemivariogramTest, ADirectionTakesThePairsAlongIt)
{
    // A square with sides of 1, its corners anticlockwise: two sides along each axis and the diagonals.
    const SampleSet samples({{0.0, 1.0, 1.0, 0.0}, {0.0, 0.0, 1.0, 1.0}}, {{0.0, 1.0, 4.0, 9.0}});
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.numLags = 1;
    options.maxLag = 10.0;
    const auto sumOfSquares = [&](double direction, double tolerance)
    {
        options.direction = direction;
        options.tolerance = tolerance;
        const std::vector<LagBin> bins = binSemivariogram(*parts, options).bins;
        return bins.empty() ? 0.0 : 2.0 * bins[0].semivariance * static_cast<double>(bins[0].numPairs);
    };
    constexpr double alongX = 1.0 + 25.0;
    constexpr double alongY = 9.0 + 81.0;

    EXPECT_DOUBLE_EQ(sumOfSquares(0.0, 10.0), alongX);
    EXPECT_DOUBLE_EQ(sumOfSquares(90.0, 10.0), alongY);
    EXPECT_DOUBLE_EQ(sumOfSquares(45.0, 10.0), 16.0);
    EXPECT_DOUBLE_EQ(sumOfSquares(135.0, 10.0), 64.0);
    EXPECT_DOUBLE_EQ(sumOfSquares(-45.0, 10.0), 64.0);
    EXPECT_DOUBLE_EQ(sumOfSquares(20.0, 10.0), 0.0);
    EXPECT_DOUBLE_EQ(sumOfSquares(20.0, 25.0), alongX + 16.0);
    EXPECT_DOUBLE_EQ(sumOfSquares(0.0, 45.0), alongX + 16.0 + 64.0); // those at the tolerance count
    EXPECT_DOUBLE_EQ(sumOfSquares(0.0, 90.0), alongX + alongY + 16.0 + 64.0);
}

TEST(BinnedSemivariogramTest, DirectionsAreThoseOfTheInputsUnits)
{
    // Both axes span 2 when normalised; as they stand, the diagonal rises by 0.1.
    const SampleSet samples({{0.0, 10.0}, {0.0, 1.0}}, {{0.0, 2.0}});
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.maxLag = 10.0;
    options.tolerance = 1.0;

    options.direction = std::atan(0.1) * 180.0 / 3.14159265358979;
    EXPECT_EQ(binSemivariogram(*parts, options).bins.size(), 1U);
    options.direction = 45.0;
    EXPECT_EQ(binSemivariogram(*parts, options).bins.size(), 0U);
}

TEST(BinnedSemivariogramTest, BeyondTheLargestNumberOfPairsOnlyThoseWithinReachAreFormed)
{
    const SampleSet samples = fenn::test::smoothSamples(400, 10);
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.numLags = 7;
    options.maxLag = 0.2; // of sides of 2: some tenth of the pairs lie so near in one input
    const BinnedSemivariogram all = binSemivariogram(*parts, options);
    options.maxPairs = 400 * 399 / 4;

    const BinnedSemivariogram near = binSemivariogram(*parts, options);

    EXPECT_EQ(near.numPoints, 400U);
    EXPECT_EQ(near.numPointsUsed, 400U);
    ASSERT_EQ(near.bins.size(), all.bins.size());
    for (std::size_t b = 0; b < all.bins.size(); ++b)
    {
        EXPECT_EQ(near.bins[b].numPairs, all.bins[b].numPairs);
        EXPECT_NEAR(near.bins[b].semivariance / all.bins[b].semivariance, 1.0, 1e-12);
        EXPECT_NEAR(near.bins[b].modelValue / all.bins[b].modelValue, 1.0, 1e-12);
    }
}

TEST(BinnedSemivariogramTest, PairsThatAreStillTooManyAreFormedFromAShareOfThePoints)
{
    const SampleSet samples = fenn::test::smoothSamples(2000, 11);
    const auto parts = makeModelParts(samples, {});
    BinningOptions options;
    options.numLags = 5;
    const BinnedSemivariogram all = binSemivariogram(*parts, options);
    options.maxPairs = 200000;

    const BinnedSemivariogram some = binSemivariogram(*parts, options);

    EXPECT_EQ(all.numPointsUsed, 2000U);
    EXPECT_GT(some.numPointsUsed, 500U);
    EXPECT_LT(some.numPointsUsed, 1000U);
    std::size_t numPairs = 0;
    for (std::size_t b = 0; b < 5; ++b)
    {
        numPairs += some.bins[b].numPairs;
        EXPECT_NEAR(some.bins[b].semivariance / all.bins[b].semivariance, 1.0, 0.15);
    }
    EXPECT_LT(numPairs, 220000U);
    EXPECT_EQ(binSemivariogram(*parts, options).bins[2].semivariance, some.bins[2].semivariance);
}

TEST(BinnedSemivariogramTest, DirectionsThatCannotBeAreRefused)
{
    const SampleSet line({{0.0, 1.0, 2.0}}, {{0.0, 2.0, 2.0}});
    const SampleSet plane = fenn::test::smoothSamples(10, 12);
    const auto lineParts = makeModelParts(line, {});
    const auto planeParts = makeModelParts(plane, {});
    BinningOptions options;
    options.direction = 10.0;

    EXPECT_THROW(binSemivariogram(*lineParts, options), std::invalid_argument);
    EXPECT_NO_THROW(binSemivariogram(*planeParts, options));
    options.tolerance = 0.0;
    EXPECT_THROW(binSemivariogram(*planeParts, options), std::invalid_argument);
    options.tolerance = 10.0;
    options.direction = std::nan("");
    EXPECT_THROW(binSemivariogram(*planeParts, options), std::invalid_argument);
}

} // namespace
