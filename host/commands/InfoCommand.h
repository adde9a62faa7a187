#ifndef FENN_HOST_COMMANDS_INFOCOMMAND_H
#define FENN_HOST_COMMANDS_INFOCOMMAND_H

#include <iosfwd>
#include <string>
#include <vector>

#include "host/commands/Command.h"
#include "host/files/ReadSettings.h"
#include "host/model/SampleSurvey.h"

namespace CLI
{
class App;
}

namespace krige
{

/// `krige info`: what a sample file holds, what a model over it would take, and a command to begin with.
class InfoCommand final : public Command
{
public:
    explicit InfoCommand(CLI::App& command);

    /// Throws UsageError or InputError.
    void run(std::ostream& out, Console& console) const override;

private:
    ColumnGuess chooseColumns(const FileSurvey& survey) const;

    std::string path;
    ReadSettings reading;
    std::string units;                    // of the inputs; empty: not said
    std::vector<std::string> inputNames;  // empty: guessed
    std::vector<std::string> outputNames; // likewise
};

} // namespace krige

#endif
