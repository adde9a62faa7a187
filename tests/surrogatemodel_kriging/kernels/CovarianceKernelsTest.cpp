#include "surrogatemodel_kriging/kernels/CovarianceKernels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/kernels/ErrorFree.h"
#include "surrogatemodel_kriging/kernels/ScalarCovarianceKernels.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::kernels::BoxedPoints;
using fenn::kernels::pointsPerBox;
using fenn::kernels::PointWeights;
using fenn::kernels::SphericalModel;
using fenn::kernels::stripWidth;
using fenn::test::forEachRunnableTarget;
using fenn::test::RandomNumbers;
using fenn::test::sameBits;

const double scales[] = {0.7, 1.3, 0.9, 1.1};

SphericalModel spherical(std::size_t numVars, double range, double nugget = 0.1)
{
    const double rangeSquared = range * range;
    return {scales, numVars, rangeSquared, nugget, (1.0 - nugget) * 0.5 / (range * rangeSquared), 3.0 * rangeSquared};
}

/// Points along the first variable, so that boxes are thin, in vectors of the exact size, with their boxes.
class Points
{
public:
    Points(std::size_t numVars, std::size_t numPts_, std::uint64_t seed)
        : numPts(numPts_), coordinates(fenn::test::randomValues(numVars, numPts_, -1.0, 1.0, seed))
    {
        std::sort(coordinates[0].begin(), coordinates[0].end());
        setBoxes();
    }

    /// To be called after coordinates have changed.
    void setBoxes()
    {
        pointers.clear();
        low.assign(coordinates.size(), {});
        high = low;
        for (std::size_t v = 0; v < coordinates.size(); ++v)
        {
            pointers.push_back(coordinates[v].data());
            for (std::size_t begin = 0; begin < numPts; begin += pointsPerBox)
            {
                const double* first = coordinates[v].data() + begin;
                const double* last = first + std::min(numPts - begin, pointsPerBox);
                low[v].push_back(*std::min_element(first, last));
                high[v].push_back(*std::max_element(first, last));
            }
        }
        lowPointers.clear();
        highPointers.clear();
        for (std::size_t v = 0; v < coordinates.size(); ++v)
        {
            lowPointers.push_back(low[v].data());
            highPointers.push_back(high[v].data());
        }
    }

    BoxedPoints boxed() const
    {
        return {pointers.data(), numPts, lowPointers.data(), highPointers.data()};
    }

    std::size_t numPts;
    std::vector<std::vector<double>> coordinates;

private:
    std::vector<std::vector<double>> low;
    std::vector<std::vector<double>> high;
    std::vector<const double*> pointers;
    std::vector<const double*> lowPointers;
    std::vector<const double*> highPointers;
};

/// Eight targets: some of them points, the others near each other.
std::vector<double> targetsNear(const Points& points, double where, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<double> targets;
    for (const std::vector<double>& variable : points.coordinates)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
            targets.push_back(where + 0.1 * numbers.next(-1.0, 1.0));
        if (points.numPts > 0)
            targets[targets.size() - 3] = variable[points.numPts / 2];
    }
    return targets;
}

struct Weights
{
    Weights(std::size_t numPts, std::size_t numOutputs, std::uint64_t seed)
        : stride(numPts + 3), values(numOutputs * stride), outputs(numOutputs)
    {
        RandomNumbers numbers(seed);
        for (double& value : values)
            value = numbers.next(-1.0, 1.0) * std::pow(10.0, std::floor(numbers.next(-4.0, 4.0)));
        for (std::size_t i = 0; i < values.size(); i += 17)
            values[i] = -0.0;
    }

    PointWeights view() const
    {
        return {values.data(), stride, outputs};
    }

    std::size_t stride;
    std::vector<double> values;
    std::size_t outputs;
};

std::vector<std::size_t> counts()
{
    std::vector<std::size_t> result;
    for (std::size_t n = 1; n <= 67; ++n)
        result.push_back(n);
    for (const std::size_t n : {95U, 96U, 97U, 130U, 257U})
        result.push_back(n);
    return result;
}

/// Calls check(points, model, targets) for ranges beyond which no box, some boxes and all boxes lie.
template <class Check>
void forEachCase(const Check& check)
{
    for (const std::size_t numPts : counts())
    {
        for (std::size_t numVars = 1; numVars <= 4; ++numVars)
        {
            if (numPts > 67 || numVars == 2 || numPts % 8 < 2)
            {
                const Points points(numVars, numPts, numPts);
                for (const double range : {5.0, 0.3, 1e-3})
                {
                    SCOPED_TRACE(std::to_string(numPts) + " points, " + std::to_string(numVars) + " variables, range " +
                                 std::to_string(range));
                    check(points, spherical(numVars, range), targetsNear(points, 0.6, 2));
                }
            }
        }
    }
}

