#ifndef FENN_ESTIMATION_BORDEREDSYSTEM_H
#define FENN_ESTIMATION_BORDEREDSYSTEM_H

#include <vector>

class KrigingMatrix;

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

// What a system in semivariogram form, factorised as the plug-in does, tells of itself. Any number of threads may ask.

/// Whether the factorisation met a pivot that was zero to it and put 1e-150 in its place: rows, as those of coincident
/// points without a nugget, are the same then, and solutions mean nothing.
bool hasReplacedPivot(const KrigingMatrix& system);

/// Natural logarithm of the magnitude of the determinant: the sum of those of the factors' diagonal.
double calcLogDeterminant(const KrigingMatrix& system);

/// Estimate of 1 / (|K| |K^-1|), the norms being largest column sums of magnitudes: relative errors of solutions are
/// about 1e-16 over it. 0 where a pivot was replaced or a solve fails. parts: those that the system was assembled from.
/// See InverseNorm; costs n^2 semivariogram values and a dozen solves.
double calcReciprocalCondition(const KrigingMatrix& system, const ModelParts& parts);

/// The points' part of K^-1 (values, 0). Throws Error as Matrix::luSolve.
std::vector<double> solveForPoints(const KrigingMatrix& system, const std::vector<double>& values);

} // namespace fenn::estimation

#endif
