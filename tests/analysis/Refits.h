#ifndef FENN_TESTS_ANALYSIS_REFITS_H
#define FENN_TESTS_ANALYSIS_REFITS_H

#include <cstddef>
#include <memory>
#include <set>
#include <vector>

#include "estimation/Estimates.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::test
{

/// Estimates of the points of the full model, each by a refit without the points of its group that keeps the full
/// model's normalisers, range and merged points: the model's data block with their flags cleared, its semivariogram and
/// a controller over the rest. groups: positions in ModelParts::getPoints, every point in one group.
inline estimation::Estimates refitWithoutGroups(const estimation::SampleSet& samples,
                                                const estimation::ModelSettings& settings,
                                                const std::vector<std::vector<std::size_t>>& groups)
{
    const auto full = estimation::makeModelParts(samples, settings);
    const SurrogateModelDataBlock& fullBlock = full->getDataBlock();
    const std::vector<SourcePointRef>& points = full->getPoints();
    const auto numOutputVars = static_cast<std::size_t>(fullBlock.getNumOutputVars());

    estimation::Estimates estimates;
    estimates.values.assign(numOutputVars, std::vector<double>(points.size()));
    estimates.variances.resize(points.size());
    estimates.driftProducts.resize(points.size());
    for (const std::vector<std::size_t>& group : groups)
    {
        std::vector<int> numPtsInBlocks;
        std::vector<std::vector<double*>> inputs;
        std::vector<std::vector<double*>> outputs;
        std::vector<std::vector<bool>> flags;
        for (int b = 0; b < fullBlock.getNumBlocks(); ++b)
        {
            numPtsInBlocks.push_back(fullBlock.getNumPtsInBlock(b));
            inputs.push_back(fullBlock.getInputValueArraysForBlock(b));
            outputs.push_back(fullBlock.getOutputValueArraysForBlock(b));
            flags.push_back(fullBlock.getIncludePtArrayForBlock(b));
        }
        for (const std::size_t p : group)
            flags[static_cast<std::size_t>(points[p].first)][static_cast<std::size_t>(points[p].second)] = false;
        const SurrogateModelDataBlock others(numPtsInBlocks, inputs, outputs, flags, full->getNormalizers(),
                                             full->getMinValues(), full->getMaxValues());
        std::unique_ptr<AllPtsKrigingController> global;
        std::unique_ptr<NPtsKrigingController> local;
        if (settings.numNearestPoints == 0)
            global =
                std::make_unique<AllPtsKrigingController>(&others, &full->getSemivariogram(), settings.driftOrder, 1);
        else
            local = std::make_unique<NPtsKrigingController>(&others, &full->getSemivariogram(), settings.driftOrder,
                                                            settings.numNearestPoints);

        for (const std::size_t p : group)
        {
            std::vector<double*> target = inputs[static_cast<std::size_t>(points[p].first)];
            for (double*& array : target)
                array += points[p].second;
            std::set<int> outputVars;
            std::vector<double> variances(numOutputVars);
            std::vector<double*> valueArrays;
            std::vector<double*> varianceArrays;
            for (std::size_t w = 0; w < numOutputVars; ++w)
            {
                outputVars.insert(static_cast<int>(w));
                valueArrays.push_back(&estimates.values[w][p]);
                varianceArrays.push_back(&variances[w]);
            }
            double* const driftProduct = &estimates.driftProducts[p];
            if (global)
                global->interpolateWithDrift(target, outputVars, 1, valueArrays, varianceArrays, driftProduct);
            else
                local->interpolateWithDrift(target, outputVars, 1, valueArrays, varianceArrays, driftProduct);
            estimates.variances[p] = variances[0];
        }
    }
    return estimates;
}

} // namespace fenn::test

#endif
