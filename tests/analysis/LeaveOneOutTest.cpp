#include "analysis/LeaveOneOut.h"

#include <cmath>
#include <set>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/analysis/Refits.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::leaveOneOut;
using fenn::analysis::LeaveOneOutResult;
using fenn::analysis::Sill;
using fenn::estimation::Estimates;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::smoothSamples;

/// n refits that keep the full model's normalisers, range and merged points.
Estimates refitWithoutEach(const SampleSet& samples, const ModelSettings& settings)
{
    std::vector<std::vector<std::size_t>> groups;
    for (std::size_t p = 0; p < fenn::estimation::makeModelParts(samples, settings)->getPoints().size(); ++p)
        groups.push_back({p});
    return fenn::test::refitWithoutGroups(samples, settings, groups);
}

/// relative: of the outputs' magnitude and of the sill.
void expectClose(const Estimates& actual, const Estimates& expected, double relative)
{
    for (std::size_t w = 0; w < expected.values.size(); ++w)
    {
        ASSERT_EQ(actual.values[w].size(), expected.values[w].size());
        for (std::size_t i = 0; i < expected.values[w].size(); ++i)
            EXPECT_NEAR(actual.values[w][i], expected.values[w][i], relative * (1.0 + std::fabs(expected.values[w][i])))
                << "output " << w << ", point " << i;
    }
    ASSERT_EQ(actual.variances.size(), expected.variances.size());
    for (std::size_t i = 0; i < expected.variances.size(); ++i)
        EXPECT_NEAR(actual.variances[i], expected.variances[i], relative) << "variance of point " << i;
    ASSERT_EQ(actual.driftProducts.size(), expected.driftProducts.size());
    for (std::size_t i = 0; i < expected.driftProducts.size(); ++i)
        EXPECT_NEAR(actual.driftProducts[i], expected.driftProducts[i], relative) << "drift product of point " << i;
}

/// The factorised systems have 60 rows and a condition of some thousands: n * epsilon * condition.
constexpr double tolerance = 1e-10;

TEST(LeaveOneOutTest, TheMiddleOfThreeEvenPointsIsTheMeanOfTheOthers)
{
    // Without the middle: weights 1/2 each, and the variance 2 gamma(1) - gamma(2) / 2 with the range at 2, the
    // diagonal.
    const SampleSet samples({{0.0, 1.0, 2.0}}, {{5.0, 0.0, 9.0}});

    const LeaveOneOutResult result = leaveOneOut(samples, {});

    EXPECT_NEAR(result.estimates.values[0][1], 7.0, 1e-14);
    EXPECT_NEAR(result.estimates.variances[1], 2.0 * 0.6875 - 0.5, 1e-15);
}

TEST(LeaveOneOutTest, GlobalFiguresAreThoseOfRefits)
{
    for (const int driftOrder : {0, 1, 2, 3})
    {
        for (const double nugget : {0.0, 0.2, 1.0})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const SampleSet samples = smoothSamples(60, 17);
            const ModelSettings settings{-1.0, {1.0, 1.5}, driftOrder, 0.8, nugget, 0};

            expectClose(leaveOneOut(samples, settings).estimates, refitWithoutEach(samples, settings), tolerance);
        }
    }
}

TEST(LeaveOneOutTest, SillsAreThoseOfTheFullModel)
{
    const SampleSet samples = smoothSamples(60, 17);
    for (const int numNearestPoints : {0, 12})
    {
        const ModelSettings settings{-1.0, {}, 1, 0.8, 0.1, numNearestPoints};
        const std::vector<Sill> expected = fenn::analysis::estimateSills(samples, settings);

        const std::vector<Sill> sills = leaveOneOut(samples, settings).sills;

        ASSERT_EQ(sills.size(), 2U);
        for (std::size_t w = 0; w < 2; ++w)
        {
            EXPECT_EQ(sills[w].method, expected[w].method);
            EXPECT_NEAR(sills[w].value / expected[w].value, 1.0, tolerance);
            EXPECT_EQ(sills[w].sampleVariance, expected[w].sampleVariance);
        }
    }
}

TEST(LeaveOneOutTest, PointsThatCannotBeToldApartLeaveTheSampleVarianceAsSill)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 30, 0.0, 1.0, 4);
    inputs[0][7] = inputs[0][3] + 1e-15;
    inputs[1][7] = inputs[1][3];
    const SampleSet samples(inputs, fenn::test::randomValues(1, 30, 0.0, 1.0, 5));

    EXPECT_EQ(leaveOneOut(samples, {}).sills[0].method, fenn::analysis::SillMethod::SampleVariance);
}

TEST(LeaveOneOutTest, ALargeCommonOffsetOfTheOutputsStaysOutOfTheErrors)
{
    constexpr double offset = 0x1p40;
    const std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 60, 0.0, 1.0, 31);
    std::vector<double> values = fenn::test::randomValues(1, 60, 0.0, 1000.0, 32)[0];
    for (double& value : values)
        value = std::floor(value); // so that adding the offset rounds nothing
    std::vector<double> offsetValues = values;
    for (double& value : offsetValues)
        value += offset;
    const ModelSettings settings{-1.0, {}, 2, 1.0, 0.0, 0};

    const std::vector<double> expected = leaveOneOut({inputs, {values}}, settings).estimates.values[0];
    const std::vector<double> actual = leaveOneOut({inputs, {offsetValues}}, settings).estimates.values[0];

    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(actual[i] - offset, expected[i], 0x1p-11); // two spacings of doubles at the offset
}

