#ifndef FENN_HOST_GDAL_OPENDATASET_H
#define FENN_HOST_GDAL_OPENDATASET_H

#include <string>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// Opens a file of points, polygons or cells. Throws InputError when it cannot be read or holds none of them.
GDALDatasetUniquePtr openDataset(const std::string& path);

bool isRaster(GDALDataset& dataset);

/// Its only layer, or the only one with geometries of this kind. Throws InputError that lists the layers when that is
/// not one.
OGRLayer& findLayer(GDALDataset& dataset, const std::string& path, OGRwkbGeometryType wanted);

/// Of a raster that lies straight; one whose rows run from south to north has a negative cellHeight here. Throws
/// InputError for others.
RasterFrame frameOf(GDALDataset& dataset, const std::string& path);

} // namespace krige::gdal

#endif
