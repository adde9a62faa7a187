#ifndef FENN_SURROGATEMODEL_KRIGING_KERNELS_DISTANCEKERNELS_H
#define FENN_SURROGATEMODEL_KRIGING_KERNELS_DISTANCEKERNELS_H

#include <cstddef>

/// The scan for the points nearest to a target. Squared distance q(p) of point p: the sum over the variables v,
/// ascending, of ((target[v] - coords[v][p]) * scale)^2, every operation rounded once; 0 without variables.
namespace fenn::kernels
{

/// The points of one block and the target. Refers, does not own.
struct TargetAndPoints
{
    const double* target;
    double scale;
    std::size_t numVars;
    const double* const* coords; // coordinate v of point p is coords[v][p]
    std::size_t numPts;
};

constexpr std::size_t distanceGroup = 128;
constexpr std::size_t minimaPerGroup = 16;

/// The smallest distances in groups of points. Point p belongs to group p / groupSize, where groupSize is a multiple of
/// distanceGroup and the last group may be short.
struct GroupMinima
{
    std::size_t groupSize;
    double* ofGroups; // minimaPerGroup of each group of the block
    // A summary of all blocks, a few values for boundOfNearest: entry f holds the smaller ones of several groups.
    double* folded; // minimaPerGroup of each entry
    std::size_t numFolded;
    std::size_t firstFolded; // the entry of the block's first group; the next groups belong to the next ones, in turn
};

/// A point and its distance.
struct Candidate
{
    double distance;
    int block;
    int point;
};

/// Candidates in an array of limit + groupSize + 1 entries, of which those from count on may be overwritten.
struct CandidateList
{
    Candidate* candidates;
    std::size_t count;
    std::size_t limit;
};

/// Minimum j of a group is the smallest q of its points whose index is j modulo minimaPerGroup, NaN passed over;
/// infinity where there is none. Entries of folded are lowered to the minima of their groups.
void groupMinima(const TargetAndPoints& points, const GroupMinima& minima);

/// Appends the points p >= first with q(p) <= threshold: group by group, in a group by index modulo minimaPerGroup,
/// then ascending. Only points whose minimum is within the threshold are looked at. Ends when the count exceeds the
/// limit after a group, and returns the point after the last group, or numPts. first is a multiple of groupSize.
std::size_t collectPtsWithin(const TargetAndPoints& points, const GroupMinima& minima, double threshold,
                             std::size_t first, int block, CandidateList& list);

/// A value b not exceeded by at least numNearest distances, and by at most numNearest/8 more except for ties; by
/// bisection of bit patterns. 1 <= numNearest <= count; distances are neither negative nor NaN.
double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest);

} // namespace fenn::kernels

#endif
