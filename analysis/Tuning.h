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
    // Repeats of the cross-validation, each with new folds: with few samples one alone is noisy. 0 repeats until 300
    // samples have been estimated, up to 3 times.
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
    // score * exp(2 p / n) with n tuning samples and p = SettingsCoordinates::calcNegativeLogPrior.
    double penalisedScore = 0.0;
    std::string failure; // the library's message when some fold's model failed, otherwise empty
};

/// Errors of the model of all tuning samples at the held-out samples.
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
/// Cross-validation of few samples is noisy, so the best of many trials is partly luck. The penalty draws settings
/// towards usual ones where the samples do not decide, and vanishes as their number grows: the maximum a posteriori
/// rule for Gaussian errors and normal priors, with the prior counted twice.
///
/// No trial sees the held-out samples, so that their scores are not flattered by the search. Without held-out samples
/// the search uses all.
///
/// start: the settings to start from and to beat; its duplicate tolerance is kept. maxTrials is reached at most.
/// Throws std::invalid_argument for settings, a range fraction of 0 to start from, search space, a held-out fraction
/// outside [0, 1), no trials or repeats, or a number of folds that crossValidate would refuse for the samples left. A
/// trial whose model fails scores infinity; the search goes on.
TuningResult tune(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                  const TuningOptions& options, const TrialCallback& callback = {});

} // namespace fenn::analysis

#endif
