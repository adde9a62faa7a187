#include "estimation/ShareWork.h"

#include <atomic>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/WorkerPool.h"

namespace
{

using fenn::estimation::shareWork;

TEST(ShareWorkTest, EveryCallIsMadeOnce)
{
    for (const int numThreads : {1, 2, 5})
    {
        fenn::WorkerPool workers(numThreads);
        for (const std::size_t count : {0U, 1U, 2U, 100U})
        {
            std::vector<std::atomic<int>> numCalls(count);
            shareWork(workers, count, [&](std::size_t i) { ++numCalls[i]; });
            for (const std::atomic<int>& calls : numCalls)
                EXPECT_EQ(calls, 1);
        }
    }
}

TEST(ShareWorkTest, AnExceptionReachesTheCaller)
{
    for (const int numThreads : {1, 3})
    {
        fenn::WorkerPool workers(numThreads);
        std::atomic<int> numCalls{0};
        const auto work = [&](std::size_t i)
        {
            ++numCalls;
            if (i == 3)
                throw std::runtime_error("three");
        };
        EXPECT_THROW(shareWork(workers, 100000, work), std::runtime_error);
        EXPECT_LT(numCalls, 100000);
    }
}

} // namespace
