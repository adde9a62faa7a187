#include "analysis/Places.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "analysis/Folds.h"
#include "estimation/MergedSamples.h"

namespace fenn::analysis
{

Places findPlaces(const SampleSet& samples, double duplicateTolerance)
{
    std::vector<std::vector<double>> inputs;
    for (std::size_t v = 0; v < samples.getNumInputVars(); ++v)
        inputs.push_back(samples.getInput(v));
    std::vector<std::size_t> firstAtPlace(samples.getNumSamples());
    for (std::size_t i = 0; i < firstAtPlace.size(); ++i)
        firstAtPlace[i] = i;
    for (const std::vector<std::size_t>& group :
         estimation::findMergedSamples(inputs, std::max(0.0, duplicateTolerance)).groups)
    {
        for (const std::size_t i : group)
            firstAtPlace[i] = group[0];
    }

    Places places;
    places.placeOfSample.resize(firstAtPlace.size());
    for (std::size_t i = 0; i < firstAtPlace.size(); ++i)
        places.placeOfSample[i] = firstAtPlace[i] == i ? places.numPlaces++ : places.placeOfSample[firstAtPlace[i]];
    return places;
}

std::vector<std::size_t> assignFoldsToPlaces(const SampleSet& samples, double duplicateTolerance, std::size_t numFolds,
                                             std::uint64_t seed)
{
    Places places = findPlaces(samples, duplicateTolerance);
    if (places.numPlaces < 2)
        throw std::invalid_argument("cross-validation needs samples at two places at least");
    const std::size_t numFilled = numFolds > samples.getNumSamples() ? numFolds : std::min(numFolds, places.numPlaces);
    const std::vector<std::size_t> foldOfPlace = assignFolds(places.numPlaces, numFilled, seed);
    for (std::size_t& place : places.placeOfSample)
        place = foldOfPlace[place];
    return std::move(places.placeOfSample);
}

} // namespace fenn::analysis
