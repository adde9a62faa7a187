#include "surrogatemodel_kriging/kernels/CovarianceKernels.h"

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/CovarianceKernels.cpp"
#include "hwy/foreach_target.h"

#include "hwy/highway.h"

#include "surrogatemodel_kriging/kernels/SphericalValues-inl.h"
#include "surrogatemodel_kriging/kernels/Unroll.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

using Tag = hn::CappedTag<double, stripWidth>;
using Vec = hn::Vec<Tag>;

constexpr std::size_t kLanes = hn::MaxLanes(Tag());
static_assert(stripWidth % kLanes == 0 && pointsPerBox % pointsPerTerm == 0);

/// Number of input variables that a loop is written for; 0 takes any.
template <std::size_t kVars>
HWY_INLINE std::size_t numVars(const SphericalModel& model)
{
    return kVars == 0 ? model.numInputVars : kVars;
}

/// 1 - gamma, rounded once, at a squared lag.
HWY_INLINE Vec covarianceAt(const SphericalModel& model, Vec lags)
{
    const Tag d;
    const Vec one = hn::Set(d, 1.0);
    const Vec within = hn::Sub(one, valuesWithin(d, model, lags));
    const auto beyond = hn::Ge(lags, hn::Set(d, model.rangeSquared));
    const auto coincident = hn::Le(lags, hn::Zero(d));
    return hn::IfThenElse(coincident, hn::Sub(one, hn::Set(d, model.nugget)), hn::IfThenZeroElse(beyond, within));
}

HWY_INLINE Vec gammaAt(const SphericalModel& model, Vec lags)
{
    const Tag d;
    const auto beyond = hn::Ge(lags, hn::Set(d, model.rangeSquared));
    const auto coincident = hn::Le(lags, hn::Zero(d));
    return hn::IfThenElse(coincident, hn::Set(d, model.nugget),
                          hn::IfThenElse(beyond, hn::Set(d, 1.0), valuesWithin(d, model, lags)));
}

/// lines[8 * (j - begin) + t] = valueAt(squared lag of point j and target t) for j in [begin, end).
template <std::size_t kVars, class ValueAt>
HWY_INLINE void evaluateLines(const SphericalModel& model, const BoxedPoints& points, std::size_t begin,
                              std::size_t end, const double* HWY_RESTRICT targets, double* HWY_RESTRICT lines,
                              const ValueAt& valueAt)
{
    const Tag d;
    const SphericalModel own = model; // no line can alias it
    for (std::size_t lane = 0; lane < stripWidth; lane += kLanes)
    {
        double* line = lines + lane;
        for (std::size_t j = begin; j < end; ++j, line += stripWidth)
        {
            const Vec lags = lagsSquared(d, own.scales, numVars<kVars>(own),
                                         [&](Tag, std::size_t v) HWY_ATTR {
                                             return hn::Sub(hn::Set(d, points.coordinates[v][j]),
                                                            hn::LoadU(d, targets + stripWidth * v + lane));
                                         });
            hn::StoreU(valueAt(own, lags), d, line);
        }
    }
}

/// Whether every point of a box lies beyond the range of all eight targets, by the very operations that lags are
/// computed with: rounding is monotonic, so that no lag of a point in the box comes out below that of the box. With a
/// range of zero a point may still coincide with a target.
template <std::size_t kVars>
HWY_INLINE bool isBeyondRange(const SphericalModel& model, const BoxedPoints& points, std::size_t box,
                              const double* targets)
{
    const Tag d;
    for (std::size_t lane = 0; lane < stripWidth; lane += kLanes)
    {
        const Vec lags = lagsSquared(d, model.scales, numVars<kVars>(model),
                                     [&](Tag, std::size_t v) HWY_ATTR
                                     {
                                         const Vec target = hn::LoadU(d, targets + stripWidth * v + lane);
                                         const Vec below = hn::Sub(hn::Set(d, points.low[v][box]), target);
                                         const Vec above = hn::Sub(target, hn::Set(d, points.high[v][box]));
                                         return hn::Max(hn::Max(below, above), hn::Zero(d));
                                     });
        const auto beyond = hn::Ge(lags, hn::Set(d, model.rangeSquared));
        if (!hn::AllTrue(d, hn::And(beyond, hn::Gt(lags, hn::Zero(d)))))
            return false;
    }
    return true;
}

/// The sum of eight vectors, pair by pair.
HWY_INLINE Vec sumPairs(const Vec (&p)[pointsPerTerm])
{
    return hn::Add(hn::Add(hn::Add(p[0], p[1]), hn::Add(p[2], p[3])),
                   hn::Add(hn::Add(p[4], p[5]), hn::Add(p[6], p[7])));
}

