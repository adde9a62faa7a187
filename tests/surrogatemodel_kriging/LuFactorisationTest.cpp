// Beside plain loops over plain rows, bit for bit: every size up to 70 for the tails of vectors, larger ones for
// blocks.

#include <functional>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/Matrix.h"
#include "tests/support/BitComparison.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

std::string nameOfKind(const testing::TestParamInfo<MatrixKind>& kind)
{
    constexpr const char* names[] = {"Uniform",    "SmallIntegers",   "RepeatedRows", "ScaledRows",
                                     "TinyPivots", "ZerosOfTwoSigns", "SpecialValues"};
    return names[kind.index];
}

std::string outcomeOf(Matrix& matrix)
{
    const std::string text = textOfError([&] { matrix.luDecompose(); });
    return text == "no Error" ? "" : text;
}

std::string outcomeOf(const Matrix& matrix, std::vector<double>& b)
{
    const std::string text = textOfError([&] { matrix.luSolve(b.data()); });
    return text == "no Error" ? "" : text;
}

/// A right-hand side of one of six kinds, by turns.
std::vector<double> randomRightHandSide(std::size_t turn, std::size_t n, RandomNumbers& numbers)
{
    std::vector<double> b(n);
    const auto numLeading = static_cast<std::size_t>(numbers.next(0.0, static_cast<double>(n) + 1.0));
    for (std::size_t i = 0; i < n; ++i)
    {
        b[i] = numbers.next(-1.0, 1.0);
        if (turn % 6 == 1 && i < numLeading)
            b[i] = 0.0;
        if (turn % 6 == 2 && i < numLeading)
            b[i] = numbers.next() < 0.5 ? 0.0 : -0.0;
        if (turn % 6 == 3 && i != numLeading)
            b[i] = -0.0;
        if (turn % 6 == 4 && numbers.next() < 2.0 / static_cast<double>(n))
            b[i] = randomSpecialValue(numbers);
        if (turn % 6 == 5)
            b[i] *= 1e149;
    }
    return b;
}

/// Factorises and, where that succeeds, solves: every element, pivot, solution and failure is that of the plain loops.
void compareWithNaive(Matrix& matrix, const NaiveLinearSystem::Rows& rows, RandomNumbers& numbers)
{
    NaiveLinearSystem naive(rows);
    const std::string outcome = naive.factorise();

    ASSERT_EQ(outcomeOf(matrix), outcome);
    ASSERT_TRUE(sameBits(elementsOf(matrix), elementsOf(naive.rows)));
    if (!outcome.empty())
        return;
    ASSERT_EQ(pivotsOf(matrix), naive.pivots);

    for (std::size_t turn = 0; turn < 6; ++turn)
    {
        std::vector<double> expected = randomRightHandSide(turn, rows.size(), numbers);
        std::vector<double> b = expected;
        const std::string expectedOutcome = naive.solve(expected);

        ASSERT_EQ(outcomeOf(matrix, b), expectedOutcome) << "right-hand side " << turn;
        ASSERT_TRUE(sameBits(b, expected)) << "right-hand side " << turn;
    }
}

} // namespace

class LuFactorisationTest : public testing::TestWithParam<MatrixKind>
{
};

TEST_P(LuFactorisationTest, SmallMatricesHaveTheBitsOfTheNaiveLoops)
{
    RandomNumbers numbers(100);
    for (std::size_t n = 1; n <= 70; ++n)
    {
        for (int sample = 0; sample < 4; ++sample)
        {
            SCOPED_TRACE(testing::Message() << "dimension " << n << ", sample " << sample);
            const auto rows = randomRows(GetParam(), n, numbers);
            Matrix matrix;
            allocateAndFill(matrix, rows);

            ASSERT_NO_FATAL_FAILURE(compareWithNaive(matrix, rows, numbers));
        }
    }
}

TEST_P(LuFactorisationTest, LargeMatricesHaveTheBitsOfTheNaiveLoops)
{
    RandomNumbers numbers(101);
    for (const std::size_t n : {97u, 129u, 200u, 257u, 300u})
    {
        SCOPED_TRACE(n);
        const auto rows = randomRows(GetParam(), n, numbers);
        Matrix matrix;
        allocateAndFill(matrix, rows);

        ASSERT_NO_FATAL_FAILURE(compareWithNaive(matrix, rows, numbers));
    }
}

