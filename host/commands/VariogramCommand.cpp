#include "host/commands/VariogramCommand.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "estimation/makeModelParts.h"
#include "host/files/OutputFile.h"
#include "host/model/AnalysisInput.h"
#include "host/pictures/Gnuplot.h"
#include "host/pictures/Variogram.h"
#include "host/reports/Report.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

namespace
{

constexpr std::size_t numLagsInPicture = 15;

} // namespace

VariogramCommand::VariogramCommand(CLI::App& command)
{
    addModelOptions(command, options);
    CLI::Option* const lags =
        command
            .add_option("--lags", numLags,
                        "Number of bins of equal width in which pairs of points are gathered; the output is CSV then. "
                        "Default: no bins, a line for every lag. Example: --lags 15")
            ->type_name("N");
    command
        .add_option("--max-lag", maxLag,
                    "Largest lag of the bins, as a distance of normalised inputs. Default: half the diagonal of the "
                    "samples' normalised box. Example: --max-lag 1.5")
        ->type_name("D")
        ->needs(lags);
    command.add_option("-o,--output", outputPath, "File to write. Default: standard output. Example: -o variogram.csv")
        ->type_name("FILE");
    command
        .add_option("--plot", plotPath,
                    "Picture of the semivariogram and the model, .png or .svg, or its gnuplot script, .gp. Default: "
                    "none. Example: --plot variogram.png")
        ->type_name("FILE");
    command.footer("Takes one output. Without --lags: two header lines, then a line for every lag with distance, "
                   "empirical semivariance, the model's semivariance and number of pairs. The points are paired within "
                   "the samples and within the merged points, in both orders, and with themselves. With --lags each "
                   "pair counts once.\n\nExamples:\n  krige variogram samples.csv --inputs x,y --outputs z --lags 15 "
                   "--plot variogram.png\n  krige variogram samples.csv --inputs x,y --outputs z -o all_lags.txt");
}

void VariogramCommand::write(std::ostream& out, const std::string& text) const
{
    if (outputPath.empty())
    {
        if (!(out << text).flush())
            throw InputError("standard output: writing failed");
        return;
    }
    OutputFile file(outputPath);
    file.write(text);
    file.commit();
}

void VariogramCommand::run(std::ostream& out, Console& console) const
{
    Report report(console.getReport());
    checkModelOptions(options);
    if (options.outputNames.size() > 1)
        throw UsageError("--outputs: a semivariogram is that of one output; name one at a time");
    if (!plotPath.empty())
        checkPicturePath(plotPath);
    const SampleTable samples = readSamples(options);
    report.samplesRead(samples);

    runExplained(samples, options.settings, "",
                 [&]
                 {
                     const fenn::estimation::SampleSet sampleSet = toSampleSet(samples);
                     const auto parts = fenn::estimation::makeModelParts(sampleSet, options.settings);
                     const double limit = maxLag == 0.0 ? fenn::analysis::defaultMaxLag(*parts) : maxLag;
                     std::vector<fenn::LagGroup> groups;
                     std::vector<fenn::analysis::LagBin> bins;
                     if (numLags == 0)
                         groups = lagGroupsOfModel(*parts, samples.path);
                     if (numLags > 0 || !plotPath.empty())
                         bins = fenn::analysis::binnedSemivariogram(*parts, 0, numLags > 0 ? numLags : numLagsInPicture,
                                                                    limit);
                     write(out, numLags > 0 ? csvOfBins(bins) : dumpOfGroups(*parts, groups));
                     if (!plotPath.empty())
                         drawVariogram(plotPath, samples.outputNames[0], groups, bins, curveOfModel(*parts, limit));
                 });
}

} // namespace krige
