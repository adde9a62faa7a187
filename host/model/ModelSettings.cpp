#include "host/model/ModelSettings.h"

#include <cctype>
#include <charconv>
#include <limits>
#include <set>
#include <string_view>
#include <system_error>

#include <CLI/CLI.hpp>

#include "host/files/CsvReader.h"
#include "host/model/SettingsFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr int maxDriftOrder = 4; // more acts as 4 in the library: asking for it is a misunderstanding

double parseSetting(const std::string& option, std::string_view text)
{
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (status == NumberStatus::Missing)
        throw UsageError(option + ": needs a finite number, not " + quoteForMessage(text));
    if (status != NumberStatus::Ok)
        throw UsageError(option + ": " + describeNumberFault(text, status));
    return value;
}

double parseSetting(const std::string& option, std::string_view text, double low, double high, const char* bounds)
{
    const double value = parseSetting(option, text);
    if (value < low || value > high)
        throw UsageError(option + ": must be " + bounds + ", not " + quoteForMessage(text));
    return value;
}

int parseCount(const std::string& option, std::string_view text, int high, const std::string& bounds)
{
    text = trimBlanks(text);
    int value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < 0 || value > high)
        throw UsageError(option + ": must be a whole number " + bounds + ", not " + quoteForMessage(text));
    return value;
}

std::vector<double> parseScaleFactors(const std::string& option, const std::string& text)
{
    std::vector<double> factors;
    for (const std::string& factor : splitCsvText(text, option))
        factors.push_back(parseSetting(option, factor));
    if (factors.empty())
        throw UsageError(option + ": needs one number per input");
    return factors;
}

/// One setting of the model, the same on the command line and in a settings file.
struct ModelOption
{
    const char* key;
    const char* typeName;
    const char* help;
    /// name: the option or key, for messages.
    void (*apply)(ModelSettings& settings, const std::string& name, const std::string& text);
};

const ModelOption modelOptions[] = {
    {"duplicate-tolerance", "T",
     "Merge samples that agree within this fraction of every input's range into their mean; 0 merges samples at one "
     "place, a negative one none. Default: -1. Example: --duplicate-tolerance 0",
     [](ModelSettings& settings, const std::string& name, const std::string& text)
     {
         settings.duplicateTolerance = parseSetting(name, text);
     }},
    {"scale", "NUMBERS",
     "One factor per input: s > 0 is its scale relative to the others, -k asks for a normalised range of 2k. Default: "
     "-1 each, every input counts alike. Example: --scale 1,10",
     [](ModelSettings& settings, const std::string& name, const std::string& text)
     {
         settings.scaleFactors = parseScaleFactors(name, text);
     }},
    {"drift", "P", "Degree of the polynomial drift, 0 (a constant mean) to 4. Default: 0. Example: --drift 1",
     [](ModelSettings& settings, const std::string& name, const std::string& text)
     {
         settings.driftOrder = parseCount(name, text, maxDriftOrder, "from 0 to 4");
     }},
    {"range", "F",
     "Range of the semivariogram over the diagonal of the samples' normalised box. Default: 1. Example: --range 0.5",
     [](ModelSettings& settings, const std::string& name, const std::string& text)
     {
         settings.rangeFraction = parseSetting(name, text, 0.0, std::numeric_limits<double>::max(), "at least 0");
     }},
    {"nugget", "C",
     "Nugget as a fraction of the sill, 0 to 1; above 0 it smooths noisy samples. Default: 0. Example: --nugget 0.05",
     [](ModelSettings& settings, const std::string& name, const std::string& text)
     {
         settings.nugget = parseSetting(name, text, 0.0, 1.0, "between 0 and 1");
     }},
    {"nearest", "N",
     "Estimate each target from its N nearest samples; 0: from all of them. Default: 0. Example: --nearest 32",
     [](ModelSettings& settings, const std::string& name, const std::string& text)
     {
         settings.numNearestPoints = parseCount(name, text, std::numeric_limits<int>::max(), "of at least 0");
     }}};

template <typename Parse>
CLI::Option* addOption(CLI::App& command, const std::string& name, const char* typeName, Parse parse, const char* help)
{
    return command.add_option_function<std::string>(name, parse, help)->type_name(typeName);
}

