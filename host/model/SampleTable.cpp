#include "host/model/SampleTable.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "host/files/ColumnReader.h"
#include "host/model/InputPlaces.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

[[noreturn]] void throwWithoutImage(const SampleTable& samples, const std::string& projection)
{
    std::size_t i = 0;
    while (std::none_of(samples.inputs.begin(), samples.inputs.end(),
                        [i](const std::vector<double>& input) { return std::isnan(input[i]); }))
        ++i;
    throw InputError::atLine(samples.path, samples.lines[i],
                             "the place has no image in " + projection +
                                 "; are the inputs in the coordinate reference system that --crs or the file names?");
}

} // namespace

SampleTable readSamples(const std::string& path, const std::vector<std::string>& inputNames,
                        const std::vector<std::string>& outputNames, const ReadSettings& reading)
{
    constexpr std::size_t mostSamples = std::numeric_limits<int>::max();
    constexpr std::size_t rowsPerBlock = 65536;

    std::vector<std::string> names = inputNames;
    names.insert(names.end(), outputNames.begin(), outputNames.end());
    const InputPlaces places(path, inputNames, reading);
    ColumnReader reader(path, names, reading);
    SampleTable samples{reader.getPath(), inputNames, outputNames, {}, {}, {}, 0};
    std::vector<std::vector<double>> columns(names.size());
    std::vector<std::vector<double>> block;
    while (const std::size_t numRows = reader.read(block, rowsPerBlock))
    {
        for (std::size_t row = 0; row < numRows; ++row)
        {
            if (std::any_of(block.begin(), block.end(),
                            [row](const std::vector<double>& column) { return std::isnan(column[row]); }))
            {
                ++samples.numSkipped;
                continue;
            }
            for (std::size_t c = 0; c < columns.size(); ++c)
                columns[c].push_back(block[c][row]);
            samples.lines.push_back(reader.getLine(row));
        }
        if (samples.lines.size() > mostSamples)
            throw InputError(samples.path + ": more than " + std::to_string(mostSamples) + " samples; thin them out");
    }
    if (samples.numSkipped > 0 && samples.lines.empty())
        throw InputError(samples.path + ": no samples: " + countOf(samples.numSkipped, "row") +
                         " skipped, each with a missing value in a column of --inputs or --outputs");
    if (samples.lines.empty())
        throw InputError(samples.path + ": no samples: there is nothing below the header row");

    const auto firstOutput = columns.begin() + static_cast<std::ptrdiff_t>(inputNames.size());
    samples.inputs.assign(std::make_move_iterator(columns.begin()), std::make_move_iterator(firstOutput));
    samples.outputs.assign(std::make_move_iterator(firstOutput), std::make_move_iterator(columns.end()));
    if (places.project(samples.inputs) > 0)
        throwWithoutImage(samples, reading.projection);
    samples.crs = places.getCrs();
    samples.areDegrees = places.areDegrees(samples.inputs);
    return samples;
}

SampleTable readSamples(const ModelOptions& options)
{
    return readSamples(options.samplesPath, options.inputNames, options.outputNames, options.reading);
}

std::vector<double*> arraysOf(const std::vector<std::vector<double>>& columns)
{
    std::vector<double*> arrays;
    for (const std::vector<double>& column : columns)
        arrays.push_back(const_cast<double*>(column.data())); // the host contract's arrays are not const
    return arrays;
}

} // namespace krige
