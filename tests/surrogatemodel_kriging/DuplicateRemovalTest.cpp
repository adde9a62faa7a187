#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"

using fenn::test::BlockSet;
using fenn::test::inputValues;
using fenn::test::outputValues;
using fenn::test::sameBits;
using fenn::test::SampleBlock;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Values = std::vector<double>;
using Flags = std::vector<bool>;

/// One block of points in one input variable of range 10, all unblanked, without outputs.
class OneVariable : public BlockSet
{
public:
    explicit OneVariable(const Values& inputs) : OneVariable(inputs, 0.0, 10.0) {}

    OneVariable(const Values& inputs, double min, double max)
        : BlockSet({{{inputs}, {}, Flags(inputs.size(), true)}}, {min}, {max})
    {
    }
};

/// One block of points in two input variables of range 10, all unblanked, with one output.
class TwoVariables : public BlockSet
{
public:
    TwoVariables(const Values& x, const Values& y, const Values& outputs)
        : BlockSet({{{x, y}, {outputs}, Flags(x.size(), true)}}, {0.0, 0.0}, {10.0, 10.0})
    {
    }
};

Flags flagsOf(BlockSet& blocks, int block = 0)
{
    return block < blocks->getNumBlocks() ? blocks->getIncludePtArrayForBlock(block) : Flags();
}

} // namespace

TEST(DuplicateRemovalTest, TwoCoincidentPointsBecomeOneInANewBlock)
{
    TwoVariables blocks({0.0, 0.0}, {0.0, 0.0}, {1.0, 3.0});
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 2);
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false}));
    ASSERT_EQ(blocks->getNumBlocks(), 2);
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 1);
    EXPECT_EQ(blocks->getNumPtsInBlock(1), 1);
    EXPECT_EQ(flagsOf(blocks, 1), (Flags{true}));
    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{0.0}));
    EXPECT_EQ(inputValues(*blocks, 1, 1), (Values{0.0}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{2.0}));
}

TEST(DuplicateRemovalTest, ToleranceZeroMergesExactlyEqualPointsOnly)
{
    const double justAbove = std::nextafter(1.0, 2.0);
    OneVariable blocks({1.0, justAbove, 1.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, true, false}));
    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{1.0}));
}

TEST(DuplicateRemovalTest, BothZerosAreEqual)
{
    OneVariable blocks({-0.0, 0.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false}));
}

TEST(DuplicateRemovalTest, WithoutDuplicatesNothingIsBlankedOrAppended)
{
    OneVariable blocks({1.0, 2.0, 3.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true, true}));
    EXPECT_EQ(blocks->getNumBlocks(), 1);
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 3);
}

TEST(DuplicateRemovalTest, WithoutInputVariablesNothingIsBlankedOrAppended)
{
    BlockSet blocks({{{}, {{1.0, 1.0}}, Flags(2, true)}}, {}, {});

    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(blocks->getNumBlocks(), 1);
    EXPECT_EQ(flagsOf(blocks), Flags(2, true));
}

TEST(DuplicateRemovalTest, PointsThatDifferInTheSecondVariableStay)
{
    TwoVariables blocks({1.0, 1.0}, {1.0, 3.0}, {5.0, 6.0});
    blocks->removeDuplicatePts(0.1); // both thresholds are 1

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true}));
    EXPECT_EQ(blocks->getNumBlocks(), 1);
}

TEST(DuplicateRemovalTest, PointsThatDifferInTheFirstVariableStay)
{
    TwoVariables blocks({1.0, 3.0}, {1.0, 1.0}, {5.0, 6.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true}));
}

TEST(DuplicateRemovalTest, PointsThatDifferInTheLastOfThreeVariablesStay)
{
    BlockSet blocks({{{{1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}, {3.0, 4.0, 3.0}}, {}, {true, true, true}}}, {0.0, 0.0, 0.0},
                    {10.0, 10.0, 10.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, true, false}));
    EXPECT_EQ(inputValues(*blocks, 1, 2), (Values{3.0}));
}

TEST(DuplicateRemovalTest, ADifferenceOfTheThresholdIsStillADuplicate)
{
    OneVariable blocks({1.0, 2.0, 5.0, 6.5});
    blocks->removeDuplicatePts(0.1); // the threshold is 1

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false, true, true}));
}

