#include "host/targets/GridSpec.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>

#include "host/files/CsvReader.h"
#include "host/geo/MapAxes.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

double parseBound(std::string_view text, const std::string& where)
{
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (status != NumberStatus::Ok)
        throw UsageError(where + describeNumberFault(text, status));
    return value;
}

std::uint64_t parseCount(std::string_view text, const std::string& where)
{
    text = trimBlanks(text);
    std::uint64_t count = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), count);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() || count < 1)
        throw UsageError(where + "COUNT must be a whole number of at least 1, not " + quoteForMessage(text));
    return count;
}

GridAxis parseAxis(const std::string& text)
{
    const std::string where = "--grid: " + quoteForMessage(text) + ": ";
    const std::size_t equals = text.rfind('='); // a name may hold one, the numbers cannot
    const std::size_t firstColon = text.find(':', equals == std::string::npos ? 0 : equals);
    const std::size_t secondColon = firstColon == std::string::npos ? firstColon : text.find(':', firstColon + 1);
    if (equals == std::string::npos || secondColon == std::string::npos)
        throw UsageError(where + "an axis is written NAME=LO:HI:COUNT, for instance x=0:10:101; counts alone, "
                                 "as in 200x100, span the samples' box, and cell=40 covers it with cells of that size");

    const std::string_view view = text;
    GridAxis axis;
    axis.name = trimBlanks(view.substr(0, equals));
    axis.low = parseBound(view.substr(equals + 1, firstColon - equals - 1), where);
    axis.high = parseBound(view.substr(firstColon + 1, secondColon - firstColon - 1), where);
    axis.count = parseCount(view.substr(secondColon + 1), where);
    if (axis.high < axis.low)
        throw UsageError(where + "HI is below LO");
    if (std::isinf(axis.high - axis.low))
        throw UsageError(where + "HI - LO is too large for a double");
    return axis;
}

void checkNames(const std::vector<GridAxis>& axes, const std::vector<std::string>& inputNames)
{
    for (const std::string& input : inputNames)
    {
        const auto count =
            std::count_if(axes.begin(), axes.end(), [&](const GridAxis& axis) { return axis.name == input; });
        if (count != 1)
            throw UsageError("--grid: the input " + quoteForMessage(input) +
                             (count == 0 ? " has no axis; every input needs one" : " has more than one axis"));
    }
    for (const GridAxis& axis : axes)
    {
        if (std::find(inputNames.begin(), inputNames.end(), axis.name) == inputNames.end())
            throw UsageError("--grid: " + quoteForMessage(axis.name) + " is not one of --inputs");
    }
}

bool isListOfCounts(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789xX") == std::string_view::npos &&
           text.find_first_of("0123456789") == 0;
}

std::vector<GridAxis> parseCounts(std::string_view text, const std::vector<std::string>& inputNames)
{
    const std::string where = "--grid: " + quoteForMessage(text) + ": ";
    std::vector<GridAxis> axes;
    for (;;)
    {
        const std::size_t end = std::min(text.find_first_of("xX"), text.size());
        axes.emplace_back();
        axes.back().count = parseCount(text.substr(0, end), where);
        if (end == text.size())
            break;
        text.remove_prefix(end + 1);
    }
    if (axes.size() != inputNames.size())
        throw UsageError(where + countOf(axes.size(), "count") + " for " + countOf(inputNames.size(), "input") +
                         "; give one each, for instance 200x100 for two");
    for (std::size_t v = 0; v < axes.size(); ++v)
        axes[v].name = inputNames[v];
    return axes;
}

/// `cell=40` or `like=FILE`: what follows the sign; nothing where an input has such a name, which then has an axis.
std::optional<std::string> textBehind(const char* key, std::string_view text,
                                      const std::vector<std::string>& inputNames)
{
    const std::string begin = std::string(key) + '=';
    if (text.substr(0, begin.size()) != begin ||
        std::find(inputNames.begin(), inputNames.end(), key) != inputNames.end())
        return std::nullopt;
    return std::string(text.substr(begin.size()));
}

double parseCellSize(const std::string& text)
{
    const std::string where = "--grid: " + quoteForMessage("cell=" + text) + ": ";
    const double size = parseBound(text, where);
    if (!(size > 0.0))
        throw UsageError(where + "the size of a cell must be above 0");
    return size;
}

std::vector<GridAxis> axesOf(const std::vector<std::string>& inputNames)
{
    std::vector<GridAxis> axes(inputNames.size());
    for (std::size_t v = 0; v < axes.size(); ++v)
        axes[v].name = inputNames[v];
    return axes;
}

void placeCells(GridAxis& axis, const CellRun& cells)
{
    axis.cells = cells;
    axis.low = axis.getNode(0);
    axis.high = axis.getNode(axis.count - 1);
}

