#include "estimation/SpatialOrder.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace fenn::estimation
{

namespace
{

using Index = std::vector<std::size_t>::iterator;

class Halving
{
public:
    Halving(const std::vector<std::vector<double>>& columns_, const std::vector<double>& scales_, std::size_t boxSize_)
        : columns(columns_), scales(scales_), boxSize(boxSize_)
    {
    }

    void order(Index first, Index last) const
    {
        const auto count = static_cast<std::size_t>(std::distance(first, last));
        if (count <= boxSize)
        {
            std::sort(first, last);
            return;
        }
        const std::size_t numBoxes = (count + boxSize - 1) / boxSize;
        const Index middle = first + static_cast<std::ptrdiff_t>((numBoxes + 1) / 2 * boxSize);
        const std::vector<double>& values = columns[findLongestVariable(first, last)];
        // A total order: which half an index falls into then depends on no standard library.
        std::nth_element(first, middle, last,
                         [&](std::size_t a, std::size_t b)
                         { return values[a] != values[b] ? values[a] < values[b] : a < b; });
        order(first, middle);
        order(middle, last);
    }

private:
    std::size_t findLongestVariable(Index first, Index last) const
    {
        std::size_t longest = 0;
        double longestExtent = -1.0;
        for (std::size_t v = 0; v < columns.size(); ++v)
        {
            double low = columns[v][*first];
            double high = low;
            for (Index i = first; i != last; ++i)
            {
                low = std::min(low, columns[v][*i]);
                high = std::max(high, columns[v][*i]);
            }
            const double extent = std::fabs((high - low) * scales[v]);
            if (extent > longestExtent)
            {
                longest = v;
                longestExtent = extent;
            }
        }
        return longest;
    }

    const std::vector<std::vector<double>>& columns;
    const std::vector<double>& scales;
    const std::size_t boxSize;
};

} // namespace

std::vector<std::size_t> orderInSpace(const std::vector<std::vector<double>>& columns,
                                      const std::vector<double>& scales, std::size_t boxSize)
{
    std::vector<std::size_t> order(columns[0].size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    Halving(columns, scales, boxSize).order(order.begin(), order.end());
    return order;
}

} // namespace fenn::estimation
