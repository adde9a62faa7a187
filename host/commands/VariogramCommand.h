#ifndef FENN_HOST_COMMANDS_VARIOGRAMCOMMAND_H
#define FENN_HOST_COMMANDS_VARIOGRAMCOMMAND_H

#include <cstddef>
#include <iosfwd>
#include <string>

#include "host/model/ModelOptions.h"
#include "host/text/Console.h"

class KrigingSurrogateModel;

namespace krige
{

/// `krige variogram`: the empirical semivariogram of an output beside the model's, every lag or binned.
class VariogramCommand
{
public:
    /// Adds the subcommand's options; the object must live until it has run.
    explicit VariogramCommand(CLI::App& command);
    VariogramCommand(const VariogramCommand& other) = delete;
    VariogramCommand& operator=(const VariogramCommand& other) = delete;

    /// Throws UsageError or InputError. out: the table, unless it goes to a file.
    void run(std::ostream& out, Console& console) const;

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
