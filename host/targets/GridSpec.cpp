#include "host/targets/GridSpec.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>

#include "host/files/CsvReader.h"
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
                                 "as in 200x100, span the samples' box");

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

} // namespace

double GridAxis::getNode(std::uint64_t i) const
{
    if (count == 1)
        return low;
    if (i == count - 1)
        return high;
    return low + static_cast<double>(i) * ((high - low) / static_cast<double>(count - 1));
}

GridSpec parseGridSpec(const std::string& text, const std::vector<std::string>& inputNames)
{
    GridSpec grid;
    grid.overSamples = isListOfCounts(trimBlanks(text));
    if (grid.overSamples)
        grid.axes = parseCounts(trimBlanks(text), inputNames);
    else
    {
        for (const std::string& axis : splitCsvText(text, "--grid"))
            grid.axes.push_back(parseAxis(axis));
    }
    checkNames(grid.axes, inputNames);

    grid.numNodes = 1;
    for (const GridAxis& axis : grid.axes)
    {
        if (axis.count > std::numeric_limits<std::uint64_t>::max() / grid.numNodes)
            throw UsageError("--grid: too many nodes to count; lower the counts");
        grid.numNodes *= axis.count;
    }
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
    }
    grid.overSamples = false;
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
