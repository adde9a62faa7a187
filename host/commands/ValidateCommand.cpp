#include "host/commands/ValidateCommand.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>

#include "analysis/LeaveOneOut.h"
#include "host/files/InputFile.h"
#include "host/files/OutputFile.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/model/NearSamples.h"
#include "host/model/OutputSill.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"
#include "host/model/SuspiciousValues.h"
#include "host/pictures/ValidationPicture.h"
#include "host/reports/FoldValidation.h"
#include "host/reports/Report.h"
#include "host/targets/TargetSource.h"
#include "host/targets/TargetSupport.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

std::vector<std::vector<double>> rowsOf(const std::vector<std::vector<double>>& columns, std::size_t first,
                                        std::size_t count)
{
    std::vector<std::vector<double>> rows;
    for (const std::vector<double>& column : columns)
    {
        const auto begin = column.begin() + static_cast<std::ptrdiff_t>(first);
        rows.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(count));
    }
    return rows;
}

/// The same ones for every point.
void useSills(const std::vector<OutputSill>& sills, ValidationResult& result, Report& report)
{
    report.sillsUsed(result.outputNames, sills);
    for (const OutputSill& sill : sills)
        result.sills.emplace_back(result.lines.size(), sill.value);
}

double meanOf(const std::vector<double>& values, const std::vector<std::size_t>& indices)
{
    double sum = 0.0;
    for (const std::size_t i : indices)
        sum += values[i];
    return sum / static_cast<double>(indices.size());
}

} // namespace

ValidateCommand::ValidateCommand(CLI::App& command)
{
    addModelOptions(command, options);
    addEstimatorOptions(command, options.estimator);
    CLI::Option* const against =
        command
            .add_option("--against", truthPath,
                        "CSV file of known values to compare with, with the columns of --inputs and --outputs. "
                        "Default: cross-validation. Example: --against truth.csv")
            ->type_name("FILE");
    CLI::Option* const leaveOneOutFlag =
        command
            .add_flag("--leave-one-out", leavesOneOut,
                      "Estimate each point from all others, with the normalisation, range and merged points of the "
                      "full model. Default: folds. Example: --leave-one-out")
            ->excludes(against)
            ->excludes(command.get_option("--exact")); // one factorisation estimates every point
    foldsOption = command
                      .add_option("--folds", numFolds,
                                  "Cut the samples at random into this many parts, and estimate each part from the "
                                  "others. Default: 10, or the number of samples where they are fewer. Example: "
                                  "--folds 5")
                      ->type_name("K")
                      ->check(CLI::Range(2, 1000000000))
                      ->excludes(against)
                      ->excludes(leaveOneOutFlag);
    command
        .add_option("--seed", seed,
                    "Seed of the random folds: the same seed gives the same folds. Default: 1. Example: --seed 7")
        ->type_name("S")
        ->excludes(against)
        ->excludes(leaveOneOutFlag);
    command
        .add_option("--worst", numWorst,
                    "Number of points with the largest errors to list, per output. Default: 5. Example: --worst 20")
        ->type_name("N");
    command
        .add_option("-o,--output", pointsPath,
                    "CSV file to write: every point with its estimates, errors and standard errors. Default: none. "
                    "Example: -o points.csv; with -o - the tables go to standard error")
        ->type_name("FILE");
    addPictureOptions(command, plot,
                      "Picture of estimated against measured values, of errors against standard errors, of what "
                      "intervals hold against what they are to hold, and of the errors at their places:");
    command.footer(
        "Prints per output: RMSE, MAE, bias (mean of estimate minus measured value), R2, MSSE (mean squared "
        "error over its variance, sill and nugget included; 1 when the standard errors are right), the worst "
        "error, CRPS (continuous ranked probability score, in the output's units; lower is better) and the "
        "percentages of measured values that the intervals of 50, 90 and 95 % hold; then the worst points, "
        "by their lines in the file. With --transform log, errors are in the data's units; MSSE, CRPS, standard errors "
        "and intervals are of the logarithms.\n\nExamples:\n"
        "  krige validate samples.csv --inputs x,y --outputs z\n"
        "  krige validate samples.csv --inputs x,y --outputs z --leave-one-out --plot fit.png\n"
        "  krige validate samples.csv --inputs x,y --outputs z --config best.toml --against truth.csv");
}

ValidationResult ValidateCommand::crossValidate(const SampleTable& samples, Console& console, Report& report) const
{
    if (foldsOption->count() > 0)
        checkFolds(numFolds, samples, "lower it, or use --leave-one-out");
    FoldValidation validation = validateInFolds(samples, options.settings, options.estimator, numFolds, seed, console);
    console.getReport() << "method: " << validation.method << '\n';
    report.sillsOfFolds(samples.outputNames, validation.sillsOfFolds);
    return std::move(validation.result);
}

