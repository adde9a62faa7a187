// What surrounds the linear systems: the data block, duplicates, the semivariogram, the search and the assembly.

#include <limits>
#include <memory>
#include <string>

#include "DigestCases.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/Samples.h"

namespace fenn::test
{
namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Samples in [-1, 1) with one output, in one data block that points into them.
class BlockOfSamples
{
public:
    /// step > 0 rounds coordinates down to its multiples, so that points coincide and distances tie.
    BlockOfSamples(int numInputVars, int numPts, double step, RandomNumbers& numbers)
        : inputs(static_cast<std::size_t>(numInputVars), static_cast<std::size_t>(numPts)),
          outputs(1, static_cast<std::size_t>(numPts)),
          normalizers(static_cast<std::size_t>(numInputVars)),
          low(static_cast<std::size_t>(numInputVars)),
          high(static_cast<std::size_t>(numInputVars))
    {
        std::vector<bool> isUnblanked(static_cast<std::size_t>(numPts));
        for (std::size_t v = 0; v < low.size(); ++v)
        {
            for (double& value : inputs[v])
            {
                value = numbers.next(-1.0, 1.0);
                if (step > 0.0)
                    value = static_cast<double>(static_cast<int>(value / step)) * step;
            }
            findMinMax(inputs[v].data(), numPts, low[v], high[v]);
            normalizers[v].setOffset(-(low[v] + high[v]) * 0.5);
            normalizers[v].setScale(1.0 / (static_cast<double>(v) + 1.5));
        }
        for (double& value : outputs[0])
            value = numbers.next(3000.0, 3001.0);
        for (std::size_t i = 0; i < isUnblanked.size(); ++i)
            isUnblanked[i] = numbers.next() < 0.9;
        block = std::make_unique<SurrogateModelDataBlock>(numPts, inputs.arrays(), outputs.arrays(), isUnblanked,
                                                          normalizers, low, high);
    }

