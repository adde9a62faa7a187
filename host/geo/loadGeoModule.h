#ifndef FENN_HOST_GEO_LOADGEOMODULE_H
#define FENN_HOST_GEO_LOADGEOMODULE_H

#include <string>
#include <vector>

#include "host/geo/GeoModule.h"

namespace krige
{

/// The module krige_gdal, loaded at the first call, from beside the program or from where it was installed. It stays
/// until the program ends. Throws InputError that names the package to install when it is not there, and when it
/// belongs to another version of krige. need: what it is needed for, for that message: "map.tif".
const GeoModule& loadGeoModule(const std::string& need);

/// Loads it from the first of these paths that exists. The object is never unloaded.
const GeoModule& loadGeoModuleFrom(const std::vector<std::string>& paths, const std::string& need);

} // namespace krige

#endif
