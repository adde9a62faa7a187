#include "analysis/Likelihood.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "analysis/Sill.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/analysis/SimulatedField.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::calcRestrictedLikelihood;
using fenn::analysis::RestrictedLikelihood;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::DenseKriging;
using fenn::test::DenseMatrix;
using fenn::test::smoothSamples;

/// Each term by itself, in covariance form.
double denseDeviance(const SampleSet& samples, const ModelSettings& settings, std::size_t outputVar)
{
    const auto parts = makeModelParts(samples, settings);
    const DenseKriging dense(*parts, settings);
    const DenseMatrix c = dense.covariances();
    const DenseMatrix f = dense.drift();
    const DenseMatrix z = fenn::test::columnOf(samples.getOutput(outputVar));
    const DenseMatrix ofDrift = f.transposed() * c.solve(f);
    const DenseMatrix trend = f * ofDrift.solve(f.transposed() * c.solve(z));
    DenseMatrix residuals = z;
    for (std::size_t i = 0; i < samples.getNumSamples(); ++i)
        residuals(i, 0) -= trend(i, 0);
    const auto numFree = static_cast<long double>(samples.getNumSamples() - f.getNumColumns());
    const long double sill = (residuals.transposed() * c.solve(residuals))(0, 0) / numFree;
    return static_cast<double>(numFree * std::log(sill) + c.logDeterminant() + ofDrift.logDeterminant() -
                               (f.transposed() * f).logDeterminant());
}

TEST(LikelihoodTest, DevianceIsThatOfTheCovarianceFormTermByTerm)
{
    const SampleSet samples = smoothSamples(45, 4);
    for (const int driftOrder : {0, 1, 2, 3})
    {
        for (const double nugget : {0.0, 0.3, 1.0})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const ModelSettings settings{-1.0, {1.0, 2.0}, driftOrder, 0.6, nugget, 0};

            const RestrictedLikelihood likelihood = calcRestrictedLikelihood(samples, settings);

            EXPECT_EQ(likelihood.failure, "");
            for (std::size_t w = 0; w < 2; ++w)
            {
                EXPECT_NEAR(likelihood.deviances[w], denseDeviance(samples, settings, w), 1e-7);
                EXPECT_NEAR(likelihood.sills[w] / fenn::analysis::estimateSills(samples, settings)[w].value, 1.0, 1e-9);
            }
            EXPECT_EQ(likelihood.calcSum(), likelihood.deviances[0] + likelihood.deviances[1]);
        }
    }
}

TEST(LikelihoodTest, UnitsOfTheInputsDoNotMatter)
{
    const SampleSet samples = smoothSamples(40, 5);
    std::vector<std::vector<double>> kilometres{samples.getInput(0), samples.getInput(1)};
    for (std::vector<double>& column : kilometres)
    {
        for (double& value : column)
            value = 300.0 + value / 1000.0;
    }
    const SampleSet others(kilometres, {samples.getOutput(0)});
    const ModelSettings settings{-1.0, {1.0, 1.0}, 2, 0.6, 0.1, 0};

    EXPECT_NEAR(calcRestrictedLikelihood(others, settings).deviances[0],
                calcRestrictedLikelihood(samples, settings).deviances[0], 1e-6);
}

TEST(LikelihoodTest, OfManyFieldsTheModelTheyWereMadeFromIsTheMostLikely)
{
    const ModelSettings truth{-1.0, {}, 0, 0.4, 0.3, 0};
    const std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 70, 0.0, 1.0, 6);
    const auto meanDeviance = [&](double rangeFraction, double nugget)
    {
        double sum = 0.0;
        for (std::uint64_t k = 0; k < 25; ++k)
            sum += calcRestrictedLikelihood(fenn::test::simulatedField(inputs, truth, 2.0, 10.0, 500 + k),
                                            {-1.0, {}, 0, rangeFraction, nugget, 0})
                       .calcSum();
        return sum / 25.0;
    };
    const double best = meanDeviance(truth.rangeFraction, truth.nugget);

    EXPECT_LT(best, meanDeviance(0.2, 0.3));
    EXPECT_LT(best, meanDeviance(0.8, 0.3));
    EXPECT_LT(best, meanDeviance(0.4, 0.05));
    EXPECT_LT(best, meanDeviance(0.4, 0.7));
}

