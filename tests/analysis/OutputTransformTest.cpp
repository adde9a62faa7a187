#include "analysis/OutputTransform.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "analysis/NormalDistribution.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/analysis/SimulatedField.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::clamped;
using fenn::analysis::expectationOf;
using fenn::analysis::fromLogarithms;
using fenn::analysis::Interval;
using fenn::analysis::medianOf;
using fenn::analysis::predictionInterval;
using fenn::analysis::toLogarithms;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::DenseKriging;
using fenn::test::DenseMatrix;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// What an engine says of one target, from the bordered semivariogram system in long double.
struct Answer
{
    DenseMatrix weights;
    double variance;
    double driftProduct;
};

Answer answerAt(const DenseKriging& dense, const std::vector<double>& target)
{
    const DenseMatrix system = dense.borderedSystem();
    const DenseMatrix c = dense.covariancesWith(target);
    const DenseMatrix f = dense.driftAt(target);
    const std::size_t n = dense.getNumPoints();
    DenseMatrix rightHandSide(system.getNumRows(), 1);
    for (std::size_t i = 0; i < n; ++i)
        rightHandSide(i, 0) = 1.0L - c(i, 0);
    for (std::size_t k = 0; k < f.getNumRows(); ++k)
        rightHandSide(n + k, 0) = f(k, 0);
    const DenseMatrix solution = system.solve(rightHandSide);

    Answer answer{DenseMatrix(n, 1), 0.0, 0.0};
    for (std::size_t i = 0; i < system.getNumRows(); ++i)
    {
        const auto product = static_cast<double>(solution(i, 0) * rightHandSide(i, 0));
        answer.variance += product;
        if (i < n)
            answer.weights(i, 0) = solution(i, 0);
        else
            answer.driftProduct += product;
    }
    return answer;
}

TEST(OutputTransformTest, TheExpectationAddsHalfOfWhatTheEstimateDoesNotVary)
{
    const SampleSet samples = fenn::test::smoothSamples(20, 4);
    for (const int driftOrder : {0, 1, 2})
    {
        for (const double nugget : {0.0, 0.4})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const ModelSettings settings{-1.0, {}, driftOrder, 0.7, nugget, 0};
            const DenseKriging dense(*fenn::estimation::makeModelParts(samples, settings), settings);
            const Answer answer = answerAt(dense, {1.2, 0.4});
            const auto varianceOfEstimate =
                static_cast<double>((answer.weights.transposed() * dense.covariances() * answer.weights)(0, 0));

            EXPECT_NEAR(std::log(expectationOf(2.0, answer.variance, answer.driftProduct, 3.0)),
                        2.0 + 0.5 * 3.0 * (1.0 - varianceOfEstimate), 1e-12);
        }
    }
}

TEST(OutputTransformTest, TheExpectationIsUnbiasedOverManyFields)
{
    // The last of the places is the target, whose value the estimate does not see.
    constexpr double sill = 0.6;
    constexpr std::size_t numFields = 3000;
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 9, 0.0, 1.0, 5);
    const ModelSettings settings{-1.0, {1.0, 1.0}, 0, 0.8, 0.2, 0};
    // Corners of the box, so that it is the same with and without the target.
    inputs[0][0] = inputs[1][0] = 0.0;
    inputs[0][1] = inputs[1][1] = 1.0;
    inputs[0][8] = 0.4;
    inputs[1][8] = 0.6;
    std::vector<std::vector<double>> others = inputs;
    for (std::vector<double>& column : others)
        column.pop_back();
    const SampleSet places(others, {std::vector<double>(8, 0.0)});
    const Answer answer =
        answerAt(DenseKriging(*fenn::estimation::makeModelParts(places, settings), settings), {0.4, 0.6});

    double sumDifference = 0.0;
    double sumSquared = 0.0;
    double sumMedianDifference = 0.0;
    std::size_t numCovered = 0;
    for (std::uint64_t k = 0; k < numFields; ++k)
    {
        const SampleSet field = fenn::test::simulatedField(inputs, settings, sill, 1.0, 10000 + k);
        double estimate = 0.0;
        for (std::size_t i = 0; i < 8; ++i)
            estimate += static_cast<double>(answer.weights(i, 0)) * field.getOutput(0)[i];
        const double truth = std::exp(field.getOutput(0)[8]);
        const double difference = expectationOf(estimate, answer.variance, answer.driftProduct, sill) - truth;
        sumDifference += difference;
        sumSquared += difference * difference;
        sumMedianDifference += medianOf(estimate) - truth;
        const Interval interval = fromLogarithms(
            predictionInterval(estimate, std::sqrt(sill * answer.variance), fenn::analysis::intervalFactor(0.9)));
        numCovered += interval.lower <= truth && truth <= interval.upper ? 1 : 0;
    }
    const double samplingError = std::sqrt(sumSquared) / numFields;
    EXPECT_NEAR(sumDifference / numFields, 0.0, 3.0 * samplingError);
    EXPECT_LT(sumMedianDifference / numFields, -5.0 * samplingError);
    EXPECT_NEAR(static_cast<double>(numCovered) / numFields, 0.9, 3.0 * std::sqrt(0.09 / numFields));
}

TEST(OutputTransformTest, AtASampleWithoutANuggetTheExpectationIsTheSample)
{
    EXPECT_EQ(expectationOf(std::log(8.0), -2e-17, 0.0, 5.0), medianOf(std::log(8.0)));
}

