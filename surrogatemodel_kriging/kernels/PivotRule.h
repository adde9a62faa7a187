#ifndef FENN_KERNELS_PIVOT_RULE_H
#define FENN_KERNELS_PIVOT_RULE_H

#include "surrogatemodel_kriging/MagnitudeGuards.h"

/// How the factorisation chooses a pivot: the definition, on plain numbers. PivotRule-inl.h holds the same for vectors.
///
/// The scaled magnitude of a row in column j is scale(i) |a(i,j)|, scale(i) being the reciprocal of the greatest
/// magnitude in row i of the matrix as it was given. Rows are looked at in the order of the row table, from row j on.
namespace fenn::kernels
{

/// What the first row is compared with. Where no row is as good as that, row j stays.
constexpr double leastScaledMagnitude = 0.0;

/// Whether a row takes the place of the best one before it.
inline bool isBetterPivot(double scaledMagnitude, double best)
{
    // DELIBERATE: >= lets the last of equally good rows win, and a row of scaled magnitude 0 replace an earlier one of
    // 0. A NaN is never >= and never wins. The pivot order relies on it, and with it the last bits of every result.
    // Test: FactoriseLuTest.TheLastOfEquallyGoodRowsBecomesThePivot
    return scaledMagnitude >= best;
}

/// Whether a pivot is replaced by leastPivot.
inline bool isTinyPivot(double pivot)
{
    return pivot > -effectivelyZero && pivot < effectivelyZero;
}

// DELIBERATE: a tiny negative pivot becomes positive too. A singular system goes on instead of failing.
// Test: FactoriseLuTest.ATinyNegativePivotBecomesPositive
constexpr double leastPivot = effectivelyZero;

} // namespace fenn::kernels

#endif
