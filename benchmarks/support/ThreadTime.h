#ifndef FENN_BENCHMARKS_SUPPORT_THREADTIME_H
#define FENN_BENCHMARKS_SUPPORT_THREADTIME_H

#include <time.h>

namespace fenn::benchmarks
{

/// Seconds of processor time that this thread has used: what other processes take of the machine does not count.
/// Reading it takes some tenths of a microsecond.
inline double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

} // namespace fenn::benchmarks

#endif
