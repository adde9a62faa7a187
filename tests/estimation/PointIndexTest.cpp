#include "estimation/PointIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/SampleBlocks.h"
#include "tests/support/Samples.h"

using namespace fenn::test;
using fenn::estimation::PointIndex;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Columns = std::vector<std::vector<double>>;
using Positions = std::vector<std::size_t>;

std::unique_ptr<PointIndex> indexOf(const Columns& columns)
{
    std::vector<const double*> coords;
    for (const std::vector<double>& column : columns)
        coords.push_back(column.data());
    return std::make_unique<PointIndex>(coords, columns.empty() ? 0 : columns[0].size());
}

/// What a search finds, after checking that places and distances belong to the positions.
Positions nearestPts(const PointIndex& index, const Columns& columns, const std::vector<double>& target,
                     std::size_t maxPts, PointIndex::Neighbours& nearest)
{
    index.find(target.data(), nearest);
    EXPECT_LE(nearest.size(), maxPts);
    Positions found;
    for (std::size_t i = 0; i < nearest.size(); ++i)
    {
        double distance = 0.0;
        for (std::size_t v = 0; v < target.size(); ++v)
        {
            const double difference = target[v] - columns[v][nearest[i].position];
            distance += difference * difference;
        }
        EXPECT_EQ(nearest[i].distance, distance);
        EXPECT_EQ(index.getOrder()[nearest[i].place], nearest[i].position);
        found.push_back(nearest[i].position);
    }
    return found;
}

Positions nearestPts(const Columns& columns, const std::vector<double>& target, std::size_t maxPts)
{
    PointIndex::Neighbours nearest(maxPts);
    return nearestPts(*indexOf(columns), columns, target, maxPts, nearest);
}

/// Both searches for several numbers of points, around each target, on every instruction set.
void expectWhatTheExhaustiveSearchFinds(const Columns& columns, const Columns& targets,
                                        const std::vector<int>& numbers = {1, 2, 7, 16, 33})
{
    const SampleBlocks samples(columns, {std::vector<double>(columns[0].size())});
    const NearestNeighborSearch search(&samples.block(), static_cast<int>(columns.size()), 1);
    const std::unique_ptr<PointIndex> index = indexOf(columns);
    for (const int maxPts : numbers)
    {
        std::vector<std::vector<double>> places;
        std::vector<Positions> expected;
        std::vector<SourcePointRef> found(static_cast<std::size_t>(maxPts));
        for (std::size_t t = 0; t < targets[0].size(); ++t)
        {
            places.emplace_back();
            for (const std::vector<double>& column : targets)
                places.back().push_back(column[t]);
            const int count = search.findNearestPts(places.back(), maxPts, found);
            expected.emplace_back();
            for (int i = 0; i < count; ++i)
                expected.back().push_back(static_cast<std::size_t>(found[static_cast<std::size_t>(i)].second));
        }
        PointIndex::Neighbours nearest(static_cast<std::size_t>(maxPts));
        forEachRunnableTarget(
            [&](const char* name)
            {
                for (std::size_t t = 0; t < places.size(); ++t)
                    ASSERT_EQ(nearestPts(*index, columns, places[t], static_cast<std::size_t>(maxPts), nearest),
                              expected[t])
                        << name << ", " << columns.size() << " variables, " << columns[0].size() << " points, "
                        << maxPts << " wanted, target " << t;
            });
    }
}

/// Whole numbers from 0 to size - 1.
Columns onLattice(std::size_t numVars, std::size_t numPts, double size, std::uint64_t seed)
{
    Columns columns = randomValues(numVars, numPts, 0.0, size, seed);
    for (std::vector<double>& column : columns)
    {
        for (double& value : column)
            value = std::floor(value);
    }
    return columns;
}

} // namespace

TEST(PointIndexTest, PointsAreFoundNearestFirst)
{
    EXPECT_EQ(nearestPts({{5.0, 1.0, 3.0, -4.0}}, {2.1}, 3), (Positions{2, 1, 0}));
}

