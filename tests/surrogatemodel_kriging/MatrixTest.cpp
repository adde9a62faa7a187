#include "surrogatemodel_kriging/Matrix.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/BitComparison.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Pivots of the given rows; fails when they cannot be factorised.
std::vector<int> pivotsOfRows(const NaiveLinearSystem::Rows& rows)
{
    Matrix matrix;
    allocateAndFill(matrix, rows);
    matrix.luDecompose();
    return pivotsOf(matrix);
}

/// The factor that a matrix of one element is replaced by.
double factorOfSingleElement(double element)
{
    Matrix matrix;
    allocateAndFill(matrix, {{element}});
    matrix.luDecompose();
    return matrix.getRow(0)[0];
}

} // namespace

TEST(MatrixTest, AMatrixThatWasNeverAllocatedHasDimensionZeroAndIsDestroyed)
{
    const Matrix matrix;

    EXPECT_EQ(matrix.getDimension(), 0);
}

TEST(MatrixTest, RowIOfAFreshMatrixStartsAtElementITimesN)
{
    for (const int n : {1, 2, 3, 7, 8, 9, 65})
    {
        Matrix matrix;
        matrix.allocate(n);
        ASSERT_EQ(matrix.getDimension(), n);
        for (int i = 0; i < n; ++i)
            EXPECT_EQ(matrix.getRow(i), matrix.getRow(0) + i * n) << "row " << i << " of " << n;
    }
}

TEST(MatrixTest, AFactorisationPermutesTheRowTableAndMovesNoRow)
{
    Matrix matrix;
    allocateAndFill(matrix, {{0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}});
    const double* start = matrix.getRow(0);

    matrix.luDecompose();

    EXPECT_EQ(matrix.getRow(0), start + 6);
    EXPECT_EQ(matrix.getRow(1), start);
    EXPECT_EQ(matrix.getRow(2), start + 3);
}

TEST(MatrixTest, ReadOnlyRowsAreTheSameRows)
{
    Matrix matrix;
    allocateAndFill(matrix, {{0.0, 1.0}, {1.0, 0.0}});
    matrix.luDecompose();
    const Matrix& readOnly = matrix;

    EXPECT_EQ(readOnly.getRow(0), matrix.getRow(0));
    EXPECT_EQ(readOnly.getRow(1), matrix.getRow(1));
}

TEST(MatrixTest, ARefilledMatrixFactorisesLikeAFreshOne)
{
    RandomNumbers numbers(20);
    for (std::size_t n = 1; n <= 70; n += 3)
    {
        SCOPED_TRACE(n);
        Matrix refilled;
        allocateAndFill(refilled, randomRows(MatrixKind::uniform, n, numbers));
        refilled.luDecompose();
        const auto rows = randomRows(MatrixKind::scaledRows, n, numbers);
        Matrix fresh;
        allocateAndFill(fresh, rows);
        fresh.luDecompose();

        fillMatrix(refilled, rows);
        refilled.luDecompose();

        EXPECT_TRUE(sameBits(elementsOf(refilled), elementsOf(fresh)));
        EXPECT_EQ(pivotsOf(refilled), pivotsOf(fresh));
    }
}

TEST(MatrixTest, DotProductSumsInAscendingOrder)
{
    Matrix matrix;
    matrix.allocate(4);
    const double a[] = {1.0, 1e16, -1e16, 1.0};
    const double ones[] = {1.0, 1.0, 1.0, 1.0};

    EXPECT_EQ(matrix.dotProduct(a, ones), 1.0); // 1 + 1e16 loses the first 1
}

TEST(MatrixTest, DotProductStartsWithItsFirstProduct)
{
    Matrix matrix;
    matrix.allocate(2);
    const double a[] = {-0.0, -0.0};
    const double b[] = {1.0, 2.0};

    EXPECT_TRUE(std::signbit(matrix.dotProduct(a, b)));
}

TEST(MatrixTest, DotProductOfNoDimensionIsTheFirstProduct)
{
    const Matrix matrix;
    const double a = 3.0;
    const double b = 5.0;

    EXPECT_EQ(matrix.dotProduct(&a, &b), 15.0);
}

TEST(MatrixTest, DotProductRoundsEachProductBeforeAddingIt)
{
    Matrix matrix;
    matrix.allocate(2);
    const double a[] = {1.0, 1.0 + 0x1p-30};
    const double b[] = {-1.0 - 0x1p-29, 1.0 + 0x1p-30}; // the exact sum is 2^-60

    EXPECT_EQ(matrix.dotProduct(a, b), 0.0);
}

