#ifndef FENN_HOST_MODEL_MODELOPTIONS_H
#define FENN_HOST_MODEL_MODELOPTIONS_H

#include <functional>
#include <string>
#include <vector>

#include "estimation/chooseEstimator.h"
#include "host/files/ReadSettings.h"
#include "host/model/Settings.h"

namespace CLI
{
class App;
}

namespace krige
{

/// What the command line says about a model: where its samples are, which of their columns it takes, its settings, and
/// how its estimates are computed.
struct ModelOptions
{
    std::string samplesPath;
    ReadSettings reading;
    std::vector<std::string> inputNames;
    std::vector<std::string> outputNames;
    Settings settings;
    fenn::estimation::EstimatorOptions estimator;
    std::string units; // of the inputs, for people; empty: not said
};

/// Whether a subcommand takes a text of the option --KEY itself, which has a meaning to it alone.
using TakesText = std::function<bool(const std::string& key, const std::string& text)>;

/// Adds SAMPLES, the options of the model and those that say how files are read to a subcommand; options must live
/// until the command line has been parsed. An option wins over the file of --config. Malformed values end parsing with
/// UsageError, or within that file with InputError. The estimator must tell points apart unless --duplicates keep says
/// otherwise. takesText: asked first about the text of each setting on the command line.
void addModelOptions(CLI::App& command, ModelOptions& options, const TakesText& takesText = {});

/// Adds --units; units must live until the command line has been parsed.
void addUnitsOption(CLI::App& command, std::string& units);

/// Adds --threads and --exact to a subcommand that estimates; estimator must live until the command line has been
/// parsed.
void addEstimatorOptions(CLI::App& command, fenn::estimation::EstimatorOptions& estimator);

/// Column names of an option's text: `x,"a,b"`. Throws UsageError that names the option.
std::vector<std::string> parseNames(const std::string& option, const std::string& text);

/// Checks what no option can check alone: throws UsageError when a column is named twice, --scale has not one factor
/// per input or --sill not one value per output, or a range is in units that the inputs do not share.
void checkModelOptions(const ModelOptions& options);

} // namespace krige

#endif
