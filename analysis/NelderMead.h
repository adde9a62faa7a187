#ifndef FENN_ANALYSIS_NELDERMEAD_H
#define FENN_ANALYSIS_NELDERMEAD_H

#include <cstddef>
#include <functional>
#include <vector>

namespace fenn::analysis
{

/// Minimises a function of one or more variables without derivatives by the simplex method and returns the best point
/// met. The first simplex is start and, per variable, start with that variable moved by its step. The function may
/// return infinity, for a failure, but not NaN. Stops after maxEvaluations calls, or when no coordinate of the simplex
/// spans more than tolerance times its step. No random choices.
///
/// Source: J. A. Nelder and R. Mead, "A simplex method for function minimization", Computer Journal 7 (1965), with the
/// usual coefficients: reflection 1, expansion 2, contraction and shrinking 1/2.
std::vector<double> minimise(const std::function<double(const std::vector<double>&)>& function,
                             const std::vector<double>& start, const std::vector<double>& steps,
                             std::size_t maxEvaluations, double tolerance);

} // namespace fenn::analysis

#endif
