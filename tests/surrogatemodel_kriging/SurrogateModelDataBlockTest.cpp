#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

#include <memory>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/BlockSet.h"
#include "tests/support/Samples.h"

using fenn::test::BlockSet;
using fenn::test::SampleBlock;
using fenn::test::ValueArrays;

namespace
{

using Values = std::vector<double>;

const std::vector<Normalizer> oneNormalizer(1);
const std::vector<double> low{0.0};
const std::vector<double> high{10.0};

} // namespace

TEST(SurrogateModelDataBlockTest, OneBlockOfThreePointsWithTwoIncludedCountsTwo)
{
    ValueArrays inputs({{1.0, 2.0, 3.0}});
    ValueArrays outputs({{10.0, 20.0, 30.0}});
    const SurrogateModelDataBlock block(3, inputs.arrays(), outputs.arrays(), {true, false, true}, oneNormalizer, low,
                                        high);

    EXPECT_EQ(block.getNumBlocks(), 1);
    EXPECT_EQ(block.getTotalNumUnblankedPoints(), 2);
    EXPECT_EQ(block.getNumPtsInBlock(0), 3);
    EXPECT_EQ(block.getIncludePtArrayForBlock(0), (std::vector<bool>{true, false, true}));
}

TEST(SurrogateModelDataBlockTest, CountsTheVariablesOfTheFirstBlock)
{
    ValueArrays inputs({{1.0}, {2.0}, {3.0}});
    ValueArrays outputs(std::vector<Values>{{10.0}, {20.0}});
    const std::vector<Normalizer> normalizers(3);
    const std::vector<double> limits(3);
    const SurrogateModelDataBlock block(1, inputs.arrays(), outputs.arrays(), {true}, normalizers, limits, limits);

    EXPECT_EQ(block.getNumInputVars(), 3);
    EXPECT_EQ(block.getNumOutputVars(), 2);
}

TEST(SurrogateModelDataBlockTest, LaterBlocksDoNotChangeTheCountsOfVariables)
{
    BlockSet blocks({{{{1.0}, {2.0}}, {{10.0}}, {true}}, {{}, {}, {}, 0}}, {0.0, 0.0}, {5.0, 5.0});

    EXPECT_EQ(blocks->getNumInputVars(), 2);
    EXPECT_EQ(blocks->getNumOutputVars(), 1);
}

TEST(SurrogateModelDataBlockTest, WithoutBlocksThereAreNeitherVariablesNorPoints)
{
    BlockSet blocks({}, {}, {});
    std::vector<std::pair<int, int>> points(3);

    blocks->removeDuplicatePts(0.0);
    blocks->getAllUnblankedPts(points);

    EXPECT_EQ(blocks->getNumBlocks(), 0);
    EXPECT_EQ(blocks->getNumInputVars(), 0);
    EXPECT_EQ(blocks->getNumOutputVars(), 0);
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 0);
    EXPECT_EQ(blocks->getOutputVarMean(0), 0.0);
    EXPECT_TRUE(points.empty());
}

TEST(SurrogateModelDataBlockTest, ABlockSetWithoutOutputsHasNone)
{
    ValueArrays inputs(std::vector<Values>{{1.0}});
    const SurrogateModelDataBlock block(1, inputs.arrays(), {}, {true}, oneNormalizer, low, high);

    EXPECT_EQ(block.getNumOutputVars(), 0);
}

TEST(SurrogateModelDataBlockTest, RefersToTheCallersValueArrays)
{
    ValueArrays inputs({{1.0, 2.0}});
    ValueArrays outputs({{10.0, 20.0}});
    const SurrogateModelDataBlock block(2, inputs.arrays(), outputs.arrays(), {true, true}, oneNormalizer, low, high);
    inputs[0][1] = 7.0;
    outputs[0][0] = 70.0;

    EXPECT_EQ(block.getInputValueArraysForBlock(0), inputs.arrays());
    EXPECT_EQ(block.getOutputValueArraysForBlock(0), outputs.arrays());
    EXPECT_EQ(block.getInputValueArraysForBlock(0)[0][1], 7.0);
    EXPECT_EQ(block.getOutputValueArraysForBlock(0)[0][0], 70.0);
}

TEST(SurrogateModelDataBlockTest, CopiesThePointerTablesAndTheFlags)
{
    ValueArrays inputs({{1.0, 2.0}});
    ValueArrays outputs({{10.0, 20.0}});
    std::vector<double*> inputArrays = inputs.arrays();
    std::vector<double*> outputArrays = outputs.arrays();
    std::vector<bool> isUnblanked{true, true};
    const SurrogateModelDataBlock block(2, inputArrays, outputArrays, isUnblanked, oneNormalizer, low, high);
    inputArrays[0] = nullptr;
    outputArrays[0] = nullptr;
    isUnblanked[0] = false;

    EXPECT_EQ(block.getInputValueArraysForBlock(0), inputs.arrays());
    EXPECT_EQ(block.getOutputValueArraysForBlock(0), outputs.arrays());
    EXPECT_EQ(block.getIncludePtArrayForBlock(0), (std::vector<bool>{true, true}));
}

