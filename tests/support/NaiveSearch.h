#ifndef FENN_TESTS_SUPPORT_NAIVESEARCH_H
#define FENN_TESTS_SUPPORT_NAIVESEARCH_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <tuple>
#include <vector>

#include "tests/support/SampleBlocks.h"

namespace fenn::test
{

/// The nearest points as a full sort finds them: by squared distance, block and index, non-finite distances left out.
inline std::vector<SourcePointRef> naiveNearestPts(const SampleBlocks& samples, const std::vector<double>& target,
                                                   int maxPts)
{
    const double scale = samples.normalizers[0].getScale();
    std::vector<std::tuple<double, int, int>> candidates;
    for (const auto& [b, p] : samples.unblankedPts())
    {
        double sum = 0.0;
        for (std::size_t j = 0; j < target.size(); ++j)
        {
            const double x = samples.inputs[static_cast<std::size_t>(b)][j][static_cast<std::size_t>(p)];
            sum += ((target[j] - x) * scale) * ((target[j] - x) * scale);
        }
        if (sum < std::numeric_limits<double>::max())
            candidates.emplace_back(sum, b, p);
    }
    std::sort(candidates.begin(), candidates.end());
    std::vector<SourcePointRef> nearest;
    for (const auto& [distance, b, p] : candidates)
    {
        if (static_cast<int>(nearest.size()) < maxPts)
            nearest.emplace_back(b, p);
    }
    return nearest;
}

} // namespace fenn::test

#endif
