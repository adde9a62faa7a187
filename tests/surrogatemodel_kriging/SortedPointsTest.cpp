#include "surrogatemodel_kriging/SortedPoints.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/BitComparison.h"
#include "tests/support/Samples.h"

using fenn::PointWithValue;
using namespace fenn::test;

namespace
{

std::vector<PointWithValue> pointsOf(const std::vector<double>& values)
{
    std::vector<PointWithValue> points;
    for (const double value : values)
        points.push_back({value, {static_cast<int>(points.size() % 3), static_cast<int>(points.size())}});
    return points;
}

std::vector<PointWithValue> insertionSorted(const std::vector<PointWithValue>& points)
{
    std::vector<PointWithValue> sorted;
    for (const PointWithValue& point : points)
    {
        const auto goesBefore = [&](const PointWithValue& other)
        {
            return point.value < other.value || (std::isnan(other.value) && !std::isnan(point.value));
        };
        sorted.insert(std::find_if(sorted.begin(), sorted.end(), goesBefore), point);
    }
    return sorted;
}

void expectSortedStably(const std::vector<double>& values)
{
    const std::vector<PointWithValue> expected = insertionSorted(pointsOf(values));
    std::vector<PointWithValue> actual = pointsOf(values);

    fenn::sortByValue(actual);

    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
    {
        ASSERT_TRUE(sameBits(actual[i].value, expected[i].value)) << "place " << i;
        ASSERT_EQ(actual[i].point, expected[i].point) << "place " << i;
    }
}

} // namespace

TEST(SortedPointsTest, ValuesAscendAndEqualOnesKeepTheirOrder)
{
    for (const std::size_t size : {0u, 1u, 2u, 10u, 100u, 1499u, 1500u, 1501u, 4000u})
    {
        std::vector<double> values = randomValues(1, size, -3.0, 3.0, size)[0];
        for (std::size_t i = 0; i < size; i += 2)
            values[i] = std::round(values[i]);
        SCOPED_TRACE(size);
        expectSortedStably(values);
    }
}

TEST(SortedPointsTest, ZerosAreEqualAndNaNComesLast)
{
    const double specials[] = {0.0,
                               -0.0,
                               std::numeric_limits<double>::quiet_NaN(),
                               -std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::denorm_min(),
                               -std::numeric_limits<double>::denorm_min(),
                               std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::lowest(),
                               1.0};
    for (const std::size_t size : {50u, 2000u})
    {
        RandomNumbers numbers(size);
        std::vector<double> values(size);
        for (double& value : values)
            value = specials[static_cast<std::size_t>(numbers.next(0.0, 11.0))];
        SCOPED_TRACE(size);
        expectSortedStably(values);
    }
}

TEST(SortedPointsTest, ManyEqualValuesStayAsTheyAre)
{
    expectSortedStably(std::vector<double>(3000, 0.25));
}

TEST(SortedPointsTest, EveryBitOfAValueCounts)
{
    // Neighbouring numbers over all magnitudes: each digit of the keys decides somewhere.
    std::vector<double> values;
    RandomNumbers numbers(5);
    for (int exponent = -1040; exponent < 1000; exponent += 3)
    {
        const double value = std::ldexp(1.0 + numbers.next(), exponent);
        for (const double neighbour : {value, std::nextafter(value, 0.0), -value, -std::nextafter(value, 0.0)})
            values.push_back(neighbour);
    }
    for (std::size_t i = values.size() - 1; i > 0; --i)
        std::swap(values[i], values[static_cast<std::size_t>(numbers.next(0.0, static_cast<double>(i + 1)))]);
    ASSERT_GT(values.size(), 2000u);

    expectSortedStably(values);
}
