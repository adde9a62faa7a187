#ifndef FENN_ANALYSIS_TUNING_H
#define FENN_ANALYSIS_TUNING_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "analysis/ErrorStatistics.h"
#include "analysis/SearchSpace.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn::analysis
{

using estimation::ModelSettings;
using estimation::SampleSet;

enum class Objective
{
    Rmse,
    Mae
};

struct TuningOptions
{
    std::size_t numFolds = 10;
    // Of the cross-validation, each with folds of its own: one alone is a noisy score of few samples. 0 repeats until
    // 300 samples have been estimated, up to 3 times.
    std::size_t numRepeats = 0;
    std::uint64_t seed = 1;       // of the held-out samples and of the folds
    double heldOutFraction = 0.2; // of the samples, never seen by the search; 0 holds none out
    std::size_t maxTrials = 150;
    Objective objective = Objective::Rmse;
    estimation::EstimatorOptions estimator; // of every model that is tried
};

/// Settings that were tried on the tuning samples.
struct Trial
{
    ModelSettings settings;
    double score = 0.0; // mean over outputs and repeats of RMSE (or MAE) / standard deviation; infinite on failure
    double penalisedScore = 0.0; // score * exp(z2 / n): n tuning samples, z2 from SettingsCoordinates::calcUnusualness
    std::string failure;         // the library's message when some fold's model failed, otherwise empty
};

/// How the model of all tuning samples does at the held-out ones.
struct HeldOutScore
{
    double score = 0.0;                      // as a Trial's, with the standard deviations of the tuning samples
    std::vector<ErrorStatistics> statistics; // per output variable; none on failure
    std::string failure;
};

struct TuningResult
{
    std::vector<Trial> trials; // in the order in which they were made; number 0 is the settings started from
    std::size_t winner = 0;    // of lowest score, the first of equals: 0 with a failure when every trial failed
    bool wasCancelled = false; // by the callback; the winner is that of the trials made, held-out scores are missing
    std::vector<std::size_t> heldOutSamples; // ascending
    HeldOutScore winnerHeldOut;              // both empty when nothing was held out
    HeldOutScore startHeldOut;
};

/// Called on the calling thread after each trial; false ends the search.
using TrialCallback = std::function<bool(const Trial& trial, std::size_t numDone, std::size_t maxTrials)>;

/// Searches settings by cross-validation: every trial is scored on the same folds of the samples that are not held out.
/// A global trial takes one factorisation (FoldEstimator), a local one a model per fold (crossValidate). First the
/// start, then a coarse grid over drift order, range fraction and nugget, then nearest points and scales, then the
/// simplex method from the best two. A pure function of its arguments.
///
/// The winner has the lowest penalised score, the first of equals, of the trials that score no worse than the start.
/// Cross-validation of few samples is noisy, and the very best of many trials owes that to chance in part: the penalty
/// draws settings towards usual ones where the samples do not decide, and vanishes as their number grows. It is the
/// maximum a posteriori rule for Gaussian errors and normal priors, with a prior counted twice.
///
/// The held-out scores are honest ones, for no trial saw those samples; without them all samples are searched on.
///
/// start: the settings to start from and to beat; its duplicate tolerance is kept. maxTrials is reached at most.
/// Throws std::invalid_argument for settings, a range fraction of 0 to start from, search space, a held-out fraction
/// outside [0, 1), no trials or repeats, or a number of folds that crossValidate would refuse for the samples left. A
/// failing trial is a bad one, nothing more.
TuningResult tune(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                  const TuningOptions& options, const TrialCallback& callback = {});

} // namespace fenn::analysis

#endif
