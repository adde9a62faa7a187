#include "host/model/SampleModel.h"

#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "host/model/AnalysisInput.h"
#include "host/model/ModelFailure.h"
#include "host/model/ModelMemory.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

SampleModel::SampleModel(const SampleTable& samples_, const fenn::estimation::ModelSettings& settings_,
                         const fenn::estimation::EstimatorOptions& options)
    : samples(samples_), settings(settings_), numThreads(options.numThreads), sampleSet(toSampleSet(samples_))
{
    fenn::estimation::EstimatorOptions checked = options;
    checked.checkStandIn = [this](double)
    {
        checkModelMemory(samples, settings, findAvailableBytes());
    };
    runExplained(
        samples, settings, "", [&] { estimator = fenn::estimation::chooseEstimator(sampleSet, settings, checked); },
        options.isExact);
}

SampleModel::~SampleModel() = default;

int SampleModel::getNumMergedSamples() const
{
    return samples.getNumSamples() + getNumAveragedPoints() - getNumPoints();
}

int SampleModel::getNumAveragedPoints() const
{
    return static_cast<int>(estimator->getParts().getMergedGroups().size());
}

int SampleModel::getNumPoints() const
{
    return static_cast<int>(estimator->getParts().getPoints().size());
}

bool SampleModel::isGlobal() const
{
    return estimator->isGlobal();
}

std::size_t SampleModel::estimate(const std::vector<std::vector<double>>& targets,
                                  std::vector<std::vector<double>>& results, std::vector<double>* variances) const
{
    fenn::estimation::Estimates estimates;
    estimates.values.swap(results); // and back: the caller's memory is used again
    if (variances)
        estimates.variances.swap(*variances);
    std::size_t numWithoutEstimate = 0;
    try
    {
        numWithoutEstimate =
            fenn::estimation::estimateAt(*estimator, targets, {variances != nullptr, false}, estimates);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        throw InputError(explainModelFailure(error.what(), samples, settings));
    }
    results.swap(estimates.values);
    if (variances)
        variances->swap(estimates.variances);
    return numWithoutEstimate;
}

double SampleModel::calcReciprocalCondition() const
{
    return estimator->calcReciprocalCondition();
}

fenn::estimation::EngineReport SampleModel::getEngineReport() const
{
    return estimator->getReport();
}

std::vector<OutputSill> SampleModel::calcSills(const std::vector<SillChoice>& choices,
                                               const fenn::analysis::Progress& progress) const
{
    std::vector<OutputSill> sills;
    runExplained(
        samples, settings, "", [&] { sills = calcOutputSills(*estimator, settings, choices, numThreads, progress); },
        false);
    return sills;
}

} // namespace krige