TEST(PointIndexTest, MoreThanThereAreFindsEveryPoint)
{
    EXPECT_EQ(nearestPts({{3.0, 1.0}}, {0.0}, 10), (Positions{1, 0}));
}

TEST(PointIndexTest, NoneWantedFindsNothing)
{
    EXPECT_EQ(nearestPts({{3.0, 1.0}}, {0.0}, 0), Positions());
}

TEST(PointIndexTest, WithoutPointsNothingIsFound)
{
    EXPECT_EQ(nearestPts({{}, {}}, {0.0, 0.0}, 3), Positions());
}

TEST(PointIndexTest, OfEquallyDistantPointsTheLowerPositionsAreKept)
{
    EXPECT_EQ(nearestPts({{1.0, -1.0, 1.0}}, {0.0}, 1), (Positions{0}));
    EXPECT_EQ(nearestPts({{0.0, 1.0, -1.0, 1.0}}, {0.0}, 3), (Positions{0, 1, 2}));
    EXPECT_EQ(nearestPts({{1.0, -1.0, 1.0, 0.5}}, {0.0}, 3), (Positions{3, 0, 1}));
}

TEST(PointIndexTest, OfManyCoincidentPointsTheLowestPositionsAreKept)
{
    const Columns columns(2, std::vector<double>(1000, 3.25));
    EXPECT_EQ(nearestPts(columns, {3.25, 3.25}, 4), (Positions{0, 1, 2, 3}));
    EXPECT_EQ(nearestPts(columns, {7.0, 8.0}, 4), (Positions{0, 1, 2, 3}));
}

TEST(PointIndexTest, FewPlacesWithManyPointsAreThoseOfTheExhaustiveSearch)
{
    // Interleaved, so that positions of one place lie far apart; places of 1, 15, 16, 17, 33 and many points.
    const Columns places{{0.0, 1.0, 0.0, 1.0, 0.5, 3.0, 3.0}, {0.0, 0.0, 1.0, 1.0, 0.5, 3.0, -0.0}};
    const std::size_t counts[] = {1, 15, 16, 17, 33, 200, 700};
    Columns columns(2);
    for (std::size_t round = 0; round < 700; ++round)
    {
        for (std::size_t place = 0; place < 7; ++place)
        {
            if (round >= counts[place])
                continue;
            columns[0].push_back(places[0][place]);
            columns[1].push_back(places[1][place]);
        }
    }
    Columns targets{{0.5, 2.0, 3.0, -1.0}, {0.4, 1.0, 1.5, 7.0}};
    for (std::size_t v = 0; v < 2; ++v)
        targets[v].insert(targets[v].end(), places[v].begin(), places[v].end());

    expectWhatTheExhaustiveSearchFinds(columns, targets, {1, 2, 15, 16, 17, 31, 40, 90, 300, 982, 2000});
}

TEST(PointIndexTest, ANonFiniteTargetFindsNothing)
{
    const Columns columns{{0.0, 1.0, infinity}, {0.0, 1.0, 2.0}};
    for (const double odd : {notANumber, infinity, -infinity})
    {
        EXPECT_EQ(nearestPts(columns, {odd, 0.0}, 2), Positions());
        EXPECT_EQ(nearestPts(columns, {0.0, odd}, 2), Positions());
    }
}

TEST(PointIndexTest, NonFinitePointsAreNeverFound)
{
    EXPECT_EQ(nearestPts({{infinity, 4.0, notANumber, -infinity}}, {0.0}, 4), (Positions{1}));
}

TEST(PointIndexTest, APointWhoseDistanceOverflowsIsNeverFound)
{
    EXPECT_EQ(nearestPts({{1e200, 1e150, -1e155}}, {0.0}, 3), (Positions{1}));
    EXPECT_EQ(nearestPts({{1.0, 2.0}}, {1e160}, 2), Positions());
}

