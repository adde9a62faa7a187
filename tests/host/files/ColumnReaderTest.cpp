#include "host/files/ColumnReader.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "host/model/SampleTable.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::ColumnReader;
using krige::InputError;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

using Columns = std::vector<std::vector<double>>;

class ColumnReaderTest : public testing::Test
{
protected:
    Columns read(const std::string& content, const std::vector<std::string>& names)
    {
        ColumnReader reader(folder.write("f.csv", content), names, settings);
        Columns columns;
        reader.read(columns, all);
        return columns;
    }

    std::string errorOf(const std::string& content, const std::vector<std::string>& names)
    {
        return messageOf<InputError>([&] { read(content, names); });
    }

    krige::ReadSettings settings;
    TemporaryFolder folder;
};

} // namespace

TEST_F(ColumnReaderTest, ColumnsComeInTheOrderOfTheNamesNotOfTheFile)
{
    EXPECT_EQ(read("z,y,x\n1,2,3\n4,5,6\n", {"x", "z"}), (Columns{{3, 6}, {1, 4}}));
}

TEST_F(ColumnReaderTest, OtherColumnsMayHoldAnything)
{
    EXPECT_EQ(read("x,note\n1,\n2,1e999\n3,\"a,b\"\n", {"x"}), (Columns{{1, 2, 3}}));
}

TEST_F(ColumnReaderTest, NamesHoldWhatQuotesAllow)
{
    EXPECT_EQ(read("\"a,b\",\"c\nd\"\n1,2\n", {"c\nd", "a,b"}), (Columns{{2}, {1}}));
}

TEST_F(ColumnReaderTest, RowsComeInBlocksUntilTheEnd)
{
    ColumnReader reader(folder.write("f.csv", "x\n1\n2\n3\n"), {"x"});
    Columns columns;

    EXPECT_EQ(reader.read(columns, 2), 2u);
    EXPECT_EQ(columns, (Columns{{1, 2}}));
    EXPECT_EQ(reader.read(columns, 2), 1u);
    EXPECT_EQ(columns, (Columns{{3}}));
    EXPECT_EQ(reader.read(columns, 2), 0u);
}

TEST_F(ColumnReaderTest, AnUnknownNameIsAnErrorThatListsTheNames)
{
    EXPECT_THAT(errorOf("x,y\n1,2\n", {"x", "q"}),
                HasSubstr("f.csv, line 1, column 'q': there is no such column; the header row has 'x', 'y'"));
}

TEST_F(ColumnReaderTest, NamesAreTakenToTheLetter)
{
    EXPECT_THAT(errorOf("X\n1\n", {"x"}), HasSubstr("there is no such column"));
}

TEST_F(ColumnReaderTest, AChosenNameThatStandsTwiceIsAnError)
{
    EXPECT_THAT(errorOf("x,y,x\n1,2,3\n", {"x"}),
                HasSubstr("f.csv, line 1, column 'x': the header row has this name twice, as column 1 and column 3"));
}

TEST_F(ColumnReaderTest, OtherNamesMayStandTwice)
{
    EXPECT_EQ(read("x,a,a,,\n1,2,3,4,5\n", {"x"}), (Columns{{1}}));
}

TEST_F(ColumnReaderTest, AMissingValueIsAnErrorWithLineAndColumn)
{
    EXPECT_THAT(errorOf("x,y\n1,2\n3,\n", {"x", "y"}), HasSubstr("f.csv, line 3, column 'y': the value is missing"));
}

TEST_F(ColumnReaderTest, ANaNIsAMissingValue)
{
    EXPECT_THAT(errorOf("x\nnan\n", {"x"}), HasSubstr("f.csv, line 2, column 'x': the value is missing ('nan')"));
}

TEST_F(ColumnReaderTest, ATextThatIsNoNumberIsAnErrorWithLineAndColumn)
{
    EXPECT_THAT(errorOf("x,y\n1,2\n3,4m\n", {"y"}), HasSubstr("f.csv, line 3, column 'y': '4m' is not a number"));
}

TEST_F(ColumnReaderTest, AnOverflowIsAnErrorWithLineAndColumn)
{
    EXPECT_THAT(errorOf("x\n1e999\n", {"x"}),
                HasSubstr("f.csv, line 2, column 'x': '1e999' is too large for a double"));
}

TEST_F(ColumnReaderTest, AnUnderflowIsAnErrorWithLineAndColumn)
{
    EXPECT_THAT(errorOf("x\n1e-400\n", {"x"}), HasSubstr("f.csv, line 2, column 'x': '1e-400' is too small"));
}

TEST_F(ColumnReaderTest, LineEndsWithinQuotesCountAsLines)
{
    EXPECT_THAT(errorOf("note,x\n\"a\nb\",1\nc,bad\n", {"x"}), HasSubstr("f.csv, line 4, column 'x'"));
}

TEST_F(ColumnReaderTest, AShortRowIsAnErrorAtTheFirstColumnItLacks)
{
    EXPECT_THAT(errorOf("x,y,z\n1,2,3\n1\n", {"x", "z"}),
                HasSubstr("f.csv, line 3, column 'y': the row ends before this column: it has 1 field"));
}

TEST_F(ColumnReaderTest, ALongRowIsAnError)
{
    EXPECT_THAT(errorOf("x,y\n1,5,2\n", {"x"}), HasSubstr("f.csv, line 2, column 3: the row is longer"));
}

