#include "host/text/Console.h"

#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using krige::ProgressLine;

void waitUntilShown()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(550));
}

TEST(ProgressLineTest, ShortWorkShowsNothing)
{
    std::ostringstream screen;
    {
        ProgressLine line(&screen, "targets", true);
        line.update(1, 2);
        line.update(2, 2);
    }

    EXPECT_EQ(screen.str(), "");
}

TEST(ProgressLineTest, ATerminalsLineIsDrawnOverAndWiped)
{
    std::ostringstream screen;
    {
        ProgressLine line(&screen, "targets", true);
        waitUntilShown();
        line.update(25, 100);
        line.update(26, 100); // too soon to be read
    }

    EXPECT_THAT(screen.str(), testing::MatchesRegex("\r25 of 100 targets \\(25 %\\), [0-9.]+/s, 2 s left\033\\[K"
                                                    "\r\033\\[K"));
}

TEST(ProgressLineTest, AnUnknownTotalShowsCountAndRate)
{
    std::ostringstream log;
    ProgressLine line(&log, "targets", false);
    waitUntilShown();
    line.update(300, 0);

    EXPECT_THAT(log.str(), testing::MatchesRegex("progress: 300 targets, [0-9]+/s\n"));
}

TEST(ProgressLineTest, WithoutAStreamNothingHappens)
{
    ProgressLine line(nullptr, "targets", true);
    line.update(1, 2);

    EXPECT_FALSE(line.isShown());
}

TEST(ChunkSizeTest, QuickChunksGrowToTheLargest)
{
    krige::ChunkSize size(4, 20);

    EXPECT_EQ(size.next(), 4U);
    EXPECT_EQ(size.next(), 8U);
    EXPECT_EQ(size.next(), 16U);
    EXPECT_EQ(size.next(), 20U);
}

TEST(ChunkSizeTest, SlowChunksShrink)
{
    krige::ChunkSize size(4, 20);
    size.next();
    std::this_thread::sleep_for(std::chrono::milliseconds(1050));

    EXPECT_EQ(size.next(), 2U);
}

TEST(ConsoleTest, QuietSwallowsTheReport)
{
    std::ostringstream err;
    krige::ConsoleOptions options;
    options.isQuiet = true;
    krige::Console console(err, options);
    console.getReport() << "done";

    EXPECT_EQ(err.str(), "");
    EXPECT_FALSE(console.showsProgress());
}

} // namespace
