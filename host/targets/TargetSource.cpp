#include "host/targets/TargetSource.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>

#include "host/files/InputFile.h"
#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

std::uint64_t countTargets(const std::string& path, const ReadSettings& settings)
{
    std::error_code error;
    if (isStandardStream(path) || !std::filesystem::is_regular_file(path, error))
        throw InputError(path + ": --shard reads the targets twice, to count them first; put them into a plain file");
    return ColumnReader(path, {}, settings).skip(std::numeric_limits<std::uint64_t>::max());
}

} // namespace

FileTargets::FileTargets(const std::string& path, const std::vector<std::string>& inputNames,
                         const ReadSettings& settings, const std::vector<std::string>& keptNames, const Shard& shard)
    : places(path, inputNames, settings),
      reader(path, inputNames, settings, keptNames),
      numRemaining(std::numeric_limits<std::uint64_t>::max())
{
    if (shard.isWhole())
        return;
    const std::uint64_t numTargets = countTargets(path, settings);
    reader.skip(shard.numBefore(numTargets));
    numRemaining = shard.size(numTargets);
}

std::size_t FileTargets::read(std::vector<std::vector<double>>& columns, std::size_t maxTargets)
{
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(maxTargets, numRemaining));
    const std::size_t numTargets = reader.read(columns, wanted);
    places.project(columns);
    numRemaining -= numTargets;
    return numTargets;
}

std::string_view FileTargets::getTexts(std::size_t t) const
{
    return reader.getTexts(t);
}

GridTargets::GridTargets(const GridSpec& grid_, const std::vector<std::string>& inputNames, const Shard& shard)
    : grid(grid_), numRemaining(shard.size(grid_.numNodes))
{
    std::uint64_t node = shard.numBefore(grid.numNodes);
    for (const GridAxis& axis : grid.axes)
    {
        nodeOfAxis.push_back(node % axis.count);
        node /= axis.count;
        const auto input = std::find(inputNames.begin(), inputNames.end(), axis.name);
        columnOfAxis.push_back(static_cast<std::size_t>(input - inputNames.begin()));
    }
}

std::size_t GridTargets::read(std::vector<std::vector<double>>& columns, std::size_t maxTargets)
{
    const auto numTargets = static_cast<std::size_t>(std::min<std::uint64_t>(maxTargets, numRemaining));
    columns.resize(grid.axes.size());
    for (std::vector<double>& column : columns)
        column.resize(numTargets);

    for (std::size_t t = 0; t < numTargets; ++t)
    {
        for (std::size_t a = 0; a < grid.axes.size(); ++a)
            columns[columnOfAxis[a]][t] = grid.axes[a].getNode(nodeOfAxis[a]);
        for (std::size_t a = 0; a < grid.axes.size() && ++nodeOfAxis[a] == grid.axes[a].count; ++a)
            nodeOfAxis[a] = 0;
    }
    numRemaining -= numTargets;
    return numTargets;
}

std::string_view GridTargets::getTexts(std::size_t /*t*/) const
{
    return {};
}

} // namespace krige
