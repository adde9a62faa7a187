#ifndef FENN_KERNELS_SCALAR_COVARIANCE_KERNELS_H
#define FENN_KERNELS_SCALAR_COVARIANCE_KERNELS_H

#include "surrogatemodel_kriging/kernels/CovarianceKernels.h"

/// The covariance kernels as plain loops that skip nothing: the definitions that the vector forms are held against.
namespace fenn::kernels::scalar
{

void evaluateCovariances(const SphericalModel& model, const BoxedPoints& points, std::size_t begin, std::size_t end,
                         const double* targets, double* lines);

void sumCovariances(const SphericalModel& model, const BoxedPoints& points, const double* targets,
                    const PointWeights& weights, double* sums);

void sumLines(const double* lines, std::size_t numPts, const PointWeights& weights, double* sums);

void subtractCovariancesTwice(const SphericalModel& model, const BoxedPoints& points, std::size_t firstTarget,
                              const double* targets, const PointWeights& weights, const DoubledSums& sums);

} // namespace fenn::kernels::scalar

#endif
