#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"

namespace
{

void checkScaleFactors(const std::vector<double>& scaleFactors)
{
    for (const double factor : scaleFactors)
    {
        if (std::fabs(factor) >= effectivelyInfinite)
            throw SurrogateModelInterface::Error("Scaling factor too large");
        if (std::fabs(factor) <= effectivelyZero)
            throw SurrogateModelInterface::Error("Scaling factor too small");
    }
}

double scaleForFactor(double factor, double min, double max)
{
    if (factor > effectivelyZero)
        return factor;
    const double range = max - min;
    if (!(range > effectivelyZero)) // a NaN range too
        throw SurrogateModelInterface::Error("Value range too small to normalize data");
    return 2.0 * std::fabs(factor) / range;
}

} // namespace

KrigingSurrogateModel::KrigingSurrogateModel(const std::vector<double*>& inputValueArrays,
                                             const std::vector<double*>& outputValueArrays, int numPoints,
                                             double duplicateTolerance, const std::vector<double>& scaleFactors,
                                             int driftOrder, double rangeFraction, double nugget, int numNearestPoints)
{
    const std::size_t numInputVars = inputValueArrays.size();
    // The limits start from each variable's first value, which a host without samples need not have.
    double noValue = 0.0;
    const std::vector<double*> standIns(numPoints > 0 ? 0 : numInputVars, &noValue);
    const std::vector<double*>& arraysToMeasure = numPoints > 0 ? inputValueArrays : standIns;
    if (scaleFactors.empty())
        setupMinMaxOffsetAndScale(arraysToMeasure, numPoints, std::vector<double>(numInputVars, -1.0));
    else
        setupMinMaxOffsetAndScale(arraysToMeasure, numPoints, scaleFactors);

    // Held here until all three exist: a constructor that throws runs no destructor. A negative number of points counts
    // none, as in the data block.
    const auto numFlags = static_cast<std::size_t>(std::max(numPoints, 0));
    auto newDataBlock =
        std::make_unique<SurrogateModelDataBlock>(numPoints, inputValueArrays, outputValueArrays,
                                                  std::vector<bool>(numFlags, true), normalizers, minValues, maxValues);
    if (duplicateTolerance >= 0.0)
        newDataBlock->removeDuplicatePts(duplicateTolerance);

    // The corners are the limits from before duplicates were merged.
    auto newSemivariogram = std::make_unique<SphericalSemivariogram>(inputValueArrays, normalizers, minValues,
                                                                     maxValues, rangeFraction, nugget);

    if (numNearestPoints == 0 || numNearestPoints >= newDataBlock->getTotalNumUnblankedPoints())
        controller = new AllPtsKrigingController(newDataBlock.get(), newSemivariogram.get(), driftOrder);
    else // negative counts come here too: the Kriging matrix refuses them
        controller =
            new NPtsKrigingController(newDataBlock.get(), newSemivariogram.get(), driftOrder, numNearestPoints);
    semivariogram = newSemivariogram.release();
    dataBlock = newDataBlock.release();
}

KrigingSurrogateModel::~KrigingSurrogateModel()
{
    delete controller;
    delete semivariogram;
    delete dataBlock;
}

void KrigingSurrogateModel::setupMinMaxOffsetAndScale(const std::vector<double*>& inputValueArrays, int numPoints,
                                                      const std::vector<double>& scaleFactors)
{
    checkScaleFactors(scaleFactors);

    const std::size_t numInputVars = inputValueArrays.size();
    minValues.resize(numInputVars, effectivelyInfinite);
    maxValues.resize(numInputVars, -effectivelyInfinite);
    for (std::size_t v = 0; v < numInputVars; ++v)
        findMinMax(inputValueArrays[v], numPoints, minValues[v], maxValues[v]);

    normalizers.resize(numInputVars);
    for (std::size_t v = 0; v < numInputVars; ++v)
        normalizers[v].setScale(scaleForFactor(scaleFactors[v], minValues[v], maxValues[v]));

    double smallestRange = effectivelyInfinite;
    double largestRange = -effectivelyInfinite;
    bool hasNaNRange = false;
    for (std::size_t v = 0; v < numInputVars; ++v)
    {
        normalizers[v].setOffset(-(minValues[v] + maxValues[v]) * 0.5);
        const double normalizedRange = (maxValues[v] - minValues[v]) * normalizers[v].getScale();
        if (normalizedRange < smallestRange)
            smallestRange = normalizedRange;
        if (normalizedRange > largestRange)
            largestRange = normalizedRange;
        hasNaNRange = hasNaNRange || std::isnan(normalizedRange);
    }

    // DELIBERATE: one factor for all variables keeps the ratios of their scales, so that positive factors act as
    // relative weights, and brings the typical normalised range to 2. A range that is NaN, whichever variable's, or a
    // mean that is effectively zero or infinite leaves the scales as they are.
    // Tests: KrigingSurrogateModelNormalisationTest.PositiveFactorsKeepTheirRatioAfterTheCommonRescaling,
    // ANaNNormalisedRangeAtAnyPositionSkipsTheCommonRescaling
    const double meanRange = std::sqrt(smallestRange * largestRange);
    if (!hasNaNRange && meanRange > effectivelyZero && meanRange < effectivelyInfinite)
    {
        for (Normalizer& normalizer : normalizers)
            normalizer.setScale(normalizer.getScale() * (2.0 / meanRange));
    }
}

void KrigingSurrogateModel::activateDependentVariables(const std::set<int>& dependentVars)
{
    controller->setOutputVars(dependentVars);
}

void KrigingSurrogateModel::interpolateDependentValues(const std::vector<double*>& targetValueArrays,
                                                       const std::set<int>& dependentVars,
                                                       std::vector<double*>& resultArrays, size_t numTargets) const
{
    std::vector<double*> noVariances;
    controller->interpolate(targetValueArrays, dependentVars, static_cast<int>(numTargets), resultArrays, noVariances);
}

bool KrigingSurrogateModel::surfaceCoefficientInformationAvailable() const
{
    return false;
}

std::string KrigingSurrogateModel::surfaceCoefficientInformation(int /*index*/)
{
    return {};
}

bool KrigingSurrogateModel::qualityMetricInformationAvailable() const
{
    return false;
}

std::string KrigingSurrogateModel::qualityMetricInformation(int /*index*/)
{
    return {};
}
