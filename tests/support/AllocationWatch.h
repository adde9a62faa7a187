#ifndef FENN_TESTS_SUPPORT_ALLOCATIONWATCH_H
#define FENN_TESTS_SUPPORT_ALLOCATIONWATCH_H

#include <cstddef>
#include <vector>

/// Watches operator new and operator delete, which the test program replaces, on the calling thread only: what other
/// threads allocate is not seen. One watch at a time.
namespace fenn::test
{

class AllocationWatch
{
public:
    static constexpr std::size_t never = static_cast<std::size_t>(-1);

    /// failingAllocation: index of the allocation, counted from here and among those of at least leastSize bytes, that
    /// fails as if memory had run out.
    explicit AllocationWatch(std::size_t failingAllocation = never, std::size_t leastSize = 0);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch& other) = delete;
    AllocationWatch& operator=(const AllocationWatch& other) = delete;

    /// Allocations since the start of the watch less what has been freed since.
    std::ptrdiff_t getNumLive() const;

    bool hasFailed() const;

    /// Has the moment of an address' release kept; at most eight.
    void follow(const void* address);

    /// The addresses followed that have been released, in the order in which they were.
    std::vector<const void*> getReleased() const;
};

} // namespace fenn::test

#endif
