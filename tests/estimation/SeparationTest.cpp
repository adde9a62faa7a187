#include "estimation/Separation.h"

#include <cmath>

#include <gtest/gtest.h>

#include "estimation/GlobalSystem.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::checkSeparation;
using fenn::estimation::GlobalSystem;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::estimation::Separation;
using fenn::estimation::SeparationVerdict;

Separation separationOf(const SampleSet& samples, const ModelSettings& settings = {})
{
    const auto parts = makeModelParts(samples, settings);
    if (settings.numNearestPoints > 0)
        return checkSeparation(*parts, std::nan(""), static_cast<std::size_t>(settings.numNearestPoints));
    const GlobalSystem system(*parts, settings.driftOrder);
    return checkSeparation(*parts, system.calcReciprocalCondition(), system.getNumPoints());
}

SampleSet samplesAt(std::vector<std::vector<double>> inputs)
{
    const std::size_t count = inputs[0].size();
    return {std::move(inputs), fenn::test::randomValues(1, count, 0.0, 1.0, 3)};
}

TEST(SeparationTest, ScatteredSamplesAreSeparate)
{
    const Separation separation = separationOf(fenn::test::smoothSamples(200, 3));

    EXPECT_EQ(separation.verdict, SeparationVerdict::Separate);
    EXPECT_EQ(separation.numRepeats, 0U);
    EXPECT_GT(separation.reciprocalCondition, 1e-9);
}

TEST(SeparationTest, RepeatsAreNamedWithTheirNumber)
{
    const SampleSet samples = samplesAt({{0.0, 0.2, 0.5, 0.2, 0.2, 1.0}});
    for (const int numNearestPoints : {0, 3})
    {
        const Separation separation = separationOf(samples, {-1.0, {}, 0, 1.0, 0.0, numNearestPoints});

        EXPECT_EQ(separation.verdict, SeparationVerdict::Repeated);
        EXPECT_EQ(separation.numRepeats, 2U);
        EXPECT_EQ(separation.firstSample, 1U);
        EXPECT_EQ(separation.secondSample, 3U);
        EXPECT_EQ(separation.distance, 0.0);
    }
}

TEST(SeparationTest, ANuggetMakesRepeatsReplicates)
{
    const SampleSet samples = samplesAt({{0.0, 0.2, 0.5, 0.2, 0.2, 1.0}});
    for (const int numNearestPoints : {0, 3})
    {
        const Separation separation = separationOf(samples, {-1.0, {}, 0, 1.0, 0.01, numNearestPoints});

        EXPECT_EQ(separation.verdict, SeparationVerdict::Separate);
        EXPECT_EQ(separation.numRepeats, 2U);
    }
}

TEST(SeparationTest, SamplesWithinRoundingAreTooNear)
{
    for (const int numNearestPoints : {0, 4})
    {
        const ModelSettings settings{-1.0, {}, 0, 1.0, 0.0, numNearestPoints};
        for (const double distance : {5.551115123125783e-17, 1e-15})
        {
            const Separation separation =
                separationOf(samplesAt({{0.0, 0.2, 0.2 + distance, 0.5, 0.7, 1.0}}), settings);

            EXPECT_EQ(separation.verdict, SeparationVerdict::TooNear) << distance;
            EXPECT_EQ(separation.firstSample, 1U);
            EXPECT_EQ(separation.secondSample, 2U);
            EXPECT_GT(separation.distance, 0.0);
        }
        EXPECT_EQ(separationOf(samplesAt({{0.0, 0.2, 0.2 + 1e-11, 0.5, 0.7, 1.0}}), settings).verdict,
                  SeparationVerdict::Separate);
    }
}

TEST(SeparationTest, ManyNeighboursMakeANearPairWorse)
{
    std::vector<double> places{0.0, 0.2, 0.2 + 1e-13};
    for (int i = 0; i < 60; ++i)
        places.push_back(0.3 + 0.01 * i);
    const SampleSet samples = samplesAt({places});

    EXPECT_EQ(separationOf(samples, {-1.0, {}, 0, 1.0, 0.0, 4}).verdict, SeparationVerdict::Separate);
    EXPECT_EQ(separationOf(samples, {-1.0, {}, 0, 1.0, 0.0, 40}).verdict, SeparationVerdict::TooNear);
}

TEST(SeparationTest, ADriftThatThePlacesDoNotDetermineIsNoFaultOfAPair)
{
    const SampleSet onALine = samplesAt({{0.0, 1.0, 2.0, 3.5, 4.0}, {0.0, 0.3, 0.6, 1.05, 1.2}});

    EXPECT_EQ(separationOf(onALine).verdict, SeparationVerdict::Separate);
    const Separation separation = separationOf(onALine, {-1.0, {}, 1, 1.0, 0.0, 0});
    EXPECT_EQ(separation.verdict, SeparationVerdict::Undetermined);
    EXPECT_LT(separation.reciprocalCondition, 1e-14);
}

TEST(SeparationTest, MergedSamplesAreOnePointAndNamedByTheirFirst)
{
    const SampleSet samples = samplesAt({{0.0, 0.2, 0.5, 0.2, 0.21, 1.0}});

    const Separation separation = separationOf(samples, {0.0, {}, 0, 1.0, 0.0, 0});

    EXPECT_EQ(separation.verdict, SeparationVerdict::Separate);
    EXPECT_EQ(separation.numRepeats, 0U);
    EXPECT_EQ(separation.firstSample, 1U);
    EXPECT_EQ(separation.secondSample, 4U);
    EXPECT_NEAR(separation.distance, 0.02, 1e-15);
}

TEST(SeparationTest, LocalModelsHaveNoConditionOfTheirOwn)
{
    EXPECT_TRUE(
        std::isnan(separationOf(fenn::test::smoothSamples(30, 4), {-1.0, {}, 0, 1.0, 0.0, 8}).reciprocalCondition));
}

} // namespace
