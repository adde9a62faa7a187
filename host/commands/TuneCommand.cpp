#include "host/commands/TuneCommand.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>

#include "estimation/RangeInUnits.h"
#include "estimation/ThreadCount.h"
#include "host/files/CsvReader.h"
#include "host/files/InputFile.h"
#include "host/files/OutputFile.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/model/ModelFailure.h"
#include "host/model/NearSamples.h"
#include "host/model/OutputSill.h"
#include "host/model/SampleModel.h"
#include "host/model/SettingsFile.h"
#include "host/reports/Report.h"
#include "host/reports/TuningReport.h"
#include "host/text/HostErrors.h"
#include "host/text/Interruption.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

/// Small beside any measurement's error, and large enough for any system.
constexpr double leastNuggetOfReplicates = 0.001;

// What the parser hands over for an option without its value.
constexpr const char* withoutValue = "";

constexpr const char* settingNames = "drift, range, nugget, nearest and scale";

fenn::analysis::Objective parseObjective(const std::string& text)
{
    using fenn::analysis::Objective;
    if (text == "likelihood")
        return Objective::Likelihood;
    if (text == "rmse")
        return Objective::Rmse;
    if (text == "mae")
        return Objective::Mae;
    if (text == "crps")
        return Objective::Crps;
    throw UsageError("--objective: must be likelihood, rmse, mae or crps, not " + quoteForMessage(text));
}

void writeWhole(const std::string& path, const std::string& text)
{
    OutputFile file(path);
    file.write(text);
    file.commit();
}

} // namespace

TuneCommand::TuneCommand(CLI::App& command)
{
    addModelOptions(command, options,
                    [this](const std::string& key, const std::string& text)
                    { return takesAnisotropySearch(key, text); });
    command.get_option("--anisotropy")
        ->expected(0, 1)
        ->type_name("[search|RATIO,ANGLE]")
        ->description(
            "For two inputs of one unit, in place of --scale: search the ratio and the angle of a longer range, from "
            "equal scales on; with RATIO,ANGLE keep these. Values stay alike farther along ANGLE, in degrees "
            "anticlockwise from the axis of the first input, RATIO times as far as across it. The word search may be "
            "left out before another option. Default: none. Examples: --anisotropy search, --anisotropy 2.5,30");
    addEstimatorOptions(command, options.estimator);
    command
        .add_option("-o,--output", outputPath,
                    "Settings file to write, which every subcommand reads with --config. Default: none, the winner is "
                    "only shown; with -o - the scores go to standard error. Example: -o best.toml")
        ->type_name("FILE");
    command
        .add_option("--trials", trialsPath,
                    "CSV file to write: every trial with its settings and scores. Default: a table on standard error. "
                    "Example: --trials trials.csv")
        ->type_name("FILE");
    command
        .add_option_function<std::string>(
            "--fix", [this](const std::string& text) { fixedSettings = splitCsvText(text, "--fix"); },
            "Settings that the search does not change: any of drift, range, nugget, nearest and scale. Default: none. "
            "Example: --fix drift,nearest")
        ->type_name("NAMES");
    command
        .add_option("--held-out", tuning.heldOutFraction,
                    "Share of the samples that the search never sees, for a score that it cannot flatter; 0: search on "
                    "all. Default: 0. Example: --held-out 0.2")
        ->type_name("SHARE");
    foldsOption = command
                      .add_option("--folds", tuning.numFolds,
                                  "Parts of the cross-validation of settings. Default: 10, or the number of "
                                  "samples where they are fewer. Example: --folds 5")
                      ->type_name("K");
    command
        .add_option("--repeats", tuning.numRepeats,
                    "Cross-validations of settings, each with folds of its own; 0: until 300 samples have been "
                    "estimated, up to 3. Default: 0. Example: --repeats 5")
        ->type_name("N")
        ->check(CLI::Range(0, 1000).description("")); // more is a slip of the finger
    command
        .add_option("--seed", tuning.seed,
                    "Seed of the held-out samples and the folds: the same seed gives the same search. Default: 1. "
                    "Example: --seed 7")
        ->type_name("S");
    command
        .add_option("--max-trials", tuning.maxTrials, "Settings to try at most. Default: 300. Example: --max-trials 50")
        ->type_name("N");
    command
        .add_option_function<std::string>(
            "--objective", [this](const std::string& text) { tuning.objective = parseObjective(text); },
            "What the search minimises: likelihood, the restricted likelihood of range, nugget and scales; or errors "
            "in "
            "cross-validation: rmse, mae, which outliers affect less, or crps, which judges standard errors too. Of "
            "local models, which have no likelihood, likelihood means crps. Default: likelihood. Example: --objective "
            "rmse")
        ->type_name("NAME");
    command.footer(
        "The model's options say where the search starts, and what the winner is compared with: the "
        "defaults where they are left out. --duplicates is kept; unless merged, samples at one place count "
        "as repeated measurements: no settings without a nugget are tried then. The winner's sill of each "
        "output, of all samples, is written beside its settings, so that standard errors and intervals take "
        "it; --sill sample is written as such.\n\nCtrl-C ends the search, keeps the best settings so far and "
        "ends with status 130.\n\nWith --transform log the likelihood is that of the logarithms, and so is the CRPS "
        "beside "
        "it; rmse, mae and crps are errors in the data's units.\n\nExamples:\n"
        "  krige tune samples.csv --inputs x,y --outputs z -o best.toml\n"
        "  krige predict samples.csv --inputs x,y --outputs z --config best.toml --grid x=0:10:101,y=0:5:51 "
        "-o grid.csv");
}

