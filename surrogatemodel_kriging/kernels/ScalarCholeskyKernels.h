#ifndef FENN_KERNELS_SCALAR_CHOLESKY_KERNELS_H
#define FENN_KERNELS_SCALAR_CHOLESKY_KERNELS_H

#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"

/// The Cholesky kernels as plain loops: the definitions that the vector forms are held against.
namespace fenn::kernels::scalar
{

/// workspace: room for numRows reciprocals.
bool factoriseCholesky(const PackedTriangle& triangle, double* workspace);

void substituteLower(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group);

void substituteLowerTransposed(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group);

} // namespace fenn::kernels::scalar

#endif
