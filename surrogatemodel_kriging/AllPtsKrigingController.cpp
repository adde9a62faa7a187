#include "surrogatemodel_kriging/AllPtsKrigingController.h"

#include <exception>
#include <functional>

#include <QThreadPool>

#include "surrogatemodel_kriging/InterpolationTask.h"
#include "surrogatemodel_kriging/SideBySideRun.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "surrogatemodel_kriging/TargetRanges.h"
#include "surrogatemodel_kriging/TaskHandOver.h"

AllPtsKrigingController::AllPtsKrigingController(const SurrogateModelDataBlock* dataBlock_,
                                                 SemivariogramInterface* semivariogram, int driftOrder, int maxThreads)
    : KrigingControllerAbstract(dataBlock_),
      krigingMatrix(*dataBlock_, dataBlock_->getTotalNumUnblankedPoints(), semivariogram, driftOrder),
      threadPool(std::make_unique<QThreadPool>())
{
    if (maxThreads > 0)
        threadPool->setMaxThreadCount(maxThreads);
    dataBlock->getAllUnblankedPts(sourcePts);
    std::vector<double> scratch(static_cast<std::size_t>(dataBlock->getNumInputVars()));
    krigingMatrix.assemble(sourcePts, scratch);
    const int numPieces = threadPool->maxThreadCount();
    krigingMatrix.luDecompose(numPieces, [&](const std::function<void()>& piece)
                              { fenn::runSideBySide(*threadPool, numPieces, piece); });
}

AllPtsKrigingController::~AllPtsKrigingController() = default;

void AllPtsKrigingController::interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars,
                                          int numTargets, std::vector<double*>& values, std::vector<double*>& variances)
{
    const std::vector<fenn::TargetRange> ranges = fenn::splitTargets(numTargets, threadPool->maxThreadCount());
    // One place per range, filled by the task's thread and read after all tasks are done: requests of several threads
    // at once keep their failures apart.
    std::vector<std::exception_ptr> failures(ranges.size());
    std::exception_ptr startFailure;
    try
    {
        for (std::size_t r = 0; r < ranges.size(); ++r)
        {
            auto task = std::make_unique<InterpolationTask>(
                [this](int outputVar) -> const Normalizer& { return getOutputNormalizer(outputVar); }, &krigingMatrix,
                &sourcePts, dataBlock->getNumInputVars(), &targetCoords, &outputVars, ranges[r].first, ranges[r].count,
                &values, &variances, &failures[r]);
            fenn::TaskHandOver::give();
            threadPool->start(task.get(), 0);
            static_cast<void>(task.release()); // the pool's, and perhaps already deleted
        }
    }
    catch (...)
    {
        startFailure = std::current_exception();
    }
    threadPool->waitForDone(-1);
    fenn::TaskHandOver::take();

    if (startFailure)
        std::rethrow_exception(startFailure);
    for (const std::exception_ptr& failure : failures)
    {
        if (failure)
            std::rethrow_exception(failure);
    }
}
