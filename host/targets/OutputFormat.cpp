#include "host/targets/OutputFormat.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "host/files/InputFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

std::string suffixOf(const std::filesystem::path& path)
{
    std::string suffix = path.extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

const OutputFormat* findFormat(const std::string& name)
{
    const auto found = std::find_if(outputFormats().begin(), outputFormats().end(),
                                    [&](const OutputFormat& format) { return format.name == name; });
    return found == outputFormats().end() ? nullptr : &*found;
}

const OutputFormat* findFormatOfSuffix(const std::string& suffix)
{
    if (suffix.empty() || suffix == ".tsv" || suffix == ".txt")
        return findFormat("csv");
    return findFormat(suffix == ".tiff" ? "tif" : suffix.substr(1));
}

bool isStream(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    return isStandardStream(path) || (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status));
}

void checkIsNotPacked(const std::string& path, const OutputFormat& format)
{
    if (format.kind != FormatKind::Text && suffixOf(path) == ".gz")
        throw UsageError(std::string("--output: a .") + format.name + " file is not packed; leave .gz out of its name");
}

} // namespace

const std::vector<OutputFormat>& outputFormats()
{
    static const std::vector<OutputFormat> formats = {
        {"csv", FormatKind::Text, ""},
        {"vtk", FormatKind::Vtk, ""},
        {"tif", FormatKind::Raster, "GTiff"},
        {"asc", FormatKind::Raster, "AAIGrid"},
        {"nc", FormatKind::Raster, "netCDF"},
        {"gpkg", FormatKind::Points, "GPKG"},
        {"geojson", FormatKind::Points, "GeoJSON"},
        {"shp", FormatKind::Points, "ESRI Shapefile"},
    };
    return formats;
}

std::string listOutputFormats()
{
    std::string list;
    for (const OutputFormat& format : outputFormats())
        list += (list.empty() ? "" : &format == &outputFormats().back() ? " and " : ", ") + std::string(format.name);
    return list;
}

const OutputFormat& chooseOutputFormat(const std::string& path, const std::string& name)
{
    if (!name.empty())
    {
        const OutputFormat* const format = findFormat(name);
        if (!format)
            throw UsageError("--output-format: must be one of " + listOutputFormats() + ", not " +
                             quoteForMessage(name));
        if (format->kind != FormatKind::Text && isStream(path))
            throw UsageError(std::string("--output-format: a .") + format->name +
                             " file is not written in order; name a plain file with --output");
        checkIsNotPacked(path, *format);
        return *format;
    }
    if (isStream(path))
        return outputFormats().front();
    const std::filesystem::path file = path;
    const std::filesystem::path unpacked = suffixOf(file) == ".gz" ? file.stem() : file;
    const OutputFormat* const format = findFormatOfSuffix(suffixOf(unpacked));
    if (!format)
        throw UsageError("--output: nothing is known of files that end in " + quoteForMessage(suffixOf(unpacked)) +
                         "; known are .csv, .tsv and .txt, also with .gz, .vtk, .tif, .asc and .nc for grids, .gpkg, "
                         ".geojson and .shp for points, or name the format with --output-format");
    checkIsNotPacked(path, *format);
    return *format;
}

} // namespace krige
