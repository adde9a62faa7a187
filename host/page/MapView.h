#ifndef FENN_HOST_PAGE_MAPVIEW_H
#define FENN_HOST_PAGE_MAPVIEW_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/model/SampleTable.h"
#include "host/targets/GridSpec.h"

namespace krige
{

/// A line or a plane of nodes through the inputs, on which estimates are shown: of one input a profile, of two the grid
/// itself, of more a slice, the other inputs held.
struct MapView
{
    std::size_t x = 0;            // the input that runs along it
    std::optional<std::size_t> y; // the input that runs upwards; none: a profile
    GridAxis xAxis;
    GridAxis yAxis;                            // of a profile a single node
    std::vector<double> heldValues;            // per input; of those that run it counts for nothing
    bool isSlice = false;                      // some input is held
    std::vector<std::vector<double>> values{}; // per prediction column, node by node, x running fastest

    std::size_t getNumNodes() const
    {
        return static_cast<std::size_t>(xAxis.count * yAxis.count);
    }

    /// "depth = 311, year = 1990", the held inputs; empty for none.
    std::string describeHeld(const std::vector<std::string>& inputNames) const;
};

/// Nodes over the samples' box, enough for the eye: 400 of one input, some 30000 of two, as many along either as its
/// length wants where both have one unit; 100 along each of more. An input that does not vary gets one.
GridSpec defaultGrid(const SampleTable& samples);

/// The views over a grid that has its ends. Inputs with a single node are held there; of more than two others every
/// pair makes a slice, the others held at the samples' means, mostSlices of them at most. Throws UsageError where no
/// input has two nodes, or a view has too many nodes for a page.
std::vector<MapView> chooseViews(const GridSpec& grid, const SampleTable& samples);

/// Slices of a page; more would hide what matters.
constexpr std::size_t mostSlices = 6;

/// The number of slices that all pairs would make.
std::size_t countPairs(const GridSpec& grid);

/// Predictions at targets, one column per input: one column per prediction column.
using PredictAt =
    std::function<void(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)>;

/// Fills in the view's values, block by block. Throws as predict.
void estimateView(MapView& view, const PredictAt& predict);

} // namespace krige

#endif
