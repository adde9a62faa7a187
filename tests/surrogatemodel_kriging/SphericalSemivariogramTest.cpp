#include "surrogatemodel_kriging/SphericalSemivariogram.h"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/BitComparison.h"
#include "tests/support/NaiveKriging.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A model in one variable of scale 1 whose corners are range apart; keeps the normalizer that it refers to.
struct UnitModel
{
    UnitModel(double range, double nugget, double rangeFraction = 1.0)
        : model(normalizers, normalizers, {0.0}, {range}, rangeFraction, nugget)
    {
    }

    double operator()(double separation) const
    {
        return model.evaluate({separation});
    }

    std::vector<Normalizer> normalizers{Normalizer()};
    SphericalSemivariogram model;
};

} // namespace

TEST(SphericalSemivariogramTest, HalfTheRangeGivesElevenSixteenths)
{
    EXPECT_EQ(UnitModel(2.0, 0.0)(1.0), 0.6875);
}

TEST(SphericalSemivariogramTest, TheRangeItselfGivesTheSill)
{
    EXPECT_EQ(UnitModel(2.0, 0.0)(2.0), 1.0);
    EXPECT_EQ(UnitModel(0.3, 0.2)(0.3), 1.0);
}

TEST(SphericalSemivariogramTest, EverySeparationBeyondTheRangeGivesTheSill)
{
    const UnitModel gamma(2.0, 0.1);

    EXPECT_EQ(gamma(2.5), 1.0);
    EXPECT_EQ(gamma(1e300), 1.0);
    EXPECT_EQ(gamma(-infinity), 1.0);
}

TEST(SphericalSemivariogramTest, ZeroSeparationGivesTheNuggetNotZero)
{
    const UnitModel gamma(2.0, 0.1);

    EXPECT_EQ(gamma(0.0), 0.1);
    EXPECT_EQ(gamma(-0.0), 0.1);
}

TEST(SphericalSemivariogramTest, TendsToTheNuggetForSmallSeparations)
{
    const UnitModel gamma(2.0, 0.1);

    EXPECT_NEAR(gamma(1e-12), 0.1, 1e-12); // the slope at 0 is 0.9 * 1.5 / 2
    EXPECT_GT(gamma(1e-12), 0.1);
}

TEST(SphericalSemivariogramTest, ASeparationWhoseSquareUnderflowsGivesTheNugget)
{
    EXPECT_EQ(UnitModel(2.0, 0.1)(1e-170), 0.1);
}

TEST(SphericalSemivariogramTest, ANaNCoordinateGivesNaN)
{
    EXPECT_TRUE(std::isnan(UnitModel(2.0, 0.1)(notANumber)));
}

TEST(SphericalSemivariogramTest, AZeroRangeGivesTheSillForEverySeparationAboveZero)
{
    const UnitModel gamma(0.0, 0.1);

    EXPECT_EQ(gamma(1e-100), 1.0);
    EXPECT_EQ(gamma(5.0), 1.0);
}

TEST(SphericalSemivariogramTest, AZeroRangeGivesTheNuggetAtZero)
{
    EXPECT_EQ(UnitModel(0.0, 0.1)(0.0), 0.1);
}

TEST(SphericalSemivariogramTest, ANegativeRangeFractionActsAsItsMagnitude)
{
    EXPECT_EQ(UnitModel(4.0, 0.0, -0.5)(1.0), 0.6875);
    EXPECT_EQ(UnitModel(4.0, 0.0, -0.5)(2.0), 1.0);
}

TEST(SphericalSemivariogramTest, TheRangeIsTheFractionOfTheDistanceBetweenTheCorners)
{
    EXPECT_EQ(UnitModel(8.0, 0.0, 0.25)(1.0), 0.6875);
}

TEST(SphericalSemivariogramTest, ANaNCornerGivesNaNForEverySeparationAboveZero)
{
    const UnitModel gamma(notANumber, 0.1);

    EXPECT_TRUE(std::isnan(gamma(1.0)));
    EXPECT_EQ(gamma(0.0), 0.1);
}

TEST(SphericalSemivariogramTest, NoInputVariablesGiveTheNugget)
{
    const std::vector<Normalizer> none;
    const SphericalSemivariogram gamma(std::vector<int>(), none, {}, {}, 1.0, 0.25);

    EXPECT_EQ(gamma.evaluate({}), 0.25);
    EXPECT_EQ(gamma.evaluate({7.0}), 0.25);
}

TEST(SphericalSemivariogramTest, OnlyAsManyCoordinatesAsTheTemplateHasAreRead)
{
    const std::vector<Normalizer> normalizers(2);
    const std::vector<std::string> oneVariable(1);
    const SphericalSemivariogram gamma(oneVariable, normalizers, {0.0, 0.0}, {2.0, 99.0}, 1.0, 0.0);

    EXPECT_EQ(gamma.evaluate({1.0, 50.0}), 0.6875);
}

