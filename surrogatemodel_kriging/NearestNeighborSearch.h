#ifndef FENN_SURROGATEMODEL_KRIGING_NEARESTNEIGHBORSEARCH_H
#define FENN_SURROGATEMODEL_KRIGING_NEARESTNEIGHBORSEARCH_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "surrogatemodel_kriging/NearestCandidates.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

class SurrogateModelDataBlock;

/// Exhaustive search for the unblanked points nearest to a target.
///
/// Squared distances are sums over the input variables of ((target - point) * s)^2, with one s for all of them: the
/// scale of input variable 0. Refers to the data block, which must outlive it, and reads its arrays at each call.
/// Stateless between calls: any number of threads may search at once, each with buffers of its own.
class NearestNeighborSearch
{
public:
    /// A point and its squared distance.
    struct Candidate
    {
        double distance;
        int block;
        int point;

        bool operator<(const Candidate& other) const
        {
            if (distance != other.distance)
                return distance < other.distance;
            return block != other.block ? block < other.block : point < other.point;
        }
    };

    /// What a search works in; reused from target to target, one allocates nothing.
    struct Buffers
    {
        explicit Buffers(int maxPts);

        fenn::NearestCandidates<double> candidates;
        std::vector<Candidate> ranked;
    };

    NearestNeighborSearch(const SurrogateModelDataBlock* dataBlock_, int numInputVars_, int numBlocks_);
    NearestNeighborSearch(const NearestNeighborSearch& other) = delete;
    NearestNeighborSearch& operator=(const NearestNeighborSearch& other) = delete;
    virtual ~NearestNeighborSearch();

    /// Writes the at most maxPts nearest points, nearest first, to the first entries of nearestPts, which must have
    /// room for maxPts, and returns their number; later entries are left as they were. target: raw coordinates. Among
    /// points at equal distance the one of lower block, then of lower index, is nearer. Points whose squared distance
    /// is not finite, and all points for a NaN target, are never found. maxPts below 1 finds nothing.
    int findNearestPts(const std::vector<double>& target, int maxPts, std::vector<SourcePointRef>& nearestPts) const;

    /// The same in buffers made for maxPts, which must be at least 1.
    int findNearestPts(const std::vector<double>& target, int maxPts, std::vector<SourcePointRef>& nearestPts,
                       Buffers& buffers) const;

    /// Finishes a search whose candidates, distances not yet set, stand in buffers.ranked in any order.
    int rankNearest(const std::vector<double>& target, int maxPts, std::vector<SourcePointRef>& nearestPts,
                    Buffers& buffers) const;

    /// The scale of all differences, and whether it is far enough from the ends of the range of numbers for distances
    /// without it to tell which points can be near.
    double getScale() const;
    static bool isOrdinaryScale(double scale);

private:
    bool collectCandidates(const std::vector<double>& target, int maxPts,
                           fenn::NearestCandidates<double>& candidates) const;
    void rankEveryPoint(const std::vector<double>& target, std::size_t maxPts, std::vector<Candidate>& ranked) const;
    double squaredDistance(const std::vector<double>& target, int block, int point, double scale) const;
    std::int64_t totalNumPts() const;

    const SurrogateModelDataBlock* dataBlock;
    int numInputVars;
    int numBlocks;
};

#endif
