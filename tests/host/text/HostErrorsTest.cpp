#include "host/text/HostErrors.h"

#include <cerrno>

#include <gtest/gtest.h>

using krige::InputError;

TEST(HostErrorsTest, ALineIsNamedAfterTheFile)
{
    EXPECT_STREQ(InputError::atLine("s.csv", 4, "no number").what(), "s.csv, line 4: no number");
}

TEST(HostErrorsTest, AColumnIsNamedInQuotes)
{
    EXPECT_STREQ(InputError::atColumn("s.csv", 4, "a b", "no number").what(), "s.csv, line 4, column 'a b': no number");
}

TEST(HostErrorsTest, AColumnsNameCannotDriveTheTerminal)
{
    EXPECT_STREQ(InputError::atColumn("s.csv", 1, "x\033[2J", "twice").what(), "s.csv, line 1, column 'x?[2J': twice");
}

TEST(HostErrorsTest, ASystemErrorIsSpelledOut)
{
    EXPECT_STREQ(InputError::fromSystem("s.csv", ENOENT).what(), "s.csv: No such file or directory");
}
