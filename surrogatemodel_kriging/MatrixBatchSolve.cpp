// The operations of Matrix that solve for many right-hand sides side by side.

#include <cmath>
#include <cstddef>
#include <numeric>

#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/Matrix.h"

using fenn::effectivelyInfinite;
using fenn::effectivelyZero;

void Matrix::calcRowOrder(std::vector<int>& order) const
{
    order.resize(static_cast<std::size_t>(dimension));
    std::iota(order.begin(), order.end(), 0);
    for (std::size_t j = 0; j < order.size(); ++j)
        std::swap(order[j], order[static_cast<std::size_t>(pivotTable[j])]);
}

bool Matrix::hasTinyDiagonal() const
{
    for (int i = 0; i < dimension; ++i)
    {
        if (std::fabs(rowTable[i][i]) < effectivelyZero)
            return true;
    }
    return false;
}

bool Matrix::substituteGroups(const fenn::kernels::StripGroup& back, const fenn::kernels::StripGroup& forward) const
{
    const auto n = static_cast<std::size_t>(dimension);
    if (back.numStrips == 0)
    {
        fenn::kernels::substituteForward(rowTable, n, forward);
        return false;
    }
    if (forward.numStrips == 0)
        return fenn::kernels::substituteBack(rowTable, n, back, effectivelyInfinite);
    return fenn::kernels::substituteBothWays(rowTable, n, back, forward, effectivelyInfinite);
}
