#include "host/commands/PredictCommand.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <system_error>

#include <CLI/CLI.hpp>

#include "estimation/ThreadCount.h"
#include "host/files/InputFile.h"
#include "host/files/OutputFile.h"
#include "host/geo/MapAxes.h"
#include "host/geo/loadGeoModule.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/model/InputPlaces.h"
#include "host/model/ModelMemory.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"
#include "host/pictures/SurfacePicture.h"
#include "host/reports/DuplicatesReport.h"
#include "host/reports/Report.h"
#include "host/targets/MapPredictions.h"
#include "host/targets/OutputSize.h"
#include "host/targets/Predictor.h"
#include "host/targets/RasterGrid.h"
#include "host/text/Console.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

using Columns = std::vector<std::vector<double>>;

/// The table stays whatever becomes of its picture.
void drawAfterTable(const std::string& tablePath, const std::function<void()>& draw)
{
    try
    {
        draw();
    }
    catch (const InputError& error)
    {
        throw InputError(std::string(error.what()) + "; the estimates are complete" +
                         (isStandardStream(tablePath) ? std::string() : ", in " + tablePath));
    }
}

/// Leaves out what a mask marks; nothing without one.
TargetChoice choiceOf(const PlaceMask* mask, const std::vector<std::string>& inputNames)
{
    if (!mask)
        return {};
    const MapAxes axes = findMapAxes(inputNames);
    return [mask, axes](const Columns& targets, std::vector<bool>& isLeftOut)
    {
        mask->mark(targets[axes.x], targets[axes.y], isLeftOut);
    };
}

} // namespace

