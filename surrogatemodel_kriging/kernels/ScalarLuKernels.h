#ifndef FENN_KERNELS_SCALAR_LU_KERNELS_H
#define FENN_KERNELS_SCALAR_LU_KERNELS_H

#include <cstddef>

namespace fenn::kernels::scalar
{

/// kernels::factoriseLu as plain loops: the definition that the vector form is held against. scale is room for n
/// doubles.
bool factoriseLu(double** rows, std::size_t n, int* pivots, double* scale);

} // namespace fenn::kernels::scalar

#endif
