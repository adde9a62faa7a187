#include "surrogatemodel_kriging/SemivariogramInterface.h"

#include <limits>
#include <memory>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/NaiveKriging.h"
#include "tests/support/Samples.h"

using namespace fenn::test;
using fenn::PointArrays;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double untouched = -77.0;

PointArrays pointsOf(ValueArrays& values, std::size_t numPts)
{
    PointArrays points;
    points.coordinates = values.arrays().data();
    points.numInputVars = static_cast<int>(values.getNumVars());
    points.numPts = numPts;
    return points;
}

/// values[s * stride + t] as single evaluations give them; entries beyond the targets stay untouched.
std::vector<double> evaluateOneByOne(const SemivariogramInterface& semivariogram, const ValueArrays& sources,
                                     std::size_t numSources, const ValueArrays& targets, std::size_t numTargets,
                                     std::size_t stride)
{
    std::vector<double> values(numSources * stride, untouched);
    for (std::size_t s = 0; s < numSources; ++s)
    {
        for (std::size_t t = 0; t < numTargets; ++t)
        {
            std::vector<double> separation;
            for (std::size_t v = 0; v < sources.getNumVars(); ++v)
                separation.push_back(sources[v][s] - targets[v][t]);
            values[s * stride + t] = semivariogram.evaluate(separation);
        }
    }
    return values;
}

} // namespace

TEST(SemivariogramInterfaceTest, BulkEvaluationTakesSourceMinusTarget)
{
    const FunctionSemivariogram firstDifference([](const std::vector<double>& separation) { return separation[0]; });
    ValueArrays sources({{5.0, 7.0}});
    ValueArrays targets({{1.0, 2.0, 4.0}});
    std::vector<double> values(6);

    firstDifference.evaluatePairs(pointsOf(sources, 2), pointsOf(targets, 3), values.data(), 3);

    EXPECT_EQ(values, (std::vector<double>{4.0, 3.0, 1.0, 6.0, 5.0, 3.0}));
}

TEST(SemivariogramInterfaceTest, BulkEvaluationEvaluatesEachPairExactlyOnceSourceBySource)
{
    std::vector<std::vector<double>> separations;
    const FunctionSemivariogram recorder(
        [&](const std::vector<double>& separation)
        {
            separations.push_back(separation);
            return 0.0;
        });
    ValueArrays sources({{10.0, 20.0}, {1.0, 2.0}});
    ValueArrays targets({{3.0, 4.0}, {0.0, 1.0}});
    std::vector<double> values(4);

    recorder.evaluatePairs(pointsOf(sources, 2), pointsOf(targets, 2), values.data(), 2);

    EXPECT_EQ(separations, (std::vector<std::vector<double>>{{7.0, 1.0}, {6.0, 0.0}, {17.0, 2.0}, {16.0, 1.0}}));
}

TEST(SemivariogramInterfaceTest, BulkEvaluationLeavesEntriesBeyondTheTargetsAlone)
{
    const FunctionSemivariogram one([](const std::vector<double>&) { return 1.0; });
    ValueArrays sources({{5.0, 7.0}});
    ValueArrays targets({{1.0, 2.0}});
    std::vector<double> values(6, untouched);

    one.evaluatePairs(pointsOf(sources, 2), pointsOf(targets, 2), values.data(), 3);

    EXPECT_EQ(values, (std::vector<double>{1.0, 1.0, untouched, 1.0, 1.0, untouched}));
}

TEST(SemivariogramInterfaceTest, BulkEvaluationOfNoSourcesOrNoTargetsWritesNothing)
{
    const FunctionSemivariogram one([](const std::vector<double>&) { return 1.0; });
    ValueArrays points({{5.0, 7.0}});
    std::vector<double> values(2, untouched);

    one.evaluatePairs(pointsOf(points, 0), pointsOf(points, 2), values.data(), 2);
    one.evaluatePairs(pointsOf(points, 2), pointsOf(points, 0), values.data(), 1);

    EXPECT_EQ(values, (std::vector<double>{untouched, untouched}));
    EXPECT_EQ(one.getNumEvaluations(), 0);
}

TEST(SemivariogramInterfaceTest, AModelMayThrowUnlessItSaysOtherwise)
{
    const FunctionSemivariogram one([](const std::vector<double>&) { return 1.0; });

    EXPECT_FALSE(one.neverThrows());
}

TEST(SemivariogramInterfaceTest, AModelIsDestroyedThroughItsInterface)
{
    const auto owned = std::make_shared<int>(1);
    std::unique_ptr<SemivariogramInterface> semivariogram =
        std::make_unique<FunctionSemivariogram>([owned](const std::vector<double>&) { return 1.0; });
    ASSERT_EQ(owned.use_count(), 2);

    semivariogram.reset();

    EXPECT_EQ(owned.use_count(), 1);
}

