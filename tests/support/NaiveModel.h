#ifndef FENN_TESTS_SUPPORT_NAIVEMODEL_H
#define FENN_TESTS_SUPPORT_NAIVEMODEL_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ModelSample.h"
#include "tests/support/NaiveDataBlock.h"
#include "tests/support/NaiveKriging.h"
#include "tests/support/NaiveLinearSystem.h"
#include "tests/support/NaiveNormalisation.h"
#include "tests/support/NaiveSearch.h"
#include "tests/support/NaiveSpherical.h"
#include "tests/support/SampleBlocks.h"

namespace fenn::test
{

/// What KrigingSurrogateModel computes, put together from the plain loops: normalisation, merging, semivariogram, one
/// system over all points or one per target. Errors are texts, empty when there is none.
class NaiveModel
{
public:
    using Lists = std::vector<std::vector<double>>;

    /// numThreads: those of the pool, over which the targets of a request to all points are spread.
    NaiveModel(const Lists& inputs, const Lists& outputs, int numPts, const ModelSettings& settings, int numThreads_)
        : numThreads(numThreads_), driftOrder(settings.driftOrder)
    {
        const NaiveNormalisation normalisation = naiveNormalisation(inputs, settings.scaleFactors);
        failure = normalisation.message;
        if (!failure.empty())
            return;
        std::vector<SampleBlock> blocks(1);
        blocks[0] = {inputs, outputs, std::vector<bool>(static_cast<std::size_t>(numPts), true), numPts};
        if (settings.duplicateTolerance >= 0.0 && !inputs.empty())
            naiveRemoveDuplicates(blocks, normalisation.minValues, normalisation.maxValues,
                                  settings.duplicateTolerance);
        samples = makeSamples(blocks, normalisation);
        references.assign(outputs.size(), 0.0);
        semivariogram = naiveSpherical(normalisation.scales, normalisation.minValues, normalisation.maxValues,
                                       settings.rangeFraction, settings.nugget);

        const std::vector<SourcePointRef> points = samples->unblankedPts();
        const auto numIncluded = static_cast<int>(points.size());
        hasSystemPerTarget = settings.numNearestPoints != 0 && settings.numNearestPoints < numIncluded;
        numSources = hasSystemPerTarget ? settings.numNearestPoints : numIncluded;
        const auto numVars = static_cast<int>(inputs.size());
        if (numSources <= numVars)
            failure = "Not enough source points for kriging.";
        else if (static_cast<std::size_t>(numSources) <
                 krigingOver({}).driftTerms(std::vector(inputs.size(), 0.0)).size())
            failure = "Not enough source points to calculate drift.";
        if (!failure.empty() || hasSystemPerTarget)
            return;
        global = std::make_unique<NaiveKriging>(krigingOver(points));
        factors = std::make_unique<NaiveLinearSystem>(global->rows());
        failure = factors->factorise();
    }

    /// The error that construction throws.
    const std::string& getFailure() const
    {
        return failure;
    }

    /// Whether each target has a system of its own.
    bool isLocal() const
    {
        return hasSystemPerTarget;
    }

    /// Points of a system.
    std::size_t getNumSources() const
    {
        return toSize(numSources);
    }

    /// Replaces the values of the targets that an estimate is written for; values has one list per element of
    /// outputVars. Returns the error that the request throws.
    std::string interpolate(const Lists& targets, const std::set<int>& outputVars, std::size_t numTargets,
                            Lists& values) const
    {
        if (hasSystemPerTarget)
            return interpolateLocally(targets, outputVars, numTargets, values);
        const std::size_t numRanges = numTargets / static_cast<std::size_t>(numThreads) == 0 ? 1 : toSize(numThreads);
        const std::size_t chunk = numTargets / numRanges;
        std::string firstFailure;
        for (std::size_t r = 0; r < numRanges; ++r)
        {
            const std::size_t end = r + 1 == numRanges ? numTargets : (r + 1) * chunk;
            for (std::size_t t = r * chunk; t < end; ++t)
            {
                const NaiveResult result = global->evaluate(*factors, pointAt(targets, t), references);
                if (!result.failure.empty())
                {
                    firstFailure = firstFailure.empty() ? result.failure : firstFailure;
                    break; // the range's; others go on
                }
                write(result, outputVars, t, values);
            }
        }
        return firstFailure;
    }

private:
    static std::size_t toSize(int count)
    {
        return static_cast<std::size_t>(count);
    }

    static std::vector<double> pointAt(const Lists& variables, std::size_t t)
    {
        std::vector<double> point;
        for (const std::vector<double>& variable : variables)
            point.push_back(variable[t]);
        return point;
    }

    static std::unique_ptr<SampleBlocks> makeSamples(const std::vector<SampleBlock>& blocks,
                                                     const NaiveNormalisation& normalisation)
    {
        SampleBlocks::Values inputs;
        SampleBlocks::Values outputs;
        std::vector<std::vector<bool>> isUnblanked;
        for (const SampleBlock& block : blocks)
        {
            inputs.push_back(block.inputs);
            outputs.push_back(block.outputs);
            isUnblanked.push_back(block.isUnblanked);
        }
        std::vector<Normalizer> normalizers(normalisation.scales.size());
        for (std::size_t v = 0; v < normalizers.size(); ++v)
        {
            normalizers[v].setOffset(normalisation.offsets[v]);
            normalizers[v].setScale(normalisation.scales[v]);
        }
        return std::make_unique<SampleBlocks>(inputs, outputs, isUnblanked, normalizers);
    }

    NaiveKriging krigingOver(const std::vector<SourcePointRef>& points) const
    {
        return NaiveKriging(*samples, points, semivariogram, driftOrder);
    }

    std::string interpolateLocally(const Lists& targets, const std::set<int>& outputVars, std::size_t numTargets,
                                   Lists& values) const
    {
        std::vector<SourcePointRef> neighbours(toSize(numSources)); // what a search does not fill stays as it was
        for (std::size_t t = 0; t < numTargets; ++t)
        {
            const std::vector<double> target = pointAt(targets, t);
            const std::vector<SourcePointRef> nearest = naiveNearestPts(*samples, target, numSources);
            std::copy(nearest.begin(), nearest.end(), neighbours.begin());
            const NaiveResult result = krigingOver(neighbours).evaluate(target, references);
            if (!result.failure.empty())
                return result.failure;
            write(result, outputVars, t, values);
        }
        return {};
    }

    static void write(const NaiveResult& result, const std::set<int>& outputVars, std::size_t t, Lists& values)
    {
        std::size_t k = 0;
        for (const int outputVar : outputVars)
            values[k++][t] = result.estimates[toSize(outputVar)];
    }

    int numThreads;
    int driftOrder;
    std::string failure;
    std::unique_ptr<SampleBlocks> samples;
    std::vector<double> references; // per output variable: nothing is centred
    NaiveSemivariogram semivariogram;
    bool hasSystemPerTarget = false;
    int numSources = 0;
    std::unique_ptr<NaiveKriging> global;
    std::unique_ptr<NaiveLinearSystem> factors; // of global's system
};

} // namespace fenn::test

#endif
