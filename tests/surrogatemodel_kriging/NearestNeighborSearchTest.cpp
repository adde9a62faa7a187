#include "surrogatemodel_kriging/NearestNeighborSearch.h"

#include <limits>

#include <gtest/gtest.h>

#include "tests/support/BlockSet.h"
#include "tests/support/NaiveSearch.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr SourcePointRef untouched{-7, -7};

using Points = std::vector<SourcePointRef>;

/// What a search finds, after checking that it leaves entries beyond the found ones alone.
Points nearestPts(const SampleBlocks& samples, const std::vector<double>& target, int maxPts)
{
    const SurrogateModelDataBlock& block = samples.block();
    const NearestNeighborSearch search(&block, block.getNumInputVars(), block.getNumBlocks());
    Points found(static_cast<std::size_t>(maxPts < 0 ? 0 : maxPts) + 3, untouched);
    const int count = search.findNearestPts(target, maxPts, found);
    const auto end = found.begin() + count;
    EXPECT_EQ(Points(end, found.end()), Points(static_cast<std::size_t>(found.end() - end), untouched));
    return Points(found.begin(), end);
}

/// One variable, one block, nothing blanked.
SampleBlocks lineOf(const std::vector<double>& coordinates)
{
    return SampleBlocks({coordinates}, {std::vector<double>(coordinates.size())});
}

} // namespace

TEST(NearestNeighborSearchTest, PointsAreFoundNearestFirst)
{
    const SampleBlocks samples = lineOf({5.0, 1.0, 3.0, -4.0});

    EXPECT_EQ(nearestPts(samples, {2.1}, 3), (Points{{0, 2}, {0, 1}, {0, 0}}));
}

TEST(NearestNeighborSearchTest, MoreThanThereAreFindsEveryUnblankedPoint)
{
    const SampleBlocks samples({{{0.0, 1.0}}, {{0.5, 2.0}}}, {{{0.0, 0.0}}, {{0.0, 0.0}}},
                               {{true, false}, {true, true}}, {Normalizer()});

    EXPECT_EQ(nearestPts(samples, {2.5}, 10), (Points{{1, 1}, {1, 0}, {0, 0}}));
}

TEST(NearestNeighborSearchTest, ExactlyAsManyAsThereAreFindsAll)
{
    EXPECT_EQ(nearestPts(lineOf({3.0, 1.0}), {0.0}, 2), (Points{{0, 1}, {0, 0}}));
}

TEST(NearestNeighborSearchTest, FewerThanOneFindsNothing)
{
    EXPECT_EQ(nearestPts(lineOf({3.0, 1.0}), {0.0}, 0), Points());
    EXPECT_EQ(nearestPts(lineOf({3.0, 1.0}), {0.0}, -1), Points());
    EXPECT_EQ(nearestPts(lineOf({3.0, 1.0}), {0.0}, std::numeric_limits<int>::min()), Points());
}

TEST(NearestNeighborSearchTest, OfEquallyDistantPointsTheOneMetFirstIsKept)
{
    EXPECT_EQ(nearestPts(lineOf({1.0, -1.0, 1.0}), {0.0}, 1), (Points{{0, 0}}));
    EXPECT_EQ(nearestPts(lineOf({1.0, -1.0, 1.0}), {0.0}, 2), (Points{{0, 0}, {0, 1}}));
    EXPECT_EQ(nearestPts(lineOf({0.0, 1.0, -1.0, 1.0}), {0.0}, 3), (Points{{0, 0}, {0, 1}, {0, 2}}));
}

TEST(NearestNeighborSearchTest, OfEquallyDistantPointsTheOneOfTheLowerBlockIsKept)
{
    const SampleBlocks samples({{{9.0, 1.0}}, {{-1.0, 1.0}}}, {{{0.0, 0.0}}, {{0.0, 0.0}}},
                               {{true, true}, {true, true}}, {Normalizer()});

    EXPECT_EQ(nearestPts(samples, {0.0}, 1), (Points{{0, 1}}));
    EXPECT_EQ(nearestPts(samples, {0.0}, 2), (Points{{0, 1}, {1, 0}}));
}

