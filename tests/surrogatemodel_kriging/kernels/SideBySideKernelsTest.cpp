// Every instruction set that runs here beside the scalar definitions, bit for bit.

#include "surrogatemodel_kriging/kernels/SideBySideKernels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/ScalarSideBySideKernels.h"
#include "tests/support/BitComparison.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

using namespace fenn::test;
using fenn::kernels::SphericalModel;

namespace
{

constexpr std::size_t width = fenn::kernels::numSideBySide;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// An aligned array that holds what its user must not read.
class PoisonedStore
{
public:
    explicit PoisonedStore(std::size_t count_, double poison) : count(count_)
    {
        store.allocate(count);
        std::fill_n(store.data(), count, poison);
    }

    explicit PoisonedStore(const std::vector<double>& values) : PoisonedStore(values.size(), 0.0)
    {
        std::copy(values.begin(), values.end(), store.data());
    }

    double* data() const
    {
        return store.data();
    }

    std::vector<double> values() const
    {
        return {store.data(), store.data() + count};
    }

private:
    std::size_t count;
    fenn::ElementStore store;
};

/// Eight symmetric systems with right-hand sides in the layout of the kernels.
class Systems
{
public:
    explicit Systems(std::size_t numRows_)
        : numRows(numRows_), columns(fenn::kernels::sideBySideColumnsSize(numRows_), 0.0)
    {
    }

    Systems(MatrixKind kind, std::size_t numRows_, std::uint64_t seed) : Systems(numRows_)
    {
        RandomNumbers numbers(seed);
        for (std::size_t t = 0; t < width; ++t)
        {
            const NaiveLinearSystem::Rows rows = randomRows(kind, numRows, numbers);
            for (std::size_t i = 0; i < numRows; ++i)
            {
                for (std::size_t c = 0; c < numRows; ++c)
                    entry(i, c, t) = rows[std::max(i, c)][std::min(i, c)];
                const bool isInteger = kind == MatrixKind::smallIntegers || kind == MatrixKind::zerosOfTwoSigns;
                entry(i, numRows, t) = isInteger ? randomInteger(numbers, -1, 1) : numbers.next(-1.0, 1.0);
            }
        }
    }

    double& entry(std::size_t i, std::size_t c, std::size_t t)
    {
        return columns[(c * numRows + i) * width + t];
    }

    /// Solutions of the systems whose bits are not set, which come first.
    std::vector<double> solve(double poison) const
    {
        const PoisonedStore cells(columns);
        const PoisonedStore workspace(fenn::kernels::sideBySideWorkspaceSize(numRows), poison);
        const PoisonedStore solutions(numRows * width, poison);
        const unsigned odd = fenn::kernels::solveSideBySide(cells.data(), numRows, solutions.data(), workspace.data());
        return outcome(odd, solutions.values());
    }

    std::vector<double> solveByDefinition() const
    {
        std::vector<double> solutions(numRows * width);
        const unsigned odd = fenn::kernels::scalar::solveSideBySide(columns.data(), numRows, solutions.data());
        return outcome(odd, solutions);
    }

private:
    static std::vector<double> outcome(unsigned odd, std::vector<double> solutions)
    {
        for (std::size_t i = 0; i < solutions.size(); ++i)
        {
            if ((odd >> i % width & 1U) != 0)
                solutions[i] = 0.0;
        }
        solutions.push_back(odd);
        return solutions;
    }

    std::size_t numRows;
    std::vector<double> columns;
};

const double scales[] = {0.7, 1.3, 0.9, 1.1};

SphericalModel model(std::size_t numVars, double rangeSquared)
{
    return {scales, numVars, rangeSquared, 0.1, 0.45 / (std::sqrt(rangeSquared) * rangeSquared), 3.0 * rangeSquared};
}

} // namespace

