#ifndef FENN_ANALYSIS_DATAMODEL_H
#define FENN_ANALYSIS_DATAMODEL_H

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "analysis/DataSettings.h"
#include "analysis/Progress.h"
#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn::analysis
{

using estimation::Estimates;
using estimation::EstimatorOptions;
using estimation::WantedBeside;

/// What is wanted of targets beside the estimates.
struct WantedPredictions
{
    bool variances = false;
    bool standardErrors = false;
    double coverage = 0.0; // of intervals, as a fraction; 0: none are wanted
};

/// What a model says of a list of targets, in their order and in the data's units. NaN stands for "nothing". Empty:
/// what was not wanted.
struct Predictions
{
    std::vector<std::vector<double>> values;         // one column per output
    std::vector<double> variances;                   // for a sill of 1: 0 or above, or NaN
    std::vector<std::vector<double>> standardErrors; // one column per output; of logarithms, those of the logarithms
    std::vector<std::vector<double>> lowerEnds;      // likewise, of the intervals
    std::vector<std::vector<double>> upperEnds;
};

/// A Kriging model that takes targets, and gives predictions, as the data have them. Owns its samples.
///
/// Any number of threads may ask: requests are answered one after the other, each on the model's own threads.
class DataModel
{
public:
    /// samples: in the form of the model (inModelForm). Throws as chooseEstimator.
    DataModel(SampleSet samples_, const DataSettings& settings_, const EstimatorOptions& options);
    DataModel(const DataModel& other) = delete;
    DataModel& operator=(const DataModel& other) = delete;
    ~DataModel();

    const DataSettings& getSettings() const;

    /// In the form of the model.
    const SampleSet& getSamples() const;
    const estimation::Estimator& getEstimator() const;
    estimation::EngineReport getReport() const;

    /// As estimation::estimateAt, at targets as the data have them: what comes out is in the form of the model.
    std::size_t estimate(const std::vector<std::vector<double>>& targets, const WantedBeside& wanted,
                         Estimates& estimates) const;

    /// Replaces predictions by those at the targets: one column per input, equally long. Estimates the sills first
    /// where they are needed and not known yet. Throws as estimate and calcSills.
    void predict(const std::vector<std::vector<double>>& targets, const WantedPredictions& wanted,
                 Predictions& predictions, const Progress& sillProgress = {}) const;

    /// Per output, by the settings' choices. Where a sill is to be estimated from a local model, points are left out
    /// one by one: progress counts them. Throws Cancelled, the library's Error and std::bad_alloc.
    std::vector<OutputSill> calcSills(const Progress& progress = {}) const;

    /// The same, worked out at the first call only.
    const std::vector<OutputSill>& getSills(const Progress& progress = {}) const;

private:
    std::size_t estimateLocked(const std::vector<std::vector<double>>& targets, const WantedBeside& wanted,
                               Estimates& estimates) const;

    DataSettings settings;
    int numThreads;
    SampleSet samples; // what the estimator refers to
    std::unique_ptr<estimation::Estimator> estimator;

    mutable std::mutex requests;           // guards the estimator and what follows
    mutable std::vector<OutputSill> sills; // empty until they are known
};

} // namespace fenn::analysis

#endif
