#include "surrogatemodel_kriging/AllPtsKrigingController.h"

#include <exception>
#include <functional>

#include "surrogatemodel_kriging/InterpolationTask.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "surrogatemodel_kriging/TargetRanges.h"
#include "surrogatemodel_kriging/WorkerPool.h"

AllPtsKrigingController::AllPtsKrigingController(const SurrogateModelDataBlock* dataBlock_,
                                                 SemivariogramInterface* semivariogram, int driftOrder, int maxThreads)
    : KrigingControllerAbstract(dataBlock_),
      krigingMatrix(*dataBlock_, dataBlock_->getTotalNumUnblankedPoints(), semivariogram, driftOrder),
      workers(std::make_unique<fenn::WorkerPool>(maxThreads))
{
    dataBlock->getAllUnblankedPts(sourcePts);
    std::vector<double> scratch(static_cast<std::size_t>(dataBlock->getNumInputVars()));
    krigingMatrix.assemble(sourcePts, scratch);
    const int numPieces = workers->getMaxThreads();
    krigingMatrix.luDecompose(numPieces,
                              [&](const std::function<void()>& piece) { workers->runBesideCaller(numPieces, piece); });
}

AllPtsKrigingController::~AllPtsKrigingController() = default;

const KrigingMatrix& AllPtsKrigingController::getSystem() const
{
    return krigingMatrix;
}

void AllPtsKrigingController::interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars,
                                          int numTargets, std::vector<double*>& values, std::vector<double*>& variances)
{
    const std::vector<fenn::TargetRange> ranges = fenn::splitTargets(numTargets, workers->getMaxThreads());
    // One place per range, filled by the task's thread and read after all tasks are done: requests of several threads
    // at once keep their failures apart.
    std::vector<std::exception_ptr> failures(ranges.size());
    workers->run(static_cast<int>(ranges.size()),
                 [&](int r)
                 {
                     const auto k = static_cast<std::size_t>(r);
                     InterpolationTask task(
                         [this](int outputVar) -> const Normalizer& { return getOutputNormalizer(outputVar); },
                         &krigingMatrix, &sourcePts, dataBlock->getNumInputVars(), &targetCoords, &outputVars,
                         ranges[k].first, ranges[k].count, &values, &variances, &failures[k]);
                     task.run();
                 });
    for (const std::exception_ptr& failure : failures)
    {
        if (failure)
            std::rethrow_exception(failure);
    }
}
