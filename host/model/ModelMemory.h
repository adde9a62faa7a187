#ifndef FENN_HOST_MODEL_MODELMEMORY_H
#define FENN_HOST_MODEL_MODELMEMORY_H

#include <string>

#include "estimation/ModelSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

/// Bytes that this process can still allocate: the memory that is free without swapping, within the limits of control
/// groups and `ulimit -v`. Infinity where no limit is known.
double findAvailableBytes();

/// Throws InputError with the figures and the way out when the system of a model over these samples is larger than
/// availableBytes. isExact: a global model's is the exact engine's and not the covariance form's, which takes half.
void checkModelMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                      double availableBytes, bool isExact = true);

/// "1.23 GB", "340 MB": decimal units, three figures.
std::string formatBytes(double bytes);

} // namespace krige

#endif
