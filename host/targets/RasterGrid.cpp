#include "host/targets/RasterGrid.h"

#include <algorithm>
#include <cmath>

#include "host/geo/loadGeoModule.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

/// 0 for a single node.
double stepOf(const GridAxis& axis)
{
    if (axis.cells)
        return axis.cells->size;
    return axis.count > 1 ? (axis.high - axis.low) / static_cast<double>(axis.count - 1) : 0.0;
}

double lowerEdge(const GridAxis& axis, double step)
{
    if (!axis.cells)
        return axis.low - step / 2.0;
    return axis.cells->isUpperEdge ? axis.cells->edge - static_cast<double>(axis.count) * step : axis.cells->edge;
}

double upperEdge(const GridAxis& axis, double step)
{
    if (!axis.cells)
        return axis.high + step / 2.0;
    return axis.cells->isUpperEdge ? axis.cells->edge : axis.cells->edge + static_cast<double>(axis.count) * step;
}

} // namespace

void giveNodes(GridSpec& grid, const std::vector<std::vector<double>>& sampleInputs)
{
    if (grid.likePath.empty())
        spanSamples(grid, sampleInputs);
    else
        useCells(grid, loadGeoModule(grid.likePath).readFrame(grid.likePath));
}

RasterFrame frameOfGrid(const GridSpec& grid, const std::vector<std::string>& inputNames)
{
    if (inputNames.size() < 2)
        throw InputError("--output: a raster is that of two inputs; name a .csv file");
    const GridSpec ordered = inOrderOfInputs(grid, inputNames);
    const MapAxes map = findMapAxes(inputNames);
    for (std::size_t v = 0; v < ordered.axes.size(); ++v)
    {
        if (v != map.x && v != map.y && ordered.axes[v].count != 1)
            throw InputError("--output: a raster is that of two inputs; give " + quoteForMessage(inputNames[v]) +
                             " a single node, as in " + inputNames[v] + "=5:5:1, or name a .csv file");
    }
    const GridAxis& x = ordered.axes[map.x];
    const GridAxis& y = ordered.axes[map.y];
    const double stepX = stepOf(x) > 0.0 ? stepOf(x) : stepOf(y);
    const double stepY = stepOf(y) > 0.0 ? stepOf(y) : stepOf(x);
    const bool isFlat = (x.count > 1 && !(stepOf(x) > 0.0)) || (y.count > 1 && !(stepOf(y) > 0.0));
    if (isFlat || !(stepX > 0.0))
        throw InputError("--output: the nodes lie in one place and make no cells; take --grid cell=SIZE, or name a "
                         ".csv file");
    return {x.count, y.count, lowerEdge(x, stepX), upperEdge(y, stepY), stepX, stepY};
}

RasterFrame partOf(const RasterFrame& frame, const Shard& shard)
{
    RasterFrame part = frame;
    part.height = shard.size(frame.height);
    part.top = frame.top - static_cast<double>(shard.numBefore(frame.height)) * frame.cellHeight;
    return part;
}

void checkCellsAreSquare(const RasterFrame& frame, const std::string& path)
{
    constexpr double tolerance = 1e-9; // of the last digits of edges far from the origin
    if (std::abs(frame.cellWidth - frame.cellHeight) > tolerance * std::max(frame.cellWidth, frame.cellHeight))
        throw InputError(path + ": such a file has square cells, but these are " + formatNumber(frame.cellWidth) +
                         " by " + formatNumber(frame.cellHeight) + "; take --grid cell=SIZE, or name a .tif file");
}

RasterTargets::RasterTargets(const GridSpec& grid_, const std::vector<std::string>& inputNames, const Shard& shard)
    : grid(inOrderOfInputs(grid_, inputNames)),
      map(findMapAxes(inputNames)),
      firstRow(shard.numBefore(grid.axes[map.y].count)),
      numRows(shard.size(grid.axes[map.y].count))
{
}

std::size_t RasterTargets::read(std::vector<std::vector<double>>& columns, std::size_t maxTargets)
{
    const GridAxis& x = grid.axes[map.x];
    const GridAxis& y = grid.axes[map.y];
    columns.resize(grid.axes.size());
    for (std::vector<double>& column : columns)
        column.clear();
    if (tileRow >= numRows || maxTargets == 0)
        return 0;

    const auto width = static_cast<std::size_t>(std::min<std::uint64_t>(tileSize, x.count - tileColumn));
    const auto height = static_cast<std::size_t>(std::min<std::uint64_t>(tileSize, numRows - tileRow));
    window.column = tileColumn + numReadCells;
    window.row = tileRow + numReadRows;
    if (numReadCells > 0 || maxTargets < width) // a piece of a row
    {
        window.width = std::min(maxTargets, width - numReadCells);
        window.height = 1;
        numReadCells += window.width;
        if (numReadCells == width)
        {
            numReadCells = 0;
            ++numReadRows;
        }
    }
    else
    {
        window.width = width;
        window.height = std::min(maxTargets / width, height - numReadRows);
        numReadRows += window.height;
    }

    for (std::size_t v = 0; v < columns.size(); ++v)
        columns[v].assign(window.width * window.height, grid.axes[v].low);
    for (std::size_t row = 0; row < window.height; ++row)
    {
        const double yNode = y.getNode(y.count - 1 - (firstRow + window.row + row));
        for (std::size_t column = 0; column < window.width; ++column)
        {
            columns[map.x][row * window.width + column] = x.getNode(window.column + column);
            columns[map.y][row * window.width + column] = yNode;
        }
    }

    if (numReadRows == height)
    {
        numReadRows = 0;
        tileColumn += tileSize;
        if (tileColumn >= x.count)
        {
            tileColumn = 0;
            tileRow += tileSize;
        }
    }
    return window.width * window.height;
}

std::string_view RasterTargets::getTexts(std::size_t /*t*/) const
{
    return {};
}

} // namespace krige
