#ifndef FENN_ESTIMATION_SAMPLESET_H
#define FENN_ESTIMATION_SAMPLESET_H

#include <cstddef>
#include <vector>

namespace fenn::estimation
{

/// Samples that own their values: one column per input and per output variable, raw units, finite throughout. Samples
/// that are not included count for normalisation and range, and stand in no system.
///
/// A model refers to the columns of the set that it was built from: the set must outlive it. Moving a set keeps its
/// columns in place, copying makes new ones. Immutable, so any number of threads may read one set.
class SampleSet
{
public:
    /// Throws std::invalid_argument without input or output variables or samples, for columns of different lengths,
    /// more samples than a 32-bit int counts, and a value that is not finite (naming variable and sample from 0).
    /// includeFlags_: one per sample, which otherwise throws likewise; empty: all samples are included.
    SampleSet(std::vector<std::vector<double>> inputs_, std::vector<std::vector<double>> outputs_,
              std::vector<bool> includeFlags_ = {});

    std::size_t getNumSamples() const;
    std::size_t getNumInputVars() const;
    std::size_t getNumOutputVars() const;
    const std::vector<double>& getInput(std::size_t inputVar) const;
    const std::vector<double>& getOutput(std::size_t outputVar) const;

    /// One per sample, or none where all are included.
    const std::vector<bool>& getIncludeFlags() const;

    /// The samples of these indices, in this order. Throws std::out_of_range for one that does not exist.
    SampleSet subset(const std::vector<std::size_t>& indices) const;

    /// One pointer per variable, as models take them; they point into this set. Models only read through them.
    std::vector<double*> inputArrays() const;
    std::vector<double*> outputArrays() const;

    /// Largest value of an input variable minus the smallest; infinite on overflow.
    double calcInputRange(std::size_t inputVar) const;

    /// Unbiased variance of an output variable over all samples (denominator count - 1); NaN for a single sample.
    double calcOutputVariance(std::size_t outputVar) const;

private:
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
    std::vector<bool> includeFlags;
};

} // namespace fenn::estimation

#endif
