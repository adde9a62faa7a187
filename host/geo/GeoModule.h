#ifndef FENN_HOST_GEO_GEOMODULE_H
#define FENN_HOST_GEO_GEOMODULE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace krige
{

/// The cells of a north-up raster: column 0 at the left, row 0 at the top. Cell sizes are above 0.
struct RasterFrame
{
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    double left = 0.0; // outer edges
    double top = 0.0;
    double cellWidth = 0.0;
    double cellHeight = 0.0;
};

/// Cells of a raster, in rows from the top.
struct RasterWindow
{
    std::uint64_t column = 0;
    std::uint64_t row = 0;
    std::size_t width = 0;
    std::size_t height = 0;
};

/// A column of predictions in a file that has metadata.
struct MapColumn
{
    std::string name;
    std::string unit{}; // empty: unknown
};

struct RasterRequest
{
    std::string name;        // for messages
    std::string path;        // nothing is there yet
    std::string scratchPath; // of the GeoTIFF from which other formats are copied
    std::string driver;      // as GDAL calls the format
    RasterFrame frame;
    std::string crs; // empty: unknown
    std::vector<MapColumn> bands;
    bool isFloat32 = false;
    int numThreads = 1; // that pack
};

/// Writes a raster window by window, in any order. The file is whole after finish.
class RasterOutput
{
public:
    virtual ~RasterOutput() = default;
    virtual void write(std::size_t band, const RasterWindow& window, const double* values) = 0;
    virtual void finish() = 0;
};

struct PointsRequest
{
    std::string name; // for messages
    std::string path; // nothing is there yet
    std::string driver;
    std::string layer; // its name
    std::string crs;   // empty: unknown
    std::vector<std::string> numberNames;
    std::vector<std::string> textNames;
};

/// Writes points with attributes. The file is whole after finish.
class PointsOutput
{
public:
    virtual ~PointsOutput() = default;

    /// numbers: per name; NaN becomes no value. texts: per name.
    virtual void write(double x, double y, const std::vector<double>& numbers,
                       const std::vector<std::string>& texts) = 0;
    virtual void finish() = 0;
};

/// Reads points with attributes, or the valid cells of a raster, as the text of a CSV file: a header row, then one line
/// each. Commas separate; numbers have the fewest digits that read back to the same bits.
class MapTable
{
public:
    virtual ~MapTable() = default;

    /// Reads capacity bytes; fewer only at the end, and 0 after it.
    virtual std::size_t read(char* bytes, std::size_t capacity) = 0;
};

/// Takes coordinates from one coordinate reference system to another: eastings, or longitudes, in x.
class Projection
{
public:
    virtual ~Projection() = default;

    /// Places that have no image become NaN; returns their number.
    virtual std::size_t apply(std::vector<double>& x, std::vector<double>& y) const = 0;
};

/// Which places are of interest: those within polygons, or on valid cells of a raster.
class PlaceMask
{
public:
    virtual ~PlaceMask() = default;

    /// Sets isMasked[t] where place t is of none; leaves the others alone.
    virtual void mark(const std::vector<double>& x, const std::vector<double>& y,
                      std::vector<bool>& isMasked) const = 0;
};

/// What krige does with files of maps and with coordinate reference systems (CRS). The text of a CRS is whatever a
/// person writes, such as EPSG:28992, or what findCrs returned; the empty one stands for unknown.
///
/// Lives in a module of its own, so that krige itself does not depend on GDAL. Errors are InputError with the file's
/// name; UsageError for a CRS that nobody knows. One thread.
class GeoModule
{
public:
    virtual ~GeoModule() = default;

    virtual std::unique_ptr<MapTable> openTable(const std::string& path) const = 0;
    virtual std::unique_ptr<RasterOutput> createRaster(const RasterRequest& request) const = 0;
    virtual std::unique_ptr<PointsOutput> createPoints(const PointsRequest& request) const = 0;
    virtual std::unique_ptr<Projection> makeProjection(const std::string& from, const std::string& to) const = 0;

    /// crs: of the places that will be asked about.
    virtual std::unique_ptr<PlaceMask> openMask(const std::string& path, const std::string& crs) const = 0;

    /// Throws InputError when the file is no raster or its rows do not run from west to east.
    virtual RasterFrame readFrame(const std::string& path) const = 0;

    /// The CRS of a file's points or cells; empty for none.
    virtual std::string findCrs(const std::string& path) const = 0;

    /// How people know it: EPSG:28992, or its name.
    virtual std::string describeCrs(const std::string& crs) const = 0;
    virtual bool areSameCrs(const std::string& first, const std::string& second) const = 0;
    virtual bool isGeographic(const std::string& crs) const = 0;

    /// For XML beside rasters.
    virtual std::string wellKnownText(const std::string& crs) const = 0;
};

/// The module's two entry points. A module of another version is not used: the classes above would not fit.
constexpr const char* geoModuleVersionName = "krige_gdal_version";
constexpr const char* geoModuleMakeName = "krige_gdal_make";
using GeoModuleVersion = const char* (*)();
using MakeGeoModule = GeoModule* (*)(); // the caller deletes it

} // namespace krige

#endif
