#ifndef FENN_KERNELS_SCALAR_CHOLESKY_KERNELS_H
#define FENN_KERNELS_SCALAR_CHOLESKY_KERNELS_H

#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"

/// The Cholesky kernels as plain loops: the definitions that the vector forms are held against.
namespace fenn::kernels::scalar
{

/// workspace: room for numRows reciprocals.
bool factoriseCholesky(const PackedTriangle& triangle, double* workspace);

void substituteLower(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group,
                     std::size_t firstTile = 0);

void substituteLowerTransposed(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group);

void subtractColumnProducts(const StripGroup& a, const StripGroup& b, std::size_t begin, std::size_t end, double* block,
                            std::size_t rowLength);

} // namespace fenn::kernels::scalar

#endif
