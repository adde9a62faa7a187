#include "estimation/ClosestPair.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace fenn::estimation
{

namespace
{

using Columns = std::vector<std::vector<double>>;

std::vector<std::size_t> allIndices(const Columns& columns)
{
    std::vector<std::size_t> indices(columns.empty() ? 0 : columns[0].size());
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    return indices;
}

std::vector<std::size_t> sortedBy(const Columns& columns, std::size_t v)
{
    std::vector<std::size_t> order = allIndices(columns);
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b)
              { return columns[v][a] != columns[v][b] ? columns[v][a] < columns[v][b] : a < b; });
    return order;
}

bool areAtOnePlace(const Columns& columns, std::size_t a, std::size_t b)
{
    return std::all_of(columns.begin(), columns.end(),
                       [&](const std::vector<double>& column) { return column[a] == column[b]; });
}

/// By place, then by number.
std::vector<std::size_t> sortedByPlace(const Columns& columns)
{
    std::vector<std::size_t> order = allIndices(columns);
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b)
              {
                  for (const std::vector<double>& column : columns)
                  {
                      if (column[a] != column[b])
                          return column[a] < column[b];
                  }
                  return a < b;
              });
    return order;
}

class Search
{
public:
    Search(const Columns& columns_, const std::vector<double>& scales_) : columns(columns_), scales(scales_) {}

    /// Neighbours along each variable: the best of them is a bound for the look at all.
    ClosestPair run()
    {
        std::vector<std::size_t> sweepOrder;
        std::size_t sweepVar = 0;
        std::size_t mostDistinct = 0;
        for (std::size_t v = 0; v < columns.size(); ++v)
        {
            const std::vector<std::size_t> order = sortedBy(columns, v);
            std::size_t numDistinct = 1;
            for (std::size_t k = 1; k < order.size(); ++k)
            {
                offer(order[k - 1], order[k]);
                numDistinct += columns[v][order[k - 1]] != columns[v][order[k]] ? 1 : 0;
            }
            if (numDistinct > mostDistinct)
            {
                mostDistinct = numDistinct;
                sweepVar = v;
                sweepOrder = order;
            }
        }
        for (std::size_t k = 0; k < sweepOrder.size(); ++k)
        {
            for (std::size_t l = k + 1; l < sweepOrder.size(); ++l)
            {
                if (separation(sweepVar, sweepOrder[k], sweepOrder[l]) > best.distance)
                    break;
                offer(sweepOrder[k], sweepOrder[l]);
            }
        }
        return best;
    }

private:
    double separation(std::size_t v, std::size_t a, std::size_t b) const
    {
        return std::fabs((columns[v][a] - columns[v][b]) * scales[v]);
    }

    void offer(std::size_t a, std::size_t b)
    {
        double squared = 0.0;
        for (std::size_t v = 0; v < columns.size(); ++v)
            squared += separation(v, a, b) * separation(v, a, b);
        // A square that underflows must not make two places one.
        const double distance =
            squared > std::numeric_limits<double>::min() ? std::sqrt(squared) : largestSeparation(a, b);
        const ClosestPair pair{std::min(a, b), std::max(a, b), distance};
        if (distance != best.distance  ? distance < best.distance
            : pair.first != best.first ? pair.first < best.first
                                       : pair.second < best.second)
            best = pair;
    }

    double largestSeparation(std::size_t a, std::size_t b) const
    {
        double largest = 0.0;
        for (std::size_t v = 0; v < columns.size(); ++v)
            largest = std::max(largest, separation(v, a, b));
        return largest;
    }

    const Columns& columns;
    const std::vector<double>& scales;
    ClosestPair best{0, 0, std::numeric_limits<double>::infinity()};
};

} // namespace

ClosestPair findClosestPair(const std::vector<std::vector<double>>& columns, const std::vector<double>& scales)
{
    // Where many points stand at few places the look at all would be one at all pairs.
    const std::vector<std::size_t> order = sortedByPlace(columns);
    ClosestPair repeat{0, 0, std::numeric_limits<double>::infinity()};
    for (std::size_t k = 1; k < order.size(); ++k)
    {
        const bool isRepeat = areAtOnePlace(columns, order[k - 1], order[k]);
        if (isRepeat && (repeat.distance > 0.0 || order[k - 1] < repeat.first))
            repeat = {order[k - 1], order[k], 0.0};
    }
    return repeat.distance == 0.0 ? repeat : Search(columns, scales).run();
}

std::size_t countRepeats(const std::vector<std::vector<double>>& columns)
{
    const std::vector<std::size_t> order = sortedByPlace(columns);
    std::size_t count = 0;
    for (std::size_t k = 1; k < order.size(); ++k)
        count += areAtOnePlace(columns, order[k - 1], order[k]) ? 1 : 0;
    return count;
}

} // namespace fenn::estimation
