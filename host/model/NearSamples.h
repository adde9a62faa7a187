#ifndef FENN_HOST_MODEL_NEARSAMPLES_H
#define FENN_HOST_MODEL_NEARSAMPLES_H

#include <string>

#include "host/model/SampleTable.h"
#include "host/model/Settings.h"

namespace krige
{

/// Throws InputError when samples lie at one place, or nearer to each other than a model of these settings can tell
/// apart (estimation/Separation.h), unless the settings keep such samples: two lines of the file, their distance, the
/// number of samples that are to blame, and the ways out. Factorises nothing.
void checkSamplesApart(const SampleTable& samples, const Settings& settings);

/// Whether samples, neither merged nor kept, are too near to each other for models without a nugget.
bool needsNugget(const SampleTable& samples, const Settings& settings);

/// What that error says, without the file; empty where the nearest samples are not to blame. isUnsolvable: the system
/// was found to have no solution, which nearness explains where mere places do not.
std::string describeNearSamples(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                                bool isUnsolvable);

} // namespace krige

#endif
