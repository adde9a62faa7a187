#ifndef FENN_HOST_TARGETS_MAPPREDICTIONS_H
#define FENN_HOST_TARGETS_MAPPREDICTIONS_H

#include <memory>
#include <string>
#include <vector>

#include "host/files/PendingFile.h"
#include "host/geo/GeoModule.h"
#include "host/geo/MapAxes.h"
#include "host/targets/OutputFormat.h"
#include "host/targets/PredictionWriter.h"
#include "host/targets/RasterGrid.h"
#include "host/targets/Shard.h"

namespace krige
{

/// What files of maps hold beside their values.
struct MapOutput
{
    std::string path;
    const OutputFormat* format = nullptr;
    std::string crs;                // empty: unknown
    std::vector<MapColumn> columns; // the values
    bool isFloat32 = false;         // of rasters
    int numThreads = 1;             // that pack rasters
};

/// A raster with one band per column, the first one the estimate; of a part its rows. Every part writes the .vrt that
/// joins them all, the same bytes each.
class RasterPredictions : public PredictionWriter
{
public:
    /// frame: of the whole. pattern: the output's name with {shard} in it, where there are parts. Refers to the module.
    RasterPredictions(const GeoModule& module_, MapOutput map_, const RasterFrame& frame_, const Shard& shard_ = {},
                      std::string pattern_ = "");
    void begin() override;

    /// source: RasterTargets.
    void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
               const TargetSource& source) override;
    void finish() override;

private:
    const GeoModule& module;
    MapOutput map;
    RasterFrame frame;
    Shard shard;
    std::string pattern;
    PendingFile file;
    std::vector<std::unique_ptr<PendingFile>> companions; // that formats keep beside it
    std::unique_ptr<PendingFile> scratch;                 // of formats that are copied from a GeoTIFF
    std::unique_ptr<RasterOutput> raster;
};

/// A layer of points with the values as attributes, then the inputs that are no places on a map, then the kept columns
/// as texts.
class PointPredictions : public PredictionWriter
{
public:
    /// Throws UsageError when there are fewer than two inputs. Refers to the module.
    PointPredictions(const GeoModule& module_, MapOutput map_, const std::vector<std::string>& inputNames,
                     std::vector<std::string> keptNames_);
    void begin() override;
    void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
               const TargetSource& source) override;
    void finish() override;

private:
    const GeoModule& module;
    MapOutput map;
    std::vector<std::string> keptNames;
    MapAxes axes;
    std::vector<std::size_t> otherInputs;
    std::vector<std::string> otherNames;
    PendingFile file;
    std::vector<std::unique_ptr<PendingFile>> companions;
    std::unique_ptr<PointsOutput> points;
};

/// The text of a .vrt that joins the parts of a raster. partNames: from the top, beside it. crsText: well-known text.
std::string mosaicOfParts(const RasterFrame& frame, const std::vector<std::string>& partNames,
                          const std::vector<MapColumn>& columns, bool isFloat32, const std::string& crsText);

/// Where it goes: the pattern without {shard} and the separator before it, and with .vrt.
std::string mosaicPath(const std::string& pattern);

} // namespace krige

#endif
