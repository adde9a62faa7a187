#include "surrogatemodel_kriging/SideBySideRun.h"

#include <atomic>
#include <mutex>
#include <set>
#include <thread>

#include <QThreadPool>
#include <gtest/gtest.h>

TEST(SideBySideRunTest, RunsThePieceOncePerPieceAsked)
{
    QThreadPool pool;
    std::atomic<int> numRuns{0};

    fenn::runSideBySide(pool, 4, [&] { ++numRuns; });

    EXPECT_EQ(numRuns, 4);
}

TEST(SideBySideRunTest, ASinglePieceRunsOnTheCallingThread)
{
    QThreadPool pool;
    std::thread::id runner;

    fenn::runSideBySide(pool, 1, [&] { runner = std::this_thread::get_id(); });

    EXPECT_EQ(runner, std::this_thread::get_id());
}

TEST(SideBySideRunTest, TheCallingThreadTakesPartBesideThePool)
{
    QThreadPool pool;
    std::mutex mutex;
    std::set<std::thread::id> runners;

    fenn::runSideBySide(pool, 3,
                        [&]
                        {
                            const std::lock_guard<std::mutex> lock(mutex);
                            runners.insert(std::this_thread::get_id());
                        });

    EXPECT_EQ(runners.count(std::this_thread::get_id()), 1U);
    EXPECT_GT(runners.size(), 1U);
}

TEST(SideBySideRunTest, SharedWorkIsDoneAlthoughThePoolIsBusyUntilLater)
{
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    std::atomic<int> numLeft{100};

    fenn::runSideBySide(pool, 3,
                        [&]
                        {
                            while (numLeft.fetch_sub(1) > 0)
                            {
                            }
                        });

    EXPECT_LE(numLeft, 0);
}
