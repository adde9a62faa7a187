#include "analysis/Tuning.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "analysis/CrossValidation.h"
#include "analysis/Folds.h"
#include "analysis/Likelihood.h"
#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "tests/analysis/Refits.h"
#include "tests/analysis/SimulatedField.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::Objective;
using fenn::analysis::SearchSpace;
using fenn::analysis::Trial;
using fenn::analysis::tune;
using fenn::analysis::TuningOptions;
using fenn::analysis::TuningResult;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::smoothSamples;

TuningOptions quickOptions(Objective objective = Objective::Rmse, std::uint64_t seed = 1)
{
    TuningOptions options;
    options.objective = objective;
    options.heldOutFraction = 0.2;
    options.numFolds = 5;
    options.numRepeats = 2;
    options.seed = seed;
    options.maxTrials = 60;
    return options;
}

TEST(TuningTest, TheWinnerIsNeverWorseThanTheStartOnItsFolds)
{
    for (const Objective objective : {Objective::Rmse, Objective::Mae, Objective::Crps})
    {
        for (std::uint64_t seed = 1; seed <= 4; ++seed)
        {
            SCOPED_TRACE(seed);
            const TuningResult result = tune(smoothSamples(50, seed), {}, SearchSpace(), quickOptions(objective, seed));

            ASSERT_LE(result.trials.size(), 60U);
            EXPECT_TRUE(result.trials[0].settings == ModelSettings());
            EXPECT_LE(result.trials[result.winner].penalisedCriterion, result.trials[0].penalisedCriterion);
            EXPECT_EQ(result.winnerCrossValidated.score, result.trials[result.winner].score);
            EXPECT_TRUE(result.trials[result.winner].failure.empty());
        }
    }
}

TEST(TuningTest, WithinADriftOrderTheLowestScoreWinsWhereNoScalesAreChosen)
{
    // A field of nugget 0.8 that a penalty on unusual nuggets once kept from its settings.
    const SampleSet samples = fenn::test::simulatedField(fenn::test::randomValues(2, 80, 0.0, 1.0, 5),
                                                         {-1.0, {}, 0, 0.4, 0.8, 0}, 2.0, 10.0, 6);
    SearchSpace space;
    space.driftOrders = {0};
    space.maxAnisotropy = 1.0;
    for (const Objective objective : {Objective::Likelihood, Objective::Rmse, Objective::Mae, Objective::Crps})
    {
        const TuningResult result = tune(samples, {}, space, quickOptions(objective));

        for (const Trial& trial : result.trials)
            EXPECT_GE(trial.criterion, result.trials[result.winner].criterion);
    }
}

TEST(TuningTest, TheLikelihoodFindsANuggetAndARangeNearTheTrueOnes)
{
    const ModelSettings truth{-1.0, {}, 0, 0.3, 0.5, 0};
    const SampleSet samples =
        fenn::test::simulatedField(fenn::test::randomValues(2, 300, 0.0, 1.0, 5), truth, 2.0, 10.0, 7);
    SearchSpace space;
    space.maxAnisotropy = 1.0;
    TuningOptions options = quickOptions(Objective::Likelihood);
    options.heldOutFraction = 0.0;
    options.maxTrials = 200;

    const TuningResult result = tune(samples, {}, space, options);

    const Trial& winner = result.trials[result.winner];
    EXPECT_NEAR(winner.settings.nugget, 0.5, 0.15);
    EXPECT_NEAR(std::log2(winner.settings.rangeFraction), std::log2(0.3), 0.7);
    EXPECT_EQ(winner.settings.driftOrder, 0);
    EXPECT_TRUE(winner.hasDeviance);
    EXPECT_EQ(winner.criterion, fenn::analysis::calcRestrictedLikelihood(samples, winner.settings).calcSum());
}

