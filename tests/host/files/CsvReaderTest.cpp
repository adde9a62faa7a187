#include "host/files/CsvReader.h"

#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::CsvReader;
using krige::CsvRecord;
using krige::InputError;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

using Fields = std::vector<std::string>;

class CsvReaderTest : public testing::Test
{
protected:
    std::vector<Fields> read(const std::string& content)
    {
        CsvReader reader(folder.write("file.csv", content), format);
        CsvRecord record;
        std::vector<Fields> records;
        lines.clear();
        while (reader.read(record))
        {
            Fields fields;
            for (std::size_t i = 0; i < record.getNumFields(); ++i)
                fields.emplace_back(record[i]);
            records.push_back(fields);
            lines.push_back(record.getLine());
        }
        return records;
    }

    std::string errorOf(const std::string& content)
    {
        return messageOf<InputError>([&] { read(content); });
    }

    TemporaryFolder folder;
    krige::CsvFormat format;
    std::vector<std::size_t> lines; // on which the records began
};

} // namespace

TEST_F(CsvReaderTest, FieldsAreSplitAtCommas)
{
    EXPECT_THAT(read("a,b\n1,2\n"), ElementsAre(Fields{"a", "b"}, Fields{"1", "2"}));
}

TEST_F(CsvReaderTest, TheLastRecordNeedsNoLineEnd)
{
    EXPECT_THAT(read("a,b\n1,2"), ElementsAre(Fields{"a", "b"}, Fields{"1", "2"}));
}

TEST_F(CsvReaderTest, CarriageReturnsEndLinesWithAndWithoutLineFeeds)
{
    EXPECT_THAT(read("a\r\n1\r2\n"), ElementsAre(Fields{"a"}, Fields{"1"}, Fields{"2"}));
    EXPECT_THAT(lines, ElementsAre(1u, 2u, 3u));
}

TEST_F(CsvReaderTest, AByteOrderMarkIsNoPartOfTheFirstField)
{
    EXPECT_THAT(read("\xEF\xBB\xBFx,y\n"), ElementsAre(Fields{"x", "y"}));
}

TEST_F(CsvReaderTest, AQuotedFirstFieldAfterAByteOrderMarkIsRead)
{
    EXPECT_THAT(read("\xEF\xBB\xBF\"x,1\",y\n"), ElementsAre(Fields{"x,1", "y"}));
}

TEST_F(CsvReaderTest, AFileOfAByteOrderMarkAloneHoldsNoRecord)
{
    EXPECT_THAT(read("\xEF\xBB\xBF"), ElementsAre());
}

TEST_F(CsvReaderTest, QuotedFieldsHoldCommasQuotesAndLineEnds)
{
    EXPECT_THAT(read("\"a,b\",\"say \"\"c\"\"\",\"d\r\ne\"\n"), ElementsAre(Fields{"a,b", "say \"c\"", "d\r\ne"}));
}

TEST_F(CsvReaderTest, ARecordIsNumberedByTheLineOnWhichItBegins)
{
    read("h\n\"1\n2\n3\"\n4\n");

    EXPECT_THAT(lines, ElementsAre(1u, 2u, 5u));
}

TEST_F(CsvReaderTest, BlankLinesArePassedOverButCounted)
{
    EXPECT_THAT(read("a\r\n\r\n  \r\n1\r\n"), ElementsAre(Fields{"a"}, Fields{"1"}));
    EXPECT_THAT(lines, ElementsAre(1u, 4u));
}

TEST_F(CsvReaderTest, BlanksAroundAnUnquotedFieldDoNotBelongToIt)
{
    EXPECT_THAT(read(" a b ,\tc\t\n"), ElementsAre(Fields{"a b", "c"}));
}

TEST_F(CsvReaderTest, BlanksWithinQuotesBelongToTheField)
{
    EXPECT_THAT(read("\" a \"\n"), ElementsAre(Fields{" a "}));
}

TEST_F(CsvReaderTest, EmptyFieldsAreKept)
{
    EXPECT_THAT(read(",a,\n"), ElementsAre(Fields{"", "a", ""}));
}

TEST_F(CsvReaderTest, AQuotedEmptyFieldIsARecord)
{
    EXPECT_THAT(read("\"\"\n"), ElementsAre(Fields{""}));
}

