#ifndef FENN_HOST_TARGETS_OUTPUTFORMAT_H
#define FENN_HOST_TARGETS_OUTPUTFORMAT_H

#include <string>
#include <vector>

namespace krige
{

enum class FormatKind
{
    Text,   // CSV
    Vtk,    // of a grid
    Raster, // of a grid, by the module
    Points  // by the module
};

/// A format that predictions are written in.
struct OutputFormat
{
    const char* name; // for --output-format; a dot before it makes the suffix
    FormatKind kind;
    const char* driver; // as GDAL calls the format; empty: krige's own
};

const std::vector<OutputFormat>& outputFormats();

/// "csv, vtk, ... and shp".
std::string listOutputFormats();

/// The format of this name (--output-format), or where that is empty the one that the path's suffix stands for. Text is
/// .csv, .tsv and .txt, packed as .gz or not, a name without a suffix, standard output, pipes and devices. Throws
/// UsageError that lists what is known.
const OutputFormat& chooseOutputFormat(const std::string& path, const std::string& name);

} // namespace krige

#endif
