#ifndef FENN_TESTS_SUPPORT_SAMPLEBLOCKS_H
#define FENN_TESTS_SUPPORT_SAMPLEBLOCKS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/SampleShape.h"

namespace fenn::test
{

/// A data block with everything it refers to. Value i of variable v in block b is inputs[b][v][i], outputs likewise; a
/// value changed later is what the data block then shows.
class SampleBlocks
{
public:
    using Values = std::vector<std::vector<std::vector<double>>>;

    SampleBlocks(Values inputs_, Values outputs_, std::vector<std::vector<bool>> isUnblanked_,
                 std::vector<Normalizer> normalizers_)
        : inputs(std::move(inputs_)),
          outputs(std::move(outputs_)),
          isUnblanked(std::move(isUnblanked_)),
          normalizers(std::move(normalizers_)),
          extremes(normalizers.size())
    {
        std::vector<int> sizes;
        for (const std::vector<bool>& flags : isUnblanked)
            sizes.push_back(static_cast<int>(flags.size()));
        dataBlock = std::make_unique<SurrogateModelDataBlock>(sizes, pointersTo(inputs), pointersTo(outputs),
                                                              isUnblanked, normalizers, extremes, extremes);
    }

    /// One block, nothing blanked, identity normalizers.
    SampleBlocks(const std::vector<std::vector<double>>& inputs_, const std::vector<std::vector<double>>& outputs_)
        : SampleBlocks(Values{inputs_}, Values{outputs_}, {std::vector<bool>(outputs_[0].size(), true)},
                       std::vector<Normalizer>(inputs_.size()))
    {
    }

    SampleBlocks(const SampleShape& shape, std::uint64_t seed)
        : SampleBlocks(randomBlockValues(shape, shape.numInputVars, shape.gridSize, seed),
                       randomBlockValues(shape, shape.numOutputVars, 0, seed + 1), randomBlockFlags(shape, seed + 2),
                       randomNormalizers(shape.numInputVars, seed + 3))
    {
    }

    SampleBlocks(const SampleBlocks& other) = delete;
    SampleBlocks& operator=(const SampleBlocks& other) = delete;

    const SurrogateModelDataBlock& block() const
    {
        return *dataBlock;
    }

    /// Unblanked points, block by block.
    std::vector<SourcePointRef> unblankedPts() const
    {
        std::vector<SourcePointRef> points;
        for (std::size_t b = 0; b < isUnblanked.size(); ++b)
        {
            for (std::size_t i = 0; i < isUnblanked[b].size(); ++i)
            {
                if (isUnblanked[b][i])
                    points.emplace_back(static_cast<int>(b), static_cast<int>(i));
            }
        }
        return points;
    }

    Values inputs;
    Values outputs;
    const std::vector<std::vector<bool>> isUnblanked;
    std::vector<Normalizer> normalizers;

private:
    static std::vector<std::vector<double*>> pointersTo(Values& values)
    {
        std::vector<std::vector<double*>> pointers;
        for (auto& block : values)
        {
            pointers.emplace_back();
            for (std::vector<double>& variable : block)
                pointers.back().push_back(variable.data());
        }
        return pointers;
    }

    std::vector<double> extremes; // read by the merging of duplicates only
    std::unique_ptr<SurrogateModelDataBlock> dataBlock;
};

} // namespace fenn::test

#endif
