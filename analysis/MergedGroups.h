#ifndef FENN_ANALYSIS_MERGEDGROUPS_H
#define FENN_ANALYSIS_MERGEDGROUPS_H

#include <cstddef>
#include <vector>

#include "estimation/SampleSet.h"

namespace fenn::analysis
{

using estimation::SampleSet;

/// Which samples SurrogateModelDataBlock::removeDuplicatePts merges at this tolerance: entry k holds the indices of the
/// samples that the k-th averaged point stands for, ascending. A negative or NaN tolerance merges nothing.
///
/// The data block keeps the averages and not who went into them, so its rule is followed here: for each input variable
/// in turn, samples stay together while neighbours in the sorted order differ by at most tolerance times that
/// variable's range over all samples.
std::vector<std::vector<std::size_t>> findMergedGroups(const SampleSet& samples, double tolerance);

} // namespace fenn::analysis

#endif
