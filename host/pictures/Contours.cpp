#include "host/pictures/Contours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace krige
{

namespace
{

/// A side of a cell: 2 * node for the one to the next node along x, 2 * node + 1 for the one along y.
using Edge = std::size_t;

class ContourTracing
{
public:
    ContourTracing(const GridValues& grid_, double level_) : grid(grid_), level(level_), numAcross(grid.xNodes.size())
    {
        for (std::size_t j = 0; j + 1 < grid.yNodes.size(); ++j)
        {
            for (std::size_t i = 0; i + 1 < numAcross; ++i)
                addCell(j * numAcross + i);
        }
    }

    std::vector<ContourLine> join()
    {
        std::vector<ContourLine> lines;
        for (const bool fromEnds : {true, false}) // what is left after the open lines is closed
        {
            for (const auto& [edge, others] : neighbours)
            {
                if (!fromEnds || others.size() == 1)
                    lines.push_back(follow(edge));
                if (lines.empty() || lines.back().x.size() >= 2)
                    continue;
                lines.pop_back(); // the edge was part of an earlier line
            }
        }
        return lines;
    }

private:
    bool isAbove(std::size_t node) const
    {
        return grid.values[node] >= level;
    }

    /// Corners anticlockwise from the lower left one; side k lies between corners k and k + 1.
    void addCell(std::size_t node)
    {
        const std::array<std::size_t, 4> corners{node, node + 1, node + numAcross + 1, node + numAcross};
        const std::array<Edge, 4> sides{2 * node, 2 * (node + 1) + 1, 2 * (node + numAcross), 2 * node + 1};
        double mean = 0.0;
        for (const std::size_t corner : corners)
            mean += grid.values[corner] / 4;
        if (!std::isfinite(mean))
            return;
        std::vector<Edge> crossed;
        for (std::size_t k = 0; k < 4; ++k)
        {
            if (isAbove(corners[k]) != isAbove(corners[(k + 1) % 4]))
                crossed.push_back(sides[k]);
        }
        if (crossed.size() == 2)
            connect(crossed[0], crossed[1]);
        else if (crossed.size() == 4 && isAbove(corners[0]) == (mean >= level)) // corners 0 and 2 belong together
        {
            connect(sides[0], sides[1]);
            connect(sides[2], sides[3]);
        }
        else if (crossed.size() == 4)
        {
            connect(sides[3], sides[0]);
            connect(sides[1], sides[2]);
        }
    }

    void connect(Edge a, Edge b)
    {
        neighbours[a].push_back(b);
        neighbours[b].push_back(a);
    }

    void addPlace(Edge edge, ContourLine& line) const
    {
        const std::size_t from = edge / 2;
        const bool isAlongX = edge % 2 == 0;
        const std::size_t to = isAlongX ? from + 1 : from + numAcross;
        const double share = (level - grid.values[from]) / (grid.values[to] - grid.values[from]);
        const auto between = [share](double a, double b)
        {
            return a * (1.0 - share) + b * share;
        };
        line.x.push_back(between(grid.xNodes[from % numAcross], grid.xNodes[to % numAcross]));
        line.y.push_back(between(grid.yNodes[from / numAcross], grid.yNodes[to / numAcross]));
    }

    /// From one edge on, along connections that no line has taken yet.
    ContourLine follow(Edge edge)
    {
        ContourLine line;
        addPlace(edge, line);
        while (true)
        {
            std::vector<Edge>& others = neighbours.find(edge)->second;
            if (others.empty())
                return line;
            const Edge next = others.back();
            others.pop_back();
            std::vector<Edge>& back = neighbours.find(next)->second;
            back.erase(std::find(back.begin(), back.end(), edge));
            edge = next;
            addPlace(edge, line);
        }
    }

    const GridValues& grid;
    double level;
    std::size_t numAcross;
    std::map<Edge, std::vector<Edge>> neighbours; // ordered: the lines do not depend on a hash
};

} // namespace

std::vector<ContourLine> calcContours(const GridValues& grid, double level)
{
    return ContourTracing(grid, level).join();
}

} // namespace krige
