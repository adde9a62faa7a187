#include "surrogatemodel_kriging/BatchEstimator.h"

#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/SampleBlocks.h"
#include "tests/support/Samples.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::test::FunctionSemivariogram;
using fenn::test::randomValues;
using fenn::test::sameBits;
using fenn::test::SampleBlocks;
using fenn::test::textOfError;
using fenn::test::ValueArrays;

constexpr double unwritten = -77.0;

std::vector<SourcePointRef> allPoints(int numPts)
{
    std::vector<SourcePointRef> points;
    for (int i = 0; i < numPts; ++i)
        points.emplace_back(0, i);
    return points;
}

/// A factorised system over random points of the plane with two outputs, the second of which is centred.
class BatchSystem
{
public:
    BatchSystem(int numPts, int driftOrder, const SemivariogramInterface* model = nullptr,
                const std::function<void(KrigingMatrix&)>& change = nullptr)
        : samples(randomValues(2, static_cast<std::size_t>(numPts), -1.0, 1.0, 1),
                  randomValues(2, static_cast<std::size_t>(numPts), 4000.0, 5000.0, 2)),
          normalizers(2),
          spherical(normalizers, normalizers, {-1.0, -1.0}, {1.0, 1.0}, 1.0, 0.0),
          points(allPoints(numPts)),
          matrix(samples.block(), numPts, model == nullptr ? &spherical : model, driftOrder),
          outputNormalizers(2)
    {
        outputNormalizers[1].setOffset(-4500.0);
        std::vector<double> scratch(2);
        matrix.assemble(points, scratch);
        if (change)
            change(matrix);
        matrix.luDecompose();
    }

    std::function<const Normalizer&(int)> normalizerOf() const
    {
        return [this](int o) -> const Normalizer&
        {
            return outputNormalizers[static_cast<std::size_t>(o)];
        };
    }

    /// Values, then variances, of the targets, by the single forms; stops at the first that throws.
    std::vector<double> interpolateSingly(const ValueArrays& targets, std::size_t numTargets)
    {
        std::vector<double> result(4 * numTargets, unwritten);
        std::vector<double> rhs(static_cast<std::size_t>(matrix.getDimension())), scratch(2);
        for (std::size_t t = 0; t < numTargets; ++t)
        {
            matrix.buildRightHandSide(rhs.data(), 0, {targets[0][t], targets[1][t]}, points, scratch);
            const std::vector<double> kept = rhs;
            if (textOfError([&] { matrix.luSolve(rhs.data()); }) != "no Error")
                break;
            for (std::size_t o = 0; o < 2; ++o)
            {
                result[o * numTargets + t] =
                    matrix.estimateCentered(static_cast<int>(o), outputNormalizers[o].getOffset(), points, rhs.data());
                result[(2 + o) * numTargets + t] = matrix.dotProduct(rhs.data(), kept.data());
            }
        }
        return result;
    }

    /// The same side by side.
    std::vector<double> interpolate(ValueArrays& targets, std::size_t numTargets, std::string* error = nullptr)
    {
        ValueArrays results(std::vector<std::vector<double>>(4, std::vector<double>(numTargets, unwritten)));
        const std::vector<double*> values{results.arrays()[0], results.arrays()[1]};
        const std::vector<double*> variances{results.arrays()[2], results.arrays()[3]};
        const fenn::BatchInputs inputs(matrix, points, {0, 1}, normalizerOf());
        fenn::BatchEstimator estimator(matrix, inputs, true, static_cast<int>(numTargets));
        try
        {
            estimator.evaluate(targets.arrays(), 0, static_cast<int>(numTargets), values, variances);
        }
        catch (const std::exception& failure)
        {
            if (error == nullptr)
                throw;
            *error = failure.what();
        }
        std::vector<double> result;
        for (std::size_t v = 0; v < 4; ++v)
            result.insert(result.end(), results[v].begin(), results[v].end());
        return result;
    }

    SampleBlocks samples;
    std::vector<Normalizer> normalizers;
    SphericalSemivariogram spherical;
    std::vector<SourcePointRef> points;
    KrigingMatrix matrix;
    std::vector<Normalizer> outputNormalizers;
};

TEST(BatchEstimatorTest, AnyNumberOfTargetsHasTheBitsOfTheSingleForms)
{
    BatchSystem system(40, 3);
    for (std::size_t numTargets = 0; numTargets <= 70; ++numTargets)
    {
        SCOPED_TRACE(numTargets);
        ValueArrays targets(randomValues(2, numTargets, -2.0, 2.0, 3));
        EXPECT_TRUE(sameBits(system.interpolate(targets, numTargets), system.interpolateSingly(targets, numTargets)));
    }
}

