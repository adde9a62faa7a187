#include "estimation/PointIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fenn::estimation
{

namespace
{

using kernels::PointTree;

bool isFinite(double value)
{
    return std::isfinite(value);
}

} // namespace

struct PointIndex::Key
{
    double value;
    std::uint32_t position;

    bool operator<(const Key& other) const
    {
        return value < other.value;
    }
};

PointIndex::Neighbours::Neighbours(std::size_t maxPts_)
    : maxPts(maxPts_), found(maxPts_), distances(maxPts_), places(maxPts_)
{
}

void PointIndex::Neighbours::makeRoom(std::size_t numCoords)
{
    const std::size_t size = kernels::treeSearchWorkspaceSize(numCoords, maxPts);
    if (size <= workspaceSize)
        return;
    workspaceSize = 0;
    workspace.allocate(size);
    workspaceSize = size;
}

PointIndex::PointIndex(const Coords& coords, std::size_t numPts) : numVars(coords.size())
{
    order.reserve(numPts);
    for (std::size_t p = 0; p < numPts; ++p)
    {
        if (std::all_of(coords.begin(), coords.end(), [p](const double* values) { return isFinite(values[p]); }))
            order.push_back(static_cast<std::uint32_t>(p));
    }
    const std::size_t numLeaves = (order.size() + PointTree::leafSize - 1) / PointTree::leafSize;
    nodes.resize(numLeaves);
    if (numVars > 0)
    {
        std::vector<Key> keys(order.size());
        divide(coords, 0, numLeaves, keys);
    }
    fillLeaves(coords);
}

/// Splits the points of some leaves at the middle leaf, along the variable in which they spread most. Those of one
/// place stay together: repeats of a place would otherwise all be looked at by each search that comes near.
void PointIndex::divide(const Coords& coords, std::size_t firstLeaf, std::size_t endLeaf, std::vector<Key>& keys)
{
    if (endLeaf - firstLeaf < 2)
        return;
    const std::size_t middle = firstLeaf + (endLeaf - firstLeaf) / 2;
    std::uint32_t* const begin = order.data() + firstLeaf * PointTree::leafSize;
    std::uint32_t* const end = order.data() + std::min(endLeaf * PointTree::leafSize, order.size());

    PointTree::Node& node = nodes[middle];
    double widest = -1.0;
    for (std::size_t v = 0; v < numVars; ++v)
    {
        double low = coords[v][*begin];
        double high = low;
        for (const std::uint32_t* position = begin; position != end; ++position)
        {
            low = std::min(low, coords[v][*position]);
            high = std::max(high, coords[v][*position]);
        }
        if (high - low > widest)
        {
            widest = high - low;
            node.variable = static_cast<std::uint32_t>(v);
        }
    }
    node.isOnePlace = widest == 0.0;
    if (node.isOnePlace)
    {
        std::sort(begin, end);
        return;
    }

    const double* const values = coords[node.variable];
    std::transform(begin, end, keys.begin(), [=](std::uint32_t position) { return Key{values[position], position}; });
    const auto firstKey = keys.begin();
    const auto middleKey = firstKey + static_cast<std::ptrdiff_t>((middle - firstLeaf) * PointTree::leafSize);
    std::nth_element(firstKey, middleKey, firstKey + (end - begin));
    node.lowerEnd = std::max_element(firstKey, middleKey)->value;
    node.upperBegin = middleKey->value;
    std::transform(firstKey, firstKey + (end - begin), begin, [](const Key& key) { return key.position; });

    divide(coords, firstLeaf, middle, keys);
    divide(coords, middle, endLeaf, keys);
}

void PointIndex::fillLeaves(const Coords& coords)
{
    const std::size_t numPlaces = nodes.size() * PointTree::leafSize;
    leaves.allocate(numPlaces * numVars);
    for (std::size_t place = 0; place < numPlaces; ++place)
    {
        double* const values =
            leaves.data() + place / PointTree::leafSize * numVars * PointTree::leafSize + place % PointTree::leafSize;
        for (std::size_t v = 0; v < numVars; ++v)
            values[v * PointTree::leafSize] =
                place < order.size() ? coords[v][order[place]] : std::numeric_limits<double>::infinity();
    }
}

void PointIndex::find(const double* target, Neighbours& nearest) const
{
    nearest.numFound = 0;
    if (nearest.maxPts == 0 || order.empty() || !std::all_of(target, target + numVars, isFinite))
        return;
    if (numVars > 0)
        searchTree(target, nearest);
    else
        takeFirst(nearest);
}

const std::vector<std::uint32_t>& PointIndex::getOrder() const
{
    return order;
}

void PointIndex::searchTree(const double* target, Neighbours& nearest) const
{
    nearest.makeRoom(numVars);
    const PointTree tree{leaves.data(), nodes.data(), order.data(), numVars, order.size()};
    const std::size_t count = kernels::findNearestInTree(tree, target, nearest.maxPts, nearest.distances.data(),
                                                         nearest.places.data(), nearest.workspace.data());
    for (std::size_t i = 0; i < count; ++i)
        nearest.found[i] = {nearest.distances[i], order[nearest.places[i]], nearest.places[i]};
    nearest.numFound = count;
}

/// Without variables all points coincide.
void PointIndex::takeFirst(Neighbours& nearest) const
{
    nearest.numFound = std::min(nearest.maxPts, order.size());
    for (std::size_t i = 0; i < nearest.numFound; ++i)
        nearest.found[i] = {0.0, order[i], static_cast<std::uint32_t>(i)};
}

} // namespace fenn::estimation