PredictCommand::PredictCommand(CLI::App& command)
{
    addModelOptions(command, options);
    addEstimatorOptions(command, options.estimator);
    command
        .add_option(
            "--at", targetsPath,
            "CSV file of the targets, with the columns of --inputs; may be packed; - is standard input. Also points "
            "(.gpkg, .geojson, .shp, .fgb) and the valid cells of a raster (.tif, .asc, .nc, .vrt), with columns x and "
            "y. This or --grid is needed. Example: --at targets.csv")
        ->type_name("FILE");
    command
        .add_option("--grid", gridText,
                    "Targets on a grid: one count of nodes per input over the samples' box, or one axis per input as "
                    "NAME=LO:HI:COUNT, the first one running fastest; LO and HI are nodes, a single node is LO. "
                    "cell=SIZE covers the samples with cells of that size, whose centres are the nodes, and "
                    "like=FILE takes the cells of a raster. This or --at is needed. Examples: --grid 200x100, --grid "
                    "x=0:10:101,y=0:5:51, --grid cell=40, --grid like=dem.tif")
        ->type_name("AXES");
    command.add_flag(
        "--variance", request.withVariance,
        "Add a column variance, the Kriging variance for a sill of 1, and per output NAME_stderr, the root of variance "
        "times the sill of that output (--sill): the standard error of the estimate as a prediction of a new "
        "observation, nugget included; nan where the variance is below 0. Default: off. Example: --variance");
    command
        .add_option_function<std::string>(
            "--interval", [this](const std::string& text) { request.coverage = parseCoverage("--interval", text); },
            "Add per output columns NAME_lo and NAME_hi, the ends of the interval that holds this percentage of new "
            "observations, if the errors are normal: estimate -/+ 1.96 standard errors for 95. Default: none. Example: "
            "--interval 95")
        ->type_name("PERCENT");
    command
        .add_option_function<std::string>(
            "--max-distance",
            [this](const std::string& text) { limits.maxDistance = parseLimit("--max-distance", text); },
            "Give nan at targets farther than this from every sample, in the inputs' units: those of the first input, "
            "along its axis; in other directions as far as counts alike to the model, which with --scale 1,1 is the "
            "plain distance. Default: no limit. Example: --max-distance 500")
        ->type_name("D");
    command.add_flag("--hull", limits.isWithinHull,
                     "For two inputs: give nan at targets outside the convex hull of the samples. Default: off. "
                     "Example: --hull");
    command
        .add_option_function<std::string>(
            "--max-stderr",
            [this](const std::string& text) { limits.maxStandardError = parseLimit("--max-stderr", text); },
            "Give nan at targets where the standard error of an output, NAME_stderr, is above this. Default: no limit. "
            "Example: --max-stderr 0.5")
        ->type_name("S");
    command.add_flag("--extrapolate", extrapolates,
                     "Answer even where every target lies outside the samples' box and beyond the range of every "
                     "sample, which is an error otherwise, for then columns are swapped or units are others. Default: "
                     "off. Example: --extrapolate");
    command
        .add_option_function<std::string>(
            "--keep", [this](const std::string& text) { keptNames = parseNames("--keep", text); },
            "Columns of the file of --at that are copied to the output as they are, behind the others. Default: none. "
            "Example: --keep site,date")
        ->type_name("NAMES");
    command
        .add_option_function<std::string>(
            "--shard",
            [this](const std::string& text)
            {
                shard = parseShard(text);
                isShardGiven = true;
            },
            "Estimate only the I-th of K equal parts of the targets; only the first part has the header row, so that "
            "all outputs joined in order are the output of a whole run. In the name of -o, {shard} is replaced by I "
            "with leading zeros; parts of a .tif are runs of rows, and each writes the .vrt that joins them. Default: "
            "1/1. Example: --shard 2/8 -o part{shard}.csv")
        ->type_name("I/K");
    command.add_flag("--yes", isAnySizeWanted,
                     "Write a grid of more than 10^9 nodes without asking; where there is no terminal to ask on, such "
                     "a grid is an error without this. Default: off. Example: --yes");
    command
        .add_option("--duplicates-report", duplicatesPath,
                    "CSV file to write that lists every sample merged by --duplicates merge, with its line. Default: "
                    "none. Example: --duplicates-report merged.csv")
        ->type_name("FILE");
    command
        .add_option("--mask", maskPath,
                    "Polygons (.gpkg, .geojson, .shp), or a raster: targets outside the polygons, or where the raster "
                    "has no value, get nan and are not estimated. Default: none. Example: --mask area.gpkg")
        ->type_name("FILE");
    command
        .add_option("-o,--output", outputPath,
                    "File to write, which appears when it is complete. Its name tells what: .csv, .tsv, .txt or no "
                    "ending is CSV, packed by gzip with .gz; of a grid .vtk is VTK, .tif GeoTIFF, .asc ESRI ASCII grid "
                    "and .nc netCDF, with one band per column; .gpkg, .geojson and .shp are points. - is standard "
                    "output. Needed. Example: -o map.tif")
        ->type_name("FILE")
        ->required();
    command
        .add_option("--output-format", formatName,
                    "Format of --output, whatever its name: " + listOutputFormats() +
                        ". Default: by the name. Example: --output-format tif")
        ->type_name("NAME");
    command
        .add_option("--type", cellType,
                    "What the cells of a raster hold: float64, every bit of the estimates, or float32, half as large. "
                    "Default: float64. Example: --type float32")
        ->type_name("T");
    addPictureOptions(command, plot,
                      "Picture of the estimates: a map, maps of slices or, along one input, a line with its interval. "
                      "Hatched where samples do not surround a place (beyond the dashed line, their convex hull), grey "
                      "where none is within the range; colours span what samples surround, but for its extreme values, "
                      "which a triangle stands for.");
    addSurfaceOptions(command, plot);
    command.parse_complete_callback(
        [this]
        {
            outputPattern = outputPath;
            if (isShardGiven)
                outputPath = nameOfPart(outputPath, shard);
        });
    command.footer(
        "Examples:\n  krige predict samples.csv --inputs x,y --outputs z --grid 200x100 -o grid.csv\n"
        "  krige predict samples.gpkg --inputs x,y --outputs z --grid cell=40 --variance -o map.tif\n"
        "  krige predict samples.csv.gz --inputs x,y --outputs z --variance --at targets.csv --keep id -o -");
}

std::vector<PredictionColumn> PredictCommand::predictionColumns() const
{
    PredictionRequest all = request;
    all.withMedian = options.settings.units.areLogarithms;
    return choosePredictionColumns(options.outputNames, all);
}

std::vector<std::string> PredictCommand::columnNames() const
{
    std::vector<std::string> names = options.inputNames;
    const std::vector<std::string> values = namesOf(predictionColumns());
    names.insert(names.end(), values.begin(), values.end());
    names.insert(names.end(), keptNames.begin(), keptNames.end());
    return names;
}

