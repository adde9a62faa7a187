#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/ControllerProbe.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"

using fenn::test::estimatesOf;
using fenn::test::inputValues;
using fenn::test::isGlobal;
using fenn::test::isLocal;
using fenn::test::ModelSample;
using fenn::test::ModelSettings;
using fenn::test::outputValues;
using fenn::test::sameBits;

namespace
{

using Values = std::vector<double>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

ModelSettings withNearest(int numNearestPoints)
{
    ModelSettings settings;
    settings.numNearestPoints = numNearestPoints;
    return settings;
}

ModelSettings withTolerance(double duplicateTolerance, int numNearestPoints = 0)
{
    ModelSettings settings;
    settings.duplicateTolerance = duplicateTolerance;
    settings.numNearestPoints = numNearestPoints;
    return settings;
}

ModelSettings withDrift(int driftOrder, const Values& scaleFactors = {})
{
    ModelSettings settings;
    settings.driftOrder = driftOrder;
    settings.scaleFactors = scaleFactors;
    return settings;
}

/// Six samples in one input variable, of which the last two coincide.
class KrigingSurrogateModelAssemblyTest : public testing::Test
{
protected:
    ModelSample sixSamples{{{0.0, 1.0, 2.0, 4.0, 8.0, 8.0}}, {{1.0, 3.0, 2.0, 5.0, 4.0, 6.0}}};
    ModelSample fourSamples{{{0.0, 1.0, 3.0, 10.0}}, {{1.0, 3.0, 2.0, 5.0}}};
};

} // namespace

TEST_F(KrigingSurrogateModelAssemblyTest, AsManyNearestPointsAsSamplesMeanAGlobalModel)
{
    EXPECT_TRUE(isGlobal(fourSamples.build(withNearest(4))));
}

TEST_F(KrigingSurrogateModelAssemblyTest, OneNearestPointLessMeansALocalModel)
{
    EXPECT_TRUE(isLocal(fourSamples.build(withNearest(3))));
}

TEST_F(KrigingSurrogateModelAssemblyTest, NoOrTooManyNearestPointsMeanAGlobalModel)
{
    EXPECT_TRUE(isGlobal(fourSamples.build(withNearest(0))));
    EXPECT_TRUE(isGlobal(fourSamples.build(withNearest(5))));
    EXPECT_TRUE(isGlobal(fourSamples.build(withNearest(std::numeric_limits<int>::max()))));
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheNearestPointsAreComparedWithThePointsLeftAfterMerging)
{
    EXPECT_TRUE(isGlobal(sixSamples.build(withTolerance(0.0, 5)))); // five are left of six
    EXPECT_TRUE(isLocal(sixSamples.build(withTolerance(0.0, 4))));
    EXPECT_TRUE(isLocal(sixSamples.build(withTolerance(-1.0, 5))));
}

TEST_F(KrigingSurrogateModelAssemblyTest, ANegativeNumberOfNearestPointsIsRefusedByTheKrigingMatrix)
{
    for (const int numNearestPoints : {-1, std::numeric_limits<int>::min()})
        EXPECT_EQ(fourSamples.failureOf(withNearest(numNearestPoints)), "Not enough source points for kriging.");
}

TEST_F(KrigingSurrogateModelAssemblyTest, NearestPointsMustExceedTheInputVariables)
{
    EXPECT_EQ(fourSamples.failureOf(withNearest(1)), "Not enough source points for kriging.");
    EXPECT_EQ(fourSamples.failureOf(withNearest(2)), "");
}

TEST_F(KrigingSurrogateModelAssemblyTest, SamplesMustExceedTheInputVariables)
{
    ModelSample three({{0.0, 1.0, 2.0}, {0.0, 2.0, 1.0}}, {{1.0, 2.0, 3.0}});
    ModelSample two({{0.0, 1.0}, {0.0, 2.0}}, {{1.0, 2.0}});

    EXPECT_EQ(three.failureOf(), "");
    EXPECT_EQ(two.failureOf(), "Not enough source points for kriging.");
}

TEST_F(KrigingSurrogateModelAssemblyTest, NoSamplesAtAllAreNotEnough)
{
    ModelSample oneValue({{5.0}}, {{1.0}});
    oneValue.numPts = 0;

    EXPECT_EQ(oneValue.failureOf(withDrift(0, {1.0})), "Not enough source points for kriging.");
}

TEST_F(KrigingSurrogateModelAssemblyTest, WithoutSamplesNoValueIsRead)
{
    ModelSample nothing({{}, {}}, {{}});
    nothing.inputs.arrays() = {nullptr, nullptr};

    EXPECT_EQ(nothing.failureOf(withDrift(0, {1.0, 1.0})), "Not enough source points for kriging.");
    EXPECT_EQ(nothing.failureOf(), "Value range too small to normalize data");
}

