#include "host/commands/ReportCommand.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <ostream>
#include <utility>

#include <CLI/CLI.hpp>

#include "analysis/BinnedSemivariogram.h"
#include "host/files/InputFile.h"
#include "host/files/OutputFile.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/model/LagUnit.h"
#include "host/page/CommandText.h"
#include "host/page/DataSection.h"
#include "host/page/FitSection.h"
#include "host/page/Html.h"
#include "host/page/MapSection.h"
#include "host/page/Page.h"
#include "host/page/ValidationSection.h"
#include "host/reports/FoldValidation.h"
#include "host/reports/RangeText.h"
#include "host/reports/VariogramReport.h"
#include "host/targets/Predictor.h"
#include "host/targets/RasterGrid.h"
#include "host/targets/TargetSupport.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/ReportLog.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

/// How long the steps of a run took.
class StepTimes
{
public:
    void endStep(const std::string& name)
    {
        const Clock::time_point now = Clock::now();
        steps.emplace_back(name, now - start);
        total += now - start;
        start = now;
    }

    /// A table; its lines alone differ between two runs.
    std::string toHtml() const
    {
        std::vector<std::vector<std::string>> rows{{"step", "time"}};
        for (const auto& [name, time] : steps)
            rows.push_back({name, secondsText(time)});
        rows.push_back({"all", secondsText(total)});
        return tableOf(rows, "timings");
    }

    /// "0.228 s (reading the samples 0.001 s, ...)"
    std::string toText() const
    {
        std::string text;
        for (const auto& [name, time] : steps)
            text += (text.empty() ? "" : ", ") + name + " " + secondsText(time);
        return secondsText(total) + " (" + text + ")";
    }

private:
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;

    static std::string secondsText(Seconds time)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%.3f s", time.count());
        return text;
    }

    Clock::time_point start = Clock::now();
    Seconds total{0.0};
    std::vector<std::pair<std::string, Seconds>> steps;
};

namespace
{

constexpr double coverageOfProfiles = 95.0; // percent

std::string joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

/// "200x150", or "x=0:10:101,..." of a grid that has its ends.
std::vector<std::string> gridWords(const GridSpec& grid, const std::string& typed)
{
    std::string counts;
    for (const GridAxis& axis : grid.axes)
        counts += (counts.empty() ? "" : "x") + std::to_string(axis.count);
    return {"--grid", typed.empty() ? counts : typed};
}

} // namespace

ReportCommand::ReportCommand(CLI::App& command_) : command(command_)
{
    addModelOptions(command_, options);
    addEstimatorOptions(command_, options.estimator);
    configOption = command_.get_option("--config");
    command_
        .add_option("--grid", gridText,
                    "Nodes of the maps: one count per input over the samples' box, or one axis per input as "
                    "NAME=LO:HI:COUNT, as for krige predict; an input with one node is held there. Up to 4 million "
                    "nodes a map. Default: some 30000 nodes over the samples' box, of one input 400, of slices 100 "
                    "along each. Example: --grid 400x300")
        ->type_name("AXES");
    foldsOption = command_
                      .add_option("--folds", numFolds,
                                  "Parts of the cross-validation, each estimated from the others. Default: 10, or the "
                                  "number of samples where they are fewer. Example: --folds 5")
                      ->type_name("K")
                      ->check(CLI::Range(2, 1000000000).description(""));
    command_
        .add_option("--seed", seed,
                    "Seed of the random parts: the same seed gives the same ones. Default: 1. Example: --seed 7")
        ->type_name("S");
    command_
        .add_option("--worst", numWorst,
                    "Number of samples with the largest errors to list, per output. Default: 10. Example: --worst 20")
        ->type_name("N");
    command_
        .add_option("--title", title,
                    "Title of the page. Default: the outputs and the samples' file. Example: --title 'Zinc in soil'")
        ->type_name("TEXT");
    command_
        .add_option("-o,--output", outputPath,
                    "Page to write, which appears when it is complete; packed by gzip when its name ends in .gz; - is "
                    "standard output. Needed. Example: -o report.html")
        ->type_name("FILE")
        ->required();
    command_.footer(
        "Writes one page of HTML that needs nothing beside itself: the data and warnings, the settings in words and as "
        "command lines, the semivariogram with the model, a cross-validation, and maps of estimates and standard "
        "errors that show the values under the pointer. One input gives a profile, three and more slices through the "
        "samples' means. Settings are those of --config and the options; krige tune finds better ones than the "
        "defaults.\n\nExamples:\n"
        "  krige report samples.csv --inputs x,y --outputs z --config best.toml -o report.html\n"
        "  krige report samples.csv --inputs x,y --outputs z --range 0.3 --units m --grid 400x300 -o report.html");
}

