#include "tests/support/AllocationWatch.h"

#include <cstdlib>
#include <new>

namespace
{

constexpr std::size_t maxFollowed = 8;

// Plain values only: operator new is called before and after objects of this file live.
struct Watch
{
    bool isOn = false;
    bool hasFailed = false;
    std::size_t numAllocations = 0;
    std::size_t failingAllocation = 0;
    std::size_t leastSize = 0;
    std::ptrdiff_t numLive = 0;
    std::size_t numFollowed = 0;
    std::size_t numReleased = 0;
    const void* followed[maxFollowed] = {};
    const void* released[maxFollowed] = {};
};

thread_local Watch watch;

void* allocate(std::size_t size)
{
    if (watch.isOn && size >= watch.leastSize && watch.numAllocations++ == watch.failingAllocation)
    {
        watch.hasFailed = true;
        return nullptr;
    }
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (watch.isOn && memory != nullptr)
        ++watch.numLive;
    return memory;
}

void release(void* memory)
{
    if (watch.isOn && memory != nullptr)
    {
        --watch.numLive;
        for (std::size_t i = 0; i < watch.numFollowed; ++i)
        {
            if (watch.followed[i] == memory && watch.numReleased < maxFollowed)
                watch.released[watch.numReleased++] = memory;
        }
    }
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    void* memory = allocate(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size);
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete[](void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    release(memory);
}

namespace fenn::test
{

AllocationWatch::AllocationWatch(std::size_t failingAllocation, std::size_t leastSize)
{
    watch = Watch();
    watch.leastSize = leastSize;
    watch.failingAllocation = failingAllocation;
    watch.isOn = true;
}

AllocationWatch::~AllocationWatch()
{
    watch.isOn = false;
}

std::ptrdiff_t AllocationWatch::getNumLive() const
{
    return watch.numLive;
}

bool AllocationWatch::hasFailed() const
{
    return watch.hasFailed;
}

void AllocationWatch::follow(const void* address)
{
    watch.followed[watch.numFollowed++] = address;
}

std::vector<const void*> AllocationWatch::getReleased() const
{
    const std::size_t numReleased = watch.numReleased; // the vector's own memory is watched too
    return std::vector<const void*>(watch.released, watch.released + numReleased);
}

} // namespace fenn::test
