// The search against a full sort, over samples that make the selection hard.

#include "surrogatemodel_kriging/NearestNeighborSearch.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/NaiveSearch.h"

using namespace fenn::test;

namespace
{

constexpr SourcePointRef untouched{-7, -7};

using Points = std::vector<SourcePointRef>;

void expectNearestOfAFullSort(const SampleBlocks& samples, const std::vector<std::vector<double>>& targets, int maxPts)
{
    const SurrogateModelDataBlock& block = samples.block();
    const NearestNeighborSearch search(&block, block.getNumInputVars(), block.getNumBlocks());
    for (std::size_t t = 0; t < targets.size(); ++t)
    {
        Points expected = naiveNearestPts(samples, targets[t], maxPts);
        const auto count = static_cast<int>(expected.size());
        expected.resize(static_cast<std::size_t>(maxPts), untouched);
        Points found(static_cast<std::size_t>(maxPts), untouched);

        ASSERT_EQ(search.findNearestPts(targets[t], maxPts, found), count) << "target " << t;
        ASSERT_EQ(found, expected) << "target " << t;
    }
}

std::vector<std::vector<double>> randomTargets(std::size_t numTargets, std::size_t numVars, double low, double high,
                                               std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<std::vector<double>> targets(numTargets, std::vector<double>(numVars));
    for (std::vector<double>& target : targets)
    {
        for (double& coordinate : target)
            coordinate = numbers.next(low, high);
    }
    return targets;
}

} // namespace

TEST(NearestNeighborSearchDifferentialTest, FindsWhatAFullSortFinds)
{
    for (const std::size_t size : {1u, 40u, 129u, 1000u, 4099u})
    {
        for (const double blankedShare : {0.0, 0.01, 0.5, 0.97})
        {
            for (std::size_t numVars = 1; numVars <= 5; ++numVars)
            {
                const SampleBlocks samples(SampleShape{numVars, 1, {size, 3, 0, size / 3}, blankedShare, 0}, size);
                const auto targets = randomTargets(6, numVars, -1.5, 1.5, size + numVars);
                for (const int maxPts : {1, 2, 7, 32, 100})
                {
                    SCOPED_TRACE(testing::Message() << size << " points, " << blankedShare << " blanked, " << numVars
                                                    << " variables, " << maxPts << " nearest");
                    expectNearestOfAFullSort(samples, targets, maxPts);
                }
            }
        }
    }
}

TEST(NearestNeighborSearchDifferentialTest, TiesGoToTheLowerBlockAndIndex)
{
    for (const int gridSize : {1, 2, 5, 20})
    {
        const SampleBlocks samples(SampleShape{2, 1, {700, 300, 1500}, 0.1, gridSize}, 10);
        auto targets = randomTargets(20, 2, -1.0, gridSize + 1.0, 11);
        for (auto& target : targets)
            target = {std::floor(target[0]), std::floor(target[1] * 2.0) / 2.0};
        for (const int maxPts : {1, 5, 16, 64})
        {
            SCOPED_TRACE(testing::Message() << "grid " << gridSize << ", " << maxPts << " nearest");
            expectNearestOfAFullSort(samples, targets, maxPts);
        }
    }
}

TEST(NearestNeighborSearchDifferentialTest, ClustersAFewUnitsInTheLastPlaceWideAreOrdered)
{
    // Far clusters: within one, coordinates differ by units in the last place of a double.
    std::vector<std::vector<double>> inputs(2);
    RandomNumbers numbers(20);
    for (int i = 0; i < 3000; ++i)
    {
        const double centre = i % 3 == 0 ? 1.0 : -1.0;
        inputs[0].push_back(centre * (1.0 + std::floor(numbers.next(0.0, 9.0)) * 0x1p-52));
        inputs[1].push_back(i % 7 == 0 ? numbers.next(-1.0, 1.0) : std::floor(numbers.next(0.0, 30.0)) * 0x1p-40);
    }
    const SampleBlocks samples(inputs, {std::vector<double>(3000)});

    expectNearestOfAFullSort(samples, {{1.0, 0.0}, {-1.0, 0x1p-37}, {-1.0 - 0x1p-51, 0.5}, {0.0, 0.0}}, 20);
}

