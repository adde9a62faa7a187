#ifndef FENN_HOST_COMMANDS_VARIOGRAMCOMMAND_H
#define FENN_HOST_COMMANDS_VARIOGRAMCOMMAND_H

#include <cstddef>
#include <iosfwd>
#include <string>

#include "host/commands/Command.h"
#include "host/model/ModelOptions.h"
#include "host/text/Console.h"

class KrigingSurrogateModel;

namespace krige
{

/// `krige variogram`: the empirical semivariogram of an output beside the model's, every lag or binned.
class VariogramCommand final : public Command
{
public:
    explicit VariogramCommand(CLI::App& command);

    /// Throws UsageError or InputError. out: the table, unless it goes to a file.
    void run(std::ostream& out, Console& console) const override;

private:
    void write(std::ostream& out, const std::string& text) const;

    ModelOptions options;
    std::size_t numLags = 0; // 0: every lag
    double maxLag = 0.0;     // 0: half the diagonal
    std::string outputPath;  // empty: standard output
    std::string plotPath;    // empty: none
};

} // namespace krige

#endif