void PredictCommand::checkUsage() const
{
    checkModelOptions(options);
    if (targetsPath.empty() == gridText.empty())
        throw UsageError("give the targets with either --at FILE or --grid AXES");
    if (outputPath.empty())
        throw UsageError("--output: needs the name of a file");
    if (!isShardGiven && outputPath.find("{shard}") != std::string::npos)
        throw UsageError("--output: {shard} stands for the number of a part; add --shard I/K");
    if (limits.isWithinHull && options.inputNames.size() != 2)
        throw UsageError("--hull: a convex hull is that of two inputs; use --max-distance");
    if (plot.withContours && options.inputNames.size() == 1)
        throw UsageError("--contours: lines of equal values need a map, of two inputs or more");
    if (isGrid() && !keptNames.empty())
        throw UsageError("--keep: a grid has no columns to keep; it goes with --at");
    std::set<std::string> seen;
    for (const std::string& name : columnNames())
    {
        if (options.reading.hasHeader && !seen.insert(name).second)
            throw UsageError("the output would have two columns " + quoteForMessage(name) +
                             "; rename one, or leave it out of --keep");
    }
    checkMapOutput();
    if (!duplicatesPath.empty() && options.settings.duplicateTolerance < 0.0)
        throw UsageError("--duplicates-report: nothing is merged; add --duplicates merge to average samples at one "
                         "place");
    if (isStandardStream(options.samplesPath) && isStandardStream(targetsPath))
        throw UsageError("samples and --at cannot both be standard input; put one of them into a file");
    if (!duplicatesPath.empty() && duplicatesPath == outputPath)
        throw UsageError("--duplicates-report: is the same as --output; name another one");
    for (const std::string& inputPath : {options.samplesPath, targetsPath, maskPath})
    {
        if (inputPath.empty())
            continue;
        checkIsNotInput("--output", outputPath, inputPath);
        checkIsNotInput("--duplicates-report", duplicatesPath, inputPath);
    }
}

/// Of the options about grids, rasters and points.
void PredictCommand::checkMapOutput() const
{
    const OutputFormat& format = getFormat();
    const std::string file = std::string("a .") + format.name + " file";
    if ((format.kind == FormatKind::Vtk || format.kind == FormatKind::Raster) && !isGrid())
        throw UsageError("--output: " + file + " holds a grid; give the targets with --grid, or name a " +
                         (format.kind == FormatKind::Vtk ? ".csv file" : ".csv or .gpkg file"));
    if (format.kind == FormatKind::Vtk && !shard.isWhole())
        throw UsageError("--shard: parts of a .vtk file do not make a whole one; name a .csv file");
    if (format.kind == FormatKind::Points && options.inputNames.size() < 2)
        throw UsageError("--output: " + file + " holds places of two inputs; name a .csv file");
    if (!maskPath.empty() && options.inputNames.size() < 2)
        throw UsageError("--mask: places on a map have two inputs");
    if (!cellType.empty() && format.kind != FormatKind::Raster)
        throw UsageError("--type: goes with a raster, such as -o map.tif");
    if (!cellType.empty() && cellType != "float64" && cellType != "float32")
        throw UsageError("--type: must be float64 or float32, not " + quoteForMessage(cellType));
    if (format.kind != FormatKind::Raster)
        return;
    const std::string name = format.name;
    if (name == "asc" && predictionColumns().size() > 1)
        throw UsageError("--output: an .asc file holds one column, but there are " +
                         std::to_string(predictionColumns().size()) + "; name a .tif file");
    if (!shard.isWhole() && name != "tif")
        throw UsageError("--shard: parts of " + file + " do not make a whole one; name a .tif file");
    if (!shard.isWhole() && outputPattern == outputPath)
        throw UsageError("--shard: parts of a raster need names of their own, which a .vrt joins; write {shard} where "
                         "the number goes, as in -o map{shard}.tif");
}

std::unique_ptr<TargetSource> PredictCommand::openTargets(const GridSpec& grid) const
{
    if (isGrid() && isRaster())
        return std::make_unique<RasterTargets>(grid, options.inputNames, shard);
    if (isGrid())
        return std::make_unique<GridTargets>(grid, options.inputNames, shard);
    return std::make_unique<FileTargets>(targetsPath, options.inputNames, options.reading, keptNames, shard);
}

/// A pipe's targets are gone when they have been read.
bool PredictCommand::canReadTargetsTwice() const
{
    std::error_code error;
    return isGrid() || std::filesystem::is_regular_file(targetsPath, error);
}

