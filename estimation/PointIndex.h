#ifndef FENN_ESTIMATION_POINTINDEX_H
#define FENN_ESTIMATION_POINTINDEX_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/PointTreeKernels.h"

namespace fenn::estimation
{

/// Finds the points nearest to a target by a search tree: the same points, in the same order, as an exhaustive search.
///
/// Squared distances are sums over the variables, ascending, of (target - point)^2, every operation rounded once: those
/// of NearestNeighborSearch with a scale of 1. Nearer is the lower distance and, at equal distance, the lower position.
/// A point whose squared distance is not finite is never found, nor is any for a target that is not finite. The tree
/// only rules points out: distances decide.
///
/// Copies the coordinates. Immutable after construction: any number of threads may search, each with neighbours of its
/// own.
class PointIndex
{
public:
    struct Neighbour
    {
        double distance;        // squared
        std::uint32_t position; // in the arrays that the index was made from
        std::uint32_t place;    // in the order of the index

        bool operator<(const Neighbour& other) const
        {
            return distance != other.distance ? distance < other.distance : position < other.position;
        }
    };

    /// What a search found, at most maxPts points, nearest first, and its workspace. Reuse it: further searches in as
    /// many variables allocate nothing.
    class Neighbours
    {
    public:
        explicit Neighbours(std::size_t maxPts_);

        std::size_t size() const
        {
            return numFound;
        }
        const Neighbour& operator[](std::size_t i) const
        {
            return found[i];
        }

    private:
        friend class PointIndex;

        void makeRoom(std::size_t numCoords);

        std::size_t maxPts;
        std::size_t numFound = 0;
        std::vector<Neighbour> found;
        std::vector<double> distances;
        std::vector<std::uint32_t> places;
        std::size_t workspaceSize = 0;
        ElementStore workspace;
    };

    /// coords: one array per variable, each of numPts values, at most 2^32 - 1. Throws std::bad_alloc.
    PointIndex(const std::vector<const double*>& coords, std::size_t numPts);

    /// target: one coordinate per variable.
    void find(const double* target, Neighbours& nearest) const;

    /// Entry k: the position of the point at place k. Near points stand near to each other in this order: data that is
    /// read for all neighbours of a target is best stored in it.
    const std::vector<std::uint32_t>& getOrder() const;

private:
    struct Key;
    using Coords = std::vector<const double*>;

    void divide(const Coords& coords, std::size_t firstLeaf, std::size_t endLeaf, std::vector<Key>& keys);
    void fillLeaves(const Coords& coords);
    double getCoordinate(std::size_t v, std::size_t place) const;
    void searchTree(const double* target, Neighbours& nearest) const;
    void lookAtEveryPoint(const double* target, Neighbours& nearest) const;

    std::size_t numVars;
    std::vector<std::uint32_t> order;
    ElementStore leaves; // coordinates as PointTree has them
    std::vector<kernels::PointTree::Node> nodes;
    bool isSearchable = false; // no sum of squares can overflow unless the target is too far away
};

} // namespace fenn::estimation

#endif
