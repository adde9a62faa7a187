#ifndef FENN_TESTS_ACCURACY_HIGHPRECISIONSYSTEM_H
#define FENN_TESTS_ACCURACY_HIGHPRECISIONSYSTEM_H

#include <cstddef>
#include <vector>

#include "tests/accuracy/HighPrecision.h"
#include "tests/support/NaiveLinearSystem.h"

namespace fenn::test
{

HighRows toHighPrecision(const NaiveLinearSystem::Rows& rows);
HighVector toHighPrecision(const std::vector<double>& values);

/// The largest sum of magnitudes of a column.
HighPrecision oneNorm(const HighRows& rows);
HighPrecision oneNorm(const HighVector& values);

/// A system of doubles, solved in MPFR arithmetic by elimination with partial pivoting.
class HighPrecisionSystem
{
public:
    explicit HighPrecisionSystem(const NaiveLinearSystem::Rows& rows);

    /// Whether a pivot was zero, or no more than what rounding leaves of a zero.
    bool isSingular() const
    {
        return singular;
    }

    /// Only of a system that is not singular.
    HighVector solve(HighVector b) const;

    /// norm(A) norm(A^-1) in the 1-norm; infinite for a singular system. Calculates the whole inverse.
    double calcCondition() const;

private:
    void factorise();

    HighRows factors;
    std::vector<std::size_t> pivots;
    HighPrecision norm;
    bool singular = false;
};

} // namespace fenn::test

#endif