TEST(LikelihoodTest, OutputsInOtherUnitsShiftTheDevianceByTheirLogarithm)
{
    const SampleSet samples = smoothSamples(40, 7);
    std::vector<double> larger;
    for (const double value : samples.getOutput(0))
        larger.push_back(8.0 * value);
    const SampleSet others({samples.getInput(0), samples.getInput(1)}, {larger});

    EXPECT_NEAR(calcRestrictedLikelihood(others, {}).deviances[0] - calcRestrictedLikelihood(samples, {}).deviances[0],
                39.0 * std::log(64.0), 1e-8);
}

TEST(LikelihoodTest, PointsThatCannotBeToldApartFail)
{
    for (const double distance : {0.0, 1e-15, 5e-15})
    {
        const SampleSet samples({{0.0, 0.25, 0.25 + distance, 0.7, 1.0}}, {{1.0, 2.0, 2.0, 3.0, 0.0}});

        const RestrictedLikelihood likelihood = calcRestrictedLikelihood(samples, {});

        EXPECT_EQ(likelihood.failure, "Points cannot be told apart") << distance;
        EXPECT_EQ(likelihood.calcSum(), std::numeric_limits<double>::infinity());
        EXPECT_EQ(calcRestrictedLikelihood(samples, {-1.0, {}, 0, 1.0, 0.1, 0}).failure, "");
    }
}

TEST(LikelihoodTest, ADriftThatTheSamplesDoNotDetermineFails)
{
    // On a line in two inputs.
    const SampleSet samples({{0.0, 1.0, 2.0, 3.5, 4.0}, {0.0, 0.3, 0.6, 1.05, 1.2}}, {{1.0, 2.0, 0.0, 3.0, 5.0}});

    EXPECT_EQ(calcRestrictedLikelihood(samples, {}).failure, "");
    EXPECT_NE(calcRestrictedLikelihood(samples, {-1.0, {}, 1, 1.0, 0.0, 0}).failure, "");
}

TEST(LikelihoodTest, AsManyPointsAsDriftColumnsFail)
{
    const SampleSet samples({{0.0, 1.0, 3.0}}, {{1.0, 2.0, 6.0}});

    EXPECT_EQ(calcRestrictedLikelihood(samples, {-1.0, {}, 2, 1.0, 0.0, 0}).failure,
              "No more points than terms of the drift");
}

TEST(LikelihoodTest, AConstantOutputSaysNothing)
{
    const SampleSet samples(fenn::test::randomValues(2, 30, 0.0, 1.0, 12), {std::vector<double>(30, 5.1)});

    EXPECT_EQ(calcRestrictedLikelihood(samples, {}).calcSum(), 0.0);
}

TEST(LikelihoodTest, AnOutputThatTheDriftMeetsCountsAsRounding)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(1, 20, 0.0, 1.0, 13);
    const SampleSet samples(inputs, {inputs[0]});

    const RestrictedLikelihood likelihood = calcRestrictedLikelihood(samples, {-1.0, {}, 1, 1.0, 0.0, 0});

    EXPECT_EQ(likelihood.failure, "");
    EXPECT_NEAR(likelihood.sills[0] / samples.calcOutputVariance(0), 1e-24, 1e-30);
}

TEST(LikelihoodTest, TooFewPointsAreTheLibrarysError)
{
    EXPECT_THROW(calcRestrictedLikelihood(SampleSet({{0.0}}, {{1.0}}), {-1.0, {1.0}, 0, 1.0, 0.0, 0}),
                 SurrogateModelInterface::Error);
}

} // namespace
