#ifndef FENN_SURROGATEMODEL_KRIGING_NEARESTNEIGHBORSEARCH_H
#define FENN_SURROGATEMODEL_KRIGING_NEARESTNEIGHBORSEARCH_H

#include <vector>

#include "surrogatemodel_kriging/SourcePointRef.h"

class SurrogateModelDataBlock;

/// Exhaustive search for the unblanked points nearest to a target.
///
/// Squared distances are sums over the input variables of ((target - point) * s)^2, with one s for all of them: the
/// scale of input variable 0. Refers to the data block, which must outlive it, and reads its points and include flags
/// at each call; the two counts are those given at construction. Keeps nothing between calls: any number of threads may
/// search at once.
class NearestNeighborSearch
{
public:
    NearestNeighborSearch(const SurrogateModelDataBlock* dataBlock_, int numInputVars_, int numBlocks_);
    NearestNeighborSearch(const NearestNeighborSearch& other) = delete;
    NearestNeighborSearch& operator=(const NearestNeighborSearch& other) = delete;
    virtual ~NearestNeighborSearch();

    /// Writes the at most maxPts nearest points, nearest first, to the first entries of nearestPts, which must have
    /// room for maxPts, and returns their number; later entries are left as they were. target: raw coordinates. Among
    /// points at equal distance the one of lower block, then of lower index, is nearer. Points whose squared distance
    /// is not below the largest double are never found, nor is any for a NaN target. maxPts below 1 finds nothing.
    /// Throws std::bad_alloc.
    int findNearestPts(const std::vector<double>& target, int maxPts, std::vector<SourcePointRef>& nearestPts) const;

private:
    const SurrogateModelDataBlock* dataBlock;
    int numInputVars;
    int numBlocks;
};

#endif
