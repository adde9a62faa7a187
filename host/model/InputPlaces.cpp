#include "host/model/InputPlaces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/geo/MapFile.h"
#include "host/geo/loadGeoModule.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

void checkCrs(const std::string& option, const std::string& text)
{
    if (text.empty())
        return;
    try
    {
        loadGeoModule(option).describeCrs(text);
    }
    catch (const UsageError& error)
    {
        throw UsageError(option + ": " + error.what());
    }
}

std::string ownCrs(const std::string& path)
{
    return isMapFile(path) ? loadGeoModule(path).findCrs(path) : std::string();
}

bool areWithin(const std::vector<double>& values, double limit)
{
    return std::all_of(values.begin(), values.end(), [limit](double value) { return !(std::abs(value) > limit); });
}

} // namespace

InputPlaces::InputPlaces(const std::string& path, const std::vector<std::string>& inputNames,
                         const ReadSettings& reading)
    : axes(inputNames.size() < 2 ? MapAxes{} : findMapAxes(inputNames)),
      areNamedSo(inputNames.size() >= 2 && areNamedAsDegrees(inputNames, axes))
{
    checkCrs("--crs", reading.crs);
    checkCrs("--project", reading.projection);
    crs = reading.crs.empty() ? ownCrs(path) : reading.crs;
    if (!reading.projection.empty())
    {
        if (inputNames.size() < 2)
            throw UsageError("--project: places on a map have two inputs");
        if (crs.empty() && areNamedSo)
            crs = "EPSG:4326";
        if (crs.empty())
            throw UsageError("--project: nothing says in which coordinate reference system the inputs of " + path +
                             " are; name it with --crs");
        projection = loadGeoModule("--project").makeProjection(crs, reading.projection);
        crs = reading.projection;
    }
    isGeographic = !crs.empty() && loadGeoModule(path).isGeographic(crs);
}

std::size_t InputPlaces::project(std::vector<std::vector<double>>& inputs) const
{
    return projection ? projection->apply(inputs[axes.x], inputs[axes.y]) : 0;
}

bool InputPlaces::areDegrees(const std::vector<std::vector<double>>& inputs) const
{
    if (!crs.empty())
        return isGeographic && inputs.size() >= 2;
    constexpr double mostLongitude = 360.0;
    constexpr double mostLatitude = 90.0;
    return areNamedSo && areWithin(inputs[axes.x], mostLongitude) && areWithin(inputs[axes.y], mostLatitude);
}

void checkSameCrs(const std::string& samplesPath, const std::string& path, const ReadSettings& reading)
{
    if (!reading.projection.empty() || !reading.crs.empty() || !isMapFile(samplesPath) || !isMapFile(path))
        return;
    const GeoModule& module = loadGeoModule(path);
    const std::string ofSamples = module.findCrs(samplesPath);
    const std::string other = module.findCrs(path);
    if (ofSamples.empty() || other.empty() || module.areSameCrs(ofSamples, other))
        return;
    throw InputError(path + ": is in " + module.describeCrs(other) + ", but " + samplesPath + " in " +
                     module.describeCrs(ofSamples) + "; --project " + module.describeCrs(ofSamples) +
                     " brings both into one");
}

std::string suggestProjection(const std::vector<std::string>& inputNames,
                              const std::vector<std::vector<double>>& inputs)
{
    const MapAxes axes = findMapAxes(inputNames);
    const auto middleOf = [](const std::vector<double>& values)
    {
        const auto extremes = std::minmax_element(values.begin(), values.end());
        return (*extremes.first + *extremes.second) / 2.0;
    };
    double longitude = std::fmod(middleOf(inputs[axes.x]), 360.0);
    longitude += longitude >= 180.0 ? -360.0 : longitude < -180.0 ? 360.0 : 0.0;
    const int zone = static_cast<int>(std::floor((longitude + 180.0) / 6.0)) + 1;
    const bool isNorth = middleOf(inputs[axes.y]) >= 0.0;
    char code[32];
    static_cast<void>(std::snprintf(code, sizeof code, "EPSG:32%c%02d", isNorth ? '6' : '7', zone));
    return std::string("--project ") + code + " computes in metres, those of UTM zone " + std::to_string(zone) +
           (isNorth ? " north" : " south");
}

} // namespace krige
