#ifndef FENN_ESTIMATION_COVARIANCEESTIMATOR_H
#define FENN_ESTIMATION_COVARIANCEESTIMATOR_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"

namespace fenn::estimation
{

class CovarianceSystem;
class DualSolution;
class ParallelRanges;

/// A global model in covariance form: one Cholesky factorisation, dual weights, n evaluations of the semivariogram per
/// target, one triangular solve more for its variance. In real numbers it is the system that the plug-in solves; how
/// far an estimate can be from that system's exact solution is proven when the model is built.
///
/// The proof covers targets in a box twice as wide as that of the samples by one bound, the same for all of them: if
/// that is at most largestBound, this engine applies. Farther away drift terms grow, the estimate and its bound with
/// them: such a target's own bound is worked out when it is asked for and enters the report. It changes no answer:
/// which engine answers depends on samples and settings alone.
class CovarianceEstimator final : public Estimator
{
public:
    /// In standard deviations of the output.
    static constexpr double largestBound = 1e-9;

    /// Null where this engine does not apply; reason then says why, in the words of a report. parts: of these settings,
    /// which use all points. numThreads: for building and for requests; 0: the cores that this process may use.
    /// Throws std::bad_alloc.
    static std::unique_ptr<CovarianceEstimator> makeWhereProven(const std::shared_ptr<const ModelParts>& parts,
                                                                const ModelSettings& settings, int numThreads,
                                                                std::string& reason);
    ~CovarianceEstimator() override;

    void estimate(const Targets& targets, const Results& results) const override;
    EngineReport getReport() const override;
    std::vector<std::vector<double>> calcDualWeights() const override;
    bool isGlobal() const override;

private:
    class Request;

    double findReciprocalCondition() const override;
    CovarianceEstimator(const std::shared_ptr<const ModelParts>& parts_, const ModelSettings& settings, int numThreads);
    void raiseBound(double targetBound) const;

    std::unique_ptr<ParallelRanges> threads;
    std::unique_ptr<CovarianceSystem> system;
    std::unique_ptr<DualSolution> solution;
    bool hasShortRange;
    std::vector<double> low; // corners of the box that the proof covers
    std::vector<double> high;
    double boundInBox = 0.0;
    mutable std::atomic<double> bound{0.0}; // of all targets so far
};

} // namespace fenn::estimation

#endif
