#include "surrogatemodel_kriging/kernels/ScalarDistanceKernels.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace fenn::kernels::scalar
{

namespace
{

double squaredDistance(const TargetAndPoints& points, std::size_t p)
{
    double sum = 0.0;
    for (std::size_t v = 0; v < points.numVars; ++v)
    {
        const double difference = (points.target[v] - points.coords[v][p]) * points.scale;
        sum += difference * difference;
    }
    return sum;
}

} // namespace

void groupMinima(const TargetAndPoints& points, const GroupMinima& minima)
{
    const std::size_t numGroups = (points.numPts + minima.groupSize - 1) / minima.groupSize;
    std::fill_n(minima.ofGroups, numGroups * minimaPerGroup, std::numeric_limits<double>::infinity());
    for (std::size_t p = 0; p < points.numPts; ++p)
    {
        const double q = squaredDistance(points, p);
        const std::size_t group = p / minima.groupSize;
        const std::size_t entry = (minima.firstFolded + group) % minima.numFolded;
        double& minimum = minima.ofGroups[group * minimaPerGroup + p % minimaPerGroup];
        double& foldedMinimum = minima.folded[entry * minimaPerGroup + p % minimaPerGroup];
        if (q < minimum)
            minimum = q;
        if (q < foldedMinimum)
            foldedMinimum = q;
    }
}

std::size_t collectPtsWithin(const TargetAndPoints& points, const GroupMinima& minima, double threshold,
                             std::size_t first, int block, CandidateList& list)
{
    for (std::size_t p = first; p < points.numPts; p += minima.groupSize)
    {
        if (list.count > list.limit)
            return p;
        const std::size_t groupEnd = std::min(p + minima.groupSize, points.numPts);
        for (std::size_t j = 0; j < minimaPerGroup; ++j)
        {
            if (!(minima.ofGroups[p / minima.groupSize * minimaPerGroup + j] <= threshold))
                continue;
            for (std::size_t q = p + j; q < groupEnd; q += minimaPerGroup)
            {
                const double distance = squaredDistance(points, q);
                if (distance <= threshold)
                    list.candidates[list.count++] = {distance, block, static_cast<int>(q)};
            }
        }
    }
    return points.numPts;
}

double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest)
{
    const double smallest = *std::min_element(distances, distances + count);
    const double largest = *std::max_element(distances, distances + count);
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    std::memcpy(&low, &smallest, sizeof low);
    std::memcpy(&high, &largest, sizeof high);
    double bound = largest;
    std::size_t numWithin = count;
    while (low < high && numWithin > numNearest + numNearest / 8)
    {
        const std::uint64_t middle = low + (high - low) / 2;
        std::memcpy(&bound, &middle, sizeof bound);
        const auto within = static_cast<std::size_t>(
            std::count_if(distances, distances + count, [&](double distance) { return distance <= bound; }));
        if (within >= numNearest)
        {
            high = middle;
            numWithin = within;
        }
        else
            low = middle + 1;
    }
    std::memcpy(&bound, &high, sizeof bound);
    return bound;
}

} // namespace fenn::kernels::scalar
