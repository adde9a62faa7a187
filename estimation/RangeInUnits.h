#ifndef FENN_ESTIMATION_RANGEINUNITS_H
#define FENN_ESTIMATION_RANGEINUNITS_H

#include <cstddef>
#include <vector>

#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

// The plug-in takes the range as a fraction of the normalised diagonal of the samples' box. People think of it in the
// units of their inputs; these functions go from one to the other.

/// The settings with rangeInInputUnits, where it is set, turned into the fraction that means the same for these
/// samples; the fraction is 0 where all samples lie at one place. Other settings come back as they are. The settings
/// must pass checkSettings.
ModelSettings withRangeFraction(const SampleSet& samples, const ModelSettings& settings);

/// The range of a model along each input, in that input's units.
std::vector<double> calcRangesPerInput(const ModelParts& parts);

} // namespace fenn::estimation

#endif
