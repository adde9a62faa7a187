#ifndef FENN_ESTIMATION_CHOOSEESTIMATOR_H
#define FENN_ESTIMATION_CHOOSEESTIMATOR_H

#include <functional>
#include <memory>

#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn::estimation
{

struct EstimatorOptions
{
    int numThreads = 0;   // 0: the cores that this process may use
    bool isExact = false; // true: the plug-in's own bits

    /// Called before the exact engine takes the place of the covariance form, which needs half the memory or less.
    /// bytes: those of the exact engine's system (calcSystemBytes). What it throws is passed on. May be empty.
    std::function<void(double bytes)> checkStandIn{};

    /// Whether points that lie too near to each other, and systems that cannot be solved to any digit, are refused: the
    /// library's Error "Ill-conditioned matrix" of requireSeparation, as early as it is known.
    bool mustTellPointsApart = false;
};

/// The estimator of all samples: the covariance form for global models where its proof holds, the local engine for
/// numNearestPoints above 0 and below the number of points, the exact one otherwise and where it is asked for. The
/// choice depends on samples, settings and options alone; the report says it in one sentence.
///
/// samples must outlive the estimator. Throws as checkSettings and as the constructor of KrigingSurrogateModel.
std::unique_ptr<Estimator> chooseEstimator(const SampleSet& samples, const ModelSettings& settings,
                                           const EstimatorOptions& options = {});

} // namespace fenn::estimation

#endif
