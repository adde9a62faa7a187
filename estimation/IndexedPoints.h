#ifndef FENN_ESTIMATION_INDEXEDPOINTS_H
#define FENN_ESTIMATION_INDEXEDPOINTS_H

#include <cstddef>
#include <vector>

#include "estimation/PointIndex.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// The points of a model with a search index. Distances are those of normalised inputs. Coordinates and outputs are
/// copied in the order of the index, which keeps near points together in memory.
///
/// Refers to the parts, which must outlive it. Immutable after construction: any number of threads may use it.
class IndexedPoints
{
public:
    explicit IndexedPoints(const ModelParts& parts_);

    /// Finds the neighbours of a target; target: raw coordinates. normalised: room for one value per input variable.
    /// Positions are those of ModelParts::getPoints().
    void find(const double* target, double* normalised, PointIndex::Neighbours& nearest) const;

    std::size_t getNumInputVars() const
    {
        return numInputVars;
    }
    std::size_t getNumOutputVars() const
    {
        return numOutputVars;
    }

    /// Of the point at a place: its raw coordinates, then its outputs.
    const double* getValues(std::size_t place) const
    {
        return values.data() + place * (numInputVars + numOutputVars);
    }

private:
    const ModelParts& parts;
    std::size_t numInputVars;
    std::size_t numOutputVars;
    PointIndex index;
    std::vector<double> values;
};

} // namespace fenn::estimation

#endif
