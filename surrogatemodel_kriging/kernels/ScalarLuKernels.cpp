#include "surrogatemodel_kriging/kernels/ScalarLuKernels.h"

#include <cmath>
#include <utility>

#include "surrogatemodel_kriging/kernels/PivotRule.h"

namespace fenn::kernels::scalar
{

namespace
{

double subtractProducts(double value, const double* row, double* const* rows, std::size_t j, std::size_t count)
{
    for (std::size_t k = 0; k < count; ++k)
        value = value - row[k] * rows[k][j];
    return value;
}

} // namespace

bool factoriseLu(double** rows, std::size_t n, int* pivots, double* scale)
{
    for (std::size_t i = 0; i < n; ++i)
    {
        double big = 0.0;
        for (std::size_t k = 0; k < n; ++k)
            if (std::abs(rows[i][k]) > big)
                big = std::abs(rows[i][k]);
        if (big == 0.0)
            return false;
        scale[i] = 1.0 / big;
    }

    for (std::size_t j = 0; j < n; ++j)
    {
        for (std::size_t i = 0; i < j; ++i)
            rows[i][j] = subtractProducts(rows[i][j], rows[i], rows, j, i);

        double best = leastScaledMagnitude;
        std::size_t pivot = j;
        for (std::size_t i = j; i < n; ++i)
        {
            rows[i][j] = subtractProducts(rows[i][j], rows[i], rows, j, j);
            const double scaledMagnitude = scale[i] * std::abs(rows[i][j]);
            if (isBetterPivot(scaledMagnitude, best))
            {
                best = scaledMagnitude;
                pivot = i;
            }
        }
        if (pivot != j)
        {
            std::swap(rows[pivot], rows[j]);
            scale[pivot] = scale[j];
        }
        pivots[j] = static_cast<int>(pivot);

        if (isTinyPivot(rows[j][j]))
            rows[j][j] = leastPivot;
        if (j + 1 < n)
        {
            const double reciprocal = 1.0 / rows[j][j];
            for (std::size_t i = j + 1; i < n; ++i)
                rows[i][j] = rows[i][j] * reciprocal;
        }
    }
    return true;
}

} // namespace fenn::kernels::scalar
