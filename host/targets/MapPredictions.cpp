#include "host/targets/MapPredictions.h"

#include <filesystem>
#include <utility>

#include "host/files/CsvReader.h"
#include "host/files/OutputFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

/// What the temporary name must end in.
std::string endingOf(const OutputFormat& format)
{
    return format.driver == std::string("GTiff") ? "" : std::string(".") + format.name;
}

std::vector<std::string> companionsOf(const OutputFormat& format)
{
    if (format.driver == std::string("AAIGrid"))
        return {".prj"};
    if (format.driver == std::string("ESRI Shapefile"))
        return {".shx", ".dbf", ".prj", ".cpg"};
    return {};
}

std::vector<std::unique_ptr<PendingFile>> openCompanions(const PendingFile& file, const OutputFormat& format)
{
    std::vector<std::unique_ptr<PendingFile>> companions;
    for (const std::string& ending : companionsOf(format))
        companions.push_back(std::make_unique<PendingFile>(file, std::string(".") + format.name, ending));
    return companions;
}

/// The main file last: who sees it sees all.
void commitAll(PendingFile& file, std::vector<std::unique_ptr<PendingFile>>& companions)
{
    for (const std::unique_ptr<PendingFile>& companion : companions)
    {
        if (std::filesystem::exists(companion->getTemporaryPath()))
            companion->commit();
    }
    file.commit();
}