TEST(NearestNeighborSearchDifferentialTest, DistancesOneUnitInTheLastPlaceApartAreOrderedExactly)
{
    // On a circle around the target squared distances are equal up to their last bits, which the scale changes.
    for (std::uint64_t seed = 0; seed < 40; ++seed)
    {
        for (const std::size_t numOnCircle : {60u, 1500u})
        {
            auto inputs = randomValues(2, 2000, -60.0, 60.0, 130 + seed);
            RandomNumbers numbers(seed);
            for (std::size_t i = 0; i < 2000; ++i)
            {
                const double angle = numbers.next(0.0, 6.3);
                const bool isOnCircle = i * numOnCircle / 2000 != (i + 1) * numOnCircle / 2000;
                const bool isInside = std::hypot(inputs[0][i] - 3.0, inputs[1][i] + 2.0) < 5.5;
                if (isOnCircle || isInside)
                {
                    inputs[0][i] = 3.0 + 5.0 * std::cos(angle);
                    inputs[1][i] = -2.0 + 5.0 * std::sin(angle);
                }
            }
            const SampleBlocks samples({inputs}, {{std::vector<double>(2000)}}, {std::vector<bool>(2000, true)},
                                       {normalizerOf(0.0, 1.0 / 3.0), Normalizer()});

            expectNearestOfAFullSort(samples, {{3.0, -2.0}, {3.0 + 0x1p-40, -2.0}, {3.5, -2.0}}, 20);
        }
    }
}

TEST(NearestNeighborSearchDifferentialTest, FindsWhatAFullSortFindsAtAnyScaleAndOffset)
{
    for (const double offset : {0.0, 1e12, -4e6})
    {
        for (const double size : {1.0, 1e-3, 1e6, 1e-310, 1e-160, 1e100, 1e153})
        {
            for (const double scale : {1.0, 1e-8, -1e8, 3e-170, 1e155, 0.0})
            {
                SCOPED_TRACE(testing::Message() << "offset " << offset << ", size " << size << ", scale " << scale);
                auto inputs = randomValues(2, 1500, -1.0, 1.0, 40);
                for (auto& variable : inputs)
                {
                    for (double& value : variable)
                        value = offset + value * size;
                }
                const SampleBlocks samples({inputs}, {{std::vector<double>(1500)}}, {std::vector<bool>(1500, true)},
                                           {normalizerOf(0.0, scale), normalizerOf(0.0, 7.0)});

                expectNearestOfAFullSort(samples,
                                         {{offset, offset},
                                          {offset + 0.3 * size, offset - 0.9 * size},
                                          {offset + 1.9 * size, offset},
                                          {offset + 40.0 * size, offset - size}},
                                         13);
            }
        }
    }
}

TEST(NearestNeighborSearchDifferentialTest, FindsWhatAFullSortFindsAmongSpecialValues)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double specials[] = {notANumber, infinity, -infinity, 1e155, -1.7e308, 0.0, -0.0, 5e-324};
    for (std::size_t numSpecials = 1; numSpecials <= 8; ++numSpecials)
    {
        SampleBlocks samples(SampleShape{2, 1, {900, 300}, 0.1, 0}, 50 + numSpecials);
        RandomNumbers numbers(60);
        for (auto& block : samples.inputs)
        {
            for (double& value : block[1])
            {
                if (numbers.next() < 0.1)
                    value = specials[static_cast<std::size_t>(numbers.next(0.0, static_cast<double>(numSpecials)))];
            }
        }
        for (const int maxPts : {1, 9, 40})
        {
            SCOPED_TRACE(testing::Message() << numSpecials << " special values, " << maxPts << " nearest");
            expectNearestOfAFullSort(
                samples, {{0.1, 0.2}, {0.0, -0.0}, {notANumber, 0.0}, {0.0, infinity}, {1e155, 0.0}, {0.5, 0.5}},
                maxPts);
        }
    }
}

TEST(NearestNeighborSearchDifferentialTest, CoincidentPointsAreFoundByIndex)
{
    const SampleBlocks samples({std::vector<double>(500, 3.0)}, {std::vector<double>(500)});

    expectNearestOfAFullSort(samples, {{3.0}, {4.0}}, 10);
}

TEST(NearestNeighborSearchDifferentialTest, NoPointsAreFoundWhereThereAreNone)
{
    const SampleBlocks samples({{{}}}, {{{}}}, {{}}, {Normalizer()});

    expectNearestOfAFullSort(samples, {{3.0}}, 2);
}
