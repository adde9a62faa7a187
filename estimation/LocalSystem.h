#ifndef FENN_ESTIMATION_LOCALSYSTEM_H
#define FENN_ESTIMATION_LOCALSYSTEM_H

#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// Estimates points of a model from their nearest others, each by a small system of its own, to the bits that the
/// plug-in's local model of the others would give.
///
/// Refers to the parts, which must outlive it. One thread at a time.
class LocalSystem
{
public:
    /// Throws the library's Error about too few neighbours, and std::bad_alloc.
    LocalSystem(const ModelParts& parts_, int driftOrder, int numNeighbours_);

    /// Solves for the place of point p of ModelParts::getPoints over its nearest others; false, and nothing to ask for,
    /// where fewer than numNeighbours can be found. Throws the library's Error "Singular matrix" and "Value overflow".
    bool solveWithout(std::size_t p);

    /// Of the point solved for last: the estimate of an output, and the Kriging variance for a sill of 1.
    double estimate(std::size_t outputVar) const;
    double getVariance() const;

private:
    const ModelParts& parts;
    int numNeighbours;
    KrigingMatrix system;
    NearestNeighborSearch search;
    std::vector<SourcePointRef> neighbours;
    std::vector<double> coords;
    std::vector<double> rightHandSide;
    std::vector<double> solution;
    std::vector<double> scratch;
};

} // namespace fenn::estimation

#endif
