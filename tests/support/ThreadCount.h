#ifndef FENN_TESTS_SUPPORT_THREADCOUNT_H
#define FENN_TESTS_SUPPORT_THREADCOUNT_H

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace fenn::test
{

/// Threads of this process as the system lists them; 0 where it has no such list.
inline std::size_t numThreads()
{
    const std::filesystem::path tasks = "/proc/self/task";
    if (!std::filesystem::exists(tasks))
        return 0;
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(tasks), std::filesystem::directory_iterator()));
}

/// Those that the process begins with, and the one that a sanitizer adds when the first thread is started.
inline const std::size_t numThreadsAtStart = []
{
    std::thread([] {}).join();
    std::this_thread::sleep_for(std::chrono::milliseconds(10)); // listed a little longer than waited for
    return numThreads();
}();

/// Threads beyond those, once there are none or after ten seconds: the system lists a thread a little longer than a
/// pool waits for it.
inline std::size_t numThreadsLeft()
{
    for (int wait = 0; wait < 10000 && numThreads() > numThreadsAtStart; ++wait)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return numThreads() - numThreadsAtStart;
}

} // namespace fenn::test

#endif
