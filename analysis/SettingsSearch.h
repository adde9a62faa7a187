#ifndef FENN_ANALYSIS_SETTINGSSEARCH_H
#define FENN_ANALYSIS_SETTINGSSEARCH_H

#include "analysis/SearchSpace.h"
#include "analysis/TrialScore.h"
#include "analysis/Tuning.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn::analysis
{

/// The search of tune over the tuning samples: makes the trials and finds their winner, and says whether the callback
/// ended it. The other entries of result are left alone.
void searchSettings(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                    const TuningOptions& options, const TrialCallback& callback, TuningResult& result);

/// Scores settings on these samples as the search does. samples must outlive it.
TrialScorer makeScorer(const SampleSet& samples, const TuningOptions& options);

} // namespace fenn::analysis

#endif
