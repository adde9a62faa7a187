// Blocks of samples, made awkward: duplicate removal and output statistics bit for bit, the nearest-neighbour searches
// of a target and of a request entry for entry, against naive versions; the vector kernels of the search against their
// scalar definitions. On every instruction set of the processor.
//
// Left out because the caller answers for it: blocks of unequal numbers of variables, arrays shorter than announced, no
// block at all, a second removal, and a search without input variables.

#include <algorithm>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "fuzz/InputBytes.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/RequestNeighborSearch.h"
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
    const int numNearest = std::max(maxPts, 1);
    fenn::RequestNeighborSearch small(block, search, numNearest, 1);
    fenn::RequestNeighborSearch large(block, search, numNearest, 1000); // from a copy in single precision
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        std::vector<double> target;
        for (const std::vector<double>& variable : targets)
            target.push_back(variable[t]);
        const auto compare = [&](int count, int mostPts, const Points& found, const std::string& name)
        {
            Points expected = naiveNearestPts(samples, target, mostPts);
            check(count == static_cast<int>(expected.size()), "number of nearest points: " + name);
            expected.resize(found.size(), untouched);
            check(found == expected, "nearest points: " + name);
        };
        const Points nothing(static_cast<std::size_t>(numNearest) + 2, untouched);
        Points found = nothing;
        int count = search.findNearestPts(target, maxPts, found);
        compare(count, maxPts, found, "one target");
        found = nothing;
        count = small.findNearestPts(target, found);
        compare(count, numNearest, found, "a small request");
        found = nothing;
        count = large.findNearestPts(target, found);
        compare(count, numNearest, found, "a large request");
    }
}

/// The kernels of one block over coordinates of type T.
template <typename T>
void compareKernels(const Lists& points, std::size_t numPts, const std::vector<double>& target, std::size_t groupSize,
                    double radius, std::size_t limit)
{
    using namespace fenn::kernels;
    using Position = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    constexpr T infinity = std::numeric_limits<T>::infinity();
    const auto toT = [](double value)
    {
        return static_cast<T>(std::fabs(value) <= static_cast<double>(std::numeric_limits<T>::max()) ? value : NAN);
    };
    std::vector<std::vector<T>> arrays;
    std::vector<const T*> coords;
    std::vector<T> place;
    for (std::size_t v = 0; v < points.size(); ++v)
    {
        arrays.emplace_back(numPts);
        std::transform(points[v].begin(), points[v].end(), arrays[v].begin(), toT);
        place.push_back(toT(target[v]));
    }
    for (const std::vector<T>& array : arrays)
        coords.push_back(array.data());

    const std::size_t numGroups = (numPts + groupSize - 1) / groupSize;
    const std::size_t numFolded = 2;
    std::vector<T> minima((numGroups + 1) * minimaPerGroup, T(-1));
    std::vector<T> folded(numFolded * minimaPerGroup, infinity);
    std::vector<T> scalarMinima = minima;
    std::vector<T> scalarFolded = folded;
    groupMinima(coords.data(), coords.size(), numPts, place.data(), groupSize, minima.data(), folded.data(), 1,
                numFolded);
    scalar::groupMinima(coords.data(), coords.size(), numPts, place.data(), groupSize, scalarMinima.data(),
                        scalarFolded.data(), 1, numFolded);
    check(minima == scalarMinima && folded == scalarFolded, "minima of the groups");

    std::vector<T> distances(limit + groupSize + 1);
    std::vector<Position> positions(distances.size());
    std::vector<T> scalarDistances = distances;
    std::vector<Position> scalarPositions = positions;
    const T* const fromGroups = scalarMinima.data() + minimaPerGroup;
    const T threshold = toT(radius * radius);
    for (std::size_t first = 0; first < numPts;)
    {
        std::size_t numHits = 0;
        std::size_t numScalarHits = 0;
        const std::size_t next =
            collectPtsWithin(coords.data(), coords.size(), first, numPts, place.data(), threshold, groupSize,
                             fromGroups, distances.data(), positions.data(), numHits, limit);
        const std::size_t scalarNext =
            scalar::collectPtsWithin(coords.data(), coords.size(), first, numPts, place.data(), threshold, groupSize,
                                     fromGroups, scalarDistances.data(), scalarPositions.data(), numScalarHits, limit);
        check(next == scalarNext && numHits == numScalarHits, "number of points within a distance");
        check(std::equal(distances.begin(), distances.begin() + static_cast<std::ptrdiff_t>(numHits),
                         scalarDistances.begin()),
              "distances within a distance");
        check(std::equal(positions.begin(), positions.begin() + static_cast<std::ptrdiff_t>(numHits),
                         scalarPositions.begin()),
              "points within a distance");
        if (numHits > 0)
        {
            const std::size_t rank = 1 + limit % numHits;
            check(boundOfNearest(distances.data(), numHits, rank) ==
                      scalar::boundOfNearest(distances.data(), numHits, rank),
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
    compareKernels<float>(samples[0].inputs, numPts, target, groupSize, radius, limit);
    compareKernels<double>(samples[0].inputs, numPts, target, groupSize, radius, limit);
    return 0;
}
