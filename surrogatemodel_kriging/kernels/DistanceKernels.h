#ifndef FENN_SURROGATEMODEL_KRIGING_KERNELS_DISTANCEKERNELS_H
#define FENN_SURROGATEMODEL_KRIGING_KERNELS_DISTANCEKERNELS_H

#include <cstddef>
#include <cstdint>

/// Unscaled squared distances q(p) of points p from a target: the sum over the variables v, ascending, of
/// (target[v] - coords[v][p])^2, every operation rounded once; 0 without variables. Points are taken in groups of
/// groupSize, a multiple of distanceGroup: point p belongs to group p / groupSize, and the last group may be short.
namespace fenn::kernels
{

constexpr std::size_t distanceGroup = 128;
constexpr std::size_t minimaPerGroup = 16;

/// minima[(firstGroup + g) * minimaPerGroup + j] is the smallest q of the points of group g whose index is j modulo
/// minimaPerGroup, NaN passed over; infinity where there is none. folded: numFoldedGroups times minimaPerGroup values
/// that are lowered to the smallest minima of the groups firstGroup + g with the same remainder by numFoldedGroups.
void groupMinima(const float* const* coords, std::size_t numVars, std::size_t count, const float* target,
                 std::size_t groupSize, float* minima, float* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups);
void groupMinima(const double* const* coords, std::size_t numVars, std::size_t count, const double* target,
                 std::size_t groupSize, double* minima, double* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups);

/// Appends q(p) and p, for the points p >= first with q(p) <= threshold, to distances and positions from entry numHits
/// on and raises numHits: group by group, in a group by index modulo minimaPerGroup, then ascending. Only columns whose
/// minimum (groups numbered from 0) is within the threshold are looked at. Ends when numHits exceeds limit after a
/// group, and returns the point after the last group looked at, or count.
///
/// first is a multiple of groupSize; distances and positions have room for limit + groupSize + 1 entries, and those
/// after numHits may be overwritten.
std::size_t collectPtsWithin(const float* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const float* target, float threshold, std::size_t groupSize, const float* minima,
                             float* distances, std::uint32_t* positions, std::size_t& numHits, std::size_t limit);
std::size_t collectPtsWithin(const double* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const double* target, double threshold, std::size_t groupSize, const double* minima,
                             double* distances, std::uint64_t* positions, std::size_t& numHits, std::size_t limit);

/// One of the distances, or a value between two of them, that at least numNearest of them do not exceed and hardly
/// more: at most numNearest / 8 more, unless several equal the last one. Found by halving the interval of bit patterns
/// between the smallest and the largest. 1 <= numNearest <= count; distances are neither negative nor NaN.
float boundOfNearest(const float* distances, std::size_t count, std::size_t numNearest);
double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest);

} // namespace fenn::kernels

#endif
