#include "surrogatemodel_kriging/InterpolationTask.h"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/BatchInputs.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A factorised system of random samples with outputs 0 to 2, and what its tasks need.
struct System
{
    System(std::size_t numInputVars, std::size_t numPts, int driftOrder, const SemivariogramInterface& semivariogram,
           std::uint64_t seed = 1)
        : samples(SampleShape{numInputVars, 3, {numPts / 3, numPts - numPts / 3}, 0.0, 0}, seed),
          sourcePts(samples.unblankedPts()),
          matrix(samples.block(), static_cast<int>(numPts), &semivariogram, driftOrder),
          normalizers(3)
    {
        std::vector<double> scratch(numInputVars);
        matrix.assemble(sourcePts, scratch);
        matrix.luDecompose();
    }

    /// Runs one task over output variables 0 and 2 that leaves an exception in failure.
    void run(ValueArrays& targets, int first, int count, ResultArrays& values, ResultArrays& variances,
             std::exception_ptr* failure = nullptr)
    {
        const std::set<int> outputVars{0, 2};
        InterpolationTask task([this](int outputVar) -> const Normalizer&
                               { return normalizers[static_cast<std::size_t>(outputVar)]; },
                               &matrix, &sourcePts, static_cast<int>(targets.getNumVars()), &targets.arrays(),
                               &outputVars, first, count, &values.arrays(), &variances.arrays(), failure);
        task.run();
    }

    /// The plain loops over all targets, against the factors as they stand now.
    NaiveRequest naive(const ValueArrays& targets, std::size_t numTargets, const NaiveSemivariogram& semivariogram,
                       int driftOrder) const
    {
        const NaiveKriging kriging(samples, sourcePts, semivariogram, driftOrder);
        const NaiveLinearSystem factors = factorsOf(matrix);
        std::vector<double> references;
        for (const Normalizer& normalizer : normalizers)
            references.push_back(normalizer.getOffset());
        return naiveRequest(targets, numTargets, 3,
                            [&](const std::vector<double>& target)
                            { return kriging.evaluate(factors, target, references); });
    }

    SampleBlocks samples;
    std::vector<SourcePointRef> sourcePts;
    KrigingMatrix matrix;
    std::vector<Normalizer> normalizers;
};

std::string textOf(const std::exception_ptr& failure)
{
    return textOfError(
        [&]
        {
            if (failure)
                std::rethrow_exception(failure);
        });
}

void expectNaiveBits(const ResultArrays& values, const ResultArrays& variances, const NaiveRequest& expected)
{
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(values[1], expected.values[2]));
    EXPECT_TRUE(sameBits(variances[0], expected.variances));
    EXPECT_TRUE(sameBits(variances[1], expected.variances));
}

const FunctionSemivariogram& oneSided()
{
    static const FunctionSemivariogram semivariogram(oneSidedModel);
    return semivariogram;
}

} // namespace

TEST(InterpolationTaskTest, APoolMayDeleteItAfterRunning)
{
    System system(1, 5, 0, oneSided());
    const std::set<int> outputVars{0};
    ValueArrays targets(randomValues(1, 1, 0.0, 1.0, 2));
    ResultArrays values(1, 1);
    ResultArrays none(0, 1);
    const InterpolationTask task([&](int) -> const Normalizer& { return system.normalizers[0]; }, &system.matrix,
                                 &system.sourcePts, 1, &targets.arrays(), &outputVars, 0, 1, &values.arrays(),
                                 &none.arrays());

    EXPECT_TRUE(task.autoDelete());
}

TEST(InterpolationTaskTest, ItWritesItsOwnTargetsOnly)
{
    System system(2, 12, 1, oneSided());
    ValueArrays targets(randomValues(2, 8, -1.0, 1.0, 2));
    NaiveRequest expected = system.naive(targets, 8, oneSidedModel, 1);
    for (const std::size_t t : {0u, 1u, 5u, 6u, 7u})
        expected.values[0][t] = expected.values[2][t] = expected.variances[t] = unwritten;
    ResultArrays values(2, 8);
    ResultArrays variances(2, 8);

    system.run(targets, 2, 3, values, variances);

    expectNaiveBits(values, variances, expected);
}

