#include "analysis/TrialScore.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "analysis/FoldEstimator.h"
#include "analysis/Folds.h"
#include "analysis/Likelihood.h"
#include "analysis/OutputTransform.h"
#include "analysis/Sill.h"
#include "tests/analysis/Refits.h"
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

TEST(TrialScoreTest, WithLogarithmsErrorsAreInTheDatasUnits)
{
    const SampleSet samples({{0.0, 1.0}}, {{0.0, std::log(3.0)}}); // 1 and 3: a deviation of the root of 2
    LeftOutEstimates leftOut;
    leftOut.truths = {{std::log(2.0), std::log(5.0)}};
    leftOut.estimates.values = {{std::log(4.0), std::log(3.0)}};
    leftOut.estimates.variances = {0.5, 0.25};
    leftOut.estimates.driftProducts = {0.125, 0.0};
    leftOut.sills = {2.0};
    fenn::analysis::OutputUnits units;
    units.areLogarithms = true;

    // exp(y + sill (V / 2 - mu^T f))
    const double first = 4.0 * std::exp(0.25) - 2.0;
    const double second = 3.0 * std::exp(0.25) - 5.0;
    const double deviation = std::sqrt(2.0);
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Rmse, units),
                     std::sqrt((first * first + second * second) / 2.0) / deviation);
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Mae, units),
                     (std::fabs(first) + std::fabs(second)) / 2.0 / deviation);
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Crps, units),
                     (fenn::analysis::crpsOfLogarithm(std::log(2.0), std::log(4.0), 1.0) +
                      fenn::analysis::crpsOfLogarithm(std::log(5.0), std::log(3.0), std::sqrt(0.5))) /
                         2.0 / deviation);
    EXPECT_EQ(scoreOf(leftOut, samples, Objective::Likelihood, units),
              scoreOf(leftOut, samples, Objective::Likelihood)); // of logarithms
    const Assessment assessment = assess(leftOut, samples, Objective::Mae, units);
    EXPECT_DOUBLE_EQ(assessment.statistics[0].mae, (std::fabs(first) + std::fabs(second)) / 2.0);
    EXPECT_EQ(assessment.calibrations[0].crps, assess(leftOut, samples, Objective::Mae).calibrations[0].crps);

    units.limits = {0.0, 3.5}; // the first estimate is 5.1, the second 3.9
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Mae, units), (1.5 + 1.5) / 2.0 / deviation);
}

TEST(TrialScoreTest, LimitsAloneBringEstimatesIntoThem)
{
    const SampleSet samples({{0.0, 1.0}}, {{0.0, 2.0}});
    LeftOutEstimates leftOut;
    leftOut.truths = {{1.0, 1.0}};
    leftOut.estimates.values = {{-3.0, 2.0}};
    fenn::analysis::OutputUnits units;
    units.limits = {0.0, 10.0};

    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Mae, units), 1.0 / std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(scoreOf(leftOut, samples, Objective::Mae), 2.5 / std::sqrt(2.0));
}

/// Samples whose outputs can be logarithms.
SampleSet smallSamples(std::size_t numSamples)
{
    const SampleSet samples = smoothSamples(numSamples, 3);
    std::vector<std::vector<double>> outputs{samples.getOutput(0), samples.getOutput(1)};
    for (std::size_t w = 0; w < 2; ++w)
    {
        const double deviation = std::sqrt(samples.calcOutputVariance(w));
        for (double& value : outputs[w])
            value = (value - samples.getOutput(w)[0]) / deviation;
    }
    return {{samples.getInput(0), samples.getInput(1)}, outputs};
}

/// Of what each model gives, refitted without its folds.
TEST(TrialScoreTest, LogarithmsComeBackByTheModelsOfTheOtherFolds)
{
    const SampleSet samples = smallSamples(60);
    std::vector<std::vector<std::size_t>> groups(5);
    const std::vector<std::size_t> folds = fenn::analysis::assignFolds(60, 5, 1);
    for (std::size_t i = 0; i < folds.size(); ++i)
        groups[folds[i]].push_back(i);
    fenn::analysis::OutputUnits units;
    units.areLogarithms = true;
    for (const int driftOrder : {0, 1})
    {
        const ModelSettings settings{-1.0, {}, driftOrder, 0.5, 0.1, 0};
        LeftOutEstimates leftOut;
        leftOut.estimates = fenn::test::refitWithoutGroups(samples, settings, groups);
        for (std::size_t w = 0; w < 2; ++w)
        {
            leftOut.truths.push_back(samples.getOutput(w));
            leftOut.sills.push_back(fenn::analysis::estimateSills(samples, settings)[w].value);
        }
        for (const Objective objective : {Objective::Rmse, Objective::Mae, Objective::Crps})
        {
            const TrialScorer scorer(samples, objective, 5, 1, 1, {}, units);
            const double expected = scoreOf(leftOut, samples, objective, units);

            EXPECT_NEAR(scorer.crossValidate(settings).value, expected, 1e-9 * expected);
            EXPECT_EQ(scorer.assessByCrossValidation(settings).score, scorer.crossValidate(settings).value);
        }
    }
}

TEST(TrialScoreTest, LocalModelsHandOutWhatLogarithmsNeed)
{
    fenn::analysis::OutputUnits units;
    units.areLogarithms = true;
    const ModelSettings local{-1.0, {}, 1, 0.5, 0.1, 12};
    for (const std::size_t numSamples : {60U, 1200U})
    {
        const SampleSet samples = smallSamples(numSamples);
        const TrialScorer scorer(samples, Objective::Rmse, 5, 1, 1, {}, units);

        const Assessment assessment = scorer.assessByCrossValidation(local);

        EXPECT_TRUE(assessment.failure.empty()) << assessment.failure;
        EXPECT_NE(assessment.score, scorerOf(samples, Objective::Rmse).crossValidate(local).value);
        EXPECT_GT(assessment.statistics[0].r2, 0.5);
    }
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
    leftOut.estimates = estimator.estimate(fenn::analysis::assignFolds(40, 5, 1), 5, {true, true});
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

/// A repeat in another fold would give the sample's own value away: errors of hardly more than the nugget's.
TEST(TrialScoreTest, SamplesAreNotEstimatedFromTheirRepeats)
{
    const std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 40, 0.0, 1.0, 3);
    const SampleSet samples(inputs, {fenn::test::normalNumbers(40, 4)}); // noise: nothing tells of a neighbour
    std::vector<std::size_t> twice;
    for (std::size_t i = 0; i < 80; ++i)
        twice.push_back(i % 40);
    const ModelSettings settings{-1.0, {}, 0, 0.1, 0.01, 0};
    const SampleSet repeated = samples.subset(twice);

    for (const int numNearest : {0, 20})
    {
        ModelSettings tried = settings;
        tried.numNearestPoints = numNearest;
        EXPECT_GT(scorerOf(repeated, Objective::Rmse).crossValidate(tried).value, 0.9) << numNearest;
    }
}

TEST(TrialScoreTest, TooManyFoldsAreRefused)
{
    const SampleSet samples = smoothSamples(4, 3);

    EXPECT_THROW(scorerOf(samples, Objective::Rmse), std::invalid_argument);
}

} // namespace