TEST(DuplicateRemovalTest, TheThresholdIsAFractionOfTheVariablesOwnRange)
{
    BlockSet blocks({{{{0.0, 1.0, 100.0, 101.0}, {0.0, 1.0, 0.0, 4.0}}, {}, {true, true, true, true}}}, {-500.0, 0.0},
                    {500.0, 10.0});
    blocks->removeDuplicatePts(0.1); // thresholds 100 and 1: one chain in x, of which y splits off the 4

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false, false, true}));
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 2);
}

TEST(DuplicateRemovalTest, ARangeBelowTheGuardMeansExactEqualityWhateverTheTolerance)
{
    OneVariable blocks({0.0, 1e-152, 0.0}, 0.0, 0.99e-150);
    blocks->removeDuplicatePts(1e9);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, true, false}));
}

TEST(DuplicateRemovalTest, ARangeOfTheGuardIsARange)
{
    OneVariable blocks({0.0, 1e-151}, 0.0, 1e-150);
    blocks->removeDuplicatePts(0.5);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false}));
}

TEST(DuplicateRemovalTest, ANegativeRangeMeansExactEquality)
{
    OneVariable blocks({1.0, 1.5, 1.5}, 10.0, 0.0);
    blocks->removeDuplicatePts(0.5);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, false, false}));
}

TEST(DuplicateRemovalTest, ANegativeToleranceMergesNotEvenEqualPoints)
{
    OneVariable blocks({1.0, 1.0});
    blocks->removeDuplicatePts(-1.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true}));
    EXPECT_EQ(blocks->getNumBlocks(), 1);
}

TEST(DuplicateRemovalTest, ANaNToleranceMergesNotEvenEqualPoints)
{
    OneVariable blocks({1.0, 1.0});
    blocks->removeDuplicatePts(notANumber);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true}));
}

TEST(DuplicateRemovalTest, ANaNRangeMergesNotEvenEqualPoints)
{
    OneVariable blocks({1.0, 1.0}, notANumber, 10.0);
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true}));
}

TEST(DuplicateRemovalTest, AnInfiniteRangeWithToleranceZeroMergesNotEvenEqualPoints)
{
    OneVariable blocks({1.0, 1.0}, 0.0, infinity);
    blocks->removeDuplicatePts(0.0); // infinity times 0 is NaN

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true}));
}

TEST(DuplicateRemovalTest, ChainedNeighboursAreOneGroupThoughItsEndsAreFartherApart)
{
    OneVariable blocks({0.0, 0.6, 1.2});
    blocks->removeDuplicatePts(0.1); // the threshold is 1, the ends differ by 1.2

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false, false}));
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 1);
}

TEST(DuplicateRemovalTest, AGroupChainedInTheFirstVariableIsSplitByTheSecond)
{
    TwoVariables blocks({0.0, 0.6, 1.2, 1.8}, {0.0, 5.0, 0.0, 5.0}, {1.0, 2.0, 3.0, 4.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 2);
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{2.0, 3.0})); // 1 and 3, then 2 and 4
}

TEST(DuplicateRemovalTest, ALaterVariableNeverRejoinsWhatAnEarlierOneHasSplit)
{
    // In y all four form one chain; x separates the first two from the last two.
    TwoVariables blocks({0.0, 0.0, 5.0, 5.0}, {0.0, 1.0, 0.0, 1.0}, {1.0, 3.0, 10.0, 30.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{2.0, 20.0}));
}

TEST(DuplicateRemovalTest, ARunOfTheFirstVariableIsNotJudgedByItAgain)
{
    // The pair that y leaves of the chain is 1.2 apart in x, more than the threshold, and merges all the same.
    TwoVariables blocks({0.0, 0.6, 1.2}, {0.0, 9.0, 0.0}, {1.0, 2.0, 3.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, true, false}));
    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{0.6}));
}

TEST(DuplicateRemovalTest, ThreeCoincidentPointsBecomeTheirMeans)
{
    TwoVariables blocks({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}, {1.0, 4.0, 7.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 1);
    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{1.0}));
    EXPECT_EQ(inputValues(*blocks, 1, 1), (Values{2.0}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{4.0}));
}

