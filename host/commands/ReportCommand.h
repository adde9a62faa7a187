#ifndef FENN_HOST_COMMANDS_REPORTCOMMAND_H
#define FENN_HOST_COMMANDS_REPORTCOMMAND_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/commands/Command.h"
#include "host/model/ModelOptions.h"
#include "host/model/OutputSill.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"
#include "host/page/MapView.h"
#include "host/page/VariogramSection.h"
#include "host/reports/Report.h"
#include "host/targets/PredictionColumns.h"
#include "host/text/Console.h"

namespace CLI
{
class Option;
}

namespace krige
{

class StepTimes;

/// `krige report`: one page of HTML about samples and the model of some settings: data, settings, semivariogram,
/// cross-validation, maps.
class ReportCommand final : public Command
{
public:
    explicit ReportCommand(CLI::App& command_);

    /// Throws UsageError, InputError or ClosedPipe; no page is left behind then.
    void run(std::ostream& out, Console& console) const override;

private:
    void checkUsage() const;
    GridSpec chooseGrid(const SampleTable& samples) const;
    std::string showVariograms(const SampleTable& samples, const SampleModel& model,
                               const std::vector<OutputSill>& sills) const;
    std::string validate(const SampleTable& samples, Console& console, Report& report,
                         std::vector<std::string>& summary) const;
    std::string showMaps(const SampleTable& samples, const SampleModel& model, const std::vector<OutputSill>& sills,
                         const GridSpec& grid, std::vector<MapView>& views, Console& console, Report& report) const;
    std::string showFit(const SampleTable& samples, const SampleModel& model, std::vector<OutputSill> sills,
                        const GridSpec& grid) const;

    const CLI::App& command; // what was typed
    ModelOptions options;
    CLI::Option* configOption = nullptr;
    std::string gridText; // empty: chosen
    CLI::Option* foldsOption = nullptr;
    std::size_t numFolds = 10;
    std::uint64_t seed = 1;
    std::size_t numWorst = 10;
    std::string title; // empty: made from names
    std::string outputPath;
};

} // namespace krige

#endif
