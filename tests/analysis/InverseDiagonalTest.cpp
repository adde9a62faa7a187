#include "analysis/InverseDiagonal.h"

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/Matrix.h"

namespace
{

using fenn::analysis::calcInverseDiagonal;

void fill(Matrix& matrix)
{
    matrix.allocate(2);        // | 2 1 |, whose inverse is |  1 -1 |
    matrix.getRow(0)[0] = 2.0; // | 1 1 |            | -1  2 |
    matrix.getRow(0)[1] = 1.0;
    matrix.getRow(1)[0] = 1.0;
    matrix.getRow(1)[1] = 1.0;
    matrix.luDecompose();
}

TEST(InverseDiagonalTest, HoldsTheDiagonalOfTheInverse)
{
    Matrix matrix;
    fill(matrix);

    EXPECT_EQ(calcInverseDiagonal(matrix, 2), (std::vector<double>{1.0, 2.0}));
}

TEST(InverseDiagonalTest, HoldsTheFirstElementsWhenFewerAreAskedFor)
{
    Matrix matrix;
    fill(matrix);

    EXPECT_EQ(calcInverseDiagonal(matrix, 1), (std::vector<double>{1.0}));
}

} // namespace