TEST(DuplicateRemovalTest, EveryVariableAndEveryOutputIsAveraged)
{
    BlockSet blocks({{{{1.0, 2.0}, {3.0, 4.0}}, {{10.0, 20.0}, {-1.0, -2.0}, {0.0, 8.0}}, {true, true}}}, {0.0, 0.0},
                    {10.0, 10.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{1.5}));
    EXPECT_EQ(inputValues(*blocks, 1, 1), (Values{3.5}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{15.0}));
    EXPECT_EQ(outputValues(*blocks, 1, 1), (Values{-1.5}));
    EXPECT_EQ(outputValues(*blocks, 1, 2), (Values{4.0}));
}

TEST(DuplicateRemovalTest, AveragesMultiplyByTheReciprocalOfTheCount)
{
    ASSERT_NE(5.0 * (1.0 / 3.0), 5.0 / 3.0);
    TwoVariables blocks({1.0, 2.0, 2.0}, {3.0, 2.0, 2.0}, {1.0, 3.0, 1.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{5.0 * (1.0 / 3.0)}));
    EXPECT_EQ(inputValues(*blocks, 1, 1), (Values{7.0 * (1.0 / 3.0)}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{5.0 * (1.0 / 3.0)}));
}

TEST(DuplicateRemovalTest, SumsStartAtPositiveZero)
{
    TwoVariables blocks({-0.0, -0.0}, {-0.0, -0.0}, {-0.0, -0.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_TRUE(sameBits(inputValues(*blocks, 1, 0), {0.0}));
    EXPECT_TRUE(sameBits(outputValues(*blocks, 1, 0), {0.0}));
}

TEST(DuplicateRemovalTest, EqualPointsAreSummedInBlockThenPointOrder)
{
    // 2^53 first: each 1 after it is lost. Forty, because sorts that are not stable keep the order of a few.
    Values outputs(40, 1.0);
    outputs[0] = 0x1p53;
    TwoVariables blocks(Values(40, 1.0), Values(40, 2.0), outputs);
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{0x1p53 * (1.0 / 40.0)}));
}

TEST(DuplicateRemovalTest, AGroupIsSummedInTheOrderOfItsLastVariable)
{
    // In y the order is 2^53, -2^53, 1, which sums to 1. In x or by point 1 would be lost beside 2^53.
    TwoVariables blocks({0.0, 0.1, 0.2}, {0.2, 0.0, 0.1}, {1.0, 0x1p53, -0x1p53});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{1.0 / 3.0}));
}

TEST(DuplicateRemovalTest, TiesInTheLastVariableKeepTheOrderOfTheOneBefore)
{
    // Equal in y; in x the order is 2^53, -2^53, 1, by point it is 1, 2^53, -2^53.
    TwoVariables blocks({0.2, 0.0, 0.1}, {5.0, 5.0, 5.0}, {1.0, 0x1p53, -0x1p53});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{1.0 / 3.0}));
}

TEST(DuplicateRemovalTest, GroupsAreAppendedInAscendingOrderOfTheVariablesInTurn)
{
    TwoVariables blocks({7.0, 2.0, 7.0, 2.0, 2.0, 2.0}, {0.0, 9.0, 0.0, 9.0, 1.0, 1.0},
                        {70.0, 29.0, 70.0, 29.0, 21.0, 21.0});
    blocks->removeDuplicatePts(0.0);

    ASSERT_EQ(blocks->getNumBlocks(), 2);
    EXPECT_EQ(blocks->getNumPtsInBlock(1), 3);
    EXPECT_EQ(flagsOf(blocks, 1), (Flags{true, true, true}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{21.0, 29.0, 70.0}));
}

TEST(DuplicateRemovalTest, PointsOfDifferentBlocksMergeLikeThoseOfOne)
{
    BlockSet blocks({{{{1.0, 2.0}}, {{10.0, 20.0}}, {true, true}}, {{{3.0, 1.0}}, {{30.0, 40.0}}, {true, true}}}, {0.0},
                    {10.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks, 0), (Flags{false, true}));
    EXPECT_EQ(flagsOf(blocks, 1), (Flags{true, false}));
    ASSERT_EQ(blocks->getNumBlocks(), 3);
    EXPECT_EQ(inputValues(*blocks, 2, 0), (Values{1.0}));
    EXPECT_EQ(outputValues(*blocks, 2, 0), (Values{25.0}));
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 3);
}

TEST(DuplicateRemovalTest, BlankedPointsAreNeverMergedNorRevived)
{
    BlockSet blocks({{{{1.0, 1.0, 1.0}}, {{10.0, 1000.0, 30.0}}, {true, false, true}}}, {0.0}, {10.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false, false}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{20.0}));
}