TEST_F(KrigingSurrogateModelAssemblyTest, ANegativeNumberOfSamplesCountsNone)
{
    ModelSample sample({{5.0, 6.0}}, {{1.0, 2.0}});
    for (const int numPts : {-1, -64, -65, std::numeric_limits<int>::min()})
    {
        sample.numPts = numPts;

        EXPECT_EQ(sample.failureOf(withDrift(0, {1.0})), "Not enough source points for kriging.");
    }
}

TEST_F(KrigingSurrogateModelAssemblyTest, SamplesMustSufficeForTheDrift)
{
    ModelSample three({{0.0, 1.0, 2.0}}, {{1.0, 2.0, 3.0}});

    EXPECT_EQ(three.failureOf(withDrift(3)), "");
    EXPECT_EQ(three.failureOf(withDrift(4)), "Not enough source points to calculate drift.");
}

TEST_F(KrigingSurrogateModelAssemblyTest, MergedSamplesNoLongerCountAgainstTheRequirements)
{
    ModelSample three({{0.0, 1.0, 1.0}, {0.0, 2.0, 2.0}}, {{1.0, 2.0, 3.0}});

    EXPECT_EQ(three.failureOf(withTolerance(-1.0)), "");
    EXPECT_EQ(three.failureOf(withTolerance(0.0)), "Not enough source points for kriging.");
}

TEST_F(KrigingSurrogateModelAssemblyTest, AConstantVariableUnderALinearDriftIsSingularAtOnce)
{
    ModelSample constant({{0.0, 1.0, 2.0, 3.0}, {5.0, 5.0, 5.0, 5.0}}, {{1.0, 2.0, 3.0, 4.0}});

    EXPECT_EQ(constant.failureOf(withDrift(1, {1.0, 1.0})), "Singular matrix");
    EXPECT_EQ(constant.failureOf(withDrift(0, {1.0, 1.0})), "");
}

TEST_F(KrigingSurrogateModelAssemblyTest, ALocalModelFactorisesNothingAtConstruction)
{
    ModelSample constant({{0.0, 1.0, 2.0, 3.0}, {5.0, 5.0, 5.0, 5.0}}, {{1.0, 2.0, 3.0, 4.0}});
    ModelSettings settings = withDrift(1, {1.0, 1.0});
    settings.numNearestPoints = 3;

    EXPECT_EQ(constant.failureOf(settings), "");
}

TEST_F(KrigingSurrogateModelAssemblyTest, EverySampleStartsUnblankedInOneBlock)
{
    const KrigingSurrogateModel model = sixSamples.build();
    const SurrogateModelDataBlock& dataBlock = fenn::ModelAccess::getDataBlock(model);

    EXPECT_EQ(dataBlock.getNumBlocks(), 1);
    EXPECT_EQ(dataBlock.getNumPtsInBlock(0), 6);
    EXPECT_EQ(dataBlock.getIncludePtArrayForBlock(0), std::vector<bool>(6, true));
    EXPECT_EQ(dataBlock.getInputValueArraysForBlock(0), sixSamples.inputs.arrays());
    EXPECT_EQ(dataBlock.getOutputValueArraysForBlock(0), sixSamples.outputs.arrays());
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheDataBlockIsLentTheModelsOwnNormalizers)
{
    const KrigingSurrogateModel model = sixSamples.build();

    EXPECT_EQ(&fenn::ModelAccess::getDataBlock(model).getInputVarNormalizers(),
              &fenn::ModelAccess::getNormalizers(model));
}

TEST_F(KrigingSurrogateModelAssemblyTest, ToleranceZeroMergesCoincidentSamples)
{
    for (const double tolerance : {0.0, -0.0})
    {
        const KrigingSurrogateModel model = sixSamples.build(withTolerance(tolerance));
        const SurrogateModelDataBlock& dataBlock = fenn::ModelAccess::getDataBlock(model);

        EXPECT_EQ(dataBlock.getTotalNumUnblankedPoints(), 5);
        EXPECT_EQ(dataBlock.getNumBlocks(), 2);
        EXPECT_EQ(inputValues(dataBlock, 1, 0), (Values{8.0}));
        EXPECT_EQ(outputValues(dataBlock, 1, 0), (Values{5.0}));
    }
}

TEST_F(KrigingSurrogateModelAssemblyTest, ANegativeOrNaNToleranceMergesNothing)
{
    for (const double tolerance : {-1.0, -0x1p-1074, notANumber})
    {
        const KrigingSurrogateModel model = sixSamples.build(withTolerance(tolerance, 3));
        EXPECT_EQ(fenn::ModelAccess::getDataBlock(model).getTotalNumUnblankedPoints(), 6) << tolerance;
    }
}

