#ifndef FENN_ESTIMATION_CLOSESTPAIR_H
#define FENN_ESTIMATION_CLOSESTPAIR_H

#include <cstddef>
#include <vector>

namespace fenn::estimation
{

/// Two points and their distance; of pairs equally far apart the one with the lowest first, then lowest second number.
struct ClosestPair
{
    std::size_t first = 0; // below second
    std::size_t second = 0;
    double distance = 0.0; // infinite for fewer than two points
};

/// columns: one per input variable, equally long, finite. Distance: the root of the sum of ((a - b) * scale)^2, one
/// scale per variable. Sorts, then looks at neighbours along one variable only as far as the best pair so far reaches:
/// n log n operations and some more for points that are not far denser in one place than in others.
ClosestPair findClosestPair(const std::vector<std::vector<double>>& columns, const std::vector<double>& scales);

/// Number of points at exactly the place of one with a lower number.
std::size_t countRepeats(const std::vector<std::vector<double>>& columns);

} // namespace fenn::estimation

#endif
