#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/kernels/ScalarCholeskyKernels.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::kernels::choleskyWorkspaceSize;
using fenn::kernels::PackedTriangle;
using fenn::kernels::roundUpToStrip;
using fenn::kernels::roundUpToTile;
using fenn::kernels::StripGroup;
using fenn::kernels::stripWidth;
using fenn::kernels::triangleTileRows;
using fenn::test::forEachRunnableTarget;
using fenn::test::RandomNumbers;
using fenn::test::sameBits;

/// Lines of eight doubles, aligned, in a store of exactly the size they take.
class Lines
{
public:
    explicit Lines(std::size_t numDoubles) : lines((numDoubles + stripWidth - 1) / stripWidth + 1), size(numDoubles) {}

    double* data()
    {
        return lines[0].entries;
    }

    std::vector<double> entries() const
    {
        const double* first = lines[0].entries;
        return {first, first + size};
    }

private:
    struct alignas(64) Line
    {
        double entries[stripWidth];
    };
    std::vector<Line> lines;
    std::size_t size;
};

/// A covariance matrix of points on a line with a border of random columns, padded with ones on the diagonal, and what
/// its factorisation leaves.
struct System
{
    System(std::size_t numPts, std::size_t numBorder, std::uint64_t seed)
        : cells(PackedTriangle::sizeFor(roundUpToTile(numPts) + roundUpToStrip(numBorder))),
          workspace(choleskyWorkspaceSize(roundUpToTile(numPts) + roundUpToStrip(numBorder)))
    {
        triangle.cells = cells.data();
        triangle.numPositive = roundUpToTile(numPts);
        triangle.numRows = triangle.numPositive + roundUpToStrip(numBorder);
        RandomNumbers numbers(seed);
        std::vector<double> places(triangle.numRows);
        for (double& place : places)
            place = numbers.next(-1.0, 1.0);
        std::vector<double> border(triangle.numRows * (triangle.numRows - triangle.numPositive));
        for (double& value : border)
            value = numbers.next(-1.0, 1.0);
        forEachElement(
            [&](std::size_t i, std::size_t j, double& element)
            {
                element = i == j ? 1.0 : 0.0;
                if (i >= triangle.numRows) // of a last tile with fewer strips
                    return;
                if (i < numPts && j < numPts && i != j)
                    element = std::exp(-3.0 * std::fabs(places[i] - places[j]));
                const bool isBorder = i >= triangle.numPositive && i - triangle.numPositive < numBorder;
                if (isBorder)
                    element = j < numPts ? border[(i - triangle.numPositive) * triangle.numRows + j] : 0.0;
                else if (i >= triangle.numPositive)
                    element = i == j ? -1.0 : 0.0;
            });
        std::fill_n(workspace.data(), choleskyWorkspaceSize(triangle.numRows), -7e-310);
    }

    /// Every element that has a place, those right of the diagonal by symmetry.
    template <class Operation>
    void forEachElement(const Operation& operation)
    {
        for (std::size_t i = 0; i < triangle.numRows; ++i)
        {
            for (std::size_t j = 0; j < (i / triangleTileRows + 1) * triangleTileRows; ++j)
                operation(std::max(i, j), std::min(i, j), triangle.at(i, j));
        }
    }

    std::vector<double> reciprocals()
    {
        return {workspace.data(), workspace.data() + triangle.numRows};
    }

    Lines cells;
    Lines workspace;
    PackedTriangle triangle;
};

struct Size
{
    std::size_t numPts;
    std::size_t numBorder;
};

std::vector<Size> sizes()
{
    std::vector<Size> result{{1, 0}, {1, 1}, {24, 0}, {24, 1}, {25, 3}, {48, 24}, {49, 9}, {49, 17}, {49, 25}};
    for (const std::size_t numPts : {71U, 97U, 120U, 191U, 193U, 240U, 313U, 600U})
        result.push_back({numPts, numPts % 5});
    result.push_back({313, 250}); // a border of several blocks
    return result;
}

void expectScalarBits(System& actual, System& expected, bool wasFactorised)
{
    const bool isFactorised = fenn::kernels::scalar::factoriseCholesky(expected.triangle, expected.workspace.data());
    ASSERT_EQ(wasFactorised, isFactorised);
    if (!isFactorised)
        return;
    EXPECT_TRUE(sameBits(actual.cells.entries(), expected.cells.entries()));
    EXPECT_TRUE(sameBits(actual.reciprocals(), expected.reciprocals()));
}

