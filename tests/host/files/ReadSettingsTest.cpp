#include "host/files/ReadSettings.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/Words.h"

using krige::ReadSettings;
using krige::UsageError;
using krige::test::messageOf;

namespace
{

ReadSettings parsed(std::vector<std::string> words)
{
    const auto app = krige::test::makeApp();
    ReadSettings reading;
    krige::addReadOptions(*app, reading);
    krige::test::parse(*app, std::move(words));
    return reading;
}

} // namespace

TEST(ReadSettingsTest, WithoutOptionsTheHeaderRowDecidesAndNothingIsSkipped)
{
    const ReadSettings reading = parsed({});

    EXPECT_EQ(reading.delimiter, '\0');
    EXPECT_FALSE(reading.skipMissing);
}

TEST(ReadSettingsTest, DelimitersHaveNames)
{
    EXPECT_EQ(parsed({"--delimiter", "comma"}).delimiter, ',');
    EXPECT_EQ(parsed({"--delimiter", "semicolon"}).delimiter, ';');
    EXPECT_EQ(parsed({"--delimiter", "tab"}).delimiter, '\t');
    EXPECT_EQ(parsed({"--delimiter", "\\t"}).delimiter, '\t');
    EXPECT_EQ(parsed({"--delimiter", "space"}).delimiter, krige::CsvFormat::blankRuns);
    EXPECT_EQ(parsed({"--delimiter", " "}).delimiter, krige::CsvFormat::blankRuns);
}

TEST(ReadSettingsTest, AnyCharacterThatNoNumberHoldsIsADelimiter)
{
    EXPECT_EQ(parsed({"--delimiter", "|"}).delimiter, '|');
    EXPECT_EQ(parsed({"--delimiter", "_"}).delimiter, '_');
}

TEST(ReadSettingsTest, CharactersOfNumbersAndQuotesAreRefused)
{
    for (const char* const text : {"1", "e", ".", "+", "\"", "\n", ",,", "\xc2\xb5"})
        EXPECT_THROW(parsed({std::string("--delimiter=") + text}), UsageError) << text;
    EXPECT_EQ(messageOf<UsageError>([] { parsed({"--delimiter=x"}); }),
              "--delimiter: must be one character that no number holds, or comma, semicolon, tab or space, not 'x'");
    EXPECT_THAT(messageOf<UsageError>([] { parsed({"--delimiter=spaces"}); }),
                testing::HasSubstr("not 'spaces'; did you mean 'space'?"));
}

TEST(ReadSettingsTest, MissingValuesAreSkippedOnRequest)
{
    EXPECT_TRUE(parsed({"--skip-missing"}).skipMissing);
}

TEST(ReadSettingsTest, DecimalsFollowACommaOrAPoint)
{
    EXPECT_FALSE(parsed({}).hasDecimalComma);
    EXPECT_TRUE(parsed({"--decimal", ","}).hasDecimalComma);
    EXPECT_TRUE(parsed({"--decimal", "comma"}).hasDecimalComma);
    EXPECT_FALSE(parsed({"--decimal", "."}).hasDecimalComma);
    EXPECT_FALSE(parsed({"--decimal", "point"}).hasDecimalComma);
    EXPECT_EQ(messageOf<UsageError>([] { parsed({"--decimal=;"}); }), "--decimal: must be a comma or a point, not ';'");
}

TEST(ReadSettingsTest, ACommentIsATextThatBeginsNoField)
{
    EXPECT_EQ(parsed({}).comment, "");
    EXPECT_EQ(parsed({"--comment", "//"}).comment, "//");
    for (const char* const text : {"1", "-", "+", ".", " #", "\"", "#\n", "\t"})
        EXPECT_THROW(parsed({std::string("--comment=") + text}), UsageError) << text;
}

TEST(ReadSettingsTest, ACommentDoesNotBeginWithTheDelimiter)
{
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--comment=|", "--delimiter=|"},
                                                  std::vector<std::string>{"--delimiter=|", "--comment=||"}})
        EXPECT_THAT(messageOf<UsageError>([&] { parsed(words); }), testing::HasSubstr("begins with the delimiter"));
}

TEST(ReadSettingsTest, TheHeaderRowIsThereUnlessSaidOtherwise)
{
    EXPECT_TRUE(parsed({}).hasHeader);
    EXPECT_FALSE(parsed({"--no-header"}).hasHeader);
}

TEST(ReadSettingsTest, SettingsAreWrittenAsTheOptionsThatMakeThem)
{
    EXPECT_EQ(krige::formatOptionsText(parsed({})), "");
    EXPECT_EQ(krige::formatOptionsText(parsed({"--delimiter", "space", "--decimal", ",", "--comment", "#",
                                               "--no-header", "--missing", "-9999,NA"})),
              " --delimiter space --decimal , --comment '#' --no-header --missing '-9999,NA'");
    EXPECT_EQ(krige::formatOptionsText(parsed({"--delimiter", "tab"})), " --delimiter tab");
    EXPECT_EQ(krige::formatOptionsText(parsed({"--delimiter", "|"})), " --delimiter '|'");
}