bool TuneCommand::takesAnisotropySearch(const std::string& key, const std::string& text)
{
    if (key != "anisotropy")
        return false;
    if (trimBlanks(text) != "search" && text != withoutValue)
    {
        if (text.find(',') == std::string::npos)
            throw UsageError("--anisotropy: needs search or RATIO,ANGLE, not " + quoteForMessage(text));
        return false;
    }
    searchesAnisotropy = true;
    options.settings.anisotropy.reset();
    options.settings.scaleFactors = {1.0, 1.0};
    return true;
}

void TuneCommand::checkAnisotropySearch() const
{
    if (!searchesAnisotropy)
        return;
    if (options.inputNames.size() != 2)
        throw UsageError("--anisotropy search: has an angle with two inputs only, but there " +
                         std::string(options.inputNames.size() == 1 ? "is " : "are ") +
                         countOf(options.inputNames.size(), "input"));
    if (std::find(fixedSettings.begin(), fixedSettings.end(), "scale") != fixedSettings.end())
        throw UsageError(
            "--anisotropy search: takes the place of scales, which --fix scale keeps; leave one of them out");
}

fenn::analysis::SearchSpace TuneCommand::chooseSpace(const fenn::estimation::SampleSet& samples) const
{
    fenn::analysis::SearchSpace space = fenn::analysis::defaultSearchSpace(samples);
    const double rangeFraction = withRangeFraction(samples, options.settings).rangeFraction;
    if (searchesAnisotropy)
        space.maxRatio = space.maxAnisotropy;
    if (searchesAnisotropy || options.settings.anisotropy) // it takes the place of scale factors
        space.maxAnisotropy = 1.0;
    for (const std::string& name : fixedSettings)
    {
        if (name == "drift")
            space.driftOrders = {options.settings.driftOrder};
        else if (name == "range")
            space.minRangeFraction = space.maxRangeFraction = rangeFraction;
        else if (name == "nugget")
            space.minNugget = space.maxNugget = options.settings.nugget;
        else if (name == "nearest")
            space.numNearestPoints = {options.settings.numNearestPoints};
        else if (name == "scale")
            space.maxAnisotropy = 1.0;
        else
            throw UsageError("--fix: " + quoteForMessage(name) + " is none of " + settingNames);
    }
    return space;
}

fenn::analysis::TuningOptions TuneCommand::chooseOptions(const SampleTable& samples) const
{
    fenn::analysis::TuningOptions chosen = tuning;
    chosen.estimator = options.estimator;
    chosen.units = options.settings.units;
    if (!(chosen.heldOutFraction >= 0.0 && chosen.heldOutFraction < 1.0))
        throw UsageError("--held-out: must be at least 0 and below 1");
    if (chosen.maxTrials < 1)
        throw UsageError("--max-trials: must be at least 1");
    const double numSamples = samples.getNumSamples();
    const auto numTuned = static_cast<std::size_t>(numSamples - std::floor(chosen.heldOutFraction * numSamples));
    const bool isGiven = foldsOption->count() > 0;
    if (isGiven && (chosen.numFolds < 2 || chosen.numFolds > numTuned))
        throw UsageError("--folds: must be 2 to " + std::to_string(numTuned) + ", the samples that are not held out");
    if (numTuned < 2)
        throw InputError(samples.path + ": tuning needs at least 2 samples that are not held out");
    chosen.numFolds = std::min(chosen.numFolds, numTuned);
    return chosen;
}

Settings TuneCommand::withSills(const Settings& settings, const SampleTable& samples, Console& console,
                                Report& report) const
{
    const std::unique_ptr<ProgressLine> line = console.startProgress("points for the sill");
    const SampleModel model(samples, settings, options.estimator);
    const std::vector<OutputSill> sills = model.calcSills(settings.sills, reportTo(*line));
    line->wipe();
    report.sillsUsed(samples.outputNames, sills);
    Settings result = settings;
    result.sills = choicesOf(sills);
    return result;
}