TEST(CholeskyKernelsTest, FactorisationsHaveTheBitsOfThePlainLoops)
{
    for (const Size& size : sizes())
    {
        System expected(size.numPts, size.numBorder, size.numPts);
        ASSERT_TRUE(fenn::kernels::scalar::factoriseCholesky(expected.triangle, expected.workspace.data()));
        forEachRunnableTarget(
            [&](const char* name)
            {
                SCOPED_TRACE(std::string(name) + ", " + std::to_string(size.numPts) + " points, border of " +
                             std::to_string(size.numBorder));
                System actual(size.numPts, size.numBorder, size.numPts);
                EXPECT_TRUE(fenn::kernels::factoriseCholesky(actual.triangle, actual.workspace.data()));
                EXPECT_TRUE(sameBits(actual.cells.entries(), expected.cells.entries()));
                EXPECT_TRUE(sameBits(actual.reciprocals(), expected.reciprocals()));
            });
    }
}

TEST(CholeskyKernelsTest, NumberOfPiecesChangesNoBit)
{
    for (const Size& size : {Size{24, 2}, Size{333, 3}, Size{700, 28}, Size{690, 40}})
    {
        System expected(size.numPts, size.numBorder, 5);
        ASSERT_TRUE(fenn::kernels::factoriseCholesky(expected.triangle, expected.workspace.data()));
        for (const std::size_t numPieces : {1U, 2U, 3U, 5U})
        {
            System actual(size.numPts, size.numBorder, 5);
            fenn::kernels::SharedCholesky shared;
            fenn::kernels::prepareSharedCholesky(shared, actual.triangle, actual.workspace.data());
            std::vector<std::thread> others;
            for (std::size_t piece = 1; piece < numPieces; ++piece)
                others.emplace_back([&shared] { fenn::kernels::workOnSharedCholesky(shared); });
            fenn::kernels::workOnSharedCholesky(shared);
            for (std::thread& other : others)
                other.join();

            EXPECT_FALSE(shared.failed);
            EXPECT_TRUE(sameBits(actual.cells.entries(), expected.cells.entries()));
            EXPECT_TRUE(sameBits(actual.reciprocals(), expected.reciprocals()));
        }
    }
}

TEST(CholeskyKernelsTest, AMatrixThatIsNotPositiveDefiniteIsRefused)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            for (const std::size_t row : {0U, 7U, 8U, 23U, 24U, 40U, 130U, 199U})
            {
                for (const double diagonal : {0.0, -0.0, -1.0, std::numeric_limits<double>::quiet_NaN()})
                {
                    System actual(200, 2, 9), expected(200, 2, 9);
                    actual.triangle.at(row, row) = diagonal;
                    expected.triangle.at(row, row) = diagonal;
                    EXPECT_FALSE(fenn::kernels::factoriseCholesky(actual.triangle, actual.workspace.data())) << row;
                    EXPECT_FALSE(fenn::kernels::scalar::factoriseCholesky(expected.triangle, expected.workspace.data()))
                        << row;
                }
            }
        });
}

TEST(CholeskyKernelsTest, ALastPivotOfZeroIsRefused)
{
    // Ones on the diagonal, and a last row equal to the one before: 1 - 1 is left, and nothing below turns to NaN.
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            for (const std::size_t numRows : {24U, 72U})
            {
                System actual(numRows, 0, 9), expected(numRows, 0, 9);
                for (const System* system : {&actual, &expected})
                {
                    for (std::size_t i = 0; i < numRows; ++i)
                    {
                        for (std::size_t j = 0; j <= i; ++j)
                            system->triangle.at(i, j) = i == j ? 1.0 : 0.0;
                    }
                    system->triangle.at(numRows - 1, numRows - 2) = 1.0;
                }
                EXPECT_FALSE(fenn::kernels::factoriseCholesky(actual.triangle, actual.workspace.data()));
                EXPECT_FALSE(fenn::kernels::scalar::factoriseCholesky(expected.triangle, expected.workspace.data()));
            }
        });
}

TEST(CholeskyKernelsTest, ABorderOfDependentColumnsIsRefused)
{
    // Both columns are zero: what is left of the border is exactly zero.
    System system(60, 2, 9);
    for (std::size_t j = 0; j < 60; ++j)
        system.triangle.at(72, j) = system.triangle.at(73, j) = 0.0;
    EXPECT_FALSE(fenn::kernels::factoriseCholesky(system.triangle, system.workspace.data()));
}

TEST(CholeskyKernelsTest, AFailureEndsAllPieces)
{
    System system(700, 2, 9);
    system.triangle.at(150, 150) = -1.0;
    fenn::kernels::SharedCholesky shared;
    fenn::kernels::prepareSharedCholesky(shared, system.triangle, system.workspace.data());
    std::thread other([&shared] { fenn::kernels::workOnSharedCholesky(shared); });
    fenn::kernels::workOnSharedCholesky(shared);
    other.join();
    EXPECT_TRUE(shared.failed);
}

