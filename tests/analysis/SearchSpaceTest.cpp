#include "analysis/SearchSpace.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::checkSearchSpace;
using fenn::analysis::defaultSearchSpace;
using fenn::analysis::SearchSpace;
using fenn::analysis::SettingsCoordinates;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;

// Ranges 10 and 20.
const SampleSet oblongSamples({{0.0, 10.0, 5.0}, {0.0, 20.0, 5.0}}, {{1.0, 2.0, 3.0}});

TEST(SearchSpaceTest, ReversedOrImpossibleBoundsAreRefused)
{
    SearchSpace reversed;
    reversed.minRangeFraction = 5.0;
    SearchSpace nuggetAboveSill;
    nuggetAboveSill.maxNugget = 1.1;
    SearchSpace fifthOrder;
    fifthOrder.driftOrders = {5};
    SearchSpace flattened;
    flattened.maxAnisotropy = 0.5;
    SearchSpace negative;
    negative.numNearestPoints = {-1};

    EXPECT_NO_THROW(checkSearchSpace(SearchSpace()));
    for (const SearchSpace& space : {reversed, nuggetAboveSill, fifthOrder, flattened, negative})
        EXPECT_THROW(checkSearchSpace(space), std::invalid_argument);
}

TEST(SearchSpaceTest, DefaultsLeaveOutGlobalModelsOfManySamplesAndDriftsThatFewCannotCarry)
{
    const SearchSpace few = defaultSearchSpace(fenn::test::smoothSamples(15, 1));
    const SearchSpace some = defaultSearchSpace(fenn::test::smoothSamples(100, 1));
    const SearchSpace many = defaultSearchSpace(fenn::test::smoothSamples(2000, 1));

    EXPECT_EQ(few.driftOrders, (std::vector<int>{0, 1}));
    EXPECT_EQ(few.numNearestPoints, (std::vector<int>{0}));
    EXPECT_EQ(some.driftOrders, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(some.numNearestPoints, (std::vector<int>{0, 16, 32}));
    EXPECT_EQ(many.numNearestPoints, (std::vector<int>{16, 32}));
}

TEST(SettingsCoordinatesTest, CoordinatesAreLogarithmsARootAndRatiosOfNormalisedRanges)
{
    const SettingsCoordinates coordinates(oblongSamples, SearchSpace());
    ModelSettings settings;
    settings.rangeFraction = 0.25;
    settings.nugget = 0.09;

    EXPECT_EQ(coordinates.toCoordinates(settings), (std::vector<double>{-2.0, 0.3, 0.0}));
    settings.scaleFactors = {-1.0, -4.0};
    EXPECT_EQ(coordinates.toCoordinates(settings)[2], 2.0);
    settings.scaleFactors = {1.0, 1.0}; // raw units: the second range is twice the first
    EXPECT_EQ(coordinates.toCoordinates(settings)[2], 1.0);
}

TEST(SettingsCoordinatesTest, SettingsComeBackRoundedAndWithinTheirBounds)
{
    const SettingsCoordinates coordinates(oblongSamples, SearchSpace());

    const ModelSettings settings = coordinates.toSettings({-1.0, 0.5, 1.0}, {});
    EXPECT_EQ(settings.rangeFraction, 0.5);
    EXPECT_EQ(settings.nugget, 0.25);
    EXPECT_EQ(settings.scaleFactors, (std::vector<double>{1.0, 1.0}));

    const ModelSettings far = coordinates.toSettings({9.0, 7.0, -20.0}, {});
    EXPECT_EQ(far.rangeFraction, 4.0);
    EXPECT_EQ(far.nugget, 0.8);
    EXPECT_EQ(far.scaleFactors, (std::vector<double>{1.0, 0.0625})); // an eighth, times 10/20
    EXPECT_EQ(coordinates.toSettings({-1.0, -0.2, 0.0}, {}).nugget, 0.0);
    EXPECT_EQ(coordinates.toSettings({-1.5, 0.1, 0.0}, {}).rangeFraction, 0.354);
}

TEST(SettingsCoordinatesTest, ScaleFactorsStayWhereTheirCoordinatesDo)
{
    const SettingsCoordinates coordinates(oblongSamples, SearchSpace());
    ModelSettings base;
    base.scaleFactors = {-1.0, -2.0};

    EXPECT_EQ(coordinates.toSettings({-1.0, 0.0, 1.0}, base).scaleFactors, base.scaleFactors);
    EXPECT_TRUE(coordinates.toSettings({-1.0, 0.0, 0.0}, {}).scaleFactors.empty());
}

TEST(SettingsCoordinatesTest, RawScalesAreNotOfferedWhereScalesAreKept)
{
    SearchSpace kept;
    kept.maxAnisotropy = 1.0;
    ModelSettings settings;

    EXPECT_FALSE(SettingsCoordinates(oblongSamples, kept).withRawScales({}, settings));
}

TEST(SettingsCoordinatesTest, RawScalesBeyondTheLargestAnisotropyAreNotOffered)
{
    const SampleSet narrow({{0.0, 1.0, 0.5}, {0.0, 1e6, 5.0}}, {{1.0, 2.0, 3.0}});
    ModelSettings settings;

    EXPECT_TRUE(SettingsCoordinates(oblongSamples, SearchSpace()).withRawScales({}, settings));
    EXPECT_FALSE(SettingsCoordinates(narrow, SearchSpace()).withRawScales({}, settings));
}

TEST(SettingsCoordinatesTest, TheNegativeLogPriorIsHalfTheSumOfSquaredDepartures)
{
    const SettingsCoordinates coordinates(oblongSamples, SearchSpace());
    ModelSettings settings;
    settings.rangeFraction = 0.25; // half a power of 2 below the usual one
    settings.nugget = 0.16;        // its root 0.1 above

    EXPECT_NEAR(coordinates.calcNegativeLogPrior(settings), 0.5 * (0.25 + 1.0), 1e-12);
    settings.driftOrder = 2;
    EXPECT_NEAR(coordinates.calcNegativeLogPrior(settings), 0.5 * (0.25 + 1.0 + 2.0), 1e-12);
    settings.scaleFactors = {1.0, 1.0}; // raw units are as usual as automatic scales
    EXPECT_NEAR(coordinates.calcNegativeLogPrior(settings), 0.5 * (0.25 + 1.0 + 2.0), 1e-12);
    settings.scaleFactors = {1.0, 2.0}; // log2 of the ratio is 1 above raw, 2 above automatic
    EXPECT_NEAR(coordinates.calcNegativeLogPrior(settings), 0.5 * (0.25 + 1.0 + 2.0 + 1.0 / 0.09), 1e-12);
}

} // namespace