ValidationResult ValidateCommand::leaveOneOut(const SampleTable& samples, Console& console, Report& report) const
{
    const SampleTable formed = inModelForm(samples, options.settings);
    ValidationResult result = resultFor(samples);
    fenn::analysis::LeaveOneOutResult left;
    runExplained(formed, options.settings, "without one of its points: ",
                 [&]
                 {
                     const std::unique_ptr<ProgressLine> line = console.startProgress("points");
                     left = fenn::analysis::leaveOneOut(toSampleSet(formed), options.settings, reportTo(*line),
                                                        options.estimator);
                 });
    result.inputs.resize(samples.inputs.size());
    for (const std::vector<std::size_t>& members : left.members)
    {
        std::string lines;
        for (const std::size_t i : members)
            lines += (lines.empty() ? "" : "+") + std::to_string(samples.lines[i]);
        result.lines.push_back(lines);
        for (std::size_t v = 0; v < result.inputs.size(); ++v)
            result.inputs[v].push_back(meanOf(samples.inputs[v], members));
    }
    result.truths = std::move(left.truths);
    result.estimates = std::move(left.estimates.values);
    result.variances = std::move(left.estimates.variances);
    console.getReport() << "method: leave one out of " << countOf(result.lines.size(), "point") << '\n';
    useSills(applyChoices(options.settings.sills, left.sills), result, report);
    result.bringIntoUnits(options.settings.units, left.estimates.driftProducts);
    return result;
}

ValidationResult ValidateCommand::compare(const SampleTable& samples, Console& console, Report& report) const
{
    // Whatever can fail without the model fails before it is built: that may take long.
    const SampleTable truth = readSamples(truthPath, options.inputNames, options.outputNames, options.reading);
    if (truth.numSkipped > 0)
        console.getReport() << "skipped: " << countOf(truth.numSkipped, "row") << " of " << truthPath
                            << ", with a missing value\n";
    for (const std::string& warning : warningsOfSamples(truth))
        console.getReport() << warning << '\n';
    ValidationResult result = resultFor(samples);
    result.inputs = truth.inputs;
    result.truths = inModelForm(truth, options.settings).outputs;
    result.estimates.resize(truth.outputs.size());
    for (const std::size_t line : truth.lines)
        result.lines.push_back(std::to_string(line));

    const SampleModel model(samples, options.settings, options.estimator);
    report.modelBuilt(model, samples, options.settings);
    TargetSupport support(samples, model, options.settings, {});
    support.count(truth.inputs);
    const std::unique_ptr<ProgressLine> progress = console.startProgress("points");
    ChunkSize chunkSize(1024, targetsPerRequest);
    std::vector<std::vector<double>> estimates;
    std::vector<double> variances;
    std::vector<double> driftProducts;
    std::vector<double> allDriftProducts;
    for (std::size_t first = 0; first < truth.lines.size();)
    {
        const std::size_t count = std::min(chunkSize.next(), truth.lines.size() - first);
        model.estimate(rowsOf(truth.inputs, first, count), estimates, &variances, &driftProducts);
        for (std::size_t w = 0; w < estimates.size(); ++w)
            result.estimates[w].insert(result.estimates[w].end(), estimates[w].begin(), estimates[w].end());
        result.variances.insert(result.variances.end(), variances.begin(), variances.end());
        allDriftProducts.insert(allDriftProducts.end(), driftProducts.begin(), driftProducts.end());
        first += count;
        progress->update(first, truth.lines.size());
    }
    progress->wipe();
    report.answered(model.getEngineReport());
    report.supported(support);
    useSills(model.calcSills(options.settings.sills), result, report);
    result.bringIntoUnits(options.settings.units, allDriftProducts);
    result.truths = truth.outputs; // as they stand in the file, to the bit
    return result;
}

void ValidateCommand::writePoints(const ValidationResult& result, const std::vector<ValidationFigures>& figures) const
{
    OutputFile file(pointsPath);
    file.write(csvOfPoints(result, figures));
    file.commit();
}

void ValidateCommand::run(std::ostream& out, Console& console) const
{
    Report report(console.getReport());
    checkModelOptions(options);
    if (isStandardStream(options.samplesPath) && isStandardStream(truthPath))
        throw UsageError("samples and --against cannot both be standard input; put one of them into a file");
    checkPictureOptions(plot, options.outputNames.size());
    const SampleTable samples = readSamples(options);
    report.samplesRead(samples);
    report.formUsed(options.settings);

    if (truthPath.empty()) // otherwise the model itself says so
    {
        const SampleTable formed = inModelForm(samples, options.settings);
        checkSamplesApart(formed, options.settings);
        report.coincidentSamples(formed, options.settings);
    }
    const ValidationResult result = !truthPath.empty() ? compare(samples, console, report)
                                    : leavesOneOut     ? leaveOneOut(samples, console, report)
                                                       : crossValidate(samples, console, report);
    report.rangeUsed(inModelForm(samples, options.settings), options.settings, options.units);
    const std::vector<ValidationFigures> figures = summarise(result, numWorst);
    const std::size_t numMissing = figures.front().errors.numMissing;
    if (numMissing > 0)
        console.getReport() << "hint: " << countOf(numMissing, "point") << (numMissing == 1 ? " has" : " have")
                            << " no estimate and count for nothing\n";
    const std::size_t numWithoutVariance = figures.front().calibration.numWithoutStandardError;
    report.variancesRejected(numWithoutVariance, result.lines.size());
    if (!pointsPath.empty())
        writePoints(result, figures);
    std::ostream& tables = isStandardStream(pointsPath) ? console.getReport() : out;
    printErrors(tables, result, figures);
    printWorstPoints(tables, result, figures);
    if (!out.flush())
        throw InputError("standard output: writing failed");
    if (!plot.path.empty()) // last: the tables stay whatever becomes of it
        drawValidation(plot, options.units, result, figures);
    report.finished(result.lines.size());
}

} // namespace krige
