#include "surrogatemodel_kriging/TargetRanges.h"

#include <algorithm>
#include <cstddef>

namespace fenn
{

std::vector<TargetRange> splitTargets(int numTargets, int maxThreads)
{
    const int total = std::max(numTargets, 0);
    const int chunk = total / maxThreads;
    if (chunk == 0 || maxThreads == 1)
        return {{0, total}};
    std::vector<TargetRange> ranges;
    ranges.reserve(static_cast<std::size_t>(maxThreads));
    for (int k = 0; k < maxThreads - 1; ++k)
        ranges.push_back({k * chunk, chunk});
    const int lastFirst = (maxThreads - 1) * chunk;
    ranges.push_back({lastFirst, total - lastFirst});
    return ranges;
}

} // namespace fenn
