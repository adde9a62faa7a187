#ifndef FENN_ESTIMATION_INVERSENORM_H
#define FENN_ESTIMATION_INVERSENORM_H

#include <cstddef>
#include <vector>

#include "estimation/StripStore.h"

namespace fenn::estimation
{

/// Estimates the 1-norm of the inverse of a symmetric matrix from three solves of a few columns each, which may be
/// solved together with others: writes columns, reads their solutions, three times. Never above the norm but for
/// rounding, and hardly ever below a third of it.
///
/// The first columns are an alternating one and such of equal magnitudes with scattered signs, then come the signs of
/// what they gave, then the unit vectors that promise most.
///
/// Source: N. J. Higham and F. Tisseur, "A block algorithm for matrix 1-norm estimation", SIAM Journal on Matrix
/// Analysis and Applications 21 (2000), with a fixed number of steps; N. J. Higham, Accuracy and Stability of Numerical
/// Algorithms (SIAM, 2002), chapter 15.
class InverseNorm
{
public:
    static constexpr int numSolves = 3;

    /// The inverse is that of S^-1 K S^-1, K being solved with. scales: the diagonal S, one entry per row; a row whose
    /// scale is 0 does not count.
    InverseNorm(std::vector<double> scales_, std::size_t numColumns_);

    /// Fills columns first to first + numColumns - 1 of the store, all rows.
    void writeColumns(const StripStore& store, std::size_t first) const;

    void readSolutions(const StripStore& store, std::size_t first);

    /// After numSolves solves; infinite or NaN where a solution was.
    double getEstimate() const;

private:
    double startValue(std::size_t column, std::size_t i) const;
    void keepSigns(const StripStore& store, std::size_t first);
    void chooseUnitVectors(const StripStore& store, std::size_t first);
    void raiseEstimate(const StripStore& store, std::size_t first);

    const std::vector<double> scales;
    const std::size_t numColumns;
    std::size_t numRows = 0; // that count
    int numDone = 0;
    std::vector<signed char> signs;       // of each column's solution
    std::vector<std::size_t> unitVectors; // one per column
    double estimate = 0.0;
};

} // namespace fenn::estimation

#endif