TEST(PointIndexTest, ADistanceOfTheLargestNumberIsNotFound)
{
    // 2^970 + 2^970 + (2^1024 - 2^972) is the largest double; without one 2^970 the sum rounds to the one below it.
    EXPECT_EQ(nearestPts({{0x1p485, 0.0}, {0x1p485, 0x1p485}, {0x1.fffffffffffffp511, 0x1.fffffffffffffp511}},
                         {0.0, 0.0, 0.0}, 2),
              (Positions{1}));
}

TEST(PointIndexTest, WithoutVariablesNothingTellsPointsApart)
{
    const PointIndex index({}, 3);
    PointIndex::Neighbours nearest(2);
    index.find(nullptr, nearest);

    ASSERT_EQ(nearest.size(), 2U);
    EXPECT_EQ(nearest[0].position, 0U);
    EXPECT_EQ(nearest[1].position, 1U);
}

TEST(PointIndexTest, SquaresAreRoundedBeforeTheyAreAdded)
{
    // Both distances round to 1 + 2^-29; with the 2^-60 of (1 + 2^-30)^2 the first point would be the farther one.
    const double rounded = 1.0 + 0x1p-30;
    EXPECT_EQ(nearestPts({{0x1p-27, rounded}, {0x1p-27, 0x1p-27}, {rounded, 0x1p-27}}, {0.0, 0.0, 0.0}, 1),
              (Positions{0}));
}

TEST(PointIndexTest, ScatteredPointsAreThoseOfTheExhaustiveSearch)
{
    for (const std::size_t numVars : {1U, 2U, 3U, 4U, 6U})
    {
        for (const std::size_t numPts : {1U, 2U, 15U, 16U, 17U, 40U, 300U, 3000U})
            expectWhatTheExhaustiveSearchFinds(randomValues(numVars, numPts, -1.0, 1.0, 10 * numPts + numVars),
                                               randomValues(numVars, 60, -1.5, 1.5, numPts));
    }
}

TEST(PointIndexTest, PointsOfALatticeAreThoseOfTheExhaustiveSearch)
{
    for (const std::size_t numVars : {1U, 2U, 3U, 5U})
    {
        // Targets on the lattice and halfway between: most distances are shared by many points.
        Columns targets = onLattice(numVars, 60, 13.0, numVars);
        for (std::size_t t = 0; t < 60; t += 2)
            targets[0][t] += 0.5;
        expectWhatTheExhaustiveSearchFinds(onLattice(numVars, 2000, 12.0, 50 + numVars), targets);
    }
}

TEST(PointIndexTest, PointsOnALineAreThoseOfTheExhaustiveSearch)
{
    Columns columns = randomValues(3, 1500, -1.0, 1.0, 61);
    for (std::size_t i = 0; i < 1500; ++i)
    {
        columns[1][i] = 0.5 * columns[0][i];
        columns[2][i] = 7.0;
    }
    expectWhatTheExhaustiveSearchFinds(columns, randomValues(3, 80, -2.0, 8.0, 62));
}

TEST(PointIndexTest, ClustersAreThoseOfTheExhaustiveSearch)
{
    // From cluster to cluster a thousandth of the size: deep trees, distances of very different magnitude.
    Columns columns = randomValues(2, 2400, -1.0, 1.0, 63);
    for (std::size_t i = 0; i < 2400; ++i)
    {
        const double size = std::pow(10.0, -3.0 * static_cast<double>(i % 8));
        columns[0][i] *= size;
        columns[1][i] = columns[1][i] * size + 1.0;
    }
    Columns targets = randomValues(2, 80, -1e-9, 1e-9, 64);
    for (double& value : targets[1])
        value += 1.0;
    expectWhatTheExhaustiveSearchFinds(columns, targets);
}

TEST(PointIndexTest, TinyDistancesAreThoseOfTheExhaustiveSearch)
{
    // Squares that underflow partly or wholly.
    for (const double size : {1e-155, 1e-161, 1e-170, 5e-324})
    {
        Columns columns = onLattice(2, 500, 12.0, 65);
        Columns targets = onLattice(2, 60, 12.0, 66);
        for (Columns* values : {&columns, &targets})
        {
            for (std::vector<double>& column : *values)
            {
                for (double& value : column)
                    value *= size;
            }
        }
        expectWhatTheExhaustiveSearchFinds(columns, targets);
    }
}

