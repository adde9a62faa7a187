#ifndef FENN_HOST_MODEL_ANALYSISINPUT_H
#define FENN_HOST_MODEL_ANALYSISINPUT_H

#include <functional>
#include <string>

#include "analysis/Progress.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "host/model/ModelMemory.h"
#include "host/model/SampleTable.h"
#include "host/text/Console.h"

namespace krige
{

/// The samples as the analysis library takes them.
fenn::estimation::SampleSet toSampleSet(const SampleTable& samples);

/// Runs work that builds no system and turns what the libraries throw into InputError, in words that name the file and
/// the way out; UsageError for arguments that the analysis library refuses. circumstance: stands before the
/// explanation, e.g. "without one of 10 folds: "; may be empty.
void explainFailures(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                     const std::string& circumstance, const std::function<void()>& work);

/// The same for work that builds a system: refuses, before it, a model that is too large for the machine's memory.
/// isExact, foldsAtOnce: as for checkModelMemory.
void runExplained(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                  const std::string& circumstance, const std::function<void()>& work, bool isExact = true,
                  const FoldsAtOnce& foldsAtOnce = {});

/// A callback that draws the line. It must not outlive the line.
fenn::analysis::Progress reportTo(ProgressLine& line);

} // namespace krige

#endif
