#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"
#include "tests/support/Samples.h"

using fenn::test::BlockSet;
using fenn::test::estimatesOf;
using fenn::test::ModelSample;
using fenn::test::ModelSettings;
using fenn::test::randomValues;
using fenn::test::sameBits;
using fenn::test::SampleBlock;
using fenn::test::ValueArrays;

namespace
{

using Values = std::vector<double>;

Values estimatesOf(KrigingControllerAbstract&& controller, const std::vector<Values>& targets)
{
    ValueArrays targetArrays(targets);
    ValueArrays results(1, targets[0].size());
    std::vector<double*> noVariances;
    controller.interpolate(targetArrays.arrays(), {0}, static_cast<int>(targets[0].size()), results.arrays(),
                           noVariances);
    return results[0];
}

} // namespace

// A model that merges equals one over the samples that merging leaves, in the order in which it leaves them.
TEST(KrigingSurrogateModelPropertyTest, MergingEqualsSamplesMergedBeforehand)
{
    const std::vector<Values> targets = randomValues(2, 20, 0.0, 1.0, 77);
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::vector<Values> inputs = randomValues(2, 30, 0.0, 1.0, seed);
        const std::vector<Values> outputs = randomValues(1, 30, -5.0, 5.0, seed + 100);
        for (Values& values : inputs) // three times a coordinate is exact then, and averages are equal to their members
        {
            for (double& value : values)
                value = std::floor(value * 0x1p20) * 0x1p-20;
        }
        for (std::size_t i = 20; i < 30; ++i) // ten points coincide with five others
        {
            inputs[0][i] = inputs[0][(i - 20) / 2];
            inputs[1][i] = inputs[1][(i - 20) / 2];
        }
        ModelSample all(inputs, outputs);

        std::vector<Values> keptInputs(2);
        std::vector<Values> keptOutputs(1);
        for (std::size_t i = 5; i < 20; ++i)
        {
            keptInputs[0].push_back(inputs[0][i]);
            keptInputs[1].push_back(inputs[1][i]);
            keptOutputs[0].push_back(outputs[0][i]);
        }
        std::map<double, std::size_t> groups; // ascending in the first input variable
        for (std::size_t i = 0; i < 5; ++i)
            groups[inputs[0][i]] = i;
        for (const auto& [x, i] : groups)
        {
            const Values& z = outputs[0];
            const double y = inputs[1][i];
            keptInputs[0].push_back((x + x + x) * (1.0 / 3.0));
            keptInputs[1].push_back((y + y + y) * (1.0 / 3.0));
            keptOutputs[0].push_back((z[i] + z[20 + 2 * i] + z[21 + 2 * i]) * (1.0 / 3.0));
        }
        ModelSample merged(keptInputs, keptOutputs);

        for (const int numNearestPoints : {0, 8})
        {
            ModelSettings settings;
            settings.numNearestPoints = numNearestPoints;
            settings.rangeFraction = 0.5;
            const KrigingSurrogateModel mergedModel = merged.build(settings);
            settings.duplicateTolerance = 0.0;
            const KrigingSurrogateModel model = all.build(settings);
            ASSERT_EQ(fenn::ModelAccess::getDataBlock(model).getTotalNumUnblankedPoints(), 20);
            EXPECT_TRUE(sameBits(fenn::test::estimatesOf(model, targets, {0})[0],
                                 fenn::test::estimatesOf(mergedModel, targets, {0})[0]));
        }
    }
}