TEST(PointIndexTest, HugeCoordinatesAreThoseOfTheExhaustiveSearch)
{
    for (const double size : {1e140, 1e149, 1e152, 1e154, 1e300})
        expectWhatTheExhaustiveSearchFinds(randomValues(2, 400, -size, size, 67), randomValues(2, 40, -size, size, 68));
}

TEST(PointIndexTest, DistancesThatDifferInTheLastBitAreThoseOfTheExhaustiveSearch)
{
    // On a circle around the target, so that all distances are equal but for roundings.
    Columns columns = randomValues(2, 1200, 0.0, 6.3, 69);
    for (std::size_t i = 0; i < 1200; ++i)
    {
        const double angle = columns[0][i];
        columns[0][i] = 3.0 + std::cos(angle);
        columns[1][i] = 5.0 + std::sin(angle);
    }
    expectWhatTheExhaustiveSearchFinds(columns, {{3.0}, {5.0}}, {1, 2, 5, 16, 100, 600, 1199});
}

TEST(PointIndexTest, SpecialValuesAreThoseOfTheExhaustiveSearch)
{
    const double specials[] = {notANumber, infinity, -infinity, 1e155, -1e154, 0.0, -0.0, 5e-324};
    RandomNumbers numbers(400);
    for (std::uint64_t seed = 0; seed < 40; ++seed)
    {
        Columns columns = randomValues(2, 67, -1.0, 1.0, 401 + seed);
        for (std::vector<double>& column : columns)
        {
            for (double& value : column)
            {
                if (numbers.next() < 0.3)
                    value = specials[static_cast<std::size_t>(numbers.next(0.0, seed % 2 == 0 ? 3.0 : 8.0))];
            }
        }
        Columns targets = randomValues(2, 20, -1.0, 1.0, 500 + seed);
        targets[0][3] = -0.0;
        expectWhatTheExhaustiveSearchFinds(columns, targets, {1, 5, 30, 67, 80});
    }
}

TEST(PointIndexTest, ManyNeighboursAreThoseOfTheExhaustiveSearch)
{
    expectWhatTheExhaustiveSearchFinds(randomValues(2, 2500, -1.0, 1.0, 70), randomValues(2, 10, -1.0, 1.0, 71),
                                       {400, 1000, 2499, 2500, 2501});
}

TEST(PointIndexTest, NeighboursServeSearchesInDifferentIndices)
{
    PointIndex::Neighbours nearest(3);
    const Columns many = randomValues(1, 100, 0.0, 1.0, 72);
    const Columns one{{5.0}};
    nearestPts(*indexOf(many), many, {0.5}, 3, nearest);

    EXPECT_EQ(nearestPts(*indexOf(one), one, {0.0}, 3, nearest), (Positions{0}));
}

TEST(PointIndexTest, ThreadsSearchAtTheSameTime)
{
    const Columns columns = randomValues(2, 5000, 0.0, 1.0, 73);
    const Columns targets = randomValues(2, 500, 0.0, 1.0, 74);
    const std::unique_ptr<PointIndex> index = indexOf(columns);
    std::vector<std::vector<Positions>> found(4);
    std::vector<std::thread> threads;
    for (std::vector<Positions>& mine : found)
    {
        threads.emplace_back(
            [&]
            {
                PointIndex::Neighbours nearest(9);
                for (std::size_t t = 0; t < 500; ++t)
                {
                    const double target[] = {targets[0][t], targets[1][t]};
                    index->find(target, nearest);
                    mine.emplace_back();
                    for (std::size_t i = 0; i < nearest.size(); ++i)
                        mine.back().push_back(nearest[i].position);
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();

    for (const std::vector<Positions>& other : found)
        EXPECT_EQ(other, found[0]);
}
