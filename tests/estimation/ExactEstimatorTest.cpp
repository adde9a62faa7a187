#include "estimation/ExactEstimator.h"

#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::estimation::EngineReport;
using fenn::estimation::ExactEstimator;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::ResultArrays;
using fenn::test::sameBits;
using fenn::test::smoothSamples;

using Columns = std::vector<std::vector<double>>;

/// Estimates of both outputs, then variances where they are wanted.
struct Answers
{
    Columns values;
    std::vector<double> variances;
};

ExactEstimator build(const SampleSet& samples, const ModelSettings& settings, int numThreads = 0,
                     const std::string& reason = "")
{
    return {makeModelParts(samples, settings), settings, numThreads, reason};
}

/// Targets first to first + count - 1 in one request.
Answers ask(const ExactEstimator& estimator, const Columns& targets, std::size_t first, std::size_t count,
            bool wantsVariances)
{
    ResultArrays values(2, count);
    ResultArrays variances(1, count);
    estimator.estimate({{targets[0].data() + first, targets[1].data() + first}, count},
                       {values.arrays(), wantsVariances ? variances.arrays()[0] : nullptr});
    return {{values[0], values[1]}, variances[0]};
}

Answers askAll(const ExactEstimator& estimator, const Columns& targets)
{
    return ask(estimator, targets, 0, targets[0].size(), true);
}

/// As a host asks its model, variances by the model's own controller.
Answers askModel(const SampleSet& samples, const ModelSettings& settings, Columns targets)
{
    KrigingSurrogateModel model(samples.inputArrays(), samples.outputArrays(),
                                static_cast<int>(samples.getNumSamples()), settings.duplicateTolerance,
                                settings.scaleFactors, settings.driftOrder, settings.rangeFraction, settings.nugget,
                                settings.numNearestPoints);
    const std::set<int> both{0, 1};
    model.activateDependentVariables(both);
    const std::size_t numTargets = targets[0].size();
    fenn::test::ValueArrays targetArrays(std::move(targets));
    ResultArrays values(2, numTargets);
    model.interpolateDependentValues(targetArrays.arrays(), both, values.arrays(), numTargets);
    ResultArrays sameValues(2, numTargets);
    ResultArrays variances(2, numTargets);
    fenn::ModelAccess::getController(model).interpolate(targetArrays.arrays(), both, static_cast<int>(numTargets),
                                                        sameValues.arrays(), variances.arrays());
    return {{values[0], values[1]}, variances[0]};
}