TEST(InterpolationTaskTest, AnEmptyRangeWritesNothing)
{
    System system(2, 12, 1, oneSided());
    ValueArrays targets(randomValues(2, 3, -1.0, 1.0, 2));
    ResultArrays values(2, 3);
    ResultArrays variances(2, 3);

    system.run(targets, 1, 0, values, variances);

    EXPECT_EQ(values[0], std::vector<double>(3, unwritten));
    EXPECT_EQ(variances[0], std::vector<double>(3, unwritten));
}

TEST(InterpolationTaskTest, WithoutTargetsNothingIsAskedAndNothingIsRead)
{
    const FunctionSemivariogram semivariogram(oneSidedModel);
    System system(2, 12, 1, semivariogram);
    const int numEvaluationsBefore = semivariogram.getNumEvaluations();
    const std::set<int> outputsThatDoNotExist{-1, 3, 1000000};
    std::vector<double*> none;
    int numAsked = 0;
    for (const int count : {0, -5})
    {
        InterpolationTask task(
            [&](int) -> const Normalizer&
            {
                ++numAsked;
                return system.normalizers[0];
            },
            &system.matrix, &system.sourcePts, 2, &none, &outputsThatDoNotExist, 0, count, &none, &none);

        task.run();
    }

    EXPECT_EQ(numAsked, 0);
    EXPECT_EQ(semivariogram.getNumEvaluations(), numEvaluationsBefore);
}

TEST(InterpolationTaskTest, InputsSharedWithOtherTasksGiveTheBitsOfItsOwn)
{
    System system(2, 30, 1, oneSided());
    system.normalizers[2].setOffset(-3000.0);
    const auto normalizerOf = [&](int outputVar) -> const Normalizer&
    {
        return system.normalizers[static_cast<std::size_t>(outputVar)];
    };
    const std::set<int> outputVars{0, 2};
    ValueArrays targets(randomValues(2, 40, -1.0, 1.0, 2));
    ResultArrays values(2, 40);
    ResultArrays variances(2, 40);
    const NaiveRequest expected = system.naive(targets, 40, oneSidedModel, 1);
    const fenn::BatchInputs inputs(system.matrix, system.sourcePts, outputVars, normalizerOf);
    for (const int first : {0, 15})
    {
        InterpolationTask task([](int) -> const Normalizer& { throw std::logic_error("gathered twice"); },
                               &system.matrix, &system.sourcePts, 2, &targets.arrays(), &outputVars, first,
                               first == 0 ? 15 : 25, &values.arrays(), &variances.arrays());
        task.setBatchInputs(&inputs);

        task.run();
    }

    expectNaiveBits(values, variances, expected);
}

TEST(InterpolationTaskTest, EstimatesAndVariancesHaveTheBitsOfTheNaiveLoops)
{
    for (std::size_t numTargets = 0; numTargets <= 40; ++numTargets)
    {
        const std::size_t d = 1 + numTargets % 3;
        const int driftOrder = static_cast<int>(numTargets % 4);
        SCOPED_TRACE(testing::Message() << numTargets << " targets, " << d << " variables, order " << driftOrder);
        System system(d, 24 + numTargets, driftOrder, oneSided(), numTargets);
        auto targetValues = randomValues(d, numTargets, -1.5, 1.5, 3 + numTargets);
        if (numTargets > 5)
            targetValues[0][numTargets / 2] = notANumber;
        ValueArrays targets(targetValues);
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);

        system.run(targets, 0, static_cast<int>(numTargets), values, variances);

        expectNaiveBits(values, variances, system.naive(targets, numTargets, oneSidedModel, driftOrder));
    }
}

