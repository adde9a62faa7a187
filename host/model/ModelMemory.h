#ifndef FENN_HOST_MODEL_MODELMEMORY_H
#define FENN_HOST_MODEL_MODELMEMORY_H

#include <string>

#include "estimation/ModelSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

/// Bytes that one system over this many points takes, its workspace included: a square of doubles over the points, the
/// drift terms and one constraint, and what the library copies aside while it factorises. Targets are streamed and need
/// a small, constant amount beside it.
double calcSystemBytes(int numPoints, int numInputs, int driftOrder);

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
