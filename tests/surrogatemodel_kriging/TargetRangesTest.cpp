#include "surrogatemodel_kriging/TargetRanges.h"

#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace
{

/// First target and one past the last of each range.
std::vector<std::pair<int, int>> boundsOf(int numTargets, int maxThreads)
{
    std::vector<std::pair<int, int>> bounds;
    for (const fenn::TargetRange& range : fenn::splitTargets(numTargets, maxThreads))
        bounds.emplace_back(range.first, range.first + range.count);
    return bounds;
}

using Bounds = std::vector<std::pair<int, int>>;

} // namespace

TEST(TargetRangesTest, TheLastRangeTakesTheRemainder)
{
    EXPECT_EQ(boundsOf(10, 4), (Bounds{{0, 2}, {2, 4}, {4, 6}, {6, 10}}));
}

TEST(TargetRangesTest, AMultipleOfTheThreadsIsSplitEvenly)
{
    EXPECT_EQ(boundsOf(9, 3), (Bounds{{0, 3}, {3, 6}, {6, 9}}));
}

TEST(TargetRangesTest, AsManyTargetsAsThreadsGetOneEach)
{
    EXPECT_EQ(boundsOf(3, 3), (Bounds{{0, 1}, {1, 2}, {2, 3}}));
}

TEST(TargetRangesTest, FewerTargetsThanThreadsAreOneRange)
{
    EXPECT_EQ(boundsOf(3, 4), (Bounds{{0, 3}}));
    EXPECT_EQ(boundsOf(1, 2), (Bounds{{0, 1}}));
}

TEST(TargetRangesTest, OneThreadHasOneRange)
{
    EXPECT_EQ(boundsOf(10, 1), (Bounds{{0, 10}}));
}

TEST(TargetRangesTest, NoTargetsAreOneEmptyRange)
{
    EXPECT_EQ(boundsOf(0, 4), (Bounds{{0, 0}}));
    EXPECT_EQ(boundsOf(0, 1), (Bounds{{0, 0}}));
}

TEST(TargetRangesTest, ANegativeNumberOfTargetsCountsAsNone)
{
    EXPECT_EQ(boundsOf(-5, 4), (Bounds{{0, 0}}));
}

TEST(TargetRangesTest, RangesFollowOneAnotherAndCoverEveryTargetOnce)
{
    for (int numTargets = 0; numTargets <= 60; ++numTargets)
    {
        for (int maxThreads = 1; maxThreads <= 9; ++maxThreads)
        {
            int next = 0;
            for (const auto& [first, end] : boundsOf(numTargets, maxThreads))
            {
                EXPECT_EQ(first, next);
                next = end;
            }
            EXPECT_EQ(next, numTargets) << maxThreads << " threads";
        }
    }
}

TEST(TargetRangesTest, TheLargestNumberOfTargetsDoesNotOverflow)
{
    EXPECT_EQ(boundsOf(2147483647, 2), (Bounds{{0, 1073741823}, {1073741823, 2147483647}}));
}
