#include "host/text/TextTable.h"

#include <limits>
#include <sstream>

#include <gtest/gtest.h>

namespace
{

std::string printed(const std::vector<std::vector<std::string>>& rows)
{
    std::ostringstream out;
    krige::printTable(out, rows);
    return out.str();
}

} // namespace

TEST(TextTableTest, TheFirstColumnStandsToTheLeftAndTheOthersToTheRight)
{
    EXPECT_EQ(printed({{"output", "RMSE"}, {"z", "0.25"}, {"depth", "1"}}), "output  RMSE\n"
                                                                            "z       0.25\n"
                                                                            "depth      1\n");
}

TEST(TextTableTest, WidthsAreThoseOfCharactersNotOfBytes)
{
    EXPECT_EQ(printed({{"\xc2\xb5m", "1"}, {"ab", "22"}}), "\xc2\xb5m   1\n"
                                                           "ab  22\n");
}

TEST(TextTableTest, ASingleColumnHasNoBlanksBehindIt)
{
    EXPECT_EQ(printed({{"line"}, {"7"}}), "line\n7\n");
}

TEST(TextTableTest, AnIndentStandsBeforeEachRow)
{
    std::ostringstream out;
    krige::printTable(out, {{"a", "1"}, {"b", "2"}}, "  ");

    EXPECT_EQ(out.str(), "  a  1\n  b  2\n");
}

TEST(TextTableTest, NoRowsPrintNothing)
{
    EXPECT_EQ(printed({}), "");
}

TEST(TextTableTest, BlanksAndControlCharactersOfANameBecomeUnderscores)
{
    EXPECT_EQ(krige::nameForTable("pH (in\twater)\n"), "pH_(in_water)_");
}

TEST(TextTableTest, FiguresHaveSixDigits)
{
    EXPECT_EQ(krige::formatFigure(1234.5678), "1234.57");
    EXPECT_EQ(krige::formatFigure(1e-9 / 3.0), "3.33333e-10");
}

TEST(TextTableTest, ZeroAndNaNHaveNoSign)
{
    EXPECT_EQ(krige::formatFigure(-0.0), "0");
    EXPECT_EQ(krige::formatFigure(-std::numeric_limits<double>::quiet_NaN()), "nan");
}
