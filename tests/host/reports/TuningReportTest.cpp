#include "host/reports/TuningReport.h"

#include <limits>
#include <sstream>

#include <gmock/gmock.h>

using fenn::analysis::Objective;
using fenn::analysis::Trial;
using fenn::analysis::TuningResult;
using fenn::estimation::ModelSettings;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace
{

Trial trialOf(int driftOrder, double score)
{
    Trial trial;
    trial.settings.driftOrder = driftOrder;
    trial.score = score;
    trial.penalisedScore = score;
    return trial;
}

/// A start, and a winner that does better; nothing held out.
TuningResult twoTrials()
{
    TuningResult result;
    result.trials = {trialOf(0, 0.5), trialOf(1, 0.25)};
    result.winner = 1;
    return result;
}

std::string printed(const TuningResult& result, Objective objective = Objective::Rmse)
{
    std::ostringstream out;
    krige::printTuning(out, result, {"z"}, objective);
    return out.str();
}

} // namespace

TEST(TuningReportTest, SettingsReadAsACommandLineHasThem)
{
    ModelSettings settings;
    settings.driftOrder = 1;
    settings.rangeFraction = 0.1 + 0.2;
    EXPECT_EQ(krige::optionsFor(settings), "--drift 1 --range 0.30000000000000004 --nugget 0");

    settings.numNearestPoints = 16;
    settings.scaleFactors = {1.0, -2.0};
    settings.duplicateTolerance = 0.0;
    EXPECT_THAT(krige::optionsFor(settings), EndsWith(" --nugget 0 --nearest 16 --scale 1,-2 --duplicate-tolerance 0"));
}

TEST(TuningReportTest, AStarMarksEachTrialThatIsTheBestSoFar)
{
    std::ostringstream out;
    krige::TrialTable table(out);
    table.add(trialOf(0, 0.5));
    table.add(trialOf(1, 0.75));
    table.add(trialOf(2, 0.25));

    EXPECT_THAT(out.str(), HasSubstr("    1      0        1        0      all   0.50000*  automatic\n"
                                     "    2      1        1        0      all   0.75000   automatic\n"
                                     "    3      2        1        0      all   0.25000*  automatic\n"));
}

TEST(TuningReportTest, ATrialThatScoresWorseThanTheStartIsNeverTheBest)
{
    std::ostringstream out;
    krige::TrialTable table(out);
    table.add(trialOf(0, 0.5));
    Trial usual = trialOf(1, 0.6);
    usual.penalisedScore = 0.1;
    table.add(usual);

    EXPECT_THAT(out.str(), HasSubstr("  0.60000   automatic\n"));
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

    EXPECT_EQ(krige::csvOfTrials(result),
              "trial,drift,range,nugget,nearest,scale,score,penalised_score,winner,failure\n"
              "1,0,1,0,0,\"\",0.5,0.5,0,\"\"\n"
              "2,1,1,0,8,\"1,2\",0.25,0.25,1,\"\"\n");
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
}

TEST(TuningReportTest, AModelThatFailsAtTheHeldOutSamplesSaysSo)
{
    TuningResult result = twoTrials();
    result.heldOutSamples = {3};
    result.startHeldOut.failure = "Singular matrix";
    result.winnerHeldOut.statistics.resize(1);

    EXPECT_THAT(printed(result), HasSubstr("\nstart fails at the held-out samples: Singular matrix\n"));
}
