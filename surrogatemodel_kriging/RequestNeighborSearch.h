#ifndef FENN_SURROGATEMODEL_KRIGING_REQUESTNEIGHBORSEARCH_H
#define FENN_SURROGATEMODEL_KRIGING_REQUESTNEIGHBORSEARCH_H

#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/NearestCandidates.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

class SurrogateModelDataBlock;

namespace fenn
{

/// The nearest-neighbour search of one request: finds what NearestNeighborSearch finds, entry for entry.
///
/// A request of many targets pays for a copy of the coordinates in single precision, read at construction: one float
/// per point and input variable, moved to the middle of the samples and scaled to at most 1. It only tells which points
/// can be near (see NearestCandidates); those are compared by the distances that count, over the samples themselves.
/// Every target still looks at every point. Where the copy cannot serve (few targets, samples or targets far out), and
/// for points that it cannot tell apart, the search over the samples does the work.
///
/// Refers to the data block and the search. Its points must not change while it lives. One thread at a time.
class RequestNeighborSearch
{
public:
    /// numNearest: at least 1.
    RequestNeighborSearch(const SurrogateModelDataBlock& dataBlock_, const NearestNeighborSearch& search_,
                          int numNearest_, int numTargets);

    /// As NearestNeighborSearch::findNearestPts for numNearest points.
    int findNearestPts(const std::vector<double>& target, std::vector<SourcePointRef>& nearestPts);

private:
    template <typename Visit>
    void forEachArray(Visit visit) const;
    void gather();
    bool collectCandidates(const std::vector<double>& target);

    const SurrogateModelDataBlock* dataBlock;
    const NearestNeighborSearch* search;
    int numNearest;
    NearestNeighborSearch::Buffers buffers;

    bool isGathered = false;
    NearestCandidates<float> candidates;
    std::vector<std::size_t> blockStarts; // where each block begins among all points
    std::size_t numPts = 0;
    std::vector<double> origin;
    double unit = 1.0;                        // a power of two
    std::vector<std::vector<float>> gathered; // per input variable; NaN for a point that is never found
    std::vector<const float*> coords;
    std::vector<float> floatTarget;
};

} // namespace fenn

#endif
