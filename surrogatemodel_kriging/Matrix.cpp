#include "surrogatemodel_kriging/Matrix.h"

#include <cstddef>
#include <utility>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/kernels/LuKernels.h"

namespace
{

using fenn::effectivelyInfinite;
using fenn::effectivelyZero;

bool isEffectivelyZero(double value)
{
    return value > -effectivelyZero && value < effectivelyZero;
}

// From here on a second thread gains more than it costs to start it.
constexpr int minSharedDimension = 256;

} // namespace

Matrix::~Matrix() = default;

void Matrix::allocate(int n)
{
    const auto size = static_cast<std::size_t>(n);
    elementStore.allocate(size * size);
    factorisationStore.allocate(fenn::kernels::luWorkspaceSize(size));
    rowPointerStore.resize(size);
    pivotStore.resize(size);
    for (std::size_t i = 0; i < size; ++i)
        rowPointerStore[i] = elementStore.data() + i * size;
    rowTable = rowPointerStore.data();
    dimension = n;
}

int Matrix::getPivot(int j) const
{
    return pivotTable[j];
}

double Matrix::dotProduct(const double* a, const double* b) const
{
    double sum = a[0] * b[0];
    for (int i = 1; i < dimension; ++i)
        sum += a[i] * b[i];
    return sum;
}

void Matrix::luDecompose()
{
    pivotTable = pivotStore.data();
    if (!fenn::kernels::factoriseLu(rowTable, rowPointerStore.size(), pivotTable, factorisationStore.data()))
        throw SurrogateModelInterface::Error("Singular matrix");
}

void Matrix::luDecompose(int numPieces, const Executor& execute)
{
    if (numPieces < 2 || dimension < minSharedDimension)
        return luDecompose();

    pivotTable = pivotStore.data();
    const std::size_t size = rowPointerStore.size();
    const auto maxPieces = static_cast<std::size_t>(numPieces);
    fenn::ElementStore workspace;
    workspace.allocate(fenn::kernels::luWorkspaceSize(size, maxPieces));
    fenn::kernels::SharedLu shared;
    fenn::kernels::prepareSharedLu(shared, rowTable, size, pivotTable, workspace.data(), maxPieces);
    execute([&shared] { fenn::kernels::workOnSharedLu(shared); });
    if (shared.singular)
        throw SurrogateModelInterface::Error("Singular matrix");
}

void Matrix::luSolve(double* b) const
{
    int first = -1; // the first row whose right-hand side is not zero
    for (int i = 0; i < dimension; ++i)
    {
        const double* row = rowTable[i];
        double sum = std::exchange(b[pivotTable[i]], b[i]);
        // Leading zeros are really skipped, not multiplied: an infinite or NaN factor there must not spoil the sum.
        if (first >= 0)
        {
            for (int k = first; k < i; ++k)
                sum -= row[k] * b[k];
        }
        else if (sum != 0.0)
            first = i;
        b[i] = sum;
    }
    for (int i = dimension - 1; i >= 0; --i)
    {
        // DELIBERATE: ascending k, the most recently found component first. The column-oriented form would subtract
        // the products in another order and change bits.
        // Test: LuSolveTest.BackSubstitutionSubtractsInAscendingOrder
        const double* row = rowTable[i];
        double sum = b[i];
        for (int k = i + 1; k < dimension; ++k)
            sum -= row[k] * b[k];
        if (isEffectivelyZero(row[i]))
            throw SurrogateModelInterface::Error("Singular matrix");
        const double x = sum / row[i];
        if (x > effectivelyInfinite || x < -effectivelyInfinite)
            throw SurrogateModelInterface::Error("Value overflow");
        b[i] = x;
    }
}
