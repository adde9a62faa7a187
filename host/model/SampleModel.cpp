#include "host/model/SampleModel.h"

#include "estimation/Estimates.h"
#include "estimation/chooseEstimator.h"
#include "host/model/AnalysisInput.h"
#include "host/model/DataForm.h"
#include "host/model/ModelFailure.h"
#include "host/model/ModelMemory.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

SampleModel::SampleModel(const SampleTable& samples_, const Settings& settings_,
                         const fenn::estimation::EstimatorOptions& options)
    : formed(hasDataForm(settings_) ? std::optional<SampleTable>(inModelForm(samples_, settings_)) : std::nullopt),
      samples(formed ? *formed : samples_),
      settings(settings_),
      numThreads(options.numThreads)
{
    fenn::estimation::EstimatorOptions checked = options;
    checked.checkStandIn = [this](double)
    {
        checkModelMemory(samples, settings, findAvailableBytes());
    };
    runExplained(
        samples, settings, "",
        [&] { model = std::make_unique<fenn::analysis::DataModel>(toSampleSet(samples), settings, checked); },
        options.isExact);
}

SampleModel::~SampleModel() = default;

int SampleModel::getNumMergedSamples() const
{
    return samples.getNumSamples() + getNumAveragedPoints() - getNumPoints();
}

int SampleModel::getNumAveragedPoints() const
{
    return static_cast<int>(model->getEstimator().getParts().getMergedGroups().size());
}

int SampleModel::getNumPoints() const
{
    return static_cast<int>(model->getEstimator().getParts().getPoints().size());
}

bool SampleModel::isGlobal() const
{
    return model->getEstimator().isGlobal();
}

std::size_t SampleModel::estimate(const std::vector<std::vector<double>>& targets,
                                  std::vector<std::vector<double>>& results, std::vector<double>* variances,
                                  std::vector<double>* driftProducts) const
{
    fenn::estimation::Estimates estimates;
    estimates.values.swap(results); // and back: the caller's memory is used again
    if (variances)
        estimates.variances.swap(*variances);
    if (driftProducts)
        estimates.driftProducts.swap(*driftProducts);
    std::size_t numWithoutEstimate = 0;
    try
    {
        numWithoutEstimate = model->estimate(targets, {variances != nullptr, driftProducts != nullptr}, estimates);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        throw InputError(explainModelFailure(error.what(), samples, settings));
    }
    results.swap(estimates.values);
    if (variances)
        variances->swap(estimates.variances);
    if (driftProducts)
        driftProducts->swap(estimates.driftProducts);
    return numWithoutEstimate;
}

double SampleModel::calcReciprocalCondition() const
{
    return model->getEstimator().calcReciprocalCondition();
}

const fenn::ModelParts& SampleModel::getParts() const
{
    return model->getEstimator().getParts();
}

fenn::estimation::EngineReport SampleModel::getEngineReport() const
{
    return model->getReport();
}

std::vector<OutputSill> SampleModel::calcSills(const std::vector<SillChoice>& choices,
                                               const fenn::analysis::Progress& progress) const
{
    std::vector<OutputSill> sills;
    runExplained(
        samples, settings, "",
        [&] { sills = calcOutputSills(model->getEstimator(), settings, choices, numThreads, progress); }, false);
    return sills;
}

} // namespace krige