std::string escapeXml(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
    {
        switch (c)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string window(const char* name, std::uint64_t row, std::uint64_t width, std::uint64_t height)
{
    return std::string("      <") + name + " xOff=\"0\" yOff=\"" + std::to_string(row) + "\" xSize=\"" +
           std::to_string(width) + "\" ySize=\"" + std::to_string(height) + "\"/>\n";
}

std::vector<std::string> namesOfParts(const std::string& pattern, std::uint64_t count)
{
    std::vector<std::string> names;
    for (std::uint64_t part = 1; part <= count; ++part)
        names.push_back(std::filesystem::path(nameOfPart(pattern, {part, count})).filename().string());
    return names;
}

} // namespace

RasterPredictions::RasterPredictions(const GeoModule& module_, MapOutput map_, const RasterFrame& frame_,
                                     const Shard& shard_, std::string pattern_)
    : module(module_),
      map(std::move(map_)),
      frame(frame_),
      shard(shard_),
      pattern(std::move(pattern_)),
      file(map.path, endingOf(*map.format)),
      companions(openCompanions(file, *map.format))
{
    if (map.format->driver != std::string("GTiff"))
        scratch = std::make_unique<PendingFile>(map.path);
}

void RasterPredictions::begin()
{
    RasterRequest request;
    request.name = map.path;
    request.path = file.getTemporaryPath();
    if (scratch)
        request.scratchPath = scratch->getTemporaryPath();
    request.driver = map.format->driver;
    request.frame = partOf(frame, shard);
    request.crs = map.crs;
    request.bands = map.columns;
    request.isFloat32 = map.isFloat32;
    request.numThreads = map.numThreads;
    raster = module.createRaster(request);
}

void RasterPredictions::write(const std::vector<std::vector<double>>& /*targets*/,
                              const std::vector<std::vector<double>>& values, const TargetSource& source)
{
    const RasterWindow& cells = static_cast<const RasterTargets&>(source).getWindow();
    for (std::size_t band = 0; band < values.size(); ++band)
        raster->write(band, cells, values[band].data());
}

void RasterPredictions::finish()
{
    raster->finish();
    raster.reset();
    commitAll(file, companions);
    if (shard.isWhole())
        return;
    OutputFile mosaic(mosaicPath(pattern));
    mosaic.write(mosaicOfParts(frame, namesOfParts(pattern, shard.count), map.columns, map.isFloat32,
                               map.crs.empty() ? "" : module.wellKnownText(map.crs)));
    mosaic.commit();
}

PointPredictions::PointPredictions(const GeoModule& module_, MapOutput map_, const std::vector<std::string>& inputNames,
                                   std::vector<std::string> keptNames_)
    : module(module_),
      map(std::move(map_)),
      keptNames(std::move(keptNames_)),
      axes(findMapAxes(inputNames)),
      file(map.path, endingOf(*map.format)),
      companions(openCompanions(file, *map.format))
{
    for (std::size_t v = 0; v < inputNames.size(); ++v)
    {
        if (v == axes.x || v == axes.y)
            continue;
        otherInputs.push_back(v);
        otherNames.push_back(inputNames[v]);
    }
}

void PointPredictions::begin()
{
    PointsRequest request;
    request.name = map.path;
    request.path = file.getTemporaryPath();
    request.driver = map.format->driver;
    request.layer = std::filesystem::path(map.path).stem().string();
    request.crs = map.crs;
    for (const MapColumn& column : map.columns)
        request.numberNames.push_back(column.name);
    request.numberNames.insert(request.numberNames.end(), otherNames.begin(), otherNames.end());
    request.textNames = keptNames;
    points = module.createPoints(request);
}

void PointPredictions::write(const std::vector<std::vector<double>>& targets,
                             const std::vector<std::vector<double>>& values, const TargetSource& source)
{
    std::vector<double> numbers;
    std::vector<std::string> texts;
    for (std::size_t t = 0; t < targets.front().size(); ++t)
    {
        numbers.clear();
        for (const std::vector<double>& column : values)
            numbers.push_back(column[t]);
        for (const std::size_t v : otherInputs)
            numbers.push_back(targets[v][t]);
        if (!keptNames.empty()) // a comma stands before each
            texts = splitCsvText(std::string(source.getTexts(t).substr(1)), "--keep");
        points->write(targets[axes.x][t], targets[axes.y][t], numbers, texts);
    }
}

void PointPredictions::finish()
{
    points->finish();
    points.reset();
    commitAll(file, companions);
}

std::string mosaicPath(const std::string& pattern)
{
    const std::string mark = "{shard}";
    std::string name = pattern;
    for (std::size_t at = name.find(mark); at != std::string::npos; at = name.find(mark))
    {
        const bool isBehindSeparator = at > 0 && std::string("-_.").find(name[at - 1]) != std::string::npos;
        name.erase(isBehindSeparator ? at - 1 : at, mark.size() + (isBehindSeparator ? 1 : 0));
    }
    return std::filesystem::path(name).replace_extension(".vrt").string();
}

std::string mosaicOfParts(const RasterFrame& frame, const std::vector<std::string>& partNames,
                          const std::vector<MapColumn>& columns, bool isFloat32, const std::string& crsText)
{
    const std::string type = isFloat32 ? "Float32" : "Float64";
    std::string text = "<VRTDataset rasterXSize=\"" + std::to_string(frame.width) + "\" rasterYSize=\"" +
                       std::to_string(frame.height) + "\">\n";
    if (!crsText.empty())
        text += "  <SRS>" + escapeXml(crsText) + "</SRS>\n";
    text += "  <GeoTransform>" + formatNumber(frame.left) + ", " + formatNumber(frame.cellWidth) + ", 0, " +
            formatNumber(frame.top) + ", 0, " + formatNumber(-frame.cellHeight) + "</GeoTransform>\n";
    for (std::size_t band = 0; band < columns.size(); ++band)
    {
        text += "  <VRTRasterBand dataType=\"" + type + "\" band=\"" + std::to_string(band + 1) + "\">\n" +
                "    <Description>" + escapeXml(columns[band].name) + "</Description>\n" +
                "    <NoDataValue>nan</NoDataValue>\n";
        for (std::size_t i = 0; i < partNames.size(); ++i)
        {
            const Shard part{i + 1, partNames.size()};
            const std::uint64_t height = part.size(frame.height);
            text += "    <SimpleSource>\n      <SourceFilename relativeToVRT=\"1\">" + escapeXml(partNames[i]) +
                    "</SourceFilename>\n      <SourceBand>" + std::to_string(band + 1) + "</SourceBand>\n" +
                    "      <SourceProperties RasterXSize=\"" + std::to_string(frame.width) + "\" RasterYSize=\"" +
                    std::to_string(height) + "\" DataType=\"" + type + "\" BlockXSize=\"256\" BlockYSize=\"256\"/>\n" +
                    window("SrcRect", 0, frame.width, height) +
                    window("DstRect", part.numBefore(frame.height), frame.width, height) + "    </SimpleSource>\n";
        }
        text += "  </VRTRasterBand>\n";
    }
    return text + "</VRTDataset>\n";
}

} // namespace krige
