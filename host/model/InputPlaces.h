#ifndef FENN_HOST_MODEL_INPUTPLACES_H
#define FENN_HOST_MODEL_INPUTPLACES_H

#include <memory>
#include <string>
#include <vector>

#include "host/files/ReadSettings.h"
#include "host/geo/GeoModule.h"
#include "host/geo/MapAxes.h"

namespace krige
{

/// In which coordinate reference system (CRS) the inputs of a file are, and how they are brought into that of --project
/// as they are read.
///
/// The CRS of a file is --crs, else the one that it names itself; with --project, longitudes and latitudes by name in a
/// file that names none are those of WGS 84.
class InputPlaces
{
public:
    /// Throws UsageError for a CRS that nobody knows and for a projection from nowhere, InputError when the module is
    /// needed and is not installed.
    InputPlaces(const std::string& path, const std::vector<std::string>& inputNames, const ReadSettings& reading);

    /// Projects inputs, one column per input; returns the number of places that have no image, which become NaN.
    std::size_t project(std::vector<std::vector<double>>& inputs) const;

    bool areProjected() const
    {
        return projection != nullptr;
    }

    /// After projection; empty: unknown.
    const std::string& getCrs() const
    {
        return crs;
    }

    /// Whether inputs, as project leaves them, are longitudes and latitudes: of a geographic CRS, or by names and
    /// values.
    bool areDegrees(const std::vector<std::vector<double>>& inputs) const;

private:
    MapAxes axes;
    bool areNamedSo; // as longitude and latitude
    std::string crs;
    bool isGeographic = false;
    std::unique_ptr<Projection> projection;
};

/// Throws InputError when both files name a CRS of their own, these differ, and nothing brings them together.
void checkSameCrs(const std::string& samplesPath, const std::string& path, const ReadSettings& reading);

/// What to do about samples in degrees: names the projection of the UTM zone that they lie in.
std::string suggestProjection(const std::vector<std::string>& inputNames,
                              const std::vector<std::vector<double>>& inputs);

} // namespace krige

#endif
