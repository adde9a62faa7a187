#ifndef FENN_TESTS_SUPPORT_BLOCKSET_H
#define FENN_TESTS_SUPPORT_BLOCKSET_H

#include <utility>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::test
{

/// The samples of one block: inputs[v][i], outputs[w][i] and one flag per point.
struct SampleBlock
{
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
    std::vector<bool> isUnblanked;
    int numPts = static_cast<int>(isUnblanked.size());
};

inline std::vector<double*> pointersTo(std::vector<std::vector<double>>& arrays)
{
    std::vector<double*> pointers;
    for (std::vector<double>& array : arrays)
        pointers.push_back(array.data());
    return pointers;
}

/// One entry per block, as the constructor of the data block takes them.
template <typename OfBlock>
auto listOf(std::vector<SampleBlock>& samples, OfBlock ofBlock)
{
    std::vector<decltype(ofBlock(samples[0]))> list;
    for (SampleBlock& block : samples)
        list.push_back(ofBlock(block));
    return list;
}

/// Samples in blocks, the limits of their input variables, and the data block built over them.
class BlockSet
{
public:
    BlockSet(std::vector<SampleBlock> samples_, std::vector<double> minValues_, std::vector<double> maxValues_)
        : samples(std::move(samples_)),
          minValues(std::move(minValues_)),
          maxValues(std::move(maxValues_)),
          normalizers(minValues.size()),
          dataBlock(listOf(samples, [](SampleBlock& block) { return block.numPts; }),
                    listOf(samples, [](SampleBlock& block) { return pointersTo(block.inputs); }),
                    listOf(samples, [](SampleBlock& block) { return pointersTo(block.outputs); }),
                    listOf(samples, [](SampleBlock& block) { return block.isUnblanked; }), normalizers, minValues,
                    maxValues)
    {
    }

    BlockSet(const BlockSet& other) = delete;
    BlockSet& operator=(const BlockSet& other) = delete;

    SurrogateModelDataBlock* operator->()
    {
        return &dataBlock;
    }

    SurrogateModelDataBlock& operator*()
    {
        return dataBlock;
    }

    std::vector<SampleBlock>& getSamples()
    {
        return samples;
    }

    const std::vector<Normalizer>& getNormalizers() const
    {
        return normalizers;
    }

private:
    std::vector<SampleBlock> samples;
    std::vector<double> minValues;
    std::vector<double> maxValues;
    std::vector<Normalizer> normalizers;
    SurrogateModelDataBlock dataBlock;
};

/// The values of one variable of a block, read through the accessors' pointers; none when there is no such block.
inline std::vector<double> inputValues(const SurrogateModelDataBlock& dataBlock, int block, std::size_t inputVar)
{
    if (block >= dataBlock.getNumBlocks())
        return {};
    const double* values = dataBlock.getInputValueArraysForBlock(block)[inputVar];
    return {values, values + dataBlock.getNumPtsInBlock(block)};
}

inline std::vector<double> outputValues(const SurrogateModelDataBlock& dataBlock, int block, std::size_t outputVar)
{
    if (block >= dataBlock.getNumBlocks())
        return {};
    const double* values = dataBlock.getOutputValueArraysForBlock(block)[outputVar];
    return {values, values + dataBlock.getNumPtsInBlock(block)};
}

} // namespace fenn::test

#endif
