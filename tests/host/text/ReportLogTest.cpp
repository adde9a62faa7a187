#include "host/text/ReportLog.h"

#include <sstream>

#include <gmock/gmock.h>

using krige::ReportLog;
using testing::ElementsAre;

TEST(ReportLogTest, WhatIsWrittenIsPassedOn)
{
    std::ostringstream shown;
    ReportLog log(shown);
    log.getStream() << "samples: " << 3 << '\n' << std::flush;

    EXPECT_EQ(shown.str(), "samples: 3\n");
}

TEST(ReportLogTest, LinesAreFoundByTheirWordEachOnce)
{
    std::ostringstream shown;
    ReportLog log(shown);
    log.getStream() << "warning: a: b\nsill: 3\nhint: c\nwarning: a: b\nno colon\n";

    EXPECT_THAT(log.linesOf({"warning", "hint"}), ElementsAre("a: b", "c"));
    EXPECT_THAT(log.linesOf({"note"}), ElementsAre());
}
