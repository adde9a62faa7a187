#ifndef FENN_SURROGATEMODEL_KRIGING_TASKHANDOVER_H
#define FENN_SURROGATEMODEL_KRIGING_TASKHANDOVER_H

#if defined(__SANITIZE_THREAD__)
#define FENN_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define FENN_THREAD_SANITIZER 1
#endif
#endif

#ifdef FENN_THREAD_SANITIZER
#include <atomic>
#endif

namespace fenn
{

/// Tells a thread sanitizer that what a requesting thread writes comes before what its pool tasks read, and what they
/// write before what it reads. In every other build it is nothing.
///
/// The pool orders both, but its locks are in Qt, which is not instrumented: every hand-over would be reported as a
/// race. Call give() before starting a task and at the end of its run, take() at the start of its run and after waiting
/// for it.
class TaskHandOver
{
public:
#ifdef FENN_THREAD_SANITIZER
    static void give()
    {
        // A read-modify-write: it continues the release sequences of all threads that gave before.
        counter().fetch_add(1, std::memory_order_release);
    }

    static void take()
    {
        static_cast<void>(counter().load(std::memory_order_acquire));
    }

private:
    static std::atomic<unsigned>& counter()
    {
        static std::atomic<unsigned> handOvers{0};
        return handOvers;
    }
#else
    static void give() {}
    static void take() {}
#endif
};

} // namespace fenn

#undef FENN_THREAD_SANITIZER

#endif
