#include "analysis/MergedGroups.h"
#include "analysis/ModelBuilder.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingModelAccess.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::analysis::findMergedGroups;
using fenn::estimation::SampleSet;
using Groups = std::vector<std::vector<std::size_t>>;

TEST(MergedGroupsTest, ToleranceZeroGroupsExactlyCoincidentSamples)
{
    const SampleSet samples({{5.0, 1.0, 5.0, 3.0, 1.0, 5.0}, {2.0, 2.0, 2.0, 2.0, 4.0, 2.0}}, {{1, 2, 3, 4, 5, 6}});

    EXPECT_EQ(findMergedGroups(samples, 0.0), (Groups{{0, 2, 5}}));
}

TEST(MergedGroupsTest, GroupsChainFromNeighbourToNeighbour)
{
    // The range is 10, the threshold 1: 0, 0.75 and 1.5 chain although 1.5 is further than 1 from 0.
    const SampleSet samples({{1.5, 10.0, 0.0, 0.75, 9.5}}, {{1, 2, 3, 4, 5}});

    EXPECT_EQ(findMergedGroups(samples, 0.1), (Groups{{0, 2, 3}, {1, 4}}));
}

TEST(MergedGroupsTest, NegativeOrNaNToleranceGroupsNothing)
{
    const SampleSet samples({{1.0, 1.0}}, {{1.0, 2.0}});

    EXPECT_TRUE(findMergedGroups(samples, -1.0).empty());
    EXPECT_TRUE(findMergedGroups(samples, std::numeric_limits<double>::quiet_NaN()).empty());
}

TEST(MergedGroupsTest, GroupsAreThoseThatTheDataBlockAveraged)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(seed);
        // Near the corners of a 6 x 6 x 6 lattice, many of which are taken more than once.
        std::vector<std::vector<double>> inputs = fenn::test::randomValues(3, 200, 0.0, 6.0, seed);
        for (std::vector<double>& column : inputs)
        {
            for (double& value : column)
                value = std::floor(value) + 0.05 * (value - std::floor(value));
        }
        const SampleSet samples(inputs, fenn::test::randomValues(1, 200, 0.0, 1.0, seed + 100));
        const Groups groups = findMergedGroups(samples, 0.003);
        const auto model = fenn::analysis::buildModelParts(samples, {0.003, {}, 0, 1.0, 0.0, 0});
        const SurrogateModelDataBlock& block = KrigingModelAccess::getDataBlock(*model);

        ASSERT_EQ(block.getNumBlocks(), 2);
        ASSERT_EQ(static_cast<std::size_t>(block.getNumPtsInBlock(1)), groups.size());
        std::vector<bool> isUnblanked(200, true);
        for (std::size_t k = 0; k < groups.size(); ++k)
        {
            double sum = 0.0;
            for (const std::size_t i : groups[k])
            {
                sum += samples.getOutput(0)[i];
                isUnblanked[i] = false;
            }
            const double average = block.getOutputValueArraysForBlock(1)[0][k];
            EXPECT_NEAR(average, sum / static_cast<double>(groups[k].size()), 1e-15); // summed in another order
        }
        EXPECT_EQ(block.getIncludePtArrayForBlock(0), isUnblanked);
    }
}

} // namespace
