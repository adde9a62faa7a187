#include "analysis/Places.h"

#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "analysis/CrossValidation.h"
#include "analysis/Folds.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::assignFoldsToPlaces;
using fenn::analysis::findPlaces;
using fenn::estimation::SampleSet;

SampleSet samplesAt(const std::vector<double>& x)
{
    return {{x}, {fenn::test::randomValues(1, x.size(), 0.0, 1.0, 4)}};
}

TEST(PlacesTest, PlacesAreNumberedByTheirFirstSamples)
{
    const fenn::analysis::Places places = findPlaces(samplesAt({5.0, 1.0, 5.0, 2.0, 1.0, 5.0}), -1.0);

    EXPECT_EQ(places.placeOfSample, (std::vector<std::size_t>{0, 1, 0, 2, 1, 0}));
    EXPECT_EQ(places.numPlaces, 3U);
}

TEST(PlacesTest, TheToleranceOfMergingDecidesWhatIsOnePlace)
{
    const SampleSet samples = samplesAt({0.0, 0.4, 10.0});

    EXPECT_EQ(findPlaces(samples, 0.0).numPlaces, 3U);
    EXPECT_EQ(findPlaces(samples, 0.05).numPlaces, 2U);
}

TEST(PlacesTest, WithoutRepeatsFoldsAreThoseOfTheSamples)
{
    EXPECT_EQ(assignFoldsToPlaces(fenn::test::smoothSamples(37, 2), -1.0, 5, 11),
              fenn::analysis::assignFolds(37, 5, 11));
}

TEST(PlacesTest, SamplesOfOnePlaceAreInOneFold)
{
    std::vector<double> x;
    for (int i = 0; i < 60; ++i)
        x.push_back(i % 12);
    const std::vector<std::size_t> folds = assignFoldsToPlaces(samplesAt(x), -1.0, 4, 3);

    for (std::size_t i = 12; i < folds.size(); ++i)
        EXPECT_EQ(folds[i], folds[i - 12]);
    EXPECT_EQ(std::set<std::size_t>(folds.begin(), folds.end()).size(), 4U);
}

TEST(PlacesTest, MoreFoldsThanPlacesLeaveTheLastOnesEmpty)
{
    const std::vector<std::size_t> folds = assignFoldsToPlaces(samplesAt({0.0, 1.0, 2.0, 0.0, 1.0, 2.0}), -1.0, 5, 3);

    EXPECT_EQ(std::set<std::size_t>(folds.begin(), folds.end()), (std::set<std::size_t>{0, 1, 2}));
    EXPECT_THROW(assignFoldsToPlaces(samplesAt({0.0, 1.0, 0.0}), -1.0, 4, 3), std::invalid_argument);
    EXPECT_THROW(assignFoldsToPlaces(samplesAt({0.0, 0.0, 0.0}), -1.0, 2, 3), std::invalid_argument);
}

TEST(PlacesTest, CrossValidationEstimatesNoSampleFromItsRepeat)
{
    std::vector<double> x;
    for (int i = 0; i < 20; ++i)
        x.push_back(i % 10);
    std::vector<double> z(20, 0.0);
    z[3] = z[13] = 1.0; // an outlier, measured twice
    const SampleSet samples({x}, {z});

    const auto estimates = fenn::analysis::crossValidate(samples, {-1.0, {}, 0, 1.0, 0.1, 0}, 10, 1);

    EXPECT_NEAR(estimates.values[0][3], 0.0, 1e-12);
    EXPECT_NEAR(estimates.values[0][13], 0.0, 1e-12);
}

} // namespace
