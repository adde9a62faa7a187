#ifndef FENN_ANALYSIS_ESTIMATES_H
#define FENN_ANALYSIS_ESTIMATES_H

#include <cstddef>
#include <vector>

#include "estimation/SampleSet.h"

class KrigingSurrogateModel;

namespace fenn::analysis
{

using estimation::SampleSet;

/// What a model says of a list of points. NaN stands for "no estimate".
struct Estimates
{
    std::vector<std::vector<double>> values; // one column per output variable, raw units
    std::vector<double> variances;           // Kriging variance for a sill of 1: the same for every output variable
};

/// Estimates every output variable of the model at the input values of the targets, whose outputs are not looked at.
/// Not beside another request on a local model. Throws as the controllers' interpolate.
Estimates estimateAt(const KrigingSurrogateModel& model, const SampleSet& targets);

} // namespace fenn::analysis

#endif
