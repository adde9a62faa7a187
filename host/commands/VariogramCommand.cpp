#include "host/commands/VariogramCommand.h"

#include <charconv>
#include <ostream>

#include <CLI/CLI.hpp>

#include "analysis/BinnedSemivariogram.h"
#include "estimation/makeModelParts.h"
#include "host/files/InputFile.h"
#include "host/files/OutputFile.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/model/SettingsFile.h"
#include "host/model/VariogramModel.h"
#include "host/pictures/VariogramPicture.h"
#include "host/reports/Report.h"
#include "host/reports/VariogramReport.h"
#include "host/reports/VariogramTable.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

namespace
{

constexpr std::size_t numLagsInPicture = 15;      // of bins over single lags
constexpr std::size_t mostSingleLags = 5'000'000; // 24 bytes each; of more pairs a share is drawn

double parseDegrees(const std::string& option, const std::string& text)
{
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (status != NumberStatus::Ok)
        throw UsageError(option + ": needs a number of degrees, not " + quoteForMessage(text));
    return value;
}

std::size_t parseNumLags(const std::string& text)
{
    constexpr std::size_t mostBins = 1'000'000; // more is a slip of the finger
    std::size_t value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < 1 || value > mostBins)
        throw UsageError("--lags: must be a whole number from 1 to 1000000, or all, not " + quoteForMessage(text));
    return value;
}

void writeWhole(const std::string& path, const std::string& text)
{
    OutputFile file(path);
    file.write(text);
    file.commit();
}

} // namespace

VariogramCommand::VariogramCommand(CLI::App& command)
{
    addModelOptions(command, options);
    addBinOptions(command);
    addFileOptions(command);
    command.footer(
        "Takes one output. Prints CSV, a line per bin: its lags, their mean, the empirical semivariance, the mean of "
        "the model's (for the sill in use; with --fit of the fitted model) and the number of pairs of points. Each "
        "pair counts once; merged samples are one point. Of more than 50 million pairs a share is drawn, always the "
        "same.\n\nExamples:\n  krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --units m --plot "
        "variogram.png\n  krige variogram samples.csv --inputs x,y --outputs z --scale 1,1 --fit -o best.toml\n"
        "  krige variogram samples.csv --inputs x,y --outputs z --direction 45 --tolerance 22.5");
}

void VariogramCommand::addBinOptions(CLI::App& command)
{
    command
        .add_option_function<std::string>(
            "--lags", [this](const std::string& text) { numLags = text == "all" ? 0 : parseNumLags(text); },
            "Number of bins of equal width in which pairs of points are gathered; all: no bins, a line for every lag "
            "that occurs. Default: 15. Example: --lags 20")
        ->type_name("N");
    command
        .add_option_function<std::string>(
            "--max-lag",
            [this](const std::string& text)
            {
                maxLag = parseDistance("--max-lag", text);
                if (!(maxLag->value > 0.0))
                    throw UsageError("--max-lag: must be above 0, not " + quoteForMessage(text));
            },
            "Largest lag, as a distance of normalised inputs or, with u behind it, in the units of inputs that share "
            "one scale. Default: half the diagonal of the samples' normalised box. Examples: --max-lag 1.5, --max-lag "
            "900u")
        ->type_name("D");
    command
        .add_option_function<std::string>(
            "--lag",
            [this](const std::string& text)
            {
                if (text != "normalised" && text != "units")
                    throw UsageError("--lag: must be normalised or units, not " + quoteForMessage(text));
                lagChoice = text == "units" ? LagUnit::Choice::InputUnits : LagUnit::Choice::Normalised;
            },
            "Lags in table and picture: normalised, or units, those of inputs that share one scale. Default: units "
            "where they share one. Example: --lag normalised")
        ->type_name("NAME");
    CLI::Option* const directionOption =
        command
            .add_option_function<std::string>(
                "--direction", [this](const std::string& text) { direction = parseDegrees("--direction", text); },
                "Of two inputs, take only pairs in this direction: degrees anticlockwise from the first input's axis, "
                "by raw inputs. Default: all directions. Example: --direction 45")
            ->type_name("DEGREES");
    command
        .add_option_function<std::string>(
            "--tolerance",
            [this](const std::string& text)
            {
                tolerance = parseDegrees("--tolerance", text);
                if (!(tolerance > 0.0 && tolerance <= 90.0))
                    throw UsageError("--tolerance: must be above 0 and at most 90 degrees, not " +
                                     quoteForMessage(text));
            },
            "Degrees by which a pair may be off --direction, to either side; 90 takes every pair. Default: 22.5. "
            "Example: --tolerance 15")
        ->type_name("DEGREES")
        ->needs(directionOption);
    command.add_flag("--fit", isFitted,
                     "Fit range, nugget and sill to the bins by weighted least squares. Default: the model of the "
                     "settings is shown. Example: --fit");
}

void VariogramCommand::addFileOptions(CLI::App& command)
{
    command
        .add_option("-o,--output", outputPath,
                    "File to write: with --fit the settings of the fitted model, which every subcommand reads with "
                    "--config, otherwise the table. Default: the table goes to standard output; with --fit -o - it "
                    "goes to standard error. Examples: -o variogram.csv, --fit -o best.toml")
        ->type_name("FILE");
    addPictureOptions(command, plot, "Picture of the semivariogram and the model:");
}

