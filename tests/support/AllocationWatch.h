#ifndef FENN_TESTS_SUPPORT_ALLOCATIONWATCH_H
#define FENN_TESTS_SUPPORT_ALLOCATIONWATCH_H

#include <cstddef>
#include <vector>

/// Watches every form of operator new and operator delete, which the test program replaces, on all threads. What Qt
/// allocates for itself is neither counted nor failed: seen by the address that operator new was called from. One watch
/// at a time.
namespace fenn::test
{

class AllocationWatch
{
public:
    static constexpr std::size_t never = static_cast<std::size_t>(-1);

    /// failingAllocation: index of the allocation, counted from here over all threads, that fails as if memory had run
    /// out.
    explicit AllocationWatch(std::size_t failingAllocation = never);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch& other) = delete;
    AllocationWatch& operator=(const AllocationWatch& other) = delete;

    /// Of the allocations since the start of the watch those that have not been freed.
    std::ptrdiff_t getNumLive() const;

    /// Of all allocations since the start of the watch, freed or not.
    std::size_t getNumBytes() const;

    bool hasFailed() const;

    /// Whether it was one of the forms that return null.
    bool hasFailedWithoutThrowing() const;

    /// Whether another thread than the one that made the watch asked for it.
    bool hasFailedOnAnotherThread() const;

    /// Has the moment of an address' release kept; at most eight.
    void follow(const void* address);

    /// The addresses followed that have been released, in the order in which they were.
    std::vector<const void*> getReleased() const;
};

} // namespace fenn::test

#endif
