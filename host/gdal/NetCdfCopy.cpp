#include "host/gdal/NetCdfCopy.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <cpl_string.h>

#include "host/gdal/GdalErrors.h"
#include "host/gdal/ReferenceSystem.h"
#include "host/text/HostErrors.h"

namespace krige::gdal
{

namespace
{

constexpr std::uint64_t chunkSize = 256;

/// Names of variables that every reader takes.
std::string plainName(std::string name)
{
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name.front())) != 0)
        name.insert(name.begin(), '_');
    return name;
}

void setText(GDALMDArray& array, const char* name, const std::string& value)
{
    const std::shared_ptr<GDALAttribute> attribute =
        array.CreateAttribute(name, {}, GDALExtendedDataType::CreateString());
    if (attribute)
        attribute->Write(value.c_str());
}

class NetCdfCopy
{
public:
    NetCdfCopy(GDALDataset& raster_, const RasterRequest& request_) : raster(raster_), request(request_)
    {
        if (!request.crs.empty())
            crs = parseCrs(request.crs);
    }

    void run()
    {
        GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("netCDF");
        if (!driver)
            throw InputError(request.name + ": the GDAL that is installed here does not write netCDF");
        CPLStringList options;
        options.SetNameValue("FORMAT", "NC4");
        options.SetNameValue("CONVENTIONS", "CF-1.8");
        const GDALDatasetUniquePtr file(driver->CreateMultiDimensional(request.path.c_str(), nullptr, options.List()));
        if (!file)
            throwFailure(request.name, "cannot be written");
        root = file->GetRootGroup();
        y = createAxis("y", GDAL_DIM_TYPE_HORIZONTAL_Y, "NORTH", request.frame.height);
        x = createAxis("x", GDAL_DIM_TYPE_HORIZONTAL_X, "EAST", request.frame.width);
        for (std::size_t band = 0; band < request.bands.size(); ++band)
            copyBand(band);
        root.reset();
        file->FlushCache(true);
        checkFailure(request.name, "cannot be written");
    }

private:
    using Dimension = std::shared_ptr<GDALDimension>;
    using Array = std::shared_ptr<GDALMDArray>;

    /// The variable that has a dimension's name holds its coordinates.
    Dimension createAxis(const char* name, const char* type, const char* direction, std::uint64_t count)
    {
        const Dimension dimension = root->CreateDimension(name, type, direction, count);
        const Array values =
            dimension ? root->CreateMDArray(name, {dimension}, GDALExtendedDataType::Create(GDT_Float64)) : nullptr;
        if (!values)
            throwFailure(request.name, "cannot be written");
        const bool isX = *name == 'x';
        setText(*values, "axis", isX ? "X" : "Y");
        if (crs.IsGeographic() != 0)
        {
            setText(*values, "standard_name", isX ? "longitude" : "latitude");
            setText(*values, "units", isX ? "degrees_east" : "degrees_north");
        }
        else if (!crs.IsEmpty())
        {
            const char* unit = nullptr;
            const double metres = crs.GetLinearUnits(&unit);
            setText(*values, "standard_name", isX ? "projection_x_coordinate" : "projection_y_coordinate");
            setText(*values, "units", metres == 1.0 ? "m" : unit);
        }
        std::vector<double> centres;
        const RasterFrame& frame = request.frame;
        for (std::uint64_t i = 0; i < count; ++i)
            centres.push_back(isX ? frame.left + (static_cast<double>(i) + 0.5) * frame.cellWidth
                                  : frame.top - (static_cast<double>(count - 1 - i) + 0.5) * frame.cellHeight);
        const GUInt64 start = 0;
        const std::size_t size = centres.size();
        values->Write(&start, &size, nullptr, nullptr, GDALExtendedDataType::Create(GDT_Float64), centres.data());
        return dimension;
    }

    void copyBand(std::size_t band)
    {
        const RasterFrame& frame = request.frame;
        CPLStringList options;
        options.SetNameValue("COMPRESS", "DEFLATE");
        options.SetNameValue("ZLEVEL", "1");
        options.SetNameValue("BLOCKSIZE", (std::to_string(std::min(chunkSize, frame.height)) + ',' +
                                           std::to_string(std::min(chunkSize, frame.width)))
                                              .c_str());
        const Array array = root->CreateMDArray(plainName(request.bands[band].name), {y, x},
                                                GDALExtendedDataType::Create(typeOfCells()), options.List());
        if (!array)
            throwFailure(request.name, "cannot be written");
        array->SetNoDataValue(std::numeric_limits<double>::quiet_NaN());
        setText(*array, "long_name", request.bands[band].name);
        if (!request.bands[band].unit.empty())
            array->SetUnit(request.bands[band].unit);
        if (!crs.IsEmpty())
            array->SetSpatialRef(&crs);

        const auto width = static_cast<std::size_t>(frame.width);
        std::vector<double> rows;
        for (std::uint64_t firstRow = 0; firstRow < frame.height; firstRow += chunkSize) // from the south
        {
            const auto numRows = static_cast<std::size_t>(std::min(chunkSize, frame.height - firstRow));
            rows.resize(numRows * width);
            const std::uint64_t top = frame.height - firstRow - numRows;
            if (raster.GetRasterBand(static_cast<int>(band) + 1)
                    ->RasterIO(GF_Read, 0, static_cast<int>(top), static_cast<int>(width), static_cast<int>(numRows),
                               rows.data(), static_cast<int>(width), static_cast<int>(numRows), GDT_Float64, 0, 0,
                               nullptr) != CE_None)
                throwFailure(request.name, "writing failed");
            for (std::size_t row = 0; row < numRows / 2; ++row)
                std::swap_ranges(rows.begin() + static_cast<std::ptrdiff_t>(row * width),
                                 rows.begin() + static_cast<std::ptrdiff_t>((row + 1) * width),
                                 rows.begin() + static_cast<std::ptrdiff_t>((numRows - 1 - row) * width));
            const std::array<GUInt64, 2> start{firstRow, 0};
            const std::array<std::size_t, 2> count{numRows, width};
            if (!array->Write(start.data(), count.data(), nullptr, nullptr, GDALExtendedDataType::Create(GDT_Float64),
                              rows.data()))
                throwFailure(request.name, "writing failed");
        }
    }

    GDALDataType typeOfCells() const
    {
        return request.isFloat32 ? GDT_Float32 : GDT_Float64;
    }

    GDALDataset& raster;
    const RasterRequest& request;
    OGRSpatialReference crs; // empty: unknown
    std::shared_ptr<GDALGroup> root;
    Dimension x;
    Dimension y;
};

} // namespace

void copyToNetCdf(GDALDataset& raster, const RasterRequest& request)
{
    NetCdfCopy(raster, request).run();
}

} // namespace krige::gdal
