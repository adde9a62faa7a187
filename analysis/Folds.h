#ifndef FENN_ANALYSIS_FOLDS_H
#define FENN_ANALYSIS_FOLDS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fenn::analysis
{

/// The indices 0 to count - 1, shuffled: a pure function of count and seed. Fisher-Yates on the raw bits of mt19937_64,
/// because the standard distributions differ between standard libraries.
std::vector<std::size_t> shuffledIndices(std::size_t count, std::uint64_t seed);

/// The fold, 0 to numFolds - 1, of each of count samples: random, sizes equal to within 1, a pure function of the
/// arguments. Throws std::invalid_argument unless 2 <= numFolds <= count.
std::vector<std::size_t> assignFolds(std::size_t count, std::size_t numFolds, std::uint64_t seed);

} // namespace fenn::analysis

#endif
