#include "host/pictures/Contours.h"

#include <cmath>

#include <gtest/gtest.h>

using krige::calcContours;
using krige::ContourLine;

namespace
{

using Values = std::vector<double>;

} // namespace

TEST(ContoursTest, ALineCutsASlopeWhereTheValueIs)
{
    const Values x{10, 20, 30}, y{0, 1}, values{0, 1, 2, 0, 1, 2};
    const std::vector<ContourLine> lines = calcContours({x, y, values}, 0.5);

    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].x, (Values{15, 15}));
    EXPECT_EQ(lines[0].y, (Values{0, 1}));
}

TEST(ContoursTest, AHillHasAClosedLine)
{
    const Values axis{0, 1, 2}, values{0, 0, 0, 0, 1, 0, 0, 0, 0};
    const std::vector<ContourLine> lines = calcContours({axis, axis, values}, 0.5);

    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].x.size(), 5u);
    EXPECT_EQ(lines[0].x.front(), lines[0].x.back());
    EXPECT_EQ(lines[0].y.front(), lines[0].y.back());
}

TEST(ContoursTest, ALevelBeyondTheValuesHasNoLine)
{
    const Values axis{0, 1}, values{0, 1, 1, 0};

    EXPECT_TRUE(calcContours({axis, axis, values}, 2.0).empty());
    EXPECT_TRUE(calcContours({axis, axis, values}, -1.0).empty());
}

TEST(ContoursTest, ANodeWithoutAValueTakesItsCells)
{
    const Values x{0, 1, 2, 3}, y{0, 1}, values{0, 2, 0, 2, 0, 2, 0, std::nan("")};
    const std::vector<ContourLine> lines = calcContours({x, y, values}, 1.0);

    ASSERT_EQ(lines.size(), 2u); // of three crossings the last one lies beside the gap
    EXPECT_EQ(lines[0].x.front(), 0.5);
    EXPECT_EQ(lines[1].x.front(), 1.5);
}

TEST(ContoursTest, TheMeanSaysWhichCornersOfASaddleBelongTogether)
{
    const Values axis{0, 1};
    // Corners 0 and 2 are above; a high mean joins them, so that the lines cut off the other two corners.
    const std::vector<ContourLine> joined = calcContours({axis, axis, {4, 0, 0, 4}}, 1.0);
    const std::vector<ContourLine> parted = calcContours({axis, axis, {4, 0, 0, 4}}, 3.0);

    ASSERT_EQ(joined.size(), 2u);
    ASSERT_EQ(parted.size(), 2u);
    for (const ContourLine& line : joined)
        EXPECT_GT(std::fabs(line.x[0] + line.x[1] - line.y[0] - line.y[1]), 0.5); // beside the diagonal
    for (const ContourLine& line : parted)
        EXPECT_GT(std::fabs(line.x[0] + line.x[1] + line.y[0] + line.y[1] - 2.0), 0.5); // across it
}

TEST(ContoursTest, EveryCrossingBelongsToOneLine)
{
    // A chessboard: many saddles, and no edge may be drawn twice.
    Values axis, values;
    for (int i = 0; i < 9; ++i)
        axis.push_back(i);
    for (int i = 0; i < 81; ++i)
        values.push_back((i / 9 + i % 9) % 2);
    std::size_t numSteps = 0;
    for (const ContourLine& line : calcContours({axis, axis, values}, 0.5))
        numSteps += line.x.size() - 1;

    EXPECT_EQ(numSteps, 2u * 64u); // two in each cell
}
