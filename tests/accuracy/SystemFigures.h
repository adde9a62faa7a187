#ifndef FENN_TESTS_ACCURACY_SYSTEMFIGURES_H
#define FENN_TESTS_ACCURACY_SYSTEMFIGURES_H

#include <cstddef>
#include <string>
#include <vector>

#include "surrogatemodel_kriging/Matrix.h"
#include "tests/accuracy/HardSystems.h"
#include "tests/accuracy/HighPrecision.h"
#include "tests/support/NaiveLinearSystem.h"

namespace fenn::test
{

/// The unit of the ratios: LAPACK's dlamch('Epsilon'), half the distance from 1 to the next double.
constexpr double relativeMachineEpsilon = 0x1p-53;

/// Where LAPACK's own tests draw the line for both ratios.
constexpr double ratioThreshold = 30.0;

/// LAPACK's dget01 in the 1-norm: norm(L U - P A) / (n norm(A) eps), for the matrix as it was before the factorisation.
double calcFactorRatio(const NaiveLinearSystem::Rows& original, const Matrix& factorised);

/// LAPACK's dget02 in the 1-norm: norm(b - A x) / (norm(A) norm(x) eps), for one right-hand side.
double calcSolveRatio(const NaiveLinearSystem::Rows& original, const std::vector<double>& b,
                      const std::vector<double>& x);

/// What the library made of one hard system. Where the factorisation throws, nothing else is measured.
struct SystemFigures
{
    int dimension = 0;
    std::string failure;        // the text of the factorisation's Error
    double condition = 0.0;     // in the 1-norm; infinite for an exactly singular system
    double factorRatio = 0.0;   // of LAPACK's dget01
    double solveRatio = 0.0;    // of LAPACK's dget02, the worst of all targets
    double estimateError = 0.0; // the worst against the MPFR solution, over the largest output; 0 without one
    double weightError = 0.0;   // norm(x - exact x) / (condition norm(exact x) eps), likewise
    std::size_t numOverflows = 0;
    std::size_t numNotANumber = 0;

    bool isSingularToWorkingPrecision() const
    {
        return !failure.empty() || condition > 1.0 / relativeMachineEpsilon;
    }
};

/// Assembles, factorises and solves with the library and measures in MPFR arithmetic.
SystemFigures measure(const HardSystem& system);

} // namespace fenn::test

#endif
