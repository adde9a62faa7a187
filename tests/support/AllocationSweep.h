#ifndef FENN_TESTS_SUPPORT_ALLOCATIONSWEEP_H
#define FENN_TESTS_SUPPORT_ALLOCATIONSWEEP_H

#include <cstddef>
#include <iostream>
#include <new>

#include <gtest/gtest.h>

#include "tests/support/AllocationWatch.h"

namespace fenn::test
{

/// What came of the allocations that failed, one per run of an operation.
struct AllocationSweep
{
    int numFailed = 0;
    int numOnOtherThreads = 0;
    int numCoped = 0; // of those asked for by a form that returns null: the operation succeeded without
};

/// Runs the operation over and over, the first time with its first allocation failing, then with its second, until one
/// run has none to fail. Expects each failure to arrive as std::bad_alloc and no allocation to be left: but for
/// numKept when it succeeds. After each run, check() says whether everything still answers.
template <typename Operation, typename Check>
AllocationSweep failEachAllocation(const char* name, Operation operation, Check check, std::ptrdiff_t numKept = 0)
{
    AllocationSweep sweep;
    for (std::size_t failing = 0;; ++failing)
    {
        SCOPED_TRACE(testing::Message() << name << ", allocation " << failing);
        bool isOutOfMemory = false;
        bool hasFailed = false;
        bool mayCope = true;
        bool isOnAnotherThread = false;
        std::ptrdiff_t numLive = -1;
        {
            const AllocationWatch watch(failing);
            try
            {
                operation();
            }
            catch (const std::bad_alloc&)
            {
                isOutOfMemory = true;
            }
            numLive = watch.getNumLive();
            hasFailed = watch.hasFailed();
            isOnAnotherThread = watch.hasFailedOnAnotherThread();
            mayCope = !hasFailed || watch.hasFailedWithoutThrowing();
        }
        EXPECT_TRUE(isOutOfMemory || mayCope);
        EXPECT_EQ(numLive, isOutOfMemory ? 0 : numKept);
        check();
        if (!hasFailed || testing::Test::HasFailure())
            break;
        ++sweep.numFailed;
        sweep.numOnOtherThreads += isOnAnotherThread ? 1 : 0;
        sweep.numCoped += isOutOfMemory ? 0 : 1;
    }
    std::cout << "Allocations failed: " << sweep.numFailed << " in " << name << "; on other threads "
              << sweep.numOnOtherThreads << ", done without " << sweep.numCoped << '\n';
    return sweep;
}

} // namespace fenn::test

#endif
