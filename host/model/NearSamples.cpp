#include "host/model/NearSamples.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "estimation/MergedSamples.h"
#include "estimation/RangeInUnits.h"
#include "estimation/Separation.h"
#include "estimation/SystemInverse.h"
#include "estimation/makeModelParts.h"
#include "host/model/AnalysisInput.h"
#include "host/model/ModelFailure.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

namespace
{

using fenn::estimation::Separation;
using fenn::estimation::SeparationVerdict;

/// In the inputs' own units.
double calcDistance(const SampleTable& samples, const Separation& nearest)
{
    double squared = 0.0;
    for (const std::vector<double>& input : samples.inputs)
    {
        const double difference = input[nearest.secondSample] - input[nearest.firstSample];
        squared += difference * difference;
    }
    return std::sqrt(squared);
}

/// A power of ten that merges the nearest two samples, and others that are no farther apart than a system of this many
/// points can tell: where the semivariogram has fallen to the smallest reciprocal condition times their number.
double suggestTolerance(const SampleTable& samples, const Separation& nearest,
                        const fenn::estimation::ModelSettings& settings, std::size_t numPointsInSystem)
{
    double fraction = fenn::estimation::smallestReciprocalCondition * static_cast<double>(numPointsInSystem) *
                      settings.rangeFraction * std::sqrt(static_cast<double>(samples.inputs.size()));
    for (const std::vector<double>& input : samples.inputs)
    {
        const auto [min, max] = std::minmax_element(input.begin(), input.end());
        if (*max > *min)
            fraction =
                std::max(fraction, std::fabs(input[nearest.secondSample] - input[nearest.firstSample]) / (*max - *min));
    }
    return std::pow(10.0, std::ceil(std::log10(fraction)));
}

} // namespace

std::string describeNearSamples(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                                bool isUnsolvable)
{
    const fenn::estimation::SampleSet sampleSet = toSampleSet(samples);
    const auto parts = fenn::estimation::makeModelParts(sampleSet, settings);
    const std::size_t numPoints = parts->getPoints().size();
    const bool isGlobal = usesAllPoints(settings, numPoints);
    const std::size_t numInSystem = isGlobal ? numPoints : static_cast<std::size_t>(settings.numNearestPoints);
    const Separation nearest = fenn::estimation::checkSeparation(
        *parts, isUnsolvable && isGlobal ? 0.0 : std::numeric_limits<double>::quiet_NaN(), numInSystem);
    if (nearest.verdict != SeparationVerdict::Repeated && nearest.verdict != SeparationVerdict::TooNear)
        return {};

    const bool isRepeated = nearest.verdict == SeparationVerdict::Repeated;
    const double tolerance =
        isRepeated ? 0.0 : suggestTolerance(samples, nearest, withRangeFraction(sampleSet, settings), numInSystem);
    const std::size_t count = fenn::estimation::findMergedSamples(samples.inputs, tolerance).numMerged;
    char distance[32];
    std::snprintf(distance, sizeof distance, "%.3g", calcDistance(samples, nearest));
    return std::to_string(count) + " of " + std::to_string(samples.getNumSamples()) +
           (isRepeated ? " samples share their place with another"
                       : " samples lie nearer to another than a model can tell apart") +
           ", for instance lines " + std::to_string(samples.lines[nearest.firstSample]) + " and " +
           std::to_string(samples.lines[nearest.secondSample]) + ", distance " + distance + "; add --duplicates merge" +
           (isRepeated ? "" : " --duplicate-tolerance " + formatNumber(tolerance)) +
           " to average them, --nugget 0.1 to take them as repeated measurements, or --duplicates keep to go on "
           "all the same";
}

namespace
{

std::string faultOfPlaces(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    try
    {
        return describeNearSamples(samples, settings, false);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        throw InputError(explainModelFailure(error.what(), samples, settings));
    }
}

} // namespace

bool needsNugget(const SampleTable& samples, const Settings& settings)
{
    fenn::estimation::ModelSettings withoutNugget = settings;
    withoutNugget.nugget = 0.0;
    return !settings.keepsDuplicates && !faultOfPlaces(samples, withoutNugget).empty();
}

void checkSamplesApart(const SampleTable& samples, const Settings& settings)
{
    const std::string fault = settings.keepsDuplicates ? "" : faultOfPlaces(samples, settings);
    if (!fault.empty())
        throw InputError(samples.path + ": " + fault);
}

} // namespace krige
