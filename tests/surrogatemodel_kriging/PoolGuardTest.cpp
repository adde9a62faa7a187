#include "surrogatemodel_kriging/PoolGuard.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <new>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AllocationWatch.h"
#include "tests/support/GuardedPool.h"
#include "tests/support/Meeting.h"

using fenn::test::AllocationWatch;
using fenn::test::GuardedPool;
using fenn::test::Meeting;

namespace
{

/// Three times as long as a caller waits before it looks whether its tasks were lost.
constexpr std::chrono::milliseconds longerThanPatience{300};

} // namespace

TEST(PoolGuardTest, RunsEveryPieceOnce)
{
    GuardedPool pool(3);
    std::vector<std::atomic<int>> numRuns(20);

    pool.run(20, [&](int piece) { ++numRuns[static_cast<std::size_t>(piece)]; });

    for (const std::atomic<int>& number : numRuns)
        EXPECT_EQ(number, 1);
}

TEST(PoolGuardTest, PiecesRunAtTheSameTimeAndAwayFromTheCallingThread)
{
    GuardedPool pool(3);
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

TEST(PoolGuardTest, NoPiecesAreDoneAtOnce)
{
    GuardedPool pool(2);

    pool.run(0, [](int) { ADD_FAILURE(); });
}

TEST(PoolGuardTest, ASinglePieceBesideTheCallerIsTheCallers)
{
    GuardedPool pool(2);
    std::thread::id runner;

    pool.guard.runBesideCaller(0, [&] { runner = std::this_thread::get_id(); });

    EXPECT_EQ(runner, std::this_thread::get_id());
}

TEST(PoolGuardTest, TheCallingThreadTakesPartBesideThePool)
{
    GuardedPool pool(2);
    Meeting meeting(3);
    std::mutex mutex;
    std::set<std::thread::id> runners;

    pool.guard.runBesideCaller(2,
                               [&]
                               {
                                   meeting.attend();
                                   const std::lock_guard<std::mutex> lock(mutex);
                                   runners.insert(std::this_thread::get_id());
                               });

    EXPECT_EQ(runners.count(std::this_thread::get_id()), 1U);
    EXPECT_EQ(runners.size(), 3U);
}

TEST(PoolGuardTest, MorePiecesThanThreadsAreAllRun)
{
    GuardedPool pool(1);
    std::atomic<int> numRuns{0};

    pool.run(5, [&](int) { ++numRuns; });

    EXPECT_EQ(numRuns, 5);
}

TEST(PoolGuardTest, NoRunBesideTheCallerBeginsAfterTheCallers)
{
    GuardedPool pool(1);
    for (int round = 0; round < 50; ++round)
    {
        std::atomic<int> numBegun{0};
        int numBegunAtReturn = 0;

        pool.guard.runBesideCaller(5, [&] { ++numBegun; });
        numBegunAtReturn = numBegun;
        pool.pool->waitForDone();

        EXPECT_GE(numBegunAtReturn, 1);
        EXPECT_EQ(numBegun, numBegunAtReturn);
    }
}

TEST(PoolGuardTest, ACallerWaitsForAThreadOfAPoolThatIsMerelyBusy)
{
    GuardedPool pool(1);
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
    std::set<std::thread::id> runners;
    std::thread caller([&] { pool.run(3, [&](int) { runners.insert(std::this_thread::get_id()); }); });
    const std::thread::id callersId = caller.get_id();

    std::this_thread::sleep_for(longerThanPatience);
    mayEnd.attend();
    other.join();
    caller.join();

    EXPECT_EQ(runners.size(), 1U); // one thread, so that no lock is needed
    EXPECT_EQ(runners.count(callersId), 0U);
}

TEST(PoolGuardTest, ABusyPoolHandsItsThreadFromOneWaitingCallerToTheNext)
{
    GuardedPool pool(2);
    std::atomic<int> numOnCallers{0};
    std::vector<std::thread> callers;
    for (int c = 0; c < 4; ++c)
    {
        callers.emplace_back(
            [&]
            {
                const std::thread::id callersId = std::this_thread::get_id();
                pool.run(2,
                         [&](int)
                         {
                             std::this_thread::sleep_for(longerThanPatience / 2);
                             numOnCallers += std::this_thread::get_id() == callersId ? 1 : 0;
                         });
            });
    }
    for (std::thread& caller : callers)
        caller.join();

    EXPECT_EQ(numOnCallers, 0);
}

TEST(PoolGuardTest, JobsOfSeveralCallersAreKeptApart)
{
    GuardedPool pool(2);
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

TEST(PoolGuardTest, PiecesWhoseTaskCannotBeStartedAreNotRun)
{
    GuardedPool pool(2);
    std::atomic<int> numRuns{0};
    const GuardedPool::Piece piece = [&](int)
    {
        ++numRuns;
    };
    {
        const AllocationWatch watch(2); // the first task; the job and its list come before it
        EXPECT_THROW(pool.run(3, piece), std::bad_alloc);
    }

    EXPECT_EQ(numRuns, 0);
}

TEST(PoolGuardTest, MemoryForThePoolIsAskedForBeforeThePoolIsMade)
{
    // One by one: the memory asked for, the pool itself, the ledger.
    std::size_t numFailing = 0;
    for (bool hasFailed = true; hasFailed; ++numFailing)
    {
        const AllocationWatch watch(numFailing);
        try
        {
            const GuardedPool pool(1);
        }
        catch (const std::bad_alloc&)
        {
        }
        hasFailed = watch.hasFailed();
    }

    EXPECT_EQ(numFailing - 1, 3U);
}
