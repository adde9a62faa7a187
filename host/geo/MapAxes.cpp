#include "host/geo/MapAxes.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>

namespace krige
{

namespace
{

bool isOneOf(std::string name, std::initializer_list<const char*> names)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isLongitude(const std::string& name)
{
    return isOneOf(name, {"lon", "long", "lng", "longitude"});
}

bool isLatitude(const std::string& name)
{
    return isOneOf(name, {"lat", "latitude"});
}

bool runsEast(const std::string& name)
{
    return isLongitude(name) || isOneOf(name, {"x", "east", "easting"});
}

bool runsNorth(const std::string& name)
{
    return isLatitude(name) || isOneOf(name, {"y", "north", "northing"});
}

} // namespace

MapAxes findMapAxes(const std::vector<std::string>& inputNames)
{
    const auto x = std::find_if(inputNames.begin(), inputNames.end(), runsEast);
    const auto y = std::find_if(inputNames.begin(), inputNames.end(), runsNorth);
    if (x == inputNames.end() || y == inputNames.end())
        return {};
    return {static_cast<std::size_t>(x - inputNames.begin()), static_cast<std::size_t>(y - inputNames.begin())};
}

bool areNamedAsDegrees(const std::vector<std::string>& inputNames, const MapAxes& axes)
{
    return isLongitude(inputNames[axes.x]) && isLatitude(inputNames[axes.y]);
}

} // namespace krige
