#include "host/text/Spelling.h"

#include <gtest/gtest.h>

using krige::findMeant;
using krige::suggestMeant;

TEST(SpellingTest, SlipsOfTheFingersAreMeant)
{
    EXPECT_EQ(findMeant("nuget", {"nearest", "nugget"}), "nugget");    // left out
    EXPECT_EQ(findMeant("nugggget", {"nearest", "nugget"}), "nugget"); // added
    EXPECT_EQ(findMeant("nuhget", {"nearest", "nugget"}), "nugget");   // replaced
    EXPECT_EQ(findMeant("pridect", {"predict"}), "predict");
    EXPECT_EQ(findMeant("tnue", {"tune"}), "tune"); // swapped: one slip, which four letters allow
}

TEST(SpellingTest, OneSlipForEveryThreeLettersIsAllowed)
{
    EXPECT_EQ(findMeant("abcxyf", {"abcdef"}), "abcdef");
    EXPECT_EQ(findMeant("abwxyf", {"abcdef"}), "");
    EXPECT_EQ(findMeant("xy", {"x"}), "");
}

TEST(SpellingTest, TheBeginningOfAWordIsMeant)
{
    EXPECT_EQ(findMeant("dup", {"delimiter", "duplicates"}), "duplicates");
    EXPECT_EQ(findMeant("du", {"duplicates"}), "");
}

TEST(SpellingTest, CaseIsNoSlip)
{
    EXPECT_EQ(findMeant("X", {"y", "x"}), "x");
    EXPECT_EQ(findMeant("zinc", {"Zink", "ZINC"}), "ZINC");
}

TEST(SpellingTest, OfEquallyNearWordsTheFirstIsMeant)
{
    EXPECT_EQ(findMeant("bat", {"cat", "hat"}), "cat");
}

TEST(SpellingTest, NothingIsMeantByAWordFarFromAll)
{
    EXPECT_EQ(findMeant("colour", {"nugget", "range"}), "");
    EXPECT_EQ(findMeant("", {"nugget", ""}), "");
    EXPECT_EQ(suggestMeant("colour", {"nugget"}), "");
}

TEST(SpellingTest, ASuggestionEndsAMessage)
{
    EXPECT_EQ(suggestMeant("nuget", {"nugget"}), "; did you mean 'nugget'?");
}
