#include "surrogatemodel_kriging/DuplicateMerger.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/Samples.h"

using fenn::DuplicateMerger;
using fenn::MergedGroup;
using fenn::test::BlockSet;
using fenn::test::inputValues;
using fenn::test::outputValues;
using fenn::test::sameBits;

namespace
{

using Flags = std::vector<bool>;
using Groups = std::vector<MergedGroup>;
using Values = std::vector<double>;

Groups merge(SurrogateModelDataBlock& block, double tolerance)
{
    Groups groups;
    DuplicateMerger(block, tolerance, &groups).merge();
    return groups;
}

/// 200 points near the corners of a 6 x 6 x 6 lattice, many of which are taken more than once.
std::vector<Values> latticeInputs(std::uint64_t seed)
{
    std::vector<Values> inputs = fenn::test::randomValues(3, 200, 0.0, 6.0, seed);
    for (Values& column : inputs)
    {
        for (double& value : column)
            value = std::floor(value) + 0.05 * (value - std::floor(value));
    }
    return inputs;
}

} // namespace

TEST(DuplicateMergerTest, ToleranceZeroGroupsExactlyCoincidentPoints)
{
    BlockSet blocks({{{{5.0, 1.0, 5.0, 3.0, 1.0, 5.0}, {2.0, 2.0, 2.0, 2.0, 4.0, 2.0}}, {}, Flags(6, true)}},
                    {1.0, 2.0}, {5.0, 4.0});

    EXPECT_EQ(merge(*blocks, 0.0), (Groups{{{0, 0}, {0, 2}, {0, 5}}}));
}

TEST(DuplicateMergerTest, GroupsChainFromNeighbourToNeighbourAndListTheirMembersAscending)
{
    // The range is 10, the threshold 1: 0, 0.75 and 1.5 chain although 1.5 is further than 1 from 0.
    BlockSet blocks({{{{1.5, 10.0, 0.0, 0.75, 9.5}}, {}, Flags(5, true)}}, {0.0}, {10.0});

    EXPECT_EQ(merge(*blocks, 0.1), (Groups{{{0, 0}, {0, 2}, {0, 3}}, {{0, 1}, {0, 4}}}));
}

TEST(DuplicateMergerTest, GroupsReachAcrossBlocksAndLeaveBlankedPointsOut)
{
    BlockSet blocks({{{{7.0, 3.0}}, {}, {true, true}}, {{{3.0, 7.0, 3.0}}, {}, {true, true, false}}}, {0.0}, {10.0});

    EXPECT_EQ(merge(*blocks, 0.0), (Groups{{{0, 1}, {1, 0}}, {{0, 0}, {1, 1}}}));
}

TEST(DuplicateMergerTest, NegativeOrNaNToleranceGroupsNothing)
{
    for (const double tolerance : {-1.0, std::numeric_limits<double>::quiet_NaN()})
    {
        BlockSet blocks({{{{1.0, 1.0}}, {}, {true, true}}}, {0.0}, {10.0});

        EXPECT_TRUE(merge(*blocks, tolerance).empty());
    }
}

TEST(DuplicateMergerTest, WithoutInputVariablesNothingIsGrouped)
{
    BlockSet blocks({{{}, {{1.0, 2.0}}, {true, true}}}, {}, {});

    EXPECT_TRUE(merge(*blocks, 0.0).empty());
}

TEST(DuplicateMergerTest, GroupKHoldsWhatAveragedPointKStandsFor)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(seed);
        BlockSet blocks(
            {{latticeInputs(seed), fenn::test::randomValues(1, 200, 0.0, 1.0, seed + 100), Flags(200, true)}},
            {0.0, 0.0, 0.0}, {6.0, 6.0, 6.0});
        const Values outputs = outputValues(*blocks, 0, 0);

        const Groups groups = merge(*blocks, 0.003);

        ASSERT_EQ(blocks->getNumBlocks(), 2);
        ASSERT_EQ(static_cast<std::size_t>(blocks->getNumPtsInBlock(1)), groups.size());
        Flags isUnblanked(200, true);
        for (std::size_t k = 0; k < groups.size(); ++k)
        {
            double sum = 0.0;
            for (const SourcePointRef& point : groups[k])
            {
                sum += outputs[static_cast<std::size_t>(point.second)];
                isUnblanked[static_cast<std::size_t>(point.second)] = false;
            }
            EXPECT_NEAR(outputValues(*blocks, 1, 0)[k], sum / static_cast<double>(groups[k].size()),
                        1e-15); // summed in another order
        }
        EXPECT_EQ(blocks->getIncludePtArrayForBlock(0), isUnblanked);
    }
}

TEST(DuplicateMergerTest, TheRecordChangesNothingOfWhatIsMerged)
{
    const std::vector<Values> inputs = latticeInputs(21);
    const std::vector<Values> outputs = fenn::test::randomValues(2, 200, 0.0, 1.0, 22);
    BlockSet recorded({{inputs, outputs, Flags(200, true)}}, {0.0, 0.0, 0.0}, {6.0, 6.0, 6.0});
    BlockSet plain({{inputs, outputs, Flags(200, true)}}, {0.0, 0.0, 0.0}, {6.0, 6.0, 6.0});

    ASSERT_FALSE(merge(*recorded, 0.003).empty());
    plain->removeDuplicatePts(0.003);

    ASSERT_EQ(recorded->getNumBlocks(), plain->getNumBlocks());
    EXPECT_EQ(recorded->getIncludePtArrayForBlock(0), plain->getIncludePtArrayForBlock(0));
    for (std::size_t v = 0; v < 3; ++v)
        EXPECT_TRUE(sameBits(inputValues(*recorded, 1, v), inputValues(*plain, 1, v)));
    for (std::size_t w = 0; w < 2; ++w)
        EXPECT_TRUE(sameBits(outputValues(*recorded, 1, w), outputValues(*plain, 1, w)));
}
