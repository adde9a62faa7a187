#ifndef FENN_SURROGATEMODEL_KRIGING_SEMIVARIOGRAMINTERFACE_H
#define FENN_SURROGATEMODEL_KRIGING_SEMIVARIOGRAMINTERFACE_H

#include <cstddef>
#include <vector>

namespace fenn
{

/// Points for a bulk evaluation. Coordinate v of point i is coordinates[v][i], raw units. Refers, does not own.
struct PointArrays
{
    const double* const* coordinates = nullptr; // one array per input variable
    int numInputVars = 0;
    std::size_t numPts = 0;
};

} // namespace fenn

/// A semivariogram model: the expected dissimilarity of two outputs, half their mean squared difference, as a function
/// of the points' separation, with sill 1. Models are immutable after construction: any number of threads may evaluate.
class SemivariogramInterface
{
public:
    SemivariogramInterface() = default;
    SemivariogramInterface(const SemivariogramInterface& other) = delete;
    SemivariogramInterface& operator=(const SemivariogramInterface& other) = delete;

    /// separation: raw coordinate differences, one per input variable.
    virtual double evaluate(const std::vector<double>& separation) const = 0;

    virtual ~SemivariogramInterface();

    /// values[s * stride + t] = evaluate(source s - target t) for every source s and target t; stride is at least the
    /// number of targets; entries between one row of targets and the next are left alone. This default calls evaluate
    /// once for each pair, source by source; an override gives the same bits.
    virtual void evaluatePairs(const fenn::PointArrays& sources, const fenn::PointArrays& targets, double* values,
                               std::size_t stride) const;

    /// Whether no evaluation throws, std::bad_alloc aside. Then several targets are worked on at a time; else one
    /// after the other, so that those before the one that throws are complete. The default is false.
    virtual bool neverThrows() const;
};

#endif
