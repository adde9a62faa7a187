#ifndef FENN_HOST_MODEL_MODELMEMORY_H
#define FENN_HOST_MODEL_MODELMEMORY_H

#include "estimation/MemoryForecast.h"
#include "estimation/ModelSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

using fenn::estimation::findAvailableBytes;
using fenn::estimation::formatBytes;

/// Throws InputError with the figures and the way out when the system of a model over these samples is larger than
/// availableBytes. isExact: a global model's is the exact engine's and not the covariance form's, which takes half.
void checkModelMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                      double availableBytes, bool isExact = true);

} // namespace krige

#endif
