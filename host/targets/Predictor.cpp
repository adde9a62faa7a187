#include "host/targets/Predictor.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

#include "analysis/NormalDistribution.h"
#include "analysis/OutputTransform.h"
#include "estimation/StandardError.h"
#include "host/model/SampleModel.h"

namespace krige
{

Predictor::Predictor(const SampleModel& model_, std::vector<PredictionColumn> columns_, std::vector<double> sills_,
                     double coverage, const fenn::analysis::OutputUnits& units_)
    : model(model_),
      columns(std::move(columns_)),
      sills(std::move(sills_)),
      intervalFactor(coverage > 0.0 ? fenn::analysis::intervalFactor(coverage / 100.0) : 0.0),
      units(units_)
{
}

void Predictor::addMask(TargetMask mask)
{
    masks.push_back(std::move(mask));
}

void Predictor::predict(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    numWithoutEstimate += model.estimate(targets, answers.estimates, sills.empty() ? nullptr : &answers.variances,
                                         units.areLogarithms ? &answers.driftProducts : nullptr);
    seconds += std::chrono::duration<double>(Clock::now() - start).count();

    deriveUncertainty();
    const std::size_t numTargets = targets.front().size();
    values.resize(columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
        values[c].resize(numTargets);
        for (std::size_t t = 0; t < numTargets; ++t)
            values[c][t] = valueOf(columns[c], t);
    }
    if (!masks.empty())
        applyMasks(targets, values);
}

void Predictor::deriveUncertainty()
{
    for (double& variance : answers.variances)
    {
        const double accepted = fenn::estimation::acceptedVariance(variance);
        if (std::isnan(accepted) && !std::isnan(variance))
            ++numWithoutVariance;
        variance = accepted;
    }
    answers.standardErrors.resize(sills.size());
    for (std::size_t output = 0; output < sills.size(); ++output)
    {
        std::vector<double>& errors = answers.standardErrors[output];
        errors.clear();
        for (const double variance : answers.variances)
            errors.push_back(fenn::estimation::standardErrorOf(variance, sills[output]));
    }
}

double Predictor::valueOf(const PredictionColumn& column, std::size_t t) const
{
    const auto interval = [&]
    {
        return units.intervalOf(fenn::analysis::predictionInterval(
            answers.estimates[column.output][t], answers.standardErrors[column.output][t], intervalFactor));
    };
    switch (column.quantity)
    {
    case Quantity::Estimate:
        if (!units.areLogarithms)
            return fenn::analysis::clamped(answers.estimates[column.output][t], units.limits);
        return units.estimateOf(answers.estimates[column.output][t], answers.variances[t], answers.driftProducts[t],
                                sills[column.output]);
    case Quantity::Median:
        return units.medianOf(answers.estimates[column.output][t]);
    case Quantity::Variance:
        return answers.variances[t];
    case Quantity::StandardError:
        return answers.standardErrors[column.output][t];
    case Quantity::LowerEnd:
        return interval().lower;
    case Quantity::UpperEnd:
        return interval().upper;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

void Predictor::applyMasks(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)
{
    std::vector<bool> isMasked(targets.front().size(), false);
    for (const TargetMask& mask : masks)
        mask(targets, answers, isMasked);
    for (std::size_t t = 0; t < isMasked.size(); ++t)
    {
        if (!isMasked[t])
            continue;
        ++numMasked;
        for (std::vector<double>& column : values)
            column[t] = std::numeric_limits<double>::quiet_NaN();
    }
}

} // namespace krige
