#ifndef FENN_SURROGATEMODEL_KRIGING_TASKHANDOVER_H
#define FENN_SURROGATEMODEL_KRIGING_TASKHANDOVER_H

#include <atomic>

namespace fenn
{

/// Orders what a requesting thread writes before what its pool tasks read, and what they write before what it reads.
///
/// The pool orders both already. It is not instrumented, though, and a thread sanitizer that cannot see its locks would
/// report every hand-over as a race: these two calls say the same in a form that it understands. Call give() before
/// starting a task and at the end of its run, take() at the start of its run and after waiting for it.
class TaskHandOver
{
public:
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
};

} // namespace fenn

#endif
