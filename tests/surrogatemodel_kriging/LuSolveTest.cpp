#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/Matrix.h"
#include "tests/support/BitComparison.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A matrix that holds the given factors and pivots of which none exchanges anything: solves as the factors say.
class FactorMatrix : public Matrix
{
public:
    explicit FactorMatrix(const NaiveLinearSystem::Rows& factors)
    {
        NaiveLinearSystem::Rows identity(factors.size(), std::vector<double>(factors.size(), 0.0));
        for (std::size_t i = 0; i < factors.size(); ++i)
            identity[i][i] = 1.0;
        allocateAndFill(*this, identity);
        luDecompose();
        // Ties of scaled magnitude have exchanged nothing: zeros never tie with the 1 on the diagonal.
        fillMatrix(*this, factors);
    }
};

} // namespace

TEST(LuSolveTest, SolvesASystemWhoseRowsWereExchanged)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, 2.0}, {4.0, 4.0}});
    matrix.luDecompose();
    std::vector<double> b{5.0, 12.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {1.0, 2.0}));
}

TEST(LuSolveTest, AFactorisedMatrixSolvesAnyNumberOfTimes)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, 2.0}, {4.0, 4.0}});
    matrix.luDecompose();
    const std::vector<double> factors = elementsOf(matrix);
    std::vector<double> b{5.0, 12.0};
    matrix.luSolve(b.data());
    b = {3.0, 8.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {1.0, 1.0}));
    EXPECT_TRUE(sameBits(elementsOf(matrix), factors));
}

TEST(LuSolveTest, DividesByThePivot)
{
    const FactorMatrix matrix({{49.0, 0.0}, {0.0, 1.0}});
    std::vector<double> b{5.0, 1.0};

    matrix.luSolve(b.data());

    EXPECT_EQ(b[0], 5.0 / 49.0);
    EXPECT_NE(b[0], 5.0 * (1.0 / 49.0));
}

TEST(LuSolveTest, BackSubstitutionSubtractsInAscendingOrder)
{
    const FactorMatrix matrix({{1.0, 1e16, -1e16}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}});
    std::vector<double> b{1.0, 1.0, 1.0};

    matrix.luSolve(b.data());

    EXPECT_EQ(b[0], 0.0); // (1 - 1e16) + 1e16 loses the 1; from the other end it would be kept
}

TEST(LuSolveTest, ForwardSubstitutionSubtractsInAscendingOrder)
{
    const FactorMatrix matrix({{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {1e16, -1e16, 1.0}});
    std::vector<double> b{1.0, 1.0, 1.0};

    matrix.luSolve(b.data());

    EXPECT_EQ(b[2], 0.0);
}

TEST(LuSolveTest, EachProductIsRoundedBeforeItIsSubtracted)
{
    const double factor = 1.0 + 0x1p-30; // its square rounds to 1 + 2^-29
    const FactorMatrix forward({{1.0, 0.0}, {factor, 1.0}});
    const FactorMatrix backward({{1.0, factor}, {0.0, 1.0}});
    std::vector<double> b{factor, 1.0 + 0x1p-29};
    std::vector<double> c{1.0 + 0x1p-29, factor};

    forward.luSolve(b.data());
    backward.luSolve(c.data());

    EXPECT_EQ(b[1], 0.0);
    EXPECT_EQ(c[0], 0.0);
}

TEST(LuSolveTest, LeadingZerosAreSkippedAndGiveTheFullSum)
{
    RandomNumbers numbers(30);
    for (std::size_t n = 2; n <= 40; ++n)
    {
        SCOPED_TRACE(n);
        Matrix matrix;
        allocateAndFill(matrix, randomRows(MatrixKind::uniform, n, numbers));
        matrix.luDecompose();
        const NaiveLinearSystem factors = factorsOf(matrix);
        std::vector<double> b(n, 0.0);
        b[n / 2] = 1.0;
        std::vector<double> full = b; // solved by full sums
        for (std::size_t i = 0; i < n; ++i)
        {
            std::swap(full[i], full[static_cast<std::size_t>(factors.pivots[i])]);
            for (std::size_t k = 0; k < i; ++k)
                full[i] -= factors.rows[i][k] * full[k];
        }
        for (std::size_t i = n; i-- > 0;)
        {
            for (std::size_t k = i + 1; k < n; ++k)
                full[i] -= factors.rows[i][k] * full[k];
            full[i] /= factors.rows[i][i];
        }

        matrix.luSolve(b.data());

        EXPECT_EQ(b, full);
    }
}

TEST(LuSolveTest, LeadingZerosOfBothSignsReallySkipInfiniteAndNaNFactors)
{
    for (const double zero : {0.0, -0.0})
    {
        for (const double factor : {infinity, -infinity, notANumber})
        {
            const FactorMatrix matrix({{1.0, 0.0, 0.0}, {factor, 1.0, 0.0}, {factor, 2.0, 1.0}});
            std::vector<double> b{zero, 3.0, 7.0};

            matrix.luSolve(b.data());

            EXPECT_TRUE(sameBits(b, {zero, 3.0, 1.0})) << zero << " and " << factor;
        }
    }
}

TEST(LuSolveTest, ALeadingNegativeZeroKeepsItsSign)
{
    const FactorMatrix matrix({{1.0, -1.0}, {1.0, 1.0}});
    std::vector<double> b{-0.0, -0.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {-0.0, -0.0})); // the full sum -0 - 1 * -0 would be +0
}

