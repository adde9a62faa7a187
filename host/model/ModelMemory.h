#ifndef FENN_HOST_MODEL_MODELMEMORY_H
#define FENN_HOST_MODEL_MODELMEMORY_H

#include <cstddef>

#include "estimation/MemoryForecast.h"
#include "estimation/ModelSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

using fenn::estimation::findAvailableBytes;
using fenn::estimation::formatBytes;

/// Cross-validation from one factorisation: into how many folds, and on how many threads. None by default.
struct FoldsAtOnce
{
    std::size_t numFolds = 0;
    std::size_t numThreads = 0;
};

/// Throws InputError with the figures and the way out when the system of a model over these samples is larger than
/// availableBytes. isExact: a global model's is the exact engine's and not the covariance form's, which takes half.
/// foldsAtOnce: what is left out of a global model's inverse beside it.
void checkModelMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                      double availableBytes, bool isExact = true, const FoldsAtOnce& foldsAtOnce = {});

} // namespace krige

#endif
