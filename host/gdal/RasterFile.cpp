#include "host/gdal/RasterFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <cpl_string.h>

#include "host/gdal/GdalErrors.h"
#include "host/gdal/NetCdfCopy.h"
#include "host/gdal/ReferenceSystem.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige::gdal
{

namespace
{

constexpr std::uint64_t tileSize = 256;

/// A row of tiles, which formats that are written row by row are copied from, and a little more.
GIntBig cacheFor(const RasterRequest& request)
{
    constexpr std::uint64_t least = std::uint64_t{64} << 20;
    const std::uint64_t rowOfTiles = (request.frame.width + tileSize) * tileSize * sizeof(double);
    return static_cast<GIntBig>(std::max(least, rowOfTiles + rowOfTiles / 4));
}

} // namespace

RasterFile::RasterFile(const RasterRequest& request_)
    : request(request_), noData(request_.driver == "AAIGrid" ? -9999.0 : std::numeric_limits<double>::quiet_NaN())
{
    create();
}

bool RasterFile::isCopied() const
{
    return request.driver != "GTiff";
}

void RasterFile::create()
{
    constexpr auto mostCells = static_cast<std::uint64_t>(std::numeric_limits<int>::max());
    if (request.frame.width > mostCells || request.frame.height > mostCells)
        throw InputError(request.name + ": a raster has at most " + std::to_string(mostCells) + " columns and rows");
    GDALSetCacheMax64(cacheFor(request));

    CPLStringList options;
    options.SetNameValue("TILED", "YES");
    options.SetNameValue("BLOCKXSIZE", std::to_string(tileSize).c_str());
    options.SetNameValue("BLOCKYSIZE", std::to_string(tileSize).c_str());
    options.SetNameValue("INTERLEAVE", "BAND");
    // Of what every reader of GeoTIFF unpacks, the fastest, and with the predictor for floating point the smallest too.
    options.SetNameValue("COMPRESS", "DEFLATE");
    options.SetNameValue("ZLEVEL", "1");
    options.SetNameValue("PREDICTOR", "3");
    options.SetNameValue("BIGTIFF", "IF_SAFER");
    options.SetNameValue("NUM_THREADS", std::to_string(std::max(1, request.numThreads)).c_str());
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    const CPLConfigOptionSetter noSidecars("GDAL_PAM_ENABLED", "NO", false);
    dataset.reset(driver->Create((isCopied() ? request.scratchPath : request.path).c_str(),
                                 static_cast<int>(request.frame.width), static_cast<int>(request.frame.height),
                                 static_cast<int>(request.bands.size()), request.isFloat32 ? GDT_Float32 : GDT_Float64,
                                 options.List()));
    if (!dataset)
        throwFailure(request.name, "cannot be written");
    std::array<double, 6> transform{request.frame.left,       request.frame.cellWidth, 0.0, request.frame.top, 0.0,
                                    -request.frame.cellHeight};
    dataset->SetGeoTransform(transform.data());
    if (!request.crs.empty())
    {
        const OGRSpatialReference crs = parseCrs(request.crs);
        dataset->SetSpatialRef(&crs);
    }
    for (std::size_t i = 0; i < request.bands.size(); ++i)
    {
        GDALRasterBand& band = *dataset->GetRasterBand(static_cast<int>(i) + 1);
        band.SetDescription(request.bands[i].name.c_str());
        band.SetNoDataValue(noData);
        if (!request.bands[i].unit.empty())
            band.SetUnitType(request.bands[i].unit.c_str());
    }
    checkFailure(request.name, "cannot be written");
}

void RasterFile::write(std::size_t band, const RasterWindow& window, const double* values)
{
    const std::size_t count = window.width * window.height;
    marked.assign(values, values + count);
    if (!std::isnan(noData))
    {
        if (std::find(marked.begin(), marked.end(), noData) != marked.end())
            throw InputError(request.name + ": a value is " + formatNumber(noData) +
                             ", which stands for no value there; name a .tif file");
        std::replace_if(
            marked.begin(), marked.end(), [](double value) { return std::isnan(value); }, noData);
    }
    const auto width = static_cast<int>(window.width);
    const auto height = static_cast<int>(window.height);
    const CPLErr status = dataset->GetRasterBand(static_cast<int>(band) + 1)
                              ->RasterIO(GF_Write, static_cast<int>(window.column), static_cast<int>(window.row), width,
                                         height, marked.data(), width, height, GDT_Float64, 0, 0, nullptr);
    if (status != CE_None)
        throwFailure(request.name, "writing failed");
}

void RasterFile::finish()
{
    const CPLConfigOptionSetter noSidecars("GDAL_PAM_ENABLED", "NO", false);
    dataset->FlushCache(true);
    checkFailure(request.name, "writing failed");
    if (isCopied())
        copy();
    dataset.reset();
    checkFailure(request.name, "writing failed");
}

void RasterFile::copy()
{
    if (request.driver == "netCDF")
    {
        copyToNetCdf(*dataset, request);
        return;
    }
    CPLStringList options;
    options.SetNameValue("SIGNIFICANT_DIGITS", request.isFloat32 ? "9" : "17"); // read back to the same bits
    options.SetNameValue("FORCE_CELLSIZE", "YES");
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(request.driver.c_str());
    if (!driver)
        throw InputError(request.name + ": the GDAL that is installed here does not write " + request.driver);
    const GDALDatasetUniquePtr copied(
        driver->CreateCopy(request.path.c_str(), dataset.get(), FALSE, options.List(), nullptr, nullptr));
    if (!copied)
        throwFailure(request.name, "cannot be written");
    copied->FlushCache(true);
}

} // namespace krige::gdal
