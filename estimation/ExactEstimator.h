#ifndef FENN_ESTIMATION_EXACTESTIMATOR_H
#define FENN_ESTIMATION_EXACTESTIMATOR_H

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"

class AllPtsKrigingController;
class NPtsKrigingController;

namespace fenn::estimation
{

/// Answers by the plug-in's own controllers. Estimates have the bits that a KrigingSurrogateModel of the same samples
/// and settings gives to a host. Kriging variances, which a host cannot ask for, come with them.
class ExactEstimator final : public Estimator
{
public:
    /// parts: of these settings. numThreads: for building a global model and answering its requests; 0 leaves it to the
    /// plug-in. reason: why this engine was chosen, for the report; may be empty. Throws as the constructor of
    /// KrigingSurrogateModel.
    ExactEstimator(std::shared_ptr<const ModelParts> parts_, const ModelSettings& settings, int numThreads,
                   const std::string& reason);
    ~ExactEstimator() override;

    void estimate(const Targets& targets, const Results& results) const override;
    EngineReport getReport() const override;
    std::vector<std::vector<double>> calcDualWeights() const override;
    bool isGlobal() const override;

private:
    class CallingThread;

    double findReciprocalCondition() const override;
    std::set<int> outputVars; // all of them
    // One of them:
    std::unique_ptr<AllPtsKrigingController> global;
    std::unique_ptr<NPtsKrigingController> local;
    std::unique_ptr<CallingThread> callingThread; // null for a local model, which uses no pool
    EngineReport report;
};

} // namespace fenn::estimation

#endif
