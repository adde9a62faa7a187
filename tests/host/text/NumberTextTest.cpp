#include "host/text/NumberText.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/BitComparison.h"
#include "tests/support/Samples.h"

using krige::NumberStatus;
using krige::parseNumber;

namespace
{

NumberStatus statusOf(const std::string& text)
{
    double value = 0.0;
    return parseNumber(text, value);
}

/// NaN, which no text gives, when the text is no number.
double valueOf(const std::string& text)
{
    double value = 0.0;
    if (parseNumber(text, value) != NumberStatus::Ok)
        return std::numeric_limits<double>::quiet_NaN();
    return value;
}

} // namespace

TEST(NumberTextTest, PlainDecimalsAreRead)
{
    EXPECT_EQ(valueOf("-12.5e-1"), -1.25);
    EXPECT_EQ(valueOf(".5"), 0.5);
    EXPECT_EQ(valueOf("5."), 5.0);
}

TEST(NumberTextTest, BlanksAroundANumberAreTrimmed)
{
    EXPECT_EQ(valueOf(" \t2.5\t "), 2.5);
}

TEST(NumberTextTest, BlanksWithinANumberAreMalformed)
{
    EXPECT_EQ(statusOf("1 000"), NumberStatus::Malformed);
}

TEST(NumberTextTest, OneLeadingPlusIsAllowed)
{
    EXPECT_EQ(valueOf("+3"), 3.0);
    EXPECT_EQ(valueOf(" +.5"), 0.5);
}

TEST(NumberTextTest, ASecondSignIsMalformed)
{
    EXPECT_EQ(statusOf("++3"), NumberStatus::Malformed);
    EXPECT_EQ(statusOf("+-3"), NumberStatus::Malformed);
    EXPECT_EQ(statusOf("-+3"), NumberStatus::Malformed);
    EXPECT_EQ(statusOf("--3"), NumberStatus::Malformed);
}

TEST(NumberTextTest, ALonePlusIsMalformed)
{
    EXPECT_EQ(statusOf("+"), NumberStatus::Malformed);
}

TEST(NumberTextTest, ABlankAfterThePlusIsMalformed)
{
    EXPECT_EQ(statusOf("+ 3"), NumberStatus::Malformed);
}

TEST(NumberTextTest, EmptyAndBlankTextsAreMissing)
{
    EXPECT_EQ(statusOf(""), NumberStatus::Missing);
    EXPECT_EQ(statusOf(" \t "), NumberStatus::Missing);
}

TEST(NumberTextTest, InfinitiesAndNaNsAreMissing)
{
    for (const char* text : {"inf", "-inf", "+Inf", "INFINITY", "nan", "-NaN", "nan(1)"})
        EXPECT_EQ(statusOf(text), NumberStatus::Missing) << text;
}

TEST(NumberTextTest, AnOverflowIsTooLarge)
{
    EXPECT_EQ(statusOf("1e999"), NumberStatus::TooLarge);
    EXPECT_EQ(statusOf("-1.8e308"), NumberStatus::TooLarge);
    EXPECT_EQ(statusOf("1e99999999999999999999"), NumberStatus::TooLarge);
    EXPECT_EQ(statusOf(std::string(400, '9')), NumberStatus::TooLarge);
    EXPECT_EQ(statusOf(std::string(400, '9') + "e-5"), NumberStatus::TooLarge);
}

TEST(NumberTextTest, AnUnderflowIsTooSmall)
{
    EXPECT_EQ(statusOf("1e-400"), NumberStatus::TooSmall);
    EXPECT_EQ(statusOf("-2e-324"), NumberStatus::TooSmall);
    EXPECT_EQ(statusOf("1e-99999999999999999999"), NumberStatus::TooSmall);
    EXPECT_EQ(statusOf("0." + std::string(400, '0') + "1"), NumberStatus::TooSmall);
    EXPECT_EQ(statusOf("0." + std::string(400, '0') + "1e+5"), NumberStatus::TooSmall);
}

