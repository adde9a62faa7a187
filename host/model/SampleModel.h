#ifndef FENN_HOST_MODEL_SAMPLEMODEL_H
#define FENN_HOST_MODEL_SAMPLEMODEL_H

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "analysis/DataModel.h"
#include "analysis/Progress.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "host/model/OutputSill.h"
#include "host/model/SampleTable.h"
#include "host/model/Settings.h"

namespace krige
{

/// A Kriging model over the samples of a file, in the form that its settings give them (DataForm): targets come as they
/// stand in files, estimates of logarithms are logarithms. Refers to the samples, which must outlive it and stay where
/// they are. One request at a time.
class SampleModel
{
public:
    /// Throws InputError in words that name the file and the way out; see runExplained.
    SampleModel(const SampleTable& samples_, const Settings& settings_,
                const fenn::estimation::EstimatorOptions& options = {});
    SampleModel(const SampleModel& other) = delete;
    SampleModel& operator=(const SampleModel& other) = delete;
    ~SampleModel();

    /// Samples that were replaced by averaged points, and the number of these.
    int getNumMergedSamples() const;
    int getNumAveragedPoints() const;

    /// Points that the model works on, after merging.
    int getNumPoints() const;

    /// Whether every estimate uses all points.
    bool isGlobal() const;

    /// Replaces results, one column per output, by the estimates at the targets: one column per input, equally long.
    /// variances, where asked for, becomes one column: the Kriging variance for a sill of 1, the same for every output;
    /// driftProducts likewise, the drift's share of it. A target with a coordinate that is not finite gets NaN
    /// throughout; the number of those is returned. Throws InputError as the constructor does.
    std::size_t estimate(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& results,
                         std::vector<double>* variances = nullptr, std::vector<double>* driftProducts = nullptr) const;

    /// Normalizers, limits and points, in the form of the model.
    const fenn::ModelParts& getParts() const;

    /// Of the global system (Estimator::calcReciprocalCondition); NaN for a local model.
    double calcReciprocalCondition() const;

    /// How the targets so far were answered, and how far from the exact estimates they can be.
    fenn::estimation::EngineReport getEngineReport() const;

    /// Per output. Where a sill is to be estimated from a local model, points are left out one by one: progress counts
    /// them. Throws InputError as the constructor does, and Cancelled.
    std::vector<OutputSill> calcSills(const std::vector<SillChoice>& choices,
                                      const fenn::analysis::Progress& progress = {}) const;

private:
    std::optional<SampleTable> formed; // where the model takes another form of the samples
    const SampleTable& samples;        // in the form of the model
    Settings settings;
    int numThreads;
    std::unique_ptr<fenn::analysis::DataModel> model;
};

} // namespace krige

#endif
