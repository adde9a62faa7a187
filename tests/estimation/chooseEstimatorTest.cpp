#include "estimation/chooseEstimator.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "estimation/SystemSize.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::estimation::chooseEstimator;
using fenn::estimation::EstimatorOptions;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;

const ModelSettings nearestFive{-1.0, {}, 0, 1.0, 0.1, 5};

TEST(ChooseEstimatorTest, TheExactEngineAnswersWhoAsksForIt)
{
    const SampleSet samples = fenn::test::smoothSamples(40, 1);
    for (const ModelSettings& settings : {ModelSettings(), nearestFive})
    {
        const auto estimator = chooseEstimator(samples, settings, {0, true});

        EXPECT_TRUE(estimator->getReport().isExact);
        EXPECT_EQ(estimator->getReport().engine, "exact");
        EXPECT_NE(estimator->getReport().sentence.find("; asked for"), std::string::npos);
    }
}

TEST(ChooseEstimatorTest, TheEstimatorWorksOnAllPointsUnlessFewerAreNearest)
{
    const SampleSet samples = fenn::test::smoothSamples(40, 2);

    EXPECT_TRUE(chooseEstimator(samples, {})->isGlobal());
    EXPECT_FALSE(chooseEstimator(samples, nearestFive)->isGlobal());
}

TEST(ChooseEstimatorTest, TheLocalEngineAnswersForFewerNeighboursThanPoints)
{
    const SampleSet samples = fenn::test::smoothSamples(6, 2);

    EXPECT_EQ(chooseEstimator(samples, nearestFive)->getReport().engine, "local");
    EXPECT_NE(chooseEstimator(samples.subset({0, 1, 2, 3, 4}), nearestFive)->getReport().engine, "local");
}

TEST(ChooseEstimatorTest, TheCovarianceFormAnswersForGlobalModels)
{
    const SampleSet samples = fenn::test::smoothSamples(40, 4);

    const auto estimator = chooseEstimator(samples, {});

    EXPECT_EQ(estimator->getReport().engine, "covariance form");
    EXPECT_FALSE(estimator->getReport().isExact);
    EXPECT_LE(estimator->getReport().bound, 1e-9);
}

TEST(ChooseEstimatorTest, TheExactEngineStandsInWhereTheCovarianceFormDoesNotApplyAndSaysWhy)
{
    const SampleSet coincident({{0.0, 0.0, 1.0, 2.0, 4.0}}, {{1.0, 1.0, 3.0, 4.0, 5.0}});
    double bytes = 0.0;
    EstimatorOptions options;
    options.checkStandIn = [&bytes](double bytesOfTheSystem)
    {
        bytes = bytesOfTheSystem;
    };

    const auto estimator = chooseEstimator(coincident, {}, options);

    EXPECT_EQ(
        estimator->getReport().sentence,
        "exact: one system over all 5 points, to the bits of the plug-in; the covariance form does not apply: its "
        "matrix is not positive definite");
    EXPECT_EQ(bytes, fenn::estimation::calcSystemBytes(5, 1, 0));
}

TEST(ChooseEstimatorTest, WhoRefusesTheStandInIsNotGivenIt)
{
    const SampleSet coincident({{0.0, 0.0, 1.0, 2.0, 4.0}}, {{1.0, 1.0, 3.0, 4.0, 5.0}});
    EstimatorOptions options;
    options.checkStandIn = [](double)
    {
        throw std::runtime_error("too large");
    };

    EXPECT_THROW(chooseEstimator(coincident, {}, options), std::runtime_error);
    options.isExact = true;
    EXPECT_NO_THROW(chooseEstimator(coincident, {}, options));
}

TEST(ChooseEstimatorTest, TheEstimatorHandsOutThePartsOfItsModel)
{
    const SampleSet samples({{0.0, 0.0, 1.0, 2.0, 4.0}}, {{1.0, 3.0, 3.0, 4.0, 5.0}});

    const auto estimator = chooseEstimator(samples, {0.0, {}, 0, 1.0, 0.0, 0});

    EXPECT_EQ(estimator->getParts().getPoints().size(), 4U);
    EXPECT_EQ(estimator->getParts().getMergedGroups().size(), 1U);
}

TEST(ChooseEstimatorTest, SettingsAreChecked)
{
    const SampleSet samples = fenn::test::smoothSamples(40, 3);

    EXPECT_THROW(chooseEstimator(samples, {-1.0, {1.0}, 0, 1.0, 0.0, 0}), std::invalid_argument);
    EXPECT_EQ(fenn::test::textOfError(
                  [&] {
                      chooseEstimator(samples, {-1.0, {1.0, 0.0}, 0, 1.0, 0.0, 0});
                  }),
              "Scaling factor too small");
}

/// Samples of which the last lies this far from the one before it.
SampleSet samplesWithAPair(double distance)
{
    const SampleSet samples = fenn::test::smoothSamples(40, 5);
    std::vector<std::vector<double>> inputs{samples.getInput(0), samples.getInput(1)};
    inputs[0][39] = inputs[0][38] + distance;
    inputs[1][39] = inputs[1][38];
    return {inputs, {samples.getOutput(0)}};
}

TEST(ChooseEstimatorTest, PointsThatCannotBeToldApartAreRefusedWhereAsked)
{
    EstimatorOptions strict;
    strict.mustTellPointsApart = true;
    EstimatorOptions strictAndExact = strict;
    strictAndExact.isExact = true;
    ModelSettings local = nearestFive;
    local.nugget = 0.0;
    for (const double distance : {0.0, 1e-15})
    {
        const SampleSet samples = samplesWithAPair(distance);
        for (const EstimatorOptions& options : {strict, strictAndExact})
        {
            for (const ModelSettings& settings : {ModelSettings(), local})
                EXPECT_EQ(fenn::test::textOfError([&] { chooseEstimator(samples, settings, options); }),
                          "Ill-conditioned matrix");
            EXPECT_NO_THROW(chooseEstimator(samples, nearestFive, options)); // by its nugget
        }
        EXPECT_NO_THROW(chooseEstimator(samples, {}));
    }
    EXPECT_NO_THROW(chooseEstimator(samplesWithAPair(1e-8), {}, strict));
}

TEST(ChooseEstimatorTest, ADriftThatPlacesDoNotDetermineIsRefusedWhereAsked)
{
    std::vector<double> x;
    for (int i = 0; i < 12; ++i)
        x.push_back(i + 0.3 * (i % 3));
    const SampleSet onALine({x, x}, {x});
    const ModelSettings plane{-1.0, {}, 1, 1.0, 0.0, 0};
    EstimatorOptions strict;
    strict.mustTellPointsApart = true;

    EXPECT_NO_THROW(chooseEstimator(onALine, {}, strict));
    EXPECT_NO_THROW(chooseEstimator(onALine, plane));
    EXPECT_EQ(fenn::test::textOfError([&] { chooseEstimator(onALine, plane, strict); }), "Ill-conditioned matrix");
}

} // namespace
