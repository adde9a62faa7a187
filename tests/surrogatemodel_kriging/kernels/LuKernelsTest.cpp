// Every instruction set that runs here beside the scalar definition, bit for bit.

#include "surrogatemodel_kriging/kernels/LuKernels.h"

#include <algorithm>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/ScalarLuKernels.h"
#include "tests/support/BitComparison.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/RunnableTargets.h"

using namespace fenn::test;
using fenn::ElementStore;

namespace
{

/// A matrix as the kernels take it: rows of exact size in one store, reached through a table.
class Rows
{
public:
    explicit Rows(const std::vector<double>& elements_, std::size_t n) : elements(elements_), table(n), pivots(n, -1)
    {
        for (std::size_t i = 0; i < n; ++i)
            table[i] = elements.data() + i * n;
    }

    std::size_t size() const
    {
        return table.size();
    }

    /// Which row of the store each entry of the table points at.
    std::vector<std::size_t> order() const
    {
        std::vector<std::size_t> order;
        for (const double* row : table)
            order.push_back(static_cast<std::size_t>(row - elements.data()) / size());
        return order;
    }

    bool factorise()
    {
        ElementStore workspace;
        workspace.allocate(fenn::kernels::luWorkspaceSize(size()));
        return fenn::kernels::factoriseLu(table.data(), size(), pivots.data(), workspace.data());
    }

    bool factoriseByDefinition()
    {
        std::vector<double> scale(size());
        return fenn::kernels::scalar::factoriseLu(table.data(), size(), pivots.data(), scale.data());
    }

    bool factoriseShared(std::size_t numPieces, std::size_t numThreads)
    {
        ElementStore workspace;
        workspace.allocate(fenn::kernels::luWorkspaceSize(size(), numPieces));
        fenn::kernels::SharedLu shared;
        fenn::kernels::prepareSharedLu(shared, table.data(), size(), pivots.data(), workspace.data(), numPieces);
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < numThreads; ++t)
            threads.emplace_back([&] { fenn::kernels::workOnSharedLu(shared); });
        for (std::thread& thread : threads)
            thread.join();
        return !shared.singular;
    }

    std::vector<double> elements;
    std::vector<double*> table;
    std::vector<int> pivots;
};

testing::AssertionResult sameOutcome(const Rows& actual, const Rows& expected)
{
    if (actual.pivots != expected.pivots)
        return testing::AssertionFailure() << "other pivots";
    if (actual.order() != expected.order())
        return testing::AssertionFailure() << "another order of rows";
    return sameBits(actual.elements, expected.elements);
}

Rows randomMatrix(MatrixKind kind, std::size_t n, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    return Rows(elementsOf(randomRows(kind, n, numbers)), n);
}

void compareWithDefinition(MatrixKind kind, std::size_t n, std::uint64_t seed)
{
    Rows expected = randomMatrix(kind, n, seed);
    Rows actual = expected.size() == 0 ? Rows({}, 0) : Rows(expected.elements, n);
    const bool regular = expected.factoriseByDefinition();

    ASSERT_EQ(actual.factorise(), regular);
    ASSERT_TRUE(sameOutcome(actual, expected));
}

std::string nameOfKind(const testing::TestParamInfo<MatrixKind>& kind)
{
    constexpr const char* names[] = {"Uniform",    "SmallIntegers",   "RepeatedRows", "ScaledRows",
                                     "TinyPivots", "ZerosOfTwoSigns", "SpecialValues"};
    return names[kind.index];
}

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// 2 on the diagonal, 1 in the rest of the last row and column, 0 elsewhere.
std::vector<double> arrowMatrix(std::size_t n)
{
    std::vector<double> elements(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i)
    {
        elements[i * n + i] = 2.0;
        elements[i * n + n - 1] = 1.0;
        elements[(n - 1) * n + i] = 1.0;
    }
    return elements;
}