TEST_F(ColumnReaderTest, AnEmptyFileIsAnErrorThatAsksForAHeaderRow)
{
    EXPECT_THAT(errorOf("", {"x"}), HasSubstr("f.csv, line 1: the file is empty; it needs a header row"));
}

TEST_F(ColumnReaderTest, SamplesAreSplitIntoInputsAndOutputs)
{
    const krige::SampleTable samples =
        krige::readSamples(folder.write("f.csv", "z,x,y\n1,2,3\n4,5,6\n"), {"x", "y"}, {"z"});

    EXPECT_EQ(samples.inputs, (Columns{{2, 5}, {3, 6}}));
    EXPECT_EQ(samples.outputs, (Columns{{1, 4}}));
}

TEST_F(ColumnReaderTest, AHeaderRowWithoutSamplesIsAnError)
{
    EXPECT_THAT(messageOf<InputError>([&] { krige::readSamples(folder.write("f.csv", "x,z\n"), {"x"}, {"z"}); }),
                HasSubstr("f.csv: no samples"));
}

TEST_F(ColumnReaderTest, WhatIsMissingIsNaNWhenItIsToBeSkipped)
{
    settings.skipMissing = true;
    ColumnReader reader(folder.write("f.csv", "x\tnote\n1\ta\nn/a\tb\n\t\ninf\t\n"), {"x"}, settings, {"note"});
    Columns columns;
    reader.read(columns, all);

    ASSERT_EQ(columns[0].size(), 4u);
    EXPECT_EQ(columns[0][0], 1.0);
    for (std::size_t row = 1; row < 4; ++row)
        EXPECT_TRUE(std::isnan(columns[0][row])) << row;
    EXPECT_EQ(reader.getTexts(1), ",b");
    EXPECT_EQ(reader.getTexts(2), ",\"\"");
    EXPECT_EQ(reader.getLine(3), 5u);
}

TEST_F(ColumnReaderTest, SkippedRowsMayHoldAnything)
{
    ColumnReader reader(folder.write("f.csv", "x\nbad,1,2\n\n7\n8\n"), {"x"});
    Columns columns;

    EXPECT_EQ(reader.skip(1), 1u);
    reader.read(columns, all);

    EXPECT_EQ(columns, (Columns{{7, 8}}));
    EXPECT_EQ(reader.skip(3), 0u);
}

TEST_F(ColumnReaderTest, WithoutAHeaderRowTheFirstRowHoldsValues)
{
    settings.hasHeader = false;

    EXPECT_EQ(read("1,2,3\n4,5,6\n", {"3", "1"}), (Columns{{3, 6}, {1, 4}}));
}

TEST_F(ColumnReaderTest, WithoutAHeaderRowTheFirstRowIsSkippedLikeAnyOther)
{
    settings.hasHeader = false;
    ColumnReader reader(folder.write("f.csv", "1\n2\n3\n"), {"1"}, settings);
    Columns columns;

    EXPECT_EQ(reader.skip(2), 2u);
    reader.read(columns, all);

    EXPECT_EQ(columns, (Columns{{3}}));
    EXPECT_EQ(reader.getLine(0), 3u);
}

TEST_F(ColumnReaderTest, WithoutAHeaderRowAllRowsAreAsLongAsTheFirst)
{
    settings.hasHeader = false;

    EXPECT_THAT(
        errorOf("1,2\n3\n", {"1"}),
        HasSubstr("f.csv, line 2, column '2': the row ends before this column: it has 1 field, the first row 2"));
    EXPECT_THAT(errorOf("1,2\n3,4,5\n", {"1"}),
                HasSubstr("f.csv, line 2, column 3: the row is longer than the first row"));
}

TEST_F(ColumnReaderTest, NumbersMayHaveADecimalComma)
{
    settings.hasDecimalComma = true;

    EXPECT_EQ(read("x;z\n1,5;-2\n,25;1e-3\n", {"x", "z"}), (Columns{{1.5, 0.25}, {-2, 1e-3}}));
}

TEST_F(ColumnReaderTest, APointIsNoDecimalComma)
{
    settings.hasDecimalComma = true;

    EXPECT_THAT(errorOf("x\n1.5\n", {"x"}),
                HasSubstr("f.csv, line 2, column 'x': '1.5' is not a number with a decimal comma (--decimal ,)"));
    EXPECT_THAT(errorOf("x;y\n1.234,5;1\n", {"x"}), HasSubstr("'1.234,5' is not a number"));
}

TEST_F(ColumnReaderTest, ADecimalCommaWhereNoneIsExpectedIsNamed)
{
    EXPECT_THAT(
        errorOf("x;z\n1,5;2\n", {"x"}),
        HasSubstr("f.csv, line 2, column 'x': '1,5' is not a number; if it has a decimal comma, add --decimal ,"));
}

TEST_F(ColumnReaderTest, TextsInWindows1252AreConverted)
{
    ColumnReader reader(folder.write("f.csv", "x,stra\xdf"
                                              "e\n1,M\xfchle\n2,M\xc3\xbchle\n"),
                        {"x"}, settings,
                        {"stra\xc3\x9f"
                         "e"});
    Columns columns;
    reader.read(columns, all);

    EXPECT_EQ(reader.getTexts(0), ",M\xc3\xbchle");
    EXPECT_EQ(reader.getTexts(1), ",M\xc3\xbchle");
}
