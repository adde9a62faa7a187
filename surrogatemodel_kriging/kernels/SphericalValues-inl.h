// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_SPHERICAL_VALUES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_SPHERICAL_VALUES_INL_H
#undef FENN_KERNELS_SPHERICAL_VALUES_INL_H
#else
#define FENN_KERNELS_SPHERICAL_VALUES_INL_H
#endif

#include <cstddef>

#include "hwy/highway.h"
#include "surrogatemodel_kriging/kernels/SphericalModel.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/// The sum of squares of the scaled differences; loadDifference gives that of a variable.
template <class D, class LoadDifference>
HWY_INLINE hn::Vec<D> lagsSquared(D d, const double* scales, std::size_t numInputVars,
                                  const LoadDifference& loadDifference)
{
    // A square is never -0.0, so that the sum may start with the first one instead of +0.0.
    auto sum = hn::Zero(d);
    if (numInputVars > 0)
    {
        const auto first = hn::Mul(loadDifference(d, 0), hn::Set(d, scales[0]));
        sum = hn::Mul(first, first);
    }
    for (std::size_t v = 1; v < numInputVars; ++v)
    {
        const auto difference = hn::Mul(loadDifference(d, v), hn::Set(d, scales[v]));
        sum = hn::Add(sum, hn::Mul(difference, difference));
    }
    return sum;
}

/// The spherical semivariogram between its two ends.
template <class D>
HWY_INLINE hn::Vec<D> valuesWithin(D d, const SphericalModel& model, hn::Vec<D> lagsSquared_)
{
    return hn::Add(hn::Mul(hn::Mul(hn::Sqrt(lagsSquared_), hn::Set(d, model.shapeCoefficient)),
                           hn::Sub(hn::Set(d, model.threeRangeSquared), lagsSquared_)),
                   hn::Set(d, model.nugget));
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
