#include "surrogatemodel_kriging/InterpolationTask.h"

#include <utility>

#include "surrogatemodel_kriging/BatchEstimator.h"
#include "surrogatemodel_kriging/BatchInputs.h"
#include "surrogatemodel_kriging/TaskHandOver.h"

namespace
{

// A batch takes 1.2 times as long for up to eight targets as the single forms take for one (60 to 1000 points): two
// targets are faster side by side already.
constexpr int maxSingleTargets = 1;

} // namespace

bool InterpolationTask::needsBatchInputs(int numTaskTargets)
{
    return numTaskTargets > maxSingleTargets;
}

InterpolationTask::InterpolationTask(std::function<const Normalizer&(int)> normalizerOf_,
                                     const KrigingMatrix* krigingMatrix_, const std::vector<SourcePointRef>* sourcePts_,
                                     int numInputVars_, const std::vector<double*>* targetCoords_,
                                     const std::set<int>* outputVars_, int firstTarget_, int numTaskTargets_,
                                     std::vector<double*>* values_, std::vector<double*>* variances_,
                                     std::exception_ptr* failure_)
    : normalizerOf(std::move(normalizerOf_)),
      krigingMatrix(krigingMatrix_),
      sourcePts(sourcePts_),
      targetCoords(targetCoords_),
      outputVars(outputVars_),
      firstTarget(firstTarget_),
      numTaskTargets(numTaskTargets_),
      values(values_),
      variances(variances_),
      failure(failure_),
      scratch(static_cast<std::size_t>(numInputVars_))
{
}

InterpolationTask::~InterpolationTask() = default;

void InterpolationTask::setBatchInputs(const fenn::BatchInputs* batchInputs_)
{
    batchInputs = batchInputs_;
}

void InterpolationTask::setDriftProducts(double* driftProducts_)
{
    driftProducts = driftProducts_;
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
    if (!needsBatchInputs(numTaskTargets))
        evaluateSingly();
    else if (batchInputs != nullptr)
        evaluateBatches(*batchInputs);
    else
        evaluateBatches(fenn::BatchInputs(*krigingMatrix, *sourcePts, *outputVars, normalizerOf));
}

void InterpolationTask::evaluateSingly()
{
    if (numTaskTargets < 1)
        return;
    const auto dimension = static_cast<std::size_t>(krigingMatrix->getDimension());
    const bool wantsVariances = !variances->empty();
    const bool wantsCopy = wantsVariances || driftProducts != nullptr;
    std::vector<double> rhs(dimension);
    std::vector<double> rhsCopy(wantsCopy ? dimension : 0);
    std::vector<double> coords(scratch.size());
    for (int t = firstTarget; t < firstTarget + numTaskTargets; ++t)
    {
        for (std::size_t v = 0; v < coords.size(); ++v)
            coords[v] = (*targetCoords)[v][t];
        krigingMatrix->buildRightHandSide(rhs.data(), 0, coords, *sourcePts, scratch);
        rhsCopy.assign(rhs.begin(), wantsCopy ? rhs.end() : rhs.begin());
        krigingMatrix->luSolve(rhs.data());

        std::size_t k = 0;
        for (const int outputVar : *outputVars)
        {
            const double reference = normalizerOf(outputVar).getOffset();
            (*values)[k][t] = krigingMatrix->estimateCentered(outputVar, reference, *sourcePts, rhs.data());
            if (wantsVariances)
                (*variances)[k][t] = krigingMatrix->dotProduct(rhs.data(), rhsCopy.data());
            ++k;
        }
        if (driftProducts != nullptr)
            driftProducts[t] = krigingMatrix->calcDriftProduct(rhs.data(), rhsCopy.data());
    }
}

void InterpolationTask::evaluateBatches(const fenn::BatchInputs& inputs)
{
    fenn::BatchEstimator estimator(*krigingMatrix, inputs, !variances->empty(), numTaskTargets);
    estimator.setDriftProducts(driftProducts);
    estimator.evaluate(*targetCoords, firstTarget, numTaskTargets, *values, *variances);
}
