#ifndef FENN_HOST_GDAL_MAPTABLES_H
#define FENN_HOST_GDAL_MAPTABLES_H

#include <memory>
#include <string>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// A file's points with x, y, z where their geometries have them and then their attributes, of which one with such a
/// name wins over the geometry; or a raster's valid cells with x, y and a column per band: its description, or band1.
/// A cell is valid when it has a value in every band.
std::unique_ptr<MapTable> openTable(const std::string& path);

} // namespace krige::gdal

#endif