void ReportCommand::checkUsage() const
{
    checkModelOptions(options);
    if (outputPath.empty())
        throw UsageError("--output: needs the name of a file");
    checkIsNotInput("--output", outputPath, options.samplesPath);
}

GridSpec ReportCommand::chooseGrid(const SampleTable& samples) const
{
    if (gridText.empty())
        return defaultGrid(samples);
    GridSpec grid = inOrderOfInputs(parseGridSpec(gridText, options.inputNames), options.inputNames);
    giveNodes(grid, samples.inputs);
    return grid;
}

std::string ReportCommand::showVariograms(const SampleTable& samples, const SampleModel& model,
                                          const std::vector<OutputSill>& sills) const
{
    const fenn::ModelParts& parts = model.getParts();
    const LagUnit unit = chooseLagUnit(parts, LagUnit::Choice::Automatic, options.units);
    std::vector<VariogramView> views;
    fenn::analysis::BinningOptions bins;
    bins.maxLag = fenn::analysis::defaultMaxLag(parts);
    if (parts.getPoints().size() < 2 || bins.maxLag == 0.0)
        return variogramSection({}, unit, 0, "a semivariogram needs samples at two places or more.");
    const std::vector<std::string> names = inModelForm(samples, options.settings).outputNames;
    for (std::size_t output = 0; output < names.size(); ++output)
    {
        bins.outputVar = output;
        bins.sill = sills[output].value;
        const fenn::analysis::BinnedSemivariogram binned = fenn::analysis::binSemivariogram(parts, bins);
        views.push_back({names[output], binned.bins, curveOfModel(parts, bins.maxLag, sills[output].value),
                         describePairs(binned, bins, unit)});
    }
    return variogramSection(views, unit, options.settings.driftOrder, "");
}

std::string ReportCommand::validate(const SampleTable& samples, Console& console, Report& report,
                                    std::vector<std::string>& summary) const
{
    FoldValidation validation;
    try
    {
        validation = validateInFolds(samples, options.settings, options.estimator, numFolds, seed, console);
    }
    catch (const InputError& error) // of too few samples: the rest of the page is worth having
    {
        summary.push_back("No cross-validation: " + std::string(error.what()));
        return paragraphOf("There is none: " + std::string(error.what()), "warnings");
    }
    report.sillsOfFolds(samples.outputNames, validation.sillsOfFolds);
    const std::vector<ValidationFigures> figures = summarise(validation.result, numWorst);
    for (const std::string& sentence : sentencesOfValidation(validation.result, figures))
        summary.push_back(sentence);
    return validationSection(validation.result, figures, validation.method, options.units,
                             options.settings.units.areLogarithms);
}

std::string ReportCommand::showMaps(const SampleTable& samples, const SampleModel& model,
                                    const std::vector<OutputSill>& sills, const GridSpec& grid,
                                    std::vector<MapView>& views, Console& console, Report& report) const
{
    PredictionRequest request;
    request.withVariance = true;
    request.coverage = coverageOfProfiles;
    const std::vector<PredictionColumn> columns = choosePredictionColumns(samples.outputNames, request);
    std::vector<double> sillValues;
    for (const OutputSill& sill : sills)
        sillValues.push_back(sill.value);
    Predictor predictor(model, columns, sillValues, request.coverage, options.settings.units);
    TargetSupport support(samples, model, options.settings, {});
    const std::unique_ptr<ProgressLine> line = console.startProgress("targets");
    std::uint64_t numTargets = 0;
    std::uint64_t numInAll = 0;
    for (const MapView& view : views)
        numInAll += view.getNumNodes();
    for (MapView& view : views)
        estimateView(view,
                     [&](const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)
                     {
                         predictor.predict(targets, values);
                         support.count(targets);
                         numTargets += targets.front().size();
                         line->update(numTargets, numInAll);
                     });
    line->wipe();
    if (support.areAllUnsupported())
        throw InputError("--grid: " + support.describeAllUnsupported());
    report.answered(model.getEngineReport());
    report.variancesRejected(predictor.getNumWithoutVariance(), numTargets);
    report.supported(support);
    const std::size_t numPairs = countPairs(grid);
    return mapSection({samples, views, numPairs > views.size() ? numPairs - views.size() : 0, columns, options.units,
                       options.settings.units.areLogarithms, support.describe()});
}