TEST(OutputTransformTest, VariancesThatAreNoneGiveNoExpectation)
{
    EXPECT_TRUE(std::isnan(expectationOf(1.0, -0.1, 0.0, 1.0)));
    EXPECT_TRUE(std::isnan(expectationOf(notANumber, 0.1, 0.0, 1.0)));
}

TEST(OutputTransformTest, LogarithmsAreNatural)
{
    EXPECT_EQ(toLogarithms({1.0, 10.0}), (std::vector<double>{0.0, std::log(10.0)}));
}

TEST(OutputTransformTest, ValuesWithoutALogarithmAreNamed)
{
    for (const double value : {0.0, -1.0, notANumber, std::numeric_limits<double>::infinity()})
    {
        EXPECT_EQ(fenn::test::messageOf<std::invalid_argument>(
                      [&] {
                          toLogarithms({1.0, value});
                      }),
                  "the value of sample 1 has no logarithm: it must be above 0");
    }
}

TEST(OutputTransformTest, IntervalsAreCentralAndBackTransformedByTheirEnds)
{
    const Interval interval = predictionInterval(2.0, 0.5, 3.0);

    EXPECT_EQ(interval.lower, 0.5);
    EXPECT_EQ(interval.upper, 3.5);
    EXPECT_EQ(fromLogarithms(interval).lower, std::exp(0.5));
    EXPECT_EQ(fromLogarithms(interval).upper, std::exp(3.5));
    EXPECT_TRUE(std::isnan(predictionInterval(2.0, notANumber, 3.0).lower));
}

TEST(OutputTransformTest, ClampingBringsValuesIntoTheLimits)
{
    const Interval limits{0.0, 1.0};

    EXPECT_EQ(clamped(-0.1, limits), 0.0);
    EXPECT_EQ(clamped(0.3, limits), 0.3);
    EXPECT_EQ(clamped(7.0, limits), 1.0);
    EXPECT_TRUE(std::isnan(clamped(notANumber, limits)));
    EXPECT_EQ(clamped(-1e300, Interval()), -1e300);
}

TEST(OutputTransformTest, UnitsWithoutLogarithmsOnlyLimit)
{
    const fenn::analysis::OutputUnits plain;
    const fenn::analysis::OutputUnits limited{false, {0.0, 2.0}};

    EXPECT_EQ(plain.estimateOf(-3.0, 0.5, 0.25, 2.0), -3.0);
    EXPECT_EQ(limited.estimateOf(-3.0, 0.5, 0.25, 2.0), 0.0);
    EXPECT_EQ(limited.medianOf(5.0), 2.0);
    EXPECT_EQ(limited.intervalOf({-1.0, 1.5}).lower, 0.0);
    EXPECT_EQ(limited.intervalOf({-1.0, 1.5}).upper, 1.5);
    EXPECT_TRUE(std::isnan(limited.estimateOf(notANumber, 0.5, 0.25, 2.0)));
}

TEST(OutputTransformTest, UnitsOfLogarithmsComeBackByTheirFormulasThenLimit)
{
    const fenn::analysis::OutputUnits logarithms{true, {}};
    const fenn::analysis::OutputUnits limited{true, {1.0, 4.0}};

    EXPECT_EQ(logarithms.estimateOf(0.3, 0.5, 0.1, 2.0), expectationOf(0.3, 0.5, 0.1, 2.0));
    EXPECT_EQ(logarithms.medianOf(0.3), medianOf(0.3));
    EXPECT_EQ(logarithms.intervalOf({0.1, 0.4}).upper, std::exp(0.4));
    EXPECT_EQ(limited.estimateOf(-1.0, 0.0, 0.0, 1.0), 1.0);
    EXPECT_EQ(limited.intervalOf({-1.0, 2.0}).upper, 4.0);
    EXPECT_TRUE(logarithms == logarithms);
    EXPECT_FALSE(logarithms == limited);
}

/// The integral of (F(y) - 1{y >= truth})^2 over y by the midpoint rule, in steps of the logarithm.
double integratedCrps(double logarithmOfTruth, double mean, double deviation)
{
    constexpr double step = 1e-4;
    double sum = 0.0;
    const double low = std::min(mean - 9.0 * deviation, logarithmOfTruth);
    const double high = std::max(mean + 9.0 * deviation, logarithmOfTruth);
    for (double x = low + 0.5 * step; x < high; x += step)
    {
        const double probability = fenn::analysis::normalProbability((x - mean) / deviation);
        const double difference = x >= logarithmOfTruth ? 1.0 - probability : probability;
        sum += difference * difference * std::exp(x) * step;
    }
    return sum;
}

TEST(OutputTransformTest, TheScoreOfALogarithmIsTheIntegralInTheDatasUnits)
{
    for (const double deviation : {0.1, 0.5, 1.5})
    {
        for (const double truth : {-2.0, 0.3, 1.0, 4.0})
        {
            const double expected = integratedCrps(truth, 1.0, deviation);
            EXPECT_NEAR(fenn::analysis::crpsOfLogarithm(truth, 1.0, deviation), expected, 1e-4 * (1.0 + expected))
                << truth << ", " << deviation;
        }
    }
    EXPECT_NEAR(fenn::analysis::crpsOfLogarithm(std::log(5.0), std::log(3.0), 0.0), 2.0, 1e-14);
    EXPECT_NEAR(fenn::analysis::crpsOfLogarithm(std::log(5.0), std::log(3.0), 1e-9), 2.0, 1e-6);
}

} // namespace
