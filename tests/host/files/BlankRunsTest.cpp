#include "host/files/BlankRuns.h"

#include <string>

#include <gtest/gtest.h>

namespace
{

/// Rewritten in pieces of this size.
std::string rewritten(const std::string& text, std::size_t size)
{
    krige::BlankRuns blankRuns;
    std::string out;
    for (std::size_t begin = 0; begin < text.size(); begin += size)
        blankRuns.append(out, std::string_view(text).substr(begin, size));
    return out;
}

/// The same for pieces of every size.
std::string rewritten(const std::string& text)
{
    const std::string whole = rewritten(text, text.size());
    for (std::size_t size = 1; size < text.size(); ++size)
        EXPECT_EQ(rewritten(text, size), whole) << "pieces of " << size;
    return whole;
}

} // namespace

TEST(BlankRunsTest, ARunBecomesOneSpace)
{
    EXPECT_EQ(rewritten("a  b\t \tc"), "a b c");
}

TEST(BlankRunsTest, BlanksAtTheEndsOfALineGo)
{
    EXPECT_EQ(rewritten("  a b  \r\n\tc \n"), "a b\r\nc\n");
}

TEST(BlankRunsTest, BlanksInQuotesStay)
{
    EXPECT_EQ(rewritten(" \"a  b\"  \"say \"\" c  \" d "), "\"a  b\" \"say \"\" c  \" d");
}

TEST(BlankRunsTest, LineEndsInQuotesEndNoLine)
{
    EXPECT_EQ(rewritten("\"a  \n  b\"  c\n"), "\"a  \n  b\" c\n");
}

TEST(BlankRunsTest, ALineOfBlanksIsEmpty)
{
    EXPECT_EQ(rewritten(" \t \n\na"), "\n\na");
}
