#include "surrogatemodel_kriging/KrigingMatrix.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/NaiveKriging.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double untouched = -77.0;

double distanceModel(const std::vector<double>& separation)
{
    double lagSquared = 0.0;
    for (const double difference : separation)
        lagSquared += difference * difference;
    return std::sqrt(lagSquared);
}

std::string textOfConstruction(std::size_t numInputVars, int numPts, int driftOrder)
{
    const SampleBlocks samples(SampleShape{numInputVars, 1, {40}, 0.0, 0}, 1);
    const FunctionSemivariogram semivariogram(distanceModel);
    return textOfError([&] { const KrigingMatrix matrix(samples.block(), numPts, &semivariogram, driftOrder); });
}

/// The drift terms of one target under identity normalizers, and the closing 1.
std::vector<double> driftTermsOf(const std::vector<double>& target, int driftOrder)
{
    const std::size_t d = target.size();
    const SampleBlocks samples(std::vector<std::vector<double>>(d, std::vector<double>(40)), {std::vector<double>(40)});
    const FunctionSemivariogram semivariogram(distanceModel);
    const KrigingMatrix matrix(samples.block(), 40, &semivariogram, driftOrder);
    std::vector<double> rhs(static_cast<std::size_t>(matrix.getDimension()), untouched);
    std::vector<double> scratch(d);
    matrix.buildRightHandSide(rhs.data(), 0, target, samples.unblankedPts(), scratch);
    return {rhs.begin() + 40, rhs.end()};
}

} // namespace

TEST(NumDriftTermsTest, OrderZeroAndNegativeOrdersHaveNone)
{
    for (const int d : {0, 1, 3, 10})
    {
        EXPECT_EQ(numDriftTerms(0, d), 0);
        EXPECT_EQ(numDriftTerms(-1, d), 0);
        EXPECT_EQ(numDriftTerms(std::numeric_limits<int>::min(), d), 0);
    }
}

TEST(NumDriftTermsTest, OrdersOneToFourCountTheMonomials)
{
    for (int d = 0; d <= 60; ++d)
    {
        const int quadratic = d * (d + 1) / 2;
        const int cubic = d * (d + 1) * (d + 2) / 6;
        const int quartic = d * (d + 1) * (d + 2) * (d + 3) / 24;
        EXPECT_EQ(numDriftTerms(1, d), d);
        EXPECT_EQ(numDriftTerms(2, d), d + quadratic);
        EXPECT_EQ(numDriftTerms(3, d), d + quadratic + cubic);
        EXPECT_EQ(numDriftTerms(4, d), d + quadratic + cubic + quartic);
    }
}

TEST(NumDriftTermsTest, ThreeVariablesOfOrderFourHaveThirtyFour)
{
    EXPECT_EQ(numDriftTerms(4, 3), 34);
}

TEST(NumDriftTermsTest, OrdersAboveFourActAsFour)
{
    EXPECT_EQ(numDriftTerms(7, 3), 34);
    EXPECT_EQ(numDriftTerms(std::numeric_limits<int>::max(), 2), 14);
}

TEST(NumDriftTermsTest, IsLimitedToTheLargestInt)
{
    EXPECT_EQ(numDriftTerms(4, 100000), std::numeric_limits<int>::max());
}

TEST(KrigingMatrixTest, NoMorePointsThanVariablesAreNotEnoughForKriging)
{
    EXPECT_EQ(textOfConstruction(2, 2, 0), "Not enough source points for kriging.");
    EXPECT_EQ(textOfConstruction(3, 3, 0), "Not enough source points for kriging.");
    EXPECT_EQ(textOfConstruction(1, 0, 0), "Not enough source points for kriging.");
    EXPECT_EQ(textOfConstruction(1, -5, 0), "Not enough source points for kriging.");
}

TEST(KrigingMatrixTest, OnePointMoreThanVariablesIsEnoughForKriging)
{
    EXPECT_EQ(textOfConstruction(2, 3, 0), "no Error");
    EXPECT_EQ(textOfConstruction(3, 4, 1), "no Error");
}

TEST(KrigingMatrixTest, FewerPointsThanDriftTermsAreNotEnough)
{
    EXPECT_EQ(textOfConstruction(2, 4, 2), "Not enough source points to calculate drift.");
    EXPECT_EQ(textOfConstruction(3, 33, 4), "Not enough source points to calculate drift.");
    EXPECT_EQ(textOfConstruction(3, 33, 7), "Not enough source points to calculate drift.");
}

