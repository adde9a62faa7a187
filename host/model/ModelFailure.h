#ifndef FENN_HOST_MODEL_MODELFAILURE_H
#define FENN_HOST_MODEL_MODELFAILURE_H

#include <string>

#include "estimation/ModelSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

/// The library's message as a sentence for the person at the terminal: the file, what is wrong with it under these
/// settings, and the option to change.
std::string explainModelFailure(const std::string& libraryMessage, const SampleTable& samples,
                                const fenn::estimation::ModelSettings& settings);

/// The same for std::bad_alloc while a model is built.
std::string explainMissingMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings);

/// Says that --drift needs more points than one system has, and what to change; empty when there are enough.
std::string describeTooFewPointsForDrift(const SampleTable& samples, const fenn::estimation::ModelSettings& settings);

/// "2 of 155 samples coincide", counting every sample that lies at the place of another; empty when none do.
std::string describeCoincidentSamples(const SampleTable& samples);

} // namespace krige

#endif
