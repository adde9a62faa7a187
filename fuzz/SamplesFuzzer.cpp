// Blocks of samples, made awkward: duplicate removal and output statistics bit for bit and the nearest-neighbour search
// entry for entry, against naive versions; the vector kernels of the search against their scalar definitions. On every
// instruction set of the processor.
//
// Left out because the caller answers for it: blocks of unequal numbers of variables, arrays shorter than announced, no
// block at all, a second removal, and a search without input variables.

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/InputBytes.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/kernels/DistanceKernels.h"
#include "surrogatemodel_kriging/kernels/ScalarDistanceKernels.h"
#include "tests/support/Bits.h"
#include "tests/support/BlockSet.h"
#include "tests/support/InstructionSets.h"
#include "tests/support/NaiveDataBlock.h"
#include "tests/support/NaiveSearch.h"
#include "tests/support/SampleBlocks.h"

using namespace fenn::test;
using fenn::fuzz::check;
using fenn::fuzz::decodePoints;
using fenn::fuzz::InputBytes;

namespace
{

using Lists = std::vector<std::vector<double>>;
using Points = std::vector<SourcePointRef>;

constexpr SourcePointRef untouched{-7, -7};

bool sameLists(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](double x, double y) { return sameBits(x, y); });
}

/// Mostly a few; now and then several groups of the search's kernels; rarely enough for the sort by digits.
std::size_t decodeNumPts(InputBytes& input)
{
    const std::size_t kind = input.byte();
    if (kind < 224)
        return kind % 25;
    if (kind < 255)
        return 25 + input.pick(256) * (kind < 248 ? 1 : 3);
    return 1490 + input.pick(64);
}

SampleBlock decodeBlock(InputBytes& input, std::size_t numInputVars, std::size_t numOutputVars, bool isPlain)
{
    SampleBlock block;
    const std::size_t numPts = decodeNumPts(input);
    block.inputs = decodePoints(input, numInputVars, numPts, isPlain);
    block.outputs = decodePoints(input, numOutputVars, numPts, isPlain);
    const std::size_t blanked = input.byte();
    for (std::size_t i = 0; i < numPts; ++i)
        block.isUnblanked.push_back((blanked >> i % 8 & 1U) == 0);
    const std::size_t kind = input.byte();
    if (kind >= 128)
        block.isUnblanked.resize(numPts + kind % 3, true); // flags beyond the points
    block.numPts = kind < 248 ? static_cast<int>(numPts) : -static_cast<int>(kind % 4);
    return block;
}

void compareBlocks(const SurrogateModelDataBlock& actual, const std::vector<SampleBlock>& expected)
{
    check(actual.getNumBlocks() == static_cast<int>(expected.size()), "number of blocks");
    for (int b = 0; b < actual.getNumBlocks(); ++b)
    {
        const SampleBlock& block = expected[static_cast<std::size_t>(b)];
        const std::string name = " of block " + std::to_string(b);
        check(actual.getNumPtsInBlock(b) == block.numPts, "number of points" + name);
        check(actual.getIncludePtArrayForBlock(b) == block.isUnblanked, "flags" + name);
        for (std::size_t v = 0; block.numPts > 0 && v < block.inputs.size(); ++v)
            check(sameLists(inputValues(actual, b, v), block.inputs[v]), "inputs" + name);
        for (std::size_t w = 0; block.numPts > 0 && w < block.outputs.size(); ++w)
            check(sameLists(outputValues(actual, b, w), block.outputs[w]), "outputs" + name);
    }
}

void compareStatistics(const SurrogateModelDataBlock& actual, const std::vector<SampleBlock>& expected)
{
    PointList points;
    actual.getAllUnblankedPts(points);
    check(points == naiveUnblankedPts(expected), "unblanked points");
    for (int w = 0; w < actual.getNumOutputVars(); ++w)
    {
        const NaiveStatistics statistics = naiveStatistics(expected, static_cast<std::size_t>(w));
        double min = -1.0;
        double max = -1.0;
        actual.getOutputVarMinMax(w, min, max);
        check(sameBits(min, statistics.min) && sameBits(max, statistics.max), "extremes of an output");
        check(sameBits(actual.getOutputVarMean(w), statistics.mean), "mean of an output");
        check(sameBits(actual.getOutputVarSampleVariance(w), statistics.variance), "variance of an output");
    }
}

/// Removes duplicates from samples as well.
void compareRemoval(std::vector<SampleBlock>& samples, const std::vector<double>& minValues,
                    const std::vector<double>& maxValues, double tolerance)
{
    BlockSet blocks(samples, minValues, maxValues);
    blocks->removeDuplicatePts(tolerance);
    naiveRemoveDuplicates(samples, minValues, maxValues, tolerance);
    compareBlocks(*blocks, samples);
    compareStatistics(*blocks, samples);
}

SampleBlocks blocksFor(const std::vector<SampleBlock>& samples, const std::vector<Normalizer>& normalizers)
{
    SampleBlocks::Values inputs;
    SampleBlocks::Values outputs;
    std::vector<std::vector<bool>> isUnblanked;
    for (const SampleBlock& block : samples)
    {
        inputs.push_back(block.inputs);
        outputs.push_back(block.outputs);
        isUnblanked.push_back(block.isUnblanked);
        isUnblanked.back().resize(static_cast<std::size_t>(std::max(block.numPts, 0)));
    }
    return SampleBlocks(inputs, outputs, isUnblanked, normalizers);
}

