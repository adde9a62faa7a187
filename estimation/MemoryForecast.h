#ifndef FENN_ESTIMATION_MEMORYFORECAST_H
#define FENN_ESTIMATION_MEMORYFORECAST_H

#include <cstddef>
#include <string>
#include <vector>

#include "estimation/ModelSettings.h"

namespace fenn::estimation
{

/// Bytes that this process can still allocate: the memory that is free without swapping, within the limits of control
/// groups and `ulimit -v`. Infinity where no limit is known.
double findAvailableBytes();

/// What the system of a model will take. Targets are streamed and need next to nothing.
struct MemoryForecast
{
    double bytes = 0.0;
    std::size_t numPoints = 0; // after merging
    bool isGlobal = true;      // the system is one over all of them
};

/// Of samples at these places, one column per input variable. isExact: a global model's system is the exact engine's
/// and not the covariance form's, which takes half. Allocates no system.
MemoryForecast forecastMemory(const std::vector<std::vector<double>>& inputs, const ModelSettings& settings,
                              bool isExact);

/// "1.23 GB", "340 MB": decimal units, three figures.
std::string formatBytes(double bytes);

} // namespace fenn::estimation

#endif