/// Adds the terms of the points [begin, end), whose lines start at lines, to the sums and their errors.
HWY_INLINE void addTerms(const double* HWY_RESTRICT lines, std::size_t begin, std::size_t end,
                         const PointWeights& weights, double* HWY_RESTRICT sums, double* HWY_RESTRICT errors)
{
    const Tag d;
    for (std::size_t j = begin; j < end; j += pointsPerTerm, lines += stripWidth * pointsPerTerm)
    {
        const std::size_t count = end - j < pointsPerTerm ? end - j : pointsPerTerm;
        for (std::size_t lane = 0; lane < stripWidth; lane += kLanes)
        {
            Vec c[pointsPerTerm];
            FENN_UNROLL
            for (std::size_t i = 0; i < pointsPerTerm; ++i)
                c[i] = i < count ? hn::LoadU(d, lines + stripWidth * i + lane) : hn::Zero(d);
            const double* weight = weights.values + j;
            for (std::size_t o = 0; o < weights.numOutputs; ++o, weight += weights.stride)
            {
                Vec products[pointsPerTerm];
                if (count == pointsPerTerm)
                {
                    FENN_UNROLL
                    for (std::size_t i = 0; i < pointsPerTerm; ++i)
                        products[i] = hn::Mul(hn::Set(d, weight[i]), c[i]);
                }
                else
                {
                    for (std::size_t i = 0; i < pointsPerTerm; ++i)
                        products[i] = i < count ? hn::Mul(hn::Set(d, weight[i]), c[i]) : hn::Zero(d);
                }
                const Vec term = sumPairs(products);
                const std::size_t place = stripWidth * o + lane;
                const Vec before = hn::LoadU(d, sums + place);
                const Vec after = hn::Add(before, term);
                const Vec part = hn::Sub(after, before);
                const Vec error = hn::Add(hn::Sub(before, hn::Sub(after, part)), hn::Sub(term, part));
                hn::StoreU(after, d, sums + place);
                hn::StoreU(hn::Add(hn::LoadU(d, errors + place), error), d, errors + place);
            }
        }
    }
}

HWY_INLINE void clear(double* values, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        values[i] = 0.0;
}

HWY_INLINE void addErrors(double* sums, const double* errors, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        sums[i] += errors[i];
}

template <std::size_t kVars>
void evaluateCovariancesOf(const SphericalModel& model, const BoxedPoints& points, std::size_t begin, std::size_t end,
                           const double* targets, double* lines)
{
    for (std::size_t j = begin; j < end; j += pointsPerBox)
    {
        const std::size_t endOfBox = end - j < pointsPerBox ? end : j + pointsPerBox;
        if (isBeyondRange<kVars>(model, points, j / pointsPerBox, targets))
            clear(lines + stripWidth * j, stripWidth * (endOfBox - j));
        else
            evaluateLines<kVars>(model, points, j, endOfBox, targets, lines + stripWidth * j,
                                 [](const SphericalModel& own, Vec lags) HWY_ATTR { return covarianceAt(own, lags); });
    }
}

template <std::size_t kVars>
void sumCovariancesOf(const SphericalModel& model, const BoxedPoints& points, const double* targets,
                      const PointWeights& weights, double* sums)
{
    HWY_ALIGN double lines[stripWidth * pointsPerBox];
    double* errors = sums + stripWidth * weights.numOutputs;
    clear(sums, 2 * stripWidth * weights.numOutputs);
    for (std::size_t j = 0; j < points.numPts; j += pointsPerBox)
    {
        if (isBeyondRange<kVars>(model, points, j / pointsPerBox, targets))
            continue;
        const std::size_t end = points.numPts - j < pointsPerBox ? points.numPts : j + pointsPerBox;
        evaluateLines<kVars>(model, points, j, end, targets, lines,
                             [](const SphericalModel& own, Vec lags) HWY_ATTR { return covarianceAt(own, lags); });
        addTerms(lines, j, end, weights, sums, errors);
    }
    addErrors(sums, errors, stripWidth * weights.numOutputs);
}

void evaluateCovariances(const SphericalModel& model, const BoxedPoints& points, std::size_t begin, std::size_t end,
                         const double* targets, double* lines)
{
    switch (model.numInputVars)
    {
    case 1:
        return evaluateCovariancesOf<1>(model, points, begin, end, targets, lines);
    case 2:
        return evaluateCovariancesOf<2>(model, points, begin, end, targets, lines);
    case 3:
        return evaluateCovariancesOf<3>(model, points, begin, end, targets, lines);
    default:
        return evaluateCovariancesOf<0>(model, points, begin, end, targets, lines);
    }
}

void sumCovariances(const SphericalModel& model, const BoxedPoints& points, const double* targets,
                    const PointWeights& weights, double* sums)
{
    switch (model.numInputVars)
    {
    case 1:
        return sumCovariancesOf<1>(model, points, targets, weights, sums);
    case 2:
        return sumCovariancesOf<2>(model, points, targets, weights, sums);
    case 3:
        return sumCovariancesOf<3>(model, points, targets, weights, sums);
    default:
        return sumCovariancesOf<0>(model, points, targets, weights, sums);
    }
}

