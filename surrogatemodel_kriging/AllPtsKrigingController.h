#ifndef FENN_SURROGATEMODEL_KRIGING_ALLPTSKRIGINGCONTROLLER_H
#define FENN_SURROGATEMODEL_KRIGING_ALLPTSKRIGINGCONTROLLER_H

#include <memory>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/PoolGuard.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

class QThreadPool;
class SemivariogramInterface;

/// Global Kriging: one system over all unblanked points, factorised at construction; the targets of a request are
/// divided into contiguous ranges that a pool of this controller's own evaluates in parallel.
///
/// Where the system refuses the pool its threads, the calling thread does their work: to the same bits and failures,
/// and without waiting for them for more than a moment; see PoolGuard.
///
/// Refers to the data block and the semivariogram, which must outlive it. Several threads may run requests at once.
class AllPtsKrigingController : public KrigingControllerAbstract
{
public:
    /// maxThreads: limit of the pool; 0 leaves it at the pool's default, the number of processors.
    /// Throws as the constructor of KrigingMatrix and Matrix::luDecompose, and std::bad_alloc.
    AllPtsKrigingController(const SurrogateModelDataBlock* dataBlock_, SemivariogramInterface* semivariogram,
                            int driftOrder, int maxThreads = 0);
    ~AllPtsKrigingController() override;

    /// Returns, or throws, when every range has been dealt with. Of several failing ranges the one with the lowest
    /// first target decides what is thrown; targets before a range's failing one have their values. Running out of
    /// memory is such a failure, std::bad_alloc; while tasks are started, it leaves the ranges not yet started
    /// unwritten.
    void interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars, int numTargets,
                     std::vector<double*>& values, std::vector<double*>& variances) override;

    /// The same, and mu^T f of each target (KrigingMatrix::calcDriftProduct) to an array of its own; null: not wanted.
    /// No bit of values and variances depends on it.
    void interpolateWithDrift(const std::vector<double*>& targetCoords, const std::set<int>& outputVars, int numTargets,
                              std::vector<double*>& values, std::vector<double*>& variances, double* driftProducts);

    /// The factorised system over all unblanked points: entry i of getAllUnblankedPts owns row i.
    const KrigingMatrix& getSystem() const;

private:
    KrigingMatrix krigingMatrix;           // factorised, read-only after construction
    std::vector<SourcePointRef> sourcePts; // entry i owns row i of the system
    std::unique_ptr<QThreadPool> threadPool;
    fenn::PoolGuard poolGuard; // of that pool
};

#endif
