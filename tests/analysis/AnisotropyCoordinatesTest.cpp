#include "analysis/AnisotropyCoordinates.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::Anisotropy;
using fenn::analysis::AnisotropyCoordinates;
using fenn::analysis::SearchSpace;
using fenn::analysis::SettingsWithAnisotropy;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;

SearchSpace spaceOfRatios(double maxRatio)
{
    SearchSpace space;
    space.minRangeFraction = 0.001;
    space.maxAnisotropy = 1.0;
    space.maxRatio = maxRatio;
    return space;
}

/// The corners of a box of 300 by 400: a diagonal of 500.
const SampleSet corners({{0.0, 300.0, 0.0, 300.0}, {0.0, 0.0, 400.0, 400.0}}, {{1.0, 2.0, 3.0, 4.0}});

const ModelSettings base{-1.0, {1.0, 1.0}, 1, 0.5, 0.25, 16};

TEST(AnisotropyCoordinatesTest, SettingsComeBackFromTheirCoordinates)
{
    const AnisotropyCoordinates coordinates(corners, spaceOfRatios(8.0));
    for (const double ratio : {1.5, 2.0, 7.9})
    {
        for (const double angle : {0.0, 12.3, 45.0, 90.0, 120.5, 179.9})
        {
            const SettingsWithAnisotropy settings{base, Anisotropy(ratio, angle)};

            const SettingsWithAnisotropy back = coordinates.toSettings(coordinates.toCoordinates(settings), base);

            ASSERT_TRUE(back.anisotropy.has_value());
            EXPECT_DOUBLE_EQ(back.anisotropy->getRatio(), ratio);
            EXPECT_DOUBLE_EQ(back.anisotropy->getAngle(), angle);
            EXPECT_TRUE(back.settings == base);
        }
    }
}

TEST(AnisotropyCoordinatesTest, WithoutAnAnisotropyTheyAreZeroAndBack)
{
    const AnisotropyCoordinates coordinates(corners, spaceOfRatios(8.0));

    const std::vector<double> place = coordinates.toCoordinates({base, {}});
    const SettingsWithAnisotropy back = coordinates.toSettings(place, base);

    EXPECT_EQ(place, (std::vector<double>{-1.0, 0.5, 0.0, 0.0}));
    EXPECT_FALSE(back.anisotropy.has_value());
    EXPECT_TRUE(back.settings == base);
}

TEST(AnisotropyCoordinatesTest, TheGeometricMeanOfTheRangesStaysWhenTheRatioChanges)
{
    const AnisotropyCoordinates coordinates(corners, spaceOfRatios(8.0));

    // Of 0.5 x 500 = 250, a ratio of 4 makes 500 along the second axis and 125 along the first.
    const SettingsWithAnisotropy settings = coordinates.toSettings({-1.0, 0.5, -2.0, 0.0}, base);

    ASSERT_TRUE(settings.anisotropy.has_value());
    EXPECT_EQ(settings.anisotropy->getRatio(), 4.0);
    EXPECT_EQ(settings.anisotropy->getAngle(), 90.0);
    const double turnedDiagonal = std::hypot(400.0, 4.0 * 300.0);
    EXPECT_NEAR(settings.settings.rangeFraction * turnedDiagonal, 500.0, 2.5); // of 3 digits
}

TEST(AnisotropyCoordinatesTest, RatiosStayWithinTheirBoundAndScalesAreEqual)
{
    const AnisotropyCoordinates coordinates(corners, spaceOfRatios(3.0));

    const SettingsWithAnisotropy settings =
        coordinates.toSettings({-1.0, 0.5, 6.0, 6.0}, {-1.0, {1.0, 5.0}, 0, 1.0, 0.0, 0});

    ASSERT_TRUE(settings.anisotropy.has_value());
    EXPECT_EQ(settings.anisotropy->getRatio(), 3.0);
    EXPECT_EQ(settings.anisotropy->getAngle(), 22.5);
    EXPECT_EQ(settings.settings.scaleFactors, (std::vector<double>{1.0, 1.0}));
    EXPECT_FALSE(coordinates.toSettings({-1.0, 0.5, 1e-4, 1e-4}, base).anisotropy.has_value());
}

TEST(AnisotropyCoordinatesTest, OtherNumbersOfInputsAreRefused)
{
    const SampleSet line({{0.0, 1.0, 2.0}}, {{1.0, 2.0, 3.0}});

    EXPECT_THROW(AnisotropyCoordinates(line, spaceOfRatios(2.0)), std::invalid_argument);
}

} // namespace
