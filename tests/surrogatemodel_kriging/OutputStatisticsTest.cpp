#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/NaiveDataBlock.h"
#include "tests/support/RandomBlocks.h"

using fenn::test::BlockSet;
using fenn::test::PointList;
using fenn::test::sameBits;
using fenn::test::SampleBlock;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

SampleBlock blockOf(const std::vector<double>& outputs, const std::vector<bool>& isUnblanked)
{
    return {{std::vector<double>(outputs.size())}, {outputs}, isUnblanked};
}

/// One block with these values of its only output, all unblanked.
class OutputStatisticsTest : public testing::Test
{
protected:
    static void expectMinMax(BlockSet& blocks, double min, double max)
    {
        double actualMin = -7.0;
        double actualMax = -7.0;
        blocks->getOutputVarMinMax(0, actualMin, actualMax);
        EXPECT_EQ(actualMin, min);
        EXPECT_EQ(actualMax, max);
    }

    static void expectMinMax(const std::vector<double>& outputs, double min, double max)
    {
        BlockSet blocks({blockOf(outputs, std::vector<bool>(outputs.size(), true))}, {0.0}, {1.0});
        expectMinMax(blocks, min, max);
    }

    static double meanOf(const std::vector<double>& outputs)
    {
        BlockSet blocks({blockOf(outputs, std::vector<bool>(outputs.size(), true))}, {0.0}, {1.0});
        return blocks->getOutputVarMean(0);
    }

    static double varianceOf(const std::vector<double>& outputs)
    {
        BlockSet blocks({blockOf(outputs, std::vector<bool>(outputs.size(), true))}, {0.0}, {1.0});
        return blocks->getOutputVarSampleVariance(0);
    }
};

} // namespace

TEST_F(OutputStatisticsTest, WithoutUnblankedPointsEverythingIsZeroOrEmpty)
{
    BlockSet blocks({blockOf({5.0, 6.0}, {false, false}), blockOf({7.0}, {false})}, {0.0}, {1.0});
    PointList points;
    blocks->getAllUnblankedPts(points);

    expectMinMax(blocks, 0.0, 0.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 0.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 0.0);
    EXPECT_TRUE(points.empty());
}

TEST_F(OutputStatisticsTest, WithoutPointsEverythingIsZeroOrEmpty)
{
    BlockSet blocks({blockOf({}, {})}, {0.0}, {1.0});
    PointList points{{3, 4}};
    blocks->getAllUnblankedPts(points);

    expectMinMax(blocks, 0.0, 0.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 0.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 0.0);
    EXPECT_TRUE(points.empty());
}

TEST_F(OutputStatisticsTest, ASinglePointLeavesTheMaximumAtItsStart)
{
    expectMinMax({7.0}, 7.0, -1e150);
}

TEST_F(OutputStatisticsTest, ASinglePointIsItsMeanAndHasNoVariance)
{
    EXPECT_EQ(meanOf({7.0}), 7.0);
    EXPECT_TRUE(std::isnan(varianceOf({7.0})));
}

TEST_F(OutputStatisticsTest, ARisingAndFallingSeriesHasItsMaximum)
{
    expectMinMax({1.0, 3.0, 2.0}, 1.0, 3.0);
}

TEST_F(OutputStatisticsTest, FallingValuesLeaveTheMaximumAtItsStart)
{
    expectMinMax({3.0, 2.0, 1.0}, 1.0, -1e150);
    expectMinMax({5.0, 4.0, 3.0}, 3.0, -1e150);
}

TEST_F(OutputStatisticsTest, AValueThatLowersTheMinimumIsNeverTheMaximum)
{
    expectMinMax({9.0, 1.0, 2.0}, 1.0, 2.0);
}

TEST_F(OutputStatisticsTest, AValueEqualToTheMinimumIsOfferedToTheMaximum)
{
    expectMinMax({3.0, 3.0}, 3.0, 3.0);
}

