#ifndef FENN_HOST_COMMANDS_PREDICTCOMMAND_H
#define FENN_HOST_COMMANDS_PREDICTCOMMAND_H

#include <memory>
#include <string>
#include <vector>

#include "host/commands/Command.h"
#include "host/model/ModelOptions.h"
#include "host/pictures/PictureOptions.h"
#include "host/targets/GridSpec.h"
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
/// VTK.
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
    std::unique_ptr<PredictionWriter> makeWriter(OutputFile& output, const GridSpec& grid) const;

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
    std::string duplicatesPath; // empty: no report
    std::string outputPath;
    SurfaceOptions plot;
};

} // namespace krige

#endif
