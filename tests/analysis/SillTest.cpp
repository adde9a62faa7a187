#include "analysis/Sill.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "analysis/LeaveOneOut.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/analysis/SimulatedField.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::estimateSills;
using fenn::analysis::Sill;
using fenn::analysis::SillMethod;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::DenseKriging;
using fenn::test::DenseMatrix;
using fenn::test::smoothSamples;

/// z^T P z / (n - q) from the covariance form, P multiplied out.
double denseSill(const SampleSet& samples, const ModelSettings& settings, std::size_t outputVar)
{
    const auto parts = makeModelParts(samples, settings);
    const DenseKriging dense(*parts, settings);
    const DenseMatrix c = dense.covariances();
    const DenseMatrix f = dense.drift();
    DenseMatrix z(samples.getNumSamples(), 1);
    for (std::size_t i = 0; i < samples.getNumSamples(); ++i)
        z(i, 0) = samples.getOutput(outputVar)[i];
    const DenseMatrix coefficients =
        (f.transposed() * c.solve(f)).solve(f.transposed() * c.solve(z)); // generalised least squares
    DenseMatrix residuals = z;
    const DenseMatrix trend = f * coefficients;
    for (std::size_t i = 0; i < samples.getNumSamples(); ++i)
        residuals(i, 0) -= trend(i, 0);
    const auto numFree = static_cast<long double>(samples.getNumSamples() - f.getNumColumns());
    return static_cast<double>((residuals.transposed() * c.solve(residuals))(0, 0) / numFree);
}

TEST(SillTest, GlobalSillIsTheClosedFormOfTheCovarianceForm)
{
    const SampleSet samples = smoothSamples(50, 4);
    for (const int driftOrder : {0, 1, 2, 3})
    {
        for (const double nugget : {0.0, 0.3, 1.0})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const ModelSettings settings{-1.0, {1.0, 2.0}, driftOrder, 0.6, nugget, 0};

            const std::vector<Sill> sills = estimateSills(samples, settings);

            ASSERT_EQ(sills.size(), 2U);
            for (std::size_t w = 0; w < 2; ++w)
            {
                EXPECT_EQ(sills[w].method, SillMethod::RestrictedLikelihood);
                EXPECT_EQ(sills[w].numUsed, 50U);
                EXPECT_NEAR(sills[w].value / denseSill(samples, settings, w), 1.0, 1e-10);
            }
        }
    }
}

TEST(SillTest, APureNuggetWithoutDriftGivesTheSampleVariance)
{
    const SampleSet samples = smoothSamples(30, 5);

    const std::vector<Sill> sills = estimateSills(samples, {-1.0, {}, 0, 1.0, 1.0, 0});

    EXPECT_NEAR(sills[0].value, samples.calcOutputVariance(0), 1e-12);
    EXPECT_EQ(sills[0].sampleVariance, samples.calcOutputVariance(0));
}

TEST(SillTest, SillsGoWithTheSquareOfTheUnitAndNotWithTheOffset)
{
    const SampleSet samples = smoothSamples(40, 6);
    std::vector<double> feet;
    for (const double value : samples.getOutput(0))
        feet.push_back(1e6 + value / 0.3048);
    const SampleSet others({samples.getInput(0), samples.getInput(1)}, {feet});
    for (const int numNearestPoints : {0, 10})
    {
        const ModelSettings settings{-1.0, {}, 0, 0.5, 0.1, numNearestPoints};

        EXPECT_NEAR(estimateSills(others, settings)[0].value * 0.3048 * 0.3048 /
                        estimateSills(samples, settings)[0].value,
                    1.0, 1e-6);
    }
}

TEST(SillTest, SillsOfSimulatedFieldsAreMetOnAverage)
{
    constexpr double sill = 4.0;
    constexpr std::size_t numFields = 60;
    const std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 60, 0.0, 1.0, 7);
    for (const int numNearestPoints : {0, 12})
    {
        const ModelSettings settings{-1.0, {}, 1, 0.3, 0.2, numNearestPoints};
        double sum = 0.0;
        double sumSquared = 0.0;
        for (std::uint64_t k = 0; k < numFields; ++k)
        {
            const double value =
                estimateSills(fenn::test::simulatedField(inputs, settings, sill, 100.0, 1000 + k), settings)[0].value;
            sum += value;
            sumSquared += value * value;
        }
        const double mean = sum / numFields;
        const double deviationOfMean = std::sqrt((sumSquared / numFields - mean * mean) / numFields);
        EXPECT_NEAR(mean, sill, 3.0 * deviationOfMean) << numNearestPoints;
        EXPECT_LT(deviationOfMean, 0.2) << numNearestPoints;
    }
}