TEST(LuSolveTest, AZeroAfterTheFirstOtherEntryIsNotSkipped)
{
    const FactorMatrix matrix({{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, infinity, 1.0}});
    std::vector<double> b{1.0, 0.0, 1.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(std::isnan(b[2]));
}

TEST(LuSolveTest, ANaNEndsTheLeadingZeros)
{
    const FactorMatrix matrix({{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}});
    std::vector<double> b{0.0, notANumber, 1.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(std::isnan(b[2])); // 1 - 0 * NaN
}

TEST(LuSolveTest, LeadingZerosAreCountedInTheOrderOfThePivots)
{
    Matrix matrix;
    allocateAndFill(matrix, {{0.0, 1.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}); // exchanges rows 0 and 1
    matrix.luDecompose();
    matrix.getRow(1)[0] = infinity;
    matrix.getRow(2)[0] = notANumber;
    std::vector<double> b{3.0, 0.0, 5.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {0.0, 3.0, 5.0}));
}

TEST(LuSolveTest, AComponentAtTheOverflowBoundIsAccepted)
{
    const FactorMatrix matrix({{1.0, 0.0}, {0.0, 1.0}});
    std::vector<double> b{1e150, -1e150};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {1e150, -1e150}));
}

TEST(LuSolveTest, AComponentBeyondTheBoundOverflows)
{
    const FactorMatrix matrix({{1.0, 0.0}, {0.0, 1.0}});
    for (const double value : {std::nextafter(1e150, infinity), -std::nextafter(1e150, infinity), infinity, -infinity})
    {
        std::vector<double> b{1.0, value};

        EXPECT_EQ(textOfError([&] { matrix.luSolve(b.data()); }), "Value overflow") << value;
    }
}

TEST(LuSolveTest, AnOverflowLeavesTheFailingComponentAndSolvesThoseAfterIt)
{
    const FactorMatrix matrix({{2.0, 0.0, 0.0}, {3.0, 1e-149, 1.0}, {0.0, 0.0, 2.0}});
    std::vector<double> b{1.0, 104.0, 2.0};

    EXPECT_EQ(textOfError([&] { matrix.luSolve(b.data()); }), "Value overflow"); // (101 - 1) / 1e-149

    EXPECT_TRUE(sameBits(b, {1.0, 101.0, 1.0}));
}

TEST(LuSolveTest, ANaNSolutionDoesNotThrow)
{
    const FactorMatrix matrix({{1.0, 1.0}, {0.0, 1.0}});
    std::vector<double> b{1.0, notANumber};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {notANumber, notANumber}));
}

TEST(LuSolveTest, ADiagonalInsideTheBoundIsSingularAndLeavesThatEntry)
{
    for (const double diagonal : {0.0, -0.0, 1e-151, -1e-151, std::nextafter(1e-150, 0.0)})
    {
        const FactorMatrix matrix({{2.0, 0.0, 0.0}, {3.0, diagonal, 1.0}, {0.0, 0.0, 2.0}});
        std::vector<double> b{1.0, 4.0, 2.0};

        EXPECT_EQ(textOfError([&] { matrix.luSolve(b.data()); }), "Singular matrix") << diagonal;

        EXPECT_TRUE(sameBits(b, {1.0, 1.0, 1.0})) << diagonal;
    }
}

TEST(LuSolveTest, ADiagonalInsideTheBoundIsKnownBeforeManyAreSolved)
{
    EXPECT_TRUE(FactorMatrix({{1.0, 0.0}, {0.0, -1e-151}}).hasTinyDiagonal());
    EXPECT_TRUE(FactorMatrix({{0.0, 1.0}, {1.0, 1.0}}).hasTinyDiagonal());
    EXPECT_FALSE(FactorMatrix({{1e-150, 0.0}, {0.0, -1e-150}}).hasTinyDiagonal());
}

TEST(LuSolveTest, ADiagonalAtTheBoundIsDividedBy)
{
    const FactorMatrix matrix({{1e-150, 0.0}, {0.0, -1e-150}});
    std::vector<double> b{1e-150, 1e-150};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {1.0, -1.0}));
}

TEST(LuSolveTest, ANaNOrInfiniteDiagonalIsNotSingular)
{
    const FactorMatrix matrix({{notANumber, 0.0}, {0.0, infinity}});
    std::vector<double> b{1.0, 1.0};

    matrix.luSolve(b.data());

    EXPECT_TRUE(sameBits(b, {notANumber, 0.0}));
}

TEST(LuSolveTest, ASingularDiagonalIsFoundBeforeItsQuotientOverflows)
{
    const FactorMatrix matrix({{0.0, 0.0}, {0.0, 1.0}});
    std::vector<double> b{1e200, 1.0};

    EXPECT_EQ(textOfError([&] { matrix.luSolve(b.data()); }), "Singular matrix");
}

TEST(LuSolveTest, TheFailureOfTheLaterComponentComesFirst)
{
    const FactorMatrix matrix({{0.0, 0.0}, {0.0, 1.0}});
    std::vector<double> b{1.0, 1e200};

    EXPECT_EQ(textOfError([&] { matrix.luSolve(b.data()); }), "Value overflow");
}