TEST(CholeskyKernelsTest, SpecialValuesPassThroughAsInThePlainLoops)
{
    const double infinity = std::numeric_limits<double>::infinity();
    forEachRunnableTarget(
        [&](const char* name)
        {
            for (const double odd : {0.0, -0.0, 5e-324, -3e-310, 1e-200, 1e160, infinity})
            {
                SCOPED_TRACE(std::string(name) + ", " + std::to_string(odd));
                System actual(75, 1, 3), expected(75, 1, 3);
                for (System* system : {&actual, &expected})
                {
                    system->triangle.at(74, 1) = odd;
                    system->triangle.at(50, 49) = system->triangle.at(49, 50) = odd;
                    system->triangle.at(96, 30) = odd;
                }
                const bool wasFactorised = fenn::kernels::factoriseCholesky(actual.triangle, actual.workspace.data());
                expectScalarBits(actual, expected, wasFactorised);
            }
        });
}

/// Strips in a store of their own.
struct Strips
{
    Strips(std::size_t numRows, std::size_t numStrips_)
        : numStrips(numStrips_), stride(stripWidth * (numRows + 1)), store(numStrips_ * stride)
    {
    }

    StripGroup group()
    {
        return {store.data(), stride, numStrips};
    }

    std::size_t numStrips;
    std::size_t stride;
    Lines store;
};

double oddNumber(RandomNumbers& numbers)
{
    const double odd[] = {0.0,
                          -0.0,
                          std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::denorm_min(),
                          -3e-310,
                          1e300};
    const double choice = numbers.next(0.0, 400.0);
    return choice < 8.0 ? odd[static_cast<std::size_t>(choice)] : numbers.next(-1.0, 1.0);
}

TEST(CholeskyKernelsTest, SubstitutionsHaveTheBitsOfThePlainLoops)
{
    for (const Size& size : sizes())
    {
        System system(size.numPts, size.numBorder, size.numPts);
        ASSERT_TRUE(fenn::kernels::factoriseCholesky(system.triangle, system.workspace.data()));
        for (const std::size_t numStrips : {0U, 1U, 2U, 5U})
        {
            for (const bool isOdd : {false, true})
            {
                RandomNumbers numbers(size.numPts + numStrips);
                Strips start(system.triangle.numRows, numStrips);
                for (std::size_t i = 0; i < numStrips * start.stride; ++i)
                    start.store.data()[i] = isOdd ? oddNumber(numbers) : numbers.next(-1.0, 1.0);
                Strips expected = start, expectedBack = start;
                fenn::kernels::scalar::substituteLower(system.triangle, system.workspace.data(), expected.group());
                fenn::kernels::scalar::substituteLowerTransposed(system.triangle, system.workspace.data(),
                                                                 expectedBack.group());
                forEachRunnableTarget(
                    [&](const char* name)
                    {
                        SCOPED_TRACE(std::string(name) + ", " + std::to_string(size.numPts) + " points, " +
                                     std::to_string(numStrips) + " strips");
                        Strips actual = start, actualBack = start;
                        fenn::kernels::substituteLower(system.triangle, system.workspace.data(), actual.group());
                        fenn::kernels::substituteLowerTransposed(system.triangle, system.workspace.data(),
                                                                 actualBack.group());
                        EXPECT_TRUE(sameBits(actual.store.entries(), expected.store.entries()));
                        EXPECT_TRUE(sameBits(actualBack.store.entries(), expectedBack.store.entries()));
                    });
            }
        }
    }
}

