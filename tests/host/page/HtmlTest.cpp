#include "host/page/Html.h"

#include <gmock/gmock.h>

using krige::escapeHtml;
using krige::shortenText;
using testing::HasSubstr;

TEST(HtmlTest, MarkupIsEscapedInContentAndAttributes)
{
    EXPECT_EQ(escapeHtml("<a href=\"x\">&'</a>"), "&lt;a href=&quot;x&quot;&gt;&amp;&#39;&lt;/a&gt;");
    EXPECT_EQ(escapeHtml("</script>"), "&lt;/script&gt;");
}

TEST(HtmlTest, WhatIsNoTextBecomesTheReplacementCharacter)
{
    const std::string mark = "\xef\xbf\xbd";
    EXPECT_EQ(escapeHtml(std::string("a\0b\a\x7f", 5)), "a" + mark + "b" + mark + mark);
    EXPECT_EQ(escapeHtml("\xff\xc3"), mark + mark);            // no UTF-8, and a character that is cut off
    EXPECT_EQ(escapeHtml("\xc0\xbc"), mark + mark);            // '<', overlong
    EXPECT_EQ(escapeHtml("\xed\xa0\x80"), mark + mark + mark); // a surrogate
    EXPECT_EQ(escapeHtml("\xc2\x85"), mark);                   // a control of two bytes
}

TEST(HtmlTest, OtherScriptsStay)
{
    EXPECT_EQ(escapeHtml("\xc3\xa9\xe2\x82\xac\xf0\x9f\x8c\x8b\n\t"), "\xc3\xa9\xe2\x82\xac\xf0\x9f\x8c\x8b\n\t");
}

TEST(HtmlTest, LongTextsAreCutBetweenCharacters)
{
    EXPECT_EQ(shortenText("abc", 3), "abc");
    EXPECT_EQ(shortenText("abcd", 3), "abc...");
    EXPECT_EQ(shortenText("\xc3\xa9\xc3\xa9\xc3\xa9", 2), "\xc3\xa9\xc3\xa9...");
}

TEST(HtmlTest, ATableHasHeadsInItsFirstRowAndColumn)
{
    const std::string html = krige::tableOf({{"name", "size"}, {"<x>", "1"}}, "plain");

    EXPECT_THAT(html, HasSubstr("<table class=\"plain\">"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">size</th>"));
    EXPECT_THAT(html, HasSubstr("<tr><th scope=\"row\">&lt;x&gt;</th><td>1</td></tr>"));
}

TEST(HtmlTest, ListsFiguresAndParagraphsHoldTexts)
{
    EXPECT_EQ(krige::listOf({}), "");
    EXPECT_EQ(krige::listOf({"a&b"}), "<ul>\n<li>a&amp;b</li>\n</ul>\n");
    EXPECT_EQ(krige::paragraphOf("a<b", "c"), "<p class=\"c\">a&lt;b</p>\n");
    EXPECT_THAT(krige::figureOf("<x>", "<svg></svg>"), HasSubstr("<figcaption>&lt;x&gt;</figcaption>\n<svg></svg>"));
    EXPECT_EQ(krige::preformatted("a > b"), "<pre>a &gt; b</pre>\n");
}
