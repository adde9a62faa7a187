#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/NaiveNormalisation.h"
#include "tests/support/Samples.h"

using fenn::test::NaiveNormalisation;
using fenn::test::sameBits;
using fenn::test::ValueArrays;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Values = std::vector<double>;

/// Samples of one variable that lie between two limits, enough for five points in up to three variables.
Values spread(double low, double high)
{
    return {low, high, low, high, low};
}

/// What a model makes of these samples and factors. Local Kriging: nothing is assembled, so that any numbers will do.
NaiveNormalisation normalisationOf(const std::vector<Values>& inputs, int numPoints, const Values& scaleFactors)
{
    ValueArrays inputArrays(inputs);
    ValueArrays outputArrays({Values(inputs[0].size())});
    NaiveNormalisation result;
    try
    {
        const KrigingSurrogateModel model(inputArrays.arrays(), outputArrays.arrays(), numPoints, -1.0, scaleFactors, 0,
                                          1.0, 0.0, static_cast<int>(inputs.size()) + 1);
        result.minValues = fenn::ModelAccess::getMinValues(model);
        result.maxValues = fenn::ModelAccess::getMaxValues(model);
        for (const Normalizer& normalizer : fenn::ModelAccess::getNormalizers(model))
        {
            result.offsets.push_back(normalizer.getOffset());
            result.scales.push_back(normalizer.getScale());
        }
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        result.message = error.what();
    }
    return result;
}

NaiveNormalisation normalisationOf(const std::vector<Values>& inputs, const Values& scaleFactors)
{
    return normalisationOf(inputs, static_cast<int>(inputs[0].size()), scaleFactors);
}

std::string messageFor(const Values& scaleFactors)
{
    return normalisationOf(std::vector<Values>(scaleFactors.size(), spread(0.0, 10.0)), scaleFactors).message;
}

} // namespace

