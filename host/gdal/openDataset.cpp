#include "host/gdal/openDataset.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <vector>

#include <unistd.h>

#include "host/gdal/GdalErrors.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige::gdal
{

GDALDatasetUniquePtr openDataset(const std::string& path)
{
    if (::access(path.c_str(), R_OK) != 0)
        throw InputError::fromSystem(path, errno);
    GDALDatasetUniquePtr dataset(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
    if (!dataset)
        throwFailure(path, "cannot be read");
    takeFailure();
    if (!isRaster(*dataset) && dataset->GetLayerCount() == 0)
        throw InputError(path + ": holds neither points nor polygons nor one raster");
    return dataset;
}

bool isRaster(GDALDataset& dataset)
{
    return dataset.GetRasterCount() > 0;
}

OGRLayer& findLayer(GDALDataset& dataset, const std::string& path, OGRwkbGeometryType wanted)
{
    if (dataset.GetLayerCount() == 1)
        return *dataset.GetLayer(0);
    std::vector<OGRLayer*> fitting;
    std::string names;
    for (OGRLayer* const layer : dataset.GetLayers())
    {
        names += (names.empty() ? "" : ", ") + quoteForMessage(layer->GetName());
        const OGRwkbGeometryType type = wkbFlatten(layer->GetGeomType());
        if (type == wanted || OGR_GT_GetCollection(wanted) == type)
            fitting.push_back(layer);
    }
    if (fitting.size() == 1)
        return *fitting.front();
    throw InputError(path + ": has " + std::to_string(dataset.GetLayerCount()) + " layers: " + names +
                     "; put one of them into a file of its own, as ogr2ogr one.gpkg " + path + " LAYER does");
}

RasterFrame frameOf(GDALDataset& dataset, const std::string& path)
{
    std::array<double, 6> transform{};
    if (dataset.GetGeoTransform(transform.data()) != CE_None)
        throw InputError(path + ": says nothing of where its cells lie");
    if (transform[2] != 0.0 || transform[4] != 0.0 || !(transform[1] > 0.0) || !(std::abs(transform[5]) > 0.0))
        throw InputError(path + ": its rows do not run from west to east; gdalwarp makes a raster where they do");
    RasterFrame frame;
    frame.width = static_cast<std::uint64_t>(dataset.GetRasterXSize());
    frame.height = static_cast<std::uint64_t>(dataset.GetRasterYSize());
    frame.left = transform[0];
    frame.top = transform[3];
    frame.cellWidth = transform[1];
    frame.cellHeight = -transform[5];
    return frame;
}

} // namespace krige::gdal