TEST(TuningTest, ADriftOrderWinsByCrossValidationAndNotByItsLowerDeviance)
{
    const SampleSet samples = fenn::test::simulatedField(fenn::test::randomValues(2, 100, 0.0, 1.0, 8),
                                                         {-1.0, {}, 0, 0.3, 0.2, 0}, 1.0, 0.0, 9);
    TuningOptions options = quickOptions(Objective::Likelihood);
    options.maxTrials = 200;

    const TuningResult result = tune(samples, {}, SearchSpace(), options);

    double lowest[3] = {INFINITY, INFINITY, INFINITY};
    for (const Trial& trial : result.trials)
    {
        double& ofOrder = lowest[trial.settings.driftOrder];
        ofOrder = trial.hasDeviance ? std::min(ofOrder, trial.criterion) : ofOrder;
    }
    EXPECT_LT(lowest[1], lowest[0]);
    EXPECT_LT(lowest[2], lowest[1]);
    EXPECT_EQ(result.trials[result.winner].settings.driftOrder, 0);
}

TEST(TuningTest, ATrendThatSamplesShowIsFound)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 60, 0.0, 1.0, 3);
    std::vector<double> values = fenn::test::normalNumbers(60, 4);
    for (std::size_t i = 0; i < 60; ++i)
        values[i] += 20.0 * inputs[0][i];
    TuningOptions options = quickOptions(Objective::Likelihood);
    options.maxTrials = 200;

    const TuningResult result = tune(SampleSet(inputs, {values}), {}, SearchSpace(), options);

    EXPECT_EQ(result.trials[result.winner].settings.driftOrder, 1);
}

TEST(TuningTest, ScalesAreChosenWhereTheFieldHasThem)
{
    const SampleSet samples = fenn::test::simulatedField(fenn::test::randomValues(2, 200, 0.0, 1.0, 5),
                                                         {-1.0, {1.0, 5.0}, 0, 0.5, 0.05, 0}, 1.0, 0.0, 7);
    TuningOptions options = quickOptions(Objective::Likelihood);
    options.maxTrials = 300;

    const TuningResult result = tune(samples, {}, SearchSpace(), options);

    const std::vector<double>& factors = result.trials[result.winner].settings.scaleFactors;
    ASSERT_EQ(factors.size(), 2U);
    EXPECT_NEAR(std::log2(factors[1] / factors[0]), std::log2(5.0), 0.7);
}

TEST(TuningTest, EqualScalesAreAlwaysTriedUnlessScalesAreKept)
{
    const SampleSet samples(
        {fenn::test::randomValues(1, 40, 0.0, 1.0, 5)[0], fenn::test::randomValues(1, 40, 0.0, 1e6, 6)[0]},
        {fenn::test::normalNumbers(40, 7)});
    const auto triesEqualScales = [&](const SearchSpace& space)
    {
        const TuningResult result = tune(samples, {}, space, quickOptions());
        return std::any_of(result.trials.begin(), result.trials.end(),
                           [](const Trial& trial) {
                               return trial.settings.scaleFactors == std::vector<double>{1.0, 1.0};
                           });
    };
    SearchSpace kept;
    kept.maxAnisotropy = 1.0;

    EXPECT_TRUE(triesEqualScales(SearchSpace()));
    EXPECT_FALSE(triesEqualScales(kept));
}

TEST(TuningTest, EqualScalesAreFirstTriedWithTheRangeOfTheBestSoFar)
{
    const SampleSet samples = smoothSamples(60, 12);
    const TuningResult result = tune(samples, {}, SearchSpace(), quickOptions(Objective::Likelihood));
    const auto isEqual = [](const Trial& trial)
    {
        return trial.settings.scaleFactors == std::vector<double>{1.0, 1.0};
    };
    const auto first = std::find_if(result.trials.begin(), result.trials.end(), isEqual);

    ASSERT_NE(first, result.trials.end());
    const auto best =
        std::min_element(result.trials.begin(), first,
                         [](const Trial& a, const Trial& b) { return a.penalisedCriterion < b.penalisedCriterion; });
    EXPECT_EQ(first->settings.rangeFraction, best->settings.rangeFraction);
    EXPECT_EQ(first->settings.nugget, best->settings.nugget);
}

