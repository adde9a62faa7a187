#ifndef FENN_ESTIMATION_ESTIMATES_H
#define FENN_ESTIMATION_ESTIMATES_H

#include <cstddef>
#include <vector>

namespace fenn::estimation
{

class Estimator;
class SampleSet;

/// An estimator's answers for a list of targets, in their order. NaN stands for "no estimate".
struct Estimates
{
    std::vector<std::vector<double>> values; // one column per output variable, raw units
    std::vector<double> variances;           // Kriging variance for a sill of 1: the same for every output variable
    std::vector<double> driftProducts;       // mu^T f, the drift's share of that variance
};

/// What is wanted beside the estimates.
struct WantedBeside
{
    bool variances = false;
    bool driftProducts = false;
};

/// Replaces estimates by those at the targets: one column per input variable, equally long, raw units. What is not
/// wanted comes out empty. A target with a coordinate that is not finite never reaches the estimator: it gets NaN
/// throughout. Returns the number of those. Throws as Estimator::estimate.
std::size_t estimateAt(const Estimator& estimator, const std::vector<std::vector<double>>& targets,
                       const WantedBeside& wanted, Estimates& estimates);

/// The estimates, with all there is beside them, at the input values of the samples; their outputs are not read.
Estimates estimateAt(const Estimator& estimator, const SampleSet& targets);

} // namespace fenn::estimation

#endif
