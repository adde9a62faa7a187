#include "host/files/HeaderRow.h"

#include <string>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::HeaderRow;
using krige::InputError;
using krige::ReadSettings;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

class HeaderRowTest : public testing::Test
{
protected:
    HeaderRow read(const std::string& content)
    {
        krige::CsvReader reader(folder.write("f.csv", content), settings);
        krige::CsvRecord record;
        return {reader, record, settings};
    }

    std::string errorOf(const std::string& content, const std::string& name)
    {
        return messageOf<InputError>([&] { read(content).findColumn(name); });
    }

    ReadSettings settings;
    TemporaryFolder folder;
};

} // namespace

TEST_F(HeaderRowTest, ColumnsAreFoundByName)
{
    EXPECT_EQ(read("x,y,z\n").findColumn("z"), 2u);
}

TEST_F(HeaderRowTest, WithoutAHeaderRowColumnsHaveNumbersFromOne)
{
    settings.hasHeader = false;

    EXPECT_THAT(read("7,8,9\n").getNames(), ElementsAre("1", "2", "3"));
    EXPECT_EQ(read("7,8,9\n").findColumn("3"), 2u);
    EXPECT_THAT(errorOf("7,8,9\n", "4"),
                HasSubstr("f.csv, line 1, column '4': there is no such column; without a header row columns have "
                          "numbers, here 1 to 3"));
}

TEST_F(HeaderRowTest, NamesInWindows1252AreConverted)
{
    EXPECT_THAT(read("x,H\xf6he\n").getNames(), ElementsAre("x", "H\xc3\xb6he"));
    EXPECT_EQ(read("x,H\xf6he\n").findColumn("H\xc3\xb6he"), 1u);
}

TEST_F(HeaderRowTest, ARowOfNumbersIsNoHeaderRow)
{
    EXPECT_TRUE(read("1,-2.5,3e7\n").isOfNumbers());
    EXPECT_FALSE(read("1,-2.5,z\n").isOfNumbers());
    EXPECT_FALSE(read("1,,2\n").isOfNumbers());
    EXPECT_THAT(errorOf("1,-2.5,3e7\n", "x"),
                HasSubstr("f.csv, line 1: all cells of the first row are numbers: it is no header row; add --no-header "
                          "and name columns by number, as in --inputs 1,2 --outputs 3"));
}

TEST_F(HeaderRowTest, ARowOfNumbersThatHasTheNamesIsOne)
{
    EXPECT_EQ(read("400,410,420\n1,2,3\n").findColumn("410"), 1u);
}

TEST_F(HeaderRowTest, NumbersMayHaveADecimalComma)
{
    settings.hasDecimalComma = true;

    EXPECT_TRUE(read("1,5;2,5\n").isOfNumbers());
}

TEST_F(HeaderRowTest, ANearNameIsSuggested)
{
    EXPECT_THAT(errorOf("X,Y,zinc\n", "x"), HasSubstr("the header row has 'X', 'Y', 'zinc'; did you mean 'X'?"));
    EXPECT_THAT(errorOf("X,Y,zinc\n", "zink"), HasSubstr("; did you mean 'zinc'?"));
}

TEST_F(HeaderRowTest, SettingsThatMayBeMeantAreSuggested)
{
    EXPECT_THAT(errorOf("x y z\n", "x"), HasSubstr("; if blanks separate its columns, add --delimiter space"));
    EXPECT_THAT(errorOf("# made today\nx,y\n", "x"), HasSubstr("; if this row is a comment, add --comment '#'"));
    EXPECT_THAT(errorOf("x|y|z\n", "x"),
                HasSubstr("; if another character than comma, semicolon and tab separates its columns, name it with "
                          "--delimiter"));
    settings.delimiter = ';';
    EXPECT_THAT(errorOf("x,y,z\n", "x"), HasSubstr("; if another character than semicolon separates its columns"));
}