TEST(NumberTextTest, DenormalsAreNumbers)
{
    EXPECT_EQ(valueOf("5e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(valueOf("2.2250738585072011e-308"), 0x0.fffffffffffffp-1022);
}

TEST(NumberTextTest, TheLargestDoubleIsANumber)
{
    EXPECT_EQ(valueOf("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(NumberTextTest, AZeroIsAZeroWhateverItsExponent)
{
    EXPECT_EQ(valueOf("0e-999"), 0.0);
    EXPECT_EQ(valueOf("0.000e999"), 0.0);
}

TEST(NumberTextTest, TheSignOfAZeroIsKept)
{
    EXPECT_TRUE(fenn::test::sameBits(valueOf("-0"), -0.0));
}

TEST(NumberTextTest, TextAfterANumberIsMalformed)
{
    for (const char* text : {"1,5", "0x10", "1e", "12 m", "1.2.3", "NA", "-"})
        EXPECT_EQ(statusOf(text), NumberStatus::Malformed) << text;
}

TEST(NumberTextTest, AFaultLeavesTheValueAlone)
{
    double value = 7.0;
    parseNumber("1e999", value);

    EXPECT_EQ(value, 7.0);
}

TEST(NumberTextTest, WrittenDigitsReadBackToTheSameBits)
{
    fenn::test::RandomNumbers numbers(20);
    for (int i = 0; i < 1000; ++i)
    {
        const double value = numbers.next(-1.0, 1.0) * 1e17;
        ASSERT_TRUE(fenn::test::sameBits(valueOf(krige::formatNumber(value)), value)) << krige::formatNumber(value);
    }
    for (const double value : {-0.0, 0.1, 1e300, 5e-324, 0x1.fffffffffffffp+1023, -1.0 / 3.0})
        EXPECT_TRUE(fenn::test::sameBits(valueOf(krige::formatNumber(value)), value)) << krige::formatNumber(value);
}

TEST(NumberTextTest, TheShortestDigitsAreWritten)
{
    EXPECT_EQ(krige::formatNumber(0.1), "0.1");
    EXPECT_EQ(krige::formatNumber(100.0), "100");
}

TEST(NumberTextTest, EveryNaNIsWrittenWithoutASign)
{
    EXPECT_EQ(krige::formatNumber(-std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(NumberTextTest, ControlCharactersDoNotReachAMessage)
{
    EXPECT_EQ(krige::quoteForMessage("a\x1b[2Jb\n"), "'a?[2Jb?'");
}

TEST(NumberTextTest, ALongTextIsShortenedInAMessage)
{
    EXPECT_EQ(krige::quoteForMessage(std::string(100, 'a')), "'" + std::string(57, 'a') + "...'");
}

TEST(NumberTextTest, DecimalsMayFollowAComma)
{
    double value = 0.0;

    EXPECT_EQ(krige::parseNumber(" -1,25e2 ", value, true), NumberStatus::Ok);
    EXPECT_EQ(value, -125.0);
    EXPECT_EQ(krige::parseNumber("7", value, true), NumberStatus::Ok);
    EXPECT_EQ(value, 7.0);
    for (const char* const text : {"1.5", "1.234,5", "1,2,3", ",", "1,5m"})
        EXPECT_EQ(krige::parseNumber(text, value, true), NumberStatus::Malformed) << text;
    EXPECT_EQ(krige::parseNumber("", value, true), NumberStatus::Missing);
    EXPECT_EQ(krige::parseNumber("1,5", value, false), NumberStatus::Malformed);
    EXPECT_EQ(krige::parseNumber("1.5", value, false), NumberStatus::Ok);
}

TEST(NumberTextTest, TextOfAnyEncodingIsShownInUtf8)
{
    EXPECT_EQ(krige::quoteForMessage("H\xf6he"), "'H\xc3\xb6he'");
    EXPECT_EQ(krige::quoteForMessage("H\xc3\xb6he"), "'H\xc3\xb6he'");
    EXPECT_EQ(krige::quoteForMessage("a\xc2\x9b"
                                     "2J"),
              "'a?2J'"); // a control character of 8-bit terminals
}

TEST(NumberTextTest, ALongTextIsNotCutWithinACharacter)
{
    std::string text(56, 'a');
    for (int i = 0; i < 10; ++i)
        text += "\xe2\x82\xac";

    EXPECT_EQ(krige::quoteForMessage(text), "'" + std::string(56, 'a') + "...'");
}