TEST_P(LuFactorisationTest, MatricesRefilledAfterPivotingHaveTheBitsOfTheNaiveLoops)
{
    RandomNumbers numbers(102);
    for (const std::size_t n : {1u, 2u, 5u, 16u, 33u, 64u, 70u, 129u})
    {
        Matrix matrix;
        matrix.allocate(static_cast<int>(n));
        for (int filling = 0; filling < 3; ++filling)
        {
            SCOPED_TRACE(testing::Message() << "dimension " << n << ", filling " << filling);
            const auto rows = randomRows(GetParam(), n, numbers);
            fillMatrix(matrix, rows);

            ASSERT_NO_FATAL_FAILURE(compareWithNaive(matrix, rows, numbers));
        }
    }
}

/// Factors that no factorisation leaves behind, down to the failures of the solve that only they cause.
TEST_P(LuFactorisationTest, SolvesWithChangedFactorsHaveTheBitsOfTheNaiveLoops)
{
    RandomNumbers numbers(103);
    for (std::size_t n = 2; n <= 70; ++n)
    {
        SCOPED_TRACE(n);
        Matrix matrix;
        allocateAndFill(matrix, randomRows(MatrixKind::uniform, n, numbers));
        matrix.luDecompose();
        const auto changes = randomRows(GetParam(), n, numbers);
        for (std::size_t i = 0; i < n; ++i)
        {
            double* row = matrix.getRow(static_cast<int>(i));
            row[0] = changes[i][0]; // what leading zeros skip
            row[n / 2] = changes[i][n / 2];
        }
        const NaiveLinearSystem naive = factorsOf(matrix);
        for (std::size_t turn = 0; turn < 12; ++turn)
        {
            std::vector<double> expected = randomRightHandSide(turn, n, numbers);
            std::vector<double> b = expected;
            const std::string expectedOutcome = naive.solve(expected);

            ASSERT_EQ(outcomeOf(matrix, b), expectedOutcome) << "right-hand side " << turn;
            ASSERT_TRUE(sameBits(b, expected)) << "right-hand side " << turn;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, LuFactorisationTest, testing::ValuesIn(allMatrixKinds), nameOfKind);

TEST(LuFactorisationOfManyRowsTest, HasTheBitsOfTheNaiveLoops)
{
    RandomNumbers numbers(104);
    for (const MatrixKind kind : {MatrixKind::uniform, MatrixKind::scaledRows})
    {
        SCOPED_TRACE(static_cast<int>(kind));
        const auto rows = randomRows(kind, 513, numbers);
        Matrix matrix;
        allocateAndFill(matrix, rows);

        ASSERT_NO_FATAL_FAILURE(compareWithNaive(matrix, rows, numbers));
    }
}

namespace
{

/// Runs a piece on the calling thread and on others.
Matrix::Executor onThreads(int numOthers)
{
    return [numOthers](const std::function<void()>& piece)
    {
        std::vector<std::thread> threads;
        for (int t = 0; t < numOthers; ++t)
            threads.emplace_back(piece);
        piece();
        for (std::thread& thread : threads)
            thread.join();
    };
}

} // namespace

TEST(FactorisationInPiecesTest, AnyNumberOfThreadsGivesTheBitsOfOne)
{
    for (const std::size_t n : {3U, 255U, 256U, 300U, 700U})
    {
        RandomNumbers numbers(n);
        const NaiveLinearSystem::Rows rows = randomRows(MatrixKind::uniform, n, numbers);
        Matrix alone;
        allocateAndFill(alone, rows);
        alone.luDecompose();
        for (const int numOthers : {0, 1, 3})
        {
            Matrix shared;
            allocateAndFill(shared, rows);
            shared.luDecompose(3, onThreads(numOthers));
            ASSERT_EQ(pivotsOf(shared), pivotsOf(alone)) << n << " rows, other threads: " << numOthers;
            ASSERT_TRUE(sameBits(elementsOf(shared), elementsOf(alone))) << n << " rows, other threads: " << numOthers;
        }
    }
}

TEST(FactorisationInPiecesTest, ARowOfZerosIsSingularAndLeavesTheMatrixUnchanged)
{
    RandomNumbers numbers(1);
    NaiveLinearSystem::Rows rows = randomRows(MatrixKind::uniform, 300, numbers);
    rows[299].assign(300, 0.0);
    Matrix matrix;
    allocateAndFill(matrix, rows);

    EXPECT_EQ(textOfError([&] { matrix.luDecompose(2, onThreads(1)); }), "Singular matrix");
    EXPECT_TRUE(sameBits(elementsOf(matrix), elementsOf(rows)));
}

TEST(FactorisationInPiecesTest, SmallMatricesNeedNoOtherThread)
{
    Matrix matrix;
    allocateAndFill(matrix, {{2.0, 1.0}, {1.0, 2.0}});
    int numRuns = 0;

    matrix.luDecompose(2, [&](const std::function<void()>&) { ++numRuns; });

    EXPECT_EQ(numRuns, 0);
    EXPECT_EQ(matrix.getRow(1)[1], 1.5);
}