/// Before anything is estimated: throws InputError where the samples say nothing of any target of a whole job.
void PredictCommand::checkAreSupported(TargetSupport& support, const GridSpec& grid) const
{
    const std::unique_ptr<TargetSource> source = openTargets(grid);
    Columns targets;
    while (source->read(targets, targetsPerRequest) > 0)
    {
        support.count(targets);
        if (!support.areAllUnsupported())
            return;
    }
    if (support.areAllUnsupported())
        throw InputError((isGrid() ? "--grid" : targetsPath) + ": " + support.describeAllUnsupported() +
                         " --extrapolate estimates there all the same");
}

/// Gives the grid its nodes, and the run the reference system of a raster whose cells it takes where the samples have
/// none.
void PredictCommand::placeGrid(GridSpec& grid, const SampleTable& samples, std::string& crs) const
{
    const std::string path = grid.likePath;
    giveNodes(grid, samples.inputs);
    if (path.empty())
        return;
    const GeoModule& module = loadGeoModule(path);
    const std::string ofCells = module.findCrs(path);
    if (crs.empty())
        crs = ofCells;
    else if (!ofCells.empty() && !module.areSameCrs(crs, ofCells))
        throw InputError(path + ": is in " + module.describeCrs(ofCells) + ", but the samples are in " +
                         module.describeCrs(crs) + "; --project " + module.describeCrs(ofCells) + " brings them there");
}

std::unique_ptr<PlaceMask> PredictCommand::openMask(const std::string& crs) const
{
    return maskPath.empty() ? nullptr : loadGeoModule(maskPath).openMask(maskPath, crs);
}

std::unique_ptr<PredictionWriter> PredictCommand::makeWriter(const GridSpec& grid, const std::string& crs) const
{
    const OutputFormat& format = getFormat();
    if (format.kind == FormatKind::Text)
    {
        const bool hasHeader = shard.isFirst() && options.reading.hasHeader;
        return std::make_unique<CsvPredictions>(outputPath, hasHeader ? columnNames() : std::vector<std::string>());
    }
    if (format.kind == FormatKind::Vtk)
        return std::make_unique<VtkPredictions>(outputPath, grid, namesOf(predictionColumns()));

    MapOutput map{outputPath, &format, crs, {}, cellType == "float32", 1};
    map.numThreads = fenn::estimation::chooseThreadCount(options.estimator.numThreads);
    for (const PredictionColumn& column : predictionColumns())
        map.columns.push_back({column.name});
    const GeoModule& module = loadGeoModule(outputPath);
    if (format.kind == FormatKind::Points)
        return std::make_unique<PointPredictions>(module, map, options.inputNames, keptNames);
    const RasterFrame frame = frameOfGrid(grid, options.inputNames);
    if (std::string(format.name) == "asc")
        checkCellsAreSquare(frame, outputPath);
    if (shard.count > frame.height)
        throw InputError("--shard: the raster has fewer rows than parts: " + std::to_string(frame.height));
    return std::make_unique<RasterPredictions>(module, map, frame, shard, outputPattern);
}

/// A count with a digit too many would fill the disk.
void PredictCommand::confirmSize(const GridSpec& grid, Console& console) const
{
    const std::uint64_t numNodes = shard.size(grid.numNodes);
    if (isAnySizeWanted || numNodes <= mostNodesUnasked)
        return;
    const double bytes =
        forecastBytes(grid, numNodes, predictionColumns().size(), getFormat().kind != FormatKind::Text);
    const std::string size = std::to_string(numNodes) + " nodes make about " + formatBytes(bytes);
    if (!console.canAsk())
        throw UsageError("--grid: " + size + "; if that is meant, add --yes");
    if (!console.confirm("The grid's " + size + ". Write them to " + outputPath + "?"))
        throw InputError("nothing is written");
}

std::unique_ptr<SurfacePicture> PredictCommand::makePicture(const SampleTable& samples, const GridSpec& grid) const
{
    const SurfaceUnits units{options.units, pictureCoverage(), options.settings.units.areLogarithms};
    // The cells of a raster do not come in the order of nodes: the picture has its own estimates then.
    return std::make_unique<SurfacePicture>(samples, plot, units,
                                            isRaster() ? std::vector<PredictionColumn>() : predictionColumns(),
                                            isGrid() ? &grid : nullptr, isGrid() ? shard.numBefore(grid.numNodes) : 0);
}

/// Of the intervals that the picture shows, in percent.
double PredictCommand::pictureCoverage() const
{
    constexpr double usual = 95.0;
    return request.coverage > 0.0 ? request.coverage : usual;
}

