// Linked into a test program: it ends when the workers of its last pools have. A pool waits for the work of its
// threads, not for the system to end them, and what such a thread still holds would look like a leak to the address
// sanitizer.

#include <gtest/gtest.h>

#include "tests/support/ThreadCount.h"

namespace fenn::test
{

namespace
{

class ThreadsAtExit : public testing::Environment
{
public:
    void TearDown() override
    {
        numThreadsLeft();
    }
};

testing::Environment* const threadsAtExit = testing::AddGlobalTestEnvironment(new ThreadsAtExit);

} // namespace

} // namespace fenn::test
