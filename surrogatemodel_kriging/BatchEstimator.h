#ifndef FENN_SURROGATEMODEL_KRIGING_BATCHESTIMATOR_H
#define FENN_SURROGATEMODEL_KRIGING_BATCHESTIMATOR_H

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

/// Answers targets against one factorised system, up to 32 at a time side by side, with the bits, the failures and the
/// order of the single forms: buildRightHandSide, luSolve, estimateCentered and dotProduct, target after target.
///
/// Two groups of targets are under way: while one is substituted back, the next is substituted forward. Coordinates and
/// outputs of the source points are gathered at construction, and all memory is taken there: one object serves one
/// request. Refers to what it is given, which must outlive it. One object per thread; they share the rest read-only.
class BatchEstimator
{
public:
    /// krigingMatrix_: factorised, over sourcePts. normalizerOf: gives each output's centring offset. maxTargets: most
    /// targets of one call of evaluate.
    BatchEstimator(const KrigingMatrix& krigingMatrix_, const std::vector<SourcePointRef>& sourcePts,
                   const std::set<int>& outputVars, const std::function<const Normalizer&(int)>& normalizerOf,
                   bool wantsVariances_, int maxTargets);

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
        fenn::kernels::StripGroup rightHandSides;
        fenn::kernels::StripGroup solutions; // the permuted right-hand sides to begin with
    };

    void layOutGroups(int maxTargets);
    void fill(Group& group, const Arrays& targetCoords);
    void fillSingly(Group& group, const Arrays& targetCoords);
    void permute(Group& group);
    void complete(Group& group, const Group& next, const Arrays& values, const Arrays& variances);
    void write(const Group& group, const Arrays& values, const Arrays& variances);
    void solveSingly(const Group& group, const Arrays& values, const Arrays& variances);

    const KrigingMatrix& krigingMatrix;
    const std::size_t dimension;
    const bool wantsVariances;
    const bool hasTinyDiagonal;
    fenn::PointColumns points;
    std::vector<int> rowOrder;

    // Per output: the centring offset or 0, and the points' values less that offset.
    std::vector<double> references;
    std::unique_ptr<bool[]> isCentred;
    std::vector<double> outputStore;
    std::vector<const double*> outputs;

    std::array<Group, 2> groups;
    std::vector<double> stripStore;
    std::vector<double> lanes;  // eight targets' coordinates, variable by variable
    std::vector<double> target; // one target's
    std::vector<double> column; // one right-hand side, then its solution
    std::vector<double> scratch;
    std::vector<double> sums;
    std::array<double, fenn::kernels::maxGroupStrips * fenn::kernels::stripWidth> varianceSums;
};

#endif
