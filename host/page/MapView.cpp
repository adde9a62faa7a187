#include "host/page/MapView.h"

#include <algorithm>
#include <cmath>

#include "host/targets/TargetSource.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

constexpr std::uint64_t mostNodes = 4'000'000; // 12 MB of a page, and no screen shows more

double meanOf(const std::vector<double>& values)
{
    double mean = 0.0; // updated step by step: a sum may overflow
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        const auto count = static_cast<double>(i + 1);
        mean += values[i] / count - mean / count;
    }
    return mean;
}

std::vector<std::size_t> inputsThatRun(const GridSpec& grid)
{
    std::vector<std::size_t> running;
    for (std::size_t v = 0; v < grid.axes.size(); ++v)
    {
        if (grid.axes[v].count > 1)
            running.push_back(v);
    }
    return running;
}

void checkSize(const MapView& view)
{
    if (view.xAxis.count > mostNodes / view.yAxis.count)
        throw UsageError("--grid: a page shows up to " + std::to_string(mostNodes) +
                         " nodes, for instance 2000x2000; lower the counts, and use krige predict for a larger map");
}

} // namespace

std::string MapView::describeHeld(const std::vector<std::string>& inputNames) const
{
    std::string text;
    for (std::size_t v = 0; v < inputNames.size(); ++v)
    {
        if (v != x && v != y)
            text += (text.empty() ? "" : ", ") + inputNames[v] + " = " + formatFigure(heldValues[v]);
    }
    return text;
}

GridSpec defaultGrid(const SampleTable& samples)
{
    constexpr double numNodes = 30000.0;
    GridSpec grid;
    grid.overSamples = true;
    for (const std::string& name : samples.inputNames)
        grid.axes.push_back({name, 0.0, 0.0, 1});
    spanSamples(grid, samples.inputs);
    const std::size_t numInputs = grid.axes.size();
    for (GridAxis& axis : grid.axes)
    {
        if (axis.low < axis.high)
            axis.count = numInputs == 1 ? 400 : 100;
    }
    const std::vector<std::size_t> running = inputsThatRun(grid);
    if (running.size() == 2)
    {
        GridAxis& x = grid.axes[running[0]];
        GridAxis& y = grid.axes[running[1]];
        const double ratio = (y.high - y.low) / (x.high - x.low);
        const double shape = ratio > 1.0 / 3.0 && ratio < 3.0 ? ratio : 0.75;
        x.count = static_cast<std::uint64_t>(std::round(std::sqrt(numNodes / shape)));
        y.count = static_cast<std::uint64_t>(std::round(std::sqrt(numNodes * shape)));
    }
    return grid;
}

std::size_t countPairs(const GridSpec& grid)
{
    const std::size_t numRunning = inputsThatRun(grid).size();
    return numRunning < 2 ? 0 : numRunning * (numRunning - 1) / 2;
}

std::vector<MapView> chooseViews(const GridSpec& grid, const SampleTable& samples)
{
    const std::vector<std::size_t> running = inputsThatRun(grid);
    if (running.empty())
        throw UsageError("--grid: a page needs an input with two nodes or more");
    MapView first;
    for (std::size_t v = 0; v < grid.axes.size(); ++v)
    {
        const GridAxis& axis = grid.axes[v];
        first.heldValues.push_back(axis.count == 1 ? axis.low
                                                   : std::clamp(meanOf(samples.inputs[v]), axis.low, axis.high));
    }
    std::vector<MapView> views;
    const auto add = [&](std::size_t x, std::optional<std::size_t> y)
    {
        MapView view = first;
        view.x = x;
        view.y = y;
        view.xAxis = grid.axes[x];
        view.yAxis = y ? grid.axes[*y] : GridAxis();
        view.isSlice = grid.axes.size() > (y ? 2U : 1U);
        checkSize(view);
        views.push_back(view);
    };
    if (running.size() == 1)
        add(running[0], std::nullopt);
    for (std::size_t i = 0; i < running.size(); ++i)
    {
        for (std::size_t j = i + 1; j < running.size() && views.size() < mostSlices; ++j)
            add(running[i], running[j]);
    }
    return views;
}

void estimateView(MapView& view, const PredictAt& predict)
{
    const std::size_t numNodes = view.getNumNodes();
    std::vector<std::vector<double>> targets(view.heldValues.size());
    std::vector<std::vector<double>> values;
    for (std::size_t first = 0; first < numNodes; first += targetsPerRequest)
    {
        const std::size_t count = std::min(targetsPerRequest, numNodes - first);
        for (std::size_t v = 0; v < targets.size(); ++v)
            targets[v].assign(count, view.heldValues[v]);
        for (std::size_t t = 0; t < count; ++t)
        {
            targets[view.x][t] = view.xAxis.getNode((first + t) % view.xAxis.count);
            if (view.y)
                targets[*view.y][t] = view.yAxis.getNode((first + t) / view.xAxis.count);
        }
        predict(targets, values);
        view.values.resize(values.size());
        for (std::size_t c = 0; c < values.size(); ++c)
            view.values[c].insert(view.values[c].end(), values[c].begin(), values[c].end());
    }
}

} // namespace krige
