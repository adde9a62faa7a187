#ifndef FENN_ANALYSIS_TRIALSCORE_H
#define FENN_ANALYSIS_TRIALSCORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/Calibration.h"
#include "analysis/ErrorStatistics.h"
#include "analysis/OutputTransform.h"
#include "estimation/Estimates.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn::analysis
{

using estimation::Estimates;
using estimation::EstimatorOptions;
using estimation::ModelSettings;
using estimation::SampleSet;

/// What a search of settings minimises.
enum class Objective
{
    Likelihood, // the deviance of RestrictedLikelihood for global models; what needs left-out samples takes Crps
    Rmse,
    Mae,
    Crps
};

/// Known values, what a model that had not seen them says in their place, and the sill of that model.
struct LeftOutEstimates
{
    std::vector<std::vector<double>> truths; // a column per output variable
    Estimates estimates;                     // without variances where none were wanted
    std::vector<double> sills;               // per output variable; none without variances
};

/// Mean over output variables of RMSE, MAE or CRPS, each over the standard deviation of the output among the model's
/// samples; the plain error of an output that does not vary. Infinite where it is not finite. Errors and deviations are
/// in the data's units, where the model's are logarithms; with the likelihood, which is one of logarithms, they stay
/// theirs. Limits of the units are for estimates, not for a CRPS.
double scoreOf(const LeftOutEstimates& leftOut, const SampleSet& modelSamples, Objective objective,
               const OutputUnits& units = {});

/// How well settings estimate samples that their model has not seen.
struct Assessment
{
    double score = 0.0;                      // as scoreOf; infinite on failure
    std::vector<ErrorStatistics> statistics; // per output variable, in the data's units; none on failure
    std::vector<Calibration> calibrations;   // likewise, but of logarithms where the model's are
    std::string failure;                     // why there is nothing; otherwise empty
};

Assessment assess(const LeftOutEstimates& leftOut, const SampleSet& modelSamples, Objective objective,
                  const OutputUnits& units = {});

/// Scores settings on one set of samples by an objective.
///
/// Folds are of places (assignFoldsToPlaces): a sample is not estimated from its repeats, which would speak for models
/// that hardly look beyond one place. Cross-validation of a global model takes one factorisation for all folds and
/// repeats (FoldEstimator). A local model is built for each fold (crossValidate) up to maxFoldSamples samples; beyond,
/// maxLeftOut points, a choice that depends on their number alone, are each estimated from their nearest others: no sum
/// over all samples stands in a trial then.
class TrialScorer
{
public:
    static constexpr std::size_t maxFoldSamples = 1000;
    static constexpr std::size_t maxLeftOut = 1000;

    /// numRepeats: of the cross-validation, each with folds of its own; 0 repeats until 300 samples have been
    /// estimated, up to 3 times. samples must outlive this. Throws std::invalid_argument for a number of folds that
    /// assignFolds refuses.
    TrialScorer(const SampleSet& samples_, Objective objective_, std::size_t numFolds_, std::size_t numRepeats,
                std::uint64_t seed, const EstimatorOptions& options_, const OutputUnits& units_ = {});

    struct Score
    {
        double value = 0.0;  // lower is better; infinite on failure
        std::string failure; // why there is none; otherwise empty
    };

    /// The deviance, summed over outputs; of global models.
    Score calcDeviance(const ModelSettings& settings) const;

    /// The mean of scoreOf over the repeats. Fails where points cannot be told apart and where a variance is negative
    /// by more than rounding, because the semivariogram is not valid in so many inputs.
    Score crossValidate(const ModelSettings& settings) const;

    /// The same with all figures, those beside the score from the first repeat.
    Assessment assessByCrossValidation(const ModelSettings& settings) const;

    bool isGlobal(const ModelSettings& settings) const;

private:
    /// One entry per repeat.
    std::vector<LeftOutEstimates> leaveOut(const ModelSettings& settings, const estimation::WantedBeside& wanted) const;
    std::vector<LeftOutEstimates> leaveOutGlobally(const ModelSettings& settings,
                                                   const estimation::WantedBeside& wanted) const;
    LeftOutEstimates leaveOutFolds(const ModelSettings& settings, std::uint64_t seed) const;
    LeftOutEstimates leaveOutEachOfSome(const ModelSettings& settings) const;

    double meanScoreOf(const std::vector<LeftOutEstimates>& repeats) const;

    const SampleSet& samples;
    Objective objective;
    std::size_t numFolds;
    std::vector<std::uint64_t> seeds; // of each repeat
    EstimatorOptions options;
    OutputUnits units;
};

} // namespace fenn::analysis

#endif
