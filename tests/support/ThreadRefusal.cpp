#include "tests/support/ThreadRefusal.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>

#include <dlfcn.h>
#include <pthread.h>

namespace
{

std::atomic<int> numLeft{INT_MAX};
std::atomic<int> numRefused{0};

} // namespace

// Found before the system's own by every library of the process.
extern "C" __attribute__((visibility("default"))) int
pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*), void* argument) noexcept
{
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (numLeft.load() != INT_MAX && numLeft.fetch_sub(1) <= 0)
    {
        ++numRefused;
        return EAGAIN;
    }
    return create(thread, attributes, routine, argument);
}

// A pool that waits for a thread which was never made is left allocated; whatever else is left is reported.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:QThreadPool::\n";
}

namespace fenn::test
{

ThreadRefusal::ThreadRefusal(int numGranted_) : numGranted(numGranted_)
{
    numRefused = 0;
    numLeft = numGranted;
}

ThreadRefusal::~ThreadRefusal()
{
    numLeft = INT_MAX;
}

int ThreadRefusal::getNumRefused() const
{
    return numRefused;
}

int ThreadRefusal::getNumMade() const
{
    return numGranted - std::max(numLeft.load(), 0);
}

} // namespace fenn::test