void VariogramCommand::checkUsage() const
{
    checkModelOptions(options);
    if (options.outputNames.size() > 1)
        throw UsageError("--outputs: a semivariogram is that of one output; name one at a time");
    if (direction && options.inputNames.size() != 2)
        throw UsageError("--direction: there must be two inputs, not " + std::to_string(options.inputNames.size()));
    if (direction && options.settings.anisotropy)
        throw UsageError("--direction: looks at the inputs as they stand in the file, which --anisotropy turns; leave "
                         "one of them out");
    if (isFitted && isEveryLag())
        throw UsageError("--fit: needs bins; leave out --lags all");
    checkPictureOptions(plot, options.outputNames.size());
}

fenn::analysis::BinningOptions VariogramCommand::chooseBins(const fenn::ModelParts& parts,
                                                            const std::string& samplesName) const
{
    if (parts.getPoints().size() < 2)
        throw InputError(samplesName + ": a semivariogram needs two points or more");
    if (!maxLag && fenn::analysis::defaultMaxLag(parts) == 0.0)
        throw InputError(samplesName + ": all samples lie at one place; a semivariogram needs two places or more");
    fenn::analysis::BinningOptions bins;
    bins.maxLag = maxLag ? toNormalisedLag(parts, "--max-lag", *maxLag) : fenn::analysis::defaultMaxLag(parts);
    bins.direction = direction;
    bins.tolerance = tolerance;
    bins.numLags = isEveryLag() ? numLagsInPicture : numLags;
    return bins;
}

fenn::analysis::BinnedSemivariogram VariogramCommand::tabulate(const fenn::ModelParts& parts,
                                                               const fenn::analysis::BinningOptions& bins) const
{
    if (!isEveryLag())
        return fenn::analysis::binSemivariogram(parts, bins);
    fenn::analysis::BinningOptions single = bins;
    single.maxPairs = mostSingleLags;
    return fenn::analysis::semivariogramAtEveryLag(parts, single);
}

void VariogramCommand::writeTable(std::ostream& out, std::ostream& report, const std::string& text) const
{
    if (isFitted && isStandardStream(outputPath))
        report << text;
    else if (isFitted || outputPath.empty())
    {
        if (!(out << text).flush())
            throw InputError("standard output: writing failed");
    }
    else
        writeWhole(outputPath, text);
}

void VariogramCommand::run(std::ostream& out, Console& console) const
{
    Report report(console.getReport());
    checkUsage();
    const SampleTable read = readSamples(options);
    report.samplesRead(read);
    report.formUsed(options.settings);
    const SampleTable samples = inModelForm(read, options.settings);

    explainFailures(samples, options.settings, "", [&] { show(samples, report, out, console.getReport()); });
}

void VariogramCommand::show(const SampleTable& samples, Report& report, std::ostream& out,
                            std::ostream& reportLines) const
{
    const fenn::estimation::SampleSet sampleSet = toSampleSet(samples);
    Settings settings = options.settings;
    std::shared_ptr<const fenn::ModelParts> parts = fenn::estimation::makeModelParts(sampleSet, settings);
    fenn::analysis::BinningOptions bins = chooseBins(*parts, samples.path);
    const LagUnit unit = chooseLagUnit(*parts, lagChoice, options.units);
    if (isFitted)
    {
        const fenn::analysis::SphericalFit fit = fitToBins(*parts, bins, samples.path);
        settings = withFit(settings, *parts, fit);
        parts = fenn::estimation::makeModelParts(sampleSet, settings);
        bins.sill = fit.sill;
        reportLines << describeFit(fit, settings, bins, unit);
    }
    else
    {
        const OutputSill sill = sillOfSettings(sampleSet, *parts, settings);
        report.sillsUsed(samples.outputNames, {sill});
        bins.sill = sill.value;
    }
    report.rangeUsed(samples, settings, options.units);

    const fenn::analysis::BinnedSemivariogram table = tabulate(*parts, bins);
    reportLines << describePairs(table, bins, unit);
    writeTable(out, reportLines, csvOfBins(table.bins, unit));
    if (isFitted && !outputPath.empty())
        writeWhole(outputPath, settingsFileText(settings));
    if (plot.path.empty())
        return;
    const VariogramCurve curve = curveOfModel(*parts, bins.maxLag, *bins.sill);
    const QuantityName output = nameQuantity(samples.outputNames[0], plot.unitOf(0));
    const bool areLogarithms = settings.units.areLogarithms;
    const QuantityName semivariance{"semivariance of " +
                                        nameWithDirection((areLogarithms ? "ln " : "") + output.name, bins),
                                    areLogarithms ? std::string() : squareOf(output.unit)};
    if (isEveryLag())
        drawVariogram(plot, semivariance, unit, table.bins, fenn::analysis::binSemivariogram(*parts, bins).bins, curve);
    else
        drawVariogram(plot, semivariance, unit, {}, table.bins, curve);
}

} // namespace krige
