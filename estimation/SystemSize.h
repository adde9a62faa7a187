#ifndef FENN_ESTIMATION_SYSTEMSIZE_H
#define FENN_ESTIMATION_SYSTEMSIZE_H

#include <cstddef>

namespace fenn::estimation
{

/// Number of monomials of a polynomial drift of this degree, without the constant.
int countDriftTerms(int driftOrder, std::size_t numInputVars);

/// Throws the library's Error as the constructor of KrigingMatrix for so many points, which would make room for them.
void checkPointsSuffice(std::size_t numPoints, std::size_t numInputVars, int driftOrder);

/// Bytes that one exact system over this many points takes, its workspace included: a square of doubles over the
/// points, the drift terms and one constraint, and the copies that the factorisation makes.
double calcSystemBytes(std::size_t numPoints, std::size_t numInputVars, int driftOrder);

/// Bytes that the covariance form of a model over this many points takes: one triangle of doubles over the points and
/// the drift terms, which is factorised in place.
double calcCovarianceBytes(std::size_t numPoints, std::size_t numInputVars, int driftOrder);

/// Bytes that folds left out of the covariance form's inverse take beside it, on so many threads: the columns and the
/// block of a fold each (SystemInverse::calcBlocks).
double calcFoldBytes(std::size_t numPoints, std::size_t numInputVars, int driftOrder, std::size_t numFolds,
                     std::size_t numThreads);

} // namespace fenn::estimation

#endif