TEST(InterpolationTaskTest, LargerSystemsHaveTheBitsOfTheNaiveLoops)
{
    for (const std::size_t numPts : {97u, 128u, 129u, 200u, 257u, 300u})
    {
        SCOPED_TRACE(numPts);
        System system(2, numPts, 2, oneSided(), numPts);
        ValueArrays targets(randomValues(2, 37, -1.5, 1.5, 4));
        ResultArrays values(2, 37);
        ResultArrays variances(2, 37);

        system.run(targets, 0, 37, values, variances);

        expectNaiveBits(values, variances, system.naive(targets, 37, oneSidedModel, 2));
    }
}

TEST(InterpolationTaskTest, WithoutVariancesTheEstimatesAreTheSame)
{
    System system(2, 30, 1, oneSided());
    ValueArrays targets(randomValues(2, 19, -1.0, 1.0, 2));
    ResultArrays values(2, 19);
    ResultArrays none(0, 19);

    system.run(targets, 0, 19, values, none);

    const NaiveRequest expected = system.naive(targets, 19, oneSidedModel, 1);
    EXPECT_TRUE(sameBits(values[0], expected.values[0]));
    EXPECT_TRUE(sameBits(values[1], expected.values[2]));
}

TEST(InterpolationTaskTest, EachPairOfSourceAndTargetIsEvaluatedOnce)
{
    const FunctionSemivariogram semivariogram(oneSidedModel);
    System system(2, 15, 1, semivariogram);
    const int numBefore = semivariogram.getNumEvaluations();
    ValueArrays targets(randomValues(2, 11, -1.0, 1.0, 2));
    ResultArrays values(2, 11);
    ResultArrays variances(2, 11);

    system.run(targets, 0, 11, values, variances);

    EXPECT_EQ(semivariogram.getNumEvaluations() - numBefore, 15 * 11);
}

TEST(InterpolationTaskTest, AnOffsetBeyondTheThresholdCentresThatOutput)
{
    for (const std::size_t numTargets : {1U, 19U})
    {
        SCOPED_TRACE(numTargets);
        System system(2, 30, 1, oneSided());
        system.normalizers[2].setOffset(-3000.0);
        ValueArrays targets(randomValues(2, numTargets, -1.0, 1.0, 2));
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);
        const NaiveRequest centred = system.naive(targets, numTargets, oneSidedModel, 1);

        system.run(targets, 0, static_cast<int>(numTargets), values, variances);

        expectNaiveBits(values, variances, centred);
        system.normalizers[2].setOffset(2896.0);
        const NaiveRequest plain = system.naive(targets, numTargets, oneSidedModel, 1);
        EXPECT_FALSE(sameBits(values[1], plain.values[2]));
        for (std::size_t t = 0; t < numTargets; ++t)
            EXPECT_NEAR(values[1][t], plain.values[2][t], 1e-9); // weights sum to 1 up to rounding, times 3000
    }
}

TEST(InterpolationTaskTest, ANaNOffsetTakesThePlainSum)
{
    for (const std::size_t numTargets : {1U, 19U})
    {
        SCOPED_TRACE(numTargets);
        System system(2, 30, 1, oneSided());
        ValueArrays targets(randomValues(2, numTargets, -1.0, 1.0, 2));
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);
        const NaiveRequest plain = system.naive(targets, numTargets, oneSidedModel, 1);
        system.normalizers[0].setOffset(notANumber);

        system.run(targets, 0, static_cast<int>(numTargets), values, variances);

        expectNaiveBits(values, variances, plain);
    }
}