TEST(TuningTest, ARatioOfScalesThatWasChosenHasToGainAsMuchAsItCosts)
{
    const SampleSet samples(
        {fenn::test::randomValues(1, 60, 0.0, 1.0, 5)[0], fenn::test::randomValues(1, 60, 0.0, 1e6, 6)[0]},
        {fenn::test::normalNumbers(60, 7)});
    SearchSpace space;
    TuningOptions options = quickOptions(Objective::Likelihood);
    options.heldOutFraction = 0.0;
    options.maxTrials = 200;

    std::size_t numChosen = 0;
    for (const Trial& trial : tune(samples, {}, space, options).trials)
    {
        const std::vector<double>& factors = trial.settings.scaleFactors;
        const bool isChosen = !factors.empty() && factors[0] != factors[1];
        numChosen += isChosen ? 1 : 0;
        if (trial.hasDeviance)
        {
            EXPECT_EQ(trial.penalisedCriterion, trial.criterion + (isChosen ? std::log(60.0) : 0.0));
        }
    }
    EXPECT_GT(numChosen, 0U);
}

TEST(TuningTest, AStartThatBeatsAllOthersStaysTheWinner)
{
    // A plane that a linear drift reproduces: nothing else comes near.
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 40, 0.0, 1.0, 3);
    std::vector<double> plane;
    for (std::size_t i = 0; i < 40; ++i)
        plane.push_back(inputs[0][i] + 2.0 * inputs[1][i]);
    const ModelSettings start{-1.0, {}, 1, 1.0, 0.0, 0};
    SearchSpace withoutDrift;
    withoutDrift.driftOrders = {0};

    const TuningResult result = tune(SampleSet(inputs, {plane}), start, withoutDrift, quickOptions());

    EXPECT_EQ(result.trials[result.winner].settings.driftOrder, 1);
    EXPECT_LE(result.trials[result.winner].score, result.trials[0].score);
}

TEST(TuningTest, EqualArgumentsGiveEqualTrialsAndAnotherSeedOtherOnes)
{
    const SampleSet samples = smoothSamples(40, 2);
    const TuningResult once = tune(samples, {}, SearchSpace(), quickOptions());
    const TuningResult again = tune(samples, {}, SearchSpace(), quickOptions());
    const TuningResult other = tune(samples, {}, SearchSpace(), quickOptions(Objective::Rmse, 2));

    ASSERT_EQ(again.trials.size(), once.trials.size());
    for (std::size_t k = 0; k < once.trials.size(); ++k)
    {
        EXPECT_TRUE(again.trials[k].settings == once.trials[k].settings);
        EXPECT_EQ(again.trials[k].criterion, once.trials[k].criterion);
    }
    EXPECT_EQ(again.winner, once.winner);
    EXPECT_NE(other.trials[0].score, once.trials[0].score);
    EXPECT_NE(other.heldOutSamples, once.heldOutSamples);
}

TEST(TuningTest, NoSettingsAreTriedTwiceOrOutsideTheSpace)
{
    SearchSpace space;
    space.driftOrders = {0, 1};
    space.numNearestPoints = {0, 10};
    space.minRangeFraction = 0.2;
    space.maxRangeFraction = 1.5;
    space.maxNugget = 0.2;
    space.maxAnisotropy = 2.0;

    const TuningResult result = tune(smoothSamples(40, 6), {}, space, quickOptions());

    for (std::size_t k = 0; k < result.trials.size(); ++k)
    {
        const ModelSettings& settings = result.trials[k].settings;
        EXPECT_GE(settings.rangeFraction, 0.2);
        EXPECT_LE(settings.rangeFraction, 1.5);
        EXPECT_LE(settings.nugget, 0.2);
        EXPECT_LE(settings.driftOrder, 1);
        for (std::size_t j = 0; j < k; ++j)
            EXPECT_FALSE(settings == result.trials[j].settings);
    }
}

