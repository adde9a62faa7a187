#ifndef FENN_ANALYSIS_CROSSVALIDATION_H
#define FENN_ANALYSIS_CROSSVALIDATION_H

#include <cstddef>
#include <cstdint>
#include <functional>

#include "analysis/Progress.h"
#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/chooseEstimator.h"

namespace fenn::analysis
{

using estimation::Estimates;
using estimation::EstimatorOptions;
using estimation::ModelSettings;
using estimation::SampleSet;

/// Takes the model by which the samples of a fold were estimated.
using UseFoldModel = std::function<void(std::size_t fold, const estimation::Estimator& estimator)>;

/// K-fold cross-validation: each sample estimated by the model of the samples outside its fold (assignFoldsToPlaces),
/// built anew with the settings as given; normalisers and range are therefore those of the remaining samples.
///
/// Source: M. Stone, "Cross-validatory choice and assessment of statistical predictions", Journal of the Royal
/// Statistical Society B 36 (1974).
///
/// The estimates stand in the order of the samples; options: of every fold's estimator. progress counts folds. Throws
/// std::invalid_argument for the number of folds or the settings, Cancelled, and the library's Error as soon as one
/// fold's model fails. useFoldModel: called once per fold that has samples, with a model that lives until it returns.
Estimates crossValidate(const SampleSet& samples, const ModelSettings& settings, std::size_t numFolds,
                        std::uint64_t seed, const Progress& progress = {}, const EstimatorOptions& options = {},
                        const UseFoldModel& useFoldModel = {});

} // namespace fenn::analysis

#endif
