#include "estimation/CovarianceEstimator.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/ExactEstimator.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/RunnableTargets.h"

namespace
{

using fenn::estimation::CovarianceEstimator;
using fenn::estimation::Estimator;
using fenn::estimation::ExactEstimator;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::RandomNumbers;
using fenn::test::ResultArrays;
using fenn::test::sameBits;

using Columns = std::vector<std::vector<double>>;

struct Answers
{
    Columns values;
    std::vector<double> variances;
};

/// Targets first to first + count - 1 in one request.
Answers ask(const Estimator& estimator, const Columns& targets, std::size_t numOutputs, std::size_t first,
            std::size_t count, bool wantsVariances)
{
    ResultArrays values(numOutputs, count);
    ResultArrays variances(1, count);
    std::vector<const double*> coords;
    for (const std::vector<double>& column : targets)
        coords.push_back(column.data() + first);
    estimator.estimate({coords, count}, {values.arrays(), wantsVariances ? variances.arrays()[0] : nullptr});
    Answers answers;
    for (std::size_t o = 0; o < numOutputs; ++o)
        answers.values.push_back(values[o]);
    answers.variances = variances[0];
    return answers;
}

Answers askAll(const Estimator& estimator, const Columns& targets, std::size_t numOutputs, bool wantsVariances)
{
    return ask(estimator, targets, numOutputs, 0, targets[0].size(), wantsVariances);
}

/// Smooth outputs with some noise, far apart in magnitude, over scattered inputs of different ranges.
SampleSet makeSamples(std::size_t numInputVars, std::size_t numSamples, std::size_t numOutputs, std::uint64_t seed)
{
    Columns inputs = fenn::test::randomValues(numInputVars, numSamples, 0.0, 1.0, seed);
    RandomNumbers numbers(seed + 1);
    Columns outputs(numOutputs, std::vector<double>(numSamples));
    for (std::size_t i = 0; i < numSamples; ++i)
    {
        for (std::size_t o = 0; o < numOutputs; ++o)
        {
            double value = 0.1 * numbers.next();
            for (std::size_t v = 0; v < numInputVars; ++v)
                value += std::sin(4.0 * inputs[v][i] + static_cast<double>(o));
            outputs[o][i] = std::pow(10.0, static_cast<double>(o)) * value + static_cast<double>(o) * 1e3;
        }
    }
    for (std::size_t v = 0; v < numInputVars; ++v)
    {
        for (double& value : inputs[v])
            value = 5.0 + std::pow(30.0, static_cast<double>(v)) * value;
    }
    return {std::move(inputs), std::move(outputs)};
}

/// Anywhere in the samples' box and a little beyond it; every fifth one lies on a sample.
Columns targetsNear(const SampleSet& samples, std::size_t numTargets, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    Columns targets(samples.getNumInputVars());
    for (std::size_t v = 0; v < targets.size(); ++v)
    {
        const auto limits = std::minmax_element(samples.getInput(v).begin(), samples.getInput(v).end());
        const double range = *limits.second - *limits.first;
        for (std::size_t t = 0; t < numTargets; ++t)
            targets[v].push_back(t % 5 == 4 ? samples.getInput(v)[t % samples.getNumSamples()]
                                            : *limits.first + range * numbers.next(-0.2, 1.2));
    }
    return targets;
}

std::unique_ptr<CovarianceEstimator> build(const SampleSet& samples, const ModelSettings& settings, int numThreads = 1)
{
    std::string reason;
    auto estimator =
        CovarianceEstimator::makeWhereProven(makeModelParts(samples, settings), settings, numThreads, reason);
    EXPECT_NE(estimator, nullptr) << reason;
    return estimator;
}

std::string refusalOf(const SampleSet& samples, const ModelSettings& settings)
{
    std::string reason;
    const auto estimator = CovarianceEstimator::makeWhereProven(makeModelParts(samples, settings), settings, 1, reason);
    EXPECT_EQ(estimator, nullptr);
    return reason;
}

double deviationOf(const Estimator& estimator, int output)
{
    return std::sqrt(estimator.getParts().getDataBlock().getOutputVarSampleVariance(output));
}

/// Estimates within the bound of the exact engine's, which round too, and variances of the same system.
void expectExactAnswers(const SampleSet& samples, const ModelSettings& settings, const Columns& targets)
{
    const auto estimator = build(samples, settings);
    ASSERT_NE(estimator, nullptr);
    const ExactEstimator exact(makeModelParts(samples, settings), settings, 1, "");
    const Answers actual = askAll(*estimator, targets, samples.getNumOutputVars(), true);
    const Answers expected = askAll(exact, targets, samples.getNumOutputVars(), true);
    const double roundingOfTheExactEngine = 1e-11;
    for (std::size_t o = 0; o < samples.getNumOutputVars(); ++o)
    {
        const double deviation = deviationOf(exact, static_cast<int>(o));
        for (std::size_t t = 0; t < targets[0].size(); ++t)
            EXPECT_NEAR(actual.values[o][t], expected.values[o][t],
                        (estimator->getReport().bound + roundingOfTheExactEngine) * deviation)
                << "output " << o << ", target " << t;
    }
    for (std::size_t t = 0; t < targets[0].size(); ++t)
        EXPECT_NEAR(actual.variances[t], expected.variances[t], 1e-11 * std::max(1.0, expected.variances[t]))
            << "target " << t;
    EXPECT_LE(estimator->getReport().bound, 1e-9);
    EXPECT_GT(estimator->getReport().bound, 0.0);
}

TEST(CovarianceEstimatorTest, AnswersAreThoseOfTheExactEngine)
{
    std::uint64_t seed = 0;
    for (std::size_t numInputVars = 1; numInputVars <= 4; ++numInputVars)
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            for (const double nugget : {0.0, 0.2})
            {
                for (const double rangeFraction : {0.15, 1.0})
                {
                    const std::size_t numSamples = 100 + ++seed % 60;
                    SCOPED_TRACE(std::to_string(numInputVars) + " inputs, drift " + std::to_string(driftOrder) +
                                 ", nugget " + std::to_string(nugget) + ", range " + std::to_string(rangeFraction));
                    const SampleSet samples = makeSamples(numInputVars, numSamples, 1 + seed % 3, seed);
                    expectExactAnswers(samples, {-1.0, {}, driftOrder, rangeFraction, nugget, 0},
                                       targetsNear(samples, 43, seed + 100));
                }
            }
        }
    }
}