TEST(KrigingSurrogateModelPropertyTest, BlankedPointsChangeNoBitOfAnEstimate)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Values> inputs = randomValues(2, 25, 0.0, 1.0, 5);
    const std::vector<Values> outputs = randomValues(1, 25, -5.0, 5.0, 6);
    const std::vector<Values> targets = randomValues(2, 30, 0.0, 1.0, 7);

    // The same points in two blocks, each followed by a blanked one full of nonsense.
    std::vector<SampleBlock> blocks(2, SampleBlock{{{}, {}}, {{}}, {}});
    for (std::size_t i = 0; i < 25; ++i)
    {
        SampleBlock& block = blocks[i < 10 ? 0 : 1];
        block.isUnblanked.push_back(true);
        block.isUnblanked.push_back(false);
        for (std::size_t v = 0; v < 2; ++v)
        {
            block.inputs[v].push_back(inputs[v][i]);
            block.inputs[v].push_back(i % 2 == 0 ? notANumber : inputs[v][i]);
        }
        block.outputs[0].push_back(outputs[0][i]);
        block.outputs[0].push_back(1e300);
        block.numPts += 2;
    }
    BlockSet withBlanked(blocks, {0.0, 0.0}, {1.0, 1.0});
    BlockSet without({{inputs, outputs, std::vector<bool>(25, true)}}, {0.0, 0.0}, {1.0, 1.0});
    const Values low{0.0, 0.0};
    const Values high{1.0, 1.0};
    SphericalSemivariogram semivariogram(low, without.getNormalizers(), low, high, 0.7, 0.01);

    EXPECT_TRUE(sameBits(estimatesOf(AllPtsKrigingController(&*withBlanked, &semivariogram, 1), targets),
                         estimatesOf(AllPtsKrigingController(&*without, &semivariogram, 1), targets)));
    EXPECT_TRUE(sameBits(estimatesOf(NPtsKrigingController(&*withBlanked, &semivariogram, 1, 9), targets),
                         estimatesOf(NPtsKrigingController(&*without, &semivariogram, 1, 9), targets)));
}

// Weights sum to 1, up to the rounding of the solution: at most a few thousand units in the last place for these
// systems of up to 40 rows, whose condition is below 1e4.
TEST(KrigingSurrogateModelPropertyTest, AConstantOutputIsReproduced)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
    {
        for (const int numNearestPoints : {0, 12})
        {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", nearest " << numNearestPoints);
            ModelSample sample(randomValues(2, 36, 0.0, 1.0, seed), {Values(36, 7.0)});
            ModelSettings settings;
            settings.driftOrder = static_cast<int>(seed % 2);
            settings.nugget = 0.05;
            settings.numNearestPoints = numNearestPoints;
            const KrigingSurrogateModel model = sample.build(settings);
            const double epsilon = std::numeric_limits<double>::epsilon();
            const std::vector<Values> targets = randomValues(2, 25, 0.0, 1.0, seed + 500);
            const Values estimates = fenn::test::estimatesOf(model, targets, {0})[0];
            for (const double estimate : estimates)
                EXPECT_NEAR(estimate, 7.0, 7.0 * 40.0 * epsilon * 1e4);
        }
    }
}

// Doubling is exact: it changes no bit of a weight, and of an estimate the exponent only.
TEST(KrigingSurrogateModelPropertyTest, DoubledOutputsGiveDoubledEstimates)
{
    const std::vector<Values> inputs = randomValues(3, 40, -1.0, 1.0, 11);
    std::vector<Values> outputs = randomValues(1, 40, -5.0, 5.0, 12);
    outputs.push_back(outputs[0]);
    for (double& value : outputs[1])
        value *= 2.0;
    ModelSample sample(inputs, outputs);
    for (const int numNearestPoints : {0, 10})
    {
        ModelSettings settings;
        settings.numNearestPoints = numNearestPoints;
        const KrigingSurrogateModel model = sample.build(settings);
        std::vector<Values> estimates = fenn::test::estimatesOf(model, randomValues(3, 25, -1.0, 1.0, 13), {0, 1});
        for (double& value : estimates[0])
            value *= 2.0;

        EXPECT_TRUE(sameBits(estimates[1], estimates[0]));
    }
}

// Scaling a whole variable by a power of two, with its targets, cancels in the normalisation to the bit.
TEST(KrigingSurrogateModelPropertyTest, AnotherUnitOfAVariableChangesNoBit)
{
    std::vector<Values> inputs = randomValues(2, 30, 0.0, 1.0, 21);
    std::vector<Values> targets = randomValues(2, 25, 0.0, 1.0, 22);
    const std::vector<Values> outputs = randomValues(1, 30, -5.0, 5.0, 23);
    ModelSample sample(inputs, outputs);
    ModelSettings settings;
    settings.driftOrder = 2;
    const KrigingSurrogateModel model = sample.build(settings);
    const Values expected = fenn::test::estimatesOf(model, targets, {0})[0];

    for (double& value : inputs[1])
        value *= 1024.0;
    for (double& value : targets[1])
        value *= 1024.0;
    ModelSample other(inputs, outputs);
    const KrigingSurrogateModel otherModel = other.build(settings);

    EXPECT_TRUE(sameBits(fenn::test::estimatesOf(otherModel, targets, {0})[0], expected));
}
