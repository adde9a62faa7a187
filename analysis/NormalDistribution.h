#ifndef FENN_ANALYSIS_NORMALDISTRIBUTION_H
#define FENN_ANALYSIS_NORMALDISTRIBUTION_H

namespace fenn::analysis
{

/// Density at x of the normal distribution of mean 0 and variance 1.
double normalDensity(double x);

/// Probability of a value of at most x, to a relative accuracy of some 1e-15 in the lower tail too.
double normalProbability(double x);

/// The x with normalProbability(x) = probability, to about 1e-15: infinite for 0 and 1, NaN outside of them.
double normalQuantile(double probability);

/// Half the width, in standard errors, of the interval about the mean that holds this fraction of all values: 1.96 for
/// 0.95. Throws std::invalid_argument unless it is above 0 and below 1.
double intervalFactor(double coverage);

} // namespace fenn::analysis

#endif
