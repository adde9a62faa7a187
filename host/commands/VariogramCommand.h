#ifndef FENN_HOST_COMMANDS_VARIOGRAMCOMMAND_H
#define FENN_HOST_COMMANDS_VARIOGRAMCOMMAND_H

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include "analysis/BinnedSemivariogram.h"
#include "host/commands/Command.h"
#include "host/model/Distance.h"
#include "host/model/LagUnit.h"
#include "host/model/ModelOptions.h"
#include "host/model/SampleTable.h"
#include "host/pictures/PictureOptions.h"
#include "host/text/Console.h"

namespace fenn
{
class ModelParts;
}

namespace krige
{

class Report;

/// `krige variogram`: the empirical semivariogram of an output, in bins or at every lag, beside the model's or one that
/// is fitted to it.
class VariogramCommand final : public Command
{
public:
    explicit VariogramCommand(CLI::App& command);

    /// Throws UsageError or InputError. out: the table, unless it goes to a file.
    void run(std::ostream& out, Console& console) const override;

private:
    void addBinOptions(CLI::App& command);
    void addFileOptions(CLI::App& command);
    void checkUsage() const;
    fenn::analysis::BinningOptions chooseBins(const fenn::ModelParts& parts, const std::string& samplesName) const;
    fenn::analysis::BinnedSemivariogram tabulate(const fenn::ModelParts& parts,
                                                 const fenn::analysis::BinningOptions& bins) const;
    void writeTable(std::ostream& out, std::ostream& report, const std::string& text) const;
    void show(const SampleTable& samples, Report& report, std::ostream& out, std::ostream& reportLines) const;

    bool isEveryLag() const
    {
        return numLags == 0;
    }

    ModelOptions options;
    std::size_t numLags = 15; // 0: every lag
    std::optional<Distance> maxLag;
    LagUnit::Choice lagChoice = LagUnit::Choice::Automatic;
    std::optional<double> direction; // degrees
    double tolerance = 22.5;
    bool isFitted = false;
    std::string outputPath; // of the table or, with a fit, of the settings; empty: standard output or none
    PictureOptions plot;
};

} // namespace krige

#endif
