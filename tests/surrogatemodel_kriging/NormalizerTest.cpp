#include "surrogatemodel_kriging/Normalizer.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/BitComparison.h"

using fenn::test::sameBits;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

Normalizer makeNormalizer(double offset, double scale)
{
    Normalizer normalizer;
    normalizer.setScale(scale);
    normalizer.setOffset(offset);
    return normalizer;
}

struct MinMax
{
    double min = -7.0;
    double max = -7.0;
};

MinMax minMaxOf(const std::vector<double>& values, int count)
{
    MinMax result;
    findMinMax(values.data(), count, result.min, result.max);
    return result;
}

} // namespace

TEST(NormalizerTest, ADefaultNormalizerMapsEveryValueToItself)
{
    const Normalizer normalizer;

    EXPECT_EQ(normalizer.getOffset(), 0.0);
    EXPECT_EQ(normalizer.getScale(), 1.0);
    for (const double value : {0.0, 1.0, -3.25, 1e300, 0x1p-1074})
        EXPECT_TRUE(sameBits(normalizer.normalize(value), value));
}

TEST(NormalizerTest, MidpointOffsetAndRangeScaleMapTheLimitsToMinusOneAndOne)
{
    const double min = 2.0;
    const double max = 10.0;
    const Normalizer normalizer = makeNormalizer(-(min + max) / 2.0, 2.0 / (max - min));

    EXPECT_EQ(normalizer.normalize(2.0), -1.0);
    EXPECT_EQ(normalizer.normalize(10.0), 1.0);
    EXPECT_EQ(normalizer.normalize(6.0), 0.0);
}

TEST(NormalizerTest, TheOffsetIsAddedBeforeTheScaleIsApplied)
{
    EXPECT_EQ(makeNormalizer(1.0, 10.0).normalize(2.0), 30.0); // not 2 * 10 + 1
}

TEST(NormalizerTest, RoundsTheSumBeforeTheProduct)
{
    const Normalizer normalizer = makeNormalizer(1.0, 3.0);

    // The sum rounds to 1. Products added up, 3 + 3 * 2^-53, would round to 3 + 2^-51.
    EXPECT_EQ(normalizer.normalize(0x1p-53), 3.0);
}

TEST(NormalizerTest, ADifferenceDoesNotDependOnTheOffset)
{
    const Normalizer atOrigin = makeNormalizer(0.0, 0.5);
    const Normalizer farAway = makeNormalizer(-1000.0, 0.5);

    EXPECT_EQ(atOrigin.normalize(7.0) - atOrigin.normalize(3.0), (7.0 - 3.0) * atOrigin.getScale());
    EXPECT_EQ(farAway.normalize(7.0) - farAway.normalize(3.0), (7.0 - 3.0) * farAway.getScale());
}

TEST(NormalizerTest, CopiesTakeBothFieldsAndStayIndependent)
{
    Normalizer original = makeNormalizer(-3.0, 0.25);
    const Normalizer copy(original);
    Normalizer assigned;
    assigned = original;
    original.setOffset(8.0);
    original.setScale(9.0);

    EXPECT_EQ(copy.getOffset(), -3.0);
    EXPECT_EQ(copy.getScale(), 0.25);
    EXPECT_EQ(assigned.getOffset(), -3.0);
    EXPECT_EQ(assigned.getScale(), 0.25);
}

TEST(NormalizerTest, AGrowingVectorAppendsIdentitiesAndKeepsWhatItHolds)
{
    std::vector<Normalizer> normalizers{makeNormalizer(-3.0, 0.25)};
    normalizers.resize(3);

    EXPECT_EQ(normalizers[0].normalize(7.0), 1.0);
    EXPECT_EQ(normalizers[1].normalize(7.0), 7.0);
    EXPECT_EQ(normalizers[2].normalize(7.0), 7.0);
}

// Vectors of it cross the boundary to hosts that were compiled earlier.
TEST(NormalizerTest, ConsistsOfAVirtualDestructorAndTwoDoubles)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<Normalizer>);
    EXPECT_EQ(sizeof(Normalizer), sizeof(void*) + 2 * sizeof(double));
}

TEST(FindMinMaxTest, FindsTheSmallestAndTheLargestValue)
{
    const MinMax found = minMaxOf({3.0, -1.0, 7.0, 5.0}, 4);

    EXPECT_EQ(found.min, -1.0);
    EXPECT_EQ(found.max, 7.0);
}

TEST(FindMinMaxTest, FallingValuesHaveTheFirstAsTheirMaximum)
{
    const MinMax found = minMaxOf({5.0, 4.0, 3.0}, 3);

    EXPECT_EQ(found.min, 3.0);
    EXPECT_EQ(found.max, 5.0);
}

TEST(FindMinMaxTest, RisingValuesHaveTheFirstAsTheirMinimum)
{
    const MinMax found = minMaxOf({3.0, 4.0, 5.0}, 3);

    EXPECT_EQ(found.min, 3.0);
    EXPECT_EQ(found.max, 5.0);
}

TEST(FindMinMaxTest, OnlyTheFirstCountValuesAreRead)
{
    const MinMax found = minMaxOf({3.0, 4.0, -100.0, 100.0}, 2);

    EXPECT_EQ(found.min, 3.0);
    EXPECT_EQ(found.max, 4.0);
}

TEST(FindMinMaxTest, ACountBelowTwoGivesTheFirstValueTwice)
{
    for (const int count : {1, 0, -5})
    {
        const MinMax found = minMaxOf({3.0, 9.0}, count);
        EXPECT_EQ(found.min, 3.0) << count;
        EXPECT_EQ(found.max, 3.0) << count;
    }
}

TEST(FindMinMaxTest, ANaNAfterTheFirstValueIsPassedOver)
{
    const MinMax found = minMaxOf({2.0, notANumber, 1.0, notANumber, 4.0, notANumber}, 6);

    EXPECT_EQ(found.min, 1.0);
    EXPECT_EQ(found.max, 4.0);
}

TEST(FindMinMaxTest, AFirstNaNStaysBoth)
{
    const MinMax found = minMaxOf({notANumber, 1.0, 4.0}, 3);

    EXPECT_TRUE(std::isnan(found.min));
    EXPECT_TRUE(std::isnan(found.max));
}

TEST(FindMinMaxTest, InfinitiesAreValuesLikeOthers)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const MinMax found = minMaxOf({0.0, infinity, -infinity}, 3);

    EXPECT_EQ(found.min, -infinity);
    EXPECT_EQ(found.max, infinity);
}

TEST(FindMinMaxTest, TheFirstOfEqualValuesIsKept)
{
    const MinMax negativeFirst = minMaxOf({-0.0, 0.0}, 2);
    const MinMax positiveFirst = minMaxOf({0.0, -0.0}, 2);

    EXPECT_TRUE(sameBits(negativeFirst.min, -0.0));
    EXPECT_TRUE(sameBits(negativeFirst.max, -0.0));
    EXPECT_TRUE(sameBits(positiveFirst.min, 0.0));
    EXPECT_TRUE(sameBits(positiveFirst.max, 0.0));
}
