#ifndef FENN_KERNELS_SCALAR_SOLVE_KERNELS_H
#define FENN_KERNELS_SCALAR_SOLVE_KERNELS_H

#include "surrogatemodel_kriging/kernels/SolveKernels.h"

/// The operations of SolveKernels.h as plain loops: the definitions that the vector forms are held against.
namespace fenn::kernels::scalar
{

void substituteForward(const double* const* rows, std::size_t n, const StripGroup& forward);

bool substituteBack(const double* const* rows, std::size_t n, const StripGroup& back, double limit);

void permuteRows(const int* order, std::size_t n, const StripGroup& from, const StripGroup& to);

void sumWeighted(const StripGroup& weights, std::size_t count, const double* const* values, const bool* startsAtZero,
                 std::size_t numSums, double* sums);

void sumProducts(const StripGroup& a, const StripGroup& b, std::size_t count, double* sums);

} // namespace fenn::kernels::scalar

#endif
