#ifndef FENN_ANALYSIS_PLACES_H
#define FENN_ANALYSIS_PLACES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "estimation/SampleSet.h"

namespace fenn::analysis
{

using estimation::SampleSet;

/// Which samples lie at one place: those that merging with this tolerance makes one point; a negative one counts as 0.
struct Places
{
    std::vector<std::size_t> placeOfSample; // numbered by the first sample of each
    std::size_t numPlaces = 0;
};
Places findPlaces(const SampleSet& samples, double duplicateTolerance);

/// The fold, 0 to numFolds - 1, of each sample: assignFolds over the places, so that a sample is never estimated from
/// its own repeat. Without repeats it is assignFolds over the samples; with fewer places than folds, each place is one
/// and the last folds are empty. Throws std::invalid_argument unless 2 <= numFolds <= the number of samples, and for a
/// single place.
std::vector<std::size_t> assignFoldsToPlaces(const SampleSet& samples, double duplicateTolerance, std::size_t numFolds,
                                             std::uint64_t seed);

} // namespace fenn::analysis

#endif
