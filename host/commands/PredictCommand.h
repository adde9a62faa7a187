#ifndef FENN_HOST_COMMANDS_PREDICTCOMMAND_H
#define FENN_HOST_COMMANDS_PREDICTCOMMAND_H

#include <memory>
#include <string>
#include <vector>

#include "host/commands/Command.h"
#include "host/geo/GeoModule.h"
#include "host/model/ModelOptions.h"
#include "host/model/SampleTable.h"
#include "host/pictures/PictureOptions.h"
#include "host/targets/GridSpec.h"
#include "host/targets/OutputFormat.h"
#include "host/targets/PredictionColumns.h"
#include "host/targets/PredictionWriter.h"
#include "host/targets/Shard.h"
#include "host/targets/TargetSource.h"
#include "host/targets/TargetSupport.h"

namespace krige
{

class Console;
class SurfacePicture;

/// `krige predict`: estimates at the targets of a file or a grid, written as CSV: the inputs in the order of --inputs,
/// one column per output, on request the variance and one standard error per output, then kept columns. Grids also as
/// VTK and rasters, targets also as points of a map.
class PredictCommand final : public Command
{
public:
    explicit PredictCommand(CLI::App& command);

    /// Throws UsageError, InputError or ClosedPipe; no output file is left behind then.
    void run(std::ostream& out, Console& console) const override;

private:
    void checkUsage() const;
    std::vector<PredictionColumn> predictionColumns() const;
    std::vector<std::string> columnNames() const;
    std::unique_ptr<TargetSource> openTargets(const GridSpec& grid) const;
    bool canReadTargetsTwice() const;
    void confirmSize(const GridSpec& grid, Console& console) const;
    void checkAreSupported(TargetSupport& support, const GridSpec& grid) const;
    std::unique_ptr<SurfacePicture> makePicture(const SampleTable& samples, const GridSpec& grid) const;
    double pictureCoverage() const;
    std::unique_ptr<PredictionWriter> makeWriter(const GridSpec& grid, const std::string& crs) const;
    void checkMapOutput() const;
    void placeGrid(GridSpec& grid, const SampleTable& samples, std::string& crs) const;
    std::unique_ptr<PlaceMask> openMask(const std::string& crs) const;

    const OutputFormat& getFormat() const
    {
        return chooseOutputFormat(outputPath, formatName);
    }

    bool isRaster() const
    {
        return getFormat().kind == FormatKind::Raster;
    }

    bool isGrid() const
    {
        return !gridText.empty();
    }

    ModelOptions options;
    std::string targetsPath; // empty: a grid
    std::string gridText;    // empty: a file
    std::vector<std::string> keptNames;
    PredictionRequest request;
    SupportLimits limits;
    bool extrapolates = false;
    Shard shard;
    bool isShardGiven = false;
    bool isAnySizeWanted = false;
    std::string maskPath;       // empty: none
    std::string duplicatesPath; // empty: no report
    std::string outputPath;
    std::string outputPattern; // with {shard} as it was given
    std::string formatName;    // empty: by the path
    std::string cellType;      // of rasters; empty: float64
    SurfaceOptions plot;
};

} // namespace krige

#endif