TEST(TuningTest, HeldOutSamplesScoreWinnerAndStartByTheModelsOfTheOthers)
{
    const SampleSet samples = smoothSamples(50, 4);

    const TuningResult result = tune(samples, {}, SearchSpace(), quickOptions());

    ASSERT_EQ(result.heldOutSamples.size(), 10U);
    EXPECT_TRUE(std::is_sorted(result.heldOutSamples.begin(), result.heldOutSamples.end()));
    std::vector<std::size_t> others;
    for (std::size_t i = 0; i < 50; ++i)
    {
        if (!std::binary_search(result.heldOutSamples.begin(), result.heldOutSamples.end(), i))
            others.push_back(i);
    }
    const SampleSet remaining = samples.subset(others);
    const SampleSet heldOut = samples.subset(result.heldOutSamples);
    const auto estimator = fenn::estimation::chooseEstimator(remaining, {});
    const std::vector<double> estimates = fenn::estimation::estimateAt(*estimator, heldOut).values[0];
    double sumSquared = 0.0;
    for (std::size_t k = 0; k < 10; ++k)
        sumSquared += (estimates[k] - heldOut.getOutput(0)[k]) * (estimates[k] - heldOut.getOutput(0)[k]);
    ASSERT_EQ(result.startHeldOut.statistics.size(), 2U);
    EXPECT_DOUBLE_EQ(result.startHeldOut.statistics[0].rmse, std::sqrt(sumSquared / 10.0));
    EXPECT_EQ(result.winnerHeldOut.statistics[1].numCompared, 10U);
    const double scaledSum = result.winnerHeldOut.statistics[0].rmse / std::sqrt(remaining.calcOutputVariance(0)) +
                             result.winnerHeldOut.statistics[1].rmse / std::sqrt(remaining.calcOutputVariance(1));
    EXPECT_DOUBLE_EQ(result.winnerHeldOut.score, scaledSum / 2.0);
}

/// Each sample three times, the repeats far from it in the list.
SampleSet threeOfEach(const SampleSet& samples)
{
    std::vector<std::size_t> indices;
    for (std::size_t repeat = 0; repeat < 3; ++repeat)
    {
        for (std::size_t i = 0; i < samples.getNumSamples(); ++i)
            indices.push_back(i);
    }
    return samples.subset(indices);
}

TEST(TuningTest, SamplesOfOnePlaceAreHeldOutTogether)
{
    const SampleSet samples = threeOfEach(smoothSamples(40, 4));
    TuningOptions options = quickOptions();
    options.maxTrials = 1;

    const TuningResult result = tune(samples, {-1.0, {}, 0, 1.0, 0.1, 0}, SearchSpace(), options);

    ASSERT_EQ(result.heldOutSamples.size(), 24U); // a fifth of 40 places
    for (const std::size_t i : result.heldOutSamples)
        EXPECT_EQ(std::count_if(result.heldOutSamples.begin(), result.heldOutSamples.end(),
                                [&](std::size_t j) { return j % 40 == i % 40; }),
                  3);
}

TEST(TuningTest, FewPlacesWithManySamplesAreHeldOutNoMoreThanAsked)
{
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < 90; ++i)
        indices.push_back(i % 3);
    const SampleSet samples = smoothSamples(40, 4).subset(indices);
    TuningOptions options = quickOptions();
    options.maxTrials = 1;
    const ModelSettings start{-1.0, {}, 0, 1.0, 0.1, 0};

    EXPECT_TRUE(tune(samples, start, SearchSpace(), options).heldOutSamples.empty()); // a place is a third
    options.heldOutFraction = 0.9;
    EXPECT_EQ(tune(samples, start, SearchSpace(), options).heldOutSamples.size(), 30U); // two places are left
}

