#ifndef FENN_HOST_MODEL_MODELMEMORY_H
#define FENN_HOST_MODEL_MODELMEMORY_H

#include <string>

#include "estimation/ModelSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

/// Bytes that this process can still have: what the machine has to give without swapping, within the limits that a
/// control group or `ulimit -v` set. Infinity where nothing tells.
double findAvailableBytes();

/// Throws InputError with the figures and the way out when the system of a model over these samples is larger than
/// availableBytes.
void checkModelMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                      double availableBytes);

/// "1.23 GB", "340 MB": decimal units, three figures.
std::string formatBytes(double bytes);

} // namespace krige

#endif
