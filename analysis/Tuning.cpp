#include "analysis/Tuning.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

#include "analysis/Folds.h"
#include "analysis/Places.h"
#include "analysis/SettingsSearch.h"
#include "analysis/Sill.h"
#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace fenn::analysis
{

namespace
{

/// Per sample: whole places in random order, as long as the share of the samples is not exceeded and two places are
/// left.
std::vector<bool> chooseHeldOut(const Places& places, const TuningOptions& options)
{
    const std::size_t numSamples = places.placeOfSample.size();
    const auto numWanted =
        static_cast<std::size_t>(std::floor(options.heldOutFraction * static_cast<double>(numSamples)));
    std::vector<std::vector<std::size_t>> samplesAt(places.numPlaces);
    for (std::size_t i = 0; i < numSamples; ++i)
        samplesAt[places.placeOfSample[i]].push_back(i);
    std::vector<bool> isHeldOut(numSamples, false);
    std::size_t numHeldOut = 0;
    std::size_t numPlacesLeft = places.numPlaces;
    for (const std::size_t place : shuffledIndices(places.numPlaces, options.seed))
    {
        if (numHeldOut + samplesAt[place].size() > numWanted || numPlacesLeft == 2)
            continue;
        for (const std::size_t i : samplesAt[place])
            isHeldOut[i] = true;
        numHeldOut += samplesAt[place].size();
        --numPlacesLeft;
    }
    return isHeldOut;
}

SampleSet turnedBy(const std::optional<Anisotropy>& anisotropy, const SampleSet& samples)
{
    return anisotropy ? anisotropy->apply(samples) : samples;
}

Assessment assessByCrossValidation(const SampleSet& samples, const SettingsWithAnisotropy& tried,
                                   const TuningOptions& options)
{
    const SampleSet turned = turnedBy(tried.anisotropy, samples);
    return makeScorer(turned, options).assessByCrossValidation(tried.settings);
}

Assessment assessAt(const SampleSet& heldOut, const SampleSet& tuningSamples, const SettingsWithAnisotropy& tried,
                    const TuningOptions& options)
{
    try
    {
        const ModelSettings& settings = tried.settings;
        const SampleSet modelSamples = turnedBy(tried.anisotropy, tuningSamples);
        const std::unique_ptr<estimation::Estimator> estimator =
            estimation::chooseEstimator(modelSamples, settings, options.estimator);
        LeftOutEstimates leftOut;
        leftOut.estimates = estimateAt(*estimator, turnedBy(tried.anisotropy, heldOut));
        for (std::size_t w = 0; w < heldOut.getNumOutputVars(); ++w)
            leftOut.truths.push_back(heldOut.getOutput(w));
        for (const Sill& sill : estimateSills(*estimator, settings, options.estimator.numThreads))
            leftOut.sills.push_back(sill.value);
        return assess(leftOut, tuningSamples, options.objective, options.units);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        Assessment assessment;
        assessment.score = std::numeric_limits<double>::infinity();
        assessment.failure = error.what();
        return assessment;
    }
}

} // namespace

ModelSettings startWithin(const SearchSpace& space, ModelSettings start, std::size_t numSamples)
{
    const auto isGlobal = [&](int numNearestPoints)
    {
        ModelSettings settings = start;
        settings.numNearestPoints = numNearestPoints;
        return estimation::usesAllPoints(settings, numSamples);
    };
    const std::vector<int>& choices = space.numNearestPoints;
    if (!choices.empty() && isGlobal(start.numNearestPoints) && std::none_of(choices.begin(), choices.end(), isGlobal))
        start.numNearestPoints = choices[0];
    return start;
}

TuningResult tune(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                  const TuningOptions& options, const TrialCallback& callback)
{
    checkSettings(start, samples.getNumInputVars());
    checkSearchSpace(space);
    if (!(start.rangeFraction > 0.0))
        throw std::invalid_argument("the range fraction to start from must be above 0");
    if (!(options.heldOutFraction >= 0.0 && options.heldOutFraction < 1.0))
        throw std::invalid_argument("the held-out fraction must be at least 0 and below 1");
    if (options.maxTrials == 0)
        throw std::invalid_argument("tuning needs at least one trial");

    const Places places = findPlaces(samples, start.duplicateTolerance);
    if (places.numPlaces < 2)
        throw std::invalid_argument("tuning needs samples at two places at least");

    TuningResult result;
    const std::vector<bool> isHeldOut = chooseHeldOut(places, options);
    std::vector<std::size_t> others;
    for (std::size_t i = 0; i < isHeldOut.size(); ++i)
        (isHeldOut[i] ? result.heldOutSamples : others).push_back(i);
    const SampleSet tuningSamples = samples.subset(others);
    const ModelSettings begin = startWithin(space, start, tuningSamples.getNumSamples());
    searchSettings(tuningSamples, begin, space, options, callback, result);
    if (result.wasCancelled)
        return result;

    const SettingsWithAnisotropy& winner = result.trials[result.winner];
    result.winnerCrossValidated = assessByCrossValidation(tuningSamples, winner, options);
    result.startCrossValidated = assessByCrossValidation(tuningSamples, {begin, {}}, options);
    if (!result.heldOutSamples.empty())
    {
        const SampleSet heldOut = samples.subset(result.heldOutSamples);
        result.winnerHeldOut = assessAt(heldOut, tuningSamples, winner, options);
        result.startHeldOut = assessAt(heldOut, tuningSamples, {begin, {}}, options);
    }
    return result;
}

} // namespace fenn::analysis
