#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/kernels/ScalarDistanceKernels.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

using namespace fenn::kernels;
using namespace fenn::test;

namespace
{

template <typename T>
using PositionOf = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

/// Random coordinates, half of them on a grid so that distances tie, some of them special values. The arrays are
/// exactly as long as there are points: the address sanitizer sees a read beyond them.
template <typename T>
struct Points
{
    Points(std::size_t numVars, std::size_t count, std::uint64_t seed) : numPts(count), target(numVars)
    {
        using Limits = std::numeric_limits<T>;
        const T specials[] = {Limits::quiet_NaN(),
                              Limits::infinity(),
                              -Limits::infinity(),
                              Limits::denorm_min(),
                              Limits::max(),
                              T(-0.0),
                              T(0.25)};
        RandomNumbers numbers(seed);
        for (std::size_t v = 0; v < numVars; ++v)
        {
            arrays.push_back(std::make_unique<T[]>(count));
            for (std::size_t p = 0; p < count; ++p)
            {
                const bool isSpecial = numbers.next() < 0.05;
                const bool isOnGrid = numbers.next() < 0.5;
                const double x = numbers.next(-1.0, 1.0);
                const T special = specials[static_cast<std::size_t>(numbers.next(0.0, 7.0))];
                arrays[v][p] = isSpecial ? special : static_cast<T>(isOnGrid ? std::round(x * 4.0) / 4.0 : x);
            }
            coords.push_back(arrays[v].get());
            target[v] = static_cast<T>(numbers.next() < 0.5 ? 0.25 : numbers.next(-1.0, 1.0));
        }
    }

    std::size_t numPts;
    std::vector<std::unique_ptr<T[]>> arrays;
    std::vector<const T*> coords;
    std::vector<T> target;
};

template <typename T>
struct Minima
{
    Minima(const Points<T>& points, std::size_t groupSize, std::size_t numFoldedGroups)
        : ofGroups(((points.numPts + groupSize - 1) / groupSize + 1) * minimaPerGroup, T(-1)),
          folded(numFoldedGroups * minimaPerGroup, std::numeric_limits<T>::infinity())
    {
    }

    bool operator==(const Minima& other) const
    {
        return ofGroups == other.ofGroups && folded == other.folded;
    }

    std::vector<T> ofGroups;
    std::vector<T> folded;
};

template <typename T>
struct Hits
{
    explicit Hits(std::size_t limit_) : limit(limit_), distances(limit + distanceGroup + 1), positions(distances.size())
    {
    }

    std::pair<std::vector<T>, std::vector<PositionOf<T>>> list() const
    {
        const auto end = static_cast<std::ptrdiff_t>(count);
        return {{distances.begin(), distances.begin() + end}, {positions.begin(), positions.begin() + end}};
    }

    std::size_t limit;
    std::vector<T> distances;
    std::vector<PositionOf<T>> positions;
    std::size_t count = 0;
};

std::vector<std::size_t> someSizes()
{
    std::vector<std::size_t> sizes{127, 128, 129, 255, 256, 257, 1001, 2063};
    for (std::size_t size = 0; size <= 67; ++size)
        sizes.push_back(size);
    return sizes;
}

/// The minima of one group size, by the definition.
template <typename T>
Minima<T> minimaOf(const Points<T>& points)
{
    Minima<T> minima(points, distanceGroup, 1);
    scalar::groupMinima(points.coords.data(), points.coords.size(), points.numPts, points.target.data(), distanceGroup,
                        minima.ofGroups.data(), minima.folded.data(), 0, 1);
    return minima;
}

/// Zeros, whole numbers with ties, infinities and denormals.
template <typename T>
std::vector<T> someDistances(std::size_t count, std::uint64_t seed)
{
    const T specials[] = {std::numeric_limits<T>::infinity(), std::numeric_limits<T>::denorm_min(), T(0)};
    RandomNumbers numbers(seed);
    std::vector<T> distances(count);
    for (T& distance : distances)
    {
        const T special = specials[static_cast<std::size_t>(numbers.next(0.0, 3.0))];
        distance = numbers.next() < 0.1 ? special : static_cast<T>(std::round(numbers.next(0.0, 64.0)));
    }
    return distances;
}

} // namespace

template <typename T>
class DistanceKernelsTest : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(DistanceKernelsTest, Precisions, );

TYPED_TEST(DistanceKernelsTest, MinimaAreThoseOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t size : someSizes())
            {
                for (const std::size_t numVars : {0u, 1u, 2u, 3u, 4u, 7u})
                {
                    SCOPED_TRACE(testing::Message() << name << ", " << size << " points, " << numVars << " variables");
                    const Points<TypeParam> points(numVars, size, 100 + size);
                    const std::size_t groupSize = size % 2 == 0 ? distanceGroup : 2 * distanceGroup;
                    Minima<TypeParam> expected(points, groupSize, 3);
                    Minima<TypeParam> actual = expected;

                    scalar::groupMinima(points.coords.data(), numVars, size, points.target.data(), groupSize,
                                        expected.ofGroups.data(), expected.folded.data(), 1, 3);
                    groupMinima(points.coords.data(), numVars, size, points.target.data(), groupSize,
                                actual.ofGroups.data(), actual.folded.data(), 1, 3);

                    ASSERT_TRUE(actual == expected);
                }
            }
        });
}

