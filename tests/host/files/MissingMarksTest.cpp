#include "host/files/MissingMarks.h"

#include <gtest/gtest.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::MissingMarks;
using krige::UsageError;

namespace
{

bool isMarked(const MissingMarks& marks, const std::string& cell)
{
    double value = 0.0;
    const krige::NumberStatus status = krige::parseNumber(cell, value);
    return marks.contains(cell, status, value);
}

} // namespace

TEST(MissingMarksTest, ANumberIsMeantHoweverItIsWritten)
{
    const MissingMarks marks("--missing", "-9999,1e20");

    for (const char* const cell : {"-9999", " -9999.0 ", "-9.999e3", "100000000000000000000"})
        EXPECT_TRUE(isMarked(marks, cell)) << cell;
    for (const char* const cell : {"9999", "-9999.1", "", "NA"})
        EXPECT_FALSE(isMarked(marks, cell)) << cell;
}

TEST(MissingMarksTest, TextsCountAsTheyAreWithoutBlanksAround)
{
    const MissingMarks marks("--missing", "NA, n/a,\"a,b\"");

    for (const char* const cell : {"NA", "  NA", "n/a", "a,b"})
        EXPECT_TRUE(isMarked(marks, cell)) << cell;
    for (const char* const cell : {"na", "N A", "", "0"})
        EXPECT_FALSE(isMarked(marks, cell)) << cell;
}

TEST(MissingMarksTest, AnEmptyWordStandsForEmptyCells)
{
    EXPECT_TRUE(isMarked(MissingMarks("--missing", ",NA"), "  "));
    EXPECT_FALSE(isMarked(MissingMarks("--missing", ",NA"), "nan"));
}

TEST(MissingMarksTest, NothingIsMarkedByDefaultAndNoMarksAreRefused)
{
    EXPECT_FALSE(isMarked(MissingMarks(), ""));
    EXPECT_TRUE(MissingMarks().isEmpty());
    EXPECT_EQ(krige::test::messageOf<UsageError>([] { MissingMarks("--missing", ""); }),
              "--missing: needs at least one text or number");
}
