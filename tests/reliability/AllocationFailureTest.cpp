// Every allocation of the library's own code fails once, one run each, whichever thread asks for it: through building a
// model, choosing outputs, requests of both strategies and the data block. Prints how many there were.

#include <iostream>
#include <memory>
#include <new>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/DuplicateMerger.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/AllocationSweep.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/ModelSample.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/SampleBlocks.h"

using namespace fenn::test;

namespace
{

using Estimates = std::vector<std::vector<double>>;

constexpr std::size_t numTargets = 150;

/// Two input variables, two outputs; every fifth sample comes twice.
ModelSample samplesWithDuplicates(std::size_t numPts)
{
    Estimates inputs = randomValues(2, numPts, -1.0, 1.0, 70);
    for (std::size_t i = 5; i < numPts; i += 5)
    {
        for (std::vector<double>& variable : inputs)
            variable[i] = variable[i - 1];
    }
    return {inputs, randomValues(2, numPts, 0.0, 10.0, 71)};
}

ModelSettings settingsFor(int numNearestPoints)
{
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;
    settings.driftOrder = 1;
    settings.nugget = 0.01;
    settings.numNearestPoints = numNearestPoints;
    return settings;
}

std::unique_ptr<KrigingSurrogateModel> makeModel(ModelSample& samples, const ModelSettings& settings)
{
    return std::make_unique<KrigingSurrogateModel>(
        samples.inputs.arrays(), samples.outputs.arrays(), samples.numPts, settings.duplicateTolerance,
        settings.scaleFactors, settings.driftOrder, settings.rangeFraction, settings.nugget, settings.numNearestPoints);
}

void expectSameBits(const Estimates& actual, const Estimates& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k)
        EXPECT_TRUE(sameBits(actual[k], expected[k]));
}

/// Builds models of so many samples; after each failure a model built whole must answer as one did before.
AllocationSweep sweepConstruction(const char* name, std::size_t numPts, int numNearestPoints)
{
    ModelSample samples = samplesWithDuplicates(numPts);
    const ModelSettings settings = settingsFor(numNearestPoints);
    const Estimates targets = randomValues(2, 7, -1.0, 1.0, 72);
    const Estimates expected = estimatesOf(*makeModel(samples, settings), targets, {0, 1});
    return failEachAllocation(
        name, [&] { makeModel(samples, settings); },
        [&] {
            expectSameBits(estimatesOf(*makeModel(samples, settings), targets, {0, 1}), expected);
        });
}

AllocationSweep sweepRequests(const char* name, std::size_t numPts, int numNearestPoints)
{
    ModelSample samples = samplesWithDuplicates(numPts);
    const auto model = makeModel(samples, settingsFor(numNearestPoints));
    const Estimates targets = randomValues(2, numTargets, -1.0, 1.0, 73);
    const Estimates expected = estimatesOf(*model, targets, {0, 1});
    ValueArrays targetArrays(targets);
    ResultArrays results(2, numTargets);
    const std::set<int> outputVars{0, 1};
    return failEachAllocation(
        name,
        [&] { model->interpolateDependentValues(targetArrays.arrays(), outputVars, results.arrays(), numTargets); },
        [&] {
            expectSameBits(estimatesOf(*model, targets, {0, 1}), expected);
        });
}

/// A controller over 320 samples, whose system several threads factorise.
struct LargeSamples
{
    LargeSamples()
        : semivariogram(std::vector<int>(2), samples.normalizers, std::vector<double>(2, -1.0),
                        std::vector<double>(2, 1.0), 0.5, 0.05)
    {
    }

    template <typename Controller>
    Estimates request(Controller& controller)
    {
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);
        requestInto(controller, values, variances);
        return {values[0], values[1], variances[0], variances[1]};
    }

    template <typename Controller>
    void requestInto(Controller& controller, ResultArrays& values, ResultArrays& variances)
    {
        controller.interpolate(targets.arrays(), outputVars, static_cast<int>(numTargets), values.arrays(),
                               variances.arrays());
    }

    template <typename Controller>
    AllocationSweep sweep(const char* name, Controller& controller)
    {
        const Estimates expected = request(controller);
        ResultArrays values(2, numTargets);
        ResultArrays variances(2, numTargets);
        return failEachAllocation(
            name, [&] { requestInto(controller, values, variances); },
            [&] { expectSameBits(request(controller), expected); });
    }

    SampleBlocks samples{SampleShape{2, 2, {320}, 0.0, 0}, 74};
    SphericalSemivariogram semivariogram;
    ValueArrays targets{randomValues(2, numTargets, -1.0, 1.0, 75)};
    const std::set<int> outputVars{0, 1};
};

