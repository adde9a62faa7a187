// The measuring itself: figures that are known beforehand, and damage that must be seen.

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/accuracy/HighPrecisionSystem.h"
#include "tests/accuracy/SystemFigures.h"
#include "tests/support/MatrixSamples.h"

using namespace fenn::test;

namespace
{

constexpr std::size_t size = 40;

class TestRatiosTest : public testing::Test
{
protected:
    TestRatiosTest() : numbers(31), rows(randomRows(MatrixKind::uniform, size, numbers))
    {
        allocateAndFill(matrix, rows);
        matrix.luDecompose();
    }

    RandomNumbers numbers;
    NaiveLinearSystem::Rows rows;
    Matrix matrix;
};

} // namespace

TEST_F(TestRatiosTest, AChangedFactorFailsTheFactorRatio)
{
    ASSERT_LT(calcFactorRatio(rows, matrix), ratioThreshold);

    matrix.getRow(3)[7] += 1e5 * relativeMachineEpsilon;

    EXPECT_GT(calcFactorRatio(rows, matrix), ratioThreshold);
}

TEST_F(TestRatiosTest, AnExchangedPairOfRowsFailsTheFactorRatio)
{
    rows[0].swap(rows[1]);

    EXPECT_GT(calcFactorRatio(rows, matrix), ratioThreshold);
}

TEST_F(TestRatiosTest, AChangedComponentFailsTheSolveRatio)
{
    const std::vector<double> b(size, 1.0);
    std::vector<double> x = b;
    matrix.luSolve(x.data());
    ASSERT_LT(calcSolveRatio(rows, b, x), ratioThreshold);

    double norm = 0.0;
    for (const double component : x)
        norm += std::fabs(component);
    x[5] += 1e3 * norm * relativeMachineEpsilon;

    EXPECT_GT(calcSolveRatio(rows, b, x), ratioThreshold);
}

TEST(TestRatioValuesTest, TheFactorRatioCountsHalfTheDistanceFromOneToTheNextDouble)
{
    Matrix matrix;
    allocateAndFill(matrix, {{1.0, 0.0}, {0.0, 1.0}});
    matrix.luDecompose();

    // The residual is 2^-50 in one column, n is 2, the norm 1 + 2^-50 to double precision.
    EXPECT_NEAR(calcFactorRatio({{1.0 + 0x1p-50, 0.0}, {0.0, 1.0}}, matrix), 4.0, 1e-12);
}

TEST(TestRatioValuesTest, TheSolveRatioIsTheResidualOverBothNorms)
{
    // b - A x = (2^-50, 0), norm(A) = 4, norm(x) = 2.
    EXPECT_EQ(calcSolveRatio({{4.0, 0.0}, {0.0, 1.0}}, {4.0 + 0x1p-50, 1.0}, {1.0, 1.0}), 1.0);
}

TEST(HighPrecisionSystemTest, TheConditionOfASmallSystemIsTheOneWorkedOutByHand)
{
    // The inverse is {{-2, 1}, {1.5, -0.5}}: norms 6 and 3.5.
    const HighPrecisionSystem system({{1.0, 2.0}, {3.0, 4.0}});

    EXPECT_FALSE(system.isSingular());
    EXPECT_DOUBLE_EQ(system.calcCondition(), 21.0);
}

TEST(HighPrecisionSystemTest, ASystemThatIsHopelessInDoublePrecisionIsSolved)
{
    // Both rows ask for a sum of 2, the second with a last bit more of the second unknown, which is 0 then.
    const HighPrecisionSystem system({{1.0, 1.0}, {1.0, 1.0 + 0x1p-52}});

    const HighVector solution = system.solve(toHighPrecision(std::vector<double>{2.0, 2.0}));

    EXPECT_EQ(solution[0].toDouble(), 2.0);
    EXPECT_EQ(solution[1].toDouble(), 0.0);
}

TEST(HighPrecisionSystemTest, ARowThatIsTheSumOfTheOthersMakesASystemSingular)
{
    // Elimination divides by 3 and leaves a rounded zero.
    const HighPrecisionSystem system({{3.0, 1.0, 2.0}, {1.0, 1.0, 1.0}, {4.0, 2.0, 3.0}});

    EXPECT_TRUE(system.isSingular());
    EXPECT_EQ(system.calcCondition(), std::numeric_limits<double>::infinity());
}
