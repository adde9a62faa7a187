#include "estimation/SampleSet.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace fenn::estimation
{

namespace
{

using Columns = std::vector<std::vector<double>>;

void checkColumns(const Columns& columns, const char* kind, std::size_t numSamples)
{
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
        const std::string name = std::string(kind) + " variable " + std::to_string(c);
        if (columns[c].size() != numSamples)
            throw std::invalid_argument(name + " has " + std::to_string(columns[c].size()) + " values, but there are " +
                                        std::to_string(numSamples) + " samples");
        for (std::size_t i = 0; i < numSamples; ++i)
        {
            if (!std::isfinite(columns[c][i]))
                throw std::invalid_argument(name + " is not finite at sample " + std::to_string(i));
        }
    }
}

Columns pick(const Columns& columns, const std::vector<std::size_t>& indices)
{
    Columns picked(columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c)
    {
        picked[c].reserve(indices.size());
        for (const std::size_t i : indices)
            picked[c].push_back(columns[c].at(i));
    }
    return picked;
}

std::vector<double*> pointersInto(const Columns& columns)
{
    std::vector<double*> pointers;
    pointers.reserve(columns.size());
    for (const std::vector<double>& column : columns)
        pointers.push_back(const_cast<double*>(column.data())); // the contract's type; models only read
    return pointers;
}

} // namespace

SampleSet::SampleSet(Columns inputs_, Columns outputs_, std::vector<bool> includeFlags_)
    : inputs(std::move(inputs_)), outputs(std::move(outputs_)), includeFlags(std::move(includeFlags_))
{
    if (inputs.empty())
        throw std::invalid_argument("samples need at least one input variable");
    if (outputs.empty())
        throw std::invalid_argument("samples need at least one output variable");
    const std::size_t numSamples = inputs[0].size();
    if (numSamples == 0)
        throw std::invalid_argument("there are no samples");
    if (numSamples > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::invalid_argument("there are more samples than a model can count");
    checkColumns(inputs, "input", numSamples);
    checkColumns(outputs, "output", numSamples);
    if (!includeFlags.empty() && includeFlags.size() != numSamples)
        throw std::invalid_argument("there are " + std::to_string(includeFlags.size()) + " include flags for " +
                                    std::to_string(numSamples) + " samples");
}

std::size_t SampleSet::getNumSamples() const
{
    return inputs[0].size();
}

std::size_t SampleSet::getNumInputVars() const
{
    return inputs.size();
}

std::size_t SampleSet::getNumOutputVars() const
{
    return outputs.size();
}

const std::vector<double>& SampleSet::getInput(std::size_t inputVar) const
{
    return inputs[inputVar];
}

const std::vector<double>& SampleSet::getOutput(std::size_t outputVar) const
{
    return outputs[outputVar];
}

const std::vector<bool>& SampleSet::getIncludeFlags() const
{
    return includeFlags;
}

SampleSet SampleSet::subset(const std::vector<std::size_t>& indices) const
{
    std::vector<bool> flags;
    if (!includeFlags.empty())
    {
        for (const std::size_t i : indices)
            flags.push_back(includeFlags.at(i));
    }
    return {pick(inputs, indices), pick(outputs, indices), std::move(flags)};
}

std::vector<double*> SampleSet::inputArrays() const
{
    return pointersInto(inputs);
}

std::vector<double*> SampleSet::outputArrays() const
{
    return pointersInto(outputs);
}

double SampleSet::calcInputRange(std::size_t inputVar) const
{
    const auto [least, greatest] = std::minmax_element(inputs[inputVar].begin(), inputs[inputVar].end());
    return *greatest - *least;
}

double SampleSet::calcOutputVariance(std::size_t outputVar) const
{
    const std::vector<double>& values = outputs[outputVar];
    const auto count = static_cast<double>(values.size());
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    const double mean = sum / count;
    double sumSquared = 0.0;
    for (const double value : values)
        sumSquared += (value - mean) * (value - mean);
    return sumSquared / (count - 1.0);
}

} // namespace fenn::estimation
