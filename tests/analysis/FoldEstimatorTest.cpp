#include "analysis/FoldEstimator.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/Folds.h"
#include "analysis/LeaveOneOut.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "tests/analysis/Refits.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"

namespace
{

using fenn::analysis::assignFolds;
using fenn::analysis::FoldEstimator;
using fenn::estimation::Estimates;
using fenn::estimation::EstimatorOptions;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::refitWithoutGroups;
using fenn::test::sameBits;
using fenn::test::smoothSamples;

std::vector<std::vector<std::size_t>> groupsOf(const std::vector<std::size_t>& folds, std::size_t numFolds)
{
    std::vector<std::vector<std::size_t>> groups(numFolds);
    for (std::size_t i = 0; i < folds.size(); ++i)
        groups[folds[i]].push_back(i);
    return groups;
}

/// Of samples without merged ones.
void expectRefits(const SampleSet& samples, const Estimates& actual, const Estimates& expected)
{
    for (std::size_t w = 0; w < samples.getNumOutputVars(); ++w)
    {
        const double deviation = std::sqrt(samples.calcOutputVariance(w));
        ASSERT_EQ(actual.values[w].size(), expected.values[w].size());
        for (std::size_t i = 0; i < expected.values[w].size(); ++i)
            ASSERT_NEAR(actual.values[w][i], expected.values[w][i], 1e-9 * deviation) << "output " << w << ", " << i;
    }
    ASSERT_EQ(actual.variances.size(), expected.variances.size());
    for (std::size_t i = 0; i < expected.variances.size(); ++i)
        ASSERT_NEAR(actual.variances[i], expected.variances[i], 1e-9) << i;
    ASSERT_EQ(actual.driftProducts.size(), expected.driftProducts.size());
    for (std::size_t i = 0; i < expected.driftProducts.size(); ++i)
        ASSERT_NEAR(actual.driftProducts[i], expected.driftProducts[i], 1e-9) << i;
}

TEST(FoldEstimatorTest, FiguresAreThoseOfRefitsWithTheScalesOfAllSamples)
{
    for (const std::size_t numSamples : {40U, 121U})
    {
        for (const int driftOrder : {0, 1, 2, 3})
        {
            for (const double nugget : {0.0, 0.2, 1.0})
            {
                SCOPED_TRACE(testing::Message()
                             << numSamples << " samples, drift " << driftOrder << ", nugget " << nugget);
                const SampleSet samples = smoothSamples(numSamples, 17);
                const ModelSettings settings{-1.0, {1.0, 1.5}, driftOrder, 0.8, nugget, 0};
                const std::vector<std::size_t> folds = assignFolds(numSamples, 4, 5);
                const Estimates expected = refitWithoutGroups(samples, settings, groupsOf(folds, 4));
                for (const bool isExact : {false, true})
                {
                    EstimatorOptions options;
                    options.isExact = isExact;
                    expectRefits(samples, FoldEstimator(samples, settings, options).estimate(folds, 4, {true, true}),
                                 expected);
                }
            }
        }
    }
}

TEST(FoldEstimatorTest, InMoreInputsThanTheModelIsValidInFiguresAreThoseOfRefitsToo)
{
    const SampleSet samples(fenn::test::randomValues(6, 80, 0.0, 1.0, 8), fenn::test::randomValues(1, 80, 0.0, 1.0, 9));
    const ModelSettings settings{-1.0, std::vector<double>(6, 1.0), 1, 2.0, 0.0, 0};
    const std::vector<std::size_t> folds = assignFolds(80, 5, 1);

    expectRefits(samples, FoldEstimator(samples, settings).estimate(folds, 5, {true, true}),
                 refitWithoutGroups(samples, settings, groupsOf(folds, 5)));
}

TEST(FoldEstimatorTest, FoldsOfOneSampleAreLeaveOneOut)
{
    const SampleSet samples = smoothSamples(50, 3);
    const ModelSettings settings{-1.0, {}, 1, 1.0, 0.1, 0};

    const Estimates estimates = FoldEstimator(samples, settings).estimate(assignFolds(50, 50, 1), 50, {true, true});

    expectRefits(samples, estimates, fenn::analysis::leaveOneOut(samples, settings).estimates);
}

TEST(FoldEstimatorTest, AnotherDivisionIsAnsweredFromTheSameFactorisation)
{
    const SampleSet samples = smoothSamples(60, 3);
    const FoldEstimator estimator(samples, {});
    const Estimates first = estimator.estimate(assignFolds(60, 5, 1), 5, {});
    const Estimates second = estimator.estimate(assignFolds(60, 5, 2), 5, {});

    EXPECT_FALSE(sameBits(first.values[0], second.values[0]));
    EXPECT_TRUE(sameBits(estimator.estimate(assignFolds(60, 5, 1), 5, {}).values[0], first.values[0]));
    EXPECT_TRUE(sameBits(FoldEstimator(samples, {}).estimate(assignFolds(60, 5, 2), 5, {true, true}).values[0],
                         second.values[0]));
    EXPECT_TRUE(first.variances.empty());
    EXPECT_TRUE(first.driftProducts.empty());
}

TEST(FoldEstimatorTest, MergedSamplesAreLeftOutTogetherWithTheFoldOfTheFirst)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 30, 0.0, 1.0, 4);
    for (std::vector<double>& column : inputs)
    {
        column[7] = column[3];
        column[20] = column[3];
    }
    const SampleSet samples(inputs, fenn::test::randomValues(1, 30, 0.0, 1.0, 5));
    const ModelSettings settings{0.0, {}, 1, 1.0, 0.1, 0};
    const std::vector<std::size_t> folds = assignFolds(30, 3, 11);
    ASSERT_NE(folds[7], folds[3]);
    ASSERT_NE(folds[20], folds[3]);
    std::vector<std::vector<std::size_t>> groups(3); // positions: the samples left alone first, then the merged point
    std::size_t position = 0;
    for (std::size_t i = 0; i < 30; ++i)
    {
        if (i != 3 && i != 7 && i != 20)
            groups[folds[i]].push_back(position++);
    }
    groups[folds[3]].push_back(position);

    const Estimates estimates = FoldEstimator(samples, settings).estimate(folds, 3, {true, true});

    const Estimates expected = refitWithoutGroups(samples, settings, groups);
    for (const std::size_t i : {3U, 7U, 20U})
    {
        EXPECT_NEAR(estimates.values[0][i], expected.values[0][27], 1e-10);
        EXPECT_NEAR(estimates.variances[i], expected.variances[27], 1e-10);
    }
    EXPECT_NEAR(estimates.values[0][29], expected.values[0][26], 1e-10);
}

