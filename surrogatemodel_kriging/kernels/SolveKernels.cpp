#include "surrogatemodel_kriging/kernels/SolveKernels.h"

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/SolveKernels.cpp"
#include "hwy/foreach_target.h"

#include "surrogatemodel_kriging/kernels/SolveMixed-inl.h"
#include "surrogatemodel_kriging/kernels/SolveTiles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

using namespace solve;

void substituteForward(const double* const* rows, std::size_t n, const StripGroup& forward)
{
    const std::size_t numTiledRows = n / kForwardRows * kForwardRows;
    for (std::size_t first = 0; first < numTiledRows; first += kForwardRows)
    {
        for (std::size_t s = 0; s < forward.numStrips; ++s)
            forwardRows<kForwardRows>(rows, first, forward.strips + forward.stride * s, 0);
    }
    substituteTail(rows, numTiledRows, n, forward);
}

bool substituteBack(const double* const* rows, std::size_t n, const StripGroup& back, double limit)
{
    hn::Mask<Tag> isBeyond = hn::MaskFromVec(hn::Zero(Tag()));
    if (n > 0)
    {
        forStripsTogether(back, [&](auto numStrips, double* strips) HWY_ATTR
                          { backRows<numStrips()>(rows, n, strips, back.stride, limit, n - 1, n, isBeyond); });
    }
    return !hn::AllFalse(Tag(), isBeyond);
}

/// A template, so that shapes which never mix do without that class.
template <std::size_t kMixedFrom, std::size_t kStrips>
bool substituteBoth(const double* const* rows, std::size_t n, const StripGroup& back, const StripGroup& forward,
                    double limit)
{
    if constexpr (kMixedFrom != 0)
    {
        if (n >= kMixedFrom && back.numStrips == kStrips && forward.numStrips > 0)
            return MixedSubstitution<kStrips>(rows, n, back, forward, limit).run();
    }
    HWY_NAMESPACE::substituteForward(rows, n, forward);
    return HWY_NAMESPACE::substituteBack(rows, n, back, limit);
}

bool substituteBothWays(const double* const* rows, std::size_t n, const StripGroup& back, const StripGroup& forward,
                        double limit)
{
    return substituteBoth<kSubstitution.mixedFrom, kBackStrips>(rows, n, back, forward, limit);
}

void permuteRows(const int* order, std::size_t n, const StripGroup& from, const StripGroup& to)
{
    const Tag d;
    for (std::size_t s = 0; s < to.numStrips; ++s)
    {
        const double* source = from.strips + from.stride * s;
        double* target = to.strips + to.stride * s;
        for (std::size_t i = 0; i < n; ++i)
        {
            FENN_UNROLL
            for (std::size_t v = 0; v < stripWidth; v += kLanes)
                hn::Store(hn::Load(d, source + stripWidth * static_cast<std::size_t>(order[i]) + v), d,
                          target + stripWidth * i + v);
        }
    }
}

/// sumWeighted for kSums sums of kVecs vectors, entry j of vector v at weights[v] + stripWidth * j.
template <std::size_t kSums, std::size_t kVecs>
HWY_INLINE void sumTile(const double* const* weights, std::size_t count, const double* const* values,
                        const bool* startsAtZero, double* const (*sums)[kVecs])
{
    const Tag d;
    Vec totals[kSums][kVecs];
    FENN_UNROLL
    for (std::size_t o = 0; o < kSums; ++o)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
        {
            totals[o][v] = hn::Mul(hn::Load(d, weights[v]), hn::Set(d, values[o][0]));
            if (startsAtZero[o])
                totals[o][v] = hn::Add(hn::Zero(d), totals[o][v]);
        }
    }
    for (std::size_t j = 1; j < count; ++j)
    {
        Vec weight[kVecs];
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            weight[v] = hn::Load(d, weights[v] + stripWidth * j);
        FENN_UNROLL
        for (std::size_t o = 0; o < kSums; ++o)
        {
            const Vec value = hn::Set(d, values[o][j]);
            FENN_UNROLL
            for (std::size_t v = 0; v < kVecs; ++v)
                totals[o][v] = hn::Add(totals[o][v], hn::Mul(weight[v], value));
        }
    }
    FENN_UNROLL
    for (std::size_t o = 0; o < kSums; ++o)
    {
        FENN_UNROLL
        for (std::size_t v = 0; v < kVecs; ++v)
            hn::StoreU(totals[o][v], d, sums[o][v]);
    }
}

