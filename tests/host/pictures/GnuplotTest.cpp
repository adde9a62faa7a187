#include "host/pictures/Gnuplot.h"

#include <string>

#include <gtest/gtest.h>

#include "host/text/HostErrors.h"

namespace
{

using krige::quoteForGnuplot;

TEST(QuoteForGnuplotTest, AQuoteIsDoubledAndNothingElseIsSpecial)
{
    EXPECT_EQ(quoteForGnuplot("it's `x` @y \\n \"z\""), "'it''s `x` @y \\n \"z\"'");
}

TEST(QuoteForGnuplotTest, LineEndsAndOtherControlCharactersAreReplaced)
{
    // Apart: two question marks and a quote are a trigraph.
    EXPECT_EQ(quoteForGnuplot(std::string("a\nb\rc\0d\x7f\x1b", 9)), "'a?b?c?d?"
                                                                     "?'");
    EXPECT_EQ(quoteForGnuplot("\xc2\x9b"), "'?"
                                           "?'"); // a control character beyond ASCII
}

TEST(QuoteForGnuplotTest, Utf8StaysAndOtherBytesAreReplaced)
{
    EXPECT_EQ(quoteForGnuplot("\xc2\xb5m \xe2\x82\xac \xf0\x9f\x8c\x8b"), "'\xc2\xb5m \xe2\x82\xac \xf0\x9f\x8c\x8b'");
    EXPECT_EQ(quoteForGnuplot("\xb5m \xe2\x82"), "'?m ?"
                                                 "?'");
    EXPECT_EQ(quoteForGnuplot("\xc0\xaf\xed\xa0\x80"), "'?"
                                                       "?"
                                                       "?"
                                                       "?"
                                                       "?'"); // overlong, surrogate
}

TEST(QuoteForGnuplotTest, ALongTextIsShortenedBetweenCharacters)
{
    std::string text;
    for (int i = 0; i < 101; ++i)
        text += "\xc2\xb5";

    EXPECT_EQ(quoteForGnuplot(text), "'" + text.substr(0, 200) + "...'");
}

TEST(QuoteForGnuplotTest, HowLongATextMayBeIsChosen)
{
    EXPECT_EQ(quoteForGnuplot("abcd", 4), "'abcd'");
    EXPECT_EQ(quoteForGnuplot("abcde", 4), "'abcd...'");
}

TEST(CheckPicturePathTest, OnlyPicturesAndScriptsAreTaken)
{
    EXPECT_NO_THROW(krige::checkPicturePath("a.gp"));
    EXPECT_THROW(krige::checkPicturePath("a.jpg"), krige::UsageError);
    EXPECT_THROW(krige::checkPicturePath(".gp"), krige::UsageError);
    EXPECT_THROW(krige::checkPicturePath("agp"), krige::UsageError);
}

} // namespace
