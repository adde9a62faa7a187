#ifndef FENN_SURROGATEMODEL_KRIGING_KERNELS_SCALARDISTANCEKERNELS_H
#define FENN_SURROGATEMODEL_KRIGING_KERNELS_SCALARDISTANCEKERNELS_H

#include <cstddef>
#include <cstdint>

/// The definitions of the operations in DistanceKernels.h as plain loops, which the vector forms are compared with.
namespace fenn::kernels::scalar
{

void groupMinima(const float* const* coords, std::size_t numVars, std::size_t count, const float* target,
                 std::size_t groupSize, float* minima, float* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups);
void groupMinima(const double* const* coords, std::size_t numVars, std::size_t count, const double* target,
                 std::size_t groupSize, double* minima, double* folded, std::size_t firstGroup,
                 std::size_t numFoldedGroups);

std::size_t collectPtsWithin(const float* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const float* target, float threshold, std::size_t groupSize, const float* minima,
                             float* distances, std::uint32_t* positions, std::size_t& numHits, std::size_t limit);
std::size_t collectPtsWithin(const double* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                             const double* target, double threshold, std::size_t groupSize, const double* minima,
                             double* distances, std::uint64_t* positions, std::size_t& numHits, std::size_t limit);

float boundOfNearest(const float* distances, std::size_t count, std::size_t numNearest);
double boundOfNearest(const double* distances, std::size_t count, std::size_t numNearest);

} // namespace fenn::kernels::scalar

#endif
