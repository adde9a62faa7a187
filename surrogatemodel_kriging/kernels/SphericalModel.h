#ifndef FENN_KERNELS_SPHERICAL_MODEL_H
#define FENN_KERNELS_SPHERICAL_MODEL_H

#include <cstddef>

namespace fenn::kernels
{

/// A spherical semivariogram's constants; see SphericalSemivariogram.
struct SphericalModel
{
    const double* scales; // one per input variable
    std::size_t numInputVars;
    double rangeSquared;
    double nugget;
    double shapeCoefficient;
    double threeRangeSquared;
};

} // namespace fenn::kernels

#endif
