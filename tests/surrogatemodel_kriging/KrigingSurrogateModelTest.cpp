#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/SourcePointRef.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ControllerProbe.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"

using fenn::test::activeOutputVarsOf;
using fenn::test::estimatesOf;
using fenn::test::ModelSample;
using fenn::test::ModelSettings;
using fenn::test::sameBits;
using fenn::test::ValueArrays;

namespace
{

using Values = std::vector<double>;

/// Five samples in one input variable, with three outputs.
class KrigingSurrogateModelTest : public testing::Test
{
protected:
    static ModelSettings localSettings()
    {
        ModelSettings settings;
        settings.numNearestPoints = 3;
        return settings;
    }

    ModelSample sample{{{0.0, 1.0, 2.0, 4.0, 8.0}},
                       {{1.0, 3.0, 2.0, 5.0, 4.0}, {10.0, 30.0, 20.0, 50.0, 40.0}, {-1.0, -3.0, -2.0, -5.0, -4.0}}};
};

/// A second interface of a host, beside the model's own.
class OtherInterface : public virtual SurrogateModelInterface
{
};

class ModelOfTwoInterfaces : public OtherInterface, public KrigingSurrogateModel
{
};

} // namespace

TEST_F(KrigingSurrogateModelTest, NoReportIsAvailable)
{
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        const KrigingSurrogateModel model = sample.build(settings);
        EXPECT_FALSE(model.surfaceCoefficientInformationAvailable());
        EXPECT_FALSE(model.qualityMetricInformationAvailable());
    }
}

TEST_F(KrigingSurrogateModelTest, EveryReportIsEmptyWhateverItsIndex)
{
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        KrigingSurrogateModel model = sample.build(settings);
        for (const int index : {0, 1, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        {
            EXPECT_EQ(model.surfaceCoefficientInformation(index), "");
            EXPECT_EQ(model.qualityMetricInformation(index), "");
        }
    }
}

TEST_F(KrigingSurrogateModelTest, ActivatedVariablesReachTheController)
{
    KrigingSurrogateModel model = sample.build();
    model.activateDependentVariables({2, 0});

    EXPECT_EQ(activeOutputVarsOf(model), (std::set<int>{0, 2}));
}

TEST_F(KrigingSurrogateModelTest, EachActivationReplacesTheOneBefore)
{
    KrigingSurrogateModel model = sample.build(localSettings());
    model.activateDependentVariables({0, 1});
    model.activateDependentVariables({2});

    EXPECT_EQ(activeOutputVarsOf(model), (std::set<int>{2}));
}

TEST_F(KrigingSurrogateModelTest, AnEmptySetIsActivatedLikeAnyOther)
{
    KrigingSurrogateModel model = sample.build();
    model.activateDependentVariables({0, 1});
    model.activateDependentVariables({});

    EXPECT_TRUE(activeOutputVarsOf(model).empty());
}

TEST_F(KrigingSurrogateModelTest, ActivationDoesNotCheckItsIndices)
{
    KrigingSurrogateModel model = sample.build();
    model.activateDependentVariables({-5, 99});

    EXPECT_EQ(activeOutputVarsOf(model), (std::set<int>{-5, 99}));
}

TEST_F(KrigingSurrogateModelTest, ActivationChangesNoEstimate)
{
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        KrigingSurrogateModel model = sample.build(settings);
        const auto before = estimatesOf(model, {{0.5, 3.0}}, {0, 2});
        model.activateDependentVariables({0, 2});
        const auto after = estimatesOf(model, {{0.5, 3.0}}, {0, 2});

        EXPECT_TRUE(sameBits(after[0], before[0]));
        EXPECT_TRUE(sameBits(after[1], before[1]));
    }
}

TEST_F(KrigingSurrogateModelTest, ARequestOfNoTargetsWritesNothing)
{
    std::vector<double*> noArrays{nullptr};
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        const KrigingSurrogateModel model = sample.build(settings);
        EXPECT_NO_THROW(model.interpolateDependentValues(noArrays, {0}, noArrays, 0));
    }
}

TEST_F(KrigingSurrogateModelTest, ARequestOfNoOutputsWritesNothing)
{
    std::vector<double*> noResults;
    ValueArrays targets({{0.5, 3.0}});
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        const KrigingSurrogateModel model = sample.build(settings);
        EXPECT_NO_THROW(model.interpolateDependentValues(targets.arrays(), {}, noResults, 2));
    }
}

TEST_F(KrigingSurrogateModelTest, ResultArraysBelongToTheIndicesInAscendingOrder)
{
    const KrigingSurrogateModel model = sample.build();
    const auto all = estimatesOf(model, {{0.5, 3.0}}, {0, 1, 2});
    const auto some = estimatesOf(model, {{0.5, 3.0}}, {2, 0});

    EXPECT_TRUE(sameBits(some[0], all[0]));
    EXPECT_TRUE(sameBits(some[1], all[2]));
    EXPECT_FALSE(sameBits(all[0], all[2]));
}