TEST(CovarianceKernelsTest, CovariancesHaveTheBitsOfThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            forEachCase(
                [](const Points& points, const SphericalModel& model, const std::vector<double>& targets)
                {
                    std::vector<double> lines(stripWidth * points.numPts, -3e-310), expected = lines;
                    fenn::kernels::evaluateCovariances(model, points.boxed(), 0, points.numPts, targets.data(),
                                                       lines.data());
                    fenn::kernels::scalar::evaluateCovariances(model, points.boxed(), 0, points.numPts, targets.data(),
                                                               expected.data());
                    EXPECT_TRUE(sameBits(lines, expected));
                });
        });
}

TEST(CovarianceKernelsTest, AnyBoxesMayBeAskedFor)
{
    const Points points(2, 120, 3);
    const std::vector<double> targets = targetsNear(points, 0.0, 4);
    std::vector<double> lines(stripWidth * points.numPts, 77.0), expected = lines;
    fenn::kernels::evaluateCovariances(spherical(2, 0.4), points.boxed(), 32, 101, targets.data(), lines.data());
    fenn::kernels::scalar::evaluateCovariances(spherical(2, 0.4), points.boxed(), 32, 101, targets.data(),
                                               expected.data());
    EXPECT_TRUE(sameBits(lines, expected));
}

TEST(CovarianceKernelsTest, SumsHaveTheBitsOfThePlainLoopsWhateverIsSkipped)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            forEachCase(
                [](const Points& points, const SphericalModel& model, const std::vector<double>& targets)
                {
                    for (const std::size_t numOutputs : {1U, 3U})
                    {
                        const Weights weights(points.numPts, numOutputs, 6);
                        std::vector<double> sums(2 * stripWidth * numOutputs, -3e-310), expected = sums;
                        fenn::kernels::sumCovariances(model, points.boxed(), targets.data(), weights.view(),
                                                      sums.data());
                        fenn::kernels::scalar::sumCovariances(model, points.boxed(), targets.data(), weights.view(),
                                                              expected.data());
                        sums.resize(stripWidth * numOutputs);
                        expected.resize(stripWidth * numOutputs);
                        EXPECT_TRUE(sameBits(sums, expected));
                    }
                });
        });
}

TEST(CovarianceKernelsTest, SumsOfWrittenCovariancesAreTheSame)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            forEachCase(
                [](const Points& points, const SphericalModel& model, const std::vector<double>& targets)
                {
                    const Weights weights(points.numPts, 3, 6);
                    std::vector<double> lines(stripWidth * points.numPts);
                    std::vector<double> sums(2 * stripWidth * 3), expected = sums, plain = sums;
                    fenn::kernels::sumCovariances(model, points.boxed(), targets.data(), weights.view(),
                                                  expected.data());
                    fenn::kernels::evaluateCovariances(model, points.boxed(), 0, points.numPts, targets.data(),
                                                       lines.data());
                    fenn::kernels::sumLines(lines.data(), points.numPts, weights.view(), sums.data());
                    fenn::kernels::scalar::sumLines(lines.data(), points.numPts, weights.view(), plain.data());
                    sums.resize(stripWidth * 3);
                    expected.resize(stripWidth * 3);
                    plain.resize(stripWidth * 3);
                    EXPECT_TRUE(sameBits(sums, expected));
                    EXPECT_TRUE(sameBits(sums, plain));
                });
        });
}

TEST(CovarianceKernelsTest, OddCoordinatesAndRangesPassThroughAsInThePlainLoops)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const Points points(2, 70, 5);
    const Weights weights(70, 2, 6);
    forEachRunnableTarget(
        [&](const char* name)
        {
            for (const double odd : {0.0, -0.0, notANumber, infinity, -infinity, 5e-324, 1e-200, 1e200})
            {
                for (const double range : {0.0, 1.5, infinity, notANumber})
                {
                    SCOPED_TRACE(std::string(name) + ", " + std::to_string(odd) + ", " + std::to_string(range));
                    std::vector<double> targets = targetsNear(points, 0.2, 7);
                    targets[1] = odd;
                    std::vector<double> lines(stripWidth * 70), expected = lines, sums(stripWidth * 4),
                                                                expectedSums = sums;
                    fenn::kernels::evaluateCovariances(spherical(2, range), points.boxed(), 0, 70, targets.data(),
                                                       lines.data());
                    fenn::kernels::scalar::evaluateCovariances(spherical(2, range), points.boxed(), 0, 70,
                                                               targets.data(), expected.data());
                    EXPECT_TRUE(sameBits(lines, expected));
                    fenn::kernels::sumCovariances(spherical(2, range), points.boxed(), targets.data(), weights.view(),
                                                  sums.data());
                    fenn::kernels::scalar::sumCovariances(spherical(2, range), points.boxed(), targets.data(),
                                                          weights.view(), expectedSums.data());
                    sums.resize(stripWidth * 2);
                    expectedSums.resize(stripWidth * 2);
                    EXPECT_TRUE(sameBits(sums, expectedSums));
                }
            }
        });
}

