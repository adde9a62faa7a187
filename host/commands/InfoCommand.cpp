#include "host/commands/InfoCommand.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ostream>

#include <CLI/CLI.hpp>

#include "estimation/MergedSamples.h"
#include "estimation/SystemSize.h"
#include "host/files/CsvReader.h"
#include "host/model/ModelMemory.h"
#include "host/model/ModelOptions.h"
#include "host/model/SampleModel.h"
#include "host/model/SuspiciousValues.h"
#include "host/reports/RangeText.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/ShellWord.h"
#include "host/text/TextTable.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace krige
{

namespace
{

using Clock = std::chrono::steady_clock;

void printColumns(std::ostream& out, const FileSurvey& survey)
{
    std::vector<std::vector<std::string>> rows{{"column", "numbers", "missing", "other", "least", "greatest"}};
    for (const ColumnSurvey& column : survey.columns)
        rows.push_back({quoteForMessage(column.name), std::to_string(column.numNumbers),
                        std::to_string(column.numMissing), std::to_string(column.numOthers),
                        column.numNumbers == 0 ? "-" : formatNumber(column.min),
                        column.numNumbers == 0 ? "-" : formatNumber(column.max)});
    printTable(out, rows, "  ");
}

/// Two figures are all that such a measurement is worth.
std::string formatDuration(double seconds)
{
    const char* unit = " s";
    if (seconds < 1e-3)
    {
        seconds *= 1e6;
        unit = " us";
    }
    else if (seconds < 1.0)
    {
        seconds *= 1e3;
        unit = " ms";
    }
    else if (seconds >= 7200.0)
    {
        seconds /= 3600.0;
        unit = " h";
    }
    else if (seconds >= 120.0)
    {
        seconds /= 60.0;
        unit = " min";
    }
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, seconds < 10.0 ? "%.1f" : "%.0f", seconds));
    return text + std::string(unit);
}

/// Seconds that a global model takes, measured on one of fewer points where there are many, and scaled with the number
/// of operations: the cube of the points for building, their square for a target. The samples' values do not matter to
/// that: points of a fixed pattern take their place, so that no duplicates or missing values spoil it.
struct ModelCost
{
    int numMeasuredPoints = 0;
    double buildingSeconds = 0.0;
    double secondsPerTarget = 0.0;
};

ModelCost measureCost(int numPoints, std::size_t numInputs)
{
    constexpr int mostMeasuredPoints = 1500;
    constexpr std::size_t numTargets = 128;
    const auto patternOf = [numInputs](std::size_t count, double shift)
    {
        std::vector<std::vector<double>> columns(numInputs);
        for (std::size_t v = 0; v < numInputs; ++v)
        {
            for (std::size_t i = 0; i < count; ++i)
                columns[v].push_back(std::fmod(
                    shift + static_cast<double>(i + 1) * std::sqrt(static_cast<double>((v + 1) * (v + 1) + 1)), 1.0));
        }
        return columns;
    };

    ModelCost cost;
    cost.numMeasuredPoints =
        std::clamp(numPoints, static_cast<int>(std::min<std::size_t>(numInputs, 1000)) + 2, mostMeasuredPoints);
    const auto count = static_cast<std::size_t>(cost.numMeasuredPoints);
    SampleTable samples{
        "", std::vector<std::string>(numInputs), {""}, patternOf(count, 0.0), {std::vector<double>(count)}};
    for (std::size_t i = 0; i < count; ++i)
        samples.outputs[0][i] = samples.inputs[0][i];
    Settings settings;
    settings.nugget = 0.1;
    const Clock::time_point start = Clock::now();
    const SampleModel model(samples, settings);
    const Clock::time_point built = Clock::now();
    std::vector<std::vector<double>> estimates;
    model.estimate(patternOf(numTargets, 0.5), estimates);
    const Clock::time_point done = Clock::now();

    const double ratio = static_cast<double>(numPoints) / cost.numMeasuredPoints;
    cost.buildingSeconds = std::chrono::duration<double>(built - start).count() * ratio * ratio * ratio;
    cost.secondsPerTarget = std::chrono::duration<double>(done - built).count() / numTargets * ratio * ratio;
    return cost;
}

/// Whether a column that is used has cells without a number that no mark stands for.
bool needsSkipping(const FileSurvey& survey, const ColumnGuess& used)
{
    return std::any_of(survey.columns.begin(), survey.columns.end(),
                       [&](const ColumnSurvey& column)
                       {
                           const auto isAmong = [&](const std::vector<std::string>& names)
                           {
                               return std::find(names.begin(), names.end(), column.name) != names.end();
                           };
                           return column.numMissing + column.numOthers > column.numMarked &&
                                  (isAmong(used.inputNames) || isAmong(used.outputNames));
                       });
}

std::string joinNames(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
    {
        if (!text.empty())
            text += ',';
        appendCsvField(text, name);
    }
    return text;
}

std::string suggestTargets(std::size_t numInputs)
{
    constexpr std::size_t mostGridInputs = 4;
    if (numInputs > mostGridInputs)
        return " --at targets.csv";
    const char* const counts[mostGridInputs] = {"1000", "200", "50", "20"}; // a million nodes at most
    std::string grid = " --grid ";
    for (std::size_t v = 0; v < numInputs; ++v)
        grid += (v == 0 ? "" : "x") + std::string(counts[numInputs - 1]);
    return grid;
}

