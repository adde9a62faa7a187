#ifndef FENN_HOST_TARGETS_RASTERGRID_H
#define FENN_HOST_TARGETS_RASTERGRID_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/geo/GeoModule.h"
#include "host/geo/MapAxes.h"
#include "host/targets/GridSpec.h"
#include "host/targets/Shard.h"
#include "host/targets/TargetSource.h"

namespace krige
{

/// Gives a grid the nodes that it still lacks: over the samples' box (spanSamples) or from a raster (useCells).
void giveNodes(GridSpec& grid, const std::vector<std::vector<double>>& sampleInputs);

/// The raster whose cell centres are the nodes of a grid: two inputs are its columns and rows, the others have one node
/// each. An axis with a single node takes the other one's cell size. Throws InputError when that makes no raster.
RasterFrame frameOfGrid(const GridSpec& grid, const std::vector<std::string>& inputNames);

/// The rows of one part.
RasterFrame partOf(const RasterFrame& frame, const Shard& shard);

/// Throws InputError when cells are not square, by more than rounding.
void checkCellsAreSquare(const RasterFrame& frame, const std::string& path);

/// The nodes of a grid as the cells of a raster: tile by tile, the tiles and the rows of each from the top, so that
/// every tile is whole before the next one begins. A block is a window of cells, of one tile.
class RasterTargets : public TargetSource
{
public:
    /// The grid must make a raster. A shard is one of equal runs of rows; it must have a row.
    RasterTargets(const GridSpec& grid_, const std::vector<std::string>& inputNames, const Shard& shard = {});
    std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxTargets) override;
    std::string_view getTexts(std::size_t t) const override;

    /// Of the last block, within this part.
    const RasterWindow& getWindow() const
    {
        return window;
    }

    /// Tiles are square, and hold as many targets as a request.
    static constexpr std::size_t tileSize = 256;
    static_assert(tileSize * tileSize == targetsPerRequest);

private:
    GridSpec grid; // axes in the order of the inputs
    MapAxes map;
    std::uint64_t firstRow; // of this part, from the top of the whole
    std::uint64_t numRows;
    std::uint64_t tileColumn = 0; // left edge of the tile that is being read
    std::uint64_t tileRow = 0;    // its top
    std::size_t numReadRows = 0;  // of it, whole ones
    std::size_t numReadCells = 0; // of the row behind those
    RasterWindow window;
};

} // namespace krige

#endif
