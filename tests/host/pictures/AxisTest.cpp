#include "host/pictures/Axis.h"

#include <limits>

#include <gtest/gtest.h>

using krige::AxisDirection;
using krige::AxisRange;
using krige::chooseTicks;
using krige::rangeAround;
using krige::Ticks;

namespace
{

std::vector<std::string> labelsOf(const Ticks& ticks)
{
    std::vector<std::string> labels;
    for (const krige::Tick& tick : ticks.ticks)
        labels.push_back(tick.label);
    return labels;
}

using Labels = std::vector<std::string>;

} // namespace

TEST(RangeAroundTest, LeavesAMarginOnBothSides)
{
    EXPECT_EQ(rangeAround({1.0, 3.0, 2.0}, 0.5).text(), "[0:4]");
}

TEST(RangeAroundTest, IsNeverEmpty)
{
    EXPECT_EQ(rangeAround({}, 0.1).text(), "[0:1]");
    EXPECT_EQ(rangeAround({std::numeric_limits<double>::quiet_NaN()}, 0.1).text(), "[0:1]");
    EXPECT_EQ(rangeAround({20.0, 20.0}, 0.0).text(), "[19:21]");
}

TEST(ChooseTicksTest, LabelsInMetresStandApart)
{
    // Six digits are 60 pixels, and a tick every 500 would be 70 pixels from the next.
    EXPECT_EQ(labelsOf(chooseTicks({178600, 181400}, 300, AxisDirection::Across)),
              (Labels{"179000", "180000", "181000"}));
    EXPECT_EQ(labelsOf(chooseTicks({178600, 181400}, 500, AxisDirection::Across)),
              (Labels{"179000", "179500", "180000", "180500", "181000"}));
}

TEST(ChooseTicksTest, LabelsUpAnAxisMayBeCloser)
{
    const Labels labels = labelsOf(chooseTicks({178600, 181400}, 300, AxisDirection::Up));

    EXPECT_EQ(labels, (Labels{"179000", "179500", "180000", "180500", "181000"}));
}

TEST(ChooseTicksTest, LongLabelsThatShareTheirLeadingDigitsLoseThem)
{
    const Ticks ticks = chooseTicks({2451545, 2451670}, 400, AxisDirection::Across);

    EXPECT_EQ(labelsOf(ticks), (Labels{"560", "580", "600", "620", "640", "660"}));
    EXPECT_EQ(ticks.offset, 2451000.0);
    EXPECT_EQ(ticks.offsetText, "2451000");
    EXPECT_EQ(ticks.ticks.front().at, 2451560.0);
}

TEST(ChooseTicksTest, AnOffsetBelowZeroIsTakenFromNegativeLabels)
{
    const Ticks ticks = chooseTicks({-2451670, -2451545}, 200, AxisDirection::Across);

    EXPECT_EQ(labelsOf(ticks), (Labels{"-650", "-600", "-550"}));
    EXPECT_EQ(ticks.offset, -2451000.0);
    EXPECT_EQ(ticks.offsetText, "2451000");
}

TEST(ChooseTicksTest, ShortLabelsAndThoseThatShareLittleKeepTheirDigits)
{
    EXPECT_TRUE(chooseTicks({100100, 100900}, 600, AxisDirection::Across).offsetText.empty());
    EXPECT_TRUE(chooseTicks({1000000, 9000000}, 600, AxisDirection::Across).offsetText.empty());
    EXPECT_TRUE(chooseTicks({-4000000, 4000000}, 600, AxisDirection::Across).offsetText.empty());
}

TEST(ChooseTicksTest, WhereFewLabelsFitSideBySideTheyAreTurned)
{
    const Ticks ticks = chooseTicks({178600, 181400}, 120, AxisDirection::Across);

    EXPECT_TRUE(ticks.areUpright);
    EXPECT_EQ(labelsOf(ticks), (Labels{"179000", "180000", "181000"}));
}

TEST(ChooseTicksTest, DecimalsAreAsManyAsTheStepHas)
{
    EXPECT_EQ(labelsOf(chooseTicks({0.0, 0.5}, 300, AxisDirection::Across)),
              (Labels{"0", "0.1", "0.2", "0.3", "0.4", "0.5"}));
}

TEST(ChooseTicksTest, HugeAndTinyNumbersAreWrittenWithExponents)
{
    EXPECT_EQ(labelsOf(chooseTicks({0.0, 1e300}, 200, AxisDirection::Across)), (Labels{"0", "5e299", "1e300"}));
    EXPECT_EQ(labelsOf(chooseTicks({0.0, 2e-9}, 200, AxisDirection::Across)), (Labels{"0", "1e-9", "2e-9"}));
}

TEST(ChooseTicksTest, ASpanBeyondTheDoublesHasItsEnds)
{
    EXPECT_EQ(chooseTicks({-1.5e308, 1.5e308}, 200, AxisDirection::Up).ticks.size(), 2u);
}

TEST(WidthOfTextTest, ACharacterCountsOnceHoweverManyBytesItHas)
{
    EXPECT_EQ(krige::widthOfText("\xc2\xb5m"), krige::widthOfText("mm"));
}
