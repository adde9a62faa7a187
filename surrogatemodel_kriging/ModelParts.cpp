#include "surrogatemodel_kriging/ModelParts.h"

#include "surrogatemodel_kriging/ModelAssembly.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn
{

ModelParts::ModelParts(const std::vector<double*>& inputValueArrays, const std::vector<double*>& outputValueArrays,
                       int numPoints, double duplicateTolerance, const std::vector<double>& scaleFactors,
                       double rangeFraction, double nugget, const std::vector<bool>& includeFlags)
{
    setUpNormalization(arraysToMeasure(inputValueArrays, numPoints), numPoints,
                       scaleFactorsOrAutomatic(scaleFactors, inputValueArrays.size()), minValues, maxValues,
                       normalizers);
    AssembledParts parts = assembleParts({inputValueArrays, outputValueArrays, numPoints, duplicateTolerance,
                                          rangeFraction, nugget, includeFlags.empty() ? nullptr : &includeFlags},
                                         minValues, maxValues, normalizers, &mergedGroups);
    dataBlock = std::move(parts.dataBlock);
    semivariogram = std::move(parts.semivariogram);
    dataBlock->getAllUnblankedPts(points);
}

ModelParts::~ModelParts() = default;

const std::vector<double>& ModelParts::getMinValues() const
{
    return minValues;
}

const std::vector<double>& ModelParts::getMaxValues() const
{
    return maxValues;
}

const std::vector<Normalizer>& ModelParts::getNormalizers() const
{
    return normalizers;
}

const SurrogateModelDataBlock& ModelParts::getDataBlock() const
{
    return *dataBlock;
}

SphericalSemivariogram& ModelParts::getSemivariogram() const
{
    return *semivariogram;
}

const std::vector<SourcePointRef>& ModelParts::getPoints() const
{
    return points;
}

const std::vector<MergedGroup>& ModelParts::getMergedGroups() const
{
    return mergedGroups;
}

} // namespace fenn
