#include <memory>
#include <string>

#include <gdal_priv.h>

#include "host/gdal/GdalErrors.h"
#include "host/gdal/MapTables.h"
#include "host/gdal/MaskFile.h"
#include "host/gdal/PointsFile.h"
#include "host/gdal/RasterFile.h"
#include "host/gdal/ReferenceSystem.h"
#include "host/gdal/openDataset.h"
#include "host/geo/GeoModule.h"

namespace krige::gdal
{

namespace
{

class GdalModule final : public GeoModule
{
public:
    GdalModule()
    {
        installErrorHandler();
        GDALAllRegister();
        takeFailure(); // of plug-ins that this machine lacks something for
    }

    std::unique_ptr<MapTable> openTable(const std::string& path) const override
    {
        return gdal::openTable(path);
    }

    std::unique_ptr<RasterOutput> createRaster(const RasterRequest& request) const override
    {
        return std::make_unique<RasterFile>(request);
    }

    std::unique_ptr<PointsOutput> createPoints(const PointsRequest& request) const override
    {
        return std::make_unique<PointsFile>(request);
    }

    std::unique_ptr<Projection> makeProjection(const std::string& from, const std::string& to) const override
    {
        return gdal::makeProjection(from, to);
    }

    std::unique_ptr<PlaceMask> openMask(const std::string& path, const std::string& crs) const override
    {
        return gdal::openMask(path, crs);
    }

    RasterFrame readFrame(const std::string& path) const override
    {
        const GDALDatasetUniquePtr dataset = openDataset(path);
        if (!isRaster(*dataset))
            throwFailure(path, "is no raster");
        RasterFrame frame = frameOf(*dataset, path);
        if (frame.cellHeight < 0.0) // from south to north: the same cells, the other way round
        {
            frame.cellHeight = -frame.cellHeight;
            frame.top += static_cast<double>(frame.height) * frame.cellHeight;
        }
        return frame;
    }

    std::string findCrs(const std::string& path) const override
    {
        const GDALDatasetUniquePtr dataset = openDataset(path);
        if (isRaster(*dataset))
            return textOf(dataset->GetSpatialRef());
        return textOf(findLayer(*dataset, path, wkbPoint).GetSpatialRef());
    }

    std::string describeCrs(const std::string& crs) const override
    {
        return describe(parseCrs(crs));
    }

    bool areSameCrs(const std::string& first, const std::string& second) const override
    {
        return areSame(parseCrs(first), parseCrs(second));
    }

    bool isGeographic(const std::string& crs) const override
    {
        return parseCrs(crs).IsGeographic() != 0;
    }

    std::string wellKnownText(const std::string& crs) const override
    {
        const OGRSpatialReference parsed = parseCrs(crs);
        return textOf(&parsed);
    }
};

} // namespace

} // namespace krige::gdal

extern "C" __attribute__((visibility("default"))) const char* krige_gdal_version()
{
    return KRIGE_VERSION;
}

extern "C" __attribute__((visibility("default"))) krige::GeoModule* krige_gdal_make()
{
    return new krige::gdal::GdalModule;
}
