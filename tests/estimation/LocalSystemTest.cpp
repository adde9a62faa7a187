#include "estimation/LocalSystem.h"

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::estimation::LocalSystem;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::sameBits;

TEST(LocalSystemTest, APointIsEstimatedAsByAModelOfTheOthers)
{
    // Without the point at 2 the others keep limits, scale and range.
    const std::vector<double> places{0.0, 1.0, 2.0, 4.0, 8.0};
    const std::vector<double> values{1.0, 3.0, 2.0, 5.0, 4.0};
    const SampleSet samples({places}, {values});
    const ModelSettings settings{-1.0, {}, 0, 0.6, 0.1, 3};
    const auto parts = makeModelParts(samples, settings);
    LocalSystem system(*parts, 0, 3);
    fenn::test::ModelSample others({{0.0, 1.0, 4.0, 8.0}}, {{1.0, 3.0, 5.0, 4.0}});
    const KrigingSurrogateModel model = others.build({-1.0, {}, 0, 0.6, 0.1, 3});
    double value = 0.0;
    double variance = 0.0;
    double place = 2.0;
    std::vector<double*> valueArrays{&value};
    std::vector<double*> varianceArrays{&variance};
    fenn::ModelAccess::getController(model).interpolate({&place}, {0}, 1, valueArrays, varianceArrays);

    ASSERT_TRUE(system.solveWithout(2));

    EXPECT_TRUE(sameBits(system.estimate(0), value));
    EXPECT_TRUE(sameBits(system.getVariance(), variance));
}

TEST(LocalSystemTest, AsManyNeighboursAsOthersAreTheMost)
{
    const SampleSet samples({{0.0, 1.0, 2.0, 4.0}}, {{1.0, 3.0, 2.0, 5.0}});
    const auto parts = makeModelParts(samples, {});

    EXPECT_TRUE(LocalSystem(*parts, 0, 3).solveWithout(0));
    EXPECT_FALSE(LocalSystem(*parts, 0, 4).solveWithout(0));
}

TEST(LocalSystemTest, MergedPointsAreTakenByTheirAverage)
{
    const SampleSet samples({{0.0, 1.0, 1.0, 4.0, 5.0}}, {{1.0, 3.0, 5.0, 2.0, 5.0}});
    const auto parts = makeModelParts(samples, {0.0, {}, 0, 1.0, 0.0, 2});
    LocalSystem system(*parts, 0, 2);

    // The last point is the average 4 at 1; its nearest others are 1 at 0 and 2 at 4.
    ASSERT_TRUE(system.solveWithout(3));

    EXPECT_GT(system.estimate(0), 1.0);
    EXPECT_LT(system.estimate(0), 1.5);
}

TEST(LocalSystemTest, TooFewNeighboursAreRefused)
{
    const SampleSet samples({{0.0, 1.0, 2.0, 4.0}}, {{1.0, 3.0, 2.0, 5.0}});
    const auto parts = makeModelParts(samples, {});

    EXPECT_EQ(fenn::test::textOfError([&] { LocalSystem(*parts, 0, 1); }), "Not enough source points for kriging.");
}

} // namespace
