#ifndef FENN_HOST_MODELSETTINGS_H
#define FENN_HOST_MODELSETTINGS_H

#include <string>
#include <vector>

#include "host/files/ReadSettings.h"

namespace CLI
{
class App;
}

namespace krige
{

/// What a model is built from, with the defaults of the command line.
struct ModelSettings
{
    std::string samplesPath;
    ReadSettings reading;
    std::vector<std::string> inputNames;
    std::vector<std::string> outputNames;
    double duplicateTolerance = -1.0; // negative: nothing is merged
    std::vector<double> scaleFactors; // empty: automatic
    int driftOrder = 0;
    double rangeFraction = 1.0;
    double nugget = 0.0;
    int numNearestPoints = 0; // 0: all
};

/// Adds the samples' file, how files are read and the options of the model to a subcommand, --config among them, over
/// which every other option wins; settings must live until it has been parsed. Malformed values end parsing with
/// UsageError or, within a settings file, InputError.
void addModelOptions(CLI::App& command, ModelSettings& settings);

/// The part of it that says how files are read.
void addReadOptions(CLI::App& command, ReadSettings& reading);

/// --delimiter alone.
void addDelimiterOption(CLI::App& command, ReadSettings& reading);

/// Column names of an option's text: `x,"a,b"`. Throws UsageError naming the option.
std::vector<std::string> parseNames(const std::string& option, const std::string& text);

/// Sets what the key (the long name of a model's option without its dashes) stands for. Throws UsageError naming key
/// and value.
void applyModelSetting(ModelSettings& settings, const std::string& key, const std::string& text);

/// What no single option can see: throws UsageError when a column is named twice or --scale has the wrong size.
void checkModelSettings(const ModelSettings& settings);

} // namespace krige

#endif