/// The factor that stands where a diagonal of ones held the given element, for matrices of one panel and of several.
void expectDiagonalFactor(double element, double factor)
{
    forEachRunnableTarget(
        [&](const char* name)
        {
            for (const std::size_t n : {1U, 9U, 40U, 64U, 65U, 70U, 130U, 300U})
            {
                for (const std::size_t place : {std::size_t{0}, n / 2, n - 1})
                {
                    SCOPED_TRACE(testing::Message() << name << ", n " << n << ", place " << place);
                    std::vector<double> elements(n * n, 0.0);
                    for (std::size_t i = 0; i < n; ++i)
                        elements[i * n + i] = i == place ? element : 1.0;
                    Rows rows(elements, n);
                    elements[place * n + place] = factor;

                    EXPECT_TRUE(rows.factorise());

                    EXPECT_EQ(rows.elements, elements); // a zero below a negative pivot turns its sign
                }
            }
        });
}

} // namespace

class LuKernelsTest : public testing::TestWithParam<MatrixKind>
{
};

TEST_P(LuKernelsTest, SmallMatricesHaveTheBitsOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (std::size_t n = 0; n <= 81; ++n)
            {
                for (std::uint64_t seed = 1; seed <= 5; ++seed)
                {
                    SCOPED_TRACE(testing::Message() << name << ", n " << n << ", seed " << seed);
                    compareWithDefinition(GetParam(), n, seed);
                    if (HasFatalFailure())
                        return;
                }
            }
        });
}

TEST_P(LuKernelsTest, MatricesOfSeveralPanelsHaveTheBitsOfTheDefinition)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {96U, 104U, 105U, 112U, 129U, 200U, 257U})
            {
                SCOPED_TRACE(testing::Message() << name << ", n " << n);
                compareWithDefinition(GetParam(), n, n);
                if (HasFatalFailure())
                    return;
            }
        });
}

TEST_P(LuKernelsTest, SeveralThreadsGiveTheBitsOfTheDefinition)
{
    for (const std::size_t n : {0U, 1U, 17U, 64U, 65U, 129U, 257U, 300U})
    {
        Rows expected = randomMatrix(GetParam(), n, n + 1);
        const std::vector<double> elements = expected.elements;
        const bool regular = expected.factoriseByDefinition();
        for (const std::size_t numThreads : {1U, 2U, 5U})
        {
            SCOPED_TRACE(testing::Message() << "n " << n << ", threads " << numThreads);
            Rows actual(elements, n);
            ASSERT_EQ(actual.factoriseShared(3, numThreads), regular);
            ASSERT_TRUE(sameOutcome(actual, expected));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, LuKernelsTest, testing::ValuesIn(allMatrixKinds), nameOfKind);

TEST(LuKernelsOfManyRowsTest, HaveTheBitsOfTheDefinition)
{
    for (const std::size_t n : {513U, 1001U})
    {
        Rows expected = randomMatrix(MatrixKind::uniform, n, n);
        const std::vector<double> elements = expected.elements;
        ASSERT_TRUE(expected.factoriseByDefinition());
        forEachRunnableTarget(
            [&](const char* name)
            {
                SCOPED_TRACE(testing::Message() << name << ", n " << n);
                Rows actual(elements, n);
                ASSERT_TRUE(actual.factorise());
                ASSERT_TRUE(sameOutcome(actual, expected));
            });
        Rows shared(elements, n);
        ASSERT_TRUE(shared.factoriseShared(2, 2));
        ASSERT_TRUE(sameOutcome(shared, expected));
    }
}

TEST(LuKernelsOfManyRowsTest, HaveTheBitsOfTheDefinitionWithTheWidestPanels)
{
    constexpr std::size_t n = 1409;
    Rows expected = randomMatrix(MatrixKind::scaledRows, n, n);
    Rows actual(expected.elements, n);
    Rows shared(expected.elements, n);

    ASSERT_TRUE(expected.factoriseByDefinition());
    ASSERT_TRUE(actual.factorise());
    ASSERT_TRUE(shared.factoriseShared(3, 2));

    EXPECT_TRUE(sameOutcome(actual, expected));
    EXPECT_TRUE(sameOutcome(shared, expected));
}

TEST(FactoriseLuTest, TheLastOfEquallyGoodRowsBecomesThePivot)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {2U, 7U, 8U, 9U, 16U, 17U, 32U, 33U, 64U, 65U, 70U, 130U})
            {
                SCOPED_TRACE(testing::Message() << name << ", n " << n);
                Rows rows(std::vector<double>(n * n, 1.0), n);
                ASSERT_TRUE(rows.factorise());
                EXPECT_EQ(rows.pivots, std::vector<int>(n, static_cast<int>(n) - 1));
            }
        });
}

