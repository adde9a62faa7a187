#include "host/model/SampleModel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "host/model/ModelFailure.h"
#include "host/model/ModelMemory.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/KrigingModelAccess.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige
{

SampleModel::SampleModel(const SampleTable& samples_, const fenn::estimation::ModelSettings& settings_)
    : samples(samples_), settings(settings_)
{
    for (int output = 0; output < static_cast<int>(samples.outputs.size()); ++output)
        outputVars.insert(outputVars.end(), output);
    checkModelMemory(samples, settings, findAvailableBytes());
    try
    {
        model = std::make_unique<KrigingSurrogateModel>(
            arraysOf(samples.inputs), arraysOf(samples.outputs), samples.getNumSamples(), settings.duplicateTolerance,
            settings.scaleFactors, settings.driftOrder, settings.rangeFraction, settings.nugget,
            settings.numNearestPoints);
        model->activateDependentVariables(outputVars);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        throw InputError(explainModelFailure(error.what(), samples, settings));
    }
    catch (const std::bad_alloc&)
    {
        throw InputError(explainMissingMemory(samples, settings));
    }
}

SampleModel::~SampleModel() = default;

int SampleModel::getNumMergedSamples() const
{
    return samples.getNumSamples() + getNumAveragedPoints() - getNumPoints();
}

int SampleModel::getNumAveragedPoints() const
{
    const SurrogateModelDataBlock& dataBlock = KrigingModelAccess::getDataBlock(*model);
    return dataBlock.getNumBlocks() > 1 ? dataBlock.getNumPtsInBlock(1)
                                        : 0; // averaged points make a block of their own
}

int SampleModel::getNumPoints() const
{
    return KrigingModelAccess::getDataBlock(*model).getTotalNumUnblankedPoints();
}

bool SampleModel::isGlobal() const
{
    return settings.numNearestPoints == 0 || settings.numNearestPoints >= getNumPoints();
}

std::size_t SampleModel::estimate(const std::vector<std::vector<double>>& targets,
                                  std::vector<std::vector<double>>& results, std::vector<double>* variances) const
{
    const std::size_t numTargets = targets.front().size();
    std::vector<std::size_t> finiteTargets;
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        if (std::all_of(targets.begin(), targets.end(),
                        [t](const std::vector<double>& column) { return std::isfinite(column[t]); }))
            finiteTargets.push_back(t);
    }
    if (finiteTargets.size() == numTargets)
    {
        request(targets, results, variances);
        return 0;
    }

    std::vector<std::vector<double>> finite(targets.size());
    for (std::size_t v = 0; v < targets.size(); ++v)
    {
        for (const std::size_t t : finiteTargets)
            finite[v].push_back(targets[v][t]);
    }
    request(finite, results, variances);
    const auto spread = [&](std::vector<double>& column)
    {
        std::vector<double> all(numTargets, std::numeric_limits<double>::quiet_NaN());
        for (std::size_t i = 0; i < finiteTargets.size(); ++i)
            all[finiteTargets[i]] = column[i];
        column.swap(all);
    };
    std::for_each(results.begin(), results.end(), spread);
    if (variances)
        spread(*variances);
    return numTargets - finiteTargets.size();
}

void SampleModel::request(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& results,
                          std::vector<double>* variances) const
{
    const std::size_t numTargets = targets.front().size();
    results.resize(samples.outputs.size());
    for (std::vector<double>& result : results)
        result.resize(numTargets);
    std::vector<std::vector<double>> varianceColumns;
    if (variances) // the controllers give one per output, all the same
        varianceColumns.assign(samples.outputs.size(), std::vector<double>(numTargets));
    if (numTargets > 0)
    {
        std::vector<double*> resultArrays = arraysOf(results);
        std::vector<double*> varianceArrays = arraysOf(varianceColumns);
        try
        {
            KrigingModelAccess::getController(*model).interpolate(
                arraysOf(targets), outputVars, static_cast<int>(numTargets), resultArrays, varianceArrays);
        }
        catch (const SurrogateModelInterface::Error& error)
        {
            throw InputError(explainModelFailure(error.what(), samples, settings));
        }
    }
    if (variances)
        variances->swap(varianceColumns.front());
}

double SampleModel::getSampleVariance(std::size_t output) const
{
    return KrigingModelAccess::getDataBlock(*model).getOutputVarSampleVariance(static_cast<int>(output));
}

} // namespace krige
