#ifndef FENN_TESTS_SUPPORT_MEETING_H
#define FENN_TESTS_SUPPORT_MEETING_H

#include <condition_variable>
#include <mutex>

namespace fenn::test
{

/// Lets no thread on before all have come.
class Meeting
{
public:
    explicit Meeting(int numExpected_) : numExpected(numExpected_) {}

    void attend()
    {
        std::unique_lock<std::mutex> lock(mutex);
        if (--numExpected == 0)
            complete.notify_all();
        complete.wait(lock, [this] { return numExpected <= 0; });
    }

private:
    std::mutex mutex;
    std::condition_variable complete;
    int numExpected;
};

} // namespace fenn::test

#endif
