#include "surrogatemodel_kriging/kernels/ScalarDistanceKernels.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "surrogatemodel_kriging/kernels/DistanceKernels.h"

namespace fenn::kernels::scalar
{

namespace
{

template <typename T>
T squaredDistance(const T* const* coords, std::size_t numVars, const T* target, std::size_t p)
{
    T sum = 0;
    for (std::size_t v = 0; v < numVars; ++v)
    {
        const T difference = target[v] - coords[v][p];
        sum += difference * difference;
    }
    return sum;
}

template <typename T>
void minimaOf(const T* const* coords, std::size_t numVars, std::size_t count, const T* target, std::size_t groupSize,
              T* minima, T* folded, std::size_t firstGroup, std::size_t numFoldedGroups)
{
    const std::size_t numGroups = (count + groupSize - 1) / groupSize;
    std::fill_n(minima + firstGroup * minimaPerGroup, numGroups * minimaPerGroup, std::numeric_limits<T>::infinity());
    for (std::size_t p = 0; p < count; ++p)
    {
        const T q = squaredDistance(coords, numVars, target, p);
        const std::size_t group = firstGroup + p / groupSize;
        T& minimum = minima[group * minimaPerGroup + p % minimaPerGroup];
        T& foldedMinimum = folded[group % numFoldedGroups * minimaPerGroup + p % minimaPerGroup];
        if (q < minimum)
            minimum = q;
        if (q < foldedMinimum)
            foldedMinimum = q;
    }
}

template <typename T, typename Position>
std::size_t collect(const T* const* coords, std::size_t numVars, std::size_t first, std::size_t count, const T* target,
                    T threshold, std::size_t groupSize, const T* minima, T* distances, Position* positions,
                    std::size_t& numHits, std::size_t limit)
{
    for (std::size_t p = first; p < count; p += groupSize)
    {
        if (numHits > limit)
            return p;
        const std::size_t groupEnd = std::min(p + groupSize, count);
        for (std::size_t j = 0; j < minimaPerGroup; ++j)
        {
            if (!(minima[p / groupSize * minimaPerGroup + j] <= threshold))
                continue;
            for (std::size_t q = p + j; q < groupEnd; q += minimaPerGroup)
            {
                const T distance = squaredDistance(coords, numVars, target, q);
                if (!(distance <= threshold))
                    continue;
                distances[numHits] = distance;
                positions[numHits] = static_cast<Position>(q);
                ++numHits;
            }
        }
    }
    return count;
}

template <typename T, typename Bits>
T bound(const T* distances, std::size_t count, std::size_t numNearest)
{
    const T smallest = *std::min_element(distances, distances + count);
    const T largest = *std::max_element(distances, distances + count);
    Bits low = 0;
    Bits high = 0;
    std::memcpy(&low, &smallest, sizeof low);
    std::memcpy(&high, &largest, sizeof high);
    T threshold = largest;
    std::size_t numWithin = count;
    while (low < high && numWithin > numNearest + numNearest / 8)
    {
        const Bits middle = low + (high - low) / 2;
        std::memcpy(&threshold, &middle, sizeof threshold);
        const auto within = static_cast<std::size_t>(
            std::count_if(distances, distances + count, [&](T distance) { return distance <= threshold; }));
        if (within >= numNearest)
        {
            high = middle;
            numWithin = within;
        }
        else
            low = middle + 1;
    }
    std::memcpy(&threshold, &high, sizeof threshold);
    return threshold;
}

} // namespace

void groupMinima(const float* const* coords, std::size_t numVars, std::size_t count, const float* target,
                 std::size_t groupSize, float* minima, float* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups)
{
    minimaOf(coords, numVars, count, target, groupSize, minima, folded, firstGroup, numFoldedGroups);
}

std::size_t collectPtsWithin(const float* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const float* target, float threshold, std::size_t groupSize, const float* minima,
                             float* distances, std::uint32_t* positions, std::size_t& numHits, std::size_t limit)
{
    return collect(coords, numVars, first, count, target, threshold, groupSize, minima, distances, positions, numHits,
                   limit);
}

float boundOfNearest(const float* distances, std::size_t count, std::size_t numNearest)
{
    return bound<float, std::uint32_t>(distances, count, numNearest);
}

void groupMinima(const double* const* coords, std::size_t numVars, std::size_t count, const double* target,
                 std::size_t groupSize, double* minima, double* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups)
{
    minimaOf(coords, numVars, count, target, groupSize, minima, folded, firstGroup, numFoldedGroups);
}

std::size_t collectPtsWithin(const double* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const double* target, double threshold, std::size_t groupSize, const double* minima,
                             double* distances, std::uint64_t* positions, std::size_t& numHits, std::size_t limit)
{
    return collect(coords, numVars, first, count, target, threshold, groupSize, minima, distances, positions, numHits,
                   limit);
}

double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest)
{
    return bound<double, std::uint64_t>(distances, count, numNearest);
}

} // namespace fenn::kernels::scalar
