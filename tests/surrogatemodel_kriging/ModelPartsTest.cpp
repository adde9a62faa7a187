#include "surrogatemodel_kriging/ModelParts.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/BlockSet.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"

using fenn::MergedGroup;
using fenn::ModelAccess;
using fenn::ModelParts;
using fenn::test::inputValues;
using fenn::test::ModelSample;
using fenn::test::ModelSettings;
using fenn::test::outputValues;
using fenn::test::sameBits;

namespace
{

using Values = std::vector<double>;

/// The parts' and the model's samples of the same block, variable by variable.
void expectSameBlock(const SurrogateModelDataBlock& actual, const SurrogateModelDataBlock& expected, int b)
{
    EXPECT_EQ(actual.getIncludePtArrayForBlock(b), expected.getIncludePtArrayForBlock(b));
    for (std::size_t v = 0; v < static_cast<std::size_t>(expected.getNumInputVars()); ++v)
        EXPECT_TRUE(sameBits(inputValues(actual, b, v), inputValues(expected, b, v)));
    for (std::size_t w = 0; w < static_cast<std::size_t>(expected.getNumOutputVars()); ++w)
        EXPECT_TRUE(sameBits(outputValues(actual, b, w), outputValues(expected, b, w)));
}

} // namespace

TEST(ModelPartsTest, PartsAreThoseOfTheModelOfTheSameArguments)
{
    std::vector<Values> inputs = fenn::test::randomValues(2, 30, -3.0, 5.0, 11);
    for (Values& column : inputs)
        column[20] = column[7];
    ModelSample sample(inputs, fenn::test::randomValues(2, 30, 0.0, 1.0, 12));
    for (const ModelSettings& settings :
         {ModelSettings(), ModelSettings{0.0, {}, 0, 0.3, 0.1, 5}, ModelSettings{0.1, {2.0, -3.0}, 0, 2.0, 0.0, 5}})
    {
        const KrigingSurrogateModel model = sample.build(settings);
        const SurrogateModelDataBlock& modelBlock = ModelAccess::getDataBlock(model);

        const ModelParts parts = sample.makeParts(settings);

        EXPECT_TRUE(sameBits(parts.getMinValues(), ModelAccess::getMinValues(model)));
        EXPECT_TRUE(sameBits(parts.getMaxValues(), ModelAccess::getMaxValues(model)));
        for (std::size_t v = 0; v < 2; ++v)
        {
            EXPECT_TRUE(
                sameBits(parts.getNormalizers()[v].getOffset(), ModelAccess::getNormalizers(model)[v].getOffset()));
            EXPECT_TRUE(
                sameBits(parts.getNormalizers()[v].getScale(), ModelAccess::getNormalizers(model)[v].getScale()));
        }
        ASSERT_EQ(parts.getDataBlock().getNumBlocks(), modelBlock.getNumBlocks());
        for (int b = 0; b < modelBlock.getNumBlocks(); ++b)
            expectSameBlock(parts.getDataBlock(), modelBlock, b);
        EXPECT_EQ(&parts.getDataBlock().getInputVarNormalizers(), &parts.getNormalizers());
        for (const Values& separation : {Values{0.0, 0.0}, Values{0.25, -0.5}, Values{9.0, 9.0}})
            EXPECT_TRUE(sameBits(parts.getSemivariogram().evaluate(separation),
                                 ModelAccess::getSemivariogram(model).evaluate(separation)));
        std::vector<SourcePointRef> points;
        modelBlock.getAllUnblankedPts(points);
        EXPECT_EQ(parts.getPoints(), points);
    }
}

TEST(ModelPartsTest, GroupsNameTheSamplesOfEachAveragedPointInItsOrder)
{
    ModelSample sample({{5.0, 1.0, 5.0, 3.0, 1.0, 5.0}}, {{1.0, 2.0, 3.0, 4.0, 6.0, 8.0}});

    const ModelParts parts = sample.makeParts({0.0, {}, 0, 1.0, 0.0, 0});

    EXPECT_EQ(parts.getMergedGroups(), (std::vector<MergedGroup>{{{0, 1}, {0, 4}}, {{0, 0}, {0, 2}, {0, 5}}}));
    EXPECT_EQ(outputValues(parts.getDataBlock(), 1, 0), (Values{4.0, 4.0}));
    EXPECT_EQ(parts.getPoints(), (std::vector<SourcePointRef>{{0, 3}, {1, 0}, {1, 1}}));
}

TEST(ModelPartsTest, NothingIsMergedWithoutATolerance)
{
    ModelSample sample({{5.0, 1.0, 5.0}}, {{1.0, 2.0, 3.0}});
    for (const double tolerance : {-1.0, std::numeric_limits<double>::quiet_NaN()})
    {
        const ModelParts parts = sample.makeParts({tolerance, {}, 0, 1.0, 0.0, 0});

        EXPECT_TRUE(parts.getMergedGroups().empty());
        EXPECT_EQ(parts.getPoints().size(), 3U);
    }
}

TEST(ModelPartsTest, WhatTheModelRefusesToScaleIsRefusedInItsWords)
{
    ModelSample sample({{0.0, 1.0, 2.0}, {4.0, 4.0, 4.0}}, {{1.0, 2.0, 3.0}});
    for (const Values& scaleFactors : {Values{}, Values{1.0, 1e150}, Values{0.0, 1.0}})
    {
        std::string message;
        try
        {
            sample.makeParts({-1.0, scaleFactors, 0, 1.0, 0.0, 0});
        }
        catch (const SurrogateModelInterface::Error& error)
        {
            message = error.what();
        }
        EXPECT_FALSE(message.empty());
        EXPECT_EQ(message, sample.failureOf({-1.0, scaleFactors, 0, 1.0, 0.0, 0}));
    }
}

TEST(ModelPartsTest, ArraysOfAHostWithoutSamplesAreNotRead)
{
    const ModelParts parts({nullptr, nullptr}, {nullptr}, 0, 0.0, {1.0, 1.0}, 1.0, 0.0);

    EXPECT_EQ(parts.getMinValues(), (Values{0.0, 0.0}));
    EXPECT_TRUE(parts.getPoints().empty());
}
