#ifndef FENN_ESTIMATION_MERGEDSAMPLES_H
#define FENN_ESTIMATION_MERGEDSAMPLES_H

#include <cstddef>
#include <vector>

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// Which samples a duplicate tolerance merges, and how many points are left.
struct MergedSamples
{
    /// Entry k: the samples that the k-th averaged point stands for, ascending.
    std::vector<std::vector<std::size_t>> groups;

    std::size_t numMerged = 0; // samples in groups
    std::size_t numPoints = 0; // samples left alone and averaged points
};

/// As the model merged them.
MergedSamples getMergedSamples(const ModelParts& parts);

/// What a model with this tolerance would merge, also for samples that no model can be built of. tolerance: fraction of
/// each input variable's range; negative or NaN merges nothing. inputs: a column per input variable, equally long and
/// not empty.
MergedSamples findMergedSamples(const std::vector<std::vector<double>>& inputs, double tolerance);

} // namespace fenn::estimation

#endif
