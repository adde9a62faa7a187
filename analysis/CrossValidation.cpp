#include "analysis/CrossValidation.h"

#include <memory>

#include "analysis/Places.h"

namespace fenn::analysis
{

Estimates crossValidate(const SampleSet& samples, const ModelSettings& settings, std::size_t numFolds,
                        std::uint64_t seed, const Progress& progress, const EstimatorOptions& options,
                        const UseFoldModel& useFoldModel)
{
    const std::size_t numSamples = samples.getNumSamples();
    const std::vector<std::size_t> folds = assignFoldsToPlaces(samples, settings.duplicateTolerance, numFolds, seed);
    Estimates all;
    all.values.assign(samples.getNumOutputVars(), std::vector<double>(numSamples));
    all.variances.resize(numSamples);
    all.driftProducts.resize(numSamples);
    for (std::size_t fold = 0; fold < numFolds; ++fold)
    {
        std::vector<std::size_t> leftOut;
        std::vector<std::size_t> remaining;
        for (std::size_t i = 0; i < numSamples; ++i)
            (folds[i] == fold ? leftOut : remaining).push_back(i);

        if (leftOut.empty())
        {
            report(progress, fold + 1, numFolds);
            continue;
        }
        const SampleSet modelSamples = samples.subset(remaining);
        const std::unique_ptr<estimation::Estimator> estimator =
            estimation::chooseEstimator(modelSamples, settings, options);
        const Estimates estimates = estimateAt(*estimator, samples.subset(leftOut));
        if (useFoldModel)
            useFoldModel(fold, *estimator);
        for (std::size_t k = 0; k < leftOut.size(); ++k)
        {
            for (std::size_t w = 0; w < all.values.size(); ++w)
                all.values[w][leftOut[k]] = estimates.values[w][k];
            all.variances[leftOut[k]] = estimates.variances[k];
            all.driftProducts[leftOut[k]] = estimates.driftProducts[k];
        }
        report(progress, fold + 1, numFolds);
    }
    return all;
}

} // namespace fenn::analysis