/// A line for the range of the default settings; nothing where these make no model of the samples.
std::string describeDefaultRange(const SampleTable& samples, const std::string& units)
{
    try
    {
        return "range: " + describeRange(samples, ModelOptions().settings, units) +
               " by default; --range sets it, by a fraction or, with u behind it, in the inputs' units\n";
    }
    catch (const SurrogateModelInterface::Error&)
    {
        return {};
    }
}

} // namespace

InfoCommand::InfoCommand(CLI::App& command)
{
    command
        .add_option(
            "SAMPLES", path,
            "CSV file of the samples, with a header row; may be packed by gzip, xz, zstd, bzip2 or zip; - is standard "
            "input. Example: "
            "samples.csv")
        ->type_name("FILE")
        ->required();
    command
        .add_option_function<std::string>(
            "--inputs", [this](const std::string& text) { inputNames = parseNames("--inputs", text); },
            "Columns of the coordinates. Default: guessed from names and order. Example: --inputs x,y")
        ->type_name("NAMES");
    command
        .add_option_function<std::string>(
            "--outputs", [this](const std::string& text) { outputNames = parseNames("--outputs", text); },
            "Columns of the values to estimate. Default: guessed likewise. Example: --outputs z")
        ->type_name("NAMES");
    addUnitsOption(command, units);
    addFormatOptions(command, reading);
    addMissingOption(command, reading);
    command.footer("Prints what every column holds, values in it that may stand for no value, how many samples "
                   "coincide, the memory and time that a model over all "
                   "samples takes, and a command to begin with.\n\nExample:\n  krige info samples.csv");
}

ColumnGuess InfoCommand::chooseColumns(const FileSurvey& survey) const
{
    if (inputNames.empty())
        return guessColumns(survey);
    ModelOptions named;
    named.reading = reading;
    named.inputNames = inputNames;
    named.outputNames = outputNames;
    checkModelOptions(named);
    return {inputNames, outputNames};
}

void InfoCommand::run(std::ostream& out, Console& /*console*/) const
{
    if (inputNames.empty() != outputNames.empty())
        throw UsageError("--inputs and --outputs go together; give both or neither");
    const FileSurvey survey = surveyFile(path, reading);
    out << "file: " << survey.path << ", " << countOf(survey.numRows, "row") << ", "
        << countOf(survey.columns.size(), "column") << ", delimiter " << nameOfDelimiter(survey.delimiter) << '\n';
    printColumns(out, survey);
    if (survey.numUnevenRows > 0)
        out << "uneven: " << countOf(survey.numUnevenRows, "row") << " not as long as the "
            << (reading.hasHeader ? "header" : "first") << " row, the first in line " << survey.firstUnevenLine
            << "; predict does not take them\n";

    for (const ColumnSurvey& column : survey.columns)
    {
        for (const std::string& warning : warningsOfColumn(column.name, column.values))
            out << warning << '\n';
    }

    const ColumnGuess columns = chooseColumns(survey);
    if (columns.inputNames.empty())
    {
        out << "suggestion: none, for there are no two columns of numbers; is --delimiter right?\n";
        return;
    }
    const SampleTable samples = samplesOf(survey, columns.inputNames, columns.outputNames);
    out << "inputs: " << withoutControls(joinNames(columns.inputNames))
        << "; outputs: " << withoutControls(joinNames(columns.outputNames))
        << (inputNames.empty() ? " (guessed; name them with --inputs and --outputs)" : "") << '\n';
    const int numSamples = samples.getNumSamples();
    out << "samples: " << countOf(static_cast<unsigned>(numSamples), "row")
        << " with a number in each of these columns, " << samples.numSkipped << " without\n";
    if (numSamples == 0)
        return;

    const fenn::estimation::MergedSamples merged = fenn::estimation::findMergedSamples(samples.inputs, 0.0);
    const auto numPoints = static_cast<int>(merged.numPoints);
    if (merged.numMerged == 0)
        out << "coincident: none\n";
    else
        out << "coincident: " << merged.numMerged << " of " << numSamples
            << " samples coincide; --duplicates merge averages them and leaves " << numPoints << " points\n";

    out << describeDefaultRange(samples, units);

    const double bytes = fenn::estimation::calcSystemBytes(merged.numPoints, columns.inputNames.size(), 0);
    const double available = findAvailableBytes();
    out << "global model: " << countOf(static_cast<unsigned>(numPoints), "point") << ", " << formatBytes(bytes)
        << " of memory (there are " << (std::isinf(available) ? "no known limits" : formatBytes(available)) << ")";
    const ModelCost cost = measureCost(numPoints, columns.inputNames.size());
    out << ", about " << formatDuration(cost.buildingSeconds) << " to build and "
        << formatDuration(cost.secondsPerTarget) << " per target (measured here with " << cost.numMeasuredPoints
        << " points" << (cost.numMeasuredPoints == numPoints ? "" : ", then scaled") << ")\n";

    constexpr double longBuilding = 600.0;
    std::string command = "krige predict " + quoteForShell(path) + " --inputs " +
                          quoteForShell(joinNames(columns.inputNames)) + " --outputs " +
                          quoteForShell(joinNames(columns.outputNames));
    command += formatOptionsText(reading);
    if (needsSkipping(survey, columns))
        command += " --skip-missing";
    if (merged.numMerged > 0)
        command += " --duplicates merge";
    if (bytes > available || cost.buildingSeconds > longBuilding)
        command += " --nearest 32";
    out << "suggestion: " << command << suggestTargets(columns.inputNames.size()) << " -o estimates.csv\n";
}

} // namespace krige