/// Edges at multiples of the size, so that grids of neighbouring samples fit together.
void coverWithCells(GridAxis& axis, double size)
{
    constexpr double mostCells = 0x1p53; // further on, doubles do not tell neighbours apart
    const double first = std::floor(axis.low / size);
    const double end = std::max(std::ceil(axis.high / size), first + 1.0);
    if (!(std::abs(first) < mostCells && std::abs(end) < mostCells))
        throw InputError("--grid: cells of " + formatNumber(size) + " are too small for the samples' range of " +
                         quoteForMessage(axis.name));
    axis.count = static_cast<std::uint64_t>(end - first);
    placeCells(axis, {size, first * size, false});
}

void countNodes(GridSpec& grid)
{
    grid.numNodes = 1;
    for (const GridAxis& axis : grid.axes)
    {
        if (axis.count > std::numeric_limits<std::uint64_t>::max() / grid.numNodes)
            throw UsageError(grid.cellSize > 0.0 ? "--grid: too many nodes to count; take larger cells"
                                                 : "--grid: too many nodes to count; lower the counts");
        grid.numNodes *= axis.count;
    }
}

} // namespace

double GridAxis::getNode(std::uint64_t i) const
{
    if (cells)
    {
        const std::uint64_t numBefore = cells->isUpperEdge ? count - 1 - i : i;
        const double distance = (static_cast<double>(numBefore) + 0.5) * cells->size;
        return cells->isUpperEdge ? cells->edge - distance : cells->edge + distance;
    }
    if (count == 1)
        return low;
    if (i == count - 1)
        return high;
    return low + static_cast<double>(i) * ((high - low) / static_cast<double>(count - 1));
}

GridSpec parseGridSpec(const std::string& text, const std::vector<std::string>& inputNames)
{
    GridSpec grid;
    const std::string_view trimmed = trimBlanks(text);
    if (const std::optional<std::string> size = textBehind("cell", trimmed, inputNames))
    {
        grid.axes = axesOf(inputNames);
        grid.cellSize = parseCellSize(*size);
        grid.overSamples = true;
        return grid;
    }
    if (const std::optional<std::string> path = textBehind("like", trimmed, inputNames))
    {
        if (path->empty())
            throw UsageError("--grid: like= needs the name of a raster, for instance like=dem.tif");
        if (inputNames.size() != 2)
            throw UsageError("--grid: a raster has the cells of two inputs, but there " +
                             std::string(inputNames.size() == 1 ? "is " : "are ") +
                             countOf(inputNames.size(), "input"));
        grid.axes = axesOf(inputNames);
        grid.likePath = *path;
        return grid;
    }
    grid.overSamples = isListOfCounts(trimmed);
    if (grid.overSamples)
        grid.axes = parseCounts(trimmed, inputNames);
    else
    {
        for (const std::string& axis : splitCsvText(text, "--grid"))
            grid.axes.push_back(parseAxis(axis));
    }
    checkNames(grid.axes, inputNames);

    countNodes(grid);
    return grid;
}

void spanSamples(GridSpec& grid, const std::vector<std::vector<double>>& sampleInputs)
{
    if (!grid.overSamples)
        return;
    for (std::size_t v = 0; v < grid.axes.size(); ++v)
    {
        const auto extremes = std::minmax_element(sampleInputs[v].begin(), sampleInputs[v].end());
        grid.axes[v].low = *extremes.first;
        grid.axes[v].high = *extremes.second;
        if (std::isinf(grid.axes[v].high - grid.axes[v].low))
            throw InputError("--grid: the samples' range of " + quoteForMessage(grid.axes[v].name) +
                             " is too large for a double");
        if (grid.cellSize > 0.0)
            coverWithCells(grid.axes[v], grid.cellSize);
    }
    countNodes(grid);
    grid.overSamples = false;
}

void useCells(GridSpec& grid, const RasterFrame& frame)
{
    std::vector<std::string> names;
    for (const GridAxis& axis : grid.axes)
        names.push_back(axis.name);
    const MapAxes map = findMapAxes(names);
    grid.axes[map.x].count = frame.width;
    placeCells(grid.axes[map.x], {frame.cellWidth, frame.left, false});
    grid.axes[map.y].count = frame.height;
    placeCells(grid.axes[map.y], {frame.cellHeight, frame.top, true});
    countNodes(grid);
    grid.likePath.clear();
}

GridSpec inOrderOfInputs(const GridSpec& grid, const std::vector<std::string>& inputNames)
{
    GridSpec ordered = grid;
    for (std::size_t v = 0; v < inputNames.size(); ++v)
        ordered.axes[v] = *std::find_if(grid.axes.begin(), grid.axes.end(),
                                        [&](const GridAxis& axis) { return axis.name == inputNames[v]; });
    return ordered;
}

} // namespace krige