TEST(CovarianceEstimatorTest, NothingIsProvenWhereCorrectionsNeedNotConverge)
{
    // Two samples with the same output hardly apart: weights stay small, but the system is nearly singular.
    Columns inputs = fenn::test::randomValues(1, 50, 0.0, 1.0, 21);
    Columns outputs = fenn::test::randomValues(1, 50, 0.0, 1.0, 22);
    outputs[0][9] = outputs[0][4];
    for (const double distance : {1e-12, 2e-13})
    {
        inputs[0][9] = inputs[0][4] + distance;
        EXPECT_EQ(refusalOf(SampleSet(inputs, outputs), {}),
                  "the covariance form could be off by more than 1e-09 standard deviations");
    }
}

TEST(CovarianceEstimatorTest, EveryNumberOfPointsIsAnswered)
{
    for (std::size_t numSamples = 3; numSamples <= 75; ++numSamples)
    {
        SCOPED_TRACE(numSamples);
        const SampleSet samples = makeSamples(2, numSamples, 1, numSamples);
        expectExactAnswers(samples, {-1.0, {}, numSamples < 5 ? 0 : 1, 0.8, 0.05, 0}, targetsNear(samples, 9, 1));
    }
}

TEST(CovarianceEstimatorTest, MergedSamplesCountAsTheirPoint)
{
    Columns inputs = fenn::test::randomValues(2, 90, 0.0, 1.0, 1);
    const Columns outputs = fenn::test::randomValues(2, 90, -3.0, 8.0, 2);
    for (std::size_t i = 0; i < 90; i += 9)
    {
        for (std::size_t v = 0; v < 2; ++v)
            inputs[v][i] = inputs[v][(i + 5) % 90];
    }
    const SampleSet samples(inputs, outputs);
    for (const double tolerance : {0.0, 0.01})
        expectExactAnswers(samples, {tolerance, {2.0, -1.0}, 2, 0.7, 0.0, 0}, targetsNear(samples, 40, 3));
}

