#ifndef FENN_SURROGATEMODEL_KRIGING_MAGNITUDEGUARDS_H
#define FENN_SURROGATEMODEL_KRIGING_MAGNITUDEGUARDS_H

namespace fenn
{

// What counts as zero and as infinite throughout: limits of scale factors and ranges, near-zero pivots, overflowing
// solutions, and where running extremes start.
constexpr double effectivelyZero = 1e-150;
constexpr double effectivelyInfinite = 1e150;

} // namespace fenn

#endif