TEST_F(KrigingSurrogateModelTest, NothingIsWrittenBeyondTheTargets)
{
    const KrigingSurrogateModel model = sample.build();
    ValueArrays targets({{0.5, 3.0, 5.0}});
    ValueArrays results({{-77.0, -77.0, -77.0}});
    model.interpolateDependentValues(targets.arrays(), {0}, results.arrays(), 2);

    EXPECT_NE(results[0][1], -77.0);
    EXPECT_EQ(results[0][2], -77.0);
}

TEST_F(KrigingSurrogateModelTest, ACountBeyondThirtyTwoBitsActsAsItsLowBits)
{
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        const KrigingSurrogateModel model = sample.build(settings);
        ValueArrays targets({{0.5, 3.0, 5.0}});
        ValueArrays results({{-77.0, -77.0, -77.0}});
        model.interpolateDependentValues(targets.arrays(), {0}, results.arrays(), (std::size_t{1} << 32U) + 2);

        const Values expected = estimatesOf(model, {{0.5, 3.0}}, {0})[0];
        EXPECT_TRUE(sameBits(results[0], {expected[0], expected[1], -77.0}));
    }
}

TEST_F(KrigingSurrogateModelTest, ACountThatBecomesNegativeWritesNothing)
{
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        const KrigingSurrogateModel model = sample.build(settings);
        ValueArrays targets(std::vector<Values>{{0.5}});
        ValueArrays results(std::vector<Values>{{-77.0}});
        model.interpolateDependentValues(targets.arrays(), {0}, results.arrays(), (std::size_t{1} << 32U) - 1);

        EXPECT_EQ(results[0][0], -77.0);
    }
}

TEST_F(KrigingSurrogateModelTest, TargetsAreTakenInRawUnits)
{
    const KrigingSurrogateModel model = sample.build();
    const Values estimates = estimatesOf(model, {{0.0, 1.0, 2.0, 4.0, 8.0}}, {0})[0];

    // A target on a sample has that sample's output; five rows lose a few units in the last place of values up to 5.
    for (std::size_t i = 0; i < estimates.size(); ++i)
        EXPECT_NEAR(estimates[i], sample.outputs[0][i], 1e-14);
}

TEST_F(KrigingSurrogateModelTest, OutputsThatTheHostChangesAreSeenByTheNextRequest)
{
    for (const ModelSettings& settings : {ModelSettings(), localSettings()})
    {
        ModelSample changing({{0.0, 1.0, 2.0, 4.0, 8.0}}, {{1.0, 3.0, 2.0, 5.0, 4.0}});
        const KrigingSurrogateModel model = changing.build(settings);
        const Values before = estimatesOf(model, {{0.5, 3.0}}, {0})[0];
        changing.outputs[0] = {1.0, 3.0, 2.0, 9.0, 4.0};
        ASSERT_EQ(changing.outputs[0].data(), changing.outputs.arrays()[0]);
        const Values after = estimatesOf(model, {{0.5, 3.0}}, {0})[0];

        ModelSample fresh({{0.0, 1.0, 2.0, 4.0, 8.0}}, {{1.0, 3.0, 2.0, 9.0, 4.0}});
        const KrigingSurrogateModel freshModel = fresh.build(settings);
        EXPECT_FALSE(sameBits(after, before));
        EXPECT_TRUE(sameBits(after, estimatesOf(freshModel, {{0.5, 3.0}}, {0})[0]));
    }
}

TEST_F(KrigingSurrogateModelTest, CoordinatesThatTheHostChangesAreSeenByALocalModelAtOnce)
{
    const KrigingSurrogateModel model = sample.build(localSettings());
    sample.inputs[0][1] = 1.5; // inside the limits, so that a fresh model normalises alike
    const Values after = estimatesOf(model, {{0.5, 3.0}}, {0})[0];

    ModelSample fresh({{0.0, 1.5, 2.0, 4.0, 8.0}}, {{1.0, 3.0, 2.0, 5.0, 4.0}});
    const KrigingSurrogateModel freshModel = fresh.build(localSettings());
    EXPECT_TRUE(sameBits(after, estimatesOf(freshModel, {{0.5, 3.0}}, {0})[0]));
}

