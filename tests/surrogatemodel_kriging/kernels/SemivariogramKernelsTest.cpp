#include "surrogatemodel_kriging/kernels/SemivariogramKernels.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/kernels/ScalarSemivariogramKernels.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::kernels::SphericalModel;
using fenn::test::forEachRunnableTarget;
using fenn::test::RandomNumbers;
using fenn::test::sameBits;

/// Coordinates in vectors of the exact size, with the pointers to them.
struct Coordinates
{
    Coordinates(std::size_t numVars, std::size_t numPts, std::uint64_t seed, double odd)
        : values(fenn::test::randomValues(numVars, numPts, -1.0, 1.0, seed))
    {
        for (std::size_t v = 0; v < numVars; ++v)
        {
            if (numPts > 2)
                values[v][numPts - 2] = odd;
            pointers.push_back(values[v].data());
        }
    }

    std::vector<std::vector<double>> values;
    std::vector<const double*> pointers;
};

const double scales[] = {0.7, 1.3, 0.9, 1.1};

SphericalModel model(std::size_t numVars, double rangeSquared)
{
    return {scales, numVars, rangeSquared, 0.1, 0.45 / (std::sqrt(rangeSquared) * rangeSquared), 3.0 * rangeSquared};
}

void expectScalarBits(const SphericalModel& spherical, const Coordinates& sources, std::size_t numSources,
                      const Coordinates& targets, std::size_t numTargets, std::size_t stride)
{
    // Entries between the targets and the next source are marked: they must stay.
    std::vector<double> values(numSources == 0 ? 0 : (numSources - 1) * stride + numTargets, 77.0), expected = values;
    fenn::kernels::evaluateSpherical(spherical, sources.pointers.data(), numSources, targets.pointers.data(),
                                     numTargets, values.data(), stride);
    fenn::kernels::scalar::evaluateSpherical(spherical, sources.pointers.data(), numSources, targets.pointers.data(),
                                             numTargets, expected.data(), stride);
    EXPECT_TRUE(sameBits(values, expected));
}

TEST(SemivariogramKernelsTest, OneTargetHasTheBitsOfThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (std::size_t numSources = 0; numSources <= 67; ++numSources)
            {
                for (std::size_t numVars = 0; numVars <= 4; ++numVars)
                {
                    SCOPED_TRACE(std::string(name) + ", " + std::to_string(numSources) + " sources, " +
                                 std::to_string(numVars) + " variables");
                    const Coordinates sources(numVars, numSources, 1, 0.25), target(numVars, 1, 2, 0.25);
                    expectScalarBits(model(numVars, 1.5), sources, numSources, target, 1, 1);
                    expectScalarBits(model(numVars, 1.5), sources, numSources, target, 1, 3);
                }
            }
        });
}

TEST(SemivariogramKernelsTest, ManyTargetsHaveTheBitsOfThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (std::size_t numTargets = 0; numTargets <= 67; ++numTargets)
            {
                for (std::size_t numVars = 1; numVars <= 3; ++numVars)
                {
                    SCOPED_TRACE(std::string(name) + ", " + std::to_string(numTargets) + " targets, " +
                                 std::to_string(numVars) + " variables");
                    const Coordinates sources(numVars, 5, 3, 0.25), targets(numVars, numTargets, 4, 0.25);
                    expectScalarBits(model(numVars, 1.5), sources, 5, targets, numTargets, numTargets);
                    expectScalarBits(model(numVars, 1.5), sources, 5, targets, numTargets, numTargets + 3);
                }
            }
        });
}

TEST(SemivariogramKernelsTest, OddCoordinatesAndRangesPassThroughAsInThePlainLoops)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    forEachRunnableTarget(
        [&](const char* name)
        {
            for (const double odd : {0.0, -0.0, notANumber, infinity, -infinity, 5e-324, 1e-200, 1e200})
            {
                for (const double rangeSquared : {0.0, 1.5, infinity, notANumber})
                {
                    SCOPED_TRACE(std::string(name) + ", " + std::to_string(odd) + ", " + std::to_string(rangeSquared));
                    const Coordinates sources(2, 21, 5, odd), targets(2, 11, 6, odd), plain(2, 11, 7, 0.5);
                    expectScalarBits(model(2, rangeSquared), sources, 21, targets, 11, 11);
                    expectScalarBits(model(2, rangeSquared), sources, 21, plain, 11, 11);
                    expectScalarBits(model(2, rangeSquared), sources, 21, plain, 1, 1);
                }
            }
        });
}

TEST(SemivariogramKernelsTest, ZeroLagGivesTheNuggetEvenWhenTheRangeIsZero)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            const std::vector<double> points(9, 0.3);
            const double* column = points.data();
            std::vector<double> values(9);
            fenn::kernels::evaluateSpherical(model(1, 0.0), &column, 9, &column, 1, values.data(), 1);
            EXPECT_EQ(values, std::vector<double>(9, 0.1));
        });
}

TEST(SemivariogramKernelsTest, EveryProductIsRoundedBeforeTheNextStep)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            // 1 + 2^-30 squares to 1 + 2^-29 and a rest; the first square, just below half a unit of the last place,
            // leaves that as it is when it is added. Fused, the rest would tip it over and put the lag at the range.
            double small = std::sqrt(0x1p-53);
            while (small * small >= 0x1p-53)
                small = std::nextafter(small, 0.0);
            const std::vector<double> smallLags(9, small), lags(9, 1.0 + 0x1p-30), origin(9, 0.0);
            const double* sourceColumns[] = {smallLags.data(), lags.data()};
            const double* targetColumns[] = {origin.data(), origin.data()};
            const double unitScales[] = {1.0, 1.0};
            const SphericalModel spherical{unitScales, 2, std::nextafter(1.0 + 0x1p-29, 2.0), 0.5, 0.0, 0.0};
            std::vector<double> values(9);
            fenn::kernels::evaluateSpherical(spherical, sourceColumns, 9, targetColumns, 1, values.data(), 1);
            EXPECT_EQ(values, std::vector<double>(9, 0.5));

            // Within the range: the product of 1 and 1 + 2^-30 times (3 - h2) is rounded before the nugget cancels it.
            const double shape = 1.0 + 0x1p-30;
            const SphericalModel cancelling{unitScales, 1, 4.0, -(1.0 + 0x1p-29), shape, 1.0 + shape};
            const std::vector<double> units(9, 1.0);
            const double* unitColumn = units.data();
            const double* zeroColumn = origin.data();
            fenn::kernels::evaluateSpherical(cancelling, &unitColumn, 9, &zeroColumn, 1, values.data(), 1);
            EXPECT_EQ(values, std::vector<double>(9, 0.0));
        });
}

} // namespace