std::string ReportCommand::showFit(const SampleTable& samples, const SampleModel& model, std::vector<OutputSill> sills,
                                   const GridSpec& grid) const
{
    const std::vector<std::string> settings = optionsOfSettings(options.settings);
    const auto commandLine =
        [&settings](const char* name, std::vector<std::string> words, const std::vector<std::string>& last)
    {
        words.insert(words.begin(), {"krige", name});
        words.insert(words.end(), settings.begin(), settings.end());
        words.insert(words.end(), last.begin(), last.end());
        return shellText(words);
    };
    const std::set<std::string> elsewhere{"--output", "--threads", "--quiet", "--progress"};
    std::set<std::string> ofPage = elsewhere;
    ofPage.insert({"--grid", "--folds", "--seed", "--worst", "--title"});
    std::vector<std::string> map = gridWords(grid, gridText);
    map.insert(map.end(), {"--variance", "-o", "map.csv"});
    const std::string page = isStandardStream(outputPath) ? "report.html" : outputPath;
    std::string origin =
        "The settings come from the command line and the defaults. krige tune finds settings that suit "
        "samples better than the defaults do.";
    if (configOption->count() > 0)
        origin = "The settings come from " + configOption->results().back() + " and the command line.";
    return fitSection({samples, options.settings, model, std::move(sills), origin,
                       describeRange(inModelForm(samples, options.settings), options.settings, options.units),
                       model.getEngineReport().sentence,
                       commandLine("report", typedWords(command, elsewhere), {"-o", page}),
                       commandLine("predict", typedWords(command, ofPage), map)});
}

void ReportCommand::run(std::ostream& /*out*/, Console& console) const
{
    StepTimes times;
    ReportLog log(console.getReport());
    Report report(log.getStream());
    checkUsage();

    // Whatever can fail without the model fails before it is built: that may take long.
    const SampleTable samples = readSamples(options);
    report.samplesRead(samples);
    report.formUsed(options.settings);
    if (foldsOption->count() > 0)
        checkFolds(numFolds, samples, "lower it");
    const GridSpec grid = chooseGrid(samples);
    std::vector<MapView> views = chooseViews(grid, samples);
    OutputFile output(outputPath);
    times.endStep("reading the samples");

    const SampleModel model(samples, options.settings, options.estimator);
    report.modelBuilt(model, samples, options.settings);
    report.rangeUsed(inModelForm(samples, options.settings), options.settings, options.units);
    const std::unique_ptr<ProgressLine> line = console.startProgress("points for the sill");
    const std::vector<OutputSill> sills = model.calcSills(options.settings.sills, reportTo(*line));
    line->wipe();
    report.sillsUsed(samples.outputNames, sills);
    times.endStep("building the model");

    const std::string variograms = showVariograms(samples, model, sills);
    times.endStep("semivariogram");
    std::vector<std::string> summary;
    const std::string validation = validate(samples, console, report, summary);
    times.endStep("cross-validation");
    const std::string maps = showMaps(samples, model, sills, grid, views, console, report);
    times.endStep("maps");

    const std::string outputs = joined(samples.outputNames);
    Page page(title.empty() ? "Kriging of " + outputs : title,
              outputs + " over " + joined(samples.inputNames) + " from " + samples.path, summary);
    page.addSection("data", "Data", dataSection(samples, options.units, log.linesOf({"warning", "hint", "note"})));
    page.addSection("settings", "Settings", showFit(samples, model, sills, grid));
    page.addSection("semivariogram", "Semivariogram", variograms);
    page.addSection("validation", "Cross-validation", validation);
    page.addSection("maps", samples.inputs.size() == 1 ? "Profile" : "Maps", maps);
    times.endStep("the rest of the page");
    page.addSection("run", "Run", paragraphOf("Made by krige " KRIGE_VERSION ".") + times.toHtml());
    output.write(page.toHtml());
    output.commit();
    times.endStep("writing it");
    log.getStream() << "time: " << times.toText() << '\n';
}

} // namespace krige