TEST(NearestNeighborSearchTest, ACloserLatecomerDropsTheLastOfTheEquallyDistant)
{
    EXPECT_EQ(nearestPts(lineOf({1.0, -1.0, 1.0, 0.5}), {0.0}, 3), (Points{{0, 3}, {0, 0}, {0, 1}}));
}

TEST(NearestNeighborSearchTest, ABlankedPointOnTheTargetIsNotFound)
{
    const SampleBlocks samples({{{0.0, 1.0, 2.0}}}, {{{0.0, 0.0, 0.0}}}, {{true, false, true}}, {Normalizer()});

    EXPECT_EQ(nearestPts(samples, {1.0}, 1), (Points{{0, 0}}));
}

TEST(NearestNeighborSearchTest, ASourcePointOnTheTargetComesFirst)
{
    EXPECT_EQ(nearestPts(lineOf({0.0, 1.0, 2.0}), {1.0}, 2), (Points{{0, 1}, {0, 0}}));
}

TEST(NearestNeighborSearchTest, EveryVariableUsesTheScaleOfTheFirst)
{
    // By the variables' own scales the first point, 3 away in variable 0, would be nearer than 4 * 10.
    const SampleBlocks samples({{{3.0, 0.0}, {0.0, 2.0}}}, {{{0.0, 0.0}}}, {{true, true}},
                               {normalizerOf(0.0, 1.0), normalizerOf(0.0, 10.0)});

    EXPECT_EQ(nearestPts(samples, {0.0, 0.0}, 1), (Points{{0, 1}}));
}

TEST(NearestNeighborSearchTest, TheScaleDecidesWhichDistancesOverflow)
{
    const SampleBlocks samples({{{1e160, 2e160}}}, {{{0.0, 0.0}}}, {{true, true}}, {normalizerOf(0.0, 1e-10)});

    EXPECT_EQ(nearestPts(samples, {0.0}, 2), (Points{{0, 0}, {0, 1}}));
}

TEST(NearestNeighborSearchTest, AScaleOfZeroMakesAllPointsEquallyNear)
{
    const SampleBlocks samples({{{3.0, 1.0, 2.0}}}, {{{0.0, 0.0, 0.0}}}, {{true, true, true}},
                               {normalizerOf(0.0, 0.0)});

    EXPECT_EQ(nearestPts(samples, {1.0}, 2), (Points{{0, 0}, {0, 1}}));
}

TEST(NearestNeighborSearchTest, WithoutInputVariablesThePointsMetFirstAreFound)
{
    EXPECT_EQ(nearestPts(SampleBlocks({}, {{1.0, 2.0, 3.0}}), {}, 2), (Points{{0, 0}, {0, 1}}));
}

TEST(NearestNeighborSearchTest, ANegativeScaleActsAsItsMagnitude)
{
    const SampleBlocks samples({{{3.0, 1.0, 2.0}}}, {{{0.0, 0.0, 0.0}}}, {{true, true, true}},
                               {normalizerOf(0.0, -2.0)});

    EXPECT_EQ(nearestPts(samples, {2.9}, 2), (Points{{0, 0}, {0, 2}}));
}

TEST(NearestNeighborSearchTest, ANaNTargetFindsNothing)
{
    const SampleBlocks samples({{{0.0, 1.0}, {0.0, 1.0}}}, {{{0.0, 0.0}}}, {{true, true}}, std::vector<Normalizer>(2));

    EXPECT_EQ(nearestPts(samples, {notANumber, 0.0}, 2), Points());
    EXPECT_EQ(nearestPts(samples, {0.0, notANumber}, 2), Points());
}

TEST(NearestNeighborSearchTest, AnInfiniteTargetFindsNothing)
{
    EXPECT_EQ(nearestPts(lineOf({0.0, infinity}), {infinity}, 2), Points());
    EXPECT_EQ(nearestPts(lineOf({0.0, infinity}), {-infinity}, 2), Points());
}

