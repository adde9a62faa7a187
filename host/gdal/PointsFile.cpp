#include "host/gdal/PointsFile.h"

#include <cmath>

#include <cpl_string.h>

#include "host/gdal/GdalErrors.h"
#include "host/gdal/ReferenceSystem.h"
#include "host/text/HostErrors.h"

namespace krige::gdal
{

PointsFile::PointsFile(const PointsRequest& request_) : request(request_)
{
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(request.driver.c_str());
    if (!driver)
        throw InputError(request.name + ": the GDAL that is installed here does not write " + request.driver);
    // What is not finished is thrown away: nothing need be undone.
    const CPLConfigOptionSetter noJournal("OGR_SQLITE_JOURNAL", "OFF", false);
    dataset.reset(driver->Create(request.path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!dataset)
        throwFailure(request.name, "cannot be written");
    CPLStringList options;
    if (request.driver == "GeoJSON")
        options.SetNameValue("SIGNIFICANT_FIGURES", "17"); // read back to the same bits
    if (request.driver == "ESRI Shapefile")
        options.SetNameValue("ENCODING", "UTF-8");
    OGRSpatialReference crs;
    if (!request.crs.empty())
        crs = parseCrs(request.crs);
    layer = dataset->CreateLayer(request.layer.c_str(), request.crs.empty() ? nullptr : &crs, wkbPoint, options.List());
    if (!layer)
        throwFailure(request.name, "cannot be written");
    for (const std::string& name : request.numberNames)
    {
        OGRFieldDefn field(name.c_str(), OFTReal);
        layer->CreateField(&field);
    }
    for (const std::string& name : request.textNames)
    {
        OGRFieldDefn field(name.c_str(), OFTString);
        layer->CreateField(&field);
    }
    checkFailure(request.name, "cannot be written");
    dataset->StartTransaction();
    takeFailure(); // of formats without transactions
}

void PointsFile::write(double x, double y, const std::vector<double>& numbers, const std::vector<std::string>& texts)
{
    OGRFeature feature(layer->GetLayerDefn());
    if (std::isfinite(x) && std::isfinite(y))
    {
        const OGRPoint point(x, y);
        feature.SetGeometry(&point);
    }
    int field = 0;
    for (const double number : numbers)
    {
        if (!std::isnan(number))
            feature.SetField(field, number);
        ++field;
    }
    for (const std::string& text : texts)
        feature.SetField(field++, text.c_str());
    if (layer->CreateFeature(&feature) != OGRERR_NONE)
        throwFailure(request.name, "writing failed");
}

void PointsFile::finish()
{
    if (dataset->TestCapability(ODsCTransactions) != 0 && dataset->CommitTransaction() != OGRERR_NONE)
        throwFailure(request.name, "writing failed");
    dataset->FlushCache(true);
    dataset.reset();
    checkFailure(request.name, "writing failed");
}

} // namespace krige::gdal
