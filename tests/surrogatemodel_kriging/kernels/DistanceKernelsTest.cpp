#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/kernels/ScalarDistanceKernels.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

using namespace fenn::kernels;
using namespace fenn::test;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Random coordinates, half of them on a grid so that distances tie, some of them special values. The arrays are
/// exactly as long as there are points: the address sanitizer sees a read beyond them.
struct Points
{
    Points(std::size_t numVars, std::size_t count, std::uint64_t seed) : target(numVars)
    {
        const double specials[] = {notANumber, infinity, -infinity, 5e-324, 1.7e308, -0.0, 0.25};
        RandomNumbers numbers(seed);
        for (std::size_t v = 0; v < numVars; ++v)
        {
            arrays.push_back(std::make_unique<double[]>(count));
            for (std::size_t p = 0; p < count; ++p)
            {
                const bool isSpecial = numbers.next() < 0.05;
                const bool isOnGrid = numbers.next() < 0.5;
                const double x = numbers.next(-1.0, 1.0);
                const double special = specials[static_cast<std::size_t>(numbers.next(0.0, 7.0))];
                arrays[v][p] = isSpecial ? special : isOnGrid ? std::round(x * 4.0) / 4.0 : x;
            }
            coords.push_back(arrays[v].get());
            target[v] = numbers.next() < 0.5 ? 0.25 : numbers.next(-1.0, 1.0);
        }
        const double scales[] = {1.0, 0.7, -3.0, 1e-200, 0.0, notANumber};
        const double scale = scales[seed % 8 < 6 ? seed % 8 : 0];
        asArgument = {target.data(), scale, numVars, coords.data(), count};
    }

    std::vector<std::unique_ptr<double[]>> arrays;
    std::vector<const double*> coords;
    std::vector<double> target;
    TargetAndPoints asArgument;
};

/// Filled with garbage, with room for one group more than there are.
struct Minima
{
    Minima(const Points& points, std::size_t groupSize, std::size_t numFolded, std::size_t firstFolded)
        : ofGroups(((points.asArgument.numPts + groupSize - 1) / groupSize + 1) * minimaPerGroup, -1.0),
          folded(numFolded * minimaPerGroup, infinity),
          asArgument{groupSize, ofGroups.data(), folded.data(), numFolded, firstFolded}
    {
    }

    Minima(const Minima& other) = delete;
    Minima& operator=(const Minima& other) = delete;

    std::vector<double> ofGroups;
    std::vector<double> folded;
    GroupMinima asArgument;
};

/// The minima of one group size, by the definition.
struct PlainMinima : Minima
{
    explicit PlainMinima(const Points& points) : Minima(points, distanceGroup, 1, 0)
    {
        scalar::groupMinima(points.asArgument, asArgument);
    }
};

struct Candidates
{
    explicit Candidates(std::size_t limit)
        : array(limit + distanceGroup + 1, Candidate{notANumber, -1, -1}), asArgument{array.data(), 0, limit}
    {
    }

    Candidates(const Candidates& other) = delete;
    Candidates& operator=(const Candidates& other) = delete;

    /// Distance, block and point.
    std::vector<std::tuple<double, int, int>> list() const
    {
        std::vector<std::tuple<double, int, int>> entries;
        for (std::size_t i = 0; i < asArgument.count; ++i)
            entries.emplace_back(array[i].distance, array[i].block, array[i].point);
        return entries;
    }

    std::vector<Candidate> array;
    CandidateList asArgument;
};

std::vector<std::size_t> someSizes()
{
    std::vector<std::size_t> sizes{127, 128, 129, 255, 256, 257, 1001, 2063};
    for (std::size_t size = 0; size <= 67; ++size)
        sizes.push_back(size);
    return sizes;
}

/// Zeros, whole numbers with ties, infinities and denormals.
std::vector<double> someDistances(std::size_t count, std::uint64_t seed)
{
    const double specials[] = {infinity, 5e-324, 0.0};
    RandomNumbers numbers(seed);
    std::vector<double> distances(count);
    for (double& distance : distances)
    {
        const double special = specials[static_cast<std::size_t>(numbers.next(0.0, 3.0))];
        distance = numbers.next() < 0.1 ? special : std::round(numbers.next(0.0, 64.0));
    }
    return distances;
}

} // namespace

TEST(DistanceKernelsTest, MinimaAreThoseOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t size : someSizes())
            {
                for (const std::size_t numVars : {0u, 1u, 2u, 3u, 4u, 7u})
                {
                    SCOPED_TRACE(testing::Message() << name << ", " << size << " points, " << numVars << " variables");
                    const Points points(numVars, size, 100 + size);
                    const std::size_t groupSize = size % 2 == 0 ? distanceGroup : 2 * distanceGroup;
                    Minima expected(points, groupSize, 3, size % 3);
                    Minima actual(points, groupSize, 3, size % 3);

                    scalar::groupMinima(points.asArgument, expected.asArgument);
                    groupMinima(points.asArgument, actual.asArgument);

                    ASSERT_EQ(actual.ofGroups, expected.ofGroups);
                    ASSERT_EQ(actual.folded, expected.folded);
                }
            }
        });
}

