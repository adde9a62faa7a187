#include "host/model/ModelOptions.h"

#include <algorithm>
#include <memory>
#include <set>

#include <CLI/CLI.hpp>

#include "host/files/CsvReader.h"
#include "host/model/Distance.h"
#include "host/model/SettingKeys.h"
#include "host/model/SettingSource.h"
#include "host/model/SettingsFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Utf8.h"

namespace krige
{

namespace
{

template <typename Parse>
CLI::Option* addOption(CLI::App& command, const std::string& name, const char* typeName, Parse parse, const char* help)
{
    return command.add_option_function<std::string>(name, parse, help)->type_name(typeName);
}

/// As a file without a header row has them.
void checkAreColumnNumbers(const char* option, const std::vector<std::string>& names)
{
    for (const std::string& name : names)
    {
        const bool isNumber = name.find_first_not_of("0123456789") == std::string::npos && name[0] != '0';
        if (!isNumber)
            throw UsageError(std::string(option) + ": with --no-header columns are named by number, from 1, not " +
                             quoteForMessage(name));
    }
}

} // namespace

std::vector<std::string> parseNames(const std::string& option, const std::string& text)
{
    std::vector<std::string> names = splitCsvText(text, option);
    if (names.empty())
        throw UsageError(option + ": needs the name of at least one column");
    for (std::string& name : names)
    {
        if (name.empty())
            throw UsageError(option + ": " + quoteForMessage(text) +
                             " holds an empty name; names are joined by commas without blanks, as in x,y");
        name = toUtf8(name);
    }
    return names;
}

void addModelOptions(CLI::App& command, ModelOptions& options, const TakesText& takesText)
{
    options.estimator.mustTellPointsApart = true;
    command
        .add_option(
            "SAMPLES", options.samplesPath,
            "CSV file of the samples, with a header row; may be packed by gzip, xz, zstd, bzip2 or zip; - is standard "
            "input. Example: "
            "samples.csv")
        ->type_name("FILE")
        ->required();
    // Before the settings: the parser hands out values in this order, so that each of them wins over the file.
    addOption(
        command, "--config", "FILE",
        [&](const std::string& path)
        {
            readSettingsFile(path, options.settings);
            options.estimator.mustTellPointsApart = !options.settings.keepsDuplicates;
        },
        "Settings file, as krige tune writes it: lines such as drift = 1 with the names of the options from "
        "--duplicates to --clamp; an option on the command line wins over it. Default: none. Example: "
        "--config best.toml");
    addOption(
        command, "--inputs", "NAMES",
        [&](const std::string& text) { options.inputNames = parseNames("--inputs", text); },
        "Columns of the coordinates; a name with a comma in quotes, as in 'x,\"a,b\"'. Needed. Example: --inputs x,y")
        ->required();
    addOption(
        command, "--outputs", "NAMES",
        [&](const std::string& text) { options.outputNames = parseNames("--outputs", text); },
        "Columns of the values to estimate. Needed. Example: --outputs z")
        ->required();
    const auto typed = std::make_shared<SettingSource>(options.settings);
    for (const SettingKey& setting : settingKeys())
    {
        const std::string name = std::string("--") + setting.key;
        addOption(
            command, name, setting.typeName,
            [&options, &setting, name, typed, takesText](const std::string& text)
            {
                if (takesText && takesText(setting.key, text))
                    return;
                typed->apply(setting, name, text);
                options.estimator.mustTellPointsApart = !options.settings.keepsDuplicates;
            },
            setting.help);
    }
    command.get_option("--anisotropy")->excludes(command.get_option("--scale"));
    addUnitsOption(command, options.units);
    addPlaceOptions(command, options.reading);
    addReadOptions(command, options.reading);
}

void addUnitsOption(CLI::App& command, std::string& units)
{
    addOption(
        command, "--units", "NAME",
        [&units](const std::string& text)
        {
            const auto isControl = [](unsigned char c)
            {
                return c < 0x20 || c == 0x7f;
            };
            if (trimBlanks(text).empty() || std::any_of(text.begin(), text.end(), isControl))
                throw UsageError("--units: needs the name of a unit, not " + quoteForMessage(text));
            units = trimBlanks(text);
        },
        "Unit of the inputs, for reports and pictures. Default: none is named. Example: --units m");
}

void addEstimatorOptions(CLI::App& command, fenn::estimation::EstimatorOptions& estimator)
{
    constexpr int mostThreads = 4096; // more is a slip of the finger
    command
        .add_option("--threads", estimator.numThreads,
                    "Threads that compute; results do not depend on their number. Default: the processor cores that "
                    "this process may use. Example: --threads 2")
        ->type_name("N")
        ->check(CLI::Range(1, mostThreads).description(""));
    command.add_flag("--exact", estimator.isExact,
                     "Give the bits that a host program gets from the plug-in; with --nearest, nearness then counts "
                     "every input in units of the first one's scale. Default: the fastest way to the same estimates, "
                     "which the report names with its error bound. Example: --exact");
}

void checkModelOptions(const ModelOptions& options)
{
    if (!options.reading.hasHeader)
    {
        checkAreColumnNumbers("--inputs", options.inputNames);
        checkAreColumnNumbers("--outputs", options.outputNames);
    }
    std::set<std::string> seen;
    for (const std::vector<std::string>* names : {&options.inputNames, &options.outputNames})
    {
        for (const std::string& name : *names)
        {
            if (!seen.insert(name).second)
                throw UsageError("--inputs and --outputs: the column " + quoteForMessage(name) + " is named twice");
        }
    }
    if (options.settings.anisotropy && options.inputNames.size() != 2)
        throw UsageError("--anisotropy: has an angle with two inputs only, but there " +
                         std::string(options.inputNames.size() == 1 ? "is " : "are ") +
                         countOf(options.inputNames.size(), "input"));
    if (!options.settings.scaleFactors.empty() && options.settings.scaleFactors.size() != options.inputNames.size())
        throw UsageError("--scale: " + countOf(options.settings.scaleFactors.size(), "factor") + " for " +
                         countOf(options.inputNames.size(), "input") + "; give one each");
    checkSillChoices(options.settings.sills, options.outputNames.size());
    if (options.settings.rangeInInputUnits &&
        !fenn::estimation::hasOneScale(options.settings, options.inputNames.size()))
        throw UsageError("--range " + formatDistance({*options.settings.rangeInInputUnits, true}) + ": " +
                         suggestOneScale(options.inputNames.size()));
}

} // namespace krige