void compareSearches(const SampleBlocks& samples, const Lists& targets, std::size_t numTargets, int maxPts)
{
    const SurrogateModelDataBlock& block = samples.block();
    const NearestNeighborSearch search(&block, block.getNumInputVars(), block.getNumBlocks());
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        std::vector<double> target;
        for (const std::vector<double>& variable : targets)
            target.push_back(variable[t]);
        Points found(static_cast<std::size_t>(std::max(maxPts, 0)) + 2, untouched);
        Points expected = naiveNearestPts(samples, target, maxPts);
        check(search.findNearestPts(target, maxPts, found) == static_cast<int>(expected.size()),
              "number of nearest points");
        expected.resize(found.size(), untouched);
        check(found == expected, "nearest points");
    }
}

/// The kernels of one block.
void compareKernels(const Lists& points, std::size_t numPts, const std::vector<double>& target, double scale,
                    std::size_t groupSize, double threshold, std::size_t limit)
{
    using namespace fenn::kernels;
    std::vector<const double*> coords;
    for (const std::vector<double>& variable : points)
        coords.push_back(variable.data());
    const TargetAndPoints input{target.data(), scale, coords.size(), coords.data(), numPts};

    const std::size_t numGroups = (numPts + groupSize - 1) / groupSize;
    const std::size_t numFolded = 2;
    std::vector<double> ofGroups((numGroups + 1) * minimaPerGroup, -1.0);
    std::vector<double> folded(numFolded * minimaPerGroup, std::numeric_limits<double>::infinity());
    std::vector<double> scalarOfGroups = ofGroups;
    std::vector<double> scalarFolded = folded;
    const GroupMinima minima{groupSize, ofGroups.data(), folded.data(), numFolded, limit % 2};
    groupMinima(input, minima);
    scalar::groupMinima(input, {groupSize, scalarOfGroups.data(), scalarFolded.data(), numFolded, limit % 2});
    check(ofGroups == scalarOfGroups && folded == scalarFolded, "minima of the groups");

    std::vector<Candidate> candidates(limit + groupSize + 1);
    std::vector<Candidate> scalarCandidates = candidates;
    for (std::size_t first = 0; first < numPts;)
    {
        CandidateList list{candidates.data(), 0, limit};
        CandidateList scalarList{scalarCandidates.data(), 0, limit};
        const std::size_t next = collectPtsWithin(input, minima, threshold, first, 1, list);
        check(next == scalar::collectPtsWithin(input, minima, threshold, first, 1, scalarList) &&
                  list.count == scalarList.count,
              "number of points within a distance");
        std::vector<double> distances;
        for (std::size_t i = 0; i < list.count; ++i)
        {
            const Candidate& expected = scalarCandidates[i];
            distances.push_back(expected.distance);
            check(candidates[i].distance == expected.distance && candidates[i].block == expected.block &&
                      candidates[i].point == expected.point,
                  "points within a distance");
        }
        if (!distances.empty())
        {
            const std::size_t rank = 1 + limit % distances.size();
            check(boundOfNearest(distances.data(), distances.size(), rank) ==
                      scalar::boundOfNearest(distances.data(), distances.size(), rank),
                  "bound of the nearest");
        }
        first = next;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<InstructionSet> instructionSets = runnableInstructionSets();

    InputBytes input(data, size);
    const std::size_t flags = input.byte();
    const bool isPlain = (flags & 3U) != 3;
    useOnly(instructionSets[(flags >> 2) % instructionSets.size()]);
    const std::size_t numInputVars = 1 + input.pick(4);
    const std::size_t numOutputVars = input.pick(3);
    std::vector<SampleBlock> samples;
    for (std::size_t numBlocks = 1 + input.pick(4); numBlocks > 0; --numBlocks)
        samples.push_back(decodeBlock(input, numInputVars, numOutputVars, isPlain));

    std::vector<double> minValues;
    std::vector<double> maxValues;
    std::vector<Normalizer> normalizers(numInputVars);
    for (Normalizer& normalizer : normalizers)
    {
        minValues.push_back(input.oneOf({0.0, -4.0, -1.0}));
        maxValues.push_back(input.oneOf({4.0, 1.0, 1e-151, -5.0, 31.875}));
        normalizer.setScale(input.oneOf({1.0, 0.25, 3.0, 1e-3, 1e3, -1.0, 0.0}));
    }
    const double tolerance = input.oneOf({0.0, 0.01, 0.015625, 0.03125, 0.125, 0.5, 1.0, 1e9, -1.0});
    compareRemoval(samples, minValues, maxValues, tolerance);

    const std::size_t kind = input.byte();
    const int maxPts = kind < 224 ? static_cast<int>(kind % 34) : static_cast<int>(input.byte()) * 2 - 8;
    const std::size_t numTargets = 1 + input.pick(4);
    Lists targets = decodePoints(input, numInputVars, numTargets, isPlain);
    compareSearches(blocksFor(samples, normalizers), targets, numTargets, maxPts);

    const std::size_t groupSize = fenn::kernels::distanceGroup * (1 + input.pick(2));
    const double radius = input.oneOf({0.5, 0.0, 1.0, 4.0, 16.0, 1e30});
    const std::size_t limit = input.pick(200);
    std::vector<double> target;
    for (const std::vector<double>& variable : targets)
        target.push_back(variable[0]);
    const std::size_t numPts = samples[0].inputs[0].size();
    compareKernels(samples[0].inputs, numPts, target, normalizers[0].getScale(), groupSize, radius * radius, limit);
    return 0;
}
