#include "surrogatemodel_kriging/InterpolationTask.h"

#include <utility>

#include "surrogatemodel_kriging/BatchEstimator.h"
#include "surrogatemodel_kriging/BatchInputs.h"
#include "surrogatemodel_kriging/TaskHandOver.h"

InterpolationTask::InterpolationTask(std::function<const Normalizer&(int)> normalizerOf_,
                                     const KrigingMatrix* krigingMatrix_, const std::vector<SourcePointRef>* sourcePts_,
                                     int, const std::vector<double*>* targetCoords_, const std::set<int>* outputVars_,
                                     int firstTarget_, int numTaskTargets_, std::vector<double*>* values_,
                                     std::vector<double*>* variances_, std::exception_ptr* failure_)
    : normalizerOf(std::move(normalizerOf_)),
      krigingMatrix(krigingMatrix_),
      sourcePts(sourcePts_),
      targetCoords(targetCoords_),
      outputVars(outputVars_),
      firstTarget(firstTarget_),
      numTaskTargets(numTaskTargets_),
      values(values_),
      variances(variances_),
      failure(failure_)
{
}

InterpolationTask::~InterpolationTask() = default;

void InterpolationTask::setBatchInputs(const fenn::BatchInputs* batchInputs_)
{
    batchInputs = batchInputs_;
}

void InterpolationTask::setTicket(fenn::TaskTicket ticket_)
{
    ticket = std::move(ticket_);
}

void InterpolationTask::run()
{
    fenn::TaskHandOver::take();
    if (!ticket.begin())
        return;
    if (failure == nullptr)
        evaluateTargets();
    else
        evaluateTargetsKeepingFailure();
    fenn::TaskHandOver::give();
    ticket.end();
}

void InterpolationTask::evaluateTargetsKeepingFailure()
{
    // The edge of a pool thread: an exception that left it would end the host's process.
    try
    {
        evaluateTargets();
    }
    catch (...)
    {
        *failure = std::current_exception();
    }
}

void InterpolationTask::evaluateTargets()
{
    if (numTaskTargets < 1)
        return;
    if (batchInputs != nullptr)
        evaluateBatches(*batchInputs);
    else
        evaluateBatches(fenn::BatchInputs(*krigingMatrix, *sourcePts, *outputVars, normalizerOf));
}

void InterpolationTask::evaluateBatches(const fenn::BatchInputs& inputs)
{
    fenn::BatchEstimator estimator(*krigingMatrix, inputs, !variances->empty(), numTaskTargets);
    estimator.evaluate(*targetCoords, firstTarget, numTaskTargets, *values, *variances);
}