TEST(SideBySideKernelsTest, SolutionsHaveTheBitsOfThePlainLoops)
{
    for (const MatrixKind kind : allMatrixKinds)
    {
        for (std::size_t numRows = 1; numRows <= 70; numRows += numRows < 42 ? 1 : 7)
        {
            const Systems systems(kind, numRows, 100 * numRows + static_cast<std::size_t>(kind));
            const std::vector<double> expected = systems.solveByDefinition();
            forEachRunnableTarget(
                [&](const char* name)
                {
                    for (const double poison : {notANumber, 5e-324, 1e308})
                        ASSERT_TRUE(sameBits(systems.solve(poison), expected))
                            << name << ", kind " << static_cast<int>(kind) << ", " << numRows << " rows";
                });
        }
    }
}

TEST(SideBySideKernelsTest, SystemsWithTiesHaveTheBitsOfThePlainLoops)
{
    // Small integers: many rows are equally good pivots, and few systems are singular in every step.
    for (std::uint64_t seed = 0; seed < 60; ++seed)
    {
        const Systems systems(MatrixKind::smallIntegers, 3 + seed % 17, seed);
        const std::vector<double> expected = systems.solveByDefinition();
        forEachRunnableTarget([&](const char* name)
                              { ASSERT_TRUE(sameBits(systems.solve(0.0), expected)) << name << ", seed " << seed; });
    }
}

TEST(SideBySideKernelsTest, LanesDoNotTouchEachOther)
{
    Systems systems(MatrixKind::uniform, 21, 7);
    const std::vector<double> expected = systems.solveByDefinition();
    for (std::size_t i = 0; i < 21; ++i)
    {
        systems.entry(i, i, 2) = notANumber;
        systems.entry(i, 20, 5) = systems.entry(20, i, 5) = infinity;
    }
    forEachRunnableTarget(
        [&](const char* name)
        {
            const std::vector<double> solutions = systems.solve(0.0);
            for (std::size_t i = 0; i < 21 * width; ++i)
            {
                if (i % width != 2 && i % width != 5)
                {
                    ASSERT_EQ(solutions[i], expected[i]) << name;
                }
            }
        });
}

TEST(SideBySideKernelsTest, SystemsThatOnlyTheSingleFormsSolveAreTold)
{
    Systems systems(MatrixKind::uniform, 6, 8);
    for (std::size_t i = 0; i < 6; ++i)
        systems.entry(i, 3, 1) = systems.entry(3, i, 1) = i == 2 ? notANumber : 0.0; // zeros and NaN
    for (std::size_t i = 0; i < 6; ++i)
        systems.entry(i, 6, 4) = 0.0; // the permuted right-hand side begins with a zero
    for (std::size_t i = 0; i < 6; ++i)
    {
        for (std::size_t c = 0; c < 6; ++c)
            systems.entry(i, c, 7) = 1.0; // every second pivot becomes 1e-150: the solution overflows
    }
    forEachRunnableTarget([&](const char* name) { EXPECT_EQ(systems.solve(0.0).back(), 0x92) << name; });
    EXPECT_EQ(systems.solveByDefinition().back(), 0x92);
}

TEST(SideBySideKernelsTest, ProductsAreRoundedBeforeTheSubtraction)
{
    // The second row's right-hand side is the rounded product that is subtracted from it; fused, -2^-61 would be left.
    Systems systems(2);
    for (std::size_t t = 0; t < width; ++t)
    {
        systems.entry(0, 0, t) = 1.0;
        systems.entry(0, 1, t) = systems.entry(1, 0, t) = 0.5 + 0x1p-31;
        systems.entry(1, 1, t) = 4.0;
        systems.entry(0, 2, t) = 1.0 + 0x1p-30;
        systems.entry(1, 2, t) = 0.5 + 0x1p-30;
    }
    forEachRunnableTarget(
        [&](const char* name)
        {
            const std::vector<double> solutions = systems.solve(0.0);
            for (std::size_t t = 0; t < width; ++t)
                EXPECT_EQ(solutions[width + t], 0.0) << name;
        });
}

