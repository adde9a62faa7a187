#ifndef FENN_ESTIMATION_DUALSOLUTION_H
#define FENN_ESTIMATION_DUALSOLUTION_H

#include <cstddef>
#include <vector>

#include "estimation/CovarianceSystem.h"
#include "estimation/StripStore.h"

namespace fenn
{
class ModelParts;
} // namespace fenn

namespace fenn::estimation
{

class ParallelRanges;

/// Dual weights w and drift coefficients b of every output of a factorised system, K (w, b) = (z, 0), with which an
/// estimate is f(x_0)^T b + sum of w_j c_j(x_0), and a proof of how far such an estimate can be from the exact one.
///
/// Outputs are centred on the middle of their values: the constant among the drift terms makes that the same estimate.
/// After the first solve each solution is corrected, from residuals in twice the precision, until the proof holds for
/// the estimates that it is asked for, at most three times.
///
/// What is proven, and how, stands in docs/method.md, "How far the covariance form can be off"; it relies on an
/// estimate of the norm of K^-1 (InverseNorm).
class DualSolution
{
public:
    /// system: factorised; it and the parts are not needed after construction. The bound is to reach tolerance where
    /// drift terms have at most the given magnitudes, one entry per drift term. Throws std::bad_alloc.
    DualSolution(const CovarianceSystem& system, const ModelParts& parts, ParallelRanges& threads,
                 const std::vector<double>& driftMagnitudes, double tolerance);

    /// Estimate of the norm of S K^-1 S, with 1 for points and getDriftScales in the diagonal S. See InverseNorm.
    double getInverseNorm() const;
    const std::vector<double>& getDriftScales() const;

    /// Of the points in the system's order.
    kernels::PointWeights getWeights() const;

    const double* getCoefficients(std::size_t output) const;

    /// What is added to the estimate of an output at last.
    double getReference(std::size_t output) const;

    /// Bound on |estimate - exact one| of any output at a target of these drift terms (magnitudes), in standard
    /// deviations of the output, the last rounding of an estimate left aside. Infinite or NaN where nothing is proven.
    double calcBound(const double* driftTerms) const;

private:
    struct Output
    {
        double reference = 0.0;
        double standardDeviation = 0.0;
        double sumWeights = 0.0;     // of magnitudes
        double solutionNorm = 0.0;   // 1-norm of (w, S b); see driftScales
        double correctionNorm = 0.0; // of the last correction
    };

    class Refinement;

    double calcBound(std::size_t output, const double* driftTerms) const;

    std::size_t numPoints;
    std::size_t numDriftTerms;
    std::vector<double> driftScales; // S: norm of each drift term's row of the factor
    std::vector<Output> outputs;
    std::vector<double> weights;      // output by output
    std::vector<double> coefficients; // likewise
    double inverseNorm = 0.0;
    double relativeError = 0.0; // of a correction: rho
};

} // namespace fenn::estimation

#endif
