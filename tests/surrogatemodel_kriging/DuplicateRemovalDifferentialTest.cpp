#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/NaiveDataBlock.h"
#include "tests/support/RandomBlocks.h"

using fenn::test::BlockSet;
using fenn::test::inputValues;
using fenn::test::outputValues;
using fenn::test::PointList;
using fenn::test::RandomBlocks;
using fenn::test::sameBits;
using fenn::test::SampleBlock;

namespace
{

void expectSameBlocks(const SurrogateModelDataBlock& actual, const std::vector<SampleBlock>& expected)
{
    ASSERT_EQ(actual.getNumBlocks(), static_cast<int>(expected.size()));
    for (int b = 0; b < actual.getNumBlocks(); ++b)
    {
        SCOPED_TRACE(testing::Message() << "block " << b);
        const SampleBlock& block = expected[static_cast<std::size_t>(b)];
        ASSERT_EQ(actual.getNumPtsInBlock(b), block.numPts);
        ASSERT_EQ(actual.getIncludePtArrayForBlock(b), block.isUnblanked);
        for (std::size_t v = 0; v < block.inputs.size(); ++v)
            ASSERT_TRUE(sameBits(inputValues(actual, b, v), block.inputs[v])) << "input " << v;
        for (std::size_t w = 0; w < block.outputs.size(); ++w)
            ASSERT_TRUE(sameBits(outputValues(actual, b, w), block.outputs[w])) << "output " << w;
    }
}

} // namespace

TEST(DuplicateRemovalDifferentialTest, RandomBlocksGiveTheGroupsAndBitsOfThePlainLoops)
{
    std::size_t numGroups = 0;
    std::size_t numLargeGroups = 0;
    for (std::uint64_t seed = 1; seed <= 1500; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const RandomBlocks random(seed);
        BlockSet blocks(random.samples, random.minValues, random.maxValues);
        blocks->removeDuplicatePts(random.tolerance);

        std::vector<SampleBlock> expected = random.samples;
        for (const PointList& group :
             naiveRemoveDuplicates(expected, random.minValues, random.maxValues, random.tolerance))
        {
            ++numGroups;
            if (group.size() > 16)
                ++numLargeGroups;
        }
        expectSameBlocks(*blocks, expected);
        if (HasFatalFailure())
            return;
        ASSERT_EQ(blocks->getTotalNumUnblankedPoints(), static_cast<int>(naiveUnblankedPts(expected).size()));
    }
    EXPECT_GT(numGroups, 5000U); // the samples are worth the comparison
    EXPECT_GT(numLargeGroups, 300U);
}

TEST(DuplicateRemovalDifferentialTest, StatisticsAfterwardsAreThoseOfThePlainLoops)
{
    for (std::uint64_t seed = 2001; seed <= 2300; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const RandomBlocks random(seed);
        BlockSet blocks(random.samples, random.minValues, random.maxValues);
        blocks->removeDuplicatePts(random.tolerance);
        std::vector<SampleBlock> expected = random.samples;
        naiveRemoveDuplicates(expected, random.minValues, random.maxValues, random.tolerance);

        for (int w = 0; w < blocks->getNumOutputVars(); ++w)
        {
            const fenn::test::NaiveStatistics statistics = naiveStatistics(expected, static_cast<std::size_t>(w));
            double min = 0.0;
            double max = 0.0;
            blocks->getOutputVarMinMax(w, min, max);
            ASSERT_TRUE(sameBits({min, max, blocks->getOutputVarMean(w), blocks->getOutputVarSampleVariance(w)},
                                 {statistics.min, statistics.max, statistics.mean, statistics.variance}));
        }
    }
}

TEST(DuplicateRemovalDifferentialTest, ToleranceZeroLeavesEveryPositionOnce)
{
    for (std::uint64_t seed = 3001; seed <= 3100; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        fenn::test::RandomNumbers numbers(seed);
        SampleBlock samples{{{}, {}}, {}, {}, 100};
        std::map<std::pair<double, double>, int> numPtsAt;
        for (int i = 0; i < samples.numPts; ++i)
        {
            const double x = static_cast<int>(numbers.next(0.0, 8.0));
            const double y = static_cast<int>(numbers.next(0.0, 8.0));
            samples.inputs[0].push_back(x);
            samples.inputs[1].push_back(y);
            samples.isUnblanked.push_back(true);
            ++numPtsAt[{x, y}];
        }
        BlockSet blocks({samples}, {0.0, 0.0}, {7.0, 7.0});
        blocks->removeDuplicatePts(0.0);

        ASSERT_EQ(blocks->getTotalNumUnblankedPoints(), static_cast<int>(numPtsAt.size()));
        for (int i = 0; i < samples.numPts; ++i)
        {
            const auto index = static_cast<std::size_t>(i);
            const bool isAlone = numPtsAt[{samples.inputs[0][index], samples.inputs[1][index]}] == 1;
            ASSERT_EQ(blocks->getIncludePtArrayForBlock(0)[index], isAlone);
        }
        ASSERT_EQ(blocks->getNumBlocks(), 2);
        std::map<std::pair<double, double>, int> numAveragesAt;
        for (int k = 0; k < blocks->getNumPtsInBlock(1); ++k)
        {
            const auto index = static_cast<std::size_t>(k);
            ++numAveragesAt[{inputValues(*blocks, 1, 0)[index], inputValues(*blocks, 1, 1)[index]}];
        }
        for (const auto& [position, count] : numAveragesAt)
        {
            ASSERT_EQ(count, 1);
            ASSERT_GT(numPtsAt[position], 1);
        }
    }
}

// What the members of a group weigh together their average weighs alone: with whole numbers no bit is lost on the way.
TEST(DuplicateRemovalDifferentialTest, AGroupOfAPowerOfTwoKeepsItsSum)
{
    SampleBlock samples{{{}}, {{}}, {}, 8};
    for (int i = 0; i < 8; ++i)
    {
        samples.inputs[0].push_back(i);
        samples.outputs[0].push_back(i * i);
        samples.isUnblanked.push_back(true);
    }
    BlockSet blocks({samples}, {0.0}, {7.0});
    blocks->removeDuplicatePts(1.0);

    EXPECT_EQ(inputValues(*blocks, 1, 0), (std::vector<double>{28.0 / 8.0}));
    EXPECT_EQ(outputValues(*blocks, 1, 0), (std::vector<double>{140.0 / 8.0}));
}
