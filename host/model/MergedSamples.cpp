#include "host/model/MergedSamples.h"

#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige
{

namespace
{

struct MergedCounts
{
    int numPoints = 0;         // left
    int numAveragedPoints = 0; // of these
};

MergedCounts countMerged(const SampleTable& samples, double tolerance)
{
    const std::size_t numInputs = samples.inputs.size();
    const int numSamples = samples.getNumSamples();
    std::vector<double> minValues(numInputs);
    std::vector<double> maxValues(numInputs);
    for (std::size_t v = 0; v < numInputs; ++v)
        findMinMax(samples.inputs[v].data(), numSamples, minValues[v], maxValues[v]);
    const std::vector<Normalizer> normalizers(numInputs);
    SurrogateModelDataBlock dataBlock(numSamples, arraysOf(samples.inputs), arraysOf(samples.outputs),
                                      std::vector<bool>(static_cast<std::size_t>(numSamples), true), normalizers,
                                      minValues, maxValues);
    dataBlock.removeDuplicatePts(tolerance);
    return {dataBlock.getTotalNumUnblankedPoints(), dataBlock.getNumBlocks() > 1 ? dataBlock.getNumPtsInBlock(1) : 0};
}

} // namespace

int countPointsAfterMerging(const SampleTable& samples, double tolerance)
{
    return countMerged(samples, tolerance).numPoints;
}

int countCoincidentSamples(const SampleTable& samples)
{
    const MergedCounts counts = countMerged(samples, 0.0);
    return samples.getNumSamples() - counts.numPoints + counts.numAveragedPoints;
}

} // namespace krige
