#ifndef FENN_ESTIMATION_COVARIANCEINVERSE_H
#define FENN_ESTIMATION_COVARIANCEINVERSE_H

#include <cstddef>
#include <memory>
#include <vector>

#include "estimation/CovarianceSystem.h"
#include "estimation/SystemInverse.h"

namespace fenn::estimation
{

/// From Cholesky's factorisation of the covariance form, L D L^T. Between points the inverses of the two forms differ
/// by their sign: on vectors that the drift terms annihilate, Gamma acts as -C, for the sill is one of them. With
/// columns v_i = L^-1 e_i,
///
///     (K^-1)_ij = -v_i^T D v_j
///
/// that is n^3 / 3 operations for all columns, whose entries above their point's row are zero, and n per element.
class CovarianceInverse final : public SystemInverse
{
public:
    /// Null where the matrix is not positive definite, or so nearly singular that elements of the inverse could lose
    /// the digits that cross-validation shows. Throws std::bad_alloc.
    static std::unique_ptr<CovarianceInverse> makeWhereAccurate(const ModelParts& parts, int driftOrder,
                                                                int numThreads);

    std::vector<double> solve(const std::vector<double>& values) const override;
    std::vector<std::vector<double>> calcDriftRows() const override;
    double calcLogDeterminant() const override;
    double calcReciprocalCondition() const override;
    bool isWellConditioned() const override;

private:
    CovarianceInverse(const ModelParts& parts, int driftOrder, int numThreads);

    void calcDiagonalPart(std::size_t first, std::size_t end, double* diagonal, double* driftProducts) const override;
    void calcBlock(const std::vector<std::size_t>& points, Matrix& block) const override;
    void writeDriftProducts(const kernels::StripGroup& group, std::size_t firstRow, std::size_t end,
                            double* driftProducts) const;

    CovarianceSystem system;
    std::vector<std::size_t> rowOfPoint;
};

} // namespace fenn::estimation

#endif