TEST(TuningTest, ASinglePlaceIsRefused)
{
    const SampleSet samples({{1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}}, {{1.0, 2.0, 3.0}});

    EXPECT_THROW(tune(samples, {-1.0, {}, 0, 1.0, 0.1, 0}, SearchSpace(), quickOptions()), std::invalid_argument);
}

TEST(TuningTest, WithoutHeldOutSamplesAllAreSearchedOn)
{
    TuningOptions options = quickOptions();
    options.heldOutFraction = 0.0;
    options.numRepeats = 1;
    options.maxTrials = 1;
    const SampleSet samples = smoothSamples(30, 4);

    const TuningResult result = tune(samples, {}, SearchSpace(), options);

    EXPECT_TRUE(result.heldOutSamples.empty());
    EXPECT_TRUE(result.winnerHeldOut.statistics.empty());
    // The scored quantity: folds left out of the model of all samples, normalisers and range being those of all.
    std::vector<std::vector<std::size_t>> groups(5);
    const std::vector<std::size_t> folds = fenn::analysis::assignFolds(30, 5, 1);
    for (std::size_t i = 0; i < folds.size(); ++i)
        groups[folds[i]].push_back(i);
    const auto estimates = fenn::test::refitWithoutGroups(samples, {}, groups);
    double expected = 0.0;
    for (std::size_t w = 0; w < 2; ++w)
        expected += fenn::analysis::calcErrorStatistics(samples.getOutput(w), estimates.values[w], {}, 1.0).rmse /
                    std::sqrt(samples.calcOutputVariance(w));
    ASSERT_EQ(result.trials.size(), 1U);
    EXPECT_NEAR(result.trials[0].score, expected / 2.0, 1e-12);
}

TEST(TuningTest, LocalTrialsAreScoredByModelsOfTheOtherFolds)
{
    TuningOptions options = quickOptions();
    options.heldOutFraction = 0.0;
    options.numRepeats = 1;
    options.maxTrials = 1;
    const SampleSet samples = smoothSamples(60, 4);
    const ModelSettings local{-1.0, {}, 0, 1.0, 0.0, 12};

    const double score = tune(samples, local, SearchSpace(), options).trials[0].score;

    const auto estimates = fenn::analysis::crossValidate(samples, local, 5, 1);
    double expected = 0.0;
    for (std::size_t w = 0; w < 2; ++w)
        expected += fenn::analysis::calcErrorStatistics(samples.getOutput(w), estimates.values[w], {}, 1.0).rmse /
                    std::sqrt(samples.calcOutputVariance(w));
    EXPECT_DOUBLE_EQ(score, expected / 2.0);
}

TEST(TuningTest, FewSamplesAreValidatedUpToThreeTimesUnlessSaid)
{
    const SearchSpace space;
    const auto firstScore = [&](std::size_t numSamples, std::size_t numRepeats)
    {
        TuningOptions options = quickOptions();
        options.heldOutFraction = 0.0;
        options.maxTrials = 1;
        options.numRepeats = numRepeats;
        return tune(smoothSamples(numSamples, 8), {}, space, options).trials[0].score;
    };

    EXPECT_EQ(firstScore(40, 0), firstScore(40, 3));
    EXPECT_NE(firstScore(40, 0), firstScore(40, 2));
    EXPECT_EQ(firstScore(150, 0), firstScore(150, 2));
    EXPECT_EQ(firstScore(300, 0), firstScore(300, 1));
}

TEST(TuningTest, FailingTrialsAreRecordedWithTheirMessageAndNeverWin)
{
    SearchSpace space;
    space.driftOrders = {4, 0}; // 14 terms, 12 to 13 samples a fold
    TuningOptions options = quickOptions();
    options.heldOutFraction = 0.0;

    const TuningResult result = tune(smoothSamples(16, 4), {}, space, options);

    const auto failing = std::find_if(result.trials.begin(), result.trials.end(),
                                      [](const Trial& trial) { return trial.settings.driftOrder == 4; });
    ASSERT_NE(failing, result.trials.end());
    EXPECT_EQ(failing->failure, "Not enough source points to calculate drift.");
    EXPECT_TRUE(std::isinf(failing->criterion));
    EXPECT_EQ(result.trials[result.winner].settings.driftOrder, 0);
}

