#include "host/reports/TuningReport.h"

#include <limits>
#include <sstream>

#include <gmock/gmock.h>

using fenn::analysis::Objective;
using fenn::analysis::Trial;
using fenn::analysis::TuningResult;
using krige::Settings;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

Trial trialOf(int driftOrder, double score)
{
    Trial trial;
    trial.settings.driftOrder = driftOrder;
    trial.criterion = score;
    trial.score = score;
    return trial;
}

/// A start, and a winner that does better; nothing held out.
TuningResult twoTrials()
{
    TuningResult result;
    result.trials = {trialOf(0, 0.5), trialOf(1, 0.25)};
    result.winner = 1;
    result.startCrossValidated.score = 0.5;
    result.winnerCrossValidated.score = 0.25;
    return result;
}

std::string printed(const TuningResult& result, Objective objective = Objective::Rmse)
{
    std::ostringstream out;
    Settings winner = Settings().withModel(result.trials[result.winner].settings);
    krige::printTuning(out, result, winner, {"z"}, objective);
    return out.str();
}

} // namespace

TEST(TuningReportTest, SettingsReadAsACommandLineHasThem)
{
    Settings settings;
    settings.driftOrder = 1;
    settings.rangeFraction = 0.1 + 0.2;
    EXPECT_EQ(krige::optionsFor(settings), "--drift 1 --range 0.30000000000000004 --nugget 0");

    settings.numNearestPoints = 16;
    settings.scaleFactors = {1.0, -2.0};
    settings.duplicateTolerance = 0.0;
    EXPECT_THAT(krige::optionsFor(settings), EndsWith(" --nugget 0 --nearest 16 --scale 1,-2 --duplicate-tolerance 0"));

    settings.sills = {{krige::SillChoice::Rule::Given, 12.5}, {krige::SillChoice::Rule::Automatic, 0.0}};
    EXPECT_THAT(krige::optionsFor(settings), EndsWith(" --sill 12.5,auto"));

    settings.anisotropy.emplace(2.5, 30.0);
    EXPECT_THAT(krige::optionsFor(settings), HasSubstr(" --nearest 16 --anisotropy 2.5,30 --duplicate-tolerance 0"));

    settings.units.areLogarithms = true;
    settings.units.limits.lower = 0.5;
    EXPECT_THAT(krige::optionsFor(settings), EndsWith(" --sill 12.5,auto --transform log --clamp 0.5:"));

    settings.duplicateTolerance = -1.0;
    settings.keepsDuplicates = true;
    EXPECT_THAT(krige::optionsFor(settings), HasSubstr(" --anisotropy 2.5,30 --duplicates keep --sill "));
}

TEST(TuningReportTest, AStarMarksEachTrialThatIsTheBestSoFar)
{
    std::ostringstream out;
    krige::TrialTable table(out);
    Trial best = trialOf(2, 0.25);
    best.isBestSoFar = true;
    table.add(best);
    table.add(trialOf(1, 0.75));

    EXPECT_THAT(out.str(), HasSubstr("   score   scale\n"
                                     "    1      2        1        0      all      0.25000*  automatic\n"
                                     "    2      1        1        0      all      0.75000   automatic\n"));
}

TEST(TuningReportTest, ADevianceIsCalledOne)
{
    std::ostringstream out;
    Trial trial = trialOf(0, 123.5);
    trial.hasDeviance = true;
    krige::TrialTable(out).add(trial);

    EXPECT_THAT(out.str(), HasSubstr("deviance   scale\n"));
    EXPECT_THAT(out.str(), HasSubstr("  123.50000   automatic\n"));
}

TEST(TuningReportTest, TheSearchIsDescribedBeforeItBegins)
{
    fenn::analysis::SearchSpace space;
    fenn::analysis::TuningOptions options;
    EXPECT_EQ(krige::describeSearch(space, options, 100),
              "likelihood; drift and nearest by CRPS in cross-validation; drift 0, 1 and 2, range 0.05 to 4, nugget 0 "
              "to 0.99, scales, nearest all");

    space.numNearestPoints = {16, 32};
    space.driftOrders = {1};
    space.minNugget = space.maxNugget = 0.1;
    space.maxAnisotropy = 1.0;
    EXPECT_EQ(
        krige::describeSearch(space, options, 5000),
        "CRPS in cross-validation (local models have no likelihood); drift 1, range 0.05 to 4, nugget 0.1, nearest "
        "16 and 32");
    options.objective = Objective::Mae;
    EXPECT_THAT(krige::describeSearch(space, options, 5000), StartsWith("MAE in cross-validation; drift 1"));
}

TEST(TuningReportTest, AFailedTrialSaysWhy)
{
    Trial failed = trialOf(1, std::numeric_limits<double>::infinity());
    failed.failure = "Singular matrix";
    std::ostringstream out;
    krige::TrialTable(out).add(failed);

    EXPECT_THAT(out.str(), EndsWith("inf   automatic  failed: Singular matrix\n"));
}

TEST(TuningReportTest, TheCsvOfTrialsMarksTheWinner)
{
    TuningResult result = twoTrials();
    result.trials[1].settings.scaleFactors = {1.0, 2.0};
    result.trials[1].settings.numNearestPoints = 8;

    result.trials[0].hasDeviance = true;
    result.trials[0].score = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(krige::csvOfTrials(result, false),
              "trial,drift,range,nugget,nearest,scale,deviance,score,winner,failure\n"
              "1,0,1,0,0,\"\",0.5,,0,\"\"\n"
              "2,1,1,0,8,\"1,2\",,0.25,1,\"\"\n");
}