TEST_F(KrigingSurrogateModelAssemblyTest, ANegativeOrNaNToleranceMergesNothingWithoutARangeEither)
{
    // In a variable without a range the data block's threshold would be 0 whatever the tolerance.
    ModelSample equal({{5.0, 5.0, 5.0}}, {{1.0, 2.0, 3.0}});
    for (const double tolerance : {-1.0, notANumber})
    {
        ModelSettings settings = withTolerance(tolerance, 2);
        settings.scaleFactors = {1.0};
        const KrigingSurrogateModel model = equal.build(settings);
        EXPECT_EQ(fenn::ModelAccess::getDataBlock(model).getTotalNumUnblankedPoints(), 3) << tolerance;
    }
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheToleranceIsAFractionOfTheSamplesRange)
{
    const KrigingSurrogateModel model = fourSamples.build(withTolerance(0.1)); // 1 of 10

    EXPECT_EQ(fenn::ModelAccess::getDataBlock(model).getIncludePtArrayForBlock(0),
              (std::vector<bool>{false, false, true, true}));
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheSemivariogramsRangeIsTheFractionOfTheNormalisedDiagonal)
{
    // Both ranges are 2 when normalised. Half of the diagonal is sqrt(2), which is 5 sqrt(2) = 7.071 in one raw range.
    ModelSample square({{0.0, 10.0, 3.0, 4.0}, {0.0, 10.0, 7.0, 2.0}}, {{1.0, 2.0, 3.0, 4.0}});
    ModelSettings settings;
    settings.rangeFraction = 0.5;
    const KrigingSurrogateModel model = square.build(settings);
    const SemivariogramInterface& semivariogram = fenn::ModelAccess::getSemivariogram(model);

    EXPECT_EQ(semivariogram.evaluate({7.072, 0.0}), 1.0);
    EXPECT_LT(semivariogram.evaluate({7.070, 0.0}), 1.0);
    EXPECT_EQ(semivariogram.evaluate({0.0, 7.072}), 1.0);
    EXPECT_LT(semivariogram.evaluate({0.0, 7.070}), 1.0);
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheSemivariogramTakesTheNugget)
{
    ModelSettings settings;
    settings.nugget = 0.125;
    const KrigingSurrogateModel model = fourSamples.build(settings);

    EXPECT_EQ(fenn::ModelAccess::getSemivariogram(model).evaluate({0.0}), 0.125);
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheSemivariogramsRangeUsesTheLimitsFromBeforeMerging)
{
    // 0 and 0.5 merge into 0.25; from there the range would be 9.75 and not 10.
    ModelSample samples({{0.0, 0.5, 5.0, 10.0}}, {{1.0, 2.0, 3.0, 4.0}});
    const KrigingSurrogateModel model = samples.build(withTolerance(0.06));
    const SemivariogramInterface& semivariogram = fenn::ModelAccess::getSemivariogram(model);

    ASSERT_EQ(fenn::ModelAccess::getDataBlock(model).getTotalNumUnblankedPoints(), 3);
    EXPECT_LT(semivariogram.evaluate({9.9}), 1.0);
    EXPECT_EQ(semivariogram.evaluate({10.0}), 1.0);
    EXPECT_EQ(fenn::ModelAccess::getMinValues(model), (Values{0.0}));
}

TEST_F(KrigingSurrogateModelAssemblyTest, ALocalModelUsesTheNearestSamplesOnly)
{
    const KrigingSurrogateModel model = fourSamples.build(withNearest(3));
    const Values before = estimatesOf(model, {{1.5}}, {0})[0];
    fourSamples.outputs[0][3] = 1000.0; // of 10, the farthest
    const Values farChanged = estimatesOf(model, {{1.5}}, {0})[0];
    fourSamples.outputs[0][2] = 1000.0; // of 3, the third nearest
    const Values nearChanged = estimatesOf(model, {{1.5}}, {0})[0];

    EXPECT_TRUE(sameBits(farChanged, before));
    EXPECT_FALSE(sameBits(nearChanged, before));
}

TEST_F(KrigingSurrogateModelAssemblyTest, TheDriftOrderReachesGlobalAndLocalModels)
{
    ModelSample line({{0.0, 1.0, 2.0, 4.0, 8.0}}, {{1.0, 3.0, 5.0, 9.0, 17.0}}); // 1 + 2 x
    for (const int numNearestPoints : {0, 4})
    {
        ModelSettings settings = withDrift(1);
        settings.numNearestPoints = numNearestPoints;
        const KrigingSurrogateModel model = line.build(settings);
        // A linear drift reproduces a line outside the samples too, but for the rounding of a system of seven rows.
        EXPECT_NEAR(estimatesOf(model, {{20.0}}, {0})[0][0], 41.0, 1e-12);
    }
    const KrigingSurrogateModel withoutDrift = line.build();
    EXPECT_LT(estimatesOf(withoutDrift, {{20.0}}, {0})[0][0], 20.0);
}

TEST_F(KrigingSurrogateModelAssemblyTest, ScaleFactorsAreTakenAsGiven)
{
    ModelSample square({{0.0, 10.0, 3.0, 4.0}, {0.0, 10.0, 7.0, 2.0}}, {{1.0, 2.0, 3.0, 4.0}});
    const KrigingSurrogateModel model = square.build(withDrift(0, {1.0, 4.0}));

    EXPECT_EQ(fenn::ModelAccess::getNormalizers(model)[0].getScale(), 0.1);
    EXPECT_EQ(fenn::ModelAccess::getNormalizers(model)[1].getScale(), 0.4);
}
