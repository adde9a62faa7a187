#include "host/targets/Predictor.h"

#include <algorithm>
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

void Predictor::setChoice(TargetChoice choice_)
{
    choice = std::move(choice_);
}

void Predictor::predict(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)
{
    std::vector<bool> isLeftOut(choice ? targets.front().size() : 0, false);
    if (choice)
        choice(targets, isLeftOut);
    if (std::find(isLeftOut.begin(), isLeftOut.end(), true) == isLeftOut.end())
        predictAll(targets, values);
    else
        predictChosen(targets, isLeftOut, values);
}

void Predictor::predictChosen(const std::vector<std::vector<double>>& targets, const std::vector<bool>& isLeftOut,
                              std::vector<std::vector<double>>& values)
{
    const std::size_t numTargets = targets.front().size();
    std::vector<std::size_t> chosen;
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        if (!isLeftOut[t])
            chosen.push_back(t);
    }
    numLeftOut += numTargets - chosen.size();
    std::vector<std::vector<double>> chosenTargets(targets.size());
    for (std::size_t v = 0; v < targets.size(); ++v)
    {
        for (const std::size_t t : chosen)
            chosenTargets[v].push_back(targets[v][t]);
    }
    std::vector<std::vector<double>> chosenValues(columns.size());
    if (!chosen.empty())
        predictAll(chosenTargets, chosenValues);
    values.resize(columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
        values[c].assign(numTargets, std::numeric_limits<double>::quiet_NaN());
        for (std::size_t i = 0; i < chosen.size(); ++i)
            values[c][chosen[i]] = chosenValues[c][i];
    }
}

void Predictor::predictAll(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)
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
