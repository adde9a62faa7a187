#include "estimation/makeModelParts.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::estimation::makeModelParts;
using fenn::estimation::SampleSet;

TEST(MakeModelPartsTest, EverySettingReachesItsPart)
{
    const SampleSet samples({{0.0, 0.0, 10.0}, {0.0, 0.0, 10.0}}, {{1.0, 3.0, 2.0}});

    const auto parts = makeModelParts(samples, {0.0, {1.0, 4.0}, 4, 0.5, 0.25, 2});

    EXPECT_DOUBLE_EQ(parts->getNormalizers()[0].getScale(), 0.1); // ranges of 10 and 40, their mean brought to 2
    EXPECT_DOUBLE_EQ(parts->getNormalizers()[1].getScale(), 0.4);
    EXPECT_EQ(parts->getPoints().size(), 2U);
    EXPECT_EQ(parts->getSemivariogram().evaluate({0.0, 0.0}), 0.25);
    EXPECT_EQ(parts->getSemivariogram().evaluate({5.1, 5.1}), 1.0); // beyond half the diagonal
    EXPECT_LT(parts->getSemivariogram().evaluate({4.9, 4.9}), 1.0);
}

TEST(MakeModelPartsTest, SamplesThatAreNotIncludedCountForLimitsAndRangeAndAreNoPoints)
{
    const std::vector<std::vector<double>> inputs{{0.0, 1.0, 1.0, 10.0}};
    const std::vector<std::vector<double>> outputs{{1.0, 3.0, 5.0, 2.0}};
    const SampleSet samples(inputs, outputs, {true, true, false, false});
    const SampleSet all(inputs, outputs);

    const auto parts = makeModelParts(samples, {0.0, {}, 0, 0.5, 0.0, 0});

    EXPECT_EQ(parts->getPoints(), (std::vector<SourcePointRef>{{0, 0}, {0, 1}}));
    EXPECT_TRUE(parts->getMergedGroups().empty()); // the repeat is not included
    EXPECT_EQ(parts->getMaxValues(), std::vector<double>{10.0});
    EXPECT_EQ(parts->getSemivariogram().evaluate({3.0}),
              makeModelParts(all, {0.0, {}, 0, 0.5, 0.0, 0})->getSemivariogram().evaluate({3.0}));
}

TEST(MakeModelPartsTest, WhatOnlyASystemWouldRefuseIsTaken)
{
    const SampleSet coincident({{0.0, 1.0, 1.0}}, {{1.0, 3.0, 2.0}});

    EXPECT_NO_THROW(makeModelParts(coincident, {-1.0, {}, 4, 1.0, 0.0, 1}));
}

TEST(MakeModelPartsTest, SettingsAndRangesAreChecked)
{
    const SampleSet samples({{1.0, 1.0, 1.0}}, {{1.0, 3.0, 2.0}});

    EXPECT_THROW(makeModelParts(samples, {-1.0, {}, 5, 1.0, 0.0, 0}), std::invalid_argument);
    EXPECT_EQ(fenn::test::textOfError([&] { makeModelParts(samples, {}); }), "Value range too small to normalize data");
}

} // namespace
