#ifndef FENN_ANALYSIS_TREND_H
#define FENN_ANALYSIS_TREND_H

#include <vector>

namespace fenn::analysis
{

/// The space that drift columns F span, for least squares without covariances. By Gram and Schmidt's method, modified:
/// lengths are all that is wanted of it, and those it finds as exactly as reflections do.
class Trend
{
public:
    /// columns: one per drift term, equally long.
    explicit Trend(std::vector<std::vector<double>> columns);

    /// ln|F^T F|: twice the sum of the logarithms of what is left of each column's length beside the columns before it.
    /// Minus infinity for columns that depend on each other exactly.
    double getLogGramDeterminant() const;

    /// What the best combination of the columns leaves of the values.
    std::vector<double> removeFrom(std::vector<double> values) const;

private:
    std::vector<std::vector<double>> directions; // of length 1, or zeros for a column without one of its own
    double logGramDeterminant = 0.0;
};

} // namespace fenn::analysis

#endif
