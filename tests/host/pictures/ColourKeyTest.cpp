#include "host/pictures/ColourKey.h"

#include <cmath>

#include <gtest/gtest.h>

using krige::ColourKey;
using krige::Palette;

namespace
{

std::vector<double> upTo(int count)
{
    std::vector<double> values;
    for (int i = 0; i <= count; ++i)
        values.push_back(i);
    return values;
}

/// 0 (black) to 255 (white), as a photocopier sees it.
double lightnessOf(const std::string& colour)
{
    const auto part = [&](std::size_t place)
    {
        return static_cast<double>(std::stoi(colour.substr(place, 2), nullptr, 16));
    };
    return 0.299 * part(1) + 0.587 * part(3) + 0.114 * part(5);
}

} // namespace

TEST(ChooseLimitsTest, EvenlySpreadValuesKeepTheirEnds)
{
    ColourKey scale;
    krige::chooseLimits(scale, upTo(1000), upTo(1000));

    EXPECT_EQ(scale.limits.low, 0.0);
    EXPECT_EQ(scale.limits.high, 1000.0);
    EXPECT_FALSE(scale.isPassedBelow);
    EXPECT_FALSE(scale.isPassedAbove);
}

TEST(ChooseLimitsTest, AFewExtremeValuesDoNotStretchTheColours)
{
    std::vector<double> values = upTo(1000);
    values.push_back(1e6);
    ColourKey scale;
    krige::chooseLimits(scale, values, values);

    EXPECT_NEAR(scale.limits.high, 996.0, 1.0);
    EXPECT_EQ(scale.limits.low, 0.0);
    EXPECT_TRUE(scale.isPassedAbove);
    EXPECT_FALSE(scale.isPassedBelow);
}

TEST(ChooseLimitsTest, WhatIsDrawnBeyondTypicalValuesIsNoted)
{
    ColourKey scale;
    krige::chooseLimits(scale, {1, 2, 3}, {0, 1, 2, 3, std::nan("")});

    EXPECT_EQ(scale.limits.text(), "[1:3]");
    EXPECT_TRUE(scale.isPassedBelow);
    EXPECT_FALSE(scale.isPassedAbove);
}

TEST(ChooseLimitsTest, LimitsAreNeverEmpty)
{
    ColourKey alike;
    krige::chooseLimits(alike, {20, 20}, {20, 20});
    ColourKey none;
    krige::chooseLimits(none, {std::nan("")}, {});

    EXPECT_EQ(alike.limits.text(), "[19:21]");
    EXPECT_EQ(none.limits.text(), "[0:1]");
}

TEST(ChooseSymmetricLimitsTest, ZeroIsInTheMiddle)
{
    ColourKey scale;
    krige::chooseSymmetricLimits(scale, {-3, 1, std::nan("")});

    EXPECT_EQ(scale.limits.text(), "[-3:3]");
}

TEST(ChooseSymmetricLimitsTest, ErrorsThatAreAllZeroHaveLimits)
{
    ColourKey scale;
    krige::chooseSymmetricLimits(scale, {0, 0});

    EXPECT_LT(scale.limits.low, 0.0);
    EXPECT_EQ(scale.limits.low, -scale.limits.high);
}

TEST(PaletteTest, LightnessRisesOrFallsEvenly)
{
    for (const Palette& palette : {krige::estimatePalette(), krige::uncertaintyPalette()})
    {
        const double whole = lightnessOf(palette.back()) - lightnessOf(palette.front());
        EXPECT_GT(std::fabs(whole), 150.0);
        for (std::size_t i = 1; i < palette.size(); ++i)
            EXPECT_GT((lightnessOf(palette[i]) - lightnessOf(palette[i - 1])) / whole, 0.02) << palette[i];
    }
}

TEST(PaletteTest, ErrorsDarkenToBothSides)
{
    const Palette& palette = krige::errorPalette();
    const std::size_t middle = palette.size() / 2;
    for (std::size_t i = 1; i <= middle; ++i)
    {
        EXPECT_GT(lightnessOf(palette[i]), lightnessOf(palette[i - 1]));
        EXPECT_GT(lightnessOf(palette[middle + i - 1]), lightnessOf(palette[middle + i]));
    }
}

TEST(PaletteTest, ColoursAreCountedFromZero)
{
    EXPECT_EQ(krige::paletteCommand({"#000000", "#ffffff"}), "set palette defined (0 '#000000', 1 '#ffffff')\n");
}
