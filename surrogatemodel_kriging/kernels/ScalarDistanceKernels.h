#ifndef FENN_SURROGATEMODEL_KRIGING_KERNELS_SCALARDISTANCEKERNELS_H
#define FENN_SURROGATEMODEL_KRIGING_KERNELS_SCALARDISTANCEKERNELS_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

/// The definitions of the operations in DistanceKernels.h as plain loops, which the vector forms are compared with.
namespace fenn::kernels::scalar
{

void groupMinima(const TargetAndPoints& points, const GroupMinima& minima);
std::size_t collectPtsWithin(const TargetAndPoints& points, const GroupMinima& minima, double threshold,
                             std::size_t first, int block, CandidateList& list);
double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest);

} // namespace fenn::kernels::scalar

#endif
