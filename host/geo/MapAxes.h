#ifndef FENN_HOST_GEO_MAPAXES_H
#define FENN_HOST_GEO_MAPAXES_H

#include <cstddef>
#include <string>
#include <vector>

namespace krige
{

/// Which input runs from west to east and which from south to north.
struct MapAxes
{
    std::size_t x = 0;
    std::size_t y = 1;
};

/// Goes by the names where one says so (lat, northing, ...), else by the order. There must be at least two inputs.
MapAxes findMapAxes(const std::vector<std::string>& inputNames);

/// Whether these two inputs are named as a longitude and a latitude are.
bool areNamedAsDegrees(const std::vector<std::string>& inputNames, const MapAxes& axes);

} // namespace krige

#endif
