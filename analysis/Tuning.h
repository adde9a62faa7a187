#ifndef FENN_ANALYSIS_TUNING_H
#define FENN_ANALYSIS_TUNING_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "analysis/AnisotropyCoordinates.h"
#include "analysis/SearchSpace.h"
#include "analysis/TrialScore.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn::analysis
{

using estimation::ModelSettings;
using estimation::SampleSet;

struct TuningOptions
{
    std::size_t numFolds = 10;
    std::size_t numRepeats = 0;   // of the cross-validation: TrialScorer
    std::uint64_t seed = 1;       // of the held-out samples and of the folds
    double heldOutFraction = 0.0; // of the samples, at most, never seen by the search: whole places; 0 holds none out
    std::size_t maxTrials = 300;
    Objective objective = Objective::Likelihood;
    estimation::EstimatorOptions estimator; // of every model that is tried
    OutputUnits units;                      // of errors and scores: scoreOf
};

/// Settings that were tried on the tuning samples.
struct Trial : SettingsWithAnisotropy
{
    bool hasDeviance = false; // what the criterion is: the deviance, otherwise the score
    double criterion = 0.0;   // lower is better; infinite on failure
    // With what each chosen ratio of scales counts (SettingsCoordinates::countChosenScales), and ratio and angle of an
    // anisotropy, n being the number of tuning samples: the deviance plus ln n, the score times exp(ln n / 2n). G.
    // Schwarz, "Estimating the dimension of a model", Annals of Statistics 6 (1978); -2 ln of the likelihood is n ln of
    // the mean squared error for independent errors.
    double penalisedCriterion = 0.0;
    double score = std::numeric_limits<double>::quiet_NaN(); // cross-validated; NaN where it was not called for
    bool isBestSoFar = false;                                // of the trials of its kind, when it was made
    std::string failure;                                     // why its model failed, otherwise empty
};

struct TuningResult
{
    std::vector<Trial> trials;       // in the order in which they were made; number 0 is the settings started from
    std::size_t winner = 0;          // with a failure when every trial failed
    bool wasCancelled = false;       // by the callback; the winner is that of the trials made, assessments are missing
    Assessment winnerCrossValidated; // on the tuning samples
    Assessment startCrossValidated;
    std::vector<std::size_t> heldOutSamples; // ascending
    Assessment winnerHeldOut;                // the model of all tuning samples; both empty when nothing was held out
    Assessment startHeldOut;
};

/// Called on the calling thread after each trial; false ends the search.
using TrialCallback = std::function<bool(const Trial& trial, std::size_t numDone, std::size_t maxTrials)>;

/// Searches settings by an objective on the samples that are not held out. For the first drift order a coarse grid
/// over range fraction and nugget, equal scales, and the simplex method from two places; for the others the same about
/// the grid's best place, and from one; then, for the order that cross-validation prefers, the scales or the
/// anisotropy, and the other numbers of nearest points. A pure function of its arguments.
///
/// Within one drift order the lowest penalised criterion wins, the first of equals. What a criterion cannot compare, or
/// not reliably, is left to cross-validation, and must be worth it: a higher order, and nearest points instead of all,
/// must lower the score by 5 %. With an objective of likelihood, the criterion of a global model is its deviance, that
/// of a local one, which has none, its cross-validated CRPS.
///
/// No trial sees the held-out samples, so that their scores are not flattered by the search. Without held-out samples
/// the search uses all.
///
/// start: the settings to start from; its duplicate tolerance is kept. See startWithin. Where an anisotropy is searched
/// all other trials have scale factors of 1. maxTrials is reached at most.
///
/// Throws std::invalid_argument for settings, a range fraction of 0 to start from, search space, a held-out fraction
/// outside [0, 1), no trials, samples at a single place, or a number of folds that crossValidate would refuse for the
/// samples left. A trial whose model fails has an infinite criterion; the search goes on.
TuningResult tune(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                  const TuningOptions& options, const TrialCallback& callback = {});

/// What tune makes of a start that uses all points where the space has none but local models: the space's first number
/// of nearest points. Nobody asked for a global model then, which takes memory of the square of the samples' number.
ModelSettings startWithin(const SearchSpace& space, ModelSettings start, std::size_t numSamples);

} // namespace fenn::analysis

#endif
