#include "host/page/Axis.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

using krige::Axis;
using krige::axisOver;

namespace
{

std::vector<std::string> labelsOf(const Axis& axis)
{
    std::vector<std::string> labels;
    for (const Axis::Mark& mark : axis.getMarks())
        labels.push_back(mark.label);
    return labels;
}

using Labels = std::vector<std::string>;

} // namespace

TEST(AxisTest, MarksStandAtRoundValues)
{
    EXPECT_EQ(labelsOf(Axis(0.0, 10.0, 5)), (Labels{"0", "2", "4", "6", "8", "10"}));
    EXPECT_EQ(labelsOf(Axis(-0.12, 0.31, 5)), (Labels{"-0.1", "0.0", "0.1", "0.2", "0.3"}));
    EXPECT_EQ(labelsOf(Axis(3.0, 1203.0, 3)), (Labels{"500", "1000"}));
}

TEST(AxisTest, LongLabelsAreWhatIsAboveAnOffset)
{
    const Axis axis(56341205.0, 56341280.0, 4);

    EXPECT_EQ(axis.getOffset(), "56340000");
    EXPECT_EQ(labelsOf(axis), (Labels{"1220", "1240", "1260", "1280"}));
    EXPECT_DOUBLE_EQ(axis.getMarks()[0].value, 56341220.0);
    EXPECT_EQ(Axis(179000.0, 181500.0, 5).getOffset(), "");
}

TEST(AxisTest, OffsetsOfNegativeValuesLeavePositiveLabels)
{
    const Axis axis(-56341280.0, -56341205.0, 4);

    EXPECT_EQ(axis.getOffset(), "-56350000");
    EXPECT_EQ(labelsOf(axis), (Labels{"8720", "8740", "8760", "8780"}));
}

TEST(AxisTest, HugeAndTinyValuesAreWrittenWithPowers)
{
    EXPECT_EQ(labelsOf(Axis(0.0, 2e300, 2)), (Labels{"0", "1e+300", "2e+300"}));
    EXPECT_EQ(labelsOf(Axis(0.0, 2e-12, 2)), (Labels{"0", "1e-12", "2e-12"}));
    EXPECT_FALSE(labelsOf(Axis(-1.7e308, 1.7e308, 5)).empty());
}

TEST(AxisTest, SharesRunFromEndToEnd)
{
    EXPECT_EQ(Axis(2.0, 6.0, 3).shareOf(3.0), 0.25);
    EXPECT_EQ(Axis(-1.7e308, 1.7e308, 3).shareOf(0.0), 0.5);
}

TEST(AxisTest, AnAxisWithoutALengthIsWidened)
{
    const Axis ofZero(0.0, 0.0, 3);
    EXPECT_LT(ofZero.getLow(), 0.0);
    EXPECT_GT(ofZero.getHigh(), 0.0);
    EXPECT_EQ(Axis(7.0, 7.0, 3).shareOf(7.0), 0.5);
}

TEST(AxisTest, WhatIsNoNumberCountsForNothing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Axis axis = axisOver({nan, 1.0, INFINITY, 3.0}, 0.5, 3);

    EXPECT_EQ(axis.getLow(), 0.0);
    EXPECT_EQ(axis.getHigh(), 4.0);
    EXPECT_EQ(axisOver({nan}, 0.1, 3).getHigh(), 1.0);
}