TEST(MatrixTest, DotProductHasTheBitsOfTheNaiveSum)
{
    RandomNumbers numbers(21);
    for (int n = 1; n <= 70; ++n)
    {
        SCOPED_TRACE(n);
        Matrix matrix;
        matrix.allocate(n);
        std::vector<double> a, b;
        for (int i = 0; i < n; ++i)
        {
            a.push_back(numbers.next(-1.0, 1.0));
            b.push_back(numbers.next(-1.0, 1.0));
        }
        double sum = a[0] * b[0];
        for (std::size_t i = 1; i < a.size(); ++i)
            sum += a[i] * b[i];

        EXPECT_TRUE(sameBits(matrix.dotProduct(a.data(), b.data()), sum));
    }
}

TEST(MatrixTest, FactorsOfASmallMatrix)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, 2.0}, {4.0, 4.0}}); // scaled magnitudes 1/2 and 1: the rows are exchanged

    matrix.luDecompose();

    EXPECT_TRUE(sameBits(elementsOf(matrix), {4.0, 4.0, 0.25, 1.0}));
    EXPECT_EQ(pivotsOf(matrix), (std::vector<int>{1, 1}));
}

TEST(MatrixTest, FactorsAreMultipliedByTheReciprocalOfThePivot)
{
    Matrix matrix;
    allocateAndFill(matrix, {{5.0, 49.0}, {49.0, 49.0}});

    matrix.luDecompose();

    EXPECT_EQ(matrix.getRow(1)[0], 5.0 * (1.0 / 49.0));
    EXPECT_NE(matrix.getRow(1)[0], 5.0 / 49.0);
}

TEST(MatrixTest, AnElementRoundsEachProductBeforeSubtractingIt)
{
    const double factor = 1.0 + 0x1p-30; // its square rounds to 1 + 2^-29
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, factor, 0.0}, {factor, 1.0 + 0x1p-29, 2.0}, {0.0, 0.0, 1.0}});

    matrix.luDecompose();

    EXPECT_EQ(matrix.getPivot(0), 0); // scaled magnitude 1 / 1.0000000009 against 1 / 2
    EXPECT_EQ(matrix.getPivot(1), 2); // the exact zero at row 1 ties with row 2, the last one wins
    EXPECT_EQ(matrix.getRow(1)[1], 1e-150);
    EXPECT_EQ(matrix.getRow(2)[1], 0.0);
}

TEST(MatrixTest, AZeroSingleElementIsSingular)
{
    Matrix matrix;
    allocateAndFill(matrix, {{0.0}});

    EXPECT_EQ(textOfError([&] { matrix.luDecompose(); }), "Singular matrix");
}

TEST(MatrixTest, ARowOfZerosAndNaNIsSingularAndLeavesTheMatrixUnchanged)
{
    const NaiveLinearSystem::Rows rows{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {notANumber, 0.0, -0.0}};
    Matrix matrix;
    allocateAndFill(matrix, rows);
    const double* start = matrix.getRow(0);

    EXPECT_EQ(textOfError([&] { matrix.luDecompose(); }), "Singular matrix");

    EXPECT_TRUE(sameBits(elementsOf(matrix), elementsOf(rows)));
    EXPECT_EQ(matrix.getRow(0), start);
}

TEST(MatrixTest, AMatrixThatWasSingularFactorisesAfterRefilling)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, 2.0}, {0.0, 0.0}});
    EXPECT_EQ(textOfError([&] { matrix.luDecompose(); }), "Singular matrix");
    fillMatrix(matrix, {{1.0, 2.0}, {4.0, 4.0}});

    matrix.luDecompose();

    EXPECT_TRUE(sameBits(elementsOf(matrix), {4.0, 4.0, 0.25, 1.0}));
}

TEST(MatrixTest, ANaNElementIsPassedOverByTheRowScaling)
{
    // Scaled magnitudes 1, 0.5 and 0.5: a NaN that became the largest would take row 0 out of the contest.
    EXPECT_EQ(pivotsOfRows({{4.0, notANumber, 1.0}, {0.5, 1.0, 1.0}, {4.0, 8.0, 1.0}})[0], 0);
    // Scaled magnitudes 0.5 and 0.75: a NaN that restarted the search for the largest would give row 0 scaled
    // magnitude 4.
    EXPECT_EQ(pivotsOfRows(
                  {{4.0, 8.0, notANumber, 1.0}, {3.0, 4.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}})[0],
              1);
}

TEST(MatrixTest, TwoIdenticalRowsAreFactorisedWithATinyPivot)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, 2.0}, {1.0, 2.0}});

    matrix.luDecompose();

    EXPECT_TRUE(sameBits(elementsOf(matrix), {1.0, 2.0, 1.0, 1e-150}));
}

TEST(MatrixTest, LastOfEquallyGoodRowsBecomesThePivot)
{
    EXPECT_EQ(pivotsOfRows({{1.0, 0.0, 0.0}, {-1.0, 1.0, 0.0}, {1.0, 0.0, 1.0}})[0], 2);
}