/// What a data block shows of itself.
struct Shown
{
    explicit Shown(const SurrogateModelDataBlock& block)
        : counts{block.getNumBlocks(), block.getNumInputVars(), block.getNumOutputVars(),
                 block.getTotalNumUnblankedPoints()}
    {
        block.getAllUnblankedPts(points);
        for (int b = 0; b < block.getNumBlocks(); ++b)
        {
            counts.push_back(block.getNumPtsInBlock(b));
            flags.push_back(block.getIncludePtArrayForBlock(b));
            for (std::size_t v = 0; v < block.getInputValueArraysForBlock(b).size(); ++v)
                values.push_back(inputValues(block, b, v));
            for (std::size_t w = 0; w < block.getOutputValueArraysForBlock(b).size(); ++w)
                values.push_back(outputValues(block, b, w));
        }
    }

    void expectEqual(const Shown& expected) const
    {
        EXPECT_EQ(counts, expected.counts);
        EXPECT_EQ(points, expected.points);
        EXPECT_EQ(flags, expected.flags);
        expectSameBits(values, expected.values);
    }

    std::vector<int> counts;
    std::vector<std::pair<int, int>> points;
    std::vector<std::vector<bool>> flags;
    Estimates values;
};

/// Samples in two blocks with coincident points within and across them; one point blanked.
struct TwoBlocks : BlockSet
{
    TwoBlocks()
        : BlockSet({{{{0.0, 1.0, 1.0, 2.0, 3.0}, {0.0, 5.0, 5.0, 1.0, 2.0}},
                     {{1.0, 2.0, 3.0, 4.0, 5.0}},
                     {true, true, true, true, true}},
                    {{{2.0, 3.0, 0.0}, {1.0, 2.0, 0.0}}, {{6.0, 7.0, 8.0}}, {true, true, false}}},
                   {0.0, 0.0}, {3.0, 5.0})
    {
    }
};

} // namespace

TEST(AllocationFailureTest, TheWatchSeesEveryFormOfNewOnEveryThread)
{
    std::size_t numSeen = 0;
    {
        const AllocationWatch watch;
        void* keptByAnotherThread = nullptr;
        std::thread([&] { keptByAnotherThread = ::operator new(8); }).join();
        void* const kept[] = {::operator new(8),
                              ::operator new[](8),
                              ::operator new(8, std::nothrow),
                              ::operator new[](8, std::nothrow),
                              ::operator new (8, std::align_val_t{64}),
                              ::operator new[](8, std::align_val_t{64}),
                              ::operator new (8, std::align_val_t{64}, std::nothrow),
                              ::operator new[](8, std::align_val_t{64}, std::nothrow)};
        numSeen = static_cast<std::size_t>(watch.getNumLive());
        ::operator delete(keptByAnotherThread);
        ::operator delete(kept[0]);
        ::operator delete[](kept[1]);
        ::operator delete(kept[2], std::nothrow);
        ::operator delete[](kept[3], std::nothrow);
        ::operator delete (kept[4], std::align_val_t{64});
        ::operator delete[](kept[5], std::align_val_t{64});
        ::operator delete (kept[6], std::align_val_t{64}, std::nothrow);
        ::operator delete[](kept[7], std::align_val_t{64}, std::nothrow);
        EXPECT_EQ(watch.getNumLive(), 0);
    }
    EXPECT_EQ(numSeen, 9U);
}

TEST(AllocationFailureTest, BuildingALocalModelWithDuplicates)
{
    EXPECT_GT(sweepConstruction("building a local model of 40 samples", 40, 9).numFailed, 20);
}

TEST(AllocationFailureTest, BuildingAGlobalModelWithDuplicates)
{
    EXPECT_GT(sweepConstruction("building a global model of 40 samples", 40, 0).numFailed, 20);
}

