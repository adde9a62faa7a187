#include "host/gdal/MaskFile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <ogr_geometry.h>

#include "host/gdal/GdalErrors.h"
#include "host/gdal/ReferenceSystem.h"
#include "host/gdal/openDataset.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige::gdal
{

namespace
{

/// Brings places into the CRS of the file first, where that is another one.
class ProjectedMask : public PlaceMask
{
public:
    void mark(const std::vector<double>& x, const std::vector<double>& y, std::vector<bool>& isMasked) const final
    {
        if (!projection)
        {
            markHere(x, y, isMasked);
            return;
        }
        std::vector<double> projectedX = x;
        std::vector<double> projectedY = y;
        projection->apply(projectedX, projectedY);
        markHere(projectedX, projectedY, isMasked);
    }

protected:
    ProjectedMask(const OGRSpatialReference* ofFile, const std::string& crs)
    {
        if (ofFile && !ofFile->IsEmpty() && !crs.empty() && !areSame(*ofFile, parseCrs(crs)))
            projection = makeProjection(crs, textOf(ofFile));
    }

    virtual void markHere(const std::vector<double>& x, const std::vector<double>& y,
                          std::vector<bool>& isMasked) const = 0;

private:
    std::unique_ptr<Projection> projection;
};

const OGRSpatialReference* crsOf(OGRLayer& layer)
{
    return layer.GetSpatialRef();
}

class PolygonMask final : public ProjectedMask
{
public:
    PolygonMask(OGRLayer& layer, const std::string& path, const std::string& crs) : ProjectedMask(crsOf(layer), crs)
    {
        for (const OGRFeatureUniquePtr& feature : layer)
        {
            const OGRGeometry* const geometry = feature->GetGeometryRef();
            if (!geometry || geometry->IsEmpty() != 0)
                continue;
            const OGRwkbGeometryType type = wkbFlatten(geometry->getGeometryType());
            if (type != wkbPolygon && type != wkbMultiPolygon)
                throw InputError(path + ": a mask is made of polygons or is a raster, but there is a " +
                                 geometry->getGeometryName());
            polygons.emplace_back();
            polygons.back().shape.reset(geometry->clone());
            polygons.back().prepared.reset(
                OGRCreatePreparedGeometry(OGRGeometry::ToHandle(polygons.back().shape.get())));
            geometry->getEnvelope(&polygons.back().box);
        }
        checkFailure(path, "reading failed");
        if (polygons.empty())
            throw InputError(path + ": holds no polygon");
        if (std::any_of(polygons.begin(), polygons.end(), [](const Polygon& polygon) { return !polygon.prepared; }))
            throw InputError(path + ": the GDAL that is installed here cannot tell what is in a polygon (no GEOS)");
    }

protected:
    void markHere(const std::vector<double>& x, const std::vector<double>& y,
                  std::vector<bool>& isMasked) const override
    {
        for (std::size_t t = 0; t < x.size(); ++t)
        {
            if (!isMasked[t] && !holds(x[t], y[t]))
                isMasked[t] = true;
        }
    }

private:
    struct Polygon
    {
        OGRGeometryUniquePtr shape;
        OGRPreparedGeometryUniquePtr prepared; // refers to the shape
        OGREnvelope box;
    };

    bool holds(double x, double y) const
    {
        const OGRPoint place(x, y);
        return std::any_of(polygons.begin(), polygons.end(),
                           [&](const Polygon& polygon)
                           {
                               return x >= polygon.box.MinX && x <= polygon.box.MaxX && y >= polygon.box.MinY &&
                                      y <= polygon.box.MaxY &&
                                      OGRPreparedGeometryIntersects(
                                          polygon.prepared.get(),
                                          OGRGeometry::ToHandle(&const_cast<OGRPoint&>(place))) != 0;
                           });
    }

    std::vector<Polygon> polygons;
};

class CellMask final : public ProjectedMask
{
public:
    CellMask(GDALDatasetUniquePtr dataset_, const std::string& path_, const std::string& crs)
        : ProjectedMask(dataset_->GetSpatialRef(), crs),
          path(path_),
          dataset(std::move(dataset_)),
          frame(frameOf(*dataset, path))
    {
    }

protected:
    void markHere(const std::vector<double>& x, const std::vector<double>& y,
                  std::vector<bool>& isMasked) const override
    {
        constexpr std::int64_t outside = -1;
        std::vector<std::int64_t> columns(x.size(), outside);
        std::vector<std::int64_t> rows(x.size(), outside);
        CellBox box;
        for (std::size_t t = 0; t < x.size(); ++t)
        {
            const double column = std::floor((x[t] - frame.left) / frame.cellWidth);
            const double row = std::floor((frame.top - y[t]) / frame.cellHeight);
            if (!(column >= 0.0 && column < static_cast<double>(frame.width) && row >= 0.0 &&
                  row < static_cast<double>(frame.height)))
            {
                isMasked[t] = true;
                continue;
            }
            columns[t] = static_cast<std::int64_t>(column);
            rows[t] = static_cast<std::int64_t>(row);
            box.add(columns[t], rows[t]);
        }
        constexpr std::int64_t mostCells = std::int64_t{1} << 24; // at a time; scattered places are read one by one
        const bool readsBox = box.size() <= mostCells;
        if (readsBox && box.size() > 0)
            readValidity(box);
        for (std::size_t t = 0; t < x.size(); ++t)
        {
            if (columns[t] == outside)
                continue;
            if (!readsBox)
                readValidity({columns[t], columns[t], rows[t], rows[t]});
            const CellBox& read = readsBox ? box : CellBox{columns[t], columns[t], rows[t], rows[t]};
            const auto cell =
                static_cast<std::size_t>((rows[t] - read.top) * (read.right - read.left + 1) + columns[t] - read.left);
            if (!isValid[cell])
                isMasked[t] = true;
        }
    }

private:
    struct CellBox
    {
        std::int64_t left = std::numeric_limits<std::int64_t>::max();
        std::int64_t right = -1;
        std::int64_t top = std::numeric_limits<std::int64_t>::max();
        std::int64_t bottom = -1;

        void add(std::int64_t column, std::int64_t row)
        {
            left = std::min(left, column);
            right = std::max(right, column);
            top = std::min(top, row);
            bottom = std::max(bottom, row);
        }

        std::int64_t size() const
        {
            return right < left ? 0 : (right - left + 1) * (bottom - top + 1);
        }
    };

    void readValidity(const CellBox& box) const
    {
        const auto width = static_cast<int>(box.right - box.left + 1);
        const auto height = static_cast<int>(box.bottom - box.top + 1);
        const auto count = static_cast<std::size_t>(box.size());
        values.resize(count);
        flags.resize(count);
        GDALRasterBand& band = *dataset->GetRasterBand(1);
        if (band.RasterIO(GF_Read, static_cast<int>(box.left), static_cast<int>(box.top), width, height, values.data(),
                          width, height, GDT_Float64, 0, 0, nullptr) != CE_None ||
            band.GetMaskBand()->RasterIO(GF_Read, static_cast<int>(box.left), static_cast<int>(box.top), width, height,
                                         flags.data(), width, height, GDT_Byte, 0, 0, nullptr) != CE_None)
            throwFailure(path, "reading failed");
        isValid.resize(count);
        for (std::size_t cell = 0; cell < count; ++cell)
            isValid[cell] = flags[cell] != 0 && !std::isnan(values[cell]);
    }

    std::string path;
    GDALDatasetUniquePtr dataset;
    RasterFrame frame;
    // Of the cells read last; kept: they grow to a block's size once.
    mutable std::vector<double> values;
    mutable std::vector<unsigned char> flags;
    mutable std::vector<bool> isValid;
};

} // namespace

std::unique_ptr<PlaceMask> openMask(const std::string& path, const std::string& crs)
{
    GDALDatasetUniquePtr dataset = openDataset(path);
    if (isRaster(*dataset))
        return std::make_unique<CellMask>(std::move(dataset), path, crs);
    return std::make_unique<PolygonMask>(findLayer(*dataset, path, wkbPolygon), path, crs);
}

} // namespace krige::gdal
