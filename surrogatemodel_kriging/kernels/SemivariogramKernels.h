#ifndef FENN_KERNELS_SEMIVARIOGRAM_KERNELS_H
#define FENN_KERNELS_SEMIVARIOGRAM_KERNELS_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/SphericalModel.h"

namespace fenn::kernels
{

/// values[s * stride + t] of source s and target t, coordinate v of which is sources[v][s] or targets[v][t]:
///
///     h2 = sum over v ascending of ((sources[v][s] - targets[v][t]) * scales[v])^2, starting at +0.0
///     nugget where h2 <= 0, else 1 where h2 >= rangeSquared,
///     else sqrt(h2) * shapeCoefficient * (threeRangeSquared - h2) + nugget, from left to right
///
/// each operation rounded once. A NaN h2 takes the last form. stride is at least numTargets; nothing needs alignment.
void evaluateSpherical(const SphericalModel& model, const double* const* sources, std::size_t numSources,
                       const double* const* targets, std::size_t numTargets, double* values, std::size_t stride);

} // namespace fenn::kernels

#endif