    ValueArrays inputs;
    ValueArrays outputs;
    std::vector<Normalizer> normalizers;
    std::vector<double> low;
    std::vector<double> high;
    std::unique_ptr<SurrogateModelDataBlock> block;
};

void addPoints(Digest& digest, const std::vector<SourcePointRef>& points)
{
    for (const SourcePointRef& point : points)
    {
        digest.add(point.first);
        digest.add(point.second);
    }
}

std::vector<double> randomPoint(std::size_t numInputVars, RandomNumbers& numbers)
{
    std::vector<double> point(numInputVars);
    for (double& value : point)
        value = numbers.next(-1.0, 1.0);
    return point;
}

void duplicates(Digest& digest)
{
    RandomNumbers numbers(11);
    for (const int numInputVars : {1, 2, 3})
    {
        for (const double tolerance : {0.0, 1e-4, 0.02})
        {
            BlockOfSamples samples(numInputVars, 1500, numInputVars == 1 ? 1e-3 : 0.05, numbers);
            samples.block->removeDuplicatePts(tolerance);
            std::vector<SourcePointRef> points;
            samples.block->getAllUnblankedPts(points);
            addPoints(digest, points);
            const int merged = samples.block->getNumBlocks() - 1;
            const auto numMerged = static_cast<std::size_t>(samples.block->getNumPtsInBlock(merged));
            for (const double* values : samples.block->getInputValueArraysForBlock(merged))
                digest.add(values, numMerged);
            digest.add(samples.block->getOutputValueArraysForBlock(merged)[0], numMerged);
        }
    }
}

void statistics(Digest& digest)
{
    RandomNumbers numbers(12);
    for (const int numPts : {1, 2, 3, 10, 1000})
    {
        const BlockOfSamples samples(2, numPts, 0.0, numbers);
        double min = 0.0;
        double max = 0.0;
        samples.block->getOutputVarMinMax(0, min, max);
        digest.add(min);
        digest.add(max);
        digest.add(samples.block->getOutputVarMean(0));
        digest.add(samples.block->getOutputVarSampleVariance(0));
    }
}

void semivariogram(Digest& digest)
{
    RandomNumbers numbers(13);
    for (const int numInputVars : {1, 2, 3, 4, 7})
    {
        for (const double rangeFraction : {0.2, 1.0, 0.0})
        {
            BlockOfSamples sources(numInputVars, 61, 0.25, numbers);
            BlockOfSamples targets(numInputVars, 67, 0.25, numbers);
            sources.inputs[0][5] = nan;
            const SphericalSemivariogram model(sources.low, sources.normalizers, sources.low, sources.high,
                                               rangeFraction, 0.1);
            constexpr std::size_t stride = 70;
            std::vector<double> values(61 * stride, -1.0);
            model.evaluatePairs({sources.inputs.arrays().data(), numInputVars, 61},
                                {targets.inputs.arrays().data(), numInputVars, 67}, values.data(), stride);
            digest.add(values);
            for (int i = 0; i < 50; ++i)
                digest.add(model.evaluate(randomPoint(sources.low.size(), numbers)));
        }
    }
}

void nearestPoints(Digest& digest)
{
    RandomNumbers numbers(14);
    for (const int numInputVars : {1, 2, 3, 5})
    {
        for (const int numPts : {7, 100, 1003, 4096})
        {
            for (const double step : {0.0, 0.1}) // without ties and with many
            {
                BlockOfSamples samples(numInputVars, numPts, step, numbers);
                samples.inputs[0][3] = nan;
                samples.block->removeDuplicatePts(0.0);
                const NearestNeighborSearch search(samples.block.get(), numInputVars, samples.block->getNumBlocks());
                for (const int maxPts : {1, 2, 8, 16, 32, 100})
                {
                    std::vector<SourcePointRef> nearest(static_cast<std::size_t>(maxPts));
                    for (int t = 0; t < 6; ++t)
                    {
                        std::vector<double> target = randomPoint(samples.low.size(), numbers);
                        if (t == 4)
                            target[0] = samples.inputs[0][0];
                        if (t == 5)
                            target.back() = nan;
                        digest.add(search.findNearestPts(target, maxPts, nearest));
                        addPoints(digest, nearest);
                    }
                }
            }
        }
    }
}

void assembledSystems(Digest& digest)
{
    RandomNumbers numbers(15);
    for (const int numInputVars : {1, 2, 3, 4})
    {
        for (const int driftOrder : {-1, 0, 1, 2, 3, 4, 5})
        {
            const BlockOfSamples samples(numInputVars, 100, 0.0, numbers);
            const SphericalSemivariogram model(samples.low, samples.normalizers, samples.low, samples.high, 0.7, 0.05);
            std::vector<SourcePointRef> points;
            samples.block->getAllUnblankedPts(points);
            KrigingMatrix matrix(*samples.block, samples.block->getTotalNumUnblankedPoints(), &model, driftOrder);
            std::vector<double> scratch(samples.low.size());
            matrix.assemble(points, scratch);
            const auto dimension = static_cast<std::size_t>(matrix.getDimension());
            for (int i = 0; i < matrix.getDimension(); ++i)
                digest.add(matrix.getRow(i), dimension);

            std::vector<double> rhs(dimension);
            const std::vector<double> target = randomPoint(samples.low.size(), numbers);
            matrix.buildRightHandSide(rhs.data(), 0, target, points, scratch);
            digest.add(rhs);
            digest.add(matrix.dotProduct(rhs.data(), matrix.getRow(0)));
            digest.add(matrix.estimate(0, points, rhs.data()));
            for (const double reference : {0.0, 2896.0, 3000.0, nan})
                digest.add(matrix.estimateCentered(0, reference, points, rhs.data()));
        }
    }
}

} // namespace

std::vector<DigestCase> sampleCases()
{
    return {{"duplicates", duplicates},
            {"statistics", statistics},
            {"semivariogram", semivariogram},
            {"nearest-points", nearestPoints},
            {"assembled-systems", assembledSystems}};
}

} // namespace fenn::test
