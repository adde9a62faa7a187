#include "host/gdal/MapTables.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <vector>

#include "host/gdal/GdalErrors.h"
#include "host/gdal/openDataset.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige::gdal
{

namespace
{

/// In quotes where it could be taken for more or less than one field.
void appendText(std::string& out, const std::string& text)
{
    const bool isPlain = std::all_of(text.begin(), text.end(),
                                     [](unsigned char c) { return std::isalnum(c) != 0 || c == '_' || c == '.'; });
    if (isPlain)
    {
        out += text;
        return;
    }
    out += '"';
    for (const char c : text)
        out += c == '"' ? std::string("\"\"") : std::string(1, c);
    out += '"';
}

/// Hands out text that is made piece by piece.
class TextTable : public MapTable
{
public:
    std::size_t read(char* bytes, std::size_t capacity) override
    {
        std::size_t numRead = 0;
        while (numRead < capacity)
        {
            if (used == text.size())
            {
                text.clear();
                used = 0;
                if (!appendPiece(text))
                    break;
            }
            const std::size_t count = std::min(capacity - numRead, text.size() - used);
            std::memcpy(bytes + numRead, text.data() + used, count);
            numRead += count;
            used += count;
        }
        return numRead;
    }

protected:
    /// False at the end; true without a character where a piece has nothing.
    virtual bool appendPiece(std::string& out) = 0;

    static void closeLine(std::string& line)
    {
        line.back() = '\n'; // in place of the last comma
    }

private:
    std::string text;
    std::size_t used = 0;
};

class LayerTable final : public TextTable
{
public:
    LayerTable(GDALDatasetUniquePtr dataset_, const std::string& path_)
        : path(path_), dataset(std::move(dataset_)), layer(findLayer(*dataset, path, wkbPoint))
    {
        OGRFeatureDefn& definition = *layer.GetLayerDefn();
        std::set<std::string> names;
        for (int i = 0; i < definition.GetFieldCount(); ++i)
            names.insert(definition.GetFieldDefn(i)->GetNameRef());
        const OGRwkbGeometryType type = layer.GetGeomType();
        const bool mayHavePoints =
            wkbFlatten(type) == wkbPoint || wkbFlatten(type) == wkbMultiPoint || wkbFlatten(type) == wkbUnknown;
        const bool needsPoints = names.count("x") == 0 || names.count("y") == 0;
        if (!mayHavePoints && needsPoints)
            throw InputError(path + ": its layer " + quoteForMessage(layer.GetName()) + " holds no points but " +
                             OGRGeometryTypeToName(type));
        takesX = mayHavePoints && names.count("x") == 0;
        takesY = mayHavePoints && names.count("y") == 0;
        takesZ = mayHavePoints && names.count("z") == 0 && (OGR_GT_HasZ(type) != 0 || firstHasHeight());
        layer.ResetReading();
    }

protected:
    bool appendPiece(std::string& out) override
    {
        if (!hasHeader)
        {
            appendHeader(out);
            hasHeader = true;
            return true;
        }
        const OGRFeatureUniquePtr feature(layer.GetNextFeature());
        checkFailure(path, "reading failed");
        if (!feature)
            return false;
        ++numRead;
        appendPlace(out, *feature);
        for (int i = 0; i < feature->GetFieldCount(); ++i)
        {
            appendAttribute(out, *feature, i);
            out += ',';
        }
        closeLine(out);
        return true;
    }

private:
    /// GeoJSON says of each feature only what it is.
    bool firstHasHeight()
    {
        layer.ResetReading();
        const OGRFeatureUniquePtr first(layer.GetNextFeature());
        const OGRGeometry* const geometry = first ? first->GetGeometryRef() : nullptr;
        return geometry && geometry->Is3D() != 0;
    }

    void appendHeader(std::string& out) const
    {
        out += takesX ? "x," : "";
        out += takesY ? "y," : "";
        out += takesZ ? "z," : "";
        const OGRFeatureDefn& definition = *layer.GetLayerDefn();
        for (int i = 0; i < definition.GetFieldCount(); ++i)
        {
            appendText(out, definition.GetFieldDefn(i)->GetNameRef());
            out += ',';
        }
        closeLine(out);
    }

    void appendPlace(std::string& out, OGRFeature& feature) const
    {
        if (!takesX && !takesY && !takesZ)
            return;
        const OGRGeometry* geometry = feature.GetGeometryRef();
        if (geometry && wkbFlatten(geometry->getGeometryType()) == wkbMultiPoint &&
            geometry->toMultiPoint()->getNumGeometries() == 1)
            geometry = geometry->toMultiPoint()->getGeometryRef(0);
        if (geometry && wkbFlatten(geometry->getGeometryType()) != wkbPoint)
            throw InputError::atLine(path, numRead + 1,
                                     std::string("is no point but a ") + geometry->getGeometryName());
        const OGRPoint* const point = geometry && geometry->IsEmpty() == 0 ? geometry->toPoint() : nullptr;
        const auto append = [&](bool isTaken, bool isThere, double value)
        {
            if (!isTaken)
                return;
            if (isThere)
                appendNumber(out, value);
            out += ',';
        };
        append(takesX, point != nullptr, point ? point->getX() : 0.0);
        append(takesY, point != nullptr, point ? point->getY() : 0.0);
        append(takesZ, point && point->Is3D() != 0, point ? point->getZ() : 0.0);
    }

    static void appendAttribute(std::string& out, const OGRFeature& feature, int field)
    {
        if (!feature.IsFieldSetAndNotNull(field))
            return;
        switch (feature.GetFieldDefnRef(field)->GetType())
        {
        case OFTReal:
            appendNumber(out, feature.GetFieldAsDouble(field));
            break;
        case OFTInteger:
        case OFTInteger64:
            out += std::to_string(feature.GetFieldAsInteger64(field));
            break;
        default:
            appendText(out, const_cast<OGRFeature&>(feature).GetFieldAsString(field));
        }
    }

    std::string path;
    GDALDatasetUniquePtr dataset;
    OGRLayer& layer;
    bool takesX = false;
    bool takesY = false;
    bool takesZ = false;
    bool hasHeader = false;
    std::size_t numRead = 0; // points
};

class CellTable final : public TextTable
{
public:
    CellTable(GDALDatasetUniquePtr dataset_, const std::string& path_)
        : path(path_), dataset(std::move(dataset_)), frame(frameOf(*dataset, path_))
    {
        int blockWidth = 0;
        int blockHeight = 0;
        dataset->GetRasterBand(1)->GetBlockSize(&blockWidth, &blockHeight);
        constexpr std::uint64_t mostCells = std::uint64_t{1} << 20; // at a time, unless one row is longer
        const std::uint64_t fitting = std::max<std::uint64_t>(1, mostCells / frame.width);
        rowsPerPiece =
            std::min(frame.height, std::min<std::uint64_t>(fitting, static_cast<std::uint64_t>(blockHeight)));
    }

protected:
    bool appendPiece(std::string& out) override
    {
        if (!hasHeader)
        {
            appendHeader(out);
            hasHeader = true;
            return true;
        }
        if (nextRow == frame.height)
            return false;
        const std::uint64_t numRows = std::min(rowsPerPiece, frame.height - nextRow);
        readRows(numRows);
        for (std::uint64_t cell = 0; cell < numRows * frame.width; ++cell)
        {
            if (std::any_of(values.begin(), values.end(),
                            [cell](const std::vector<double>& band) { return std::isnan(band[cell]); }))
                continue;
            const auto column = static_cast<double>(cell % frame.width);
            const std::uint64_t rowOfCell = nextRow + cell / frame.width;
            const auto row = static_cast<double>(rowOfCell);
            appendNumber(out, frame.left + (column + 0.5) * frame.cellWidth);
            out += ',';
            appendNumber(out, frame.top - (row + 0.5) * frame.cellHeight);
            for (const std::vector<double>& band : values)
            {
                out += ',';
                appendNumber(out, band[cell]);
            }
            out += '\n';
        }
        nextRow += numRows;
        return true;
    }

private:
    void appendHeader(std::string& out) const
    {
        out += "x,y";
        for (int i = 1; i <= dataset->GetRasterCount(); ++i)
        {
            const std::string description = dataset->GetRasterBand(i)->GetDescription();
            out += ',';
            appendText(out, description.empty() ? "band" + std::to_string(i) : description);
        }
        out += '\n';
    }

    /// Values become NaN where there is none.
    void readRows(std::uint64_t numRows)
    {
        const auto width = static_cast<int>(frame.width);
        const auto height = static_cast<int>(numRows);
        const auto row = static_cast<int>(nextRow);
        const std::size_t count = frame.width * numRows;
        values.resize(static_cast<std::size_t>(dataset->GetRasterCount()));
        isValid.resize(count);
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            values[i].resize(count);
            GDALRasterBand& band = *dataset->GetRasterBand(static_cast<int>(i) + 1);
            if (band.RasterIO(GF_Read, 0, row, width, height, values[i].data(), width, height, GDT_Float64, 0, 0,
                              nullptr) != CE_None ||
                band.GetMaskBand()->RasterIO(GF_Read, 0, row, width, height, isValid.data(), width, height, GDT_Byte, 0,
                                             0, nullptr) != CE_None)
                throwFailure(path, "reading failed");
            for (std::size_t cell = 0; cell < count; ++cell)
            {
                if (isValid[cell] == 0)
                    values[i][cell] = std::numeric_limits<double>::quiet_NaN();
            }
        }
    }

    std::string path;
    GDALDatasetUniquePtr dataset;
    RasterFrame frame;
    std::uint64_t rowsPerPiece = 1;
    std::uint64_t nextRow = 0;
    bool hasHeader = false;
    std::vector<std::vector<double>> values; // per band, of the rows being written
    std::vector<unsigned char> isValid;
};

} // namespace

std::unique_ptr<MapTable> openTable(const std::string& path)
{
    GDALDatasetUniquePtr dataset = openDataset(path);
    if (isRaster(*dataset))
        return std::make_unique<CellTable>(std::move(dataset), path);
    return std::make_unique<LayerTable>(std::move(dataset), path);
}

} // namespace krige::gdal
