#ifndef FENN_ESTIMATION_COVARIANCESYSTEM_H
#define FENN_ESTIMATION_COVARIANCESYSTEM_H

#include <cstddef>
#include <string>
#include <vector>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"
#include "surrogatemodel_kriging/kernels/CovarianceKernels.h"

namespace fenn
{
class ModelParts;
} // namespace fenn

namespace fenn::estimation
{

class ParallelRanges;

/// The universal Kriging system K of all points of a model in covariance form, sill 1, and its factorisation:
///
///     | C    F | | w |   | z |      C_ij = 1 - gamma(x_j - x_i),  C_ii = 1
///     | F^T  0 | | b | = | 0 |      F: drift terms as KrigingMatrix has them, the constant last
///
/// Subtracting the Kriging system of semivariances from that of the sill turns one into the other; see docs/method.md.
/// K = L D L^T with D = 1 for the points and -1 for the drift terms: Cholesky's method for C, then for F^T C^-1 F.
///
/// Points stand in an order of their own, neighbours together. Rows: the points, filled up to whole tiles, then from
/// getFirstDriftRow on the drift terms, filled up to whole strips; where nothing belongs, right-hand sides hold zeros.
///
/// Refers to the parts, which must outlive it. Any number of threads may call what is const at once.
class CovarianceSystem
{
public:
    CovarianceSystem(const ModelParts& parts_, int driftOrder_);
    CovarianceSystem(const CovarianceSystem& other) = delete;
    CovarianceSystem& operator=(const CovarianceSystem& other) = delete;

    /// What keeps the covariance form from being tried at all, in the words of a report; empty where nothing does.
    std::string findObstacle() const;

    /// Assembles and factorises. Returns false where C or F^T C^-1 F is not positive definite to working precision; the
    /// factors' memory is then free again. Throws std::bad_alloc.
    bool factorise(ParallelRanges& threads);

    std::size_t getNumPoints() const;
    std::size_t getNumDriftTerms() const; // the constant counts
    std::size_t getNumRows() const;
    std::size_t getFirstDriftRow() const;
    const std::vector<SourcePointRef>& getPoints() const; // in the order of the rows
    const std::vector<std::size_t>& getPositions() const; // of these points in ModelParts::getPoints

    const std::vector<double>& getScales() const; // of the input variables
    kernels::SphericalModel getModel() const;
    kernels::BoxedPoints getBoxedPoints() const;

    // Targets come eight at a time: raw coordinate v of target t at targets[8 * v + t].

    /// The coordinates of eight points from the given one on; behind the last point it is repeated.
    void gatherPoints(std::size_t first, double* targets) const;

    /// lines[8 * k + t] = drift term k of target t. scratch: eight doubles per input variable.
    void writeDriftTerms(const double* targets, double* lines, double* scratch) const;

    /// The right-hand side (c, f) of eight targets, all rows of a strip.
    void writeRightHandSides(const double* targets, double* strip, double* scratch) const;

    /// One per row: 1 for points, those of driftScales, one per drift term, and 0 where nothing belongs.
    std::vector<double> getRowScales(const std::vector<double>& driftScales) const;

    /// The largest column sum of magnitudes of S^-1 K S^-1 with 1 for points and driftScales in the diagonal S. Costs
    /// n^2 covariances.
    double calcNorm(const std::vector<double>& driftScales) const;

    // After factorise, in place:

    /// L X = B: (L^-1 c, R^-1 (f - F^T C^-1 c)) of a right-hand side (c, f). firstRow: the first of a tile; rows above
    /// it are zeros and are neither read nor written.
    void substitute(const kernels::StripGroup& group, std::size_t firstRow = 0) const;

    /// What is left of K X = B in the rows of the drift terms once substitute has been applied, up to the sign: entries
    /// of a strip from getFirstDriftRow on, R^-1 g, become R^-T R^-1 g. For a target's right-hand side these are its
    /// Lagrange multipliers mu as the semivariogram form has them.
    void substituteDriftBack(double* driftRows) const;

    /// K X = B.
    void solve(const kernels::StripGroup& group) const;

    /// Natural logarithm of the magnitude of K's determinant.
    double calcLogDeterminant() const;

    /// The Euclidean norm of row i of L.
    double calcRowNorm(std::size_t i) const;

    /// Least square of a diagonal element of C's factor: the variance of a point given those before it.
    double calcSmallestPivot() const;

private:
    void assembleTile(std::size_t tile);
    void assembleStrip(std::size_t firstRow, double* strip, std::size_t numColumns);
    void assembleBorder();

    const ModelParts& parts;
    const int driftOrder;
    std::vector<double> scales;
    kernels::SphericalModel model; // refers to the scales
    std::vector<std::size_t> positions;
    std::vector<SourcePointRef> points;
    std::vector<std::vector<double>> coordinates; // one column per input variable
    std::vector<std::vector<double>> low;         // of each box
    std::vector<std::vector<double>> high;
    std::vector<const double*> coordinatePointers;
    std::vector<const double*> lowPointers;
    std::vector<const double*> highPointers;
    std::size_t numDriftTerms;
    kernels::PackedTriangle triangle;
    ElementStore cells;
    ElementStore workspace; // reciprocals of the diagonal first
};

} // namespace fenn::estimation

#endif
