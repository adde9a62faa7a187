#include "estimation/Estimates.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"

namespace
{

using fenn::estimation::chooseEstimator;
using fenn::estimation::estimateAt;
using fenn::estimation::Estimates;
using fenn::estimation::SampleSet;
using fenn::test::sameBits;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class EstimatesTest : public testing::Test
{
protected:
    SampleSet samples = fenn::test::smoothSamples(40, 12);
    std::unique_ptr<fenn::estimation::Estimator> estimator = chooseEstimator(samples, {});
};

TEST_F(EstimatesTest, TargetsThatAreNotFiniteGetNaNAndChangeNoOthers)
{
    Estimates some;
    Estimates all;

    EXPECT_EQ(estimateAt(*estimator, {{0.25, 0.5}, {0.5, 0.75}}, {true, true}, some), 0U);
    EXPECT_EQ(estimateAt(*estimator, {{notANumber, 0.25, 0.5, 0.5, 0.5}, {0.5, 0.5, notANumber, -infinity, 0.75}},
                         {true, true}, all),
              3U);

    for (std::size_t w = 0; w < 2; ++w)
        EXPECT_TRUE(
            sameBits(all.values[w], {notANumber, some.values[w][0], notANumber, notANumber, some.values[w][1]}));
    for (std::vector<double> Estimates::*const column : {&Estimates::variances, &Estimates::driftProducts})
        EXPECT_TRUE(sameBits(all.*column, {notANumber, (some.*column)[0], notANumber, notANumber, (some.*column)[1]}));
}

TEST_F(EstimatesTest, WithoutAFiniteTargetEveryEstimateIsNaN)
{
    Estimates estimates;

    EXPECT_EQ(estimateAt(*estimator, {{infinity}, {0.5}}, {}, estimates), 1U);

    EXPECT_TRUE(std::isnan(estimates.values[1][0]));
    EXPECT_TRUE(estimates.variances.empty());
    EXPECT_TRUE(estimates.driftProducts.empty());
}

TEST_F(EstimatesTest, WhatWasThereBeforeIsReplaced)
{
    Estimates estimates{{{1.0, 2.0, 3.0}}, {4.0, 5.0}, {6.0}};
    Estimates fresh;

    estimateAt(*estimator, {{0.25, 0.5}, {0.5, 0.75}}, {}, estimates);
    estimateAt(*estimator, {{0.25, 0.5}, {0.5, 0.75}}, {}, fresh);

    EXPECT_EQ(estimates.values, fresh.values);
    EXPECT_TRUE(estimates.variances.empty());
    EXPECT_TRUE(estimates.driftProducts.empty());
}

TEST_F(EstimatesTest, NoTargetsGiveNoEstimates)
{
    Estimates estimates{{{1.0}, {1.0}}, {1.0}, {1.0}};

    EXPECT_EQ(estimateAt(*estimator, {{}, {}}, {true, true}, estimates), 0U);

    EXPECT_EQ(estimates.values, (std::vector<std::vector<double>>{{}, {}}));
    EXPECT_TRUE(estimates.variances.empty());
    EXPECT_TRUE(estimates.driftProducts.empty());
}

TEST_F(EstimatesTest, SamplesAreTargetsByTheirInputs)
{
    const SampleSet targets({{0.25, 0.5}, {0.5, 0.75}}, {{7.0, 8.0}});
    Estimates expected;
    estimateAt(*estimator, {{0.25, 0.5}, {0.5, 0.75}}, {true, true}, expected);

    const Estimates actual = estimateAt(*estimator, targets);

    EXPECT_EQ(actual.values, expected.values);
    EXPECT_EQ(actual.variances, expected.variances);
    EXPECT_EQ(actual.driftProducts, expected.driftProducts);
    EXPECT_EQ(actual.driftProducts.size(), 2U);
}

} // namespace