TEST(KrigingMatrixTest, AsManyPointsAsDriftTermsAreAccepted)
{
    EXPECT_EQ(textOfConstruction(2, 5, 2), "no Error");
    EXPECT_EQ(textOfConstruction(3, 34, 7), "no Error");
}

TEST(KrigingMatrixTest, TooFewPointsForKrigingAreNoticedBeforeTooFewForTheDrift)
{
    EXPECT_EQ(textOfConstruction(2, 2, 2), "Not enough source points for kriging.");
}

TEST(KrigingMatrixTest, MoreRowsThanAnIntCountsAreALengthError)
{
    const SampleBlocks samples(SampleShape{}, 1);
    const FunctionSemivariogram semivariogram(distanceModel);

    EXPECT_THROW(KrigingMatrix(samples.block(), std::numeric_limits<int>::max(), &semivariogram, 0), std::length_error);
}

TEST(KrigingMatrixTest, TheDimensionIsPointsPlusDriftTermsPlusOne)
{
    const SampleBlocks samples(SampleShape{}, 1);
    const FunctionSemivariogram semivariogram(distanceModel);
    const KrigingMatrix matrix(samples.block(), 8, &semivariogram, 2);

    EXPECT_EQ(matrix.getDimension(), 14);
    EXPECT_EQ(matrix.getNumPts(), 8);
}

TEST(KrigingMatrixTest, ConstructionAsksTheModelNothing)
{
    const SampleBlocks samples(SampleShape{}, 1);
    const FunctionSemivariogram semivariogram(distanceModel);
    const KrigingMatrix matrix(samples.block(), 8, &semivariogram, 2);

    EXPECT_EQ(semivariogram.getNumEvaluations(), 0);
}

