#ifndef FENN_TESTS_SUPPORT_SAMPLESHAPE_H
#define FENN_TESTS_SUPPORT_SAMPLESHAPE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

/// What random sample blocks look like.
struct SampleShape
{
    std::size_t numInputVars = 2;
    std::size_t numOutputVars = 1;
    std::vector<std::size_t> blockSizes{10};
    double blankedShare = 0.0;
    int gridSize = 0; // above 0: coordinates are integers below it, so that distances tie
};

inline Normalizer normalizerOf(double offset, double scale)
{
    Normalizer normalizer;
    normalizer.setOffset(offset);
    normalizer.setScale(scale);
    return normalizer;
}

inline std::vector<std::vector<std::vector<double>>> randomBlockValues(const SampleShape& shape, std::size_t numVars,
                                                                       int gridSize, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<std::vector<std::vector<double>>> values;
    for (const std::size_t size : shape.blockSizes)
    {
        values.emplace_back(numVars, std::vector<double>(size));
        for (std::vector<double>& variable : values.back())
        {
            for (double& value : variable)
                value = gridSize > 0 ? std::floor(numbers.next(0.0, gridSize)) : numbers.next(-1.0, 1.0);
        }
    }
    return values;
}

inline std::vector<std::vector<bool>> randomBlockFlags(const SampleShape& shape, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<std::vector<bool>> flags;
    for (const std::size_t size : shape.blockSizes)
    {
        flags.emplace_back(size);
        for (std::size_t i = 0; i < size; ++i)
            flags.back()[i] = numbers.next() >= shape.blankedShare;
    }
    return flags;
}

inline std::vector<Normalizer> randomNormalizers(std::size_t numInputVars, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<Normalizer> normalizers;
    for (std::size_t v = 0; v < numInputVars; ++v)
        normalizers.push_back(normalizerOf(numbers.next(-0.5, 0.5), numbers.next(0.5, 2.0)));
    return normalizers;
}

} // namespace fenn::test

#endif