char parseDelimiter(const std::string& text)
{
    if (text == "tab" || text == "\\t")
        return '\t';
    if (text == "comma")
        return ',';
    if (text == "semicolon")
        return ';';
    const bool fits = text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80 &&
                      std::string_view("\"\r\n .+-").find(text[0]) == std::string_view::npos &&
                      std::isalnum(static_cast<unsigned char>(text[0])) == 0 && text[0] != '\0';
    if (!fits)
        throw UsageError("--delimiter: must be one character that no number holds, or comma, semicolon or tab, not " +
                         quoteForMessage(text));
    return text[0];
}

} // namespace

std::vector<std::string> parseNames(const std::string& option, const std::string& text)
{
    std::vector<std::string> names = splitCsvText(text, option);
    if (names.empty())
        throw UsageError(option + ": needs the name of at least one column");
    for (const std::string& name : names)
    {
        if (name.empty())
            throw UsageError(option + ": " + quoteForMessage(text) + " holds an empty name");
    }
    return names;
}

void addDelimiterOption(CLI::App& command, ReadSettings& reading)
{
    addOption(
        command, "--delimiter", "C", [&](const std::string& text) { reading.delimiter = parseDelimiter(text); },
        "Character between the fields of the files that are read, or comma, semicolon or tab. Default: the one of "
        "these three that the header row has most of. Example: --delimiter tab");
}

void addReadOptions(CLI::App& command, ReadSettings& reading)
{
    addDelimiterOption(command, reading);
    command.add_flag("--skip-missing", reading.skipMissing,
                     "Leave out samples with an empty or non-numeric cell in a used column, and give nan for such "
                     "targets. Default: they are an error. Example: --skip-missing");
}

void addModelOptions(CLI::App& command, ModelSettings& settings)
{
    command
        .add_option("SAMPLES", settings.samplesPath,
                    "CSV file of the samples, with a header row; may be packed by gzip; - is standard input. Example: "
                    "samples.csv")
        ->type_name("FILE")
        ->required();
    // Before the settings: the parser hands out values in this order, so that each of them wins over the file.
    addOption(
        command, "--config", "FILE", [&](const std::string& path) { readSettingsFile(path, settings); },
        "Settings file, as krige tune writes it, with lines such as drift = 1 and the names of the options below "
        "--outputs as keys; an option on the command line wins over it. Default: none. Example: --config best.toml");
    addOption(
        command, "--inputs", "NAMES",
        [&](const std::string& text) { settings.inputNames = parseNames("--inputs", text); },
        "Columns of the coordinates; a name with a comma in quotes, as in 'x,\"a,b\"'. Needed. Example: --inputs x,y")
        ->required();
    addOption(
        command, "--outputs", "NAMES",
        [&](const std::string& text) { settings.outputNames = parseNames("--outputs", text); },
        "Columns of the values to estimate. Needed. Example: --outputs z")
        ->required();
    for (const ModelOption& option : modelOptions)
    {
        const std::string name = std::string("--") + option.key;
        addOption(
            command, name, option.typeName,
            [&settings, &option, name](const std::string& text) { option.apply(settings, name, text); }, option.help);
    }
    addReadOptions(command, settings.reading);
}

void applyModelSetting(ModelSettings& settings, const std::string& key, const std::string& text)
{
    std::string keys;
    for (const ModelOption& option : modelOptions)
    {
        if (key == option.key)
        {
            option.apply(settings, key, text);
            return;
        }
        keys += (keys.empty() ? "" : ", ") + std::string(option.key);
    }
    throw UsageError(quoteForMessage(key) + " is no setting; the settings are " + keys);
}

void checkModelSettings(const ModelSettings& settings)
{
    std::set<std::string> seen;
    for (const std::vector<std::string>* names : {&settings.inputNames, &settings.outputNames})
    {
        for (const std::string& name : *names)
        {
            if (!seen.insert(name).second)
                throw UsageError("--inputs and --outputs: the column " + quoteForMessage(name) + " is named twice");
        }
    }
    if (!settings.scaleFactors.empty() && settings.scaleFactors.size() != settings.inputNames.size())
        throw UsageError("--scale: " + countOf(settings.scaleFactors.size(), "factor") + " for " +
                         countOf(settings.inputNames.size(), "input") + "; give one each");
}

} // namespace krige