TEST(AllocationFailureTest, BuildingAGlobalModelFactorisedByThePool)
{
    EXPECT_GT(sweepConstruction("building a global model of 400 samples", 400, 0).numFailed, 20);
}

TEST(AllocationFailureTest, BuildingAControllerOfFourThreads)
{
    LargeSamples large;
    AllPtsKrigingController whole(&large.samples.block(), &large.semivariogram, 1, 4);
    const Estimates expected = large.request(whole);

    const AllocationSweep sweep = failEachAllocation(
        "building a controller of 320 samples and 4 threads",
        [&] { AllPtsKrigingController(&large.samples.block(), &large.semivariogram, 1, 4); },
        [&]
        {
            AllPtsKrigingController controller(&large.samples.block(), &large.semivariogram, 1, 4);
            expectSameBits(large.request(controller), expected);
        });

    EXPECT_GT(sweep.numFailed, 10);
}

TEST(AllocationFailureTest, ChoosingOutputVariables)
{
    for (const int numNearestPoints : {0, 9})
    {
        ModelSample samples = samplesWithDuplicates(40);
        const auto model = makeModel(samples, settingsFor(numNearestPoints));
        const Estimates targets = randomValues(2, 7, -1.0, 1.0, 76);
        const Estimates expected = estimatesOf(*model, targets, {0, 1});
        const std::set<int> chosen{0, 1};

        const AllocationSweep sweep = failEachAllocation(
            "choosing two outputs", [&] { model->activateDependentVariables(chosen); },
            [&] {
                expectSameBits(estimatesOf(*model, targets, {0, 1}), expected);
            },
            2);

        EXPECT_EQ(sweep.numFailed, 2);
    }
}

TEST(AllocationFailureTest, RequestsOfALocalModel)
{
    EXPECT_GT(sweepRequests("a request of a local model", 400, 9).numFailed, 10);
}

TEST(AllocationFailureTest, RequestsOfAGlobalModelOnItsWorkersToo)
{
    const AllocationSweep sweep = sweepRequests("a request of a global model", 60, 0);

    EXPECT_GT(sweep.numFailed, 10);
    EXPECT_GT(sweep.numOnOtherThreads, 5);
}

TEST(AllocationFailureTest, RequestsWithVariancesOnFourThreads)
{
    LargeSamples large;
    AllPtsKrigingController controller(&large.samples.block(), &large.semivariogram, 1, 4);

    const AllocationSweep sweep = large.sweep("a request with variances on 4 threads", controller);

    EXPECT_GT(sweep.numOnOtherThreads, 20);
}

TEST(AllocationFailureTest, RequestsWithVariancesOfALocalController)
{
    LargeSamples large;
    NPtsKrigingController controller(&large.samples.block(), &large.semivariogram, 1, 12);

    EXPECT_GT(large.sweep("a request with variances of a local controller", controller).numFailed, 10);
}

TEST(AllocationFailureTest, BuildingADataBlock)
{
    TwoBlocks given;
    std::vector<SampleBlock>& samples = given.getSamples();
    const std::vector<int> sizes = listOf(samples, [](SampleBlock& block) { return block.numPts; });
    const auto inputs = listOf(samples, [](SampleBlock& block) { return pointersTo(block.inputs); });
    const auto outputs = listOf(samples, [](SampleBlock& block) { return pointersTo(block.outputs); });
    const auto flags = listOf(samples, [](SampleBlock& block) { return block.isUnblanked; });
    const std::vector<double> limits(2);
    const auto& normalizers = given.getNormalizers();
    const auto expectWhole = [&]
    {
        const SurrogateModelDataBlock block(sizes, inputs, outputs, flags, normalizers, limits, limits);
        Shown(block).expectEqual(Shown(*given));
    };

    const AllocationSweep single = failEachAllocation(
        "building a data block of one block",
        [&] { SurrogateModelDataBlock(5, inputs[0], outputs[0], flags[0], normalizers, limits, limits); }, expectWhole);
    const AllocationSweep several = failEachAllocation(
        "building a data block of two blocks",
        [&] { SurrogateModelDataBlock(sizes, inputs, outputs, flags, normalizers, limits, limits); }, expectWhole);

    EXPECT_GE(single.numFailed, 7);
    EXPECT_GE(several.numFailed, 10);
}

