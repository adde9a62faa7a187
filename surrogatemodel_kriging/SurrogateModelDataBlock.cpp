#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

#include "surrogatemodel_kriging/MagnitudeGuards.h"

namespace
{

using fenn::effectivelyInfinite;

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// Calls visit(value) for one output variable at every unblanked point, in walking order.
template <typename Visit>
void visitUnblankedValues(const SurrogateModelDataBlock& block, int outputVar, Visit visit)
{
    for (int b = 0; b < block.getNumBlocks(); ++b)
    {
        const int numPts = block.getNumPtsInBlock(b);
        if (numPts < 1) // it need not have any arrays
            continue;
        const std::vector<bool>& isUnblanked = block.getIncludePtArrayForBlock(b);
        const double* values = block.getOutputValueArraysForBlock(b)[toIndex(outputVar)];
        for (int i = 0; i < numPts; ++i)
        {
            if (isUnblanked[toIndex(i)])
                visit(values[i]);
        }
    }
}

} // namespace

SurrogateModelDataBlock::SurrogateModelDataBlock(int numPts, const std::vector<double*>& inputValueArrays_,
                                                 const std::vector<double*>& outputValueArrays_,
                                                 const std::vector<bool>& includePtArray,
                                                 const std::vector<Normalizer>& inputVarNormalizers_,
                                                 const std::vector<double>& inputVarMinValues_,
                                                 const std::vector<double>& inputVarMaxValues_)
    : numPtsInBlocks(1, numPts),
      inputValueArrays(1, inputValueArrays_),
      outputValueArrays(1, outputValueArrays_),
      includePtArrays(1, includePtArray),
      inputVarNormalizers(inputVarNormalizers_),
      inputVarMinValues(inputVarMinValues_),
      inputVarMaxValues(inputVarMaxValues_)
{
    updateCachedValues();
}

SurrogateModelDataBlock::SurrogateModelDataBlock(const std::vector<int>& numPtsInBlocks_,
                                                 const std::vector<std::vector<double*>>& inputValueArrays_,
                                                 const std::vector<std::vector<double*>>& outputValueArrays_,
                                                 const std::vector<std::vector<bool>>& includePtArrays_,
                                                 const std::vector<Normalizer>& inputVarNormalizers_,
                                                 const std::vector<double>& inputVarMinValues_,
                                                 const std::vector<double>& inputVarMaxValues_)
    : numPtsInBlocks(numPtsInBlocks_),
      inputValueArrays(inputValueArrays_),
      outputValueArrays(outputValueArrays_),
      includePtArrays(includePtArrays_),
      inputVarNormalizers(inputVarNormalizers_),
      inputVarMinValues(inputVarMinValues_),
      inputVarMaxValues(inputVarMaxValues_)
{
    updateCachedValues();
}

SurrogateModelDataBlock::~SurrogateModelDataBlock() = default;

int SurrogateModelDataBlock::getNumBlocks() const
{
    return numBlocks;
}

int SurrogateModelDataBlock::getNumInputVars() const
{
    return numInputVars;
}

int SurrogateModelDataBlock::getNumOutputVars() const
{
    return numOutputVars;
}

int SurrogateModelDataBlock::getTotalNumUnblankedPoints() const
{
    return totalNumUnblankedPoints;
}

int SurrogateModelDataBlock::getNumPtsInBlock(int block) const
{
    return numPtsInBlocks[toIndex(block)];
}

const std::vector<bool>& SurrogateModelDataBlock::getIncludePtArrayForBlock(int block) const
{
    return includePtArrays[toIndex(block)];
}

const std::vector<double*>& SurrogateModelDataBlock::getInputValueArraysForBlock(int block) const
{
    return inputValueArrays[toIndex(block)];
}

const std::vector<double*>& SurrogateModelDataBlock::getOutputValueArraysForBlock(int block) const
{
    return outputValueArrays[toIndex(block)];
}

const std::vector<Normalizer>& SurrogateModelDataBlock::getInputVarNormalizers() const
{
    return inputVarNormalizers;
}

bool SurrogateModelDataBlock::validate() const
{
    return true;
}

void SurrogateModelDataBlock::getOutputVarMinMax(int outputVar, double& min, double& max) const
{
    double runningMin = effectivelyInfinite;
    double runningMax = -effectivelyInfinite;
    int count = 0;
    visitUnblankedValues(*this, outputVar,
                         [&](double value)
                         {
                             // DELIBERATE: a value that lowers the minimum is never offered to the maximum. Centring
                             // offsets are made from these two figures and would move if it were.
                             // Test: OutputStatisticsTest.FallingValuesLeaveTheMaximumAtItsStart
                             if (runningMin > value)
                                 runningMin = value;
                             else if (value > runningMax)
                                 runningMax = value;
                             ++count;
                         });
    min = count > 0 ? runningMin : 0.0;
    max = count > 0 ? runningMax : 0.0;
}

double SurrogateModelDataBlock::getOutputVarMean(int outputVar) const
{
    double sum = 0.0;
    int count = 0;
    visitUnblankedValues(*this, outputVar,
                         [&](double value)
                         {
                             sum += value;
                             ++count;
                         });
    return count == 0 ? 0.0 : sum / count;
}

double SurrogateModelDataBlock::getOutputVarSampleVariance(int outputVar) const
{
    const double mean = getOutputVarMean(outputVar);
    double sum = 0.0;
    int count = 0;
    visitUnblankedValues(*this, outputVar,
                         [&](double value)
                         {
                             sum += (value - mean) * (value - mean);
                             ++count;
                         });
    return count == 0 ? 0.0 : sum / (count - 1);
}

void SurrogateModelDataBlock::getAllUnblankedPts(std::vector<std::pair<int, int>>& points) const
{
    points.resize(toIndex(totalNumUnblankedPoints));
    std::size_t next = 0;
    for (int b = 0; b < numBlocks; ++b)
    {
        const std::vector<bool>& isUnblanked = includePtArrays[toIndex(b)];
        for (int i = 0; i < numPtsInBlocks[toIndex(b)]; ++i)
        {
            if (isUnblanked[toIndex(i)])
                points[next++] = {b, i};
        }
    }
}

void SurrogateModelDataBlock::updateCachedValues()
{
    numBlocks = static_cast<int>(numPtsInBlocks.size());
    numInputVars = numBlocks > 0 ? static_cast<int>(inputValueArrays[0].size()) : 0;
    numOutputVars = numBlocks > 0 ? static_cast<int>(outputValueArrays[0].size()) : 0;
    totalNumUnblankedPoints = calcTotalNumUnblankedPoints();
}

int SurrogateModelDataBlock::calcTotalNumUnblankedPoints() const
{
    int total = 0;
    for (std::size_t b = 0; b < numPtsInBlocks.size(); ++b)
    {
        for (int i = 0; i < numPtsInBlocks[b]; ++i)
        {
            if (includePtArrays[b][toIndex(i)])
                ++total;
        }
    }
    return total;
}
