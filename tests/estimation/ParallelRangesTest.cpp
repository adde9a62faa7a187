#include "estimation/ParallelRanges.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/ThreadCount.h"
#include "tests/support/Meeting.h"
#include "tests/support/ThreadCount.h"

using namespace fenn::estimation;

namespace
{

using Range = std::pair<std::size_t, std::size_t>;

/// The ranges that were done, sorted.
std::vector<Range> rangesOf(ParallelRanges& ranges, std::size_t count, std::size_t rangeSize)
{
    std::mutex mutex;
    std::vector<Range> done;
    ranges.run(count, rangeSize,
               [&](std::size_t, std::size_t first, std::size_t end)
               {
                   const std::lock_guard<std::mutex> lock(mutex);
                   done.emplace_back(first, end);
               });
    std::sort(done.begin(), done.end());
    return done;
}

std::string messageOf(ParallelRanges& ranges, std::size_t count, const ParallelRanges::Work& work)
{
    try
    {
        ranges.run(count, 1, work);
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
    return "";
}

} // namespace

TEST(ParallelRangesTest, EveryIndexIsInOneRange)
{
    for (const int numThreads : {1, 2, 5})
    {
        ParallelRanges ranges(numThreads);
        EXPECT_EQ(rangesOf(ranges, 10, 4), (std::vector<Range>{{0, 4}, {4, 8}, {8, 10}}));
        EXPECT_EQ(rangesOf(ranges, 8, 4), (std::vector<Range>{{0, 4}, {4, 8}}));
        EXPECT_EQ(rangesOf(ranges, 3, 4), (std::vector<Range>{{0, 3}}));
        EXPECT_EQ(rangesOf(ranges, 0, 4), std::vector<Range>{});
        EXPECT_EQ(rangesOf(ranges, 1000, 1).size(), 1000U);
    }
}

TEST(ParallelRangesTest, ZeroThreadsMeansTheAvailableCores)
{
    EXPECT_EQ(ParallelRanges(0).getNumThreads(), static_cast<std::size_t>(availableCores()));
    EXPECT_EQ(ParallelRanges(3).getNumThreads(), 3U);
}

TEST(ParallelRangesTest, ThreadsWorkAtTheSameTimeEachWithASlotOfItsOwn)
{
    constexpr std::size_t numThreads = 4;
    ParallelRanges ranges(numThreads);
    fenn::test::Meeting meeting(numThreads);
    std::vector<std::atomic<int>> numInSlot(numThreads);

    ranges.run(numThreads, 1,
               [&](std::size_t slot, std::size_t, std::size_t)
               {
                   ++numInSlot.at(slot);
                   meeting.attend();
               });

    for (const std::atomic<int>& number : numInSlot)
        EXPECT_EQ(number, 1);
}

TEST(ParallelRangesTest, ASingleRangeIsDoneOnTheCallingThread)
{
    const std::size_t numBefore = fenn::test::numThreads();
    ParallelRanges ranges(4);
    std::thread::id doneBy;

    ranges.run(100, 100,
               [&](std::size_t slot, std::size_t, std::size_t)
               {
                   EXPECT_EQ(slot, 0U);
                   doneBy = std::this_thread::get_id();
               });

    EXPECT_EQ(doneBy, std::this_thread::get_id());
    EXPECT_EQ(fenn::test::numThreads(), numBefore);
}

TEST(ParallelRangesTest, ThreadsAreKeptAndGoWithTheObject)
{
    const std::size_t numBefore = fenn::test::numThreads();
    {
        ParallelRanges ranges(3);
        rangesOf(ranges, 3, 1);
        rangesOf(ranges, 3, 1);
        if (numBefore != 0)
        {
            EXPECT_EQ(fenn::test::numThreads(), numBefore + 2);
        }
    }
    for (int wait = 0; wait < 10000 && fenn::test::numThreads() > numBefore; ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(fenn::test::numThreads(), numBefore);
}

TEST(ParallelRangesTest, TheExceptionOfTheLowestRangeIsPassedOn)
{
    for (const int numThreads : {1, 2, 4})
    {
        ParallelRanges ranges(numThreads);
        for (int repeat = 0; repeat < 50; ++repeat)
        {
            const std::string message = messageOf(ranges, 64,
                                                  [&](std::size_t, std::size_t first, std::size_t)
                                                  {
                                                      if (first == 20)
                                                          std::this_thread::yield(); // a higher one may fail before it
                                                      if (first >= 20)
                                                          throw std::runtime_error(std::to_string(first));
                                                  });
            ASSERT_EQ(message, "20") << numThreads << " threads";
        }
    }
}

TEST(ParallelRangesTest, ALowerRangeThatFailsLaterDecides)
{
    ParallelRanges ranges(2);
    fenn::test::Meeting bothAreAtWork(2);
    std::atomic<bool> hasHigherFailed{false};

    const std::string message = messageOf(ranges, 2,
                                          [&](std::size_t, std::size_t first, std::size_t)
                                          {
                                              bothAreAtWork.attend();
                                              if (first == 1)
                                              {
                                                  hasHigherFailed = true;
                                                  throw std::runtime_error("higher");
                                              }
                                              while (!hasHigherFailed)
                                                  std::this_thread::yield();
                                              throw std::runtime_error("lower");
                                          });

    EXPECT_EQ(message, "lower");
}

TEST(ParallelRangesTest, AHigherRangeThatFailsLaterDoesNotDecide)
{
    ParallelRanges ranges(2);
    fenn::test::Meeting bothAreAtWork(2);
    std::atomic<bool> hasLowerFailed{false};

    const std::string message = messageOf(ranges, 2,
                                          [&](std::size_t, std::size_t first, std::size_t)
                                          {
                                              bothAreAtWork.attend();
                                              if (first == 0)
                                              {
                                                  hasLowerFailed = true;
                                                  throw std::runtime_error("lower");
                                              }
                                              while (!hasLowerFailed)
                                                  std::this_thread::yield();
                                              std::this_thread::sleep_for(std::chrono::milliseconds(20));
                                              throw std::runtime_error("higher");
                                          });

    EXPECT_EQ(message, "lower");
}

TEST(ParallelRangesTest, WorksAgainAfterAFailure)
{
    ParallelRanges ranges(2);
    EXPECT_EQ(messageOf(ranges, 9, [](std::size_t, std::size_t, std::size_t) { throw std::runtime_error("no"); }),
              "no");
    EXPECT_EQ(rangesOf(ranges, 9, 2).size(), 5U);
}

TEST(ParallelRangesTest, ManyShortRunsFollowEachOther)
{
    ParallelRanges ranges(4);
    for (std::size_t run = 0; run < 2000; ++run)
    {
        std::atomic<std::size_t> sum{0};
        ranges.run(run % 7 + 1, 1, [&](std::size_t, std::size_t first, std::size_t) { sum += first + 1; });
        ASSERT_EQ(sum, (run % 7 + 1) * (run % 7 + 2) / 2);
    }
}