void PredictCommand::run(std::ostream& /*out*/, Console& console) const
{
    Report report(console.getReport());
    checkUsage();
    GridSpec grid;
    if (isGrid())
        grid = parseGridSpec(gridText, options.inputNames);
    checkPictureOptions(plot, options.outputNames.size());
    if (getFormat().kind == FormatKind::Vtk) // x is the first input there, whichever axis was named first
        grid = inOrderOfInputs(grid, options.inputNames);

    // Whatever can fail without the model fails before it is built: that may take long.
    const SampleTable samples = readSamples(options);
    report.samplesRead(samples);
    report.formUsed(options.settings);
    std::string crs = samples.crs;
    placeGrid(grid, samples, crs);
    if (isGrid())
        confirmSize(grid, console);
    else
        checkSameCrs(options.samplesPath, targetsPath, options.reading);
    const std::unique_ptr<PlaceMask> mask = openMask(crs);
    const std::unique_ptr<PredictionWriter> writer = makeWriter(grid, crs);
    const std::unique_ptr<TargetSource> targetSource = openTargets(grid);
    if (!duplicatesPath.empty())
        writeDuplicatesReport(duplicatesPath, samples, options.settings);

    const SampleModel model(samples, options.settings, options.estimator);
    report.modelBuilt(model, samples, options.settings);
    report.rangeUsed(inModelForm(samples, options.settings), options.settings, options.units);

    if (!extrapolates && shard.isWhole() && canReadTargetsTwice())
    {
        TargetSupport ofJob(samples, model, options.settings, {});
        checkAreSupported(ofJob, grid);
    }

    const std::vector<PredictionColumn> columns = predictionColumns();
    const std::unique_ptr<SurfacePicture> picture = plot.path.empty() ? nullptr : makePicture(samples, grid);
    const bool needsSills =
        needVariances(columns) || options.settings.units.areLogarithms || limits.maxStandardError.has_value();
    std::vector<double> sills;
    if (needsSills || (picture && needVariances(picture->getColumns())))
    {
        const std::unique_ptr<ProgressLine> line = console.startProgress("points for the sill");
        const std::vector<OutputSill> used = model.calcSills(options.settings.sills, reportTo(*line));
        report.sillsUsed(options.outputNames, used);
        for (const OutputSill& sill : used)
            sills.push_back(sill.value);
    }
    Predictor predictor(model, columns, needsSills ? sills : std::vector<double>(), request.coverage,
                        options.settings.units);
    TargetSupport support(samples, model, options.settings, limits);
    support.addMasks(predictor, true);
    const TargetChoice choice = choiceOf(mask.get(), options.inputNames);
    predictor.setChoice(choice);
    std::uint64_t numTargets = 0;
    std::vector<std::vector<double>> targets;
    std::vector<std::vector<double>> values;
    writer->begin();
    const std::unique_ptr<ProgressLine> line = console.startProgress("targets");
    ChunkSize chunkSize(1024, targetsPerRequest);
    while (targetSource->read(targets, line->isShown() ? chunkSize.next() : targetsPerRequest) > 0)
    {
        predictor.predict(targets, values);
        support.count(targets);
        writer->write(targets, values, *targetSource);
        if (picture)
            picture->collect(targets, values);
        numTargets += targets.front().size();
        line->update(numTargets, shard.size(grid.numNodes)); // of a file unknown: 0
    }
    line->wipe();
    report.answered(model.getEngineReport());
    report.variancesRejected(predictor.getNumWithoutVariance(), numTargets);
    report.supported(support);
    if (mask)
        report.masked(maskPath, predictor.getNumLeftOut());
    report.finished(numTargets, predictor.getNumWithoutEstimate(), predictor.getLibrarySeconds());
    writer->finish();
    if (picture)
    {
        Predictor ofPicture(model, picture->getColumns(), sills, pictureCoverage(), options.settings.units);
        support.addMasks(ofPicture, false);
        ofPicture.setChoice(choice);
        report.pictureThinned(picture->describeThinning());
        const auto estimate = [&](const Columns& at, Columns& shown)
        {
            ofPicture.predict(at, shown);
        };
        const auto findReached = [&](const Columns& at)
        {
            return support.findWithinRange(at);
        };
        drawAfterTable(outputPath, [&] { picture->draw({estimate, findReached}); });
    }
}

} // namespace krige