TEST(SurrogateModelDataBlockTest, TheNormalizersAreTheVeryVectorGiven)
{
    ValueArrays inputs(std::vector<Values>{{1.0}});
    ValueArrays outputs(std::vector<Values>{{10.0}});
    std::vector<Normalizer> normalizers(1);
    const SurrogateModelDataBlock single(1, inputs.arrays(), outputs.arrays(), {true}, normalizers, low, high);
    const SurrogateModelDataBlock multi(std::vector<int>{1}, {inputs.arrays()}, {outputs.arrays()}, {{true}},
                                        normalizers, low, high);

    EXPECT_EQ(&single.getInputVarNormalizers(), &normalizers);
    EXPECT_EQ(&multi.getInputVarNormalizers(), &normalizers);
}

TEST(SurrogateModelDataBlockTest, SeveralBlocksAreReachedByTheirIndex)
{
    BlockSet blocks({{{{1.0, 2.0}}, {{10.0, 20.0}}, {true, false}}, {{{3.0}}, {{30.0}}, {true}}}, {0.0}, {5.0});

    EXPECT_EQ(blocks->getNumBlocks(), 2);
    EXPECT_EQ(blocks->getNumPtsInBlock(0), 2);
    EXPECT_EQ(blocks->getNumPtsInBlock(1), 1);
    EXPECT_EQ(blocks->getInputValueArraysForBlock(0)[0][1], 2.0);
    EXPECT_EQ(blocks->getInputValueArraysForBlock(1)[0][0], 3.0);
    EXPECT_EQ(blocks->getOutputValueArraysForBlock(0)[0][0], 10.0);
    EXPECT_EQ(blocks->getOutputValueArraysForBlock(1)[0][0], 30.0);
    EXPECT_EQ(blocks->getIncludePtArrayForBlock(0), (std::vector<bool>{true, false}));
    EXPECT_EQ(blocks->getIncludePtArrayForBlock(1), (std::vector<bool>{true}));
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 2);
}

TEST(SurrogateModelDataBlockTest, ABlankedBlockCountsNoPointsButIsABlock)
{
    BlockSet blocks({{{{1.0, 2.0}}, {{10.0, 20.0}}, {false, false}}, {{{3.0}}, {{30.0}}, {true}}}, {0.0}, {5.0});

    EXPECT_EQ(blocks->getNumBlocks(), 2);
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 1);
}

TEST(SurrogateModelDataBlockTest, FlagsBeyondTheCountOfPointsAreIgnored)
{
    BlockSet blocks({{{{1.0, 2.0, 3.0}}, {{10.0, 20.0, 30.0}}, {true, false, true, true, true}, 3}}, {0.0}, {5.0});

    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 2);
}

TEST(SurrogateModelDataBlockTest, ABlockOfNoOrANegativeNumberOfPointsCountsNone)
{
    BlockSet blocks({{{{1.0}}, {{10.0}}, {true}, 0}, {{{2.0}}, {{20.0}}, {true}, -3}, {{{3.0}}, {{30.0}}, {true}, 1}},
                    {0.0}, {5.0});

    EXPECT_EQ(blocks->getNumBlocks(), 3);
    EXPECT_EQ(blocks->getNumPtsInBlock(1), -3);
    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 1);
}

TEST(SurrogateModelDataBlockTest, TheTotalIsCountedAtConstructionOverEveryBlock)
{
    BlockSet blocks({{{{1.0, 2.0, 3.0}}, {{1.0, 2.0, 3.0}}, {true, true, false}},
                     {{{4.0, 5.0}}, {{4.0, 5.0}}, {true, true}},
                     {{{6.0}}, {{6.0}}, {false}}},
                    {0.0}, {6.0});

    EXPECT_EQ(blocks->getTotalNumUnblankedPoints(), 4);
}

TEST(SurrogateModelDataBlockTest, ValidateAcceptsEvenInconsistentData)
{
    ValueArrays inputs(std::vector<Values>{{1.0}});
    const std::vector<Normalizer> noNormalizers;
    const std::vector<double> noLimits;
    // Two blocks, of which the second has no arrays, no flags and a negative count.
    const SurrogateModelDataBlock block({1, -1}, {inputs.arrays(), {}}, {{}, {}}, {{true}, {}}, noNormalizers, noLimits,
                                        noLimits);

    EXPECT_TRUE(block.validate());
}

TEST(SurrogateModelDataBlockTest, NeverFreesACallersArray)
{
    ValueArrays inputs({{1.0, 1.0}});
    ValueArrays outputs({{10.0, 30.0}});
    auto block = std::make_unique<SurrogateModelDataBlock>(2, inputs.arrays(), outputs.arrays(),
                                                           std::vector<bool>{true, true}, oneNormalizer, low, high);
    block->removeDuplicatePts(0.0);
    block.reset();

    EXPECT_EQ(inputs[0], (std::vector<double>{1.0, 1.0}));
    EXPECT_EQ(outputs[0], (std::vector<double>{10.0, 30.0}));
}

TEST(SurrogateModelDataBlockTest, IsDestroyedThroughItsVirtualDestructor)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<SurrogateModelDataBlock>);
    EXPECT_FALSE(std::is_copy_constructible_v<SurrogateModelDataBlock>);
}