TEST(SphericalSemivariogramPairsTest, NeverThrow)
{
    const std::vector<Normalizer> normalizers(1);
    const SphericalSemivariogram semivariogram(normalizers, normalizers, {0.0}, {1.0}, 1.0, 0.0);

    EXPECT_TRUE(semivariogram.neverThrows());
}

/// The spherical model's own bulk evaluation, for every tail of a vector.
TEST(SphericalSemivariogramPairsTest, HaveTheBitsOfSingleEvaluations)
{
    const double specials[] = {notANumber, infinity, -infinity, 0.0, -0.0, 1e-170, 1e200, 5e-324};
    RandomNumbers numbers(50);
    for (std::size_t d = 0; d <= 6; ++d)
    {
        std::vector<Normalizer> normalizers;
        for (std::size_t v = 0; v < d; ++v)
            normalizers.push_back(normalizerOf(0.0, numbers.next(0.2, 2.0)));
        const std::vector<double> low(d, -1.0);
        const std::vector<double> high(d, 1.0);
        const SphericalSemivariogram semivariogram(low, normalizers, low, high, 0.4, 0.1);
        for (std::size_t numTargets = 0; numTargets <= 67; ++numTargets)
        {
            SCOPED_TRACE(testing::Message() << d << " variables, " << numTargets << " targets");
            const std::size_t numSources = 1 + numTargets % 5;
            const std::size_t stride = numTargets + numTargets % 3;
            auto sourceValues = randomValues(d, numSources, -1.0, 1.0, 51 + numTargets);
            auto targetValues = randomValues(d, numTargets, -1.0, 1.0, 52 + numTargets);
            for (std::size_t v = 0; v < d; ++v)
            {
                for (std::size_t t = 0; t < numTargets; ++t)
                {
                    if (numbers.next() < 0.1)
                        targetValues[v][t] = specials[static_cast<std::size_t>(numbers.next(0.0, 8.0))];
                    if (numbers.next() < 0.3)
                        targetValues[v][t] = sourceValues[v][t % numSources]; // some coincide
                }
            }
            ValueArrays sources(sourceValues);
            ValueArrays targets(targetValues);
            std::vector<double> values(numSources * stride, untouched);

            semivariogram.evaluatePairs(pointsOf(sources, numSources), pointsOf(targets, numTargets), values.data(),
                                        stride);

            ASSERT_TRUE(
                sameBits(values, evaluateOneByOne(semivariogram, sources, numSources, targets, numTargets, stride)));
        }
    }
}

TEST(SphericalSemivariogramPairsTest, ManySourcesHaveTheBitsOfSingleEvaluations)
{
    const std::vector<Normalizer> normalizers{normalizerOf(0.0, 0.7), normalizerOf(0.0, 1.3)};
    const SphericalSemivariogram semivariogram(normalizers, normalizers, {0.0, 0.0}, {1.0, 1.0}, 0.5, 0.0);
    for (const std::size_t numSources : {64u, 129u, 300u})
    {
        ValueArrays sources(randomValues(2, numSources, 0.0, 1.0, 60));
        ValueArrays targets(randomValues(2, 21, 0.0, 1.0, 61));
        std::vector<double> values(numSources * 24, untouched);

        semivariogram.evaluatePairs(pointsOf(sources, numSources), pointsOf(targets, 21), values.data(), 24);

        EXPECT_TRUE(sameBits(values, evaluateOneByOne(semivariogram, sources, numSources, targets, 21, 24)));
    }
}

TEST(SphericalSemivariogramPairsTest, AZeroRangeAndANaNRangeHaveTheBitsOfSingleEvaluations)
{
    const std::vector<Normalizer> normalizers(1);
    ValueArrays sources({{0.0, 1.0, notANumber}});
    ValueArrays targets({{0.0, 1.0, 2.0, notANumber, infinity, 1e-200, -0.0, 3.0, 4.0}});
    for (const double corner : {0.0, notANumber, infinity})
    {
        const SphericalSemivariogram semivariogram(normalizers, normalizers, {0.0}, {corner}, 1.0, 0.1);
        std::vector<double> values(27);

        semivariogram.evaluatePairs(pointsOf(sources, 3), pointsOf(targets, 9), values.data(), 9);

        EXPECT_TRUE(sameBits(values, evaluateOneByOne(semivariogram, sources, 3, targets, 9, 9))) << corner;
    }
}
