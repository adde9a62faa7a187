#ifndef FENN_TESTS_RELIABILITY_STARTINGGATE_H
#define FENN_TESTS_RELIABILITY_STARTINGGATE_H

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace fenn::test
{

/// Lets threads begin together. Relaxed on purpose: waiting here must not order what they do afterwards, or the thread
/// sanitizer would overlook a race.
class StartingGate
{
public:
    explicit StartingGate(std::size_t numThreads) : numMissing(numThreads) {}

    void wait()
    {
        numMissing.fetch_sub(1, std::memory_order_relaxed);
        while (numMissing.load(std::memory_order_relaxed) > 0)
            std::this_thread::yield();
    }

private:
    std::atomic<std::size_t> numMissing;
};

/// Runs work(index) on so many threads of the host that begin together, and waits for them.
template <typename Work>
void runOnHostThreads(std::size_t numThreads, Work work)
{
    StartingGate gate(numThreads);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < numThreads; ++t)
    {
        threads.emplace_back(
            [&gate, &work, t]
            {
                gate.wait();
                work(t);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace fenn::test

#endif