TEST(KrigingMatrixTest, WithoutDriftTheSystemIsTheModelBorderedByOnes)
{
    const SampleBlocks samples({{0.0, 1.0, 3.0}}, {{0.0, 0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    KrigingMatrix matrix(samples.block(), 3, &semivariogram, 0);
    std::vector<double> scratch(1);

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_TRUE(sameBits(elementsOf(matrix), {0.0, 1.0, 3.0, 1.0, //
                                              1.0, 0.0, 2.0, 1.0, //
                                              3.0, 2.0, 0.0, 1.0, //
                                              1.0, 1.0, 1.0, 0.0}));
}

TEST(KrigingMatrixTest, WithDriftTheSystemHasARowAndAColumnPerTerm)
{
    const SampleBlocks samples({{0.0, 1.0, 3.0}}, {{0.0, 0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    KrigingMatrix matrix(samples.block(), 3, &semivariogram, 2);
    std::vector<double> scratch(1);

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_TRUE(sameBits(elementsOf(matrix), {0.0, 1.0, 3.0, 0.0, 0.0, 1.0, //
                                              1.0, 0.0, 2.0, 1.0, 1.0, 1.0, //
                                              3.0, 2.0, 0.0, 3.0, 9.0, 1.0, //
                                              0.0, 1.0, 3.0, 0.0, 0.0, 0.0, //
                                              0.0, 1.0, 9.0, 0.0, 0.0, 0.0, //
                                              1.0, 1.0, 1.0, 0.0, 0.0, 0.0}));
}

TEST(KrigingMatrixTest, AssemblyTakesTheLaterPointMinusTheEarlierOneForBothTriangles)
{
    const SampleBlocks samples({{0.0, 4.0}}, {{0.0, 0.0}});
    const FunctionSemivariogram semivariogram([](const std::vector<double>& separation) { return separation[0]; });
    KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    std::vector<double> scratch(1);

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_EQ(matrix.getRow(0)[1], 4.0);
    EXPECT_EQ(matrix.getRow(1)[0], 4.0);
}

TEST(KrigingMatrixTest, AssemblyEvaluatesEachPairOnceAndTheDiagonalNever)
{
    const SampleBlocks samples(SampleShape{2, 1, {9, 4}, 0.0, 0}, 1);
    const FunctionSemivariogram semivariogram(distanceModel);
    KrigingMatrix matrix(samples.block(), 13, &semivariogram, 1);
    std::vector<double> scratch(2);

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_EQ(semivariogram.getNumEvaluations(), 78);
}

TEST(KrigingMatrixTest, AssemblyUsesOnlyAsManyPointsAsItWasBuiltFor)
{
    const SampleBlocks samples({{0.0, 1.0, 9.0}}, {{0.0, 0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    std::vector<double> scratch(1);

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_TRUE(sameBits(elementsOf(matrix), {0.0, 1.0, 1.0, 1.0, 0.0, 1.0, 1.0, 1.0, 0.0}));
}

TEST(KrigingMatrixTest, AssemblyReadsTheCoordinatesEachTime)
{
    SampleBlocks samples({{0.0, 1.0}}, {{0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    std::vector<double> scratch(1);
    matrix.assemble(samples.unblankedPts(), scratch);
    samples.inputs[0][0][1] = 5.0;

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_EQ(matrix.getRow(0)[1], 5.0);
}

TEST(KrigingMatrixTest, AssemblyHasTheBitsOfTheNaiveSystem)
{
    for (std::size_t d = 1; d <= 4; ++d)
    {
        const SampleBlocks samples(SampleShape{d, 1, {31, 0, 45, 17}, 0.2, d == 2 ? 5 : 0}, 70 + d);
        const std::vector<SourcePointRef> points = samples.unblankedPts();
        const std::vector<double> low(d, -1.0), high(d, 1.0);
        const SphericalSemivariogram spherical(low, samples.normalizers, low, high, 0.6, 0.1);
        const FunctionSemivariogram oneSided(oneSidedModel);
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            SCOPED_TRACE(testing::Message() << d << " variables, order " << driftOrder);
            const int numPts = static_cast<int>(points.size());
            std::vector<double> scratch(d);
            KrigingMatrix matrix(samples.block(), numPts, &spherical, driftOrder);
            KrigingMatrix oneSidedMatrix(samples.block(), numPts, &oneSided, driftOrder);

            matrix.assemble(points, scratch);
            oneSidedMatrix.assemble(points, scratch);

            const NaiveSemivariogram naive = naiveSpherical(scalesOf(samples.normalizers), low, high, 0.6, 0.1);
            const NaiveKriging expected(samples, points, naive, driftOrder);
            const NaiveKriging oneSidedExpected(samples, points, oneSidedModel, driftOrder);
            EXPECT_TRUE(sameBits(elementsOf(matrix), elementsOf(expected.rows())));
            EXPECT_TRUE(sameBits(elementsOf(oneSidedMatrix), elementsOf(oneSidedExpected.rows())));
        }
    }
}

TEST(KrigingMatrixTest, AssemblyInMoreThanThirtyTwoVariablesHasTheBitsOfTheNaiveSystem)
{
    constexpr std::size_t d = 33;
    const SampleBlocks samples(SampleShape{d, 1, {40}, 0.0, 0}, 75);
    const std::vector<SourcePointRef> points = samples.unblankedPts();
    const std::vector<double> low(d, -1.0), high(d, 1.0);
    const SphericalSemivariogram spherical(low, samples.normalizers, low, high, 0.6, 0.1);
    KrigingMatrix matrix(samples.block(), 40, &spherical, 1);
    std::vector<double> scratch(d);

    matrix.assemble(points, scratch);

    const NaiveSemivariogram naive = naiveSpherical(scalesOf(samples.normalizers), low, high, 0.6, 0.1);
    EXPECT_TRUE(sameBits(elementsOf(matrix), elementsOf(NaiveKriging(samples, points, naive, 1).rows())));
}

TEST(KrigingMatrixTest, ReassemblyAfterAFactorisationHasTheBitsOfTheNaiveSystem)
{
    const SampleBlocks samples(SampleShape{2, 1, {25, 25}, 0.0, 0}, 80);
    const FunctionSemivariogram semivariogram(oneSidedModel);
    KrigingMatrix matrix(samples.block(), 20, &semivariogram, 3);
    std::vector<double> scratch(2);
    std::vector<SourcePointRef> points = samples.unblankedPts();
    for (int round = 0; round < 4; ++round)
    {
        matrix.assemble(points, scratch);

        std::vector<SourcePointRef> used(points.begin(), points.begin() + 20);
        const NaiveKriging expected(samples, used, oneSidedModel, 3);
        EXPECT_TRUE(sameBits(elementsOf(matrix), elementsOf(expected.rows()))) << "round " << round;
        matrix.luDecompose();
        std::rotate(points.begin(), points.begin() + 7, points.end());
    }
}

TEST(KrigingMatrixTest, ANaNCoordinateReachesTheSystem)
{
    const SampleBlocks samples({{0.0, notANumber, 3.0}}, {{0.0, 0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    KrigingMatrix matrix(samples.block(), 3, &semivariogram, 1);
    std::vector<double> scratch(1);

    matrix.assemble(samples.unblankedPts(), scratch);

    EXPECT_TRUE(sameBits(elementsOf(matrix), {0.0,        notANumber, 3.0,        0.0,        1.0, //
                                              notANumber, 0.0,        notANumber, notANumber, 1.0, //
                                              3.0,        notANumber, 0.0,        3.0,        1.0, //
                                              0.0,        notANumber, 3.0,        0.0,        0.0, //
                                              1.0,        1.0,        1.0,        0.0,        0.0}));
}

TEST(KrigingMatrixTest, DriftTermsOfTwoVariablesOfOrderThreeAreNested)
{
    EXPECT_EQ(driftTermsOf({2.0, 3.0}, 3), (std::vector<double>{2.0, 4.0, 8.0, 3.0, 6.0, 12.0, 9.0, 18.0, 27.0, 1.0}));
}

TEST(KrigingMatrixTest, DriftTermsOfThreeVariablesOfOrderFourAreNested)
{
    EXPECT_EQ(driftTermsOf({2.0, 3.0, 5.0}, 4),
              (std::vector<double>{2.0,  4.0,  8.0,   16.0, 3.0,   6.0,   12.0,  24.0,  9.0,   18.0,  36.0, 27.0,
                                   54.0, 81.0, 5.0,   10.0, 20.0,  40.0,  15.0,  30.0,  60.0,  45.0,  90.0, 135.0,
                                   25.0, 50.0, 100.0, 75.0, 150.0, 225.0, 125.0, 250.0, 375.0, 625.0, 1.0}));
}

TEST(KrigingMatrixTest, DriftTermsOfOrderSevenAreThoseOfOrderFour)
{
    EXPECT_EQ(driftTermsOf({2.0, 3.0, 5.0}, 7), driftTermsOf({2.0, 3.0, 5.0}, 4));
}

TEST(KrigingMatrixTest, DriftTermsOfOrdersOneAndTwo)
{
    EXPECT_EQ(driftTermsOf({2.0, 3.0}, 1), (std::vector<double>{2.0, 3.0, 1.0}));
    EXPECT_EQ(driftTermsOf({2.0, 3.0}, 2), (std::vector<double>{2.0, 4.0, 3.0, 6.0, 9.0, 1.0}));
}

TEST(KrigingMatrixTest, NegativeDriftOrdersHaveTheConstantOnly)
{
    EXPECT_EQ(driftTermsOf({2.0, 3.0}, -3), (std::vector<double>{1.0}));
}

TEST(KrigingMatrixTest, DriftTermsAreMultipliedFromLeftToRight)
{
    const double u = 1e-110;

    EXPECT_EQ(driftTermsOf({u, 1e200}, 4)[7], 1e200 * u * u * u); // u1 u0^3; (u0^3) underflows on its own
    EXPECT_EQ(u * u * u, 0.0);
}

TEST(KrigingMatrixTest, DriftTermsAreOfTheNormalisedTarget)
{
    const SampleBlocks samples({{{0.0, 1.0, 3.0}}}, {{{0.0, 0.0, 0.0}}}, {{true, true, true}},
                               {normalizerOf(-1.0, 4.0)});
    const FunctionSemivariogram semivariogram(distanceModel);
    const KrigingMatrix matrix(samples.block(), 3, &semivariogram, 2);
    std::vector<double> rhs(6);
    std::vector<double> scratch(1);

    matrix.buildRightHandSide(rhs.data(), 0, {3.0}, samples.unblankedPts(), scratch);

    EXPECT_EQ(rhs, (std::vector<double>{3.0, 2.0, 0.0, 8.0, 64.0, 1.0}));
}

TEST(KrigingMatrixTest, TheRightHandSideTakesSourceMinusTarget)
{
    const SampleBlocks samples({{5.0, 1.0}}, {{0.0, 0.0}});
    const FunctionSemivariogram semivariogram([](const std::vector<double>& separation) { return separation[0]; });
    const KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    std::vector<double> rhs(3);
    std::vector<double> scratch(1);

    matrix.buildRightHandSide(rhs.data(), 0, {3.0}, samples.unblankedPts(), scratch);

    EXPECT_EQ(rhs, (std::vector<double>{2.0, -2.0, 1.0}));
}

TEST(KrigingMatrixTest, TheRightHandSideStartsAtTheGivenEntryAndEndsWithTheDimension)
{
    const SampleBlocks samples({{5.0, 1.0, 2.0}}, {{0.0, 0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    const KrigingMatrix matrix(samples.block(), 3, &semivariogram, 1);
    std::vector<double> scratch(1);
    std::vector<double> fromOne(6, untouched);
    std::vector<double> fromThree(6, untouched);

    matrix.buildRightHandSide(fromOne.data(), 1, {3.0}, samples.unblankedPts(), scratch);
    matrix.buildRightHandSide(fromThree.data(), 3, {3.0}, samples.unblankedPts(), scratch);

    EXPECT_EQ(fromOne, (std::vector<double>{untouched, 2.0, 1.0, 3.0, 1.0, untouched}));
    EXPECT_EQ(fromThree, (std::vector<double>{untouched, untouched, untouched, 3.0, 1.0, untouched}));
}

TEST(KrigingMatrixTest, ARightHandSideBegunPastThePointsPutsTheConstraintsThere)
{
    const SampleBlocks samples({{5.0, 1.0, 2.0}}, {{0.0, 0.0, 0.0}});
    const FunctionSemivariogram semivariogram(distanceModel);
    const KrigingMatrix matrix(samples.block(), 3, &semivariogram, 1);
    std::vector<double> scratch(1);
    std::vector<double> fromFour(7, untouched);

    matrix.buildRightHandSide(fromFour.data(), 4, {3.0}, samples.unblankedPts(), scratch);

    EXPECT_EQ(fromFour, (std::vector<double>{untouched, untouched, untouched, untouched, 3.0, 1.0, untouched}));
}

TEST(KrigingMatrixTest, ATargetOnASourcePointSeesTheNugget)
{
    const SampleBlocks samples({{0.0, 1.0, 2.0}}, {{0.0, 0.0, 0.0}});
    const SphericalSemivariogram semivariogram(samples.normalizers, samples.normalizers, {0.0}, {2.0}, 1.0, 0.1);
    const KrigingMatrix matrix(samples.block(), 3, &semivariogram, 0);
    std::vector<double> rhs(4);
    std::vector<double> scratch(1);

    matrix.buildRightHandSide(rhs.data(), 0, {1.0}, samples.unblankedPts(), scratch);

    EXPECT_EQ(rhs[1], 0.1);
}

TEST(KrigingMatrixTest, TheRightHandSideHasTheBitsOfTheNaiveOne)
{
    RandomNumbers numbers(90);
    for (std::size_t d = 1; d <= 4; ++d)
    {
        const SampleBlocks samples(SampleShape{d, 1, {30, 50}, 0.1, 0}, 90 + d);
        const std::vector<SourcePointRef> points = samples.unblankedPts();
        const FunctionSemivariogram semivariogram(oneSidedModel);
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            SCOPED_TRACE(testing::Message() << d << " variables, order " << driftOrder);
            const KrigingMatrix matrix(samples.block(), static_cast<int>(points.size()), &semivariogram, driftOrder);
            const NaiveKriging naive(samples, points, oneSidedModel, driftOrder);
            std::vector<double> rhs(static_cast<std::size_t>(matrix.getDimension()));
            std::vector<double> scratch(d);
            for (int sample = 0; sample < 20; ++sample)
            {
                std::vector<double> target;
                for (std::size_t v = 0; v < d; ++v)
                    target.push_back(sample == 7 ? notANumber : numbers.next(-2.0, 2.0));

                matrix.buildRightHandSide(rhs.data(), 0, target, points, scratch);

                ASSERT_TRUE(sameBits(rhs, naive.rightHandSide(target)));
            }
        }
    }
}

TEST(KrigingMatrixTest, NoInputVariablesGiveASystemOfNuggetsAndOnes)
{
    const SampleBlocks samples(SampleBlocks::Values{{}}, {{{7.0, 9.0}}}, {{true, true}}, {});
    const SphericalSemivariogram semivariogram(samples.normalizers, samples.normalizers, {}, {}, 1.0, 0.25);
    KrigingMatrix matrix(samples.block(), 2, &semivariogram, 3);
    std::vector<double> scratch;
    std::vector<double> rhs(3);

    matrix.assemble(samples.unblankedPts(), scratch);
    matrix.buildRightHandSide(rhs.data(), 0, {}, samples.unblankedPts(), scratch);

    EXPECT_TRUE(sameBits(elementsOf(matrix), {0.0, 0.25, 1.0, 0.25, 0.0, 1.0, 1.0, 1.0, 0.0}));
    EXPECT_EQ(rhs, (std::vector<double>{0.25, 0.25, 1.0}));
}
