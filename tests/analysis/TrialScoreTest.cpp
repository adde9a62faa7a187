#include "analysis/TrialScore.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "analysis/FoldEstimator.h"
#include "analysis/Folds.h"
#include "analysis/Likelihood.h"
#include "analysis/Sill.h"
#include "tests/analysis/SimulatedField.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::assess;
using fenn::analysis::Assessment;
using fenn::analysis::LeftOutEstimates;
using fenn::analysis::Objective;
using fenn::analysis::scoreOf;
using fenn::analysis::TrialScorer;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::smoothSamples;

const ModelSettings someSettings{-1.0, {}, 0, 0.5, 0.1, 0};

TrialScorer scorerOf(const SampleSet& samples, Objective objective, std::size_t numRepeats = 1)
{
    return {samples, objective, 5, numRepeats, 1, {}};
}

TEST(TrialScoreTest, AScoreIsTheMeanErrorInStandardDeviations)
{
    const SampleSet samples({{0.0, 1.0}}, {{0.0, 2.0}, {5.0, 5.0}}); // deviations of the root of 2, and 0
    LeftOutEstimates leftOut;
    leftOut.truths = {{1.0, 1.0}, {5.0, 5.0}};
    leftOut.estimates.values = {{1.0, 3.0}, {5.0, 6.0}};

    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Rmse), (1.0 + std::sqrt(0.5)) / 2.0);
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Mae), (std::sqrt(0.5) + 0.5) / 2.0);
    leftOut.estimates.variances = {0.25, 1.0};
    leftOut.sills = {4.0, 0.0}; // the second output's standard errors are 0: its CRPS is the absolute error
    const double first = fenn::analysis::calcCalibration({1.0, 1.0}, {1.0, 3.0}, {1.0, 2.0}).crps;
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Crps), (first / std::sqrt(2.0) + 0.5) / 2.0);
    EXPECT_EQ(scoreOf(leftOut, samples, Objective::Likelihood), scoreOf(leftOut, samples, Objective::Crps));
}

TEST(TrialScoreTest, AnAssessmentHoldsErrorsAndCalibrationByTheSill)
{
    const SampleSet samples({{0.0, 1.0}}, {{0.0, 2.0}});
    LeftOutEstimates leftOut;
    leftOut.truths = {{1.0, 1.0}};
    leftOut.estimates.values = {{1.5, 4.0}};
    leftOut.estimates.variances = {0.25, 0.25};
    leftOut.sills = {4.0};

    const Assessment assessment = assess(leftOut, samples, Objective::Mae);

    EXPECT_EQ(assessment.score, scoreOf(leftOut, samples, Objective::Mae));
    EXPECT_DOUBLE_EQ(assessment.statistics[0].mae, 1.75);
    EXPECT_DOUBLE_EQ(assessment.statistics[0].meanSquaredStandardisedError, (0.25 + 9.0) / 2.0);
    EXPECT_DOUBLE_EQ(assessment.calibrations[0].meanSquaredStandardisedError, (0.25 + 9.0) / 2.0);
    EXPECT_EQ(assessment.calibrations[0].coverages[2].actual, 0.5);
}

TEST(TrialScoreTest, TheDevianceIsThatOfTheRestrictedLikelihood)
{
    const SampleSet samples = smoothSamples(40, 3);

    const TrialScorer::Score score = scorerOf(samples, Objective::Likelihood).calcDeviance(someSettings);

    EXPECT_EQ(score.value, fenn::analysis::calcRestrictedLikelihood(samples, someSettings).calcSum());
    EXPECT_TRUE(score.failure.empty());
}

TEST(TrialScoreTest, ACrpsTakesTheSillOfTheModelOfAllSamples)
{
    const SampleSet samples = smoothSamples(40, 3);
    const fenn::analysis::FoldEstimator estimator(samples, someSettings);
    LeftOutEstimates leftOut;
    leftOut.estimates = estimator.estimate(fenn::analysis::assignFolds(40, 5, 1), 5, true);
    for (std::size_t w = 0; w < 2; ++w)
    {
        leftOut.truths.push_back(samples.getOutput(w));
        leftOut.sills.push_back(fenn::analysis::estimateSills(samples, someSettings)[w].value);
    }

    const TrialScorer scorer = scorerOf(samples, Objective::Crps);

    EXPECT_NEAR(scorer.crossValidate(someSettings).value, scoreOf(leftOut, samples, Objective::Crps), 1e-12);
    EXPECT_EQ(scorer.assessByCrossValidation(someSettings).score, scorer.crossValidate(someSettings).value);
}

TEST(TrialScoreTest, SamplesThatCannotBeToldApartFailByEitherCriterion)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 30, 0.0, 1.0, 3);
    for (std::vector<double>& column : inputs)
        column[1] = column[0];
    const SampleSet samples(inputs, {fenn::test::normalNumbers(30, 4)});
    const ModelSettings interpolating{-1.0, {}, 0, 0.5, 0.0, 0};
    const TrialScorer scorer = scorerOf(samples, Objective::Crps);

    EXPECT_EQ(scorer.calcDeviance(interpolating).failure, "Points cannot be told apart");
    EXPECT_TRUE(std::isinf(scorer.calcDeviance(interpolating).value));
    EXPECT_EQ(scorer.crossValidate(interpolating).failure, "Points cannot be told apart");
    EXPECT_TRUE(std::isinf(scorer.crossValidate(interpolating).value));
    EXPECT_EQ(scorer.assessByCrossValidation(interpolating).failure, "Points cannot be told apart");
    EXPECT_TRUE(scorer.crossValidate(someSettings).failure.empty()); // repeats are replicates with a nugget
}

TEST(TrialScoreTest, OfManySamplesALocalModelIsScoredByThoseItLeavesOut)
{
    const std::size_t n = 1200;
    const ModelSettings truth{-1.0, {}, 0, 0.3, 0.2, 8};
    std::vector<double> values = fenn::test::normalNumbers(n, 4);
    const SampleSet samples(fenn::test::randomValues(2, n, 0.0, 1.0, 3), {values});

    const Assessment assessment = scorerOf(samples, Objective::Rmse).assessByCrossValidation(truth);

    EXPECT_EQ(assessment.statistics[0].numCompared, TrialScorer::maxLeftOut);
    EXPECT_NEAR(assessment.statistics[0].meanSquaredStandardisedError, 1.0, 1e-12); // their sill makes it so
    EXPECT_NEAR(assessment.score, 1.06, 0.08); // noise: the root of 1 + 1/8, and chance
}

TEST(TrialScoreTest, TooManyFoldsAreRefused)
{
    const SampleSet samples = smoothSamples(4, 3);

    EXPECT_THROW(scorerOf(samples, Objective::Rmse), std::invalid_argument);
}

} // namespace
