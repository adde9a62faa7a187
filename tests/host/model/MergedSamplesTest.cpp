#include "host/model/MergedSamples.h"

#include <gtest/gtest.h>

#include "host/model/SampleModel.h"

using krige::SampleTable;

namespace
{

/// Seven samples: three at (0, 0), two at (1, 1), one each at (0, 1) and (1, 0).
SampleTable samplesWithDuplicates()
{
    return {"s.csv", {"x", "y"}, {"z"}, {{0, 0, 0, 1, 1, 0, 1}, {0, 0, 0, 1, 1, 1, 0}}, {{1, 2, 3, 4, 5, 6, 7}}};
}

} // namespace

TEST(MergedSamplesTest, SamplesAtOnePlaceLeaveOnePoint)
{
    EXPECT_EQ(krige::countPointsAfterMerging(samplesWithDuplicates(), 0.0), 4);
}

TEST(MergedSamplesTest, ATolerantCountAlsoMergesWhatIsOnlyNear)
{
    const SampleTable samples{"s.csv", {"x"}, {"z"}, {{0.0, 0.5, 50.0, 100.0}}, {{1, 2, 3, 4}}};

    EXPECT_EQ(krige::countPointsAfterMerging(samples, 0.0), 4);
    EXPECT_EQ(krige::countPointsAfterMerging(samples, 0.01), 3);
}

TEST(MergedSamplesTest, TheModelHasAsManyPointsAsWereCounted)
{
    const SampleTable samples = samplesWithDuplicates();
    fenn::estimation::ModelSettings settings;
    settings.duplicateTolerance = 0.0;

    EXPECT_EQ(krige::countPointsAfterMerging(samples, 0.0), krige::SampleModel(samples, settings).getNumPoints());
}

TEST(MergedSamplesTest, EverySampleOfASharedPlaceCoincides)
{
    EXPECT_EQ(krige::countCoincidentSamples(samplesWithDuplicates()), 5);
}

TEST(MergedSamplesTest, SamplesApartDoNotCoincide)
{
    const SampleTable samples{"s.csv", {"x"}, {"z"}, {{0, 1, 2}}, {{1, 2, 3}}};

    EXPECT_EQ(krige::countCoincidentSamples(samples), 0);
}
