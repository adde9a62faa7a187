#include "host/targets/OutputSize.h"

#include <algorithm>

#include "host/text/NumberText.h"

namespace krige
{

namespace
{

/// With the delimiter behind it.
double meanLengthOfNodes(const GridAxis& axis)
{
    constexpr std::uint64_t numLooked = 100;
    const std::uint64_t count = std::min(axis.count, numLooked);
    std::size_t length = 0;
    for (std::uint64_t i = 0; i < count; ++i)
        length += formatNumber(axis.getNode(axis.count / count * i)).size() + 1;
    return static_cast<double>(length) / static_cast<double>(count);
}

} // namespace

double forecastBytes(const GridSpec& grid, std::uint64_t numNodes, std::size_t numValues, bool isBinary)
{
    constexpr double bytesOfDouble = 8.0;
    constexpr double lengthOfValue = 19.0; // 17 digits, a point, the delimiter
    double bytesPerNode = static_cast<double>(numValues) * (isBinary ? bytesOfDouble : lengthOfValue);
    for (const GridAxis& axis : grid.axes)
        bytesPerNode += isBinary ? 0.0 : meanLengthOfNodes(axis);
    return static_cast<double>(numNodes) * bytesPerNode;
}

} // namespace krige