TEST(DuplicateRemovalTest, ABlankedPointDoesNotLinkAChain)
{
    BlockSet blocks({{{{0.0, 0.6, 1.2}}, {}, {true, false, true}}}, {0.0}, {10.0});
    blocks->removeDuplicatePts(0.1);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, false, true}));
    EXPECT_EQ(blocks->getNumBlocks(), 1);
}

TEST(DuplicateRemovalTest, AllPointsBlankedIsNoWork)
{
    BlockSet blocks({{{{1.0, 1.0}}, {}, {false, false}}}, {0.0}, {10.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(blocks->getNumBlocks(), 1);
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 0);
}

TEST(DuplicateRemovalTest, ANaNCoordinateJoinsNoRun)
{
    OneVariable blocks({notANumber, 1.0, notANumber, 1.0, notANumber});
    blocks->removeDuplicatePts(1e9);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, false, true, false, true}));
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 4);
}

TEST(DuplicateRemovalTest, ANaNCoordinateDoesNotDisturbTheOrderOfTheOthers)
{
    OneVariable blocks({3.0, notANumber, 1.0, notANumber, 3.0, 2.0, notANumber, 1.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, true, false, true, false, true, true, false}));
    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{1.0, 3.0}));
}

TEST(DuplicateRemovalTest, ANaNInTheSecondVariableJoinsNoRun)
{
    TwoVariables blocks({1.0, 1.0, 1.0}, {notANumber, 2.0, 2.0}, {1.0, 3.0, 5.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(flagsOf(blocks), (Flags{true, false, false}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (Values{4.0}));
}

TEST(DuplicateRemovalTest, EqualInfinitiesJoinNoRun)
{
    OneVariable blocks({infinity, 1.0, -infinity, infinity, -infinity});
    blocks->removeDuplicatePts(0.5); // infinity less infinity is NaN

    EXPECT_EQ(flagsOf(blocks), (Flags{true, true, true, true, true}));
}

TEST(DuplicateRemovalTest, AnInfiniteThresholdChainsAnInfinityToTheFinitePoints)
{
    OneVariable blocks({infinity, 1.0, 5.0, infinity}, 0.0, infinity);
    blocks->removeDuplicatePts(0.5);

    EXPECT_EQ(flagsOf(blocks), (Flags{false, false, false, true}));
    EXPECT_EQ(inputValues(*blocks, 1, 0), (Values{infinity}));
}

TEST(DuplicateRemovalTest, MergedPointsStayInTheirBlocks)
{
    TwoVariables blocks({1.0, 1.0}, {2.0, 2.0}, {1.0, 3.0});
    blocks->removeDuplicatePts(0.0);

    EXPECT_EQ(blocks->getNumPtsInBlock(0), 2);
    EXPECT_EQ(inputValues(*blocks, 0, 0), (Values{1.0, 1.0}));
    EXPECT_EQ(outputValues(*blocks, 0, 0), (Values{1.0, 3.0}));
}

TEST(DuplicateRemovalTest, TheAppendedBlockCountsInListsAndStatistics)
{
    TwoVariables blocks({1.0, 1.0, 5.0}, {2.0, 2.0, 5.0}, {1.0, 3.0, 8.0});
    blocks->removeDuplicatePts(0.0);
    std::vector<std::pair<int, int>> points;
    blocks->getAllUnblankedPts(points);

    EXPECT_EQ(points, (std::vector<std::pair<int, int>>{{0, 2}, {1, 0}}));
    EXPECT_EQ(blocks->getOutputVarMean(0), 5.0); // of 8 and 2
    EXPECT_EQ(blocks->getOutputVarSampleVariance(0), 18.0);
}

TEST(DuplicateRemovalTest, TheCountsOfVariablesStay)
{
    TwoVariables blocks({1.0, 1.0}, {2.0, 2.0}, {1.0, 3.0});
    blocks->removeDuplicatePts(0.0);

    ASSERT_EQ(blocks->getNumBlocks(), 2);
    EXPECT_EQ(blocks->getNumInputVars(), 2);
    EXPECT_EQ(blocks->getNumOutputVars(), 1);
    EXPECT_EQ(blocks->getInputValueArraysForBlock(1).size(), 2U);
    EXPECT_EQ(blocks->getOutputValueArraysForBlock(1).size(), 1U);
}
