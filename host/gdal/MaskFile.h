#ifndef FENN_HOST_GDAL_MASKFILE_H
#define FENN_HOST_GDAL_MASKFILE_H

#include <memory>
#include <string>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// Polygons, within which or on whose edges a place is of interest, or a raster, of which it must be on a cell that is
/// valid in the first band and not NaN. crs: of the places; both known and unlike, places are projected first.
std::unique_ptr<PlaceMask> openMask(const std::string& path, const std::string& crs);

} // namespace krige::gdal

#endif
