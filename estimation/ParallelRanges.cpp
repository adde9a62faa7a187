#include "estimation/ParallelRanges.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <system_error>

#include "estimation/ThreadCount.h"

namespace fenn::estimation
{

/// One run: what is left to hand out, and the failure of the lowest range so far.
struct ParallelRanges::Job
{
    Job(std::size_t count_, std::size_t rangeSize_, const Work& work_)
        : count(count_), rangeSize(rangeSize_), work(&work_)
    {
    }

    void takeRanges(std::size_t slot)
    {
        while (!hasFailed.load(std::memory_order_relaxed))
        {
            const std::size_t range = nextRange.fetch_add(1, std::memory_order_relaxed);
            if (range >= (count - 1) / rangeSize + 1)
                return;
            const std::size_t first = range * rangeSize;
            try
            {
                (*work)(slot, first, first + std::min(rangeSize, count - first));
            }
            catch (...)
            {
                const std::lock_guard<std::mutex> lock(failureMutex);
                if (first < failedAt)
                {
                    failedAt = first;
                    failure = std::current_exception();
                }
                // All lower ranges were handed out earlier, and are run to their end.
                hasFailed.store(true, std::memory_order_relaxed);
            }
        }
    }

    const std::size_t count;
    const std::size_t rangeSize;
    const Work* const work;
    std::atomic<std::size_t> nextRange{0};
    std::atomic<bool> hasFailed{false};
    std::mutex failureMutex;
    std::size_t failedAt = std::numeric_limits<std::size_t>::max();
    std::exception_ptr failure;
};

ParallelRanges::ParallelRanges(int numThreads_)
    : numThreads(static_cast<std::size_t>(std::max(chooseThreadCount(numThreads_), 1)))
{
}

ParallelRanges::~ParallelRanges()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isEnding = true;
    }
    jobIsThere.notify_all();
    for (std::thread& thread : threads)
        thread.join();
}

std::size_t ParallelRanges::getNumThreads() const
{
    return numThreads;
}

void ParallelRanges::run(std::size_t count, std::size_t rangeSize, const Work& work)
{
    if (count == 0)
        return;
    const std::size_t numRanges = (count - 1) / rangeSize + 1;
    startThreads(std::min(numThreads, numRanges) - 1);

    Job current(count, rangeSize, work);
    if (numRanges > 1 && !threads.empty())
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            job = &current;
            ++jobNumber;
        }
        jobIsThere.notify_all();
    }
    current.takeRanges(0);
    {
        std::unique_lock<std::mutex> lock(mutex);
        job = nullptr; // whoever has not come yet is not waited for
        helpersAreGone.wait(lock, [this] { return numHelpers == 0; });
    }
    if (current.failure)
        std::rethrow_exception(current.failure);
}

void ParallelRanges::startThreads(std::size_t numWanted)
{
    try
    {
        threads.reserve(numWanted);
        while (threads.size() < numWanted)
            threads.emplace_back(&ParallelRanges::serve, this, threads.size() + 1);
    }
    catch (const std::system_error&)
    {
        // Refused: the other threads do the work, and the next run tries again.
    }
    catch (const std::bad_alloc&)
    {
        // No memory for a thread: likewise.
    }
}

void ParallelRanges::serve(std::size_t slot)
{
    std::uint64_t lastJobNumber = 0;
    std::unique_lock<std::mutex> lock(mutex);
    for (;;)
    {
        jobIsThere.wait(lock, [&] { return isEnding || (job != nullptr && jobNumber != lastJobNumber); });
        if (isEnding)
            return;
        lastJobNumber = jobNumber;
        Job* const current = job;
        ++numHelpers;
        lock.unlock();
        current->takeRanges(slot);
        lock.lock();
        if (--numHelpers == 0)
            helpersAreGone.notify_one();
    }
}

} // namespace fenn::estimation
