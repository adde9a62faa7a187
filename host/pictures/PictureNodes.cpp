#include "host/pictures/PictureNodes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr std::uint64_t mostAcross = 600; // about the pixels of a map
constexpr std::uint64_t mostUp = 480;
constexpr std::uint64_t mostAlongLine = 2000;
constexpr std::size_t mostTargets = 4096;

std::size_t inputOf(const GridAxis& axis, const std::vector<std::string>& inputNames)
{
    const auto input = std::find(inputNames.begin(), inputNames.end(), axis.name);
    return static_cast<std::size_t>(input - inputNames.begin());
}

std::uint64_t nodeNearest(const GridAxis& axis, double value)
{
    if (axis.count == 1 || !(axis.low < axis.high))
        return 0;
    const double place = (value - axis.low) / (axis.high - axis.low) * static_cast<double>(axis.count - 1);
    return static_cast<std::uint64_t>(std::clamp(std::round(place), 0.0, static_cast<double>(axis.count - 1)));
}

} // namespace

std::vector<std::vector<double>> PanelNodes::calcTargets() const
{
    std::vector<std::vector<double>> targets;
    for (const double value : fixedValues)
        targets.emplace_back(count(), value);
    for (std::size_t i = 0; i < count(); ++i)
    {
        if (!isLine())
            targets[y][i] = yNodes[i / xNodes.size()];
        targets[x][i] = xNodes[i % xNodes.size()];
    }
    return targets;
}

GridNodes::GridNodes(const GridSpec& grid_, const std::vector<std::string>& inputNames,
                     const std::vector<double>& centre, std::size_t mostPanels, std::uint64_t firstNode)
    : grid(grid_)
{
    std::vector<std::size_t> varying; // axes, in the order of the inputs
    std::vector<std::uint64_t> centreNodes;
    for (const GridAxis& axis : grid.axes)
    {
        nodeOfAxis.push_back(firstNode % axis.count);
        firstNode /= axis.count;
        centreNodes.push_back(nodeNearest(axis, centre[inputOf(axis, inputNames)]));
    }
    for (std::size_t input = 0; input < inputNames.size(); ++input)
    {
        for (std::size_t a = 0; a < grid.axes.size(); ++a)
        {
            if (inputOf(grid.axes[a], inputNames) == input && grid.axes[a].count > 1 &&
                grid.axes[a].low < grid.axes[a].high)
                varying.push_back(a);
        }
    }
    if (varying.empty())
        varying.push_back(0);
    if (varying.size() == 1)
        addPanel(varying[0], varying[0], inputNames, centreNodes);
    for (std::size_t i = 0; i < varying.size(); ++i)
    {
        for (std::size_t j = i + 1; j < varying.size() && panels.size() < mostPanels; ++j)
            addPanel(varying[i], varying[j], inputNames, centreNodes);
    }
}

GridNodes::Steps GridNodes::spread(std::uint64_t count, std::uint64_t most)
{
    Steps steps;
    steps.step = (count + most - 1) / most;
    steps.first = (count - 1) % steps.step / 2;
    steps.count = (count - 1 - steps.first) / steps.step + 1;
    return steps;
}

void GridNodes::addPanel(std::size_t x, std::size_t y, const std::vector<std::string>& inputNames,
                         const std::vector<std::uint64_t>& centreNodes)
{
    PanelNodes nodes;
    nodes.x = inputOf(grid.axes[x], inputNames);
    nodes.y = inputOf(grid.axes[y], inputNames);
    nodes.fixedValues.resize(inputNames.size());
    Choice choice;
    for (std::size_t a = 0; a < grid.axes.size(); ++a)
    {
        Steps steps{centreNodes[a], 1, 1};
        if (a == x || a == y)
            steps = spread(grid.axes[a].count, x == y ? mostAlongLine : a == x ? mostAcross : mostUp);
        else
            nodes.fixedValues[inputOf(grid.axes[a], inputNames)] = grid.axes[a].getNode(centreNodes[a]);
        choice.steps.push_back(steps);
        choice.strides.push_back(0);
    }
    const auto nodesOf = [&](std::size_t axis)
    {
        std::vector<double> places;
        const Steps& steps = choice.steps[axis];
        for (std::uint64_t i = 0; i < steps.count; ++i)
            places.push_back(grid.axes[axis].getNode(steps.first + i * steps.step));
        return places;
    };
    nodes.xNodes = nodesOf(x);
    nodes.yNodes = x == y ? std::vector<double>(1, 0.0) : nodesOf(y);
    choice.strides[y] = nodes.xNodes.size();
    choice.strides[x] = 1;
    panels.push_back(nodes);
    choices.push_back(choice);
    values.emplace_back();
}

void GridNodes::collect(const std::vector<std::vector<double>>& estimated, const std::vector<std::size_t>& wanted)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t p = 0; p < panels.size(); ++p)
        values[p].resize(wanted.size(), std::vector<double>(panels[p].count(), none));
    for (std::size_t t = 0; t < estimated.front().size(); ++t)
    {
        for (std::size_t p = 0; p < panels.size(); ++p)
        {
            std::size_t place = 0;
            bool isShown = true;
            for (std::size_t a = 0; a < nodeOfAxis.size() && isShown; ++a)
            {
                const Steps& steps = choices[p].steps[a];
                const std::uint64_t node = nodeOfAxis[a] - steps.first; // before the first: beyond all others
                isShown = node % steps.step == 0 && node / steps.step < steps.count;
                place += static_cast<std::size_t>(node / steps.step) * choices[p].strides[a];
            }
            for (std::size_t q = 0; q < wanted.size() && isShown; ++q)
                values[p][q][place] = estimated[wanted[q]][t];
        }
        for (std::size_t a = 0; a < nodeOfAxis.size() && ++nodeOfAxis[a] == grid.axes[a].count; ++a)
            nodeOfAxis[a] = 0;
    }
}

std::string GridNodes::describeThinning() const
{
    std::string text;
    for (std::size_t a = 0; a < grid.axes.size(); ++a)
    {
        for (const Choice& choice : choices)
        {
            if (choice.steps[a].step == 1)
                continue;
            text += (text.empty() ? "shows " : " and ") + std::to_string(choice.steps[a].count) + " of " +
                    std::to_string(grid.axes[a].count) + " nodes along " + quoteForMessage(grid.axes[a].name);
            break;
        }
    }
    return text;
}

void TargetSample::collect(const std::vector<std::vector<double>>& targets)
{
    kept.resize(targets.size());
    for (std::size_t t = 0; t < targets.front().size(); ++t)
    {
        if (untilNext > 0)
        {
            --untilNext;
            continue;
        }
        if (kept.front().size() == mostTargets) // every other one has to do from now on
        {
            for (std::vector<double>& column : kept)
            {
                for (std::size_t i = 0; 2 * i < mostTargets; ++i)
                    column[i] = column[2 * i];
                column.resize(mostTargets / 2);
            }
            step *= 2;
        }
        for (std::size_t v = 0; v < targets.size(); ++v)
            kept[v].push_back(targets[v][t]);
        untilNext = step - 1;
    }
}

} // namespace krige