TEST(CholeskyKernelsTest, ASubstitutionFromALaterTileOnSkipsZerosAboveIt)
{
    for (const Size& size : sizes())
    {
        System system(size.numPts, size.numBorder, size.numPts);
        ASSERT_TRUE(fenn::kernels::factoriseCholesky(system.triangle, system.workspace.data()));
        for (std::size_t firstTile = 0; firstTile < system.triangle.numTiles(); ++firstTile)
        {
            RandomNumbers numbers(size.numPts + firstTile);
            Strips start(system.triangle.numRows, 2);
            Strips garbage = start;
            for (std::size_t i = 0; i < 2 * start.stride; ++i)
            {
                const bool isAbove = i % start.stride < stripWidth * triangleTileRows * firstTile;
                start.store.data()[i] = isAbove ? 0.0 : numbers.next(-1.0, 1.0);
                garbage.store.data()[i] = isAbove ? std::nan("") : start.store.data()[i];
            }
            Strips whole = start, definition = garbage;
            fenn::kernels::scalar::substituteLower(system.triangle, system.workspace.data(), whole.group());
            fenn::kernels::scalar::substituteLower(system.triangle, system.workspace.data(), definition.group(),
                                                   firstTile);
            for (std::size_t i = 0; i < 2 * start.stride; ++i)
            {
                if (i % start.stride >= stripWidth * triangleTileRows * firstTile)
                {
                    ASSERT_TRUE(sameBits(definition.store.data()[i], whole.store.data()[i]));
                }
            }
            forEachRunnableTarget(
                [&](const char* name)
                {
                    SCOPED_TRACE(std::string(name) + ", " + std::to_string(size.numPts) + " points, from tile " +
                                 std::to_string(firstTile));
                    Strips actual = garbage;
                    fenn::kernels::substituteLower(system.triangle, system.workspace.data(), actual.group(), firstTile);
                    EXPECT_TRUE(sameBits(actual.store.entries(), definition.store.entries()));
                });
        }
    }
}

TEST(CholeskyKernelsTest, ProductsOfColumnsHaveTheBitsOfThePlainLoops)
{
    constexpr std::size_t numRows = 40;
    for (std::size_t numA = 0; numA <= 7; ++numA)
    {
        for (const std::size_t numB : {0U, 1U, 4U})
        {
            for (const auto& range : {std::pair<std::size_t, std::size_t>{0, numRows}, {8, 32}, {16, 16}})
            {
                const std::size_t begin = range.first;
                const std::size_t end = range.second;
                RandomNumbers numbers(10 * numA + numB);
                Strips a(numRows, numA);
                Strips b(numRows, numB);
                for (Strips* strips : {&a, &b})
                {
                    for (std::size_t i = 0; i < stripWidth * numRows * (strips == &a ? numA : numB); ++i)
                        strips->store.data()[i] = oddNumber(numbers);
                }
                const std::size_t rowLength = stripWidth * numB + 3; // the rest of a row is left alone
                std::vector<double> start(stripWidth * numA * rowLength);
                for (double& value : start)
                    value = numbers.next(-1.0, 1.0);
                std::vector<double> expected = start;
                fenn::kernels::scalar::subtractColumnProducts(a.group(), b.group(), begin, end, expected.data(),
                                                              rowLength);
                forEachRunnableTarget(
                    [&](const char* name)
                    {
                        SCOPED_TRACE(std::string(name) + ", " + std::to_string(numA) + " by " + std::to_string(numB));
                        std::vector<double> actual = start;
                        fenn::kernels::subtractColumnProducts(a.group(), b.group(), begin, end, actual.data(),
                                                              rowLength);
                        EXPECT_TRUE(sameBits(actual, expected));
                    });
            }
        }
    }
}

TEST(CholeskyKernelsTest, ProductsAreRoundedBeforeTheirSubtraction)
{
    // (1 + 2^-30)^2 rounds to 1 + 2^-29: the second pivot is 4 exactly; fused, 2^-60 less, its root's last bit differs.
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            System system(24, 0, 1);
            for (std::size_t i = 0; i < 24; ++i)
            {
                for (std::size_t j = 0; j < 24; ++j)
                    system.triangle.at(i, j) = i == j ? 1.0 : 0.0;
            }
            const double factor = 1.0 + 0x1p-30;
            system.triangle.at(9, 0) = system.triangle.at(0, 9) = factor;
            system.triangle.at(9, 9) = (1.0 + 0x1p-29) + 0x1p-52;
            ASSERT_TRUE(fenn::kernels::factoriseCholesky(system.triangle, system.workspace.data()));
            EXPECT_EQ(system.triangle.at(9, 9), 0x1p-26);
        });
}

TEST(CholeskyKernelsTest, FactorsMultiplyToTheMatrix)
{
    System system(130, 3, 4), original(130, 3, 4);
    ASSERT_TRUE(fenn::kernels::factoriseCholesky(system.triangle, system.workspace.data()));
    for (std::size_t i = 0; i < system.triangle.numRows; ++i)
    {
        for (std::size_t j = 0; j <= i; ++j)
        {
            double sum = 0.0;
            for (std::size_t k = 0; k <= j; ++k)
            {
                const double sign = k < system.triangle.numPositive ? 1.0 : -1.0;
                sum += sign * system.triangle.at(i, k) * system.triangle.at(j, k);
            }
            EXPECT_NEAR(sum, original.triangle.at(i, j), 1e-13 * 130) << i << ", " << j;
        }
    }
}

} // namespace
