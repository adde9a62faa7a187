#include "host/page/Page.h"

#include <gmock/gmock.h>

using krige::Page;
using testing::HasSubstr;
using testing::Not;

TEST(PageTest, SectionsAreLinkedAndTextsEscaped)
{
    Page page("a <b>", "c & d", {"'e'"});
    page.addSection("one", "First <i>", "<p>content</p>\n");
    const std::string html = page.toHtml();

    EXPECT_THAT(html, HasSubstr("<title>a &lt;b&gt;</title>"));
    EXPECT_THAT(html, HasSubstr("c &amp; d"));
    EXPECT_THAT(html, HasSubstr("<li>&#39;e&#39;</li>"));
    EXPECT_THAT(html, HasSubstr("<a href=\"#one\">First &lt;i&gt;</a>"));
    EXPECT_THAT(html, HasSubstr("<section id=\"one\">\n<h2>First &lt;i&gt;</h2>\n<p>content</p>"));
}

TEST(PageTest, StyleAndScriptEndWhereTheyShould)
{
    EXPECT_THAT(std::string(krige::pageStyle), HasSubstr("@media print"));
    EXPECT_THAT(std::string(krige::pageScript), HasSubstr("DecompressionStream"));
    EXPECT_THAT(std::string(krige::pageStyle), Not(HasSubstr("</")));
    EXPECT_THAT(std::string(krige::pageScript), Not(HasSubstr("</")));
}
