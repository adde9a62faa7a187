#ifndef FENN_SURROGATEMODEL_KRIGING_BATCHESTIMATOR_H
#define FENN_SURROGATEMODEL_KRIGING_BATCHESTIMATOR_H

#include <array>
#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/BatchInputs.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

namespace fenn
{

/// Answers targets against one factorised system, up to 32 at a time side by side, with the bits, the failures and the
/// order of the single forms: buildRightHandSide, luSolve, estimateCentered and dotProduct, target after target.
///
/// Two groups of targets are under way: while one is substituted back, the next is substituted forward. All memory is
/// taken at construction. Refers to what it is given, which must outlive it. One object per thread; they share the
/// inputs read-only.
class BatchEstimator
{
public:
    /// krigingMatrix_: factorised; inputs_: of that matrix. maxTargets: most targets of one call of evaluate.
    BatchEstimator(const KrigingMatrix& krigingMatrix_, const BatchInputs& inputs_, bool wantsVariances_,
                   int maxTargets);

    /// Where evaluate leaves mu^T f of target t, at t (KrigingMatrix::calcDriftProduct); null: nowhere.
    void setDriftProducts(double* driftProducts_);

    /// Targets first to first + count - 1; arrays as for KrigingControllerAbstract::interpolate, variances is not
    /// looked at unless wanted. Throws Error "Singular matrix" or "Value overflow", or what a semivariogram throws, at
    /// the target where the single forms would; the targets before it have their values.
    void evaluate(const std::vector<double*>& targetCoords, int first, int count, const std::vector<double*>& values,
                  const std::vector<double*>& variances);

    BatchEstimator(const BatchEstimator& other) = delete;
    BatchEstimator& operator=(const BatchEstimator& other) = delete;

private:
    using Arrays = std::vector<double*>;

    struct Group
    {
        int firstTarget = 0;
        int numTargets = 0;
        bool needsSingleSolve = false;
        kernels::StripGroup rightHandSides;
        kernels::StripGroup solutions; // the permuted right-hand sides to begin with
    };

    void layOutGroups(int maxTargets);
    void fill(Group& group, const Arrays& targetCoords);
    void fillSingly(Group& group, const Arrays& targetCoords);
    void permute(Group& group);
    void complete(Group& group, const Group& next, const Arrays& values, const Arrays& variances);
    void write(const Group& group, const Arrays& values, const Arrays& variances);
    void solveSingly(const Group& group, const Arrays& values, const Arrays& variances);

    const KrigingMatrix& krigingMatrix;
    const BatchInputs& inputs;
    const std::size_t dimension;
    const bool wantsVariances;
    const bool hasTinyDiagonal;
    double* driftProducts = nullptr;
    std::array<Group, 2> groups;
    std::vector<double> stripStore;
    std::vector<double> lanes;  // eight targets' coordinates, variable by variable
    std::vector<double> target; // one target's
    std::vector<double> column; // one right-hand side, then its solution
    std::vector<double> scratch;
    std::vector<double> sums;
    std::array<double, kernels::maxGroupStrips * kernels::stripWidth> productSums;
};

} // namespace fenn

#endif
