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
}

TEST(ReadSettingsTest, AnyCharacterThatNoNumberHoldsIsADelimiter)
{
    EXPECT_EQ(parsed({"--delimiter", "|"}).delimiter, '|');
    EXPECT_EQ(parsed({"--delimiter", "_"}).delimiter, '_');
}

TEST(ReadSettingsTest, CharactersOfNumbersAndQuotesAreRefused)
{
    for (const char* const text : {"1", "e", ".", "+", "\"", " ", "\n", ",,", "\xc2\xb5"})
        EXPECT_THROW(parsed({std::string("--delimiter=") + text}), UsageError) << text;
    EXPECT_EQ(messageOf<UsageError>([] { parsed({"--delimiter=x"}); }),
              "--delimiter: must be one character that no number holds, or comma, semicolon or tab, not 'x'");
}

TEST(ReadSettingsTest, MissingValuesAreSkippedOnRequest)
{
    EXPECT_TRUE(parsed({"--skip-missing"}).skipMissing);
}
