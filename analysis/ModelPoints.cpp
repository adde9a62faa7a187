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

std::vector<std::vector<double>> outputsOfPoints(const ModelParts& parts)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    std::vector<std::vector<double>> outputs(static_cast<std::size_t>(block.getNumOutputVars()));
    for (std::size_t w = 0; w < outputs.size(); ++w)
    {
        for (const SourcePointRef& point : parts.getPoints())
            outputs[w].push_back(block.getOutputValueArraysForBlock(point.first)[w][point.second]);
    }
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
