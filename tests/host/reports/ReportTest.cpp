#include "host/reports/Report.h"

#include <sstream>

#include <gmock/gmock.h>

using fenn::estimation::ModelSettings;
using krige::Report;
using krige::SampleModel;
using krige::SampleTable;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

namespace
{

/// Seven samples: three at (0, 0), two at (1, 1), one each at (0, 1) and (1, 0).
SampleTable samplesWithDuplicates()
{
    SampleTable samples{
        "s.csv", {"x", "y"}, {"z"}, {{0, 0, 0, 1, 1, 0, 1}, {0, 0, 0, 1, 1, 1, 0}}, {{1, 2, 3, 4, 5, 6, 7}}};
    samples.lines = {2, 3, 4, 5, 6, 7, 8};
    return samples;
}

std::string saidOfModel(const SampleTable& samples, const ModelSettings& settings)
{
    std::ostringstream stream;
    Report report(stream);
    report.modelBuilt(SampleModel(samples, settings), samples, settings);
    return stream.str();
}

} // namespace

TEST(ReportTest, SamplesAreCountedWithTheirVariables)
{
    std::ostringstream stream;
    Report(stream).samplesRead(samplesWithDuplicates());

    EXPECT_EQ(stream.str(), "samples: 7 samples read from s.csv, 2 inputs, 1 output\n");
}

TEST(ReportTest, SkippedRowsAreCountedAmongAll)
{
    SampleTable samples = samplesWithDuplicates();
    samples.numSkipped = 3;
    std::ostringstream stream;
    Report(stream).samplesRead(samples);

    EXPECT_THAT(stream.str(), HasSubstr("\nskipped: 3 of 10 rows of s.csv, with a missing value\n"));
}

TEST(ReportTest, MergedSamplesAreCountedWithTheirPoints)
{
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;

    EXPECT_THAT(saidOfModel(samplesWithDuplicates(), settings),
                StartsWith("merged: 5 samples into 2 averaged points\nstrategy: global over 4 points\n"));
}

TEST(ReportTest, ALocalModelSaysOfHowManyPointsItTakesTheNearest)
{
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;
    settings.numNearestPoints = 3;

    EXPECT_THAT(saidOfModel(samplesWithDuplicates(), settings),
                HasSubstr("strategy: local over the 3 nearest of 4 points\n"));
}

TEST(ReportTest, WithoutAToleranceNothingIsMerged)
{
    ModelSettings settings;
    settings.nugget = 0.1;

    EXPECT_THAT(saidOfModel(samplesWithDuplicates(), settings),
                StartsWith("merged: none, for --duplicates merge is not given\n"));
}

TEST(ReportTest, CoincidentSamplesGiveAWarningUnlessMergedOrReplicatesByANugget)
{
    const SampleTable samples{"s.csv", {"x"}, {"z"}, {{0, 1, 2, 2}}, {{1, 2, 3, 3}}};
    ModelSettings local; // of two points, a target away from the last two is never near both
    local.numNearestPoints = 2;
    ModelSettings merging = local;
    merging.duplicateTolerance = 0.0;
    ModelSettings smoothing = local;
    smoothing.nugget = 0.1;

    EXPECT_THAT(saidOfModel(samples, local),
                HasSubstr("warning: 2 of 4 samples coincide; --duplicates keep goes on, but estimates mean little "
                          "then\n"));
    EXPECT_THAT(saidOfModel(samples, merging), Not(HasSubstr("coincide")));
    EXPECT_THAT(saidOfModel(samples, smoothing),
                HasSubstr("note: 2 of 4 samples coincide and are taken as repeated measurements, for there is a "
                          "nugget\n"));
}

TEST(ReportTest, TooFewPointsForTheDriftGiveAHint)
{
    const SampleTable samples{"s.csv", {"x"}, {"z"}, {{0, 1, 3, 7}}, {{1, 2, 3, 4}}};
    ModelSettings settings;
    settings.driftOrder = 2;
    settings.numNearestPoints = 2;

    EXPECT_THAT(saidOfModel(samples, settings), HasSubstr("hint: --nearest 2 is too few for --drift 2 in 1 input"));
}

TEST(ReportTest, TheEngineIsNamedInItsOwnWords)
{
    fenn::estimation::EngineReport engine;
    engine.sentence = "exact: asked for";
    std::ostringstream stream;
    Report(stream).answered(engine);

    EXPECT_EQ(stream.str(), "engine: exact: asked for\n");
}

TEST(ReportTest, TheTimeIsThatOfThreeSteps)
{
    std::ostringstream stream;
    Report(stream).finished(12, 0, 0.25);

    EXPECT_THAT(
        stream.str(),
        MatchesRegex("time: [0-9.]+ s \\(reading 0\\.000 s, building the model 0\\.000 s, estimating 12 targets "
                     "[0-9.]+ s, of which 0\\.250 s in the library\\)\n"));
}

TEST(ReportTest, TargetsWithoutACoordinateAreCounted)
{
    std::ostringstream stream;
    Report(stream).finished(12, 1);

    EXPECT_THAT(stream.str(), StartsWith("missing: 1 of 12 targets lacks a coordinate: nan is given there\n"));
}

TEST(ReportTest, TheConditionOfAGlobalSystemIsPartOfTheReport)
{
    const SampleTable apart{"s.csv", {"x"}, {"z"}, {{0, 1, 2, 3}}, {{1, 2, 3, 3}}};
    const SampleTable together{"s.csv", {"x"}, {"z"}, {{0, 1, 2, 2}}, {{1, 2, 3, 4}}};
    ModelSettings local;
    local.numNearestPoints = 2;

    EXPECT_THAT(saidOfModel(apart, {}), HasSubstr("\ncondition: 0."));
    EXPECT_THAT(saidOfModel(apart, {}), Not(HasSubstr("warning")));
    EXPECT_THAT(saidOfModel(together, {}), HasSubstr("\nwarning: the system has no solution that can be relied upon"));
    EXPECT_THAT(saidOfModel(apart, local), Not(HasSubstr("condition")));
}