void expectSameBits(const Answers& actual, const Answers& expected)
{
    EXPECT_TRUE(sameBits(actual.values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(actual.values[1], expected.values[1]));
    EXPECT_TRUE(sameBits(actual.variances, expected.variances));
}

/// Some of them outside of the samples, and one at a sample.
Columns targetsNear(const SampleSet& samples, std::size_t numTargets)
{
    Columns targets = fenn::test::randomValues(2, numTargets, -0.2, 1.2, 99);
    for (std::size_t v = 0; v < 2; ++v)
        targets[v][numTargets / 2] = samples.getInput(v)[7];
    return targets;
}

const std::vector<ModelSettings> globalAndLocal{{-1.0, {}, 0, 1.0, 0.0, 0},
                                                {0.02, {1.0, 3.0}, 2, 0.4, 0.2, 0},
                                                {-1.0, {}, 1, 0.7, 0.1, 12},
                                                {0.02, {2.0, -1.0}, 0, 1.0, 0.0, 5}};

TEST(ExactEstimatorTest, AnswersHaveTheBitsOfTheModelThatAHostBuilds)
{
    const SampleSet samples = smoothSamples(90, 5);
    const Columns targets = targetsNear(samples, 101);
    for (const ModelSettings& settings : globalAndLocal)
    {
        SCOPED_TRACE(settings.numNearestPoints);
        expectSameBits(askAll(build(samples, settings), targets), askModel(samples, settings, targets));
    }
}

TEST(ExactEstimatorTest, ATargetAskedForAloneGetsTheSameBits)
{
    const SampleSet samples = smoothSamples(90, 6);
    const Columns targets = targetsNear(samples, 41);
    for (const ModelSettings& settings : globalAndLocal)
    {
        SCOPED_TRACE(settings.numNearestPoints);
        const ExactEstimator estimator = build(samples, settings);
        const Answers expected = askAll(estimator, targets);

        Answers actual{{{}, {}}, {}};
        for (std::size_t t = 0; t < 41; ++t)
        {
            const Answers answer = ask(estimator, targets, t, 1, true);
            actual.values[0].push_back(answer.values[0][0]);
            actual.values[1].push_back(answer.values[1][0]);
            actual.variances.push_back(answer.variances[0]);
        }

        expectSameBits(actual, expected);
    }
}

TEST(ExactEstimatorTest, VariancesAreWrittenOnlyWhereWantedAndChangeNoEstimate)
{
    const SampleSet samples = smoothSamples(60, 7);
    const Columns targets = targetsNear(samples, 40);
    for (const ModelSettings& settings : globalAndLocal)
    {
        const ExactEstimator estimator = build(samples, settings);
        for (const std::size_t count : {std::size_t{1}, std::size_t{40}})
        {
            const Answers with = ask(estimator, targets, 0, count, true);
            const Answers without = ask(estimator, targets, 0, count, false);

            EXPECT_TRUE(sameBits(without.values[0], with.values[0]));
            EXPECT_TRUE(sameBits(without.values[1], with.values[1]));
            EXPECT_EQ(without.variances, std::vector<double>(count, fenn::test::unwritten));
        }
    }
}

TEST(ExactEstimatorTest, TheNumberOfThreadsChangesNoBit)
{
    const SampleSet samples = smoothSamples(300, 8);
    const Columns targets = targetsNear(samples, 200);
    const ModelSettings settings{-1.0, {}, 1, 1.0, 0.05, 0};
    const Answers expected = askAll(build(samples, settings, 1), targets);
    for (const int numThreads : {0, 2, 5})
        expectSameBits(askAll(build(samples, settings, numThreads), targets), expected);
}

TEST(ExactEstimatorTest, NoTargetsWriteNothing)
{
    const SampleSet samples = smoothSamples(30, 9);
    for (const int numNearestPoints : {0, 6})
        build(samples, {-1.0, {}, 0, 1.0, 0.0, numNearestPoints}).estimate({{nullptr, nullptr}, 0}, {{}, nullptr});
}

TEST(ExactEstimatorTest, AsManyNearestAsPointsLeftAfterMergingIsGlobal)
{
    const SampleSet samples({{0.0, 0.0, 1.0, 2.0, 4.0}}, {{1.0, 2.0, 3.0, 4.0, 5.0}});

    EXPECT_TRUE(build(samples, {0.0, {}, 0, 1.0, 0.0, 0}).isGlobal());
    EXPECT_TRUE(build(samples, {0.0, {}, 0, 1.0, 0.0, 4}).isGlobal());
    EXPECT_FALSE(build(samples, {0.0, {}, 0, 1.0, 0.0, 3}).isGlobal());
}

TEST(ExactEstimatorTest, TheReportNamesTheSystemAndTheReason)
{
    const SampleSet samples = smoothSamples(30, 10);

    const EngineReport global = build(samples, {}, 0, "asked for").getReport();
    const EngineReport local = build(samples, {-1.0, {}, 0, 1.0, 0.0, 6}).getReport();

    EXPECT_EQ(global.engine, "exact");
    EXPECT_EQ(global.sentence, "exact: one system over all 30 points, to the bits of the plug-in; asked for");
    EXPECT_TRUE(global.isExact);
    EXPECT_EQ(global.bound, 0.0);
    EXPECT_EQ(local.sentence, "exact: a system per target over the nearest 6 of 30 points, to the bits of the plug-in");
}

TEST(ExactEstimatorTest, FailuresAreThoseOfThePlugIn)
{
    // The second input is 3 throughout, 0 when normalised: its drift term makes a row of zeros.
    const SampleSet onALine({{0.0, 1.0, 2.0, 4.0, 5.0}, {3.0, 3.0, 3.0, 3.0, 3.0}}, {{1.0, 2.0, 3.0, 4.0, 5.0}});
    const ExactEstimator local = build(onALine, {-1.0, {1.0, 1.0}, 1, 1.0, 0.0, 4});
    const Columns targets{{1.5}, {3.0}};
    double value = 0.0;

    EXPECT_EQ(fenn::test::textOfError([&] { build(onALine, {-1.0, {1.0, 1.0}, 1, 1.0, 0.0, 0}); }), "Singular matrix");
    EXPECT_EQ(fenn::test::textOfError(
                  [&] {
                      build(onALine, {-1.0, {1.0, 1.0}, 0, 1.0, 0.0, 2});
                  }),
              "Not enough source points for kriging.");
    EXPECT_EQ(fenn::test::textOfError(
                  [&] {
                      local.estimate({{targets[0].data(), targets[1].data()}, 1}, {{&value}, nullptr});
                  }),
              "Singular matrix");
}

} // namespace