TEST(InterpolationTaskTest, SumsStartWithTheirFirstProduct)
{
    System system(1, 10, 0, oneSided());
    for (std::vector<double>& output : system.samples.outputs[0])
        output.assign(output.size(), 1.0);
    for (std::vector<double>& output : system.samples.outputs[1])
        output.assign(output.size(), 1.0);
    for (int i = 0; i < 11; ++i) // factors of a diagonal matrix: every weight comes out as -0
    {
        std::fill_n(system.matrix.getRow(i), 11, 0.0);
        system.matrix.getRow(i)[i] = -infinity;
    }
    ValueArrays targets(randomValues(1, 9, -1.0, 1.0, 2));
    ResultArrays values(2, 9);
    ResultArrays variances(2, 9);

    system.run(targets, 0, 9, values, variances);

    EXPECT_TRUE(sameBits(values[0], std::vector<double>(9, -0.0)));
    EXPECT_TRUE(sameBits(variances[0], std::vector<double>(9, -0.0)));
}

TEST(InterpolationTaskTest, EachTargetSkipsItsOwnLeadingZerosOnly)
{
    const FunctionSemivariogram distance([](const std::vector<double>& separation)
                                         { return std::fabs(separation[0]); });
    const NaiveSemivariogram naiveDistance = [](const std::vector<double>& separation)
    {
        return std::fabs(separation[0]);
    };
    System system(1, 14, 0, distance);
    NaiveLinearSystem::Rows identity(15, std::vector<double>(15, 0.0));
    for (std::size_t i = 0; i < 15; ++i)
        identity[i][i] = 1.0;
    fillMatrix(system.matrix, identity); // exchanges nothing: source point 0 comes first
    system.matrix.luDecompose();
    const double zeroAt = system.samples.inputs[0][0][0];
    for (const double factor : {infinity, notANumber})
    {
        for (int i = 1; i < 15; ++i)
            system.matrix.getRow(i)[0] = factor;
        for (std::size_t numTargets = 1; numTargets <= 20; ++numTargets)
        {
            for (std::size_t onSource = 0; onSource < numTargets; ++onSource)
            {
                std::vector<double> coordinates(numTargets, zeroAt);
                coordinates[onSource] = zeroAt + 0.5;
                ValueArrays targets(std::vector<std::vector<double>>{coordinates});
                ResultArrays values(2, numTargets);
                ResultArrays variances(2, numTargets);
                const NaiveRequest expected = system.naive(targets, numTargets, naiveDistance, 0);
                std::exception_ptr failure;

                system.run(targets, 0, static_cast<int>(numTargets), values, variances, &failure);

                ASSERT_EQ(failure == nullptr, expected.failure.empty());
                expectNaiveBits(values, variances, expected);
            }
        }
    }
}

TEST(InterpolationTaskTest, ChangedFactorsGiveTheNaiveOutcomes)
{
    for (std::uint64_t seed = 0; seed < 60; ++seed)
    {
        SCOPED_TRACE(seed);
        System system(2, 10 + seed, 1, oneSided(), seed);
        RandomNumbers numbers(seed + 500);
        const int n = system.matrix.getDimension();
        const auto changes = randomRows(allMatrixKinds[seed % 7], static_cast<std::size_t>(n), numbers);
        const int column = static_cast<int>(numbers.next(0.0, n));
        for (int i = 0; i < n; ++i)
            system.matrix.getRow(i)[column] = changes[static_cast<std::size_t>(i)][static_cast<std::size_t>(column)];
        ValueArrays targets(randomValues(2, 23, -1.0, 1.0, seed));
        ResultArrays values(2, 23);
        ResultArrays variances(2, 23);
        const NaiveRequest expected = system.naive(targets, 23, oneSidedModel, 1);
        std::exception_ptr failure;

        system.run(targets, 0, 23, values, variances, &failure);

        EXPECT_EQ(textOf(failure), expected.failure.empty() ? "no Error" : expected.failure);
        expectNaiveBits(values, variances, expected);
    }
}

TEST(InterpolationTaskTest, ASingularFactorIsLeftInThePlaceForIt)
{
    System system(1, 6, 0, oneSided());
    system.matrix.getRow(3)[3] = 0.0;
    ValueArrays targets({{0.1, 0.2}});
    ResultArrays values(2, 2);
    ResultArrays variances(2, 2);
    std::exception_ptr failure;

    system.run(targets, 0, 2, values, variances, &failure);

    EXPECT_EQ(textOf(failure), "Singular matrix");
    EXPECT_EQ(values[0], std::vector<double>(2, unwritten));
    EXPECT_EQ(variances[0], std::vector<double>(2, unwritten));
}

