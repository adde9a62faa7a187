#ifndef FENN_ESTIMATION_ESTIMATOR_H
#define FENN_ESTIMATION_ESTIMATOR_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// Where estimates are asked for: coordinate v of target t is coords[v][t], raw units. Refers, does not own.
struct Targets
{
    std::vector<const double*> coords; // one array per input variable
    std::size_t count = 0;
};

/// Where results go; the caller owns the arrays, each with room for one value per target.
struct Results
{
    std::vector<double*> estimates; // one array per output variable of the samples, raw units
    double* variances = nullptr;    // null: not wanted; Kriging variance for a sill of 1, the same for every output
    // null: not wanted; mu^T f, the drift's share of the variance for a sill of 1 (see KrigingMatrix)
    double* driftProducts = nullptr;
};

/// Which engine answers and how far off it can be, for the caller's report.
struct EngineReport
{
    std::string engine;   // "exact", "covariance form" or "local"
    std::string sentence; // which engine answers, why, and how far its answers can be off
    double bound = 0.0;   // of |estimate - exact one| over all targets so far, proven, in sample standard deviations
    bool isExact = true;  // the plug-in's own bits
};

/// A model that answers targets: one interface, several engines behind it.
///
/// An estimator answers any number of requests; what it answers depends on samples, settings and target alone, never
/// on how targets are divided into requests, on the number of threads or on what is wanted beside the estimates. It
/// refers to the samples that it was made from, which must outlive it. Requests of several threads must not overlap.
class Estimator
{
public:
    Estimator(const Estimator& other) = delete;
    Estimator& operator=(const Estimator& other) = delete;
    virtual ~Estimator();

    /// Estimates every output variable at finite targets, on this estimator's threads; a single target is answered on
    /// the calling thread. Throws the library's Error "Singular matrix" or "Value overflow", and std::bad_alloc; what
    /// was written before the failure is undefined then.
    virtual void estimate(const Targets& targets, const Results& results) const = 0;

    virtual EngineReport getReport() const = 0;

    // Of a global model's one system K over all points, see SystemInverse; a local model has none.

    /// Per output variable the dual weights, one per point of ModelParts::getPoints: the points' part of K^-1 (z, 0)
    /// for the outputs z, in covariance form, so that z^T weights is the generalised sum of squares that the drift
    /// leaves. Empty for a local model. Throws Error as estimate.
    virtual std::vector<std::vector<double>> calcDualWeights() const = 0;

    /// Estimate of 1 / (|K| |K^-1|) in the form that was factorised: relative errors of solutions are about 1e-16 over
    /// it. 0 where they mean nothing, NaN for a local model. Costs n^2 semivariogram values and some solves, once.
    double calcReciprocalCondition() const;

    /// Whether every estimate uses all points.
    virtual bool isGlobal() const = 0;

    /// Normalizers, limits, points after merging and semivariogram. Lives as long as the estimator.
    const ModelParts& getParts() const;

    /// For another engine over the same points.
    const std::shared_ptr<const ModelParts>& shareParts() const;

protected:
    explicit Estimator(std::shared_ptr<const ModelParts> parts_);

private:
    virtual double findReciprocalCondition() const = 0;

    std::shared_ptr<const ModelParts> parts;
    mutable std::optional<double> reciprocalCondition; // once it is known
};

} // namespace fenn::estimation

#endif
