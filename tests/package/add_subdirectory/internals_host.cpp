// Uses a class behind the boundary, through the static library.

#include <cstdio>

#include "surrogatemodel_kriging/Matrix.h"

int main()
{
    Matrix matrix;
    matrix.allocate(2);
    matrix.getRow(0)[0] = 0.0;
    matrix.getRow(0)[1] = 2.0;
    matrix.getRow(1)[0] = 4.0;
    matrix.getRow(1)[1] = 0.0;
    matrix.luDecompose();
    double solution[] = {6.0, 8.0};
    matrix.luSolve(solution);
    std::printf("%g %g\n", solution[0], solution[1]);
    return 0;
}
