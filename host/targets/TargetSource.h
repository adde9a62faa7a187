#ifndef FENN_HOST_TARGETS_TARGETSOURCE_H
#define FENN_HOST_TARGETS_TARGETSOURCE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/ColumnReader.h"
#include "host/files/ReadSettings.h"
#include "host/model/InputPlaces.h"
#include "host/targets/GridSpec.h"
#include "host/targets/Shard.h"

namespace krige
{

/// Targets of one request: enough work for all threads, and few enough to keep memory small.
constexpr std::size_t targetsPerRequest = 65536;

/// Reads targets block by block, so that memory does not grow with their number.
class TargetSource
{
public:
    virtual ~TargetSource() = default;

    /// Replaces columns, one per input in the order of --inputs, by up to maxTargets targets; returns their number, 0
    /// at the end. Throws InputError.
    virtual std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxTargets) = 0;

    /// The kept columns of target t of the last block, as the rest of its CSV line.
    virtual std::string_view getTexts(std::size_t t) const = 0;
};

/// Targets from the rows of a CSV file, from points or cells. With --skip-missing a missing coordinate is NaN, and with
/// --project a place that has no image.
class FileTargets : public TargetSource
{
public:
    /// keptNames: columns that go to the output as they are. A shard other than 1/1 needs a plain file: its rows are
    /// counted first, and then read.
    FileTargets(const std::string& path, const std::vector<std::string>& inputNames, const ReadSettings& settings = {},
                const std::vector<std::string>& keptNames = {}, const Shard& shard = {});
    std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxTargets) override;
    std::string_view getTexts(std::size_t t) const override;

private:
    InputPlaces places;
    ColumnReader reader;
    std::uint64_t numRemaining;
};

/// The nodes of a grid as targets, the first axis running fastest.
class GridTargets : public TargetSource
{
public:
    GridTargets(const GridSpec& grid_, const std::vector<std::string>& inputNames, const Shard& shard = {});
    std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxTargets) override;
    std::string_view getTexts(std::size_t t) const override;

private:
    GridSpec grid;
    std::vector<std::size_t> columnOfAxis;
    std::vector<std::uint64_t> nodeOfAxis; // of the next target
    std::uint64_t numRemaining;
};

} // namespace krige

#endif
