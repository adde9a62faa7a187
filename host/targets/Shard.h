#ifndef FENN_HOST_TARGETS_SHARD_H
#define FENN_HOST_TARGETS_SHARD_H

#include <cstdint>
#include <string>

namespace krige
{

/// One of several parts of a run's targets, in their order. Parts are equally large, or the first ones hold one target
/// more.
struct Shard
{
    std::uint64_t index = 1; // from 1
    std::uint64_t count = 1;

    bool isFirst() const
    {
        return index == 1;
    }

    bool isWhole() const
    {
        return count == 1;
    }

    /// How many of numTargets targets lie before this part, and how many are in it.
    std::uint64_t numBefore(std::uint64_t numTargets) const;
    std::uint64_t size(std::uint64_t numTargets) const;
};

/// The name with the part's number in place of each `{shard}`, with leading zeros, so that names sort as the parts do.
std::string nameOfPart(std::string name, const Shard& shard);

/// Reads `I/K` with 1 <= I <= K. Throws UsageError.
Shard parseShard(const std::string& text);

} // namespace krige

#endif