TEST(FactoriseLuTest, AColumnOfNaNKeepsRowJAndSpoilsWhatFollows)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {2U, 9U, 41U, 65U, 130U})
            {
                SCOPED_TRACE(testing::Message() << name << ", n " << n);
                std::vector<double> elements = arrowMatrix(n);
                for (std::size_t i = 0; i < n; ++i)
                    elements[i * n] = notANumber;
                Rows rows(elements, n);
                ASSERT_TRUE(rows.factorise());
                for (std::size_t j = 0; j < n; ++j)
                    EXPECT_EQ(rows.pivots[j], static_cast<int>(j));
            }
        });
}

TEST(FactoriseLuTest, ARowOfZerosAndNaNIsSingularAndLeavesEverythingUnchanged)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {1U, 2U, 9U, 40U, 64U, 65U, 130U, 300U})
            {
                for (const std::size_t emptyRow : {std::size_t{0}, n / 2, n - 1})
                {
                    SCOPED_TRACE(testing::Message() << name << ", n " << n << ", row " << emptyRow);
                    std::vector<double> elements = arrowMatrix(n);
                    for (std::size_t k = 0; k < n; ++k)
                        elements[emptyRow * n + k] = k % 2 == 0 ? -0.0 : notANumber;
                    Rows rows(elements, n);
                    const std::vector<std::size_t> order = rows.order();
                    EXPECT_FALSE(rows.factorise());
                    EXPECT_TRUE(sameBits(rows.elements, elements));
                    EXPECT_EQ(rows.order(), order);
                    EXPECT_FALSE(rows.factoriseShared(2, 2));
                    EXPECT_TRUE(sameBits(rows.elements, elements));
                }
            }
        });
}

TEST(FactoriseLuTest, ATinyNegativePivotBecomesPositive)
{
    expectDiagonalFactor(-1e-200, 1e-150);
}

TEST(FactoriseLuTest, NegativePivotsAtTheBoundAreKept)
{
    expectDiagonalFactor(-1e-150, -1e-150);
}

TEST(FactoriseLuTest, ARowOfTheSmallestMagnitudeIsNotSingular)
{
    expectDiagonalFactor(5e-324, 1e-150);
}

TEST(FactoriseLuTest, RoundsEachProductBeforeSubtractingIt)
{
    // The square of 1 + 2^-30 rounds to 1 + 2^-29, which the first pivot's row takes from every element: only the
    // diagonal is left. Fused, -2^-60 would be left everywhere else.
    constexpr double side = 1.0 + 0x1p-30;
    constexpr double square = 1.0 + 0x1p-29;
    forEachRunnableTarget(
        [&](const char* name)
        {
            for (const std::size_t n : {2U, 3U, 9U, 17U, 33U, 41U, 64U, 67U, 129U, 300U})
            {
                SCOPED_TRACE(testing::Message() << name << ", n " << n);
                std::vector<double> elements(n * n, square);
                std::vector<double> expected(n * n, 0.0);
                for (std::size_t i = 0; i < n; ++i)
                {
                    elements[i] = elements[i * n] = expected[i] = expected[i * n] = side;
                    elements[i * n + i] = square + 0.5;
                    expected[i * n + i] = 0.5;
                }
                elements[0] = expected[0] = 1.0;
                Rows rows(elements, n);

                ASSERT_TRUE(rows.factorise());

                EXPECT_TRUE(sameBits(rows.elements, expected));
            }
        });
}

TEST(WorkOnSharedLuTest, APieceThatComesTooLateChangesNothing)
{
    constexpr std::size_t n = 130;
    Rows expected = randomMatrix(MatrixKind::uniform, n, 1);
    Rows actual(expected.elements, n);
    ASSERT_TRUE(expected.factoriseByDefinition());
    ElementStore workspace;
    workspace.allocate(fenn::kernels::luWorkspaceSize(n, 2));
    fenn::kernels::SharedLu shared;
    fenn::kernels::prepareSharedLu(shared, actual.table.data(), n, actual.pivots.data(), workspace.data(), 2);

    fenn::kernels::workOnSharedLu(shared);
    fenn::kernels::workOnSharedLu(shared);
    fenn::kernels::workOnSharedLu(shared);

    EXPECT_TRUE(sameOutcome(actual, expected));
}
