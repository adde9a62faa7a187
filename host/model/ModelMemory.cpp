#include "host/model/ModelMemory.h"

#include "estimation/MergedSamples.h"
#include "estimation/SystemSize.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

void checkModelMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                      double availableBytes, bool isExact, const FoldsAtOnce& foldsAtOnce)
{
    const std::size_t numInputVars = samples.inputs.size();
    const auto numSamples = static_cast<std::size_t>(samples.getNumSamples());
    const auto calcBytesOfFolds = [&](std::size_t numPoints)
    {
        return foldsAtOnce.numFolds == 0
                   ? 0.0
                   : fenn::estimation::calcFoldBytes(numPoints, numInputVars, settings.driftOrder, foldsAtOnce.numFolds,
                                                     foldsAtOnce.numThreads);
    };
    if (fenn::estimation::calcSystemBytes(numSamples, numInputVars, settings.driftOrder) +
            calcBytesOfFolds(numSamples) <=
        availableBytes)
        return;
    fenn::estimation::MemoryForecast forecast = fenn::estimation::forecastMemory(samples.inputs, settings, isExact);
    if (forecast.isGlobal)
        forecast.bytes += calcBytesOfFolds(forecast.numPoints);
    if (forecast.bytes <= availableBytes)
        return;
    const std::string figures = " takes " + formatBytes(forecast.bytes) + " of memory and there are " +
                                formatBytes(availableBytes) + " left (targets are streamed and need next to none); ";
    if (!forecast.isGlobal)
        throw InputError(samples.path + ": a system of " + std::to_string(settings.numNearestPoints) +
                         " nearest samples" + figures + "lower --nearest");
    const std::size_t numPlaces = fenn::estimation::findMergedSamples(samples.inputs, 0.0).numPoints;
    throw InputError(samples.path + ": a model over all " + countOf(forecast.numPoints, "point") + figures +
                     "add --nearest 32 to work on the nearest samples" +
                     (numPlaces < forecast.numPoints
                          ? ", or --duplicates merge, which leaves " + countOf(numPlaces, "point")
                          : std::string()));
}

} // namespace krige