TEST(TuningReportTest, ASearchedAnisotropyIsShown)
{
    TuningResult result = twoTrials();
    result.trials[0].settings.scaleFactors = {1.0, 1.0};
    result.trials[1].settings.scaleFactors = {1.0, 1.0};
    result.trials[1].anisotropy = fenn::analysis::Anisotropy(2.5, 30.5);
    std::ostringstream out;
    krige::TrialTable(out).add(result.trials[1]);
    fenn::analysis::SearchSpace space;
    space.maxAnisotropy = 1.0;
    space.maxRatio = 8.0;

    EXPECT_EQ(krige::csvOfTrials(result, true),
              "trial,drift,range,nugget,nearest,scale,anisotropy,deviance,score,winner,failure\n"
              "1,0,1,0,0,\"1,1\",\"\",,0.5,0,\"\"\n"
              "2,1,1,0,0,\"1,1\",\"2.5,30.5\",,0.25,1,\"\"\n");
    EXPECT_THAT(out.str(), EndsWith("   anisotropy 2.5,30.5\n"));
    EXPECT_THAT(krige::describeSearch(space, {}, 100), HasSubstr(", nugget 0 to 0.99, anisotropy, nearest all"));
}

TEST(TuningReportTest, WithoutHeldOutSamplesOnlyTheCrossValidatedScoresArePrinted)
{
    const std::string text = printed(twoTrials());

    EXPECT_THAT(text, HasSubstr("score   cross-validated\nstart               0.5\nwinner             0.25\n"));
    EXPECT_THAT(text, Not(HasSubstr("held out")));
    EXPECT_THAT(text, EndsWith("\nwinner, trial 2 of 2: --drift 1 --range 1 --nugget 0\n"));
}

TEST(TuningReportTest, HeldOutErrorsArePrintedForStartAndWinner)
{
    TuningResult result = twoTrials();
    result.heldOutSamples = {3, 7};
    result.startHeldOut.score = 0.625;
    result.startHeldOut.statistics.resize(1);
    result.startHeldOut.calibrations.resize(1);
    result.startHeldOut.calibrations[0].coverages = {{0.5, 0.5}, {0.9, 0.75}, {0.95, 0.875}};
    result.startHeldOut.statistics[0].numCompared = 2;
    result.startHeldOut.statistics[0].rmse = 1.5;
    result.winnerHeldOut = result.startHeldOut;
    result.winnerHeldOut.score = 0.375;
    result.winnerHeldOut.statistics[0].rmse = 0.75;
    const std::string text = printed(result, Objective::Mae);

    EXPECT_THAT(text, HasSubstr("score   cross-validated  held out\n"
                                "start               0.5     0.625\n"
                                "winner             0.25     0.375\n"
                                "(score: mean over outputs of MAE / standard deviation; lower is better)\n"));
    EXPECT_THAT(text, HasSubstr("\nz            start       2   1.5"));
    EXPECT_THAT(text, HasSubstr("\nz           winner       2  0.75"));
    EXPECT_THAT(text, HasSubstr("  in 95 %\n"));
    EXPECT_THAT(text, HasSubstr("     87.5\n"));
}

TEST(TuningReportTest, ASearchThatWasCancelledHasABestSoFar)
{
    TuningResult result = twoTrials();
    result.wasCancelled = true;

    EXPECT_EQ(printed(result), "best so far, trial 2 of 2: --drift 1 --range 1 --nugget 0\n");
}

TEST(TuningReportTest, TheScoreOfALikelihoodSearchIsTheCrps)
{
    EXPECT_THAT(printed(twoTrials(), Objective::Likelihood), HasSubstr("(score: mean over outputs of CRPS / "));
}

TEST(TuningReportTest, ATableOfLogarithmsSaysWhatIsInWhichUnits)
{
    const auto printedAsLogarithms = [](Objective objective)
    {
        const TuningResult result = twoTrials();
        Settings winner = Settings().withModel(result.trials[result.winner].settings);
        winner.units.areLogarithms = true;
        std::ostringstream out;
        krige::printTuning(out, result, winner, {"z"}, objective);
        return out.str();
    };

    EXPECT_THAT(printedAsLogarithms(Objective::Rmse),
                HasSubstr("(score: mean over outputs of RMSE / standard deviation, in the data's units; lower is "
                          "better)\n(below, errors are in the data's units; MSSE, CRPS and coverage are of the "
                          "logarithms)\n"));
    EXPECT_THAT(printedAsLogarithms(Objective::Likelihood),
                HasSubstr(" of CRPS / standard deviation, of the logarithms; lower is better)\n"));
    EXPECT_THAT(printed(twoTrials()), Not(HasSubstr("logarithms")));
}

TEST(TuningReportTest, AModelThatFailsAtTheHeldOutSamplesSaysSo)
{
    TuningResult result = twoTrials();
    result.heldOutSamples = {3};
    result.startHeldOut.failure = "Singular matrix";

    EXPECT_THAT(printed(result), HasSubstr("\nstart fails at the held-out samples: Singular matrix\n"));
}