TEST_F(KrigingSurrogateModelTest, CoordinatesThatTheHostChangesAreSeenByAGlobalModelsRightHandSides)
{
    const KrigingSurrogateModel model = sample.build();
    const SurrogateModelDataBlock& dataBlock = fenn::ModelAccess::getDataBlock(model);
    KrigingMatrix factorised(dataBlock, 5, &fenn::ModelAccess::getSemivariogram(model), 0);
    std::vector<SourcePointRef> points;
    dataBlock.getAllUnblankedPts(points);
    Values scratch(1);
    factorised.assemble(points, scratch);
    factorised.luDecompose();

    sample.inputs[0][1] = 1.5;
    Values weights(6);
    factorised.buildRightHandSide(weights.data(), 0, {0.5}, points, scratch);
    factorised.luSolve(weights.data());
    const double expected = factorised.estimate(0, points, weights.data());

    EXPECT_TRUE(sameBits(estimatesOf(model, {{0.5}}, {0})[0], {expected}));
}

TEST_F(KrigingSurrogateModelTest, IsUsedThroughTheInterfaceAlone)
{
    const KrigingSurrogateModel model = sample.build();
    const std::unique_ptr<SurrogateModelInterface> interface = std::make_unique<KrigingSurrogateModel>(
        sample.inputs.arrays(), sample.outputs.arrays(), sample.numPts, -1.0, Values(), 0, 1.0, 0.0, 0);
    interface->activateDependentVariables({1});
    const auto estimates = estimatesOf(*interface, {{0.5, 3.0}}, {1});

    EXPECT_TRUE(sameBits(estimates[0], estimatesOf(model, {{0.5, 3.0}}, {1})[0]));
    EXPECT_FALSE(interface->surfaceCoefficientInformationAvailable());
    EXPECT_EQ(interface->surfaceCoefficientInformation(-1), "");
    EXPECT_FALSE(interface->qualityMetricInformationAvailable());
    EXPECT_EQ(interface->qualityMetricInformation(-1), "");
}

TEST_F(KrigingSurrogateModelTest, AGlobalRequestsErrorIsCaughtByTypeThroughTheInterface)
{
    // All samples on the line y = x: a linear drift is not determined beside it.
    ModelSample line({{0.0, 1.0, 2.0, 3.0}, {0.0, 1.0, 2.0, 3.0}}, {{1.0, 2.0, 4.0, 3.0}});
    ModelSettings settings;
    settings.driftOrder = 1;
    const KrigingSurrogateModel model = line.build(settings);
    const SurrogateModelInterface& interface = model;
    try
    {
        estimatesOf(interface, {{0.0}, {3000.0}}, {0});
        FAIL() << "no error";
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        EXPECT_STREQ(error.what(), "Value overflow");
    }
}

TEST_F(KrigingSurrogateModelTest, ALocalRequestsErrorIsCaughtByTypeThroughTheInterface)
{
    // The four nearest points of the target have x = 0, which is the middle of the range: their drift row is zero.
    ModelSample cross({{-10.0, 10.0, 0.0, 0.0, 0.0, 0.0}, {0.0, 0.0, 1.0, -1.0, 2.0, -2.0}},
                      {{1.0, 2.0, 3.0, 4.0, 5.0, 6.0}});
    ModelSettings settings;
    settings.driftOrder = 1;
    settings.numNearestPoints = 4;
    const KrigingSurrogateModel model = cross.build(settings);
    const SurrogateModelInterface& interface = model;
    try
    {
        estimatesOf(interface, {{0.0}, {0.0}}, {0});
        FAIL() << "no error";
    }
    catch (const morvel::ExceptionBase& error)
    {
        EXPECT_STREQ(error.what(), "Singular matrix");
        EXPECT_NE(dynamic_cast<const SurrogateModelInterface::Error*>(&error), nullptr);
    }
}

TEST_F(KrigingSurrogateModelTest, AModelAnswersAgainAfterAnError)
{
    ModelSample line({{0.0, 1.0, 2.0, 3.0}, {0.0, 1.0, 2.0, 3.0}}, {{1.0, 2.0, 4.0, 3.0}});
    ModelSettings settings;
    settings.driftOrder = 1;
    const KrigingSurrogateModel model = line.build(settings);
    const Values before = estimatesOf(model, {{1.5}, {1.5}}, {0})[0];
    EXPECT_THROW(estimatesOf(model, {{0.0}, {3000.0}}, {0}), SurrogateModelInterface::Error);

    EXPECT_TRUE(sameBits(estimatesOf(model, {{1.5}, {1.5}}, {0})[0], before));
}

TEST_F(KrigingSurrogateModelTest, StandsBehindSeveralInterfacesAsOneObject)
{
    // Without a virtual base there would be two interfaces inside, and no way to choose one.
    EXPECT_TRUE((std::is_convertible_v<KrigingSurrogateModel*, SurrogateModelInterface*>));
    EXPECT_TRUE((std::is_convertible_v<ModelOfTwoInterfaces*, SurrogateModelInterface*>));
}
