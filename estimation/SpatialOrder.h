#ifndef FENN_ESTIMATION_SPATIALORDER_H
#define FENN_ESTIMATION_SPATIALORDER_H

#include <cstddef>
#include <vector>

namespace fenn::estimation
{

/// An order of points in which near ones stand together: each run of boxSize indices (the last may be shorter) covers a
/// small box. Made by bisection: the points are split at the median of their widest variable, rounded to whole boxes,
/// then each half likewise. Indices in a box ascend. A pure function of the values.
///
/// columns: one per variable, equally long, finite. scales: one factor per variable.
std::vector<std::size_t> orderInSpace(const std::vector<std::vector<double>>& columns,
                                      const std::vector<double>& scales, std::size_t boxSize);

} // namespace fenn::estimation

#endif