TYPED_TEST(DistanceKernelsTest, CollectedPointsAreThoseOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t size : someSizes())
            {
                const std::size_t numVars = size % 5;
                const Points<TypeParam> points(numVars, size, 200 + size);
                const Minima<TypeParam> minima = minimaOf(points);
                for (const double threshold : {0.0, 0.0625, 0.3, 1.0, 1e30})
                {
                    SCOPED_TRACE(testing::Message() << name << ", " << size << " points within " << threshold);
                    std::size_t expectedNext = 0;
                    std::size_t next = 0;
                    while (expectedNext < size)
                    {
                        Hits<TypeParam> expected(20);
                        Hits<TypeParam> actual(20);

                        expectedNext = scalar::collectPtsWithin(
                            points.coords.data(), numVars, expectedNext, size, points.target.data(),
                            static_cast<TypeParam>(threshold), distanceGroup, minima.ofGroups.data(),
                            expected.distances.data(), expected.positions.data(), expected.count, expected.limit);
                        next = collectPtsWithin(points.coords.data(), numVars, next, size, points.target.data(),
                                                static_cast<TypeParam>(threshold), distanceGroup,
                                                minima.ofGroups.data(), actual.distances.data(),
                                                actual.positions.data(), actual.count, actual.limit);

                        ASSERT_EQ(next, expectedNext);
                        ASSERT_EQ(actual.list(), expected.list());
                    }
                }
            }
        });
}

TYPED_TEST(DistanceKernelsTest, EveryPointWithinTheThresholdIsCollectedOnce)
{
    const Points<TypeParam> points(2, 1000, 3);
    const Minima<TypeParam> minima = minimaOf(points);
    Hits<TypeParam> hits(1000);

    collectPtsWithin(points.coords.data(), 2, 0, 1000, points.target.data(), TypeParam(0.25), distanceGroup,
                     minima.ofGroups.data(), hits.distances.data(), hits.positions.data(), hits.count, hits.limit);

    std::vector<PositionOf<TypeParam>> expected;
    for (PositionOf<TypeParam> p = 0; p < 1000; ++p)
    {
        const TypeParam x = points.target[0] - points.coords[0][p];
        const TypeParam y = points.target[1] - points.coords[1][p];
        if (x * x + y * y <= TypeParam(0.25))
            expected.push_back(p);
    }
    std::vector<PositionOf<TypeParam>> actual = hits.list().second;
    std::sort(actual.begin(), actual.end());
    EXPECT_GT(expected.size(), 20u);
    EXPECT_EQ(actual, expected);
}

TYPED_TEST(DistanceKernelsTest, BoundsAreThoseOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t size : someSizes())
            {
                const std::vector<TypeParam> distances = someDistances<TypeParam>(size, 300 + size);
                for (std::size_t numNearest = 1; numNearest <= size; numNearest += 1 + size / 10)
                {
                    SCOPED_TRACE(testing::Message() << name << ", " << numNearest << " of " << size);

                    ASSERT_EQ(boundOfNearest(distances.data(), size, numNearest),
                              scalar::boundOfNearest(distances.data(), size, numNearest));
                }
            }
        });
}

TYPED_TEST(DistanceKernelsTest, ABoundIsReachedByAsManyAsAskedForAndFewMore)
{
    for (const std::size_t size : someSizes())
    {
        std::vector<TypeParam> distances = someDistances<TypeParam>(size, 400 + size);
        for (std::size_t numNearest = 1; numNearest <= size; ++numNearest)
        {
            const TypeParam bound = boundOfNearest(distances.data(), size, numNearest);

            std::sort(distances.begin(), distances.end());
            ASSERT_GE(bound, distances[numNearest - 1]) << numNearest << " of " << size;
            // More than an eighth too many only when they equal the last one.
            const std::size_t firstBeyond = numNearest + numNearest / 8;
            if (firstBeyond < size && distances[firstBeyond] != distances[numNearest - 1])
            {
                ASSERT_LT(bound, distances[firstBeyond]) << numNearest << " of " << size;
            }
        }
    }
}

TYPED_TEST(DistanceKernelsTest, SquaresAreRoundedBeforeTheyAreAdded)
{
    // The last square is 1 + 2e + e^2 and loses its e^2; with it, what the others add would lie above a tie.
    const bool isFloat = sizeof(TypeParam) == 4;
    const TypeParam e = isFloat ? TypeParam(0x1p-13) : TypeParam(0x1p-27);
    const std::vector<TypeParam> first(40, isFloat ? TypeParam(0x1p-12) : TypeParam(0x1p-27));
    const std::vector<TypeParam> second(40, isFloat ? TypeParam(0) : TypeParam(0x1p-27));
    const std::vector<TypeParam> third(40, TypeParam(1) + e);
    const TypeParam* coords[] = {first.data(), second.data(), third.data()};
    const TypeParam target[] = {0, 0, 0};
    const TypeParam rounded = TypeParam(1) + 2 * e;
    forEachRunnableTarget(
        [&](const char* name)
        {
            SCOPED_TRACE(name);
            std::vector<TypeParam> minima(3 * minimaPerGroup);
            std::vector<TypeParam> folded(minimaPerGroup, TypeParam(100));
            Hits<TypeParam> hits(40);

            groupMinima(coords, 3, 40, target, distanceGroup, minima.data(), folded.data(), 0, 1);
            collectPtsWithin(coords, 3, 0, 40, target, TypeParam(100), distanceGroup, minima.data(),
                             hits.distances.data(), hits.positions.data(), hits.count, hits.limit);

            EXPECT_EQ(folded, std::vector<TypeParam>(minimaPerGroup, rounded));
            EXPECT_EQ(hits.list().first, std::vector<TypeParam>(40, rounded));
        });
}