TEST(InterpolationTaskTest, AnOverflowIsLeftInThePlaceForIt)
{
    System system(1, 6, 0, oneSided());
    system.matrix.getRow(6)[6] = 1e-150;
    system.matrix.getRow(6)[0] = 1e10;
    ValueArrays targets({{0.1, 0.2}});
    ResultArrays values(2, 2);
    ResultArrays variances(2, 2);
    std::exception_ptr failure;

    system.run(targets, 0, 2, values, variances, &failure);

    EXPECT_EQ(textOf(failure), "Value overflow");
}

TEST(InterpolationTaskTest, WithoutAPlaceForItAFailureLeavesRun)
{
    System system(1, 6, 0, oneSided());
    system.matrix.getRow(3)[3] = 0.0;
    ValueArrays targets({{0.1, 0.2}});
    ResultArrays values(2, 2);
    ResultArrays variances(2, 2);

    EXPECT_EQ(textOfError([&] { system.run(targets, 0, 2, values, variances); }), "Singular matrix");
}

TEST(InterpolationTaskTest, ASuccessLeavesThePlaceForAFailureEmpty)
{
    System system(1, 6, 0, oneSided());
    ValueArrays targets({{0.1, 0.2}});
    ResultArrays values(2, 2);
    ResultArrays variances(2, 2);
    std::exception_ptr failure;

    system.run(targets, 0, 2, values, variances, &failure);

    EXPECT_EQ(failure, nullptr);
}

TEST(InterpolationTaskTest, TargetsBeforeAnOverflowingOneAreWrittenAndThoseAfterItAreNot)
{
    const std::size_t numTargets = 27;
    for (std::size_t failing = 0; failing < numTargets; ++failing)
    {
        SCOPED_TRACE(failing);
        System system(1, 20, 1, oneSided());
        auto targetValues = randomValues(1, numTargets, -1.0, 1.0, 5);
        targetValues[0][failing] = 1e153; // takes the weights beyond 1e150
        ValueArrays targets(targetValues);
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);
        const NaiveRequest expected = system.naive(targets, numTargets, oneSidedModel, 1);
        std::exception_ptr failure;

        system.run(targets, 0, static_cast<int>(numTargets), values, variances, &failure);

        EXPECT_EQ(textOf(failure), "Value overflow");
        EXPECT_EQ(expected.values[0][failing], unwritten);
        expectNaiveBits(values, variances, expected);
    }
}

TEST(InterpolationTaskTest, AnExceptionOfTheModelIsKeptWithItsTypeAndStopsAtItsTarget)
{
    const FunctionSemivariogram failsFarAway(
        [](const std::vector<double>& separation)
        {
            if (std::fabs(separation[0]) > 50.0)
                throw std::runtime_error("too far away");
            return oneSidedModel(separation);
        });
    const std::size_t numTargets = 21;
    for (std::size_t failing = 0; failing < numTargets; ++failing)
    {
        SCOPED_TRACE(failing);
        System system(1, 20, 0, failsFarAway);
        auto targetValues = randomValues(1, numTargets, -1.0, 1.0, 5);
        ValueArrays targets(targetValues);
        NaiveRequest expected = system.naive(targets, numTargets, oneSidedModel, 0);
        for (std::size_t t = failing; t < numTargets; ++t)
            expected.values[0][t] = expected.values[2][t] = expected.variances[t] = unwritten;
        targets[0][failing] = 100.0;
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);
        std::exception_ptr failure;

        system.run(targets, 0, static_cast<int>(numTargets), values, variances, &failure);

        ASSERT_NE(failure, nullptr);
        EXPECT_THROW(std::rethrow_exception(failure), std::runtime_error);
        expectNaiveBits(values, variances, expected);
    }
}
