#include "analysis/Folds.h"

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::assignFolds;
using fenn::analysis::shuffledIndices;
using Indices = std::vector<std::size_t>;

TEST(FoldsTest, ShuffleIsTheSameOnEveryMachine)
{
    // Worked out apart, from the definition of the engine and of Fisher-Yates.
    EXPECT_EQ(shuffledIndices(10, 1), (Indices{1, 7, 3, 9, 4, 0, 5, 2, 6, 8}));
    EXPECT_EQ(shuffledIndices(10, 42), (Indices{1, 7, 9, 0, 3, 8, 4, 2, 5, 6}));
}

TEST(FoldsTest, ShuffleHoldsEveryIndexOnce)
{
    Indices indices = shuffledIndices(1000, 7);
    std::sort(indices.begin(), indices.end());

    for (std::size_t i = 0; i < indices.size(); ++i)
        ASSERT_EQ(indices[i], i);
    EXPECT_TRUE(shuffledIndices(0, 7).empty());
}

TEST(FoldsTest, EveryOrderOfThreeIsAboutEquallyFrequent)
{
    int numIdentity = 0;
    for (std::uint64_t seed = 0; seed < 6000; ++seed)
        numIdentity += shuffledIndices(3, seed) == Indices{0, 1, 2} ? 1 : 0;

    EXPECT_NEAR(numIdentity, 1000, 150); // five standard deviations
}

TEST(FoldsTest, EverySampleStandsInOneFoldAndSizesDifferByAtMostOne)
{
    for (const std::size_t count : {2U, 10U, 11U, 19U, 100U})
    {
        for (std::size_t numFolds = 2; numFolds <= std::min<std::size_t>(count, 10); ++numFolds)
        {
            SCOPED_TRACE(testing::Message() << count << " samples, " << numFolds << " folds");
            std::vector<std::size_t> sizes(numFolds, 0);
            for (const std::size_t fold : assignFolds(count, numFolds, 3))
            {
                ASSERT_LT(fold, numFolds);
                ++sizes[fold];
            }
            const auto [smallest, largest] = std::minmax_element(sizes.begin(), sizes.end());
            EXPECT_GE(*smallest, 1U);
            EXPECT_LE(*largest - *smallest, 1U);
        }
    }
}

TEST(FoldsTest, AnotherSeedGivesOtherFolds)
{
    EXPECT_EQ(assignFolds(100, 10, 1), assignFolds(100, 10, 1));
    EXPECT_NE(assignFolds(100, 10, 1), assignFolds(100, 10, 2));
}

TEST(FoldsTest, FewerThanTwoOrMoreFoldsThanSamplesAreRefused)
{
    EXPECT_THROW(assignFolds(10, 1, 1), std::invalid_argument);
    EXPECT_EQ(fenn::test::messageOf<std::invalid_argument>([] { assignFolds(10, 11, 1); }),
              "the number of folds must be 2 to the number of samples, 10, not 11");
}

} // namespace
