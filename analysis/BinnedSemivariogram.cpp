#include "analysis/BinnedSemivariogram.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

/// The points of a model side by side: one column per variable, raw units.
struct PointColumns
{
    std::vector<std::vector<double>> inputs;
    std::vector<double> output;
};

PointColumns gatherPoints(const ModelParts& parts, std::size_t outputVar)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    PointColumns columns;
    columns.inputs.resize(static_cast<std::size_t>(block.getNumInputVars()));
    for (const auto& [b, i] : parts.getPoints())
    {
        for (std::size_t v = 0; v < columns.inputs.size(); ++v)
            columns.inputs[v].push_back(block.getInputValueArraysForBlock(b)[v][i]);
        columns.output.push_back(block.getOutputValueArraysForBlock(b)[outputVar][i]);
    }
    return columns;
}

/// Point i and those after it, as the semivariogram takes them.
class PointTail
{
public:
    PointTail(const PointColumns& columns, std::size_t first, std::size_t numPts)
    {
        for (const std::vector<double>& column : columns.inputs)
            pointers.push_back(column.data() + first);
        arrays = {pointers.data(), static_cast<int>(pointers.size()), numPts};
    }

    PointTail(const PointTail& other) = delete;
    PointTail& operator=(const PointTail& other) = delete;

    const PointArrays& get() const
    {
        return arrays;
    }

private:
    std::vector<const double*> pointers;
    PointArrays arrays;
};

} // namespace

double defaultMaxLag(const ModelParts& parts)
{
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    double squaredDiagonal = 0.0;
    for (std::size_t v = 0; v < normalizers.size(); ++v)
    {
        const double range = (parts.getMaxValues()[v] - parts.getMinValues()[v]) * normalizers[v].getScale();
        squaredDiagonal += range * range;
    }
    return 0.5 * std::sqrt(squaredDiagonal);
}

std::vector<LagBin> binnedSemivariogram(const ModelParts& parts, std::size_t outputVar, std::size_t numLags,
                                        double maxLag)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    if (outputVar >= static_cast<std::size_t>(block.getNumOutputVars()))
        throw std::invalid_argument("there is no output variable " + std::to_string(outputVar));
    if (numLags == 0)
        throw std::invalid_argument("the number of lags must be at least 1");
    if (maxLag == 0.0)
        maxLag = defaultMaxLag(parts);
    if (!(maxLag > 0.0 && std::isfinite(maxLag)))
        throw std::invalid_argument("the maximum lag must be finite and above 0");

    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    const PointColumns points = gatherPoints(parts, outputVar);
    const std::size_t numPts = points.output.size();
    const double outputVariance = block.getOutputVarSampleVariance(static_cast<int>(outputVar));
    const double width = maxLag / static_cast<double>(numLags);
    std::vector<LagBin> bins(numLags); // sums until the end
    std::vector<double> modelValues(numPts);
    for (std::size_t i = 0; i + 1 < numPts; ++i)
    {
        const std::size_t numPartners = numPts - i - 1;
        const PointTail point(points, i, 1);
        const PointTail partners(points, i + 1, numPartners);
        parts.getSemivariogram().evaluatePairs(point.get(), partners.get(), modelValues.data(), numPartners);
        for (std::size_t k = 0; k < numPartners; ++k)
        {
            const std::size_t j = i + 1 + k;
            double lagSquared = 0.0;
            for (std::size_t v = 0; v < normalizers.size(); ++v)
            {
                const double difference = (points.inputs[v][i] - points.inputs[v][j]) * normalizers[v].getScale();
                lagSquared += difference * difference;
            }
            const double lag = std::sqrt(lagSquared);
            if (!(lag <= maxLag))
                continue;
            const auto b = std::min(static_cast<std::size_t>(lag / width), numLags - 1);
            const double outputDifference = points.output[i] - points.output[j];
            bins[b].meanLag += lag;
            bins[b].semivariance += outputDifference * outputDifference;
            bins[b].modelValue += modelValues[k];
            ++bins[b].numPairs;
        }
    }

    std::vector<LagBin> filled;
    for (std::size_t b = 0; b < numLags; ++b)
    {
        LagBin bin = bins[b];
        if (bin.numPairs == 0)
            continue;
        const auto count = static_cast<double>(bin.numPairs);
        bin.lowerLag = static_cast<double>(b) * width;
        bin.upperLag = b + 1 == numLags ? maxLag : static_cast<double>(b + 1) * width;
        bin.meanLag /= count;
        bin.semivariance *= 0.5 / count;
        bin.modelValue *= outputVariance / count;
        filled.push_back(bin);
    }
    return filled;
}

} // namespace fenn::analysis
