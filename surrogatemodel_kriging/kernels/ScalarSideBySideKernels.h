#ifndef FENN_KERNELS_SCALAR_SIDE_BY_SIDE_KERNELS_H
#define FENN_KERNELS_SCALAR_SIDE_BY_SIDE_KERNELS_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/SideBySideKernels.h"

namespace fenn::kernels::scalar
{

/// The kernels of the same names system by system, as plain loops: the definitions that the vector forms are held
/// against. solveSideBySide leaves the columns as they were, allocates, and writes no solution where it sets a bit.
void evaluateSphericalSideBySide(const SphericalModel& model, const double* points, const double* targets,
                                 std::size_t numPts, double* columns, std::size_t numRows);
unsigned solveSideBySide(const double* columns, std::size_t numRows, double* solutions);

} // namespace fenn::kernels::scalar

#endif
