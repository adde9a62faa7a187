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

/// Which samples a model of some tolerance merges, and what that leaves.
struct MergedSamples
{
    /// Entry k: the samples that the k-th averaged point stands for, ascending.
    std::vector<std::vector<std::size_t>> groups;

    std::size_t numMerged = 0; // samples in groups
    std::size_t numPoints = 0; // samples left alone and averaged points
};

/// As the model merged them.
MergedSamples getMergedSamples(const ModelParts& parts);

/// As a model with this tolerance (a fraction of each input variable's range; negative or NaN: nothing) would merge
/// them, whether or not the library makes a model of these samples at all. inputs: a column per input variable, equally
/// long and not empty.
MergedSamples findMergedSamples(const std::vector<std::vector<double>>& inputs, double tolerance);

} // namespace fenn::estimation

#endif