TEST(DistanceKernelsTest, FoldedMinimaAreThoseOfEveryGroupInTurn)
{
    const std::vector<double> coordinates{5.0, 3.0, 4.0, 1.0, 2.0}; // each at the start of a group
    std::vector<double> line(4 * distanceGroup + 1, 100.0);
    for (std::size_t g = 0; g < 5; ++g)
        line[g * distanceGroup] = coordinates[g];
    const double* const coords = line.data();
    const double target = 0.0;
    std::vector<double> ofGroups(5 * minimaPerGroup);
    std::vector<double> folded(3 * minimaPerGroup, infinity);

    groupMinima({&target, 1.0, 1, &coords, line.size()}, {distanceGroup, ofGroups.data(), folded.data(), 3, 2});

    EXPECT_EQ(folded[2 * minimaPerGroup], 1.0); // groups 0 and 3
    EXPECT_EQ(folded[0], 4.0);                  // groups 1 and 4
    EXPECT_EQ(folded[minimaPerGroup], 16.0);    // group 2
}

TEST(DistanceKernelsTest, CollectedPointsAreThoseOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t size : someSizes())
            {
                const Points points(size % 5, size, 200 + size);
                const PlainMinima minima(points);
                for (const double threshold : {0.0, 0.0625, 0.3, 1.0, 1e30})
                {
                    SCOPED_TRACE(testing::Message() << name << ", " << size << " points within " << threshold);
                    std::size_t expectedNext = 0;
                    std::size_t next = 0;
                    while (expectedNext < size)
                    {
                        Candidates expected(20);
                        Candidates actual(20);

                        expectedNext = scalar::collectPtsWithin(points.asArgument, minima.asArgument, threshold,
                                                                expectedNext, 7, expected.asArgument);
                        next = collectPtsWithin(points.asArgument, minima.asArgument, threshold, next, 7,
                                                actual.asArgument);

                        ASSERT_EQ(next, expectedNext);
                        ASSERT_EQ(actual.list(), expected.list());
                    }
                }
            }
        });
}

TEST(DistanceKernelsTest, EveryPointWithinTheThresholdIsCollectedOnce)
{
    const Points points(2, 1000, 8);
    const PlainMinima minima(points);
    Candidates collected(1000);

    collectPtsWithin(points.asArgument, minima.asArgument, 0.25, 0, 3, collected.asArgument);

    std::vector<std::tuple<double, int, int>> expected;
    for (int p = 0; p < 1000; ++p)
    {
        const double x = points.target[0] - points.coords[0][p];
        const double y = points.target[1] - points.coords[1][p];
        if (x * x + y * y <= 0.25)
            expected.emplace_back(x * x + y * y, 3, p);
    }
    auto actual = collected.list();
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    EXPECT_GT(expected.size(), 20u);
    EXPECT_EQ(actual, expected);
}

TEST(DistanceKernelsTest, BoundsAreThoseOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t size : someSizes())
            {
                const std::vector<double> distances = someDistances(size, 300 + size);
                for (std::size_t numNearest = 1; numNearest <= size; numNearest += 1 + size / 10)
                {
                    SCOPED_TRACE(testing::Message() << name << ", " << numNearest << " of " << size);

                    ASSERT_EQ(boundOfNearest(distances.data(), size, numNearest),
                              scalar::boundOfNearest(distances.data(), size, numNearest));
                }
            }
        });
}

TEST(DistanceKernelsTest, ABoundIsReachedByAsManyAsAskedForAndFewMore)
{
    for (const std::size_t size : someSizes())
    {
        std::vector<double> distances = someDistances(size, 400 + size);
        for (std::size_t numNearest = 1; numNearest <= size; ++numNearest)
        {
            const double bound = boundOfNearest(distances.data(), size, numNearest);

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

TEST(DistanceKernelsTest, SquaresAreRoundedBeforeTheyAreAdded)
{
    // The last square is 1 + 2^-26 + 2^-54 and loses its 2^-54; with it, what the others add would lie above a tie.
    const std::vector<double> small(40, 0x1p-27);
    const std::vector<double> last(40, 1.0 + 0x1p-27);
    const double* const coords[] = {small.data(), small.data(), last.data()};
    const double target[] = {0.0, 0.0, 0.0};
    forEachRunnableTarget(
        [&](const char* name)
        {
            SCOPED_TRACE(name);
            const TargetAndPoints points{target, 1.0, 3, coords, 40};
            std::vector<double> ofGroup(minimaPerGroup);
            std::vector<double> folded(minimaPerGroup, 100.0);
            const GroupMinima minima{distanceGroup, ofGroup.data(), folded.data(), 1, 0};
            Candidates collected(40);

            groupMinima(points, minima);
            collectPtsWithin(points, minima, 100.0, 0, 0, collected.asArgument);

            EXPECT_EQ(folded, std::vector<double>(minimaPerGroup, 1.0 + 0x1p-26));
            ASSERT_EQ(collected.asArgument.count, 40u);
            for (const auto& entry : collected.list())
                EXPECT_EQ(std::get<0>(entry), 1.0 + 0x1p-26);
        });
}

TEST(DistanceKernelsTest, DifferencesAreScaledBeforeTheyAreSquared)
{
    const std::vector<double> line(40, 7.0);
    const double* const coords = line.data();
    const double target = 0.0;
    const double scaled = 7.0 * 0.7;
    ASSERT_NE(scaled * scaled, 7.0 * 7.0 * (0.7 * 0.7));
    forEachRunnableTarget(
        [&](const char* name)
        {
            SCOPED_TRACE(name);
            std::vector<double> ofGroup(minimaPerGroup);
            std::vector<double> folded(minimaPerGroup, infinity);

            groupMinima({&target, 0.7, 1, &coords, 40}, {distanceGroup, ofGroup.data(), folded.data(), 1, 0});

            EXPECT_EQ(ofGroup, std::vector<double>(minimaPerGroup, scaled * scaled));
        });
}