TEST_F(CsvReaderTest, AFieldLongerThanABlockIsWhole)
{
    const std::string longText(700000, 'x');

    EXPECT_THAT(read("a\n\"" + longText + "\"\nb\n"), ElementsAre(Fields{"a"}, Fields{longText}, Fields{"b"}));
}

TEST_F(CsvReaderTest, RecordsAcrossBlockBordersAreWholeAndNumbered)
{
    std::string content;
    for (int i = 0; i < 100000; ++i)
        content += "12,\"34\"\r\n";
    const std::vector<Fields> records = read(content);

    EXPECT_EQ(records, std::vector<Fields>(100000, Fields{"12", "34"}));
    EXPECT_EQ(lines.back(), 100000u);
}

TEST_F(CsvReaderTest, AHundredThousandColumnsAreRead)
{
    std::string content = "0";
    for (int i = 1; i < 100000; ++i)
        content += "," + std::to_string(i);

    EXPECT_EQ(read(content).at(0).at(99999), "99999");
}

TEST_F(CsvReaderTest, AnUnclosedQuoteIsAnErrorAtTheRecordsFirstLine)
{
    EXPECT_THAT(errorOf("a,b\n1,\"2\n3\n"), HasSubstr("file.csv, line 2, column 2: the quoted field is never closed"));
}

TEST_F(CsvReaderTest, TextAfterAClosingQuoteIsAnError)
{
    EXPECT_THAT(errorOf("a\n\"1\"2\n"), HasSubstr("file.csv, line 2, column 1: "));
}

TEST_F(CsvReaderTest, AQuoteWithinAnUnquotedFieldIsAnError)
{
    EXPECT_THAT(errorOf("a,b\n1,5\" pipe\n"), HasSubstr("file.csv, line 2, column 2: "));
}

TEST_F(CsvReaderTest, ANulByteIsAnErrorWithItsLine)
{
    EXPECT_THAT(errorOf(std::string("a\nb\0\n", 5)), HasSubstr("file.csv, line 2: a NUL byte"));
}

TEST_F(CsvReaderTest, AnEmptyFileHoldsNoRecord)
{
    EXPECT_THAT(read(""), ElementsAre());
}

TEST_F(CsvReaderTest, AMissingFileIsAnErrorWithItsName)
{
    EXPECT_THAT(messageOf<InputError>([&] { CsvReader reader(folder.pathOf("none.csv")); }),
                HasSubstr("none.csv: No such file or directory"));
}

TEST(CsvTextTest, AListOfNamesIsSplitAtCommas)
{
    EXPECT_THAT(krige::splitCsvText("x, y", "--inputs"), ElementsAre("x", "y"));
}

TEST(CsvTextTest, AQuotedNameMayHoldAComma)
{
    EXPECT_THAT(krige::splitCsvText("x,\"a,b\"", "--inputs"), ElementsAre("x", "a,b"));
}

TEST(CsvTextTest, AnUnclosedQuoteInAListIsAUsageError)
{
    EXPECT_THAT(messageOf<krige::UsageError>([] { krige::splitCsvText("\"x", "--inputs"); }), HasSubstr("--inputs"));
}

TEST(CsvTextTest, AFieldIsWrittenInQuotesWhenItNeedsThem)
{
    std::string text;
    for (const char* field : {"plain name", "a,b", "say \"c\"", "d\ne", " f"})
    {
        krige::appendCsvField(text, field);
        text += '|';
    }

    EXPECT_EQ(text, "plain name|\"a,b\"|\"say \"\"c\"\"\"|\"d\ne\"|\" f\"|");
}

TEST_F(CsvReaderTest, AFirstFieldThatBeginsLikeAMarkedOrPackedFileIsReadBack)
{
    for (const std::string field : {"\xEF\xBB\xBFx", "\x1F\x8Bx"})
    {
        std::string text;
        krige::appendCsvField(text, field);

        EXPECT_THAT(read(text + "\n"), ElementsAre(Fields{field}));
    }
}

TEST_F(CsvReaderTest, PlainAndQuotedLinesAndBlankOnesMayAlternate)
{
    EXPECT_THAT(read("x,y\n\n1,\"a\"\n\r\n2,b\r\n\"3\",c\n  \n4,d"),
                ElementsAre(Fields{"x", "y"}, Fields{"1", "a"}, Fields{"2", "b"}, Fields{"3", "c"}, Fields{"4", "d"}));
    EXPECT_THAT(lines, ElementsAre(1u, 3u, 5u, 6u, 8u));
}

