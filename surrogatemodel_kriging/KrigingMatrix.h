#ifndef FENN_SURROGATEMODEL_KRIGING_KRIGINGMATRIX_H
#define FENN_SURROGATEMODEL_KRIGING_KRIGINGMATRIX_H

#include <vector>

#include "surrogatemodel_kriging/Matrix.h"
#include "surrogatemodel_kriging/PointColumns.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

class SemivariogramInterface;
class SurrogateModelDataBlock;

/// Number of monomials of total degree 1 to min(driftOrder, 4) in d variables; 0 for an order of 0 or less. The
/// constant is not counted: the unbiasedness row supplies it. Limited to the largest int.
int numDriftTerms(int driftOrder, int d);

/// The universal Kriging system of n source points in semivariogram form, with m drift terms f and one constraint that
/// keeps the estimate unbiased:
///
///     | Gamma  F  1 | |lambda|   | gamma(x_j - x_0) |
///     | F^T    0  0 | |  mu  | = | f(x_0)           |        Gamma_ij = gamma(x_j - x_i), 0 on the diagonal
///     | 1^T    0  0 | |  mu' |   | 1                |
///
/// lambda are the weights, mu the Lagrange multipliers. Drift terms are monomials of the normalised coordinates u, each
/// once, nested and not ordered by degree: for two variables and order 3 u0, u0^2, u0^3, u1, u1 u0, u1 u0^2, u1^2,
/// u1^2 u0, u1^3.
///
/// Source: G. Matheron, "Le krigeage universel" (1969); N. Cressie, Statistics for Spatial Data (Wiley, 1993), section
/// 3.4.
///
/// Refers to the data block and the semivariogram, which must outlive it, and reads coordinates and outputs through the
/// data block each time. Everything const only reads: any number of threads may call it at once with buffers of their
/// own. Point lists hold n entries with valid indices; nothing checks that.
class KrigingMatrix : public Matrix
{
public:
    /// Room for the system of numPts_ points; elements stay unset until assemble.
    /// Throws Error "Not enough source points for kriging." unless numPts_ exceeds the number of input variables, then
    /// "Not enough source points to calculate drift." when there are fewer points than drift terms.
    KrigingMatrix(const SurrogateModelDataBlock& block, int numPts_, const SemivariogramInterface* semivariogram_,
                  int driftOrder_);
    ~KrigingMatrix() override;

    /// Number of source points, n.
    int getNumPts() const;

    /// Fills every element for the first n points. scratch: at least one entry per input variable, overwritten.
    /// Allocates nothing.
    void assemble(const std::vector<SourcePointRef>& points, std::vector<double>& scratch);

    /// Writes entries first to dimension - 1 of the right-hand side of a target (raw coordinates) to the same entries
    /// of out: semivariogram values of source minus target, drift terms of the target, 1. scratch as for assemble.
    void buildRightHandSide(double* out, int first, const std::vector<double>& target,
                            const std::vector<SourcePointRef>& points, std::vector<double>& scratch) const;

    // The same over points whose coordinates were gathered first: several times faster when a list of points has many
    // right-hand sides. What is gathered does not follow later changes of the host's arrays.

    /// The coordinates that the last assemble gathered.
    const fenn::PointColumns& getAssembledPts() const;

    void gatherCoordinates(const std::vector<SourcePointRef>& points, fenn::PointColumns& columns) const;

    /// Outputs of the first n points, less the reference where estimateCentered would centre on it.
    void gatherOutputs(int outputVar, double reference, const std::vector<SourcePointRef>& points,
                       double* outputs) const;

    static bool isCentred(double reference);

    /// A whole right-hand side. target: one raw coordinate per input variable. Allocates nothing.
    void buildRightHandSide(double* out, const double* target, const fenn::PointColumns& points,
                            std::vector<double>& scratch) const;

    /// The right-hand sides of eight targets side by side, entry j of target t in strip[8 * j + t]. Coordinate v of
    /// target t is targets[8 * v + t]. scratch: at least eight entries per input variable.
    void buildRightHandSides(double* strip, const double* targets, const fenn::PointColumns& points,
                             std::vector<double>& scratch) const;

    /// Whether buildRightHandSides may be used at all: the semivariogram never throws. Another is asked target by
    /// target, so that the targets before the one that it throws at are complete.
    bool evaluatesInBulk() const;

    /// Sum over the points of weights[j] times output outputVar of point j, ascending, starting with the first product.
    double estimate(int outputVar, const std::vector<SourcePointRef>& points, const double* weights) const;

    /// The estimate of an output with a large common offset, reference (raw units): beyond sqrt(2^23) in magnitude
    /// (outputs - reference) are summed and the reference is added last. Weights sum to 1, so this is the same estimate
    /// with less cancellation. A NaN reference takes the plain sum.
    double estimateCentered(int outputVar, double reference, const std::vector<SourcePointRef>& points,
                            const double* weights) const;

    /// mu^T f, the drift's share of a target's variance: the sum over the rows of the drift and the constraint,
    /// ascending, of a solution times the right-hand side that it solves, starting with the first product.
    double calcDriftProduct(const double* solution, const double* rightHandSide) const;

    /// Writes the empirical (Matheron) semivariogram of one output over the unblanked points, grouped by lag, beside
    /// the model's values times the sample variance: "distance empirical modelled count" a line, after two header
    /// lines. Only pairs within one block are formed, once for every block of the data block, and self-pairs count.
    /// Returns false when the file cannot be opened. For small data sets: keeps one record per pair.
    bool writeSemivariogramDump(const char* path, int outputVar) const;

private:
    void assembleRow(int i, std::vector<double>& scratch);
    /// Copies rows begin to end - 1, right of the diagonal, to the columns of the same numbers.
    void copyAcrossDiagonal(int begin, int end);
    void copySquareAcross(int i, int j);
    void writeConstraints(double* out, const double* target, std::vector<double>& scratch) const;
    double outputValue(int outputVar, const SourcePointRef& point) const;

    const SurrogateModelDataBlock* dataBlock;
    int numPts;
    const SemivariogramInterface* semivariogram;
    int driftOrder;
    int numInputVars;
    fenn::PointColumns assembledPts;
    std::vector<double> pointCoordinates; // of the point whose row is assembled
};

#endif
