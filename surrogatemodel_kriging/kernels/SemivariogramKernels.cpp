#include "surrogatemodel_kriging/kernels/SemivariogramKernels.h"

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/SemivariogramKernels.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

#include "surrogatemodel_kriging/kernels/SphericalValues-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

constexpr std::size_t kMostLanes = hn::MaxLanes(hn::CappedTag<double, 8>());

/// One vector of pairs. Sources, or targets, or both lie in lanes: loadDifference gives source minus target of v.
template <class D, class LoadDifference>
HWY_INLINE void evaluateVector(D d, const SphericalModel& model, const LoadDifference& loadDifference, double* values)
{
    const auto lags = lagsSquared(d, model.scales, model.numInputVars, loadDifference);
    const auto nugget = hn::Set(d, model.nugget);
    const auto beyond = hn::Ge(lags, hn::Set(d, model.rangeSquared));
    const auto coincident = hn::Le(lags, hn::Zero(d));
    const auto within = valuesWithin(d, model, lags);
    hn::StoreU(hn::IfThenElse(coincident, nugget, hn::IfThenElse(beyond, hn::Set(d, 1.0), within)), d, values);
}

/// Calls evaluate(d, i) so that vectors of d's lanes from i on cover [0, count), at least one vector long. The last one
/// may overlap the one before: it repeats the same values.
template <class D, class Evaluate>
HWY_INLINE void coverWith(D d, std::size_t count, const Evaluate& evaluate)
{
    constexpr std::size_t lanes = hn::MaxLanes(D());
    for (std::size_t i = 0; i + lanes <= count; i += lanes)
        evaluate(d, i);
    if (count % lanes != 0)
        evaluate(d, count - lanes);
}

template <class Evaluate>
HWY_INLINE void cover(std::size_t count, const Evaluate& evaluate)
{
    if (kMostLanes >= 8 && count >= 8)
        coverWith(hn::CappedTag<double, 8>(), count, evaluate);
    else if (kMostLanes >= 4 && count >= 4)
        coverWith(hn::CappedTag<double, 4>(), count, evaluate);
    else if (kMostLanes >= 2 && count >= 2)
        coverWith(hn::CappedTag<double, 2>(), count, evaluate);
    else
        coverWith(hn::CappedTag<double, 1>(), count, evaluate);
}

/// One target, its coordinates at index t of each array, against all sources.
void evaluateAcrossSources(const SphericalModel& model, const double* const* sources, std::size_t numSources,
                           const double* const* targets, std::size_t t, double* values)
{
    cover(numSources,
          [&](auto d, std::size_t s) HWY_ATTR
          {
              evaluateVector(
                  d, model,
                  [&](auto dd, std::size_t v) HWY_ATTR
                  { return hn::Sub(hn::LoadU(dd, sources[v] + s), hn::Set(dd, targets[v][t])); },
                  values + s);
          });
}

void evaluateSpherical(const SphericalModel& model, const double* const* sources, std::size_t numSources,
                       const double* const* targets, std::size_t numTargets, double* values, std::size_t stride)
{
    if (numTargets == 1 && stride == 1)
    {
        evaluateAcrossSources(model, sources, numSources, targets, 0, values);
        return;
    }
    for (std::size_t s = 0; s < numSources; ++s)
    {
        cover(numTargets,
              [&](auto d, std::size_t t) HWY_ATTR
              {
                  evaluateVector(
                      d, model,
                      [&](auto dd, std::size_t v) HWY_ATTR
                      { return hn::Sub(hn::Set(dd, sources[v][s]), hn::LoadU(dd, targets[v] + t)); },
                      values + s * stride + t);
              });
    }
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(evaluateSpherical);

void evaluateSpherical(const SphericalModel& model, const double* const* sources, std::size_t numSources,
                       const double* const* targets, std::size_t numTargets, double* values, std::size_t stride)
{
    HWY_DYNAMIC_DISPATCH(evaluateSpherical)(model, sources, numSources, targets, numTargets, values, stride);
}

} // namespace fenn::kernels
#endif