TEST(TuningTest, AStartThatFailsIsBeatenByAnythingThatDoesNot)
{
    const TuningResult result = tune(smoothSamples(16, 4), {-1.0, {}, 4, 1.0, 0.0, 0}, SearchSpace(), quickOptions());

    EXPECT_FALSE(result.trials[0].failure.empty());
    EXPECT_TRUE(result.trials[result.winner].failure.empty());
    EXPECT_EQ(result.startHeldOut.failure, "Not enough source points to calculate drift.");
}

TEST(TuningTest, TheCallbackSeesEveryTrialAndMayEndTheSearch)
{
    std::size_t numSeen = 0;
    const auto untilTheFifth = [&](const Trial&, std::size_t numDone, std::size_t maxTrials)
    {
        ++numSeen;
        EXPECT_EQ(numDone, numSeen);
        EXPECT_EQ(maxTrials, 60U);
        return numDone < 5;
    };

    const TuningResult result = tune(smoothSamples(30, 4), {}, SearchSpace(), quickOptions(), untilTheFifth);

    EXPECT_TRUE(result.wasCancelled);
    EXPECT_EQ(result.trials.size(), 5U);
    EXPECT_TRUE(result.winnerHeldOut.statistics.empty());
    EXPECT_TRUE(result.winnerCrossValidated.statistics.empty());
}

TEST(TuningTest, ManySamplesAreNeverTakenAllAtOnce)
{
    const SampleSet samples = smoothSamples(1500, 4);
    const SearchSpace space = fenn::analysis::defaultSearchSpace(samples);
    TuningOptions options = quickOptions(Objective::Likelihood);
    options.heldOutFraction = 0.0;
    options.maxTrials = 12;

    const TuningResult result = tune(samples, {}, space, options);

    for (const Trial& trial : result.trials)
    {
        EXPECT_GT(trial.settings.numNearestPoints, 0);
        EXPECT_FALSE(trial.hasDeviance);
    }
    EXPECT_EQ(result.winnerCrossValidated.statistics[0].numCompared, fenn::analysis::TrialScorer::maxLeftOut);
    const ModelSettings global;
    EXPECT_EQ(startWithin(space, global, 1500).numNearestPoints, 16);
    EXPECT_EQ(startWithin(SearchSpace(), global, 1500).numNearestPoints, 0);
    EXPECT_EQ(startWithin(space, {-1.0, {}, 0, 1.0, 0.0, 7}, 1500).numNearestPoints, 7);
}

TEST(TuningTest, ImpossibleOptionsAreRefusedBeforeTheFirstTrial)
{
    const SampleSet samples = smoothSamples(20, 4);
    TuningOptions allHeldOut = quickOptions();
    allHeldOut.heldOutFraction = 1.0;
    TuningOptions tooManyFolds = quickOptions();
    tooManyFolds.numFolds = 17; // 16 samples are left
    TuningOptions noTrials = quickOptions();
    noTrials.maxTrials = 0;
    const auto neverCalled = [](const Trial&, std::size_t, std::size_t)
    {
        ADD_FAILURE() << "a trial was made";
        return false;
    };

    for (const TuningOptions& options : {allHeldOut, tooManyFolds, noTrials})
        EXPECT_THROW(tune(samples, {}, SearchSpace(), options, neverCalled), std::invalid_argument);
    EXPECT_THROW(tune(samples, {-1.0, {}, 0, -1.0, 0.0, 0}, SearchSpace(), quickOptions(), neverCalled),
                 std::invalid_argument);
}

} // namespace
