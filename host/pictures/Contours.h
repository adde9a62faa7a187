#ifndef FENN_HOST_PICTURES_CONTOURS_H
#define FENN_HOST_PICTURES_CONTOURS_H

#include <cstddef>
#include <vector>

namespace krige
{

/// A line of equal values: its places in order. A closed one ends where it begins.
struct ContourLine
{
    std::vector<double> x;
    std::vector<double> y;
};

/// Values on a grid, the nodes along x running fastest; NaN where there is none.
struct GridValues
{
    const std::vector<double>& xNodes;
    const std::vector<double>& yNodes;
    const std::vector<double>& values;
};

/// The lines on which the values, linear between neighbouring nodes, are level. A cell with a node without a value has
/// none. Where a cell's corners are above and below in turn, the mean of the four says which of them belong together.
///
/// Source: W. E. Lorensen and H. E. Cline, "Marching cubes", Computer Graphics 21 (1987), in the plane.
std::vector<ContourLine> calcContours(const GridValues& grid, double level);

} // namespace krige

#endif
