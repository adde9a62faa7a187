#include "host/page/ColourScale.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

using krige::ColourScale;
using krige::hexOf;
using krige::scaleOverErrors;
using krige::scaleOverValues;

namespace
{

const double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(ColourScaleTest, ValuesTakeStepsOfEqualWidth)
{
    const ColourScale scale(ColourScale::Kind::Values, 0.0, 255.0);

    EXPECT_EQ(scale.indexOf(0.0), 0u);
    EXPECT_EQ(scale.indexOf(0.99), 0u);
    EXPECT_EQ(scale.indexOf(1.0), 1u);
    EXPECT_EQ(scale.indexOf(255.0), 254u);
}

TEST(ColourScaleTest, WhatIsBeyondTakesTheColourOfTheEndAndNanNone)
{
    const ColourScale scale(ColourScale::Kind::Values, 0.0, 1.0);

    EXPECT_EQ(scale.indexOf(-5.0), 0u);
    EXPECT_EQ(scale.indexOf(INFINITY), 254u);
    EXPECT_EQ(scale.indexOf(notANumber), ColourScale::numColours);
}

TEST(ColourScaleTest, EqualLimitsGiveTheMiddle)
{
    EXPECT_EQ(ColourScale(ColourScale::Kind::Values, 3.0, 3.0).indexOf(3.0), 127u);
    EXPECT_EQ(ColourScale(ColourScale::Kind::Values, -1.7e308, 1.7e308).indexOf(0.0), 127u);
}

TEST(ColourScaleTest, LightnessOfValuesRisesEvenly)
{
    const ColourScale scale(ColourScale::Kind::Values, 0.0, 1.0);
    EXPECT_EQ(hexOf(scale.colourAt(0)), "#440154");
    EXPECT_EQ(hexOf(scale.colourAt(254)), "#fde725");
    double before = -1.0;
    for (std::size_t i = 0; i < ColourScale::numColours; ++i)
    {
        const ColourScale::Colour colour = scale.colourAt(i);
        const double grey = 0.2126 * colour[0] + 0.7152 * colour[1] + 0.0722 * colour[2];
        EXPECT_GE(grey, before - 0.5) << i; // bytes are rounded
        before = grey;
    }
}

TEST(ColourScaleTest, ErrorsPartFromALightMiddle)
{
    const ColourScale scale(ColourScale::Kind::Errors, -1.0, 1.0);

    EXPECT_EQ(hexOf(scale.colourAt(scale.indexOf(0.0))), "#f7f7f7");
    EXPECT_EQ(hexOf(scale.colourAt(0)), "#053061");
    EXPECT_EQ(hexOf(scale.colourAt(254)), "#67001f");
}

TEST(ColourScaleTest, LimitsComeFromFiniteValues)
{
    const ColourScale scale = scaleOverValues({notANumber, 2.0, -INFINITY, 5.0});
    EXPECT_EQ(scale.getLow(), 2.0);
    EXPECT_EQ(scale.getHigh(), 5.0);
    EXPECT_EQ(scaleOverValues({notANumber}).getHigh(), 1.0);
}

TEST(ColourScaleTest, AnErrorBeyondAllOthersDoesNotTakeTheColours)
{
    std::vector<double> errors(101, -1.0);
    errors[7] = 1000.0;
    errors[8] = notANumber;
    const ColourScale scale = scaleOverErrors(errors);

    EXPECT_EQ(scale.getHigh(), 1.0);
    EXPECT_EQ(scale.getLow(), -1.0);
    EXPECT_EQ(scaleOverErrors({notANumber}).getHigh(), 1.0);
}
