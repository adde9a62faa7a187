#include "estimation/ClosestPair.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/Samples.h"

namespace
{

using fenn::estimation::ClosestPair;
using fenn::estimation::countRepeats;
using fenn::estimation::findClosestPair;
using Columns = std::vector<std::vector<double>>;

ClosestPair closestOfAllPairs(const Columns& columns, const std::vector<double>& scales)
{
    ClosestPair best{0, 0, std::numeric_limits<double>::infinity()};
    for (std::size_t i = 0; i < columns[0].size(); ++i)
    {
        for (std::size_t j = i + 1; j < columns[0].size(); ++j)
        {
            double squared = 0.0;
            for (std::size_t v = 0; v < columns.size(); ++v)
            {
                const double difference = (columns[v][i] - columns[v][j]) * scales[v];
                squared += difference * difference;
            }
            if (std::sqrt(squared) < best.distance)
                best = {i, j, std::sqrt(squared)};
        }
    }
    return best;
}

void expectEqual(const ClosestPair& actual, const ClosestPair& expected)
{
    EXPECT_EQ(actual.first, expected.first);
    EXPECT_EQ(actual.second, expected.second);
    EXPECT_EQ(actual.distance, expected.distance);
}

TEST(ClosestPairTest, IsThatOfALookAtAllPairs)
{
    for (std::size_t numVars = 1; numVars <= 4; ++numVars)
    {
        for (std::size_t n = 1; n <= 60; ++n)
        {
            SCOPED_TRACE(testing::Message() << numVars << " variables, " << n << " points");
            const Columns columns = fenn::test::randomValues(numVars, n, -1.0, 1.0, 100 * n + numVars);
            const std::vector<double> scales = fenn::test::randomValues(1, numVars, 0.1, 9.0, n)[0];

            expectEqual(findClosestPair(columns, scales), closestOfAllPairs(columns, scales));
        }
    }
}

TEST(ClosestPairTest, OfPairsEquallyFarApartTheLowestNumbersWin)
{
    for (std::uint64_t seed = 1; seed <= 40; ++seed)
    {
        Columns columns = fenn::test::randomValues(2, 30, 0.0, 6.0, seed);
        for (std::vector<double>& column : columns)
        {
            for (double& value : column)
                value = std::floor(value);
        }

        expectEqual(findClosestPair(columns, {1.0, 1.0}), closestOfAllPairs(columns, {1.0, 1.0}));
    }
}

TEST(ClosestPairTest, PlacesThatDifferByLessThanASquareCanSayAreTwo)
{
    const ClosestPair pair = findClosestPair({{0.0, 1e-200, 1.0}}, {1.0});

    EXPECT_EQ(pair.distance, 1e-200);
    EXPECT_EQ(countRepeats({{0.0, 1e-200, 1.0}}), 0U);
}

TEST(ClosestPairTest, RepeatsAreThePointsWithAnEarlierOneAtTheirPlace)
{
    const Columns columns{{1.0, 2.0, 1.0, 1.0, 2.0, -0.0, 0.0}, {5.0, 5.0, 5.0, 4.0, 5.0, 0.0, 0.0}};

    EXPECT_EQ(countRepeats(columns), 3U);
    expectEqual(findClosestPair(columns, {1.0, 1.0}), {0, 2, 0.0});
}

TEST(ClosestPairTest, ManyPointsAtFewPlacesAreFoundQuickly)
{
    Columns columns(2);
    for (std::size_t i = 0; i < 100000; ++i)
    {
        columns[0].push_back(static_cast<double>(i % 10));
        columns[1].push_back(static_cast<double>(i % 5));
    }

    EXPECT_EQ(countRepeats(columns), 100000U - 10U);
    expectEqual(findClosestPair(columns, {1.0, 1.0}), {0, 10, 0.0});
}

TEST(ClosestPairTest, ASinglePointHasNone)
{
    EXPECT_EQ(findClosestPair({{1.0}}, {1.0}).distance, std::numeric_limits<double>::infinity());
    EXPECT_EQ(countRepeats({{1.0}}), 0U);
}

} // namespace