// Under the undefined-behaviour sanitizer: the count of strips must not overflow on the way.
TEST(BatchEstimatorTest, AsManyTargetsAsAnIntCountsMayBeAnnounced)
{
    const BatchSystem system(6, 0);
    ValueArrays targets(randomValues(2, 1, -1.0, 1.0, 3));
    ValueArrays results(4, 1);
    const std::vector<double*> values{results.arrays()[0], results.arrays()[1]};
    const fenn::BatchInputs inputs(system.matrix, system.points, {0, 1}, system.normalizerOf());
    fenn::BatchEstimator estimator(system.matrix, inputs, false, std::numeric_limits<int>::max());

    estimator.evaluate(targets.arrays(), 0, 1, values, {});

    fenn::BatchEstimator exact(system.matrix, inputs, false, 1);
    exact.evaluate(targets.arrays(), 0, 1, {results.arrays()[2], results.arrays()[3]}, {});
    EXPECT_EQ(results[0], results[2]);
    EXPECT_EQ(results[1], results[3]);
}

TEST(BatchEstimatorTest, ALargeSystemHasTheBitsOfTheSingleForms)
{
    BatchSystem system(200, 1);
    ValueArrays targets(randomValues(2, 101, -1.0, 1.0, 4));
    EXPECT_TRUE(sameBits(system.interpolate(targets, 101), system.interpolateSingly(targets, 101)));
}

TEST(BatchEstimatorTest, AnOverflowIsThrownAtItsTargetAndLeavesTheOnesBefore)
{
    for (const std::size_t failing : {0U, 7U, 31U, 32U, 45U, 99U})
    {
        SCOPED_TRACE(failing);
        BatchSystem system(20, 1);
        ValueArrays targets(randomValues(2, 100, -1.0, 1.0, 5));
        targets[0][failing] = 1e200;
        std::string error;
        const std::vector<double> results = system.interpolate(targets, 100, &error);
        EXPECT_EQ(error, "Value overflow");
        EXPECT_TRUE(sameBits(results, system.interpolateSingly(targets, 100)));
        EXPECT_EQ(results[failing], unwritten);
    }
}

TEST(BatchEstimatorTest, ANaNTargetGetsNaNAndDoesNotThrow)
{
    BatchSystem system(20, 1);
    ValueArrays targets(randomValues(2, 40, -1.0, 1.0, 6));
    targets[1][17] = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> results = system.interpolate(targets, 40);
    EXPECT_TRUE(std::isnan(results[17]));
    EXPECT_TRUE(sameBits(results, system.interpolateSingly(targets, 40)));
}

TEST(BatchEstimatorTest, LeadingZerosAreSkippedAsInTheSingleSolve)
{
    // Row 0 becomes the first pivot, so that a target on point 0 begins with a zero; an infinite factor in that column
    // then shows whether the zero is multiplied.
    BatchSystem system(20, 0, nullptr,
                       [](KrigingMatrix& matrix)
                       {
                           matrix.getRow(0)[0] = 2.0;
                           matrix.getRow(20)[0] = 0.5;
                       });
    ASSERT_EQ(system.matrix.getPivot(0), 0);
    system.matrix.getRow(3)[0] = std::numeric_limits<double>::infinity();
    ValueArrays targets(randomValues(2, 40, -1.0, 1.0, 7));
    for (std::size_t v = 0; v < 2; ++v)
        targets[v][9] = system.samples.block().getInputValueArraysForBlock(0)[v][0];
    const std::vector<double> results = system.interpolate(targets, 40);
    EXPECT_TRUE(sameBits(results, system.interpolateSingly(targets, 40)));
    EXPECT_FALSE(std::isnan(results[9]));
    EXPECT_TRUE(std::isnan(results[8]));
}

TEST(BatchEstimatorTest, WithoutVariancesTargetsSolvedSinglyHaveTheirEstimates)
{
    BatchSystem system(20, 0, nullptr,
                       [](KrigingMatrix& matrix)
                       {
                           matrix.getRow(0)[0] = 2.0;
                           matrix.getRow(20)[0] = 0.5;
                       });
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 7));
    for (std::size_t v = 0; v < 2; ++v)
        targets[v][9] = system.samples.block().getInputValueArraysForBlock(0)[v][0]; // begins with a zero
    ValueArrays values(std::vector<std::vector<double>>(2, std::vector<double>(10, unwritten)));
    const fenn::BatchInputs inputs(system.matrix, system.points, {0, 1}, system.normalizerOf());
    fenn::BatchEstimator estimator(system.matrix, inputs, false, 10);

    estimator.evaluate(targets.arrays(), 0, 10, values.arrays(), {});

    const std::vector<double> expected = system.interpolateSingly(targets, 10);
    EXPECT_TRUE(sameBits(values[0], {expected.begin(), expected.begin() + 10}));
    EXPECT_TRUE(sameBits(values[1], {expected.begin() + 10, expected.begin() + 20}));
}

