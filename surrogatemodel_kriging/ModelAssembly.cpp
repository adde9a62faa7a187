#include "surrogatemodel_kriging/ModelAssembly.h"

#include <algorithm>
#include <cmath>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn
{

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

std::vector<double*> arraysToMeasure(const std::vector<double*>& inputValueArrays, int numPoints)
{
    static double noValue = 0.0; // only read
    return numPoints > 0 ? inputValueArrays : std::vector<double*>(inputValueArrays.size(), &noValue);
}

std::vector<double> scaleFactorsOrAutomatic(const std::vector<double>& scaleFactors, std::size_t numInputVars)
{
    return scaleFactors.empty() ? std::vector<double>(numInputVars, -1.0) : scaleFactors;
}

void setUpNormalization(const std::vector<double*>& inputValueArrays, int numPoints,
                        const std::vector<double>& scaleFactors, std::vector<double>& minValues,
                        std::vector<double>& maxValues, std::vector<Normalizer>& normalizers)
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

AssembledParts assembleParts(const ModelArguments& arguments, const std::vector<double>& minValues,
                             const std::vector<double>& maxValues, const std::vector<Normalizer>& normalizers,
                             std::vector<MergedGroup>* groups)
{
    // A negative number of points counts none, as in the data block.
    const std::vector<bool> all(static_cast<std::size_t>(std::max(arguments.numPoints, 0)), true);
    const std::vector<bool>& includeFlags = arguments.includeFlags ? *arguments.includeFlags : all;
    AssembledParts parts;
    parts.dataBlock = std::make_unique<SurrogateModelDataBlock>(arguments.numPoints, arguments.inputValueArrays,
                                                                arguments.outputValueArrays, includeFlags, normalizers,
                                                                minValues, maxValues);
    if (arguments.duplicateTolerance >= 0.0)
        DuplicateMerger(*parts.dataBlock, arguments.duplicateTolerance, groups).merge();

    // The corners are the limits from before duplicates were merged.
    parts.semivariogram = std::make_unique<SphericalSemivariogram>(
        arguments.inputValueArrays, normalizers, minValues, maxValues, arguments.rangeFraction, arguments.nugget);
    return parts;
}

} // namespace fenn
