#ifndef FENN_ESTIMATION_LOCALESTIMATOR_H
#define FENN_ESTIMATION_LOCALESTIMATOR_H

#include <memory>
#include <vector>

#include "estimation/Estimator.h"
#include "estimation/IndexedPoints.h"

namespace fenn::estimation
{

class LocalSystems;
class ParallelRanges;

/// Answers each target from its neighbours, on several threads. The system over the neighbours is solved to the
/// plug-in's bits. What differs from the plug-in's local model is the choice of neighbours: here by distances of
/// normalised inputs, there with every input scaled as the first one.
class LocalEstimator final : public Estimator
{
public:
    /// numNeighbours_: points per target, at least 1 and below the number of points. numThreads: 0 for the cores that
    /// this process may use. Throws the library's Error about too few neighbours, and std::bad_alloc.
    LocalEstimator(std::shared_ptr<const ModelParts> parts_, int driftOrder_, int numNeighbours_, int numThreads);
    ~LocalEstimator() override;

    void estimate(const Targets& targets, const Results& results) const override;
    EngineReport getReport() const override;
    std::vector<std::vector<double>> calcDualWeights() const override;
    bool isGlobal() const override;

    /// Leave-one-out: estimates points first to first + count - 1 of ModelParts::getPoints(), each at its own place
    /// from its nearest others. Entry i of the results is that of point i. Throws as estimate.
    void estimateWithoutEach(std::size_t first, std::size_t count, const Results& results) const;

private:
    double findReciprocalCondition() const override;
    LocalSystems& systemsOf(std::size_t slot) const;

    int driftOrder;
    int numNeighbours;
    IndexedPoints points;
    std::unique_ptr<ParallelRanges> ranges;
    mutable std::vector<std::unique_ptr<LocalSystems>> systems; // of each slot, made when it is first used
};

} // namespace fenn::estimation

#endif
