#include "estimation/Estimator.h"

#include <cmath>

#include <gtest/gtest.h>

#include "estimation/GlobalSystem.h"
#include "estimation/chooseEstimator.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::chooseEstimator;
using fenn::estimation::EstimatorOptions;
using fenn::estimation::GlobalSystem;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::smoothSamples;

EstimatorOptions exactly()
{
    EstimatorOptions options;
    options.isExact = true;
    return options;
}

TEST(EstimatorTest, DualWeightsOfBothGlobalEnginesAreThoseOfTheSystem)
{
    const SampleSet samples = smoothSamples(60, 3);
    for (const int driftOrder : {0, 1, 2})
    {
        const ModelSettings settings{-1.0, {}, driftOrder, 0.6, 0.2, 0};
        const auto covarianceForm = chooseEstimator(samples, settings);
        const auto exact = chooseEstimator(samples, settings, exactly());
        ASSERT_EQ(covarianceForm->getReport().engine, "covariance form");
        const GlobalSystem system(exact->getParts(), driftOrder);
        for (std::size_t w = 0; w < 2; ++w)
        {
            const std::vector<double> expected = system.solve(samples.getOutput(w)); // of semivariances
            const std::vector<double> ofCovariances = covarianceForm->calcDualWeights()[w];
            const std::vector<double> ofSemivariances = exact->calcDualWeights()[w];
            ASSERT_EQ(ofCovariances.size(), 60U);
            for (std::size_t i = 0; i < 60; ++i)
            {
                EXPECT_NEAR(ofCovariances[i], -expected[i], 1e-10) << i;
                EXPECT_NEAR(ofSemivariances[i], -expected[i], 1e-10) << i;
            }
        }
    }
}

TEST(EstimatorTest, DualWeightsStandInTheOrderOfTheMergedPoints)
{
    const SampleSet samples({{0.0, 1.0, 1.0, 3.0, 4.0}}, {{1.0, 2.0, 4.0, 3.0, 0.0}});
    const ModelSettings settings{0.0, {}, 0, 1.0, 0.0, 0};

    const auto ofCovariances = chooseEstimator(samples, settings)->calcDualWeights();
    const auto ofSemivariances = chooseEstimator(samples, settings, exactly())->calcDualWeights();

    ASSERT_EQ(ofCovariances[0].size(), 4U);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(ofCovariances[0][i], ofSemivariances[0][i], 1e-13);
}

TEST(EstimatorTest, ConditionIsLowForGoodSystemsAndZeroForRepeats)
{
    const SampleSet samples = smoothSamples(60, 4);
    for (const EstimatorOptions& options : {EstimatorOptions(), exactly()})
    {
        const double condition =
            chooseEstimator(samples, {-1.0, {}, 0, 0.6, 0.2, 0}, options)->calcReciprocalCondition();
        EXPECT_GT(condition, 1e-4);
        EXPECT_LE(condition, 1.0);
    }
    const SampleSet repeated({{0.0, 0.2, 0.2, 0.7, 1.0}}, {{1.0, 2.0, 2.5, 3.0, 0.0}});

    EXPECT_EQ(chooseEstimator(repeated, {})->calcReciprocalCondition(), 0.0);
}

TEST(EstimatorTest, LocalModelsHaveNoSystemOfTheirOwn)
{
    const SampleSet samples = smoothSamples(40, 5);
    for (const EstimatorOptions& options : {EstimatorOptions(), exactly()})
    {
        const auto local = chooseEstimator(samples, {-1.0, {}, 0, 0.6, 0.2, 8}, options);

        EXPECT_TRUE(local->calcDualWeights().empty());
        EXPECT_TRUE(std::isnan(local->calcReciprocalCondition()));
    }
}

} // namespace