TEST(CovarianceEstimatorTest, OutputsOfAnyOffsetAndMagnitudeKeepTheirFigures)
{
    const SampleSet plain = makeSamples(2, 120, 1, 7);
    const Columns targets = targetsNear(plain, 30, 8);
    const ModelSettings settings{-1.0, {}, 1, 1.0, 0.05, 0};
    const Answers expected = askAll(*build(plain, settings), targets, 1, false);
    const double deviation = deviationOf(*build(plain, settings), 0);
    for (const double scale : {1e-100, 1e-3, 1e100})
    {
        for (const double offset : {0.0, 1e7})
        {
            SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(offset));
            Columns outputs{plain.getOutput(0)};
            for (double& value : outputs[0])
                value = scale * (value + offset);
            const SampleSet samples({plain.getInput(0), plain.getInput(1)}, outputs);

            const Answers actual = askAll(*build(samples, settings), targets, 1, false);

            // Writing the outputs with their offset rounds them to 1e-9; the estimates must not add to that.
            const double rounding = offset == 0.0 ? 1e-12 : 4e-9;
            for (std::size_t t = 0; t < 30; ++t)
                EXPECT_NEAR(actual.values[0][t] / scale - offset, expected.values[0][t], rounding * deviation);
        }
    }
}

TEST(CovarianceEstimatorTest, AnOutputThatIsTheSameEverywhereIsEstimatedExactly)
{
    Columns inputs = fenn::test::randomValues(2, 50, 0.0, 1.0, 1);
    const Columns outputs{std::vector<double>(50, 0.1), fenn::test::randomValues(1, 50, 0.0, 1.0, 2)[0]};
    const SampleSet samples(std::move(inputs), outputs);
    const auto estimator = build(samples, {-1.0, {}, 1, 1.0, 0.0, 0});

    const Answers answers = askAll(*estimator, targetsNear(samples, 20, 3), 2, true);

    EXPECT_EQ(answers.values[0], std::vector<double>(20, 0.1));
    EXPECT_LE(estimator->getReport().bound, 1e-9);
}

const std::vector<ModelSettings> someSettings{
    {-1.0, {}, 0, 1.0, 0.0, 0}, {-1.0, {}, 2, 0.2, 0.1, 0}, {0.01, {1.0, 3.0, 1.0}, 1, 0.45, 0.0, 0}};

TEST(CovarianceEstimatorTest, TheNumberOfThreadsChangesNoBit)
{
    const SampleSet samples = makeSamples(3, 700, 2, 5);
    const Columns targets = targetsNear(samples, 1501, 6);
    for (const ModelSettings& settings : someSettings)
    {
        const auto single = build(samples, settings, 1);
        const Answers expected = askAll(*single, targets, 2, true);
        for (const int numThreads : {2, 3, 7})
        {
            const auto estimator = build(samples, settings, numThreads);
            const Answers actual = askAll(*estimator, targets, 2, true);
            const Answers alone = askAll(*estimator, targets, 2, false);
            EXPECT_TRUE(sameBits(actual.variances, expected.variances));
            for (std::size_t o = 0; o < 2; ++o)
            {
                EXPECT_TRUE(sameBits(actual.values[o], expected.values[o]));
                EXPECT_TRUE(sameBits(alone.values[o], expected.values[o]));
            }
            EXPECT_EQ(estimator->getReport().bound, single->getReport().bound);
        }
    }
}

