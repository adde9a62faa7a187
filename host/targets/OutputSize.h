#ifndef FENN_HOST_TARGETS_OUTPUTSIZE_H
#define FENN_HOST_TARGETS_OUTPUTSIZE_H

#include <cstddef>
#include <cstdint>

#include "host/targets/GridSpec.h"

namespace krige
{

/// Above this many nodes a grid is written on demand only: most likely a count has a digit too many.
constexpr std::uint64_t mostNodesUnasked = 1'000'000'000;

/// About how many bytes the predictions at numNodes nodes of a grid take before they are packed: exactly 8 a value in
/// binary files, in CSV as many as coordinates like these and values of usual length have characters.
double forecastBytes(const GridSpec& grid, std::uint64_t numNodes, std::size_t numValues, bool isBinary);

} // namespace krige

#endif
