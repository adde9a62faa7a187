#ifndef FENN_HOST_COMMANDS_VALIDATECOMMAND_H
#define FENN_HOST_COMMANDS_VALIDATECOMMAND_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "host/commands/Command.h"
#include "host/model/ModelOptions.h"
#include "host/model/SampleTable.h"
#include "host/pictures/PictureOptions.h"
#include "host/reports/ValidationResult.h"
#include "host/text/Console.h"

namespace CLI
{
class Option;
}

namespace krige
{

class Report;

/// `krige validate`: how far estimates are from known values, by cross-validation in folds, by leaving out one point at
/// a time, or against a file of known values.
class ValidateCommand final : public Command
{
public:
    explicit ValidateCommand(CLI::App& command);

    /// Throws UsageError or InputError. out: the tables of errors.
    void run(std::ostream& out, Console& console) const override;

private:
    ValidationResult crossValidate(const SampleTable& samples, Console& console, Report& report) const;
    ValidationResult leaveOneOut(const SampleTable& samples, Console& console, Report& report) const;
    ValidationResult compare(const SampleTable& samples, Console& console, Report& report) const;
    void writePoints(const ValidationResult& result, const std::vector<ValidationFigures>& figures) const;

    ModelOptions options;
    std::string truthPath; // empty: cross-validation
    bool leavesOneOut = false;
    std::size_t numFolds = 10;
    CLI::Option* foldsOption = nullptr;
    std::uint64_t seed = 1;
    std::size_t numWorst = 5;
    std::string pointsPath; // empty: none
    PictureOptions plot;
};

} // namespace krige

#endif