TEST(SideBySideKernelsTest, SemivariogramsHaveTheBitsOfThePlainLoops)
{
    for (std::size_t numVars = 0; numVars <= 4; ++numVars)
    {
        for (const std::size_t numPts : {1U, 2U, 3U, 8U, 19U})
        {
            const std::size_t numRows = numPts + 1 + numPts % 3;
            std::vector<double> points = randomValues(1, numVars * numPts * width, -1.0, 1.0, 10 * numPts + numVars)[0];
            std::vector<double> targets = randomValues(1, numVars * width, -1.0, 1.0, 20 * numPts + numVars)[0];
            // Coincident points, a target on a point, and special values, in some lanes.
            for (std::size_t v = 0; v < numVars; ++v)
            {
                points[(v * numPts + numPts - 1) * width + 1] = points[v * numPts * width + 1];
                targets[v * width + 2] = points[v * numPts * width + 2];
                points[v * numPts * width + 3] = v % 2 == 0 ? notANumber : infinity;
                points[v * numPts * width + 4] = 1e200;
                targets[v * width + 5] = 5e-324;
            }
            const PoisonedStore pointStore(points);
            const PoisonedStore targetStore(targets);
            for (const double rangeSquared : {0.5, 100.0, 0.0})
            {
                // Entries that are no semivariogram's are marked: they must stay.
                std::vector<double> expected(fenn::kernels::sideBySideColumnsSize(numRows), 77.0);
                const std::vector<double> marked = expected;
                fenn::kernels::scalar::evaluateSphericalSideBySide(model(numVars, rangeSquared), points.data(),
                                                                   targets.data(), numPts, expected.data(), numRows);
                forEachRunnableTarget(
                    [&](const char* name)
                    {
                        const PoisonedStore columns(marked);
                        fenn::kernels::evaluateSphericalSideBySide(model(numVars, rangeSquared), pointStore.data(),
                                                                   targetStore.data(), numPts, columns.data(), numRows);
                        ASSERT_TRUE(sameBits(columns.values(), expected))
                            << name << ", " << numVars << " variables, " << numPts << " points";
                    });
            }
        }
    }
}

TEST(SideBySideKernelsTest, SquaresAreRoundedBeforeTheyAreAdded)
{
    // 2^-54 + 2^-54 + (1 + 2^-30)^2 is 1 + 2^-29 by rounded squares; fused, 2^-60 rounds it up.
    const double ones[] = {1.0, 1.0, 1.0};
    const double rounded = 1.0 + 0x1p-29;
    const SphericalModel spherical{ones, 3, rounded, 0.25, 0.0, 0.0};
    const PoisonedStore points(3 * 2 * width, 0.0);
    const PoisonedStore targets(3 * width, 0.0);
    for (std::size_t t = 0; t < width; ++t)
    {
        points.data()[(0 * 2 + 1) * width + t] = 0x1p-27;
        points.data()[(1 * 2 + 1) * width + t] = 0x1p-27;
        points.data()[(2 * 2 + 1) * width + t] = 1.0 + 0x1p-30;
    }
    forEachRunnableTarget(
        [&](const char* name)
        {
            const PoisonedStore columns(fenn::kernels::sideBySideColumnsSize(2), 0.0);
            fenn::kernels::evaluateSphericalSideBySide(spherical, points.data(), targets.data(), 2, columns.data(), 2);
            // Rounded up, the lag would reach this range as well.
            SphericalModel justAbove = spherical;
            justAbove.rangeSquared = std::nextafter(rounded, 2.0);
            const PoisonedStore within(fenn::kernels::sideBySideColumnsSize(2), 0.0);
            fenn::kernels::evaluateSphericalSideBySide(justAbove, points.data(), targets.data(), 2, within.data(), 2);
            EXPECT_EQ(columns.data()[width], 1.0) << name;
            EXPECT_EQ(within.data()[width], 0.25) << name;
        });
}
