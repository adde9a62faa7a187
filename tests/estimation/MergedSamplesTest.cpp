#include "estimation/MergedSamples.h"

#include <limits>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace
{

using fenn::estimation::findMergedSamples;
using fenn::estimation::getMergedSamples;
using fenn::estimation::MergedSamples;
using fenn::estimation::SampleSet;

using Groups = std::vector<std::vector<std::size_t>>;

/// Seven samples: three at (0, 0), two at (1, 1), one each at (0, 1) and (1, 0).
std::vector<std::vector<double>> sevenSamples()
{
    return {{0, 0, 0, 1, 1, 0, 1}, {0, 0, 0, 1, 1, 1, 0}};
}

TEST(MergedSamplesTest, SamplesAtOnePlaceAreCountedAndNamed)
{
    const MergedSamples merged = findMergedSamples(sevenSamples(), 0.0);

    EXPECT_EQ(merged.groups, (Groups{{0, 1, 2}, {3, 4}}));
    EXPECT_EQ(merged.numMerged, 5U);
    EXPECT_EQ(merged.numPoints, 4U);
}

TEST(MergedSamplesTest, TheModelSaysTheSame)
{
    const SampleSet samples(sevenSamples(), {{1, 2, 3, 4, 5, 6, 7}});
    const auto parts = fenn::estimation::makeModelParts(samples, {0.0, {}, 0, 1.0, 0.0, 0});

    const MergedSamples merged = getMergedSamples(*parts);

    EXPECT_EQ(merged.groups, (Groups{{0, 1, 2}, {3, 4}}));
    EXPECT_EQ(merged.numMerged, 5U);
    EXPECT_EQ(merged.numPoints, 4U);
}

TEST(MergedSamplesTest, AToleranceMergesWhatIsOnlyNear)
{
    const std::vector<std::vector<double>> inputs{{0.0, 0.5, 50.0, 100.0}};

    EXPECT_EQ(findMergedSamples(inputs, 0.0).numPoints, 4U);
    EXPECT_EQ(findMergedSamples(inputs, 0.01).numPoints, 3U);
}

TEST(MergedSamplesTest, NegativeOrNaNToleranceMergesNothing)
{
    for (const double tolerance : {-1.0, std::numeric_limits<double>::quiet_NaN()})
    {
        const MergedSamples merged = findMergedSamples(sevenSamples(), tolerance);

        EXPECT_TRUE(merged.groups.empty());
        EXPECT_EQ(merged.numMerged, 0U);
        EXPECT_EQ(merged.numPoints, 7U);
    }
}

TEST(MergedSamplesTest, SamplesThatNoModelCanScaleAreMergedAllTheSame)
{
    // Their range is 0: a model refuses to scale it.
    EXPECT_EQ(findMergedSamples({{3.0, 3.0, 3.0}}, 0.0).numPoints, 1U);
}

} // namespace
