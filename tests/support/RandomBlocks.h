#ifndef FENN_TESTS_SUPPORT_RANDOMBLOCKS_H
#define FENN_TESTS_SUPPORT_RANDOMBLOCKS_H

#include <cstdint>
#include <limits>
#include <vector>

#include "tests/support/BlockSet.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

/// Sample blocks made to be awkward: one to four blocks, some empty, one to four input variables on a coarse grid with
/// many ties, both zeros, NaN and infinities, blanked points, flags beyond the count, and outputs of such different
/// magnitudes that the order of a sum shows in its bits.
struct RandomBlocks
{
    explicit RandomBlocks(std::uint64_t seed) : numbers(seed)
    {
        const std::size_t numInputVars = 1 + pick(4);
        const std::size_t numOutputVars = pick(3);
        const bool hasSpecialValues = pick(3) == 0;
        const double gridSize = 2.0 + static_cast<double>(pick(9));
        const std::size_t numBlocks = 1 + pick(4);
        for (std::size_t b = 0; b < numBlocks; ++b)
            samples.push_back(makeBlock(numInputVars, numOutputVars, gridSize, hasSpecialValues));
        for (std::size_t v = 0; v < numInputVars; ++v)
        {
            minValues.push_back(0.0);
            maxValues.push_back(makeUpperLimit(gridSize));
        }
        constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
        const std::vector<double> tolerances{0.0,  0.0,  0.05, 0.125, 0.2, 0.25,      0.3,
                                             0.35, 0.55, 1.0,  1e9,   -1., notANumber};
        tolerance = tolerances[pick(tolerances.size())];
    }

    std::vector<SampleBlock> samples;
    std::vector<double> minValues;
    std::vector<double> maxValues;
    double tolerance = 0.0; // for removeDuplicatePts

private:
    std::size_t pick(std::size_t count)
    {
        return static_cast<std::size_t>(numbers.next() * static_cast<double>(count));
    }

    SampleBlock makeBlock(std::size_t numInputVars, std::size_t numOutputVars, double gridSize, bool hasSpecialValues)
    {
        const std::size_t numPts = pick(5) == 0 ? 0 : pick(70);
        SampleBlock block;
        block.numPts = static_cast<int>(numPts);
        block.inputs.resize(numInputVars);
        block.outputs.resize(numOutputVars);
        for (std::size_t i = 0; i < numPts; ++i)
        {
            for (std::vector<double>& values : block.inputs)
                values.push_back(hasSpecialValues && pick(12) == 0 ? specialValue() : 0.125 * gridStep(gridSize));
            for (std::vector<double>& values : block.outputs)
                values.push_back(hasSpecialValues && pick(40) == 0 ? specialValue() : outputValue());
            block.isUnblanked.push_back(pick(6) != 0);
        }
        for (std::size_t extra = pick(3); extra > 0; --extra)
            block.isUnblanked.push_back(true);
        return block;
    }

    double gridStep(double gridSize)
    {
        return static_cast<double>(pick(static_cast<std::size_t>(gridSize)));
    }

    double outputValue()
    {
        const double magnitudes[] = {1.0, 1e8, 1e16, 1e-9};
        return numbers.next(-1.0, 1.0) * magnitudes[pick(4)];
    }

    double specialValue()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        const double values[] = {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, -0.0, 0x1p-1074};
        return values[pick(5)];
    }

    /// Mostly the width of the grid; now and then a range that counts as zero, is negative, infinite or NaN.
    double makeUpperLimit(double gridSize)
    {
        switch (pick(14))
        {
        case 0:
            return 1e-151;
        case 1:
            return -1.0;
        case 2:
            return std::numeric_limits<double>::infinity();
        case 3:
            return std::numeric_limits<double>::quiet_NaN();
        default:
            return 0.125 * (gridSize - 1.0);
        }
    }

    RandomNumbers numbers;
};

} // namespace fenn::test

#endif
