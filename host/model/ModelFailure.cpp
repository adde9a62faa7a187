#include "host/model/ModelFailure.h"

#include <cmath>
#include <cstdint>

#include "host/model/MergedSamples.h"
#include "host/model/ModelMemory.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"

namespace krige
{

namespace
{

/// Whether the model works on the nearest points; what the library decides after merging.
bool isLocal(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    if (settings.numNearestPoints == 0)
        return false;
    const int numPoints = settings.duplicateTolerance >= 0.0
                              ? countPointsAfterMerging(samples, settings.duplicateTolerance)
                              : samples.getNumSamples();
    return settings.numNearestPoints < numPoints;
}

std::string describeAvailablePoints(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    if (isLocal(samples, settings))
        return "--nearest " + std::to_string(settings.numNearestPoints) + " is";
    const int numSamples = samples.getNumSamples();
    if (settings.duplicateTolerance < 0.0)
        return countOf(static_cast<unsigned>(numSamples), "sample") + (numSamples == 1 ? " is" : " are");
    const int numPoints = countPointsAfterMerging(samples, settings.duplicateTolerance);
    return countOf(static_cast<unsigned>(numPoints), "point") + " left of " +
           countOf(static_cast<unsigned>(numSamples), "sample") + " after merging" + (numPoints == 1 ? " is" : " are");
}

std::string explainTooFewPoints(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    const std::size_t numInputs = samples.inputs.size();
    std::string text = describeAvailablePoints(samples, settings) + " too few for " + countOf(numInputs, "input") +
                       ": at least " + std::to_string(numInputs + 1) + " are needed; ";
    return text + (isLocal(samples, settings) ? "raise --nearest" : "add samples or name fewer --inputs");
}

/// Points that one system is made of.
int numPointsPerSystem(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    if (isLocal(samples, settings))
        return settings.numNearestPoints;
    return settings.duplicateTolerance < 0.0 ? samples.getNumSamples()
                                             : countPointsAfterMerging(samples, settings.duplicateTolerance);
}

std::string explainUndetermined(const std::string& symptom, const SampleTable& samples,
                                const fenn::estimation::ModelSettings& settings)
{
    const std::string tooFew = describeTooFewPointsForDrift(samples, settings);
    if (!tooFew.empty())
        return tooFew;
    std::string text = "the samples do not determine the estimates (" + symptom + "): ";
    const std::string coincident = settings.duplicateTolerance < 0.0 ? describeCoincidentSamples(samples) : "";
    if (!coincident.empty())
        return text + coincident + "; add --duplicate-tolerance 0 to merge them";
    if (settings.driftOrder > 0)
    {
        text += "they may lie on a line or on too few different places for --drift " +
                std::to_string(settings.driftOrder) + "; lower --drift";
        return text + (isLocal(samples, settings) ? " or raise --nearest" : "");
    }
    return text + "some lie too close together; raise --duplicate-tolerance to merge them, or --nugget";
}

std::string explainSmallRange(const SampleTable& samples)
{
    for (std::size_t v = 0; v < samples.inputs.size(); ++v)
    {
        double min = 0.0;
        double max = 0.0;
        findMinMax(samples.inputs[v].data(), samples.getNumSamples(), min, max);
        if (!(max - min > 1e-150))
            return "the input " + quoteForMessage(samples.inputNames[v]) + " has one value in all samples (" +
                   formatNumber(min) + "); leave it out of --inputs, or give it a positive --scale";
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
    const double bytes =
        calcSystemBytes(samples.getNumSamples(), static_cast<int>(samples.inputs.size()), settings.driftOrder);
    return samples.path + ": a model over all " + countOf(static_cast<unsigned>(samples.getNumSamples()), "sample") +
           " takes " + formatBytes(bytes) + " of memory, more than there is; add --nearest 32 to work on the " +
           "nearest samples";
}

std::string describeTooFewPointsForDrift(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    // One more than the library insists on: its system has one constraint beside the drift's.
    const int numTerms = numDriftTerms(settings.driftOrder, static_cast<int>(samples.inputs.size()));
    if (numTerms == 0 || numPointsPerSystem(samples, settings) > numTerms)
        return {};
    const std::string text = describeAvailablePoints(samples, settings) + " too few for --drift " +
                             std::to_string(settings.driftOrder) + " in " + countOf(samples.inputs.size(), "input") +
                             ": at least " + std::to_string(std::int64_t{numTerms} + 1) + " are needed; lower --drift";
    return text + (isLocal(samples, settings) ? " or raise --nearest" : " or add samples");
}

std::string describeCoincidentSamples(const SampleTable& samples)
{
    const int numCoincident = countCoincidentSamples(samples);
    if (numCoincident == 0)
        return {};
    return std::to_string(numCoincident) + " of " + std::to_string(samples.getNumSamples()) + " samples coincide";
}

} // namespace krige
