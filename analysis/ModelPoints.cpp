#include "analysis/ModelPoints.h"

#include "estimation/MergedSamples.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

std::vector<std::vector<std::size_t>> membersOfPoints(const ModelParts& parts)
{
    const estimation::MergedSamples merged = estimation::getMergedSamples(parts);
    std::vector<std::vector<std::size_t>> members;
    for (const auto& [block, point] : parts.getPoints())
    {
        const auto index = static_cast<std::size_t>(point);
        members.push_back(block == 0 ? std::vector<std::size_t>{index} : merged.groups.at(index));
    }
    return members;
}

std::vector<double> inputOfPoints(const ModelParts& parts, std::size_t inputVar)
{
    std::vector<double> values;
    values.reserve(parts.getPoints().size());
    for (const auto& [block, i] : parts.getPoints())
        values.push_back(parts.getDataBlock().getInputValueArraysForBlock(block)[inputVar][i]);
    return values;
}

std::vector<double> outputOfPoints(const ModelParts& parts, std::size_t outputVar)
{
    std::vector<double> values;
    values.reserve(parts.getPoints().size());
    for (const auto& [block, i] : parts.getPoints())
        values.push_back(parts.getDataBlock().getOutputValueArraysForBlock(block)[outputVar][i]);
    return values;
}

double varianceOfPoints(const ModelParts& parts, std::size_t outputVar)
{
    return parts.getDataBlock().getOutputVarSampleVariance(static_cast<int>(outputVar));
}

std::vector<std::vector<double>> outputsOfPoints(const ModelParts& parts)
{
    std::vector<std::vector<double>> outputs;
    for (int w = 0; w < parts.getDataBlock().getNumOutputVars(); ++w)
        outputs.push_back(outputOfPoints(parts, static_cast<std::size_t>(w)));
    return outputs;
}

std::vector<double> centred(std::vector<double> values, const SurrogateModelDataBlock& block, std::size_t outputVar)
{
    const double mean = block.getOutputVarMean(static_cast<int>(outputVar));
    for (double& value : values)
        value -= mean;
    return values;
}

} // namespace fenn::analysis
