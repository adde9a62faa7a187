#include "surrogatemodel_kriging/AllPtsKrigingController.h"

#include <exception>
#include <functional>
#include <optional>
#include <utility>

#include <QThreadPool>

#include "surrogatemodel_kriging/BatchInputs.h"
#include "surrogatemodel_kriging/InterpolationTask.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "surrogatemodel_kriging/TargetRanges.h"

AllPtsKrigingController::AllPtsKrigingController(const SurrogateModelDataBlock* dataBlock_,
                                                 SemivariogramInterface* semivariogram, int driftOrder, int maxThreads)
    : KrigingControllerAbstract(dataBlock_),
      krigingMatrix(*dataBlock_, dataBlock_->getTotalNumUnblankedPoints(), semivariogram, driftOrder),
      threadPool(fenn::makeThreadPool(maxThreads)),
      poolGuard(threadPool)
{
    dataBlock->getAllUnblankedPts(sourcePts);
    std::vector<double> scratch(static_cast<std::size_t>(dataBlock->getNumInputVars()));
    krigingMatrix.assemble(sourcePts, scratch);
    const int numPieces = threadPool->maxThreadCount();
    krigingMatrix.luDecompose(numPieces, [&](const std::function<void()>& piece)
                              { poolGuard.runBesideCaller(numPieces - 1, piece); });
}

AllPtsKrigingController::~AllPtsKrigingController() = default;

const KrigingMatrix& AllPtsKrigingController::getSystem() const
{
    return krigingMatrix;
}

void AllPtsKrigingController::interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars,
                                          int numTargets, std::vector<double*>& values, std::vector<double*>& variances)
{
    interpolateWithDrift(targetCoords, outputVars, numTargets, values, variances, nullptr);
}

void AllPtsKrigingController::interpolateWithDrift(const std::vector<double*>& targetCoords,
                                                   const std::set<int>& outputVars, int numTargets,
                                                   std::vector<double*>& values, std::vector<double*>& variances,
                                                   double* driftProducts)
{
    const auto normalizerOf = [this](int outputVar) -> const Normalizer&
    {
        return getOutputNormalizer(outputVar);
    };
    const std::vector<fenn::TargetRange> ranges = fenn::splitTargets(numTargets, threadPool->maxThreadCount());
    std::optional<fenn::BatchInputs> batchInputs;
    if (InterpolationTask::needsBatchInputs(ranges.back().count)) // the longest
        batchInputs.emplace(krigingMatrix, sourcePts, outputVars, normalizerOf);

    // One place per range, filled by the task's thread and read after all tasks are done: requests of several threads
    // at once keep their failures apart.
    std::vector<std::exception_ptr> failures(ranges.size());
    const auto taskOf = [&](int r)
    {
        const auto k = static_cast<std::size_t>(r);
        return InterpolationTask(normalizerOf, &krigingMatrix, &sourcePts, dataBlock->getNumInputVars(), &targetCoords,
                                 &outputVars, ranges[k].first, ranges[k].count, &values, &variances, &failures[k]);
    };
    const fenn::BatchInputs* const shared = batchInputs ? &*batchInputs : nullptr;
    const auto makeTask = [&taskOf, shared, driftProducts](int r, fenn::TaskTicket ticket)
    {
        std::unique_ptr<InterpolationTask> task(new InterpolationTask(taskOf(r)));
        task->setBatchInputs(shared);
        task->setDriftProducts(driftProducts);
        task->setTicket(std::move(ticket));
        return task;
    };
    const auto runHere = [&taskOf, shared, driftProducts](int r)
    {
        InterpolationTask task = taskOf(r);
        task.setBatchInputs(shared);
        task.setDriftProducts(driftProducts);
        task.run();
    };
    poolGuard.run(static_cast<int>(ranges.size()), makeTask, runHere);
    for (const std::exception_ptr& failure : failures)
    {
        if (failure)
            std::rethrow_exception(failure);
    }
}
