#include "host/model/ModelFailure.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "estimation/MergedSamples.h"
#include "estimation/SystemSize.h"
#include "host/model/ModelMemory.h"
#include "host/model/NearSamples.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

std::size_t countPoints(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    return fenn::estimation::findMergedSamples(samples.inputs, settings.duplicateTolerance).numPoints;
}

/// Whether the model works on the nearest points.
bool isLocal(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    return !usesAllPoints(settings, countPoints(samples, settings));
}

std::string describeAvailablePoints(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    if (isLocal(samples, settings))
        return "--nearest " + std::to_string(settings.numNearestPoints) + " is";
    const int numSamples = samples.getNumSamples();
    if (settings.duplicateTolerance < 0.0)
        return countOf(static_cast<unsigned>(numSamples), "sample") + (numSamples == 1 ? " is" : " are");
    const std::size_t numPoints = countPoints(samples, settings);
    return countOf(numPoints, "point") + " left of " + countOf(static_cast<unsigned>(numSamples), "sample") +
           " after merging" + (numPoints == 1 ? " is" : " are");
}

std::string explainTooFewPoints(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    const std::size_t numInputs = samples.inputs.size();
    std::string text = describeAvailablePoints(samples, settings) + " too few for " + countOf(numInputs, "input") +
                       ": at least " + std::to_string(numInputs + 1) + " are needed; ";
    return text + (isLocal(samples, settings) ? "raise --nearest" : "add samples or name fewer --inputs");
}

/// Points that one system is made of.
std::size_t numPointsPerSystem(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    const std::size_t numPoints = countPoints(samples, settings);
    return usesAllPoints(settings, numPoints) ? numPoints : static_cast<std::size_t>(settings.numNearestPoints);
}

std::string explainUndetermined(const std::string& symptom, const SampleTable& samples,
                                const fenn::estimation::ModelSettings& settings)
{
    const std::string tooFew = describeTooFewPointsForDrift(samples, settings);
    if (!tooFew.empty())
        return tooFew;
    const std::string near = describeNearSamples(samples, settings, true);
    if (!near.empty())
        return near;
    std::string text = "the samples do not determine the estimates (" + symptom + "): ";
    if (settings.driftOrder > 0)
    {
        text += "they may lie on a line or on too few different places for --drift " +
                std::to_string(settings.driftOrder) + "; lower --drift";
        return text + (isLocal(samples, settings) ? " or raise --nearest" : "");
    }
    return text + "some lie too close together; add --nugget 0.01, or --duplicates merge with a larger "
                  "--duplicate-tolerance";
}

std::string explainSmallRange(const SampleTable& samples)
{
    if (samples.getNumSamples() == 1)
        return "a single sample has no ranges, from which inputs are scaled; add samples";
    for (std::size_t v = 0; v < samples.inputs.size(); ++v)
    {
        const auto [min, max] = std::minmax_element(samples.inputs[v].begin(), samples.inputs[v].end());
        if (!(*max - *min > 1e-150))
            return "the input " + quoteForMessage(samples.inputNames[v]) + " has one value in all samples (" +
                   formatNumber(*min) + "); leave it out of --inputs, or give it a positive --scale";
    }
    return "an input has one value in all samples; leave it out of --inputs, or give it a positive --scale";
}

std::string explainScale(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    std::string text = "--scale: a factor must lie between 1e-150 and 1e150 in magnitude";
    for (std::size_t v = 0; v < settings.scaleFactors.size(); ++v)
    {
        const double magnitude = std::fabs(settings.scaleFactors[v]);
        if (magnitude >= 1e150 || magnitude <= 1e-150)
            return text + ", that of " + quoteForMessage(samples.inputNames[v]) + " is " +
                   formatNumber(settings.scaleFactors[v]);
    }
    return text;
}

} // namespace

std::string explainModelFailure(const std::string& libraryMessage, const SampleTable& samples,
                                const fenn::estimation::ModelSettings& settings)
{
    const std::string file = samples.path + ": ";
    if (libraryMessage == "Not enough source points for kriging.")
        return file + explainTooFewPoints(samples, settings);
    if (libraryMessage == "Not enough source points to calculate drift.")
        return file + describeTooFewPointsForDrift(samples, settings);
    if (libraryMessage == "Singular matrix")
        return file + explainUndetermined("singular matrix", samples, settings);
    if (libraryMessage == "Ill-conditioned matrix")
        return file + explainUndetermined("reciprocal condition below 1e-14", samples, settings);
    if (libraryMessage == "Value overflow")
        return file + explainUndetermined("value overflow", samples, settings);
    if (libraryMessage == "Value range too small to normalize data")
        return file + explainSmallRange(samples);
    if (libraryMessage == "Scaling factor too large" || libraryMessage == "Scaling factor too small")
        return file + explainScale(samples, settings);
    return file + libraryMessage;
}

std::string explainMissingMemory(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    if (settings.numNearestPoints != 0)
        return samples.path + ": there is not enough memory for the model; lower --nearest";
    const auto numSamples = static_cast<std::size_t>(samples.getNumSamples());
    const double bytes = fenn::estimation::calcSystemBytes(numSamples, samples.inputs.size(), settings.driftOrder);
    return samples.path + ": a model over all " + countOf(numSamples, "sample") + " takes " + formatBytes(bytes) +
           " of memory, more than there is; add --nearest 32 to work on the " + "nearest samples";
}

std::string describeTooFewPointsForDrift(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    // One more than the library insists on: its system has one constraint beside the drift's.
    const int numTerms = fenn::estimation::countDriftTerms(settings.driftOrder, samples.inputs.size());
    if (numTerms == 0 || numPointsPerSystem(samples, settings) > static_cast<std::size_t>(numTerms))
        return {};
    const std::string text = describeAvailablePoints(samples, settings) + " too few for --drift " +
                             std::to_string(settings.driftOrder) + " in " + countOf(samples.inputs.size(), "input") +
                             ": at least " + std::to_string(std::int64_t{numTerms} + 1) + " are needed; lower --drift";
    return text + (isLocal(samples, settings) ? " or raise --nearest" : " or add samples");
}

std::string describeCoincidentSamples(const SampleTable& samples)
{
    const std::size_t numCoincident = fenn::estimation::findMergedSamples(samples.inputs, 0.0).numMerged;
    if (numCoincident == 0)
        return {};
    return std::to_string(numCoincident) + " of " + std::to_string(samples.getNumSamples()) + " samples coincide";
}

} // namespace krige