TEST(KrigingSurrogateModelNormalisationTest, TheLimitsAreThoseOfTheSamples)
{
    const auto actual = normalisationOf({{3.0, 9.0, 4.0, 1.0}, {-5.0, -6.0, 2.0, 0.0}}, {});

    EXPECT_EQ(actual.minValues, (Values{1.0, -6.0}));
    EXPECT_EQ(actual.maxValues, (Values{9.0, 2.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, FallingSamplesKeepTheirMaximum)
{
    const auto actual = normalisationOf({{9.0, 5.0, 1.0}}, {});

    EXPECT_EQ(actual.minValues, (Values{1.0}));
    EXPECT_EQ(actual.maxValues, (Values{9.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, OnlyTheGivenNumberOfPointsIsMeasured)
{
    const auto actual = normalisationOf({{1.0, 5.0, 9.0, 100.0, -100.0}}, 3, {});

    EXPECT_EQ(actual.minValues, (Values{1.0}));
    EXPECT_EQ(actual.maxValues, (Values{9.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, WithoutFactorsEveryRangeIsMappedOntoMinusOneToOne)
{
    const auto actual = normalisationOf({spread(0.0, 10.0), spread(100.0, 104.0)}, {});

    EXPECT_EQ(actual.offsets, (Values{-5.0, -102.0}));
    EXPECT_EQ(actual.scales, (Values{0.2, 0.5}));
}

TEST(KrigingSurrogateModelNormalisationTest, TheLimitsAreAddedBeforeTheyAreHalved)
{
    const auto actual = normalisationOf({spread(1e308, 1.5e308)}, {1.0});

    EXPECT_EQ(actual.offsets, (Values{-infinity})); // the sum overflows, the middle would not
}

TEST(KrigingSurrogateModelNormalisationTest, NoFactorsAreAsGoodAsMinusOneForEveryVariable)
{
    const std::vector<Values> inputs{{0.1, 0.7, 0.4, 0.3}, {-3.3, 9.1, 0.0, 1.0}};
    const auto withoutFactors = normalisationOf(inputs, {});
    const auto withFactors = normalisationOf(inputs, {-1.0, -1.0});

    EXPECT_TRUE(sameBits(withoutFactors.scales, withFactors.scales));
}

TEST(KrigingSurrogateModelNormalisationTest, PositiveFactorsKeepTheirRatioAfterTheCommonRescaling)
{
    // Normalised ranges 10 and 40, their geometric mean 20: both scales are divided by 10.
    const auto actual = normalisationOf({spread(0.0, 10.0), spread(0.0, 10.0)}, {1.0, 4.0});

    EXPECT_EQ(actual.scales, (Values{0.1, 0.4}));
}

TEST(KrigingSurrogateModelNormalisationTest, NegativeFactorsAskForTwiceTheirMagnitudeBeforeTheCommonRescaling)
{
    // Widths 2 and 8 become 1 and 4.
    const auto actual = normalisationOf({spread(0.0, 10.0), spread(0.0, 10.0)}, {-1.0, -4.0});

    EXPECT_EQ(actual.scales, (Values{0.1, 0.4}));
}

TEST(KrigingSurrogateModelNormalisationTest, TheCommonRescalingTakesTheExtremeRangesOnly)
{
    // The mean of 1 and 16 is 4; 2 has no part in it.
    const auto actual = normalisationOf({spread(0.0, 1.0), spread(0.0, 1.0), spread(0.0, 1.0)}, {1.0, 2.0, 16.0});

    EXPECT_EQ(actual.scales, (Values{0.5, 1.0, 8.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, TheExtremeRangesMayBeAnyVariables)
{
    const auto actual = normalisationOf({spread(0.0, 1.0), spread(0.0, 1.0), spread(0.0, 1.0)}, {2.0, 16.0, 1.0});

    EXPECT_EQ(actual.scales, (Values{1.0, 8.0, 0.5}));
}

TEST(KrigingSurrogateModelNormalisationTest, ScalesAreMultipliedByTheQuotientOfTwoAndTheMean)
{
    ASSERT_NE(5.0 * (2.0 / 3.0), 5.0 * 2.0 / 3.0);
    const auto actual = normalisationOf({spread(0.0, 1.0), spread(0.0, 1.0), spread(0.0, 1.0)}, {5.0, 1.0, 9.0});

    EXPECT_EQ(actual.scales[0], 5.0 * (2.0 / 3.0));
}

TEST(KrigingSurrogateModelNormalisationTest, AnAutomaticScaleDividesTwiceTheFactorByTheRange)
{
    ASSERT_NE(0.6 / 7.0, 0.3 * (2.0 / 7.0));
    const auto actual = normalisationOf({spread(0.0, 7.0), spread(0.0, 1.0)}, {-0.3, notANumber}); // not rescaled

    EXPECT_EQ(actual.scales[0], 0.6 / 7.0);
}

TEST(KrigingSurrogateModelNormalisationTest, AFactorOfTheUpperGuardIsTooLarge)
{
    for (const double factor : {1e150, -1e150, 1e300, infinity, -infinity})
        EXPECT_EQ(messageFor({factor}), "Scaling factor too large") << factor;
    EXPECT_EQ(messageFor({std::nextafter(1e150, 0.0)}), "");
    EXPECT_EQ(messageFor({std::nextafter(-1e150, 0.0)}), "");
}

TEST(KrigingSurrogateModelNormalisationTest, AFactorOfTheLowerGuardIsTooSmall)
{
    for (const double factor : {1e-150, -1e-150, 0.0, -0.0, 0x1p-1074})
        EXPECT_EQ(messageFor({factor}), "Scaling factor too small") << factor;
    EXPECT_EQ(messageFor({std::nextafter(1e-150, 1.0)}), "");
    EXPECT_EQ(messageFor({std::nextafter(-1e-150, -1.0)}), "");
}

TEST(KrigingSurrogateModelNormalisationTest, TheFirstOffendingFactorDecides)
{
    EXPECT_EQ(messageFor({0.0, 1e150}), "Scaling factor too small");
    EXPECT_EQ(messageFor({1e150, 0.0}), "Scaling factor too large");
    EXPECT_EQ(messageFor({1.0, 0.0, 1e150}), "Scaling factor too small");
}

TEST(KrigingSurrogateModelNormalisationTest, EveryFactorIsCheckedBeforeAnyRange)
{
    const std::vector<Values> inputs{spread(5.0, 5.0), spread(0.0, 1.0)};

    EXPECT_EQ(normalisationOf(inputs, {-1.0, 0.0}).message, "Scaling factor too small");
    EXPECT_EQ(normalisationOf(inputs, {-1.0, 1.0}).message, "Value range too small to normalize data");
}

TEST(KrigingSurrogateModelNormalisationTest, FactorsWithoutAVariableAreCheckedToo)
{
    EXPECT_EQ(normalisationOf({spread(0.0, 1.0)}, {1.0, 0.0}).message, "Scaling factor too small");
}

TEST(KrigingSurrogateModelNormalisationTest, EqualSamplesCannotBeScaledAutomatically)
{
    EXPECT_EQ(normalisationOf({spread(5.0, 5.0)}, {-1.0}).message, "Value range too small to normalize data");
    EXPECT_EQ(normalisationOf({spread(5.0, 5.0)}, {}).message, "Value range too small to normalize data");
    EXPECT_EQ(normalisationOf({spread(0.0, 1.0), spread(5.0, 5.0)}, {}).message,
              "Value range too small to normalize data");
}

TEST(KrigingSurrogateModelNormalisationTest, EqualSamplesTakeAPositiveFactorAndSkipTheCommonRescaling)
{
    const auto actual = normalisationOf({spread(5.0, 5.0), spread(0.0, 10.0)}, {3.0, 4.0});

    EXPECT_EQ(actual.message, "");
    EXPECT_EQ(actual.offsets, (Values{-5.0, -5.0}));
    EXPECT_EQ(actual.scales, (Values{3.0, 4.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, ARangeOfTheGuardIsTooSmall)
{
    EXPECT_EQ(normalisationOf({spread(0.0, 1e-150)}, {-1.0}).message, "Value range too small to normalize data");
    EXPECT_EQ(normalisationOf({spread(0.0, std::nextafter(1e-150, 1.0))}, {-1.0}).message, "");
}

TEST(KrigingSurrogateModelNormalisationTest, ANaNFactorScalesAutomaticallyAndSkipsTheCommonRescaling)
{
    const std::vector<Values> inputs{spread(0.0, 10.0), spread(0.0, 10.0)};

    const auto first = normalisationOf(inputs, {notANumber, 4.0});
    EXPECT_TRUE(sameBits(first.scales, {notANumber, 4.0}));
    EXPECT_EQ(first.offsets, (Values{-5.0, -5.0}));

    const auto last = normalisationOf(inputs, {4.0, notANumber});
    EXPECT_TRUE(sameBits(last.scales, {4.0, notANumber}));
}

TEST(KrigingSurrogateModelNormalisationTest, ANaNFactorAsksForARange)
{
    EXPECT_EQ(normalisationOf({spread(5.0, 5.0)}, {notANumber}).message, "Value range too small to normalize data");
}

TEST(KrigingSurrogateModelNormalisationTest, ANaNNormalisedRangeAtAnyPositionSkipsTheCommonRescaling)
{
    const Values numbers = spread(0.0, 10.0);
    const Values firstIsNaN{notANumber, 0.0, 10.0, 5.0, 5.0};

    EXPECT_EQ(normalisationOf({firstIsNaN, numbers, numbers}, {1.0, 2.0, 4.0}).scales, (Values{1.0, 2.0, 4.0}));
    EXPECT_EQ(normalisationOf({numbers, firstIsNaN, numbers}, {1.0, 2.0, 4.0}).scales, (Values{1.0, 2.0, 4.0}));
    EXPECT_EQ(normalisationOf({numbers, numbers, firstIsNaN}, {1.0, 2.0, 4.0}).scales, (Values{1.0, 2.0, 4.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, ANaNRangeCannotBeScaledAutomatically)
{
    const Values firstIsNaN{notANumber, 0.0, 10.0, 5.0, 5.0};

    EXPECT_EQ(normalisationOf({firstIsNaN}, {-1.0}).message, "Value range too small to normalize data");
    EXPECT_EQ(normalisationOf({spread(0.0, 1.0), firstIsNaN}, {}).message, "Value range too small to normalize data");
}

TEST(KrigingSurrogateModelNormalisationTest, ANaNSampleAfterTheFirstIsPassedOver)
{
    const auto actual = normalisationOf({{0.0, notANumber, 10.0, notANumber}}, {});

    EXPECT_EQ(actual.minValues, (Values{0.0}));
    EXPECT_EQ(actual.maxValues, (Values{10.0}));
    EXPECT_EQ(actual.scales, (Values{0.2}));
}

TEST(KrigingSurrogateModelNormalisationTest, AnInfiniteRangeSkipsTheCommonRescaling)
{
    const std::vector<Values> inputs{spread(0.0, infinity), spread(0.0, 10.0)};

    const auto positive = normalisationOf(inputs, {3.0, 4.0}); // the mean is infinite
    EXPECT_EQ(positive.scales, (Values{3.0, 4.0}));
    EXPECT_EQ(positive.offsets[0], -infinity);

    const auto automatic = normalisationOf(inputs, {-1.0, 4.0}); // scale 0, and infinity times 0 is NaN
    EXPECT_EQ(automatic.scales, (Values{0.0, 4.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, AMeanRangeOfAGuardSkipsTheCommonRescaling)
{
    EXPECT_EQ(normalisationOf({spread(0.0, 1e-150)}, {1.0}).scales, (Values{1.0}));
    EXPECT_EQ(normalisationOf({spread(0.0, 1e150)}, {1.0}).scales, (Values{1.0}));
    EXPECT_EQ(normalisationOf({spread(0.0, 2e150)}, {1.0}).scales, (Values{1.0}));
}

TEST(KrigingSurrogateModelNormalisationTest, AMeanRangeInsideTheGuardsIsBroughtToTwo)
{
    const double small = 0x1p-498; // above 1e-150
    const double large = 0x1p498;  // below 1e150

    EXPECT_EQ(normalisationOf({spread(0.0, small)}, {1.0}).scales, (Values{0x1p499}));
    EXPECT_EQ(normalisationOf({spread(0.0, large)}, {1.0}).scales, (Values{0x1p-497}));
}

TEST(KrigingSurrogateModelNormalisationTest, RandomSamplesGiveTheBitsOfThePlainLoops)
{
    const Values factors{1.0, 4.0, 0.3, 7e12, 1e-9, -1.0, -1.0, -2.5, -0.1, 1e140, 1e-140, notANumber, 0.0, 1e150};
    const Values magnitudes{1.0, 1.0, 1.0, 1e3, 1e-3, 1e-20, 1e75, 1e149, 1e-149, 1e160, 0.0};
    std::size_t numModels = 0;
    for (std::uint64_t seed = 1; seed <= 3000; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        fenn::test::RandomNumbers numbers(seed);
        const auto pick = [&](std::size_t count)
        {
            return static_cast<std::size_t>(numbers.next() * static_cast<double>(count));
        };
        const std::size_t numVars = 1 + pick(4);
        const std::size_t numPts = numVars + 2 + pick(10);
        std::vector<Values> inputs(numVars);
        Values scaleFactors;
        for (Values& values : inputs)
        {
            const double magnitude = magnitudes[pick(magnitudes.size())];
            const double centre = numbers.next(-3.0, 3.0) * magnitude;
            for (std::size_t i = 0; i < numPts; ++i)
                values.push_back(pick(60) == 0 ? notANumber : centre + magnitude * numbers.next(-1.0, 1.0));
            scaleFactors.push_back(factors[pick(pick(4) == 0 ? factors.size() : 9)]);
        }
        if (pick(5) == 0)
            scaleFactors.clear();

        const NaiveNormalisation expected = fenn::test::naiveNormalisation(inputs, scaleFactors);
        const NaiveNormalisation actual = normalisationOf(inputs, scaleFactors);
        ASSERT_EQ(actual.message, expected.message);
        if (!expected.message.empty())
            continue;
        ++numModels;
        ASSERT_TRUE(sameBits(actual.minValues, expected.minValues));
        ASSERT_TRUE(sameBits(actual.maxValues, expected.maxValues));
        ASSERT_TRUE(sameBits(actual.offsets, expected.offsets));
        ASSERT_TRUE(sameBits(actual.scales, expected.scales));
    }
    EXPECT_GT(numModels, 1500U);
}
