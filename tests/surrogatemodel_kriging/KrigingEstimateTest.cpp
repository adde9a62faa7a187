// The weighted sums of KrigingMatrix.

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/NaiveKriging.h"

using namespace fenn::test;

namespace
{

const double threshold = std::sqrt(8388608.0);

/// A system over two points of outputs 10 and 20; weights of 1 each tell a plain sum, 30, from a centred one.
struct TwoPoints
{
    double centred(double reference) const
    {
        return matrix.estimateCentered(0, reference, samples.unblankedPts(), weights.data());
    }

    SampleBlocks samples{{{0.0, 1.0}}, {{10.0, 20.0}}};
    FunctionSemivariogram semivariogram{oneSidedModel};
    KrigingMatrix matrix{samples.block(), 2, &semivariogram, 0};
    std::vector<double> weights{1.0, 1.0};
};

} // namespace

TEST(KrigingEstimateTest, AnEstimateIsTheWeightedSumOfTheChosenOutputInEveryBlock)
{
    const SampleBlocks samples({{{0.0, 1.0}}, {{2.0}}}, {{{1.0, 2.0}, {10.0, 20.0}}, {{3.0}, {30.0}}},
                               {{true, true}, {true}}, {Normalizer()});
    const FunctionSemivariogram semivariogram(oneSidedModel);
    const KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    const std::vector<SourcePointRef> points{{1, 0}, {0, 1}};
    const double weights[] = {0.5, 2.0};

    EXPECT_EQ(matrix.estimate(0, points, weights), 5.5);
    EXPECT_EQ(matrix.estimate(1, points, weights), 55.0);
}

TEST(KrigingEstimateTest, AnEstimateStartsWithItsFirstProduct)
{
    const TwoPoints system;
    const double weights[] = {-0.0, -0.0};

    EXPECT_TRUE(std::signbit(system.matrix.estimate(0, system.samples.unblankedPts(), weights)));
}

TEST(KrigingEstimateTest, AnEstimateOfOnePointIsOneProduct)
{
    const SampleBlocks samples(SampleBlocks::Values{{}}, {{{7.0, 9.0}}}, {{true, true}}, {});
    const FunctionSemivariogram semivariogram(oneSidedModel);
    const KrigingMatrix matrix(samples.block(), 1, &semivariogram, 0);
    const double weights[] = {3.0, 5.0};

    EXPECT_EQ(matrix.estimate(0, samples.unblankedPts(), weights), 21.0);
}

TEST(KrigingEstimateTest, AnEstimateReadsTheOutputsEachTime)
{
    TwoPoints system;
    system.samples.outputs[0][0][1] = 25.0;

    EXPECT_EQ(system.matrix.estimate(0, system.samples.unblankedPts(), system.weights.data()), 35.0);
}

TEST(KrigingEstimateTest, ASumRoundsEachProductBeforeAddingIt)
{
    const SampleBlocks samples({{0.0, 1.0}}, {{1.0, 1.0 + 0x1p-30}});
    const FunctionSemivariogram semivariogram(oneSidedModel);
    const KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    const double weights[] = {-1.0 - 0x1p-29, 1.0 + 0x1p-30}; // the exact sum is 2^-60

    EXPECT_EQ(matrix.estimate(0, samples.unblankedPts(), weights), 0.0);
}

TEST(KrigingEstimateTest, AReferenceOf3000IsCentredBy)
{
    EXPECT_EQ(TwoPoints().centred(3000.0), -2970.0); // (10 - 3000) + (20 - 3000) + 3000
    EXPECT_EQ(TwoPoints().centred(-3000.0), 3030.0);
}

TEST(KrigingEstimateTest, AReferenceOf2896TakesThePlainSum)
{
    EXPECT_EQ(TwoPoints().centred(2896.0), 30.0);
    EXPECT_EQ(TwoPoints().centred(-2896.0), 30.0);
    EXPECT_EQ(TwoPoints().centred(0.0), 30.0);
}

TEST(KrigingEstimateTest, TheThresholdItselfTakesThePlainSum)
{
    EXPECT_EQ(threshold, 2896.309375740099);
    EXPECT_EQ(TwoPoints().centred(threshold), 30.0);
    EXPECT_EQ(TwoPoints().centred(-threshold), 30.0);
}

TEST(KrigingEstimateTest, TheNextReferenceBeyondTheThresholdIsCentredBy)
{
    EXPECT_LT(TwoPoints().centred(std::nextafter(threshold, 1e9)), -2800.0);
    EXPECT_GT(TwoPoints().centred(std::nextafter(-threshold, -1e9)), 2800.0);
}

TEST(KrigingEstimateTest, ANaNReferenceTakesThePlainSum)
{
    EXPECT_EQ(TwoPoints().centred(std::numeric_limits<double>::quiet_NaN()), 30.0);
}

TEST(KrigingEstimateTest, AnInfiniteReferenceIsCentredBy)
{
    EXPECT_TRUE(std::isnan(TwoPoints().centred(std::numeric_limits<double>::infinity())));
}

TEST(KrigingEstimateTest, TheReferenceIsAddedLast)
{
    TwoPoints system;
    system.samples.outputs[0][0] = {1e16, 1e16 + 2.0};
    system.weights = {0.5, 0.5};

    EXPECT_EQ(system.centred(1e16), 1e16);       // 0 + 1, then 1e16 + 1 rounds to even
    EXPECT_EQ(system.centred(1e16 - 4.0), 1e16); // 2 + 3, then 1e16 - 4 + 5 rounds to even
}

TEST(KrigingEstimateTest, BothSumsHaveTheBitsOfTheNaiveOnes)
{
    RandomNumbers numbers(110);
    for (std::size_t n = 2; n <= 70; ++n)
    {
        SCOPED_TRACE(n);
        const SampleBlocks samples(SampleShape{1, 3, {n / 2, n - n / 2}, 0.0, 0}, 111 + n);
        const std::vector<SourcePointRef> points = samples.unblankedPts();
        const FunctionSemivariogram semivariogram(oneSidedModel);
        const KrigingMatrix matrix(samples.block(), static_cast<int>(n), &semivariogram, 0);
        const NaiveKriging naive(samples, points, oneSidedModel, 0);
        std::vector<double> weights;
        for (std::size_t j = 0; j < n; ++j)
            weights.push_back(numbers.next(-1.0, 1.0));
        for (std::size_t o = 0; o < 3; ++o)
        {
            const int outputVar = static_cast<int>(o);
            EXPECT_TRUE(sameBits(matrix.estimate(outputVar, points, weights.data()), naive.estimate(o, 0.0, weights)));
            EXPECT_TRUE(sameBits(matrix.estimateCentered(outputVar, 4321.1, points, weights.data()),
                                 naive.estimate(o, 4321.1, weights)));
        }
    }
}