TEST(MatrixTest, LastOfEquallyGoodRowsBecomesThePivotInEveryColumnOfAnySize)
{
    for (std::size_t n = 1; n <= 70; ++n)
    {
        NaiveLinearSystem::Rows rows(n, std::vector<double>(n, 0.0));
        for (std::size_t i = 0; i < n; ++i)
            rows[i][i] = rows[i][0] = 1.0;

        EXPECT_EQ(pivotsOfRows(rows)[0], static_cast<int>(n) - 1) << n << " rows";
    }
}

TEST(MatrixTest, OfRowsWithoutMeritTheLastBecomesThePivot)
{
    EXPECT_EQ(pivotsOfRows({{0.0, 1.0, 2.0}, {-0.0, 2.0, 1.0}, {0.0, 1.0, 1.0}})[0], 2);
}

TEST(MatrixTest, ANaNMeritNeverWins)
{
    EXPECT_EQ(pivotsOfRows({{notANumber, 1.0}, {0.0, 2.0}})[0], 1);
    EXPECT_EQ(pivotsOfRows({{0.0, 1.0}, {notANumber, 2.0}})[0], 0);
}

TEST(MatrixTest, AColumnOfNaNMeritsKeepsRowJ)
{
    EXPECT_EQ(pivotsOfRows({{notANumber, 1.0, 0.0}, {notANumber, 2.0, 0.0}, {notANumber, 4.0, 1.0}}),
              (std::vector<int>{0, 1, 2}));
}

TEST(MatrixTest, ARowWithAnInfiniteElementHasNoMeritElsewhere)
{
    EXPECT_EQ(pivotsOfRows({{1e-100, 1.0}, {1e100, infinity}})[0], 0);
}

TEST(MatrixTest, TheScaleOfRowJGoesWithTheRowThatIsExchangedForIt)
{
    // Column 0 exchanges rows 0 and 1. In column 1 the former row 0, of scale 1/100, has 99 to offer and scaled
    // magnitude 0.99; row 2 has 4, of scale 1/4.
    EXPECT_EQ(pivotsOfRows({{1.0, 100.0, 0.0}, {1.0, 1.0, 1.0}, {0.0, 4.0, 4.0}}), (std::vector<int>{1, 2, 2}));
}

TEST(MatrixTest, MeritIsTheScaleTimesTheMagnitude)
{
    // 1/3 rounded, times 3, is 1 exactly, and 1/49 times 49 is below 1: a quotient of both would be a tie.
    EXPECT_EQ(pivotsOfRows({{3.0, 1.0}, {49.0, 1.0}})[0], 0);
}

TEST(MatrixTest, TinyNegativePivotIsReplacedByAPositiveOne)
{
    EXPECT_EQ(factorOfSingleElement(-1e-200), 1e-150);
}

TEST(MatrixTest, TinyPositivePivotIsReplaced)
{
    EXPECT_EQ(factorOfSingleElement(1e-200), 1e-150);
}

TEST(MatrixTest, ARowOfTheSmallestMagnitudeIsNotSingular)
{
    EXPECT_EQ(factorOfSingleElement(5e-324), 1e-150);
}

TEST(MatrixTest, PivotsAtTheBoundAreKept)
{
    EXPECT_EQ(factorOfSingleElement(1e-150), 1e-150);
    EXPECT_EQ(factorOfSingleElement(-1e-150), -1e-150);
}

TEST(MatrixTest, PivotsJustInsideTheBoundAreReplaced)
{
    EXPECT_EQ(factorOfSingleElement(std::nextafter(1e-150, 0.0)), 1e-150);
    EXPECT_EQ(factorOfSingleElement(std::nextafter(-1e-150, 0.0)), 1e-150);
}

TEST(MatrixTest, AZeroMultiplierIsNotSkipped)
{
    Matrix matrix;
    allocateAndFill(matrix,
                    {{0.0, 1.0}, {1.0, infinity}}); // both without a scaled magnitude: the last row becomes the pivot

    matrix.luDecompose();

    EXPECT_EQ(matrix.getRow(1)[0], 0.0);
    EXPECT_TRUE(std::isnan(matrix.getRow(1)[1])); // 1 - 0 * infinity
}

TEST(MatrixTest, AZeroMultiplierTurnsTheSignOfAZero)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, -1.0, 0.0}, {0.0, -0.0, 1.0}, {0.0, 0.0, 1.0}});

    matrix.luDecompose();

    EXPECT_EQ(pivotsOf(matrix), (std::vector<int>{0, 2, 2}));
    EXPECT_TRUE(sameBits(matrix.getRow(2)[1], 0.0)); // -0 - 0 * -1, then times 1e150
}
