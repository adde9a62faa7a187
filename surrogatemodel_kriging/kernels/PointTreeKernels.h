#ifndef FENN_KERNELS_POINT_TREE_KERNELS_H
#define FENN_KERNELS_POINT_TREE_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace fenn::kernels
{

/// A balanced search tree over points, as plain arrays; see PointIndex for how it is made.
///
/// Points stand leaf after leaf, every leaf but the last one full: the point at a place p is number p % leafSize of
/// leaf p / leafSize, and its coordinate v is coordinates[(leaf * numVars + v) * leafSize + number]. What is left of
/// the last leaf holds infinities.
///
/// The node over leaves first to end - 1, at least two, is nodes[middle]: it parts leaves first to middle - 1 from the
/// others, where middle = first + (end - first) / 2. A node of one place, where all points coincide, is not divided
/// further: its points stand in the order of their positions.
struct PointTree
{
    struct Node
    {
        double lowerEnd;   // no coordinate of the leaves before the middle is greater
        double upperBegin; // none of the others is smaller
        std::uint32_t variable;
        bool isOnePlace; // then nothing else is read
    };

    static constexpr std::size_t leafSize = 16;
    static constexpr std::size_t mostLevels = 64;

    const double* coordinates;      // aligned to 64 bytes, finite
    const Node* nodes;              // as many as there are leaves
    const std::uint32_t* positions; // of the point at each place: decides between equal distances
    std::size_t numVars;            // at least 1
    std::size_t numPts;             // at least 1
};

/// Number of doubles that findNearestInTree wants as workspace, which starts on a line of the cache.
std::size_t treeSearchWorkspaceSize(std::size_t numVars, std::size_t maxPts);

/// Writes squared distances and places of the at most maxPts nearest points of a finite target (numVars coordinates),
/// maxPts at least 1, and returns their number. The squared distance is the sum over the variables v, ascending, of
/// (target[v] - coordinate v)^2, every operation rounded once. Nearer is the lower distance and, at equal distance, the
/// lower position; nearest first. Points at infinity or at the largest number are not found. A look at every point is
/// the definition: PointIndexTest holds the search against it on every instruction set.
std::size_t findNearestInTree(const PointTree& tree, const double* target, std::size_t maxPts, double* distances,
                              std::uint32_t* places, double* workspace);

} // namespace fenn::kernels

#endif