/// kVecs vectors of the group from vector firstVec on, counted through its strips, for all sums.
template <std::size_t kVecs>
void sumWeightedVecs(const StripGroup& weights, std::size_t firstVec, std::size_t count, const double* const* values,
                     const bool* startsAtZero, std::size_t numSums, double* sums)
{
    const double* lanes[kVecs];
    for (std::size_t v = 0; v < kVecs; ++v)
    {
        const std::size_t lane = (firstVec + v) * kLanes;
        lanes[v] = weights.strips + lane / stripWidth * weights.stride + lane % stripWidth;
    }
    double* places[4][kVecs];
    const std::size_t rowLength = weights.numStrips * stripWidth;
    std::size_t o = 0;
    for (; o < numSums;)
    {
        const std::size_t numPlaces = numSums - o < 4 ? numSums - o : 4;
        for (std::size_t p = 0; p < numPlaces; ++p)
        {
            for (std::size_t v = 0; v < kVecs; ++v)
                places[p][v] = sums + (o + p) * rowLength + (firstVec + v) * kLanes;
        }
        if (numPlaces == 4)
        {
            sumTile<4, kVecs>(lanes, count, values + o, startsAtZero + o, places);
            o += 4;
        }
        else if (numPlaces >= 2)
        {
            sumTile<2, kVecs>(lanes, count, values + o, startsAtZero + o, places);
            o += 2;
        }
        else
        {
            sumTile<1, kVecs>(lanes, count, values + o, startsAtZero + o, places);
            ++o;
        }
    }
}

void sumWeighted(const StripGroup& weights, std::size_t count, const double* const* values, const bool* startsAtZero,
                 std::size_t numSums, double* sums)
{
    constexpr std::size_t kVecs = kVecsPerStrip > 2 ? 2 : kVecsPerStrip;
    const std::size_t numVecs = weights.numStrips * kVecsPerStrip;
    std::size_t v = 0;
    for (; v + 2 * kVecs <= numVecs; v += 2 * kVecs)
        sumWeightedVecs<2 * kVecs>(weights, v, count, values, startsAtZero, numSums, sums);
    for (; v < numVecs; v += kVecs)
        sumWeightedVecs<kVecs>(weights, v, count, values, startsAtZero, numSums, sums);
}

void sumProducts(const StripGroup& a, const StripGroup& b, std::size_t count, double* sums)
{
    const Tag d;
    Vec totals[maxGroupStrips * kVecsPerStrip];
    const std::size_t numVecs = a.numStrips * kVecsPerStrip;
    for (std::size_t j = 0; j < count; ++j)
    {
        for (std::size_t v = 0; v < numVecs; ++v)
        {
            const std::size_t lane = v * kLanes;
            const std::size_t offset = stripWidth * j + lane % stripWidth;
            const Vec product = hn::Mul(hn::Load(d, a.strips + lane / stripWidth * a.stride + offset),
                                        hn::Load(d, b.strips + lane / stripWidth * b.stride + offset));
            totals[v] = j == 0 ? product : hn::Add(totals[v], product);
        }
    }
    for (std::size_t v = 0; v < numVecs; ++v)
        hn::StoreU(totals[v], d, sums + kLanes * v);
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fenn::kernels
{

HWY_EXPORT(substituteForward);
HWY_EXPORT(substituteBack);
HWY_EXPORT(substituteBothWays);
HWY_EXPORT(permuteRows);
HWY_EXPORT(sumWeighted);
HWY_EXPORT(sumProducts);

void substituteForward(const double* const* rows, std::size_t n, const StripGroup& forward)
{
    HWY_DYNAMIC_DISPATCH(substituteForward)(rows, n, forward);
}

bool substituteBack(const double* const* rows, std::size_t n, const StripGroup& back, double limit)
{
    return HWY_DYNAMIC_DISPATCH(substituteBack)(rows, n, back, limit);
}

bool substituteBothWays(const double* const* rows, std::size_t n, const StripGroup& back, const StripGroup& forward,
                        double limit)
{
    return HWY_DYNAMIC_DISPATCH(substituteBothWays)(rows, n, back, forward, limit);
}

void permuteRows(const int* order, std::size_t n, const StripGroup& from, const StripGroup& to)
{
    HWY_DYNAMIC_DISPATCH(permuteRows)(order, n, from, to);
}

void sumWeighted(const StripGroup& weights, std::size_t count, const double* const* values, const bool* startsAtZero,
                 std::size_t numSums, double* sums)
{
    HWY_DYNAMIC_DISPATCH(sumWeighted)(weights, count, values, startsAtZero, numSums, sums);
}

void sumProducts(const StripGroup& a, const StripGroup& b, std::size_t count, double* sums)
{
    HWY_DYNAMIC_DISPATCH(sumProducts)(a, b, count, sums);
}

} // namespace fenn::kernels
#endif
