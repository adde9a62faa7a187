#include "surrogatemodel_kriging/NearestCandidates.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

namespace fenn
{

namespace
{

// More groups than this only make their minima overflow the cache: groups then grow.
constexpr std::size_t maxNumGroups = 1024;

} // namespace

template <typename T>
NearestCandidates<T>::NearestCandidates(std::size_t numNearest_)
    : numNearest(numNearest_),
      limit(3 * numNearest_ + 32),
      distances(limit + kernels::distanceGroup + 1),
      positions(distances.size())
{
}

template <typename T>
void NearestCandidates<T>::begin(std::size_t numPts, std::size_t numStretches, T limitBound_, double relativeError,
                                 double absoluteError_)
{
    limitBound = limitBound_;
    // (1 + r)^5, with room for the roundings of setBound itself: r is above ten roundings of T.
    relativeFactor = 1.0 + 6.0 * relativeError;
    absoluteError = absoluteError_;

    groupSize = kernels::distanceGroup;
    while (numPts / groupSize > maxNumGroups)
        groupSize *= 2;
    if (distances.size() < limit + groupSize + 1)
    {
        distances.resize(limit + groupSize + 1);
        positions.resize(distances.size());
    }
    const std::size_t maxGroups = numPts / groupSize + numStretches;
    if (maxGroups > minimaCapacity)
    {
        // Not a vector, which would write zeros first.
        minima.reset(new T[maxGroups * kernels::minimaPerGroup]);
        minimaCapacity = maxGroups;
    }
    // Eight times as many values as points are asked for: then hardly two of those share one.
    const std::size_t numFoldedGroups = std::min(maxGroups, numNearest / 2 + 2);
    folded.assign(numFoldedGroups * kernels::minimaPerGroup, std::numeric_limits<T>::infinity());
    nextGroup = 0;
}

template <typename T>
void NearestCandidates<T>::measure(const T* const* coords, std::size_t numVars, std::size_t count, const T* target)
{
    kernels::groupMinima(coords, numVars, count, target, groupSize, minima.get(), folded.data(), nextGroup,
                         folded.size() / kernels::minimaPerGroup);
    nextGroup += numGroupsOf(count);
}

template <typename T>
bool NearestCandidates<T>::startCollection(std::size_t rank)
{
    numCandidates = 0;
    nextGroup = 0;
    const bool canTell = rank <= folded.size() / 2;
    setBound(canTell ? std::min(limitBound, kernels::boundOfNearest(folded.data(), folded.size(), rank)) : limitBound);
    return canTell;
}

template <typename T>
bool NearestCandidates<T>::isComplete()
{
    const auto numWithin =
        std::count_if(distances.begin(), distances.begin() + static_cast<std::ptrdiff_t>(numCandidates),
                      [this](T distance) { return distance <= bound; });
    if (static_cast<std::size_t>(numWithin) < numNearest)
        return false;
    tighten();
    return true;
}

template <typename T>
std::size_t NearestCandidates<T>::collectSome(const T* const* coords, std::size_t numVars, std::size_t first,
                                              std::size_t count, const T* target)
{
    return kernels::collectPtsWithin(coords, numVars, first, count, target, threshold, groupSize,
                                     minima.get() + nextGroup * kernels::minimaPerGroup, distances.data(),
                                     positions.data(), numCandidates, limit);
}

template <typename T>
void NearestCandidates<T>::setBound(T bound_)
{
    bound = bound_;
    const double radius = (std::sqrt(static_cast<double>(bound)) + 3.0 * absoluteError) * relativeFactor;
    threshold = static_cast<T>(radius * radius);
}

/// Lowers the bound by what the candidates tell, of which there are at least N within it.
template <typename T>
bool NearestCandidates<T>::tighten()
{
    const T lower = kernels::boundOfNearest(distances.data(), numCandidates, numNearest);
    if (lower < bound)
        setBound(lower);
    std::size_t numKept = 0;
    for (std::size_t i = 0; i < numCandidates; ++i)
    {
        // Without a branch: which of them stay cannot be foretold.
        distances[numKept] = distances[i];
        positions[numKept] = positions[i];
        numKept += distances[i] <= threshold ? 1 : 0;
    }
    numCandidates = numKept;
    return numCandidates <= limit;
}

template class NearestCandidates<float>;
template class NearestCandidates<double>;

} // namespace fenn