TEST_F(OutputStatisticsTest, TheFallGoesOnFromOneBlockToTheNext)
{
    BlockSet blocks({blockOf({5.0, 4.0}, {true, true}), blockOf({3.0}, {true})}, {0.0}, {1.0});

    expectMinMax(blocks, 3.0, -1e150);
}

TEST_F(OutputStatisticsTest, ValuesOutsideTheStartOfTheExtremesLeaveThemThere)
{
    expectMinMax({2e150}, 1e150, 2e150);
    expectMinMax({1e150}, 1e150, 1e150);
    expectMinMax({-2e150}, -2e150, -1e150);
    expectMinMax({-1e150, -2e150}, -2e150, -1e150);
}

TEST_F(OutputStatisticsTest, ANaNIsNeverAnExtreme)
{
    expectMinMax({notANumber, 4.0, notANumber, 5.0, notANumber}, 4.0, 5.0);
}

TEST_F(OutputStatisticsTest, NaNsAloneCountAndLeaveBothExtremesAtTheirStart)
{
    expectMinMax({notANumber, notANumber}, 1e150, -1e150);
}

TEST_F(OutputStatisticsTest, InfinitiesAreExtremes)
{
    expectMinMax({1.0, infinity, -infinity}, -infinity, infinity);
}

TEST_F(OutputStatisticsTest, TwoPointsHaveTheVarianceOfDenominatorOne)
{
    EXPECT_EQ(meanOf({1.0, 3.0}), 2.0);
    EXPECT_EQ(varianceOf({1.0, 3.0}), 2.0);
}

TEST_F(OutputStatisticsTest, TheMeanDividesTheSumByTheCount)
{
    EXPECT_EQ(meanOf({2.0, 2.0, 1.0}), 5.0 / 3.0); // 5 times the rounded third is one bit less
}

TEST_F(OutputStatisticsTest, TheMeanIsSummedInWalkingOrder)
{
    EXPECT_EQ(meanOf({1.0, 0x1p53, 1.0, -0x1p53}), 0.0); // 1 is lost twice beside 2^53
    EXPECT_EQ(meanOf({0x1p53, -0x1p53, 1.0, 1.0}), 0.5);
}

TEST_F(OutputStatisticsTest, TheVarianceIsSummedInWalkingOrder)
{
    const double big = 0x1p27; // the mean is 0; beside 2^54, its square, a single 1 is lost and eight together are not

    EXPECT_EQ(varianceOf({big, -big, 1.0, -1.0, 1.0, -1.0, 1.0, -1.0, 1.0, -1.0}), 0x1p55 / 9.0);
    EXPECT_EQ(varianceOf({1.0, -1.0, 1.0, -1.0, 1.0, -1.0, 1.0, -1.0, big, -big}), (0x1p55 + 8.0) / 9.0);
}

TEST_F(OutputStatisticsTest, EachSquareOfTheVarianceIsRoundedBeforeItIsAdded)
{
    // The mean is 0, the first two squares make 2^-53, and x^2 is 1 + 2^-29 + 2^-60. Rounded first, it makes a tie with
    // the sum, which goes down; fused, its 2^-60 would take the sum up.
    const double x = 1.0 + 0x1p-30;

    EXPECT_EQ(varianceOf({0x1p-27, -0x1p-27, x, -x}), (2.0 + 0x1p-28) / 3.0);
}

TEST_F(OutputStatisticsTest, BlankedPointsNeverInfluenceAnything)
{
    BlockSet blocks({blockOf({1e300, 1.0, notANumber}, {false, true, false}), blockOf({-infinity, 3.0}, {false, true})},
                    {0.0}, {1.0});

    expectMinMax(blocks, 1.0, 3.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 2.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 2.0);
}

TEST_F(OutputStatisticsTest, PointsOfAllBlocksAreTakenTogether)
{
    BlockSet blocks({blockOf({1.0, 3.0}, {true, true}), blockOf({5.0}, {true})}, {0.0}, {1.0});

    expectMinMax(blocks, 1.0, 5.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 3.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 4.0); // (4 + 0 + 4) / 2
}