TEST(SphericalSemivariogramTest, EachVariableIsMultipliedByItsOwnScale)
{
    const std::vector<Normalizer> normalizers{normalizerOf(5.0, 2.0), normalizerOf(-7.0, 0.5)};
    const SphericalSemivariogram gamma(normalizers, normalizers, {0.0, 0.0}, {3.0, 16.0}, 1.0, 0.0); // range 10

    EXPECT_EQ(gamma.evaluate({1.5, 8.0}), 0.6875); // 3 and 4: half the range
}

TEST(SphericalSemivariogramTest, ScalesAreReadAtEachEvaluation)
{
    UnitModel gamma(2.0, 0.0);
    gamma.normalizers[0].setScale(0.5);

    EXPECT_EQ(gamma(2.0), 0.6875);
}

TEST(SphericalSemivariogramTest, TheSignOfASeparationOrOfAScaleDoesNotMatter)
{
    UnitModel gamma(2.0, 0.0);
    EXPECT_EQ(gamma(-1.0), 0.6875);
    gamma.normalizers[0].setScale(-1.0);
    EXPECT_EQ(gamma(1.0), 0.6875);
}

TEST(SphericalSemivariogramTest, HasTheBitsOfTheWrittenFormula)
{
    RandomNumbers numbers(40);
    for (std::size_t d = 1; d <= 5; ++d)
    {
        std::vector<Normalizer> normalizers;
        std::vector<double> cornerA, cornerB;
        for (std::size_t k = 0; k < d; ++k)
        {
            normalizers.push_back(normalizerOf(1.0, numbers.next(0.1, 3.0)));
            cornerA.push_back(numbers.next(-1.0, 0.0));
            cornerB.push_back(numbers.next(0.0, 1.0));
        }
        const double fraction = numbers.next(0.3, 1.2);
        const double nugget = numbers.next(0.0, 0.5);
        const SphericalSemivariogram gamma(cornerA, normalizers, cornerA, cornerB, fraction, nugget);
        const NaiveSemivariogram naive = naiveSpherical(scalesOf(normalizers), cornerA, cornerB, fraction, nugget);
        for (int sample = 0; sample < 2000; ++sample)
        {
            std::vector<double> separation;
            for (std::size_t k = 0; k < d; ++k)
                separation.push_back(numbers.next(-1.0, 1.0));

            ASSERT_TRUE(sameBits(gamma.evaluate(separation), naive(separation))) << d << " variables, " << sample;
        }
    }
}

TEST(ScaledSquaredDistanceTest, SumsTheScaledSquaresTimesTheSquaredFactor)
{
    const std::vector<Normalizer> normalizers{normalizerOf(5.0, 2.0), normalizerOf(-7.0, 0.5)};

    EXPECT_EQ(scaledSquaredDistance(normalizers, normalizers, {1.0, 8.0}, {2.5, 0.0}, 3.0), 225.0); // 9 * (9 + 16)
}

TEST(ScaledSquaredDistanceTest, NoVariablesGiveTheSquaredFactorTimesZero)
{
    const std::vector<Normalizer> none;

    EXPECT_TRUE(sameBits(scaledSquaredDistance(none, none, {}, {}, -3.0), 0.0));
    EXPECT_TRUE(std::isnan(scaledSquaredDistance(none, none, {}, {}, infinity)));
}

TEST(ScaledSquaredDistanceTest, TheFactorIsSquaredBeforeTheSumIsMultiplied)
{
    const std::vector<Normalizer> normalizers(1);

    EXPECT_EQ(scaledSquaredDistance(normalizers, normalizers, {1e150}, {0.0}, 1e-200), 0.0); // not 1e-100
}

TEST(ScaledSquaredDistanceTest, EachSquareIsRoundedBeforeItIsAdded)
{
    const std::vector<Normalizer> normalizers(3);

    // 2^-53 and (1 + 2^-30)^2: rounded to 1 + 2^-29 the tie goes to even; with the square's 2^-60 it would go up.
    EXPECT_EQ(scaledSquaredDistance(normalizers, normalizers, {0x1p-27, 0x1p-27, 1.0 + 0x1p-30}, {0.0, 0.0, 0.0}, 1.0),
              1.0 + 0x1p-29);
}

TEST(ScaledSquaredDistanceTest, SumsInAscendingOrder)
{
    const std::vector<Normalizer> normalizers(3);
    const double small = 0x1.6p-27; // its square is 0.95 * 2^-53: lost beside 1, twice it is not

    EXPECT_EQ(scaledSquaredDistance(normalizers, normalizers, {1.0, small, small}, {0.0, 0.0, 0.0}, 1.0), 1.0);
    EXPECT_EQ(scaledSquaredDistance(normalizers, normalizers, {small, small, 1.0}, {0.0, 0.0, 0.0}, 1.0),
              1.0 + 0x1p-52);
}