fenn::analysis::TuningResult TuneCommand::search(const SampleTable& samples, double leastNugget, Console& console) const
{
    const fenn::analysis::TuningOptions chosen = chooseOptions(samples);
    const fenn::estimation::SampleSet sampleSet = toSampleSet(samples);
    fenn::analysis::SearchSpace space = chooseSpace(sampleSet);
    space.minNugget = std::max(space.minNugget, leastNugget);
    const fenn::estimation::ModelSettings begin =
        fenn::analysis::startWithin(space, options.settings, sampleSet.getNumSamples());
    console.getReport() << "search: " << describeSearch(space, chosen, sampleSet.getNumSamples()) << '\n';

    fenn::analysis::TuningResult result;
    FoldsAtOnce foldsAtOnce;
    foldsAtOnce.numFolds = chosen.numFolds;
    foldsAtOnce.numThreads = static_cast<std::size_t>(fenn::estimation::chooseThreadCount(chosen.estimator.numThreads));
    runExplained(
        samples, begin, "",
        [&]
        {
            fenn::estimation::ModelSettings start = withRangeFraction(sampleSet, begin);
            start.nugget = std::max(start.nugget, leastNugget);
            TrialTable table(console.getReport());
            const std::unique_ptr<ProgressLine> line = console.startProgress("trials");
            const Interruption interruption;
            result =
                fenn::analysis::tune(sampleSet, start, space, chosen,
                                     [&](const fenn::analysis::Trial& trial, std::size_t numDone, std::size_t maxTrials)
                                     {
                                         if (trialsPath.empty())
                                         {
                                             line->wipe();
                                             table.add(trial);
                                         }
                                         line->update(numDone, maxTrials);
                                         return !interruption.isRequested();
                                     });
        },
        true, foldsAtOnce);
    const fenn::analysis::Trial& winner = result.trials[result.winner];
    if (!winner.failure.empty() && result.wasCancelled)
        throw Interrupted("stopped after " + countOf(result.trials.size(), "trial") + ", which all failed");
    if (!winner.failure.empty())
        throw InputError("all " + std::to_string(result.trials.size()) + " trials failed, the first one so: " +
                         explainModelFailure(winner.failure, samples, options.settings));
    return result;
}

/// With a nugget, repeats are replicates: where samples are too near to each other the search leaves settings without
/// one out, for the winner has to suit all samples. An error only where the nugget is fixed at 0.
double TuneCommand::chooseLeastNugget(const SampleTable& samples, Report& report) const
{
    const bool isFixed = std::find(fixedSettings.begin(), fixedSettings.end(), "nugget") != fixedSettings.end();
    if (isFixed && options.settings.nugget == 0.0)
        checkSamplesApart(samples, options.settings);
    const double leastNugget = !isFixed && needsNugget(samples, options.settings) ? leastNuggetOfReplicates : 0.0;
    fenn::estimation::ModelSettings tried = options.settings;
    tried.nugget = std::max(tried.nugget, leastNugget);
    report.coincidentSamples(samples, tried);
    return leastNugget;
}

void TuneCommand::run(std::ostream& out, Console& console) const
{
    Report report(console.getReport());
    checkAnisotropySearch();
    checkModelOptions(options);
    if (!trialsPath.empty() && trialsPath == outputPath)
        throw UsageError("--trials: is the same as --output; name another one");
    const SampleTable read = readSamples(options);
    report.samplesRead(read);
    report.formUsed(options.settings);
    const SampleTable samples = inModelForm(read, options.settings);

    const fenn::analysis::TuningResult result = search(samples, chooseLeastNugget(samples, report), console);
    const fenn::analysis::Trial& best = result.trials[result.winner];
    Settings winner = options.settings.withModel(best.settings);
    if (searchesAnisotropy)
        winner.anisotropy = best.anisotropy;
    report.rangeUsed(inModelForm(read, winner), winner, options.units);
    if (!trialsPath.empty())
        writeWhole(trialsPath, csvOfTrials(result, searchesAnisotropy));
    if (!result.wasCancelled) // whoever stopped the search does not wait for more
        winner = withSills(winner, read, console, report);
    if (!outputPath.empty())
        writeWhole(outputPath, settingsFileText(winner));
    printTuning(isStandardStream(outputPath) || isStandardStream(trialsPath) ? console.getReport() : out, result,
                winner, read.outputNames, tuning.objective);
    if (!out.flush())
        throw InputError("standard output: writing failed");
    if (result.wasCancelled)
        throw Interrupted("stopped after " + countOf(result.trials.size(), "trial") + " of " +
                          std::to_string(tuning.maxTrials) + "; the best settings so far are " +
                          (outputPath.empty() ? "shown" : "written to " + outputPath));
}

} // namespace krige
