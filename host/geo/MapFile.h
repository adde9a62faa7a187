#ifndef FENN_HOST_GEO_MAPFILE_H
#define FENN_HOST_GEO_MAPFILE_H

#include <memory>
#include <string>

#include "host/geo/GeoModule.h"

namespace krige
{

/// Whether a file's name says that it holds points or a raster, which krige reads through its module, and not text:
/// .gpkg, .geojson, .shp, .fgb; .tif, .tiff, .vrt, .asc, .nc. Case does not matter.
bool isMapFile(const std::string& path);

/// Its points or cells as a table. Throws InputError: there is no such file, the module is not installed, the file
/// cannot be read.
std::unique_ptr<MapTable> openMapTable(const std::string& path);

} // namespace krige

#endif