TEST(NearestNeighborSearchTest, NonFiniteSourcePointsAreNeverFound)
{
    EXPECT_EQ(nearestPts(lineOf({infinity, 4.0, notANumber, -infinity}), {0.0}, 4), (Points{{0, 1}}));
}

TEST(NearestNeighborSearchTest, APointWhoseDistanceOverflowsIsNeverFound)
{
    EXPECT_EQ(nearestPts(lineOf({1e200, 1e150, -1e155}), {0.0}, 3), (Points{{0, 1}}));
}

TEST(NearestNeighborSearchTest, APointAtTheLargestFiniteDistanceIsNeverFound)
{
    // 2^970 + 2^970 + (2^1024 - 2^972) is the largest double; without one 2^970 the sum rounds to the one below it.
    const SampleBlocks samples({{{0x1p485, 0.0}, {0x1p485, 0x1p485}, {0x1.fffffffffffffp511, 0x1.fffffffffffffp511}}},
                               {{{0.0, 0.0}}}, {{true, true}}, std::vector<Normalizer>(3));

    EXPECT_EQ(nearestPts(samples, {0.0, 0.0, 0.0}, 2), (Points{{0, 1}}));
}

TEST(NearestNeighborSearchTest, EmptyBlocksArePassedOver)
{
    const SampleBlocks samples({{{}}, {{2.0}}, {{}}}, {{{}}, {{0.0}}, {{}}}, {{}, {true}, {}}, {Normalizer()});

    EXPECT_EQ(nearestPts(samples, {0.0}, 2), (Points{{1, 0}}));
}

TEST(NearestNeighborSearchTest, NothingOfABlockWithoutPointsIsRead)
{
    const SampleBlock line{{{3.0, 1.0}}, {{0.0, 0.0}}, {true, true}};
    const SampleBlock noArrays{{}, {}, {}, 0};
    const SampleBlock noArraysAndANegativeCount{{}, {}, {}, -3};
    BlockSet blocks({line, noArrays, noArraysAndANegativeCount, line}, {0.0}, {3.0});
    const NearestNeighborSearch search(&*blocks, 1, 4);
    Points found(3, untouched);

    EXPECT_EQ(search.findNearestPts({0.0}, 3, found), 3);
    EXPECT_EQ(found, (Points{{0, 1}, {3, 1}, {0, 0}}));
}

TEST(NearestNeighborSearchTest, NothingUnblankedFindsNothing)
{
    const SampleBlocks samples({{{0.0, 1.0}}}, {{{0.0, 0.0}}}, {{false, false}}, {Normalizer()});

    EXPECT_EQ(nearestPts(samples, {0.0}, 2), Points());
}

TEST(NearestNeighborSearchTest, BlocksBeyondTheCountGivenAtConstructionAreNotSearched)
{
    const SampleBlocks samples({{{5.0}}, {{1.0}}}, {{{0.0}}, {{0.0}}}, {{true}, {true}}, {Normalizer()});
    const NearestNeighborSearch search(&samples.block(), 1, 1);
    Points found(2, untouched);

    EXPECT_EQ(search.findNearestPts({0.0}, 2, found), 1);
    EXPECT_EQ(found, (Points{{0, 0}, untouched}));
}

TEST(NearestNeighborSearchTest, CoordinatesAreReadAtEachSearch)
{
    SampleBlocks samples = lineOf({1.0, 2.0});
    const NearestNeighborSearch search(&samples.block(), 1, 1);
    Points found(1, untouched);
    search.findNearestPts({0.0}, 1, found);
    samples.inputs[0][0][0] = 3.0;

    search.findNearestPts({0.0}, 1, found);

    EXPECT_EQ(found, (Points{{0, 1}}));
}

