#ifndef FENN_HOST_TARGETS_GRIDSPEC_H
#define FENN_HOST_TARGETS_GRIDSPEC_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/geo/GeoModule.h"

namespace krige
{

/// Cells side by side along an axis, from one edge on: what nodes are the centres of.
struct CellRun
{
    double size = 0.0;
    double edge = 0.0;        // the outer edge of the first cell
    bool isUpperEdge = false; // of the last cell: cells are counted downwards, as the rows of a raster are
};

/// Equally spaced nodes of one input: node i is low + i ((high - low) / (count - 1)), the last one exactly high. A
/// single node is low. Nodes of cells are edge + (i + 1/2) size, or from an upper edge on edge - (count - 1 - i + 1/2)
/// size.
struct GridAxis
{
    std::string name;
    double low = 0.0;
    double high = 0.0;
    std::uint64_t count = 1;
    std::optional<CellRun> cells{};

    double getNode(std::uint64_t i) const;
};

/// A grid over all inputs, its axes in the order in which they were named: the first one runs fastest.
struct GridSpec
{
    std::vector<GridAxis> axes;
    std::uint64_t numNodes = 0;
    bool overSamples = false; // the axes still lack their ends: see spanSamples
    double cellSize = 0.0;    // above 0: spanSamples makes cells of it
    std::string likePath{};   // of a raster; not empty: the axes still lack its cells, see useCells
};

/// Reads `x=LO:HI:COUNT,y=LO:HI:COUNT`; or `200x100`: one count per input, in their order, over the samples' box; or
/// `cell=40`: cells of this size in every input that cover the samples' box, their edges at multiples of the size; or
/// `like=FILE`: the cells of that raster. An input named cell or like has an axis of that name instead. Throws
/// UsageError when the text is malformed, a bound is not a finite number, HI is below LO, COUNT is below 1, the nodes
/// are too many to count, or the axes are not exactly the inputs, in any order. A name with a comma needs CSV quotes
/// around its whole axis.
GridSpec parseGridSpec(const std::string& text, const std::vector<std::string>& inputNames);

/// Gives a grid over the samples' box its ends: each input's least and greatest value, one column per input, or cells
/// that cover them. Throws InputError when a span is beyond the doubles or there are too many cells to count.
void spanSamples(GridSpec& grid, const std::vector<std::vector<double>>& sampleInputs);

/// Makes the nodes of a grid of two inputs the centres of a raster's cells.
void useCells(GridSpec& grid, const RasterFrame& frame);

/// The same nodes with the axes in the order of the inputs.
GridSpec inOrderOfInputs(const GridSpec& grid, const std::vector<std::string>& inputNames);

} // namespace krige

#endif
