#include "analysis/InverseDiagonal.h"

#include <algorithm>

#include "surrogatemodel_kriging/Matrix.h"

namespace fenn::analysis
{

std::vector<double> calcInverseDiagonal(const Matrix& factorised, std::size_t count, const Progress& progress)
{
    std::vector<double> diagonal(count);
    std::vector<double> column(static_cast<std::size_t>(factorised.getDimension()));
    for (std::size_t i = 0; i < count; ++i)
    {
        std::fill(column.begin(), column.end(), 0.0);
        column[i] = 1.0;
        factorised.luSolve(column.data());
        diagonal[i] = column[i];
        report(progress, i + 1, count);
    }
    return diagonal;
}

} // namespace fenn::analysis