TEST_F(OutputStatisticsTest, TheOutputVariableIsChosenByItsIndex)
{
    BlockSet blocks({{{{0.0, 1.0}}, {{1.0, 3.0}, {10.0, 30.0}}, {true, true}}}, {0.0}, {1.0});
    double min = 0.0;
    double max = 0.0;
    blocks->getOutputVarMinMax(1, min, max);

    EXPECT_EQ(min, 10.0);
    EXPECT_EQ(max, 30.0);
    EXPECT_EQ(blocks->getOutputVarMean(1), 20.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(1), 200.0);
}

TEST_F(OutputStatisticsTest, ABlockWithoutPointsIsSkippedEvenWithoutArrays)
{
    BlockSet blocks({blockOf({1.0, 3.0}, {true, true}), {{}, {}, {}, 0}, {{}, {}, {}, -2}}, {0.0}, {1.0});
    PointList points;
    blocks->getAllUnblankedPts(points);

    expectMinMax(blocks, 1.0, 3.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 2.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 2.0);
    EXPECT_EQ(points, (PointList{{0, 0}, {0, 1}}));
}

TEST_F(OutputStatisticsTest, ValuesThatTheHostChangesAreSeen)
{
    BlockSet blocks({blockOf({1.0, 3.0}, {true, true})}, {0.0}, {1.0});
    blocks.getSamples()[0].outputs[0][1] = 5.0;

    expectMinMax(blocks, 1.0, 5.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 3.0);
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 8.0);
}

TEST_F(OutputStatisticsTest, UnblankedPointsAreListedByBlockThenPoint)
{
    BlockSet blocks({blockOf({1.0, 2.0}, {true, false}), blockOf({3.0}, {true})}, {0.0}, {1.0});
    PointList points;
    blocks->getAllUnblankedPts(points);

    EXPECT_EQ(points, (PointList{{0, 0}, {1, 0}}));
}

TEST_F(OutputStatisticsTest, TheListOfPointsReplacesWhatTheVectorHeld)
{
    BlockSet blocks({blockOf({1.0, 2.0}, {false, true})}, {0.0}, {1.0});
    PointList longer{{7, 7}, {8, 8}, {9, 9}};
    PointList shorter;
    blocks->getAllUnblankedPts(longer);
    blocks->getAllUnblankedPts(shorter);

    EXPECT_EQ(longer, (PointList{{0, 1}}));
    EXPECT_EQ(shorter, (PointList{{0, 1}}));
}

TEST_F(OutputStatisticsTest, FlagsBeyondTheCountOfPointsAreNotRead)
{
    BlockSet blocks({{{{0.0, 0.0, 0.0}}, {{1.0, 3.0, 1e300}}, {true, true, true, true}, 2}}, {0.0}, {1.0});
    PointList points;
    blocks->getAllUnblankedPts(points);

    expectMinMax(blocks, 1.0, 3.0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 2.0);
    EXPECT_EQ(points, (PointList{{0, 0}, {0, 1}}));
}

TEST_F(OutputStatisticsTest, RandomBlocksGiveTheBitsOfThePlainLoops)
{
    for (std::uint64_t seed = 1; seed <= 400; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const fenn::test::RandomBlocks random(seed);
        BlockSet blocks(random.samples, random.minValues, random.maxValues);
        PointList points;
        blocks->getAllUnblankedPts(points);

        ASSERT_EQ(points, naiveUnblankedPts(random.samples));
        ASSERT_EQ(blocks->getTotalNumUnblankedPoints(), static_cast<int>(points.size()));
        for (int w = 0; w < blocks->getNumOutputVars(); ++w)
        {
            const fenn::test::NaiveStatistics expected = naiveStatistics(random.samples, static_cast<std::size_t>(w));
            double min = 0.0;
            double max = 0.0;
            blocks->getOutputVarMinMax(w, min, max);
            ASSERT_TRUE(sameBits({min, max, blocks->getOutputVarMean(w), blocks->getOutputVarSampleVariance(w)},
                                 {expected.min, expected.max, expected.mean, expected.variance}));
        }
    }
}
