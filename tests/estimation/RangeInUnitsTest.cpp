#include "estimation/RangeInUnits.h"

#include <cmath>
#include <stdexcept>

#include <gmock/gmock.h>

#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::calcRangesPerInput;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::estimation::withRangeFraction;
using testing::DoubleNear;
using testing::ElementsAre;

/// In a box of 30 by 40, whose diagonal is 50.
SampleSet samplesInABox()
{
    return {{{100.0, 130.0, 110.0, 105.0}, {0.0, 40.0, 10.0, 33.0}}, {{1.0, 3.0, 2.0, 5.0}}};
}

ModelSettings settingsWithRange(double range)
{
    ModelSettings settings;
    settings.scaleFactors = {1.0, 1.0};
    settings.rangeInInputUnits = range;
    return settings;
}

TEST(RangeInUnitsTest, ARangeBecomesItsFractionOfTheDiagonal)
{
    const ModelSettings resolved = withRangeFraction(samplesInABox(), settingsWithRange(20.0));

    EXPECT_DOUBLE_EQ(resolved.rangeFraction, 0.4);
    EXPECT_FALSE(resolved.rangeInInputUnits);
    EXPECT_TRUE(withRangeFraction(samplesInABox(), resolved) == resolved);
}

TEST(RangeInUnitsTest, ARangeBetweenSamplesAtOnePlaceIsZero)
{
    EXPECT_EQ(withRangeFraction({{{5.0, 5.0}}, {{1.0, 2.0}}}, settingsWithRange(20.0)).rangeFraction, 0.0);
}

TEST(RangeInUnitsTest, TheModelReachesItsSillAtThatDistanceInEveryDirection)
{
    const SampleSet samples = samplesInABox();
    const auto parts = makeModelParts(samples, settingsWithRange(20.0));

    for (const std::vector<double>& direction : std::vector<std::vector<double>>{{1.0, 0.0}, {0.0, -1.0}, {0.6, 0.8}})
    {
        EXPECT_LT(parts->getSemivariogram().evaluate({19.99 * direction[0], 19.99 * direction[1]}), 1.0);
        EXPECT_EQ(parts->getSemivariogram().evaluate({20.01 * direction[0], 20.01 * direction[1]}), 1.0);
    }
    EXPECT_THAT(calcRangesPerInput(*parts), ElementsAre(DoubleNear(20.0, 1e-12), DoubleNear(20.0, 1e-12)));
}

TEST(RangeInUnitsTest, AFractionReachesAsFarAsItsShareOfEachStretchedInput)
{
    const SampleSet samples = samplesInABox(); // stretched to 2 by 2: a fraction of sqrt(1/8) is 1 there, half the box
    ModelSettings settings;
    settings.rangeFraction = std::sqrt(0.125);

    EXPECT_THAT(calcRangesPerInput(*makeModelParts(samples, settings)),
                ElementsAre(DoubleNear(15.0, 1e-12), DoubleNear(20.0, 1e-12)));
}

TEST(RangeInUnitsTest, EveryEngineAnswersAsWithTheFraction)
{
    const SampleSet samples = fenn::test::smoothSamples(60, 1);
    const SampleSet targets = fenn::test::smoothSamples(20, 2);
    for (const int numNearest : {0, 16})
    {
        for (const bool isExact : {false, true})
        {
            ModelSettings inUnits = settingsWithRange(0.3);
            inUnits.numNearestPoints = numNearest;
            fenn::estimation::EstimatorOptions options;
            options.isExact = isExact;
            const auto answer = [&](const ModelSettings& settings)
            {
                return estimateAt(*chooseEstimator(samples, settings, options), targets).values[0];
            };

            EXPECT_EQ(answer(inUnits), answer(withRangeFraction(samples, inUnits)));
        }
    }
}

TEST(RangeInUnitsTest, AFractionThatOverflowsIsRefused)
{
    const SampleSet samples({{0.0, 1e-9, 2e-9}}, {{1.0, 3.0, 2.0}});
    ModelSettings settings;
    settings.rangeInInputUnits = 1e305;

    EXPECT_THROW(makeModelParts(samples, settings), std::invalid_argument);
}

} // namespace