TEST(SillTest, LocalSillIsTheMeanSquaredStandardisedErrorOfLeaveOneOut)
{
    const SampleSet samples = smoothSamples(80, 8);
    const ModelSettings settings{-1.0, {}, 0, 0.5, 0.1, 12};
    const auto leftOut = fenn::analysis::leaveOneOut(samples, settings);
    for (std::size_t w = 0; w < 2; ++w)
    {
        double sum = 0.0;
        for (std::size_t i = 0; i < 80; ++i)
        {
            const double error = leftOut.estimates.values[w][i] - leftOut.truths[w][i];
            sum += error * error / leftOut.estimates.variances[i];
        }

        const Sill sill = estimateSills(samples, settings)[w];

        EXPECT_EQ(sill.method, SillMethod::LeaveOneOut);
        EXPECT_EQ(sill.numUsed, 80U);
        EXPECT_NEAR(sill.value / (sum / 80.0), 1.0, 1e-12);
    }
}

TEST(SillTest, LocalSillsLookAtAThousandPointsAtMost)
{
    const SampleSet samples = smoothSamples(1500, 9);
    std::size_t total = 0;

    const Sill sill = estimateSills(samples, {-1.0, {}, 0, 0.5, 0.1, 8},
                                    [&](std::size_t, std::size_t total_)
                                    {
                                        total = total_;
                                        return true;
                                    })[0];

    EXPECT_EQ(sill.numUsed, 1000U);
    EXPECT_EQ(total, 1000U);
}

TEST(SillTest, AsManyPointsAsDriftColumnsLeaveTheSampleVariance)
{
    const SampleSet samples({{0.0, 1.0, 3.0}}, {{1.0, 2.0, 6.0}});

    const Sill sill = estimateSills(samples, {-1.0, {}, 2, 1.0, 0.0, 0})[0];

    EXPECT_EQ(sill.method, SillMethod::SampleVariance);
    EXPECT_EQ(sill.value, 7.0);
}

TEST(SillTest, PointsThatCannotBeToldApartLeaveTheSampleVariance)
{
    const SampleSet samples({{0.0, 1.0, 1.0, 3.0, 4.0}}, {{1.0, 2.0, 4.0, 3.0, 0.0}});

    EXPECT_EQ(estimateSills(samples, {})[0].method, SillMethod::SampleVariance);
    EXPECT_EQ(estimateSills(samples, {-1.0, {}, 0, 1.0, 0.1, 0})[0].method, SillMethod::RestrictedLikelihood);
}

TEST(SillTest, LocalRepeatsAndSamplesHardlyApartAreLeftOutOfTheMean)
{
    for (const double distance : {0.0, 1e-13})
    {
        std::vector<std::vector<double>> inputs = fenn::test::randomValues(1, 40, 0.0, 1.0, 10);
        inputs[0][7] = inputs[0][3] + distance;
        const SampleSet samples(inputs, fenn::test::randomValues(1, 40, 0.0, 1.0, 11));

        const Sill sill = estimateSills(samples, {-1.0, {}, 0, 1.0, 0.0, 3})[0];

        EXPECT_EQ(sill.method, SillMethod::LeaveOneOut);
        EXPECT_LE(sill.numUsed, 38U);
        EXPECT_GE(sill.numUsed, 25U);
        EXPECT_LT(sill.value, 1e6);
    }
}

TEST(SillTest, MergedSamplesCountAsOnePoint)
{
    const SampleSet samples({{0.0, 1.0, 1.0, 3.0, 4.0}}, {{1.0, 2.0, 4.0, 3.0, 0.0}});
    const SampleSet averaged({{0.0, 3.0, 4.0, 1.0}}, {{1.0, 3.0, 0.0, 3.0}});

    const Sill merged = estimateSills(samples, {0.0, {}, 0, 1.0, 0.0, 0})[0];

    EXPECT_EQ(merged.numUsed, 4U);
    EXPECT_NEAR(merged.value, denseSill(averaged, {}, 0), 1e-13);
}

TEST(SillTest, AConstantOutputHasNoSill)
{
    const SampleSet samples(fenn::test::randomValues(2, 30, 0.0, 1.0, 12), {std::vector<double>(30, 5.1)});

    EXPECT_NEAR(estimateSills(samples, {})[0].value, 0.0, 1e-25);
    EXPECT_NEAR(estimateSills(samples, {-1.0, {}, 0, 1.0, 0.0, 8})[0].value, 0.0, 1e-25);
}

TEST(SillTest, ProgressMayStop)
{
    const SampleSet samples = smoothSamples(50, 13);

    EXPECT_THROW(estimateSills(samples, {-1.0, {}, 0, 1.0, 0.0, 8},
                               [](std::size_t numDone, std::size_t) { return numDone < 3; }),
                 fenn::analysis::Cancelled);
}

} // namespace