TEST(FoldEstimatorTest, ALargeCommonOffsetOfTheOutputsStaysOutOfTheErrors)
{
    constexpr double offset = 0x1p40;
    const std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 60, 0.0, 1.0, 31);
    std::vector<double> values = fenn::test::randomValues(1, 60, 0.0, 1000.0, 32)[0];
    for (double& value : values)
        value = std::floor(value); // so that adding the offset rounds nothing
    std::vector<double> offsetValues = values;
    for (double& value : offsetValues)
        value += offset;
    const std::vector<std::size_t> folds = assignFolds(60, 5, 1);
    const SampleSet plain(inputs, {values});
    const SampleSet raised(inputs, {offsetValues});

    const std::vector<double> expected = FoldEstimator(plain, {}).estimate(folds, 5, {}).values[0];
    const std::vector<double> actual = FoldEstimator(raised, {}).estimate(folds, 5, {}).values[0];

    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(actual[i] - offset, expected[i], 0x1p-11); // two spacings of doubles at the offset
}

TEST(FoldEstimatorTest, TooFewOthersAreRefusedAsARefitWouldBe)
{
    const SampleSet samples = smoothSamples(16, 4);
    const FoldEstimator estimator(samples, {-1.0, {}, 4, 1.0, 0.0, 0}); // 14 terms
    const auto inFolds = [&](std::size_t numFolds)
    {
        return [&, numFolds]
        {
            estimator.estimate(assignFolds(16, numFolds, 1), numFolds, {});
        };
    };

    EXPECT_NO_THROW(inFolds(8)());
    EXPECT_EQ(fenn::test::messageOf<SurrogateModelInterface::Error>(inFolds(5)),
              "Not enough source points to calculate drift.");
    EXPECT_EQ(fenn::test::messageOf<SurrogateModelInterface::Error>(
                  [] { FoldEstimator(smoothSamples(4, 1), {}).estimate(assignFolds(4, 2, 1), 2, {}); }),
              "Not enough source points for kriging.");
}

} // namespace