void sumLines(const double* lines, std::size_t numPts, const PointWeights& weights, double* sums)
{
    double* errors = sums + stripWidth * weights.numOutputs;
    clear(sums, 2 * stripWidth * weights.numOutputs);
    addTerms(lines, 0, numPts, weights, sums, errors);
    addErrors(sums, errors, stripWidth * weights.numOutputs);
}

/// Vectors of halves of doubles, as Halves.
struct VecHalves
{
    HWY_INLINE explicit VecHalves(Vec a)
    {
        const Vec scaled = hn::Mul(hn::Set(Tag(), 134217729.0), a);
        high = hn::Sub(scaled, hn::Sub(scaled, a));
        low = hn::Sub(a, high);
    }

    Vec high;
    Vec low;
};

/// The part of subtractCovariancesTwice of points [begin, end), whose gammas stand in lines.
HWY_INLINE void subtractTwice(const double* HWY_RESTRICT lines, std::size_t begin, std::size_t end,
                              const PointWeights& weights, const DoubledSums& sums)
{
    const Tag d;
    const Vec one = hn::Set(d, 1.0);
    for (std::size_t o = 0; o < weights.numOutputs; ++o)
    {
        for (std::size_t lane = 0; lane < stripWidth; lane += kLanes)
        {
            Vec high = hn::LoadU(d, sums.high + stripWidth * o + lane);
            Vec low = hn::LoadU(d, sums.low + stripWidth * o + lane);
            for (std::size_t j = begin; j < end; ++j)
            {
                const Vec gamma = hn::LoadU(d, lines + stripWidth * (j - begin) + lane);
                const Vec c = hn::Sub(one, gamma);
                const Vec cError = hn::Sub(hn::Sub(one, c), gamma);
                const Vec weight = hn::Set(d, weights.values[o * weights.stride + j]);
                const VecHalves x(weight), y(c);

                const Vec product = hn::Mul(weight, c);
                const Vec remainder = hn::Sub(
                    hn::Sub(hn::Sub(product, hn::Mul(x.high, y.high)), hn::Mul(x.low, y.high)), hn::Mul(x.high, y.low));
                const Vec productError = hn::Sub(hn::Mul(x.low, y.low), remainder);

                const Vec difference = hn::Sub(high, product);
                const Vec part = hn::Sub(difference, high);
                const Vec differenceError = hn::Sub(hn::Sub(high, hn::Sub(difference, part)), hn::Add(product, part));

                high = difference;
                low = hn::Add(low, hn::Sub(hn::Sub(differenceError, productError), hn::Mul(weight, cError)));
            }
            hn::StoreU(high, d, sums.high + stripWidth * o + lane);
            hn::StoreU(low, d, sums.low + stripWidth * o + lane);
        }
    }
}

void subtractCovariancesTwice(const SphericalModel& model, const BoxedPoints& points, std::size_t firstTarget,
                              const double* targets, const PointWeights& weights, const DoubledSums& sums)
{
    HWY_ALIGN double lines[stripWidth * pointsPerBox];
    for (std::size_t begin = 0; begin < points.numPts; begin += pointsPerBox)
    {
        const std::size_t end = points.numPts - begin < pointsPerBox ? points.numPts : begin + pointsPerBox;
        evaluateLines<0>(model, points, begin, end, targets, lines,
                         [](const SphericalModel& own, Vec lags) HWY_ATTR { return gammaAt(own, lags); });
        for (std::size_t t = 0; t < stripWidth; ++t)
        {
            if (firstTarget + t >= begin && firstTarget + t < end)
                lines[stripWidth * (firstTarget + t - begin) + t] = 0.0;
        }
        subtractTwice(lines, begin, end, weights, sums);
    }
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(evaluateCovariances);
HWY_EXPORT(sumCovariances);
HWY_EXPORT(sumLines);
HWY_EXPORT(subtractCovariancesTwice);

void evaluateCovariances(const SphericalModel& model, const BoxedPoints& points, std::size_t begin, std::size_t end,
                         const double* targets, double* lines)
{
    HWY_DYNAMIC_DISPATCH(evaluateCovariances)(model, points, begin, end, targets, lines);
}

void sumCovariances(const SphericalModel& model, const BoxedPoints& points, const double* targets,
                    const PointWeights& weights, double* sums)
{
    HWY_DYNAMIC_DISPATCH(sumCovariances)(model, points, targets, weights, sums);
}

void sumLines(const double* lines, std::size_t numPts, const PointWeights& weights, double* sums)
{
    HWY_DYNAMIC_DISPATCH(sumLines)(lines, numPts, weights, sums);
}

void subtractCovariancesTwice(const SphericalModel& model, const BoxedPoints& points, std::size_t firstTarget,
                              const double* targets, const PointWeights& weights, const DoubledSums& sums)
{
    HWY_DYNAMIC_DISPATCH(subtractCovariancesTwice)(model, points, firstTarget, targets, weights, sums);
}

} // namespace fenn::kernels
#endif
