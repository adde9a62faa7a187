#ifndef FENN_HOST_GDAL_NETCDFCOPY_H
#define FENN_HOST_GDAL_NETCDFCOPY_H

#include <gdal_priv.h>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// Writes a raster as a netCDF-4 file by the CF conventions: coordinate variables x and y, which ascend, and one
/// variable per band with its own name. (GDAL's own copy numbers the names of several bands.) raster: north up, as
/// request says.
void copyToNetCdf(GDALDataset& raster, const RasterRequest& request);

} // namespace krige::gdal

#endif
