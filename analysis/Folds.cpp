#include "analysis/Folds.h"

#include <random>
#include <stdexcept>
#include <string>
#include <utility>

namespace fenn::analysis
{

namespace
{

/// Uniform in [0, bound): bits below 2^64 mod bound are drawn again, so that no remainder is favoured.
std::uint64_t drawBelow(std::mt19937_64& engine, std::uint64_t bound)
{
    const std::uint64_t numFavoured = (0 - bound) % bound;
    std::uint64_t bits = engine();
    while (bits < numFavoured)
        bits = engine();
    return bits % bound;
}

} // namespace

std::vector<std::size_t> shuffledIndices(std::size_t count, std::uint64_t seed)
{
    std::vector<std::size_t> indices(count);
    for (std::size_t i = 0; i < count; ++i)
        indices[i] = i;
    std::mt19937_64 engine(seed);
    for (std::size_t i = count; i > 1; --i)
        std::swap(indices[i - 1], indices[static_cast<std::size_t>(drawBelow(engine, i))]);
    return indices;
}

std::vector<std::size_t> assignFolds(std::size_t count, std::size_t numFolds, std::uint64_t seed)
{
    if (numFolds < 2 || numFolds > count)
        throw std::invalid_argument("the number of folds must be 2 to the number of samples, " + std::to_string(count) +
                                    ", not " + std::to_string(numFolds));
    const std::vector<std::size_t> order = shuffledIndices(count, seed);
    std::vector<std::size_t> folds(count);
    for (std::size_t k = 0; k < count; ++k)
        folds[order[k]] = k % numFolds;
    return folds;
}

} // namespace fenn::analysis
