#include "analysis/DataModel.h"

#include <utility>

#include "analysis/NormalDistribution.h"
#include "estimation/StandardError.h"

namespace fenn::analysis
{

namespace
{

/// Replaces variances by what StandardError makes of them.
void accept(std::vector<double>& variances)
{
    for (double& variance : variances)
        variance = estimation::acceptedVariance(variance);
}

std::vector<double> standardErrorsOf(const std::vector<double>& variances, double sill)
{
    std::vector<double> errors;
    errors.reserve(variances.size());
    for (const double variance : variances)
        errors.push_back(estimation::standardErrorOf(variance, sill));
    return errors;
}

} // namespace

DataModel::DataModel(SampleSet samples_, const DataSettings& settings_, const EstimatorOptions& options)
    : settings(settings_), numThreads(options.numThreads), samples(std::move(samples_))
{
    estimator = estimation::chooseEstimator(samples, settings, options);
}

DataModel::~DataModel() = default;

const DataSettings& DataModel::getSettings() const
{
    return settings;
}

const SampleSet& DataModel::getSamples() const
{
    return samples;
}

const estimation::Estimator& DataModel::getEstimator() const
{
    return *estimator;
}

estimation::EngineReport DataModel::getReport() const
{
    return estimator->getReport();
}

std::size_t DataModel::estimate(const std::vector<std::vector<double>>& targets, const WantedBeside& wanted,
                                Estimates& estimates) const
{
    const std::lock_guard<std::mutex> lock(requests);
    return estimateLocked(targets, wanted, estimates);
}

std::size_t DataModel::estimateLocked(const std::vector<std::vector<double>>& targets, const WantedBeside& wanted,
                                      Estimates& estimates) const
{
    if (!settings.anisotropy)
        return estimateAt(*estimator, targets, wanted, estimates);
    std::vector<std::vector<double>> rotated = targets;
    settings.anisotropy->apply(rotated[0].data(), rotated[1].data(), rotated[0].size(), rotated[0].data(),
                               rotated[1].data());
    return estimateAt(*estimator, rotated, wanted, estimates);
}

void DataModel::predict(const std::vector<std::vector<double>>& targets, const WantedPredictions& wanted,
                        Predictions& predictions, const Progress& sillProgress) const
{
    const bool areLogarithms = settings.units.areLogarithms;
    const bool needsErrors = wanted.standardErrors || wanted.coverage > 0.0;
    const double factor = wanted.coverage > 0.0 ? intervalFactor(wanted.coverage) : 0.0;
    const std::vector<OutputSill>* const known = needsErrors || areLogarithms ? &getSills(sillProgress) : nullptr;

    predictions = {};
    Estimates estimates;
    estimate(targets, {wanted.variances || needsErrors || areLogarithms, areLogarithms}, estimates);
    accept(estimates.variances);
    for (std::size_t w = 0; w < estimates.values.size(); ++w)
    {
        std::vector<double>& values = estimates.values[w];
        if (needsErrors)
        {
            std::vector<double> errors = standardErrorsOf(estimates.variances, (*known)[w].value);
            if (wanted.coverage > 0.0)
            {
                predictions.lowerEnds.emplace_back();
                predictions.upperEnds.emplace_back();
                for (std::size_t t = 0; t < values.size(); ++t)
                {
                    const Interval ends = settings.units.intervalOf(predictionInterval(values[t], errors[t], factor));
                    predictions.lowerEnds[w].push_back(ends.lower);
                    predictions.upperEnds[w].push_back(ends.upper);
                }
            }
            if (wanted.standardErrors)
                predictions.standardErrors.push_back(std::move(errors));
        }
        for (std::size_t t = 0; t < values.size(); ++t)
            values[t] = areLogarithms ? settings.units.estimateOf(values[t], estimates.variances[t],
                                                                  estimates.driftProducts[t], (*known)[w].value)
                                      : clamped(values[t], settings.units.limits);
    }
    predictions.values = std::move(estimates.values);
    if (wanted.variances)
        predictions.variances = std::move(estimates.variances);
}

std::vector<OutputSill> DataModel::calcSills(const Progress& progress) const
{
    const std::lock_guard<std::mutex> lock(requests);
    return calcOutputSills(*estimator, settings, settings.sills, numThreads, progress);
}

const std::vector<OutputSill>& DataModel::getSills(const Progress& progress) const
{
    const std::lock_guard<std::mutex> lock(requests);
    if (sills.empty())
        sills = calcOutputSills(*estimator, settings, settings.sills, numThreads, progress);
    return sills;
}

} // namespace fenn::analysis
