#include "host/text/ShellWord.h"

#include <gtest/gtest.h>

using krige::quoteForShell;

TEST(ShellWordTest, PlainWordsStayAsTheyAre)
{
    EXPECT_EQ(quoteForShell("data/samples-1.csv"), "data/samples-1.csv");
}

TEST(ShellWordTest, OthersStandInQuotes)
{
    EXPECT_EQ(quoteForShell("my samples"), "'my samples'");
    EXPECT_EQ(quoteForShell("a'b"), "'a'\\''b'");
    EXPECT_EQ(quoteForShell("-x"), "'-x'");
    EXPECT_EQ(quoteForShell("#"), "'#'");
    EXPECT_EQ(quoteForShell(""), "''");
}

TEST(ShellWordTest, ControlCharactersDoNotReachTheTerminal)
{
    EXPECT_EQ(quoteForShell("a\x1b[2J"), "'a?[2J'");
    EXPECT_EQ(krige::withoutControls("a\nb\x7f"), "a?b?");
}
