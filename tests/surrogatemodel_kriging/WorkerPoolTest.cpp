#include "surrogatemodel_kriging/WorkerPool.h"

#include <atomic>
#include <mutex>
#include <new>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AllocationWatch.h"
#include "tests/support/Meeting.h"

using fenn::test::AllocationWatch;
using fenn::test::Meeting;

TEST(WorkerPoolTest, RunsEveryPieceOnce)
{
    fenn::WorkerPool pool(3);
    std::vector<std::atomic<int>> numRuns(20);

    pool.run(20, [&](int piece) { ++numRuns[static_cast<std::size_t>(piece)]; });

    for (const std::atomic<int>& number : numRuns)
        EXPECT_EQ(number, 1);
}

TEST(WorkerPoolTest, PiecesRunAtTheSameTimeAndAwayFromTheCallingThread)
{
    fenn::WorkerPool pool(3);
    Meeting meeting(3);
    std::mutex mutex;
    std::set<std::thread::id> runners;

    pool.run(3,
             [&](int)
             {
                 meeting.attend();
                 const std::lock_guard<std::mutex> lock(mutex);
                 runners.insert(std::this_thread::get_id());
             });

    EXPECT_EQ(runners.size(), 3U);
}

TEST(WorkerPoolTest, NoPiecesAreDoneAtOnce)
{
    fenn::WorkerPool pool(2);

    pool.run(0, [](int) { ADD_FAILURE(); });
}

TEST(WorkerPoolTest, ASinglePieceBesideTheCallerIsTheCallers)
{
    fenn::WorkerPool pool(2);
    std::thread::id runner;

    pool.runBesideCaller(1, [&] { runner = std::this_thread::get_id(); });

    EXPECT_EQ(runner, std::this_thread::get_id());
}

TEST(WorkerPoolTest, TheCallingThreadTakesPartBesideThePool)
{
    fenn::WorkerPool pool(2);
    Meeting meeting(3);
    std::mutex mutex;
    std::set<std::thread::id> runners;

    pool.runBesideCaller(3,
                         [&]
                         {
                             meeting.attend();
                             const std::lock_guard<std::mutex> lock(mutex);
                             runners.insert(std::this_thread::get_id());
                         });

    EXPECT_EQ(runners.count(std::this_thread::get_id()), 1U);
    EXPECT_EQ(runners.size(), 3U);
}

TEST(WorkerPoolTest, MorePiecesThanThreadsAreAllRun)
{
    fenn::WorkerPool pool(1);
    std::atomic<int> numRuns{0};

    pool.runBesideCaller(5, [&] { ++numRuns; });

    EXPECT_EQ(numRuns, 5);
}

TEST(WorkerPoolTest, ABusyPoolDoesNotKeepAnotherCallerWaiting)
{
    fenn::WorkerPool pool(1);
    Meeting begun(2);
    Meeting mayEnd(2);
    std::thread other(
        [&]
        {
            pool.run(1,
                     [&](int)
                     {
                         begun.attend();
                         mayEnd.attend();
                     });
        });
    begun.attend(); // the pool's only thread is taken until this test lets it go
    std::thread::id runner;

    pool.run(1, [&](int) { runner = std::this_thread::get_id(); });
    mayEnd.attend();
    other.join();

    EXPECT_EQ(runner, std::this_thread::get_id());
}

TEST(WorkerPoolTest, JobsOfSeveralCallersAreKeptApart)
{
    fenn::WorkerPool pool(2);
    std::vector<std::atomic<int>> numRuns(4);
    std::vector<std::thread> callers;

    for (std::size_t c = 0; c < numRuns.size(); ++c)
    {
        callers.emplace_back(
            [&, c]
            {
                for (int round = 0; round < 50; ++round)
                    pool.run(3, [&](int) { ++numRuns[c]; });
            });
    }
    for (std::thread& caller : callers)
        caller.join();

    for (const std::atomic<int>& number : numRuns)
        EXPECT_EQ(number, 150);
}

TEST(WorkerPoolTest, PiecesWhoseTaskCannotBeStartedAreNotRun)
{
    fenn::WorkerPool pool(2);
    std::atomic<int> numRuns{0};
    const fenn::WorkerPool::Piece piece = [&](int)
    {
        ++numRuns;
    };
    {
        const AllocationWatch watch(1); // the first task; the job comes before it
        EXPECT_THROW(pool.run(3, piece), std::bad_alloc);
    }

    EXPECT_EQ(numRuns, 0);
}

TEST(WorkerPoolTest, MemoryForThePoolIsAskedForBeforeThePoolIsMade)
{
    // One by one: the ledger, the memory asked for, the pool itself.
    std::size_t numFailing = 0;
    for (bool hasFailed = true; hasFailed; ++numFailing)
    {
        const AllocationWatch watch(numFailing);
        try
        {
            const fenn::WorkerPool pool(1);
        }
        catch (const std::bad_alloc&)
        {
        }
        hasFailed = watch.hasFailed();
    }

    EXPECT_EQ(numFailing - 1, 3U);
}