TEST(NearestNeighborSearchTest, SquaresAreRoundedBeforeTheyAreAdded)
{
    // Both distances round to 1 + 2^-29; with the 2^-60 of (1 + 2^-30)^2 the first point would be the farther one.
    const double rounded = 1.0 + 0x1p-30;
    const SampleBlocks samples({{{0x1p-27, rounded}, {0x1p-27, 0x1p-27}, {rounded, 0x1p-27}}}, {{{0.0, 0.0}}},
                               {{true, true}}, std::vector<Normalizer>(3));

    EXPECT_EQ(nearestPts(samples, {0.0, 0.0, 0.0}, 1), (Points{{0, 0}}));
}

TEST(NearestNeighborSearchTest, FindsWhatAFullSortFinds)
{
    RandomNumbers numbers(200);
    for (std::uint64_t seed = 0; seed < 120; ++seed)
    {
        SampleShape shape;
        shape.numInputVars = 1 + seed % 5;
        shape.blockSizes = {static_cast<std::size_t>(numbers.next(0.0, 70.0)), seed % 3,
                            static_cast<std::size_t>(numbers.next(0.0, 40.0))};
        shape.blankedShare = seed % 4 == 0 ? 0.0 : 0.3;
        shape.gridSize = seed % 2 == 0 ? 4 : 0;
        const SampleBlocks samples(shape, 201 + 10 * seed);
        for (int maxPts = 0; maxPts <= 40; ++maxPts)
        {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", " << maxPts << " points");
            std::vector<double> target;
            for (std::size_t v = 0; v < shape.numInputVars; ++v)
                target.push_back(shape.gridSize > 0 ? std::floor(numbers.next(-1.0, 5.0)) : numbers.next(-1.0, 1.0));

            ASSERT_EQ(nearestPts(samples, target, maxPts), naiveNearestPts(samples, target, maxPts));
        }
    }
}

TEST(NearestNeighborSearchTest, FindsWhatAFullSortFindsAmongManyPoints)
{
    for (const std::size_t size : {255u, 256u, 257u, 1000u, 4099u})
    {
        for (const int gridSize : {0, 6})
        {
            const SampleBlocks samples(SampleShape{3, 1, {size, size / 2}, 0.1, gridSize}, 300 + size);
            for (const int maxPts : {1, 2, 8, 33, 100, 2000})
            {
                SCOPED_TRACE(testing::Message() << size << " points on grid " << gridSize << ", " << maxPts);

                EXPECT_EQ(nearestPts(samples, {0.5, 0.25, 1.0}, maxPts),
                          naiveNearestPts(samples, {0.5, 0.25, 1.0}, maxPts));
            }
        }
    }
}

TEST(NearestNeighborSearchTest, FindsWhatAFullSortFindsAmongMorePointsThanKeepTheSmallestGroups)
{
    const SampleBlocks samples(SampleShape{1, 1, {150000}, 0.0, 0}, 310);

    EXPECT_EQ(nearestPts(samples, {0.25}, 5), naiveNearestPts(samples, {0.25}, 5));
}

TEST(NearestNeighborSearchTest, FindsWhatAFullSortFindsAmongSpecialValues)
{
    const double specials[] = {notANumber, infinity, -infinity, 1e155, -1e154, 0.0, -0.0, 5e-324};
    RandomNumbers numbers(400);
    for (std::uint64_t seed = 0; seed < 60; ++seed)
    {
        SampleBlocks samples(SampleShape{2, 1, {30, 37}, 0.1, 0}, 401 + seed);
        for (auto& block : samples.inputs)
        {
            for (std::vector<double>& variable : block)
            {
                for (double& value : variable)
                {
                    if (numbers.next() < 0.3)
                        value = specials[static_cast<std::size_t>(numbers.next(0.0, 8.0))];
                }
            }
        }
        for (int maxPts = 1; maxPts <= 40; ++maxPts)
        {
            const std::vector<double> target{numbers.next(-1.0, 1.0), seed % 9 == 0 ? -0.0 : numbers.next(-1.0, 1.0)};

            ASSERT_EQ(nearestPts(samples, target, maxPts), naiveNearestPts(samples, target, maxPts))
                << "seed " << seed << ", " << maxPts << " points";
        }
    }
}