TEST(BatchEstimatorTest, TargetsSolvedSinglyHaveTheirDriftProducts)
{
    BatchSystem system(20, 1, nullptr,
                       [](KrigingMatrix& matrix)
                       {
                           matrix.getRow(0)[0] = 2.0;
                           for (int i = 20; i < 23; ++i)
                               matrix.getRow(i)[0] *= 0.5;
                       });
    ASSERT_EQ(system.matrix.getPivot(0), 0);
    ValueArrays targets(randomValues(2, 10, -1.0, 1.0, 7));
    for (std::size_t v = 0; v < 2; ++v)
        targets[v][9] = system.samples.block().getInputValueArraysForBlock(0)[v][0]; // begins with a zero
    ValueArrays values(std::vector<std::vector<double>>(2, std::vector<double>(10, unwritten)));
    std::vector<double> driftProducts(10, unwritten);
    const fenn::BatchInputs inputs(system.matrix, system.points, {0, 1}, system.normalizerOf());
    fenn::BatchEstimator estimator(system.matrix, inputs, false, 10);
    estimator.setDriftProducts(driftProducts.data());

    estimator.evaluate(targets.arrays(), 0, 10, values.arrays(), {});

    std::vector<double> rhs(23), scratch(2);
    for (std::size_t t = 0; t < 10; ++t)
    {
        system.matrix.buildRightHandSide(rhs.data(), 0, {targets[0][t], targets[1][t]}, system.points, scratch);
        const std::vector<double> kept = rhs;
        system.matrix.luSolve(rhs.data());
        EXPECT_EQ(driftProducts[t], rhs[20] * kept[20] + rhs[21] * kept[21] + rhs[22] * kept[22]) << "target " << t;
    }
}

TEST(BatchEstimatorTest, AModelOfTheHostsOwnIsAskedOncePerPairTargetByTarget)
{
    const FunctionSemivariogram model(fenn::test::oneSidedModel);
    BatchSystem system(20, 1, &model);
    ValueArrays targets(randomValues(2, 50, -1.0, 1.0, 8));
    const int before = model.getNumEvaluations();
    const std::vector<double> results = system.interpolate(targets, 50);
    EXPECT_EQ(model.getNumEvaluations() - before, 20 * 50);
    EXPECT_TRUE(sameBits(results, system.interpolateSingly(targets, 50)));
}

TEST(BatchEstimatorTest, AModelThatThrowsLeavesTheTargetsBeforeItsOwn)
{
    for (const std::size_t failing : {0U, 7U, 31U, 32U, 45U})
    {
        SCOPED_TRACE(failing);
        const FunctionSemivariogram model(
            [](const std::vector<double>& separation)
            {
                if (separation[0] < -50.0)
                    throw std::runtime_error("far away");
                return fenn::test::oneSidedModel(separation);
            });
        BatchSystem system(20, 0, &model);
        ValueArrays targets(randomValues(2, 50, -1.0, 1.0, 9));
        std::vector<double> expected = system.interpolateSingly(targets, 50);
        targets[0][failing] = 100.0;
        for (std::size_t e = 0; e < expected.size(); ++e)
        {
            if (e % 50 >= failing)
                expected[e] = unwritten;
        }
        std::string error;
        EXPECT_TRUE(sameBits(system.interpolate(targets, 50, &error), expected));
        EXPECT_EQ(error, "far away");
    }
}

TEST(BatchEstimatorTest, OfAnOverflowAndALaterThrowingModelTheOverflowIsSeen)
{
    const FunctionSemivariogram model(
        [](const std::vector<double>& separation)
        {
            if (separation[1] < -50.0)
                throw std::runtime_error("far away");
            return separation[0] < -1e100 ? 1.0 : fenn::test::oneSidedModel(separation);
        });
    BatchSystem system(20, 1, &model);
    ValueArrays targets(randomValues(2, 50, -1.0, 1.0, 10));
    targets[0][33] = 1e200;
    targets[1][40] = 100.0;
    std::string error;
    system.interpolate(targets, 50, &error);
    EXPECT_EQ(error, "Value overflow");
}

} // namespace