TEST(CovarianceKernelsTest, ATargetOnAPointSeesOneLessTheNugget)
{
    const Points points(1, 1, 1);
    std::vector<double> lines(stripWidth);
    fenn::kernels::evaluateCovariances(spherical(1, 0.5, 0.25), points.boxed(), 0, 1,
                                       std::vector<double>(stripWidth, points.coordinates[0][0]).data(), lines.data());
    EXPECT_EQ(lines, std::vector<double>(stripWidth, 0.75));
}

TEST(CovarianceKernelsTest, DoubledSumsHaveTheBitsOfThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            forEachCase(
                [](const Points& points, const SphericalModel& model, const std::vector<double>& targets)
                {
                    const Weights weights(points.numPts, 2, 6);
                    for (const std::size_t firstTarget : {std::size_t{0}, points.numPts / 2, points.numPts + 5})
                    {
                        std::vector<double> high = fenn::test::randomValues(1, 2 * stripWidth, -9.0, 9.0, 1)[0];
                        std::vector<double> low(2 * stripWidth), expectedHigh = high, expectedLow = low;
                        fenn::kernels::subtractCovariancesTwice(model, points.boxed(), firstTarget, targets.data(),
                                                                weights.view(), {high.data(), low.data()});
                        fenn::kernels::scalar::subtractCovariancesTwice(model, points.boxed(), firstTarget,
                                                                        targets.data(), weights.view(),
                                                                        {expectedHigh.data(), expectedLow.data()});
                        EXPECT_TRUE(sameBits(high, expectedHigh));
                        EXPECT_TRUE(sameBits(low, expectedLow));
                    }
                });
        });
}

TEST(CovarianceKernelsTest, APointTakenTwiceCancelsInTwiceThePrecision)
{
    // Two points at the same place, weights that differ in the last bit: the difference times 1 - gamma is left, and
    // of it all bits are right although it is 2^-52 of the terms.
    Points points(1, 2, 1);
    points.coordinates[0] = {0.25, 0.25};
    points.setBoxes();
    const SphericalModel model = spherical(1, 0.5, 0.0);
    const std::vector<double> values{1.0 + 0x1p-52, -1.0};
    const std::vector<double> targets(stripWidth, 0.35);
    std::vector<double> high(stripWidth), low(stripWidth), covariance(2 * stripWidth);
    fenn::kernels::evaluateCovariances(model, points.boxed(), 0, 2, targets.data(), covariance.data());

    fenn::kernels::subtractCovariancesTwice(model, points.boxed(), 9, targets.data(), {values.data(), 2, 1},
                                            {high.data(), low.data()});

    EXPECT_DOUBLE_EQ(high[0] + low[0], -0x1p-52 * covariance[0]);
}

TEST(CovarianceKernelsTest, ErrorsOfRoundedOperationsAreExact)
{
    const fenn::kernels::WithError sum = fenn::kernels::addWithError(1.0, 0x1p-60);
    EXPECT_EQ(sum.value, 1.0);
    EXPECT_EQ(sum.error, 0x1p-60);
    const fenn::kernels::WithError difference = fenn::kernels::subtractWithError(0x1p-60, 1.0);
    EXPECT_EQ(difference.value, -1.0);
    EXPECT_EQ(difference.error, 0x1p-60);
    const fenn::kernels::WithError product = fenn::kernels::multiplyWithError(1.0 + 0x1p-30, 1.0 + 0x1p-30);
    EXPECT_EQ(product.value, 1.0 + 0x1p-29);
    EXPECT_EQ(product.error, 0x1p-60);
}

TEST(CovarianceKernelsTest, TermsAreAddedWithTheirErrors)
{
    // 2^53 swallows the 1 of the next term in a plain sum; with the errors nothing is lost.
    std::vector<double> values(16, 0.0);
    values[0] = 0x1p53;
    values[8] = 1.0;
    std::vector<double> lines(stripWidth * 16, 1.0), sums(2 * stripWidth);
    fenn::kernels::sumLines(lines.data(), 16, {values.data(), 16, 1}, sums.data());
    EXPECT_EQ(sums[0], 0x1p53); // 2^53 + 1 rounds to even
    values[0] = 0x1p53 + 2.0;
    values[8] = -0x1p53;
    values[9] = 0x1p-10;
    fenn::kernels::sumLines(lines.data(), 16, {values.data(), 16, 1}, sums.data());
    EXPECT_EQ(sums[0], 2.0);
}

} // namespace