TEST_F(CsvReaderTest, LinesThatABlockCutsOffAreReadWhole)
{
    std::string content = "x,y\n";
    for (int i = 0; i < 100000; ++i)
        content += std::to_string(i) + (i % 3 == 0 ? ",\"q\"" : ",p") + (i % 2 == 0 ? "\r\n" : "\n");

    const std::vector<Fields> records = read(content);

    ASSERT_EQ(records.size(), 100001u);
    for (std::size_t i = 0; i < 100000; ++i)
    {
        ASSERT_EQ(records[i + 1], (Fields{std::to_string(i), i % 3 == 0 ? "q" : "p"}));
        ASSERT_EQ(lines[i + 1], i + 2);
    }
}

TEST_F(CsvReaderTest, ALineLongerThanABlockIsReadWhole)
{
    const std::string field(700000, 'a');

    EXPECT_THAT(read("x,y\n1," + field + "\n2,b\n"),
                ElementsAre(Fields{"x", "y"}, Fields{"1", field}, Fields{"2", "b"}));
}

TEST_F(CsvReaderTest, TheDelimiterIsTheOneThatTheFirstLineHasMostOf)
{
    EXPECT_THAT(read("x;y;z, m\n1;2,5;3\n"), ElementsAre(Fields{"x", "y", "z, m"}, Fields{"1", "2,5", "3"}));
    EXPECT_THAT(read("x\ty\n\t2\n"), ElementsAre(Fields{"x", "y"}, Fields{"", "2"}));
    EXPECT_THAT(read("x,y;z\n"), ElementsAre(Fields{"x", "y;z"}));
    EXPECT_THAT(read("\"a;b;c\",d\n"), ElementsAre(Fields{"a;b;c", "d"}));
}

TEST_F(CsvReaderTest, WhateverWayRecordsAreWrittenTheyAreReadAlike)
{
    for (unsigned seed = 0; seed < 300; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 engine(seed);
        const auto draw = [&engine](const std::vector<std::string>& choices)
        {
            return choices[engine() % choices.size()];
        };
        std::vector<Fields> expected;
        std::vector<std::size_t> expectedLines;
        std::size_t line = 1;
        std::string content = draw({"", "\xEF\xBB\xBF"}) + "first;second;third\n";
        expected.push_back({"first", "second", "third"});
        expectedLines.push_back(line++);
        for (int row = 0; row < 60; ++row)
        {
            if (engine() % 8 == 0)
            {
                // A line feed right after a carriage return would be the end of the same line.
                content += content.back() == '\n' ? draw({"\n", "\r\n", "\r"}) : draw({"  \n", "\t\r\n", "\r"});
                ++line;
            }
            expected.emplace_back();
            expectedLines.push_back(line);
            for (int f = 0; f < 3; ++f)
            {
                const std::string field = draw({"", "1.5", "a b", "x,y", "-7e3"});
                const std::string special = draw({"two\nlines", "semi;colon", "say \"\"so\"\"", " blank "});
                const bool quoted = engine() % 6 == 0;
                const bool isSpecial = quoted && engine() % 2 == 0;
                const std::string text = isSpecial ? special : field;
                content += f == 0 ? "" : ";";
                content += quoted ? draw({"\"", " \""}) + text + draw({"\"", "\" "})
                                  : draw({"", " ", "\t"}) + text + draw({"", " ", "\t "});
                line += isSpecial && text[0] == 't';
                expected.back().push_back(isSpecial && text[0] == 's' && text[1] == 'a' ? "say \"so\"" : text);
            }
            content += draw({"\n", "\r\n", "\r"});
            ++line;
        }

        EXPECT_EQ(read(content), expected);
        EXPECT_EQ(lines, expectedLines);
    }
}

TEST_F(CsvReaderTest, RunsOfBlanksSeparateFieldsWhereTheyAreToldTo)
{
    format.delimiter = krige::CsvFormat::blankRuns;

    EXPECT_THAT(read(" x  y\t z \n1 2   3\r\n \t \n4\t5 6"),
                ElementsAre(Fields{"x", "y", "z"}, Fields{"1", "2", "3"}, Fields{"4", "5", "6"}));
    EXPECT_THAT(lines, ElementsAre(1u, 2u, 4u));
}

