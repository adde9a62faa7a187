#ifndef FENN_HOST_COMMANDS_TUNECOMMAND_H
#define FENN_HOST_COMMANDS_TUNECOMMAND_H

#include <iosfwd>
#include <string>
#include <vector>

#include "analysis/Tuning.h"
#include "host/commands/Command.h"
#include "host/model/ModelOptions.h"
#include "host/model/SampleTable.h"
#include "host/text/Console.h"

namespace CLI
{
class Option;
}

namespace krige
{

class Report;

/// `krige tune`: searches the settings that estimate samples best from each other, and writes them for --config.
class TuneCommand final : public Command
{
public:
    explicit TuneCommand(CLI::App& command);

    /// Throws UsageError or InputError, and no file is left behind then; Interrupted after Ctrl-C, when the best
    /// settings so far have been written. out: the scores and the winner.
    void run(std::ostream& out, Console& console) const override;

private:
    /// Takes the text of --anisotropy that asks for a search. Whether it does.
    bool takesAnisotropySearch(const std::string& key, const std::string& text);

    void checkAnisotropySearch() const;
    double chooseLeastNugget(const SampleTable& samples, Report& report) const;
    fenn::analysis::SearchSpace chooseSpace(const fenn::estimation::SampleSet& samples) const;
    fenn::analysis::TuningOptions chooseOptions(const SampleTable& samples) const;
    /// Settings for a file, with the values of the sills that they leave to be estimated from all samples. Throws as
    /// SampleModel.
    Settings withSills(const Settings& settings, const SampleTable& samples, Console& console, Report& report) const;
    fenn::analysis::TuningResult search(const SampleTable& samples, double leastNugget, Console& console) const;

    ModelOptions options; // the search starts from the model's
    fenn::analysis::TuningOptions tuning;
    std::vector<std::string> fixedSettings;
    bool searchesAnisotropy = false;
    CLI::Option* foldsOption = nullptr;
    std::string outputPath; // empty: none
    std::string trialsPath; // likewise
};

} // namespace krige

#endif
