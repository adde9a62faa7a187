#ifndef FENN_SURROGATEMODEL_KRIGING_INTERPOLATIONTASK_H
#define FENN_SURROGATEMODEL_KRIGING_INTERPOLATIONTASK_H

#include <exception>
#include <functional>
#include <set>
#include <vector>

#include <QRunnable>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "surrogatemodel_kriging/TaskTicket.h"

namespace fenn
{
struct BatchInputs;
}

/// One contiguous range of a request's targets, evaluated against a factorised system on one thread: a pool's, or,
/// where the pool has none, the request's own.
///
/// Refers to everything it is given, which must outlive it; owns its function object and its scratch only. Tasks of one
/// request write to different targets and share the rest read-only. A pool that is given a task deletes it after
/// running it.
class InterpolationTask : public QRunnable
{
public:
    /// krigingMatrix_: factorised, over sourcePts_. values_, variances_: as for KrigingControllerAbstract::interpolate.
    /// failure_: where run leaves an exception of whatever type; null lets it out of run.
    InterpolationTask(std::function<const Normalizer&(int)> normalizerOf_, const KrigingMatrix* krigingMatrix_,
                      const std::vector<SourcePointRef>* sourcePts_, int numInputVars_,
                      const std::vector<double*>* targetCoords_, const std::set<int>* outputVars_, int firstTarget_,
                      int numTaskTargets_, std::vector<double*>* values_, std::vector<double*>* variances_,
                      std::exception_ptr* failure_ = nullptr);
    ~InterpolationTask() override;

    /// Whether a task of so many targets evaluates batches; the others need nothing that is gathered.
    static bool needsBatchInputs(int numTaskTargets);

    /// What the tasks of a request share. A task that needs it and is not given it, or null, gathers for itself.
    void setBatchInputs(const fenn::BatchInputs* batchInputs_);

    /// Where mu^T f of each target of the request goes (KrigingMatrix::calcDriftProduct); null: not wanted.
    void setDriftProducts(double* driftProducts_);

    /// For a task of a guarded pool: it runs only where the ticket lets it.
    void setTicket(fenn::TaskTicket ticket_);

    /// Evaluates the targets in ascending order, up to the first whose solve fails; those before it have their values.
    /// Without targets nothing is read.
    void run() override;

private:
    void evaluateTargets();
    void evaluateTargetsKeepingFailure();
    void evaluateSingly();
    void evaluateBatches(const fenn::BatchInputs& inputs);

    std::function<const Normalizer&(int)> normalizerOf;
    const KrigingMatrix* krigingMatrix;
    const std::vector<SourcePointRef>* sourcePts;
    const std::vector<double*>* targetCoords;
    const std::set<int>* outputVars;
    int firstTarget;
    int numTaskTargets;
    std::vector<double*>* values;
    std::vector<double*>* variances;
    std::exception_ptr* failure;
    std::vector<double> scratch; // coordinate differences
    const fenn::BatchInputs* batchInputs = nullptr;
    double* driftProducts = nullptr;
    fenn::TaskTicket ticket;
};

#endif