TEST(CovarianceEstimatorTest, HowTargetsAreDividedIntoRequestsChangesNoBit)
{
    const SampleSet samples = makeSamples(3, 150, 2, 9);
    const Columns targets = targetsNear(samples, 300, 10);
    for (const ModelSettings& settings : someSettings)
    {
        const auto estimator = build(samples, settings, 2);
        const Answers expected = askAll(*estimator, targets, 2, true);
        for (const std::size_t size : {1U, 2U, 7U, 8U, 9U, 64U, 131U})
        {
            for (const bool wantsVariances : {false, true})
            {
                Answers joined{Columns(2), {}};
                for (std::size_t first = 0; first < 300; first += size)
                {
                    const Answers part =
                        ask(*estimator, targets, 2, first, std::min<std::size_t>(size, 300 - first), wantsVariances);
                    for (std::size_t o = 0; o < 2; ++o)
                        joined.values[o].insert(joined.values[o].end(), part.values[o].begin(), part.values[o].end());
                    joined.variances.insert(joined.variances.end(), part.variances.begin(), part.variances.end());
                }
                EXPECT_TRUE(sameBits(joined.values[0], expected.values[0])) << size;
                EXPECT_TRUE(sameBits(joined.values[1], expected.values[1])) << size;
                if (wantsVariances)
                {
                    EXPECT_TRUE(sameBits(joined.variances, expected.variances)) << size;
                }
            }
        }
    }
}

TEST(CovarianceEstimatorTest, EveryInstructionSetGivesTheSameBits)
{
    const SampleSet samples = makeSamples(3, 333, 3, 11);
    const Columns targets = targetsNear(samples, 100, 12);
    for (const ModelSettings& settings : someSettings)
    {
        const auto best = build(samples, settings);
        const Answers expected = askAll(*best, targets, 3, true);
        fenn::test::forEachRunnableTarget(
            [&](const char* name)
            {
                SCOPED_TRACE(name);
                const auto estimator = build(samples, settings);
                const Answers actual = askAll(*estimator, targets, 3, true);
                for (std::size_t o = 0; o < 3; ++o)
                    EXPECT_TRUE(sameBits(actual.values[o], expected.values[o]));
                EXPECT_TRUE(sameBits(actual.variances, expected.variances));
                EXPECT_EQ(estimator->getReport().bound, best->getReport().bound);
            });
    }
}

TEST(CovarianceEstimatorTest, ATargetOnASampleMeetsItWithoutANugget)
{
    const SampleSet samples = makeSamples(2, 80, 1, 13);
    const auto estimator = build(samples, {-1.0, {}, 1, 1.0, 0.0, 0});
    const Answers answers = askAll(*estimator, {samples.getInput(0), samples.getInput(1)}, 1, true);
    for (std::size_t i = 0; i < 80; ++i)
    {
        EXPECT_NEAR(answers.values[0][i], samples.getOutput(0)[i], 1e-11);
        EXPECT_NEAR(answers.variances[i], 0.0, 1e-12);
    }
}

TEST(CovarianceEstimatorTest, ATargetFarAwayRaisesTheBoundAndGetsItsAnswer)
{
    const SampleSet samples = makeSamples(2, 120, 1, 14);
    const ModelSettings settings{-1.0, {}, 4, 1.0, 0.0, 0};
    const auto estimator = build(samples, settings);
    const double boundInTheBox = estimator->getReport().bound;
    const Columns near = targetsNear(samples, 20, 15);
    askAll(*estimator, near, 1, false);
    EXPECT_EQ(estimator->getReport().bound, boundInTheBox);

    Columns far = near;
    far[1][3] = 1e6; // the variable reaches from 5 to 35
    const Answers actual = askAll(*estimator, far, 1, false);

    const ExactEstimator exact(makeModelParts(samples, settings), settings, 1, "");
    const double expected = askAll(exact, far, 1, false).values[0][3];
    EXPECT_GT(estimator->getReport().bound, 1e6 * boundInTheBox);
    EXPECT_NEAR(actual.values[0][3], expected, 1e-7 * std::fabs(expected));
    const Answers again = askAll(*estimator, near, 1, false);
    EXPECT_TRUE(sameBits(again.values[0], askAll(*build(samples, settings), near, 1, false).values[0]));
}

