#ifndef FENN_KERNELS_SCALAR_SEMIVARIOGRAM_KERNELS_H
#define FENN_KERNELS_SCALAR_SEMIVARIOGRAM_KERNELS_H

#include "surrogatemodel_kriging/kernels/SemivariogramKernels.h"

/// The operation of SemivariogramKernels.h as plain loops: the definition that the vector form is held against.
namespace fenn::kernels::scalar
{

void evaluateSpherical(const SphericalModel& model, const double* const* sources, std::size_t numSources,
                       const double* const* targets, std::size_t numTargets, double* values, std::size_t stride);

/// The semivariogram at a squared lag.
double valueAtLag(const SphericalModel& model, double lagSquared);

} // namespace fenn::kernels::scalar

#endif
