#include "analysis/SearchSpace.h"

#include <cmath>
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
    EXPECT_EQ(far.nugget, 0.99);
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

TEST(SettingsCoordinatesTest, ScalesThatSuggestThemselvesAreNotChosen)
{
    const SampleSet narrow({{0.0, 1.0, 0.5}, {0.0, 1e6, 5.0}}, {{1.0, 2.0, 3.0}});
    const SettingsCoordinates alike(oblongSamples, SearchSpace());
    const SettingsCoordinates unlike(narrow, SearchSpace());
    ModelSettings settings;

    EXPECT_EQ(alike.countChosenScales(settings), 1U);
    EXPECT_EQ(unlike.countChosenScales(settings), 0U);
    settings.scaleFactors = {-1.0, -1.0};
    EXPECT_EQ(alike.countChosenScales(settings), 1U);
    EXPECT_EQ(unlike.countChosenScales(settings), 0U);
    settings.scaleFactors = {2.0, 2.0};
    EXPECT_EQ(alike.countChosenScales(settings), 0U);
    EXPECT_EQ(unlike.countChosenScales(settings), 0U);
    for (const std::vector<double>& factors : {std::vector<double>{1.0, 2.0}, {-1.0, -2.0}, {-2.0, -2.0}, {1.0, -1.0}})
    {
        settings.scaleFactors = factors;
        EXPECT_EQ(alike.countChosenScales(settings), 1U);
        EXPECT_EQ(unlike.countChosenScales(settings), 1U);
    }
}

TEST(SearchSpaceTest, TheShortestRangeIsTwiceTheSpacing)
{
    // A grid of 9 by 9, and one of its places twice: spacing an eighth of each side, the diagonal the root of 2 of
    // them.
    std::vector<std::vector<double>> inputs(2);
    for (int i = 0; i < 81; ++i)
    {
        inputs[0].push_back(100.0 * (i % 9));
        inputs[1].push_back(i / 9);
    }
    inputs[0].push_back(0.0);
    inputs[1].push_back(0.0);
    const SampleSet grid(inputs, {std::vector<double>(82, 1.0)});

    EXPECT_NEAR(fenn::analysis::calcSpacing(grid), 0.125 / std::sqrt(2.0), 1e-15);
    EXPECT_NEAR(defaultSearchSpace(grid).minRangeFraction, 0.25 / std::sqrt(2.0), 1e-15);
    EXPECT_EQ(defaultSearchSpace(oblongSamples).minRangeFraction, 0.25); // no shorter for few
}

TEST(SearchSpaceTest, SamplesAtOnePlaceHaveNoSpacing)
{
    const SampleSet together({{1.0, 1.0, 1.0}}, {{1.0, 2.0, 3.0}});

    EXPECT_EQ(fenn::analysis::calcSpacing(together), 0.0);
    EXPECT_EQ(defaultSearchSpace(together).minRangeFraction, SearchSpace().minRangeFraction);
}

} // namespace