TEST(AllocationFailureTest, AskingADataBlockForItsPoints)
{
    TwoBlocks given;
    std::vector<std::pair<int, int>> expected;
    given->getAllUnblankedPts(expected);
    std::vector<std::pair<int, int>> points;

    const AllocationSweep sweep = failEachAllocation(
        "listing a data block's points",
        [&]
        {
            std::vector<std::pair<int, int>> listed;
            given->getAllUnblankedPts(listed);
        },
        [&]
        {
            given->getAllUnblankedPts(points);
            EXPECT_EQ(points, expected);
        });

    EXPECT_EQ(sweep.numFailed, 1);
}

TEST(AllocationFailureTest, EveryOtherQuestionToADataBlockNeedsNoMemory)
{
    TwoBlocks given;
    double min = 0.0;
    double max = 0.0;
    double sum = 0.0;

    const AllocationSweep sweep = failEachAllocation(
        "a data block's figures",
        [&]
        {
            given->getOutputVarMinMax(0, min, max);
            sum = given->getOutputVarMean(0) + given->getOutputVarSampleVariance(0) + given->getNumBlocks() +
                  given->getNumInputVars() + given->getNumOutputVars() + given->getTotalNumUnblankedPoints() +
                  given->getNumPtsInBlock(1) + static_cast<double>(given->getIncludePtArrayForBlock(1).size()) +
                  *given->getInputValueArraysForBlock(1)[0] + *given->getOutputValueArraysForBlock(1)[0] +
                  given->getInputVarNormalizers()[0].getScale() + (given->validate() ? 1.0 : 0.0);
        },
        [&] { EXPECT_GT(sum, max); });

    EXPECT_EQ(sweep.numFailed, 0);
}

TEST(AllocationFailureTest, MergingThatFailsLeavesTheDataBlockAsItWasAndCanBeRepeated)
{
    TwoBlocks merged;
    const Shown before(*merged);
    merged->removeDuplicatePts(0.0);
    const Shown after(*merged);
    int numFailed = 0;
    for (std::size_t failing = 0;; ++failing)
    {
        SCOPED_TRACE(failing);
        auto given = std::make_unique<TwoBlocks>();
        bool isOutOfMemory = false;
        std::ptrdiff_t numLive = -1;
        {
            const AllocationWatch watch(failing);
            try
            {
                (*given)->removeDuplicatePts(0.0);
            }
            catch (const std::bad_alloc&)
            {
                isOutOfMemory = true;
                Shown(**given).expectEqual(before);
                (*given)->removeDuplicatePts(0.0);
            }
            if (!watch.hasFailed())
                break;
            EXPECT_TRUE(isOutOfMemory || watch.hasFailedWithoutThrowing());
            Shown(**given).expectEqual(after);
            given.reset();
            numLive = watch.getNumLive();
        }
        EXPECT_EQ(numLive, 0);
        ++numFailed;
    }
    std::cout << "Allocations failed: " << numFailed << " in merging duplicates\n";
    EXPECT_GE(numFailed, 10);
}

TEST(AllocationFailureTest, MergingThatFailsWhileItRecordsLeavesNoGroups)
{
    TwoBlocks untouched;
    const Shown before(*untouched);
    int numFailed = 0;
    for (std::size_t failing = 0;; ++failing)
    {
        SCOPED_TRACE(failing);
        TwoBlocks given;
        std::vector<fenn::MergedGroup> groups;
        bool isOutOfMemory = false;
        {
            const AllocationWatch watch(failing);
            try
            {
                fenn::DuplicateMerger(*given, 0.0, &groups).merge();
            }
            catch (const std::bad_alloc&)
            {
                isOutOfMemory = true;
            }
            if (!watch.hasFailed())
                break;
        }
        ++numFailed;
        if (isOutOfMemory)
        {
            EXPECT_TRUE(groups.empty());
            Shown(*given).expectEqual(before);
        }
    }
    EXPECT_GE(numFailed, 12);
}
