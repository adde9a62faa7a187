#include "host/reports/FoldValidation.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "analysis/CrossValidation.h"
#include "analysis/Places.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/text/HostErrors.h"

namespace krige
{

void checkFolds(std::size_t numFolds, const SampleTable& samples, const std::string& wayOut)
{
    const auto numSamples = static_cast<std::size_t>(samples.getNumSamples());
    if (numFolds > numSamples)
        throw UsageError("--folds: " + std::to_string(numFolds) + " folds need as many samples, but " + samples.path +
                         " has " + std::to_string(numSamples) + "; " + wayOut);
}

ValidationResult resultFor(const SampleTable& samples)
{
    ValidationResult result;
    result.inputNames = samples.inputNames;
    result.outputNames = samples.outputNames;
    return result;
}

FoldValidation validateInFolds(const SampleTable& samples, const Settings& settings,
                               const fenn::estimation::EstimatorOptions& estimator, std::size_t numFolds,
                               std::uint64_t seed, const Console& console)
{
    const SampleTable formed = inModelForm(samples, settings);
    const auto numSamples = static_cast<std::size_t>(samples.getNumSamples());
    const std::size_t numPlaces =
        fenn::analysis::findPlaces(toSampleSet(formed), settings.duplicateTolerance).numPlaces;
    const std::size_t folds = std::min(numFolds, numPlaces);
    if (folds < 2)
        throw InputError(samples.path + ": cross-validation needs samples at two places at least");

    FoldValidation validation;
    ValidationResult& result = validation.result;
    result = resultFor(samples);
    std::vector<double> driftProducts;
    runExplained(formed, settings, "without one of " + std::to_string(folds) + " folds: ",
                 [&]
                 {
                     const fenn::estimation::SampleSet sampleSet = toSampleSet(formed);
                     const std::unique_ptr<ProgressLine> line = console.startProgress("folds");
                     fenn::analysis::Estimates estimates =
                         fenn::analysis::crossValidate(sampleSet, settings, folds, seed, reportTo(*line), estimator,
                                                       [&](std::size_t, const fenn::estimation::Estimator& ofFold) {
                                                           validation.sillsOfFolds.push_back(calcOutputSills(
                                                               ofFold, settings, settings.sills, estimator.numThreads));
                                                       });
                     result.estimates = std::move(estimates.values);
                     result.variances = std::move(estimates.variances);
                     driftProducts = std::move(estimates.driftProducts);
                 });
    const std::vector<std::size_t> foldOfSample =
        fenn::analysis::assignFoldsToPlaces(toSampleSet(formed), settings.duplicateTolerance, folds, seed);
    result.sills.assign(samples.outputs.size(), std::vector<double>(numSamples));
    for (std::size_t w = 0; w < samples.outputs.size(); ++w)
    {
        for (std::size_t i = 0; i < numSamples; ++i)
            result.sills[w][i] = validation.sillsOfFolds[foldOfSample[i]][w].value;
    }
    result.inputs = samples.inputs;
    result.truths = formed.outputs;
    for (const std::size_t line : samples.lines)
        result.lines.push_back(std::to_string(line));
    result.bringIntoUnits(settings.units, driftProducts);
    result.truths = samples.outputs; // as they stand in the file, to the bit
    validation.method = std::to_string(folds) + " folds of " + std::to_string(numSamples) + " samples, seed " +
                        std::to_string(seed) + (numPlaces < numSamples ? ", those of one place in one fold" : "");
    return validation;
}

} // namespace krige