TEST_F(CsvReaderTest, QuotesHoldBlanksTogether)
{
    format.delimiter = krige::CsvFormat::blankRuns;

    EXPECT_THAT(read("site  x\n \"a  b\"   1  \nc \"two\nlines  \"\n\"\"  \"say \"\"d\"\"\"\ne 2\n"),
                ElementsAre(Fields{"site", "x"}, Fields{"a  b", "1"}, Fields{"c", "two\nlines  "},
                            Fields{"", "say \"d\""}, Fields{"e", "2"}));
    EXPECT_THAT(lines, ElementsAre(1u, 2u, 3u, 5u, 6u));
}

TEST_F(CsvReaderTest, MalformedQuotesBetweenBlanksAreErrorsWithLineAndColumn)
{
    format.delimiter = krige::CsvFormat::blankRuns;

    EXPECT_THAT(errorOf("a  b\n1   5\"\n"), HasSubstr("file.csv, line 2, column 2: a quote within"));
    EXPECT_THAT(errorOf("a  b\n1   \"2\n"), HasSubstr("file.csv, line 2, column 2: the quoted field is never closed"));
}

TEST_F(CsvReaderTest, LinesOfBlankSeparatedFieldsMayBeCutOffByABlock)
{
    format.delimiter = krige::CsvFormat::blankRuns;
    std::string content;
    for (std::size_t i = 0; i < 60000; ++i)
        content += std::string(i % 5, ' ') + "12" + std::string(1 + i % 3, ' ') + (i % 7 == 0 ? "\"34\"" : "34") +
                   std::string(i % 2, ' ') + "\n";

    EXPECT_EQ(read(content), std::vector<Fields>(60000, Fields{"12", "34"}));
    EXPECT_EQ(lines.back(), 60000u);
}

TEST_F(CsvReaderTest, CommentsArePassedOverButCounted)
{
    format.comment = "#";

    EXPECT_THAT(read("# a;b;c\r\n\r\n  # d\nx,y\n#\n1,2\n\"#3\",#4\n# end"),
                ElementsAre(Fields{"x", "y"}, Fields{"1", "2"}, Fields{"#3", "#4"}));
    EXPECT_THAT(lines, ElementsAre(4u, 6u, 7u));
}

TEST_F(CsvReaderTest, ACommentMayBeginWithSeveralCharactersAndHoldAnything)
{
    format.comment = "//";

    EXPECT_THAT(read(std::string("// \"\0\n/x/,y\n", 12)), ElementsAre(Fields{"/x/", "y"}));
}

TEST_F(CsvReaderTest, AQuotedFieldHoldsLinesThatLookLikeComments)
{
    format.comment = "#";

    EXPECT_THAT(read("x,y\n1,\"a\n# b\"\n"), ElementsAre(Fields{"x", "y"}, Fields{"1", "a\n# b"}));
}

TEST_F(CsvReaderTest, CommentsLongerThanABlockArePassedOver)
{
    format.comment = "#";
    const std::string longLine = "#" + std::string(600000, ',');

    EXPECT_THAT(read(longLine + "\nx;y\n" + longLine + "\n1;2\n" + longLine),
                ElementsAre(Fields{"x", "y"}, Fields{"1", "2"}));
    EXPECT_THAT(lines, ElementsAre(2u, 4u));
}

TEST_F(CsvReaderTest, CommentsAcrossBlockBordersAreTold)
{
    format.comment = "#!#";
    for (std::size_t length = 262140; length < 262148; ++length)
        EXPECT_THAT(read(std::string(length, 'a') + "\n#!#b\nc\n"),
                    ElementsAre(Fields{std::string(length, 'a')}, Fields{"c"}))
            << length;
}

TEST_F(CsvReaderTest, WithDecimalCommasAFirstLineOfNumbersTellsTheDelimiter)
{
    format.hasDecimalComma = true;

    EXPECT_THAT(read("1,5;2,5;3,5\n"), ElementsAre(Fields{"1,5", "2,5", "3,5"}));
    EXPECT_THAT(read("x,y\n\"1,5\",2\n"), ElementsAre(Fields{"x", "y"}, Fields{"1,5", "2"}));
}
