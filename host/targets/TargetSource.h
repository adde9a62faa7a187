#ifndef FENN_HOST_TARGETS_TARGETSOURCE_H
#define FENN_HOST_TARGETS_TARGETSOURCE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/ColumnReader.h"
#include "host/files/ReadSettings.h"
#include "host/targets/GridSpec.h"
#include "host/targets/Shard.h"

namespace krige
{

/// Targets of one request to the library. Enough for all threads to have work; far below its limit, an int.
constexpr std::size_t targetsPerRequest = 65536;

/// Targets in blocks, so that any number of them needs the memory of one block.
class TargetSource
{
public:
    virtual ~TargetSource() = default;

    /// Replaces columns, one per input in the order of --inputs, by up to maxTargets targets; returns their number, 0
    /// at the end. Throws InputError.
    virtual std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxTargets) = 0;

    /// What else of target t of the last block goes to the output, as the end of its line.
    virtual std::string_view getTexts(std::size_t t) const = 0;
};

/// The rows of a CSV file. Missing coordinates are NaN when they are to be skipped.
class FileTargets : public TargetSource
{
public:
    /// keptNames: columns that go to the output as they are. A part of the targets needs a file that can be read twice,
    /// for its rows must be counted first.
    FileTargets(const std::string& path, const std::vector<std::string>& inputNames, const ReadSettings& settings = {},
                const std::vector<std::string>& keptNames = {}, const Shard& shard = {});
    std::size_t read(std::vector<std::vector<double>>& columns, std::size_t maxTargets) override;
    std::string_view getTexts(std::size_t t) const override;

private:
    ColumnReader reader;
    std::uint64_t numRemaining;
};

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
