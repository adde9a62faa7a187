#include "host/targets/Shard.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::parseShard;
using krige::Shard;
using krige::UsageError;
using krige::test::messageOf;
using testing::HasSubstr;

TEST(ShardTest, PartsFollowOneAnotherWithoutGapsAndDifferByOneAtMost)
{
    for (const std::uint64_t numTargets : {0u, 1u, 6u, 7u, 8u, 1000u})
    {
        std::uint64_t next = 0;
        for (std::uint64_t index = 1; index <= 7; ++index)
        {
            const Shard part{index, 7};
            EXPECT_EQ(part.numBefore(numTargets), next);
            EXPECT_LE(part.size(numTargets), numTargets / 7 + 1);
            EXPECT_GE(part.size(numTargets), numTargets / 7);
            next += part.size(numTargets);
        }
        EXPECT_EQ(next, numTargets);
    }
}

TEST(ShardTest, PartsOfTheGreatestCountDoNotOverflow)
{
    const std::uint64_t most = ~std::uint64_t{0};
    const Shard last{3, 3};

    EXPECT_EQ(last.numBefore(most) + last.size(most), most);
}

TEST(ShardTest, WithoutAPartTheWholeIsMeant)
{
    EXPECT_TRUE(Shard().isWhole());
    EXPECT_EQ(Shard().size(10), 10u);
}

TEST(ShardTest, TextsThatAreNoPartAreRefused)
{
    for (const char* text : {"", "1", "/", "1/", "/2", "0/2", "3/2", "-1/2", "1/2/3", "1.5/2", " 1/2", "1/0"})
        EXPECT_THAT(messageOf<UsageError>([&] { parseShard(text); }), HasSubstr("must be I/K")) << text;
}

TEST(ShardTest, IndexAndCountAreRead)
{
    EXPECT_EQ(parseShard("2/8").index, 2u);
    EXPECT_EQ(parseShard("2/8").count, 8u);
}

TEST(ShardTest, TheNumberInANameHasTheZerosThatKeepPartsInOrder)
{
    EXPECT_EQ(krige::nameOfPart("part{shard}.tif", {3, 12}), "part03.tif");
    EXPECT_EQ(krige::nameOfPart("{shard}/{shard}.tif", {3, 9}), "3/3.tif");
    EXPECT_EQ(krige::nameOfPart("map.tif", {3, 9}), "map.tif");
}
