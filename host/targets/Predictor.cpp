#include "host/targets/Predictor.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

#include "host/model/SampleModel.h"

namespace krige
{

Predictor::Predictor(const SampleModel& model_, std::vector<PredictionColumn> columns_)
    : model(model_), columns(std::move(columns_))
{
    if (!needVariances(columns))
        return;
    for (const PredictionColumn& column : columns)
    {
        if (column.quantity == Quantity::Estimate)
            sills.push_back(model.getSampleVariance(column.output));
    }
}

void Predictor::addMask(TargetMask mask)
{
    masks.push_back(std::move(mask));
}

void Predictor::predict(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    numWithoutEstimate += model.estimate(targets, answers.estimates, sills.empty() ? nullptr : &answers.variances);
    seconds += std::chrono::duration<double>(Clock::now() - start).count();

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

double Predictor::valueOf(const PredictionColumn& column, std::size_t t) const
{
    switch (column.quantity)
    {
    case Quantity::Estimate:
        return answers.estimates[column.output][t];
    case Quantity::Variance:
        return answers.variances[t];
    case Quantity::StandardError:
        return std::sqrt(answers.variances[t] * sills[column.output]); // NaN for a negative variance
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
