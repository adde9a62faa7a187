#ifndef FENN_HOST_PICTURES_PICTURENODES_H
#define FENN_HOST_PICTURES_PICTURENODES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/targets/GridSpec.h"

namespace krige
{

/// The places that one panel shows: nodes along one or two inputs, the others fixed.
struct PanelNodes
{
    std::size_t x = 0; // inputs; the same one twice on a line
    std::size_t y = 0;
    std::vector<double> xNodes;
    std::vector<double> yNodes;      // of a line: one
    std::vector<double> fixedValues; // of every input; x and y do not have one

    bool isLine() const
    {
        return x == y;
    }

    std::size_t count() const
    {
        return xNodes.size() * yNodes.size();
    }

    /// The nodes as targets, x running fastest: one column per input.
    std::vector<std::vector<double>> calcTargets() const;
};

/// Takes from a grid that is estimated block by block what pictures show of it: every node along an axis or, where they
/// are more than a picture resolves, every so many of them. Memory does not grow with the grid.
class GridNodes
{
public:
    /// centre: one value per input; panels lie at the nodes next to it. mostPanels: of the pairs of inputs, the first.
    /// firstNode: of the grid, that is estimated first.
    GridNodes(const GridSpec& grid_, const std::vector<std::string>& inputNames, const std::vector<double>& centre,
              std::size_t mostPanels, std::uint64_t firstNode);

    /// values: of the next nodes in the order of the grid, one column per quantity, the first numQuantities of which
    /// are taken as wanted says.
    void collect(const std::vector<std::vector<double>>& values, const std::vector<std::size_t>& wanted);

    const std::vector<PanelNodes>& getPanels() const
    {
        return panels;
    }

    /// Per wanted quantity, in the order of PanelNodes::calcTargets; NaN where a node was not estimated.
    const std::vector<std::vector<double>>& getValues(std::size_t panel) const
    {
        return values[panel];
    }

    /// "shows 500 of 20000 nodes along 'x' and 480 of 20000 along 'y'"; empty where it shows all of them.
    std::string describeThinning() const;

private:
    /// Which nodes of an axis are shown.
    struct Steps
    {
        std::uint64_t first = 0;
        std::uint64_t step = 1;
        std::uint64_t count = 1;
    };

    /// Which nodes a panel shows, per axis of the grid.
    struct Choice
    {
        std::vector<Steps> steps;
        std::vector<std::size_t> strides; // in the panel
    };

    void addPanel(std::size_t x, std::size_t y, const std::vector<std::string>& inputNames,
                  const std::vector<std::uint64_t>& centreNodes);
    static Steps spread(std::uint64_t count, std::uint64_t most);

    GridSpec grid;
    std::vector<std::uint64_t> nodeOfAxis; // of the next node
    std::vector<PanelNodes> panels;
    std::vector<Choice> choices;
    std::vector<std::vector<std::vector<double>>> values; // per panel, per quantity
};

/// About so many targets of a stream of any length, evenly spread over it: one column per input.
class TargetSample
{
public:
    void collect(const std::vector<std::vector<double>>& targets);

    const std::vector<std::vector<double>>& getTargets() const
    {
        return kept;
    }

private:
    std::vector<std::vector<double>> kept;
    std::uint64_t step = 1;
    std::uint64_t untilNext = 0;
};

} // namespace krige

#endif