TEST(LeaveOneOutTest, MergedSamplesAreLeftOutAsTheirAverage)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 30, 0.0, 1.0, 4);
    for (std::vector<double>& column : inputs)
    {
        column[7] = column[3];
        column[20] = column[3];
        column[11] = column[29];
    }
    const SampleSet samples(inputs, fenn::test::randomValues(2, 30, 0.0, 1.0, 5));
    const ModelSettings settings{0.0, {}, 1, 1.0, 0.1, 0};

    const LeaveOneOutResult result = leaveOneOut(samples, settings);

    ASSERT_EQ(result.members.size(), 27U);
    EXPECT_EQ(result.members[0], (std::vector<std::size_t>{0}));
    EXPECT_EQ(result.members[24], (std::vector<std::size_t>{28}));
    const std::set<std::vector<std::size_t>> merged{result.members[25], result.members[26]};
    EXPECT_EQ(merged, (std::set<std::vector<std::size_t>>{{3, 7, 20}, {11, 29}}));
    for (std::size_t p = 25; p < 27; ++p)
    {
        double sum = 0.0;
        for (const std::size_t i : result.members[p])
            sum += samples.getOutput(1)[i];
        EXPECT_NEAR(result.truths[1][p], sum / static_cast<double>(result.members[p].size()), 1e-15);
    }
    expectClose(result.estimates, refitWithoutEach(samples, settings), tolerance);
}

TEST(LeaveOneOutTest, CoincidentSamplesThatAreNotMergedEstimateEachOther)
{
    const SampleSet samples({{0.0, 1.0, 1.0, 3.0, 4.0}}, {{1.0, 2.0, 4.0, 3.0, 0.0}});
    const ModelSettings settings{-1.0, {}, 0, 1.0, 0.1, 0}; // the nugget keeps the system solvable

    const LeaveOneOutResult result = leaveOneOut(samples, settings);

    EXPECT_EQ(result.members.size(), 5U);
    expectClose(result.estimates, refitWithoutEach(samples, settings), tolerance);
}

TEST(LeaveOneOutTest, LocalFiguresAreThoseOfRefits)
{
    for (const int numNearestPoints : {8, 20, 58})
    {
        // Equal factors: the refits' controllers measure every input by the scale of the first one.
        SCOPED_TRACE(numNearestPoints);
        const SampleSet samples = smoothSamples(60, 23);
        const ModelSettings settings{-1.0, {1.0, 1.0}, 1, 0.8, 0.05, numNearestPoints};

        expectClose(leaveOneOut(samples, settings).estimates, refitWithoutEach(samples, settings), 1e-13);
    }
}

TEST(LeaveOneOutTest, LocallyMergedSamplesAndCoincidentOnesAreHandledAsInRefits)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(1, 40, 0.0, 1.0, 6);
    for (const std::size_t i : {5U, 6U, 7U, 8U, 9U})
        inputs[0][i] = inputs[0][4];
    const SampleSet samples(inputs, fenn::test::randomValues(1, 40, 0.0, 1.0, 7));

    for (const double duplicateTolerance : {0.0, -1.0})
    {
        // Of six coincident samples, three nearest: a sample need not be among its own nearest ones.
        const ModelSettings settings{duplicateTolerance, {}, 0, 1.0, 0.3, 3};
        expectClose(leaveOneOut(samples, settings).estimates, refitWithoutEach(samples, settings), 1e-13);
    }
}

TEST(LeaveOneOutTest, APointThatTheOthersCannotEstimateIsNaN)
{
    // Without the last point all others lie on one line, on which a plane is not determined.
    for (const double slope : {0.0, 0.1, 0.3, 0.7}) // rounding moves points off most of these lines
    {
        const SampleSet samples({{0.0, 1.0, 2.0, 3.0, 1.0}, {0.0, slope, 2.0 * slope, 3.0 * slope, 1.0}},
                                {{1.0, 2.0, 0.0, 3.0, 5.0}});

        const LeaveOneOutResult result = leaveOneOut(samples, {-1.0, {}, 1, 1.0, 0.0, 0});

        EXPECT_TRUE(std::isnan(result.estimates.values[0][4]));
        EXPECT_TRUE(std::isnan(result.estimates.variances[4]));
        EXPECT_TRUE(std::isfinite(result.estimates.values[0][1]));
    }
}

TEST(LeaveOneOutTest, TooFewOthersAreRefusedAsARefitWouldBe)
{
    const SampleSet three({{0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}, {{1.0, 2.0, 3.0}});
    const SampleSet nine(fenn::test::randomValues(2, 9, 0.0, 1.0, 1), fenn::test::randomValues(1, 9, 0.0, 1.0, 2));

    EXPECT_EQ(fenn::test::messageOf<SurrogateModelInterface::Error>([&] { leaveOneOut(three, {}); }),
              "Not enough source points for kriging.");
    EXPECT_EQ(fenn::test::messageOf<SurrogateModelInterface::Error>(
                  [&] {
                      leaveOneOut(nine, {-1.0, {}, 3, 1.0, 0.0, 0});
                  }),
              "Not enough source points to calculate drift.");
}

TEST(LeaveOneOutTest, ProgressCountsPointsAndMayStop)
{
    const SampleSet samples = smoothSamples(20, 3);
    for (const int numNearestPoints : {0, 6})
    {
        std::size_t last = 0;
        const auto untilTheFirstReport = [&](std::size_t numDone, std::size_t total)
        {
            EXPECT_EQ(total, 20U);
            last = numDone;
            return false;
        };
        EXPECT_THROW(leaveOneOut(samples, {-1.0, {}, 0, 1.0, 0.0, numNearestPoints}, untilTheFirstReport),
                     fenn::analysis::Cancelled);
        EXPECT_EQ(last, 20U); // they take less time than a report
    }
}

} // namespace