TEST(CovarianceEstimatorTest, TheReportNamesEngineAndBound)
{
    const SampleSet samples = makeSamples(2, 40, 1, 16);
    const auto report = build(samples, {-1.0, {}, 0, 1.0, 0.1, 0})->getReport();

    EXPECT_EQ(report.engine, "covariance form");
    EXPECT_FALSE(report.isExact);
    EXPECT_EQ(report.sentence.find("covariance form: one factorisation over all 40 points; estimates differ from the "
                                   "exact ones by at most "),
              0U)
        << report.sentence;
}

TEST(CovarianceEstimatorTest, CoincidentSamplesWithoutANuggetAreRefused)
{
    Columns inputs = fenn::test::randomValues(2, 60, 0.0, 1.0, 1);
    const Columns outputs = fenn::test::randomValues(1, 60, 0.0, 1.0, 2);
    inputs[0][50] = inputs[0][3];
    inputs[1][50] = inputs[1][3];
    const SampleSet samples(std::move(inputs), outputs);

    const std::string refusal = refusalOf(samples, {-1.0, {}, 0, 1.0, 0.0, 0});

    EXPECT_TRUE(refusal.find("covariance form") == 0 || refusal.find("the covariance form") == 0) << refusal;
    expectExactAnswers(samples, {-1.0, {}, 0, 1.0, 0.1, 0}, targetsNear(samples, 20, 3));
}

TEST(CovarianceEstimatorTest, AModelThatIsNotPositiveDefiniteIsRefused)
{
    // The corners of a cube in eight inputs, where the spherical model is not valid.
    Columns inputs(8, std::vector<double>(256));
    for (std::size_t i = 0; i < 256; ++i)
    {
        for (std::size_t v = 0; v < 8; ++v)
            inputs[v][i] = static_cast<double>(i >> v & 1U);
    }
    const SampleSet samples(std::move(inputs), fenn::test::randomValues(1, 256, 0.0, 1.0, 2));

    EXPECT_EQ(refusalOf(samples, {-1.0, {}, 0, 0.53, 0.0, 0}),
              "the covariance form does not apply: its matrix is not positive definite");
}

TEST(CovarianceEstimatorTest, TooFewPointsAreLeftToTheExactEngine)
{
    const SampleSet samples = makeSamples(2, 5, 1, 16);

    EXPECT_EQ(refusalOf(samples, {-1.0, {}, 2, 1.0, 0.0, 0}), "there are too few points for the covariance form");
}

TEST(CovarianceEstimatorTest, ABoundAboveTheLargestIsRefused)
{
    // Two samples a hair apart whose outputs differ: weights of 1e9 and more, whose sums round.
    Columns inputs = fenn::test::randomValues(2, 60, 0.0, 1.0, 1);
    inputs[0][50] = inputs[0][3];
    inputs[1][50] = inputs[1][3] + 1e-10;
    const SampleSet samples(std::move(inputs), fenn::test::randomValues(1, 60, 0.0, 1.0, 2));

    const std::string refusal = refusalOf(samples, {-1.0, {}, 0, 1.0, 0.0, 0});

    EXPECT_EQ(refusal.find("the covariance form could be off by more than 1e-09 standard deviations"), 0U) << refusal;
}

TEST(CovarianceEstimatorTest, NoTargetsWriteNothing)
{
    const SampleSet samples = makeSamples(2, 40, 1, 17);
    const auto estimator = build(samples, {});
    double none = 0.0;
    estimator->estimate({{nullptr, nullptr}, 0}, {{&none}, nullptr});
    estimator->estimate({{nullptr, nullptr}, 0}, {{&none}, &none});
    EXPECT_EQ(none, 0.0);
}

} // namespace
