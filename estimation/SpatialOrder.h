#ifndef FENN_ESTIMATION_SPATIALORDER_H
#define FENN_ESTIMATION_SPATIALORDER_H

#include <cstddef>
#include <vector>

namespace fenn::estimation
{

/// The indices of points so that neighbours stand together: each run of boxSize indices, the last one perhaps shorter,
/// fills a small box. All of them are halved, to whole boxes, at the median of the variable along which they reach
/// farthest, and the halves likewise; in a box they ascend. Depends on nothing but the values.
///
/// columns: one per variable, equally long, finite. scales: one factor per variable.
std::vector<std::size_t> orderInSpace(const std::vector<std::vector<double>>& columns,
                                      const std::vector<double>& scales, std::size_t boxSize);

} // namespace fenn::estimation

#endif
