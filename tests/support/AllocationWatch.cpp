#include "tests/support/AllocationWatch.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include <link.h>
#include <unwind.h>

namespace
{

/// The code of one library, as loaded.
struct CodeRange
{
    const char* name = nullptr;
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    bool contains(std::uintptr_t address) const
    {
        return address >= begin && address < end;
    }
};

/// A set of addresses that allocates nothing.
class AddressSet
{
public:
    void clear()
    {
        places.fill(nullptr);
        numUsed = 0;
    }

    void insert(const void* address)
    {
        if (++numUsed > places.size() / 2)
            std::abort(); // more allocations than this file is meant for
        *find(nullptr, address) = address;
    }

    bool erase(const void* address)
    {
        const void** place = find(address, address);
        if (*place != address)
            return false;
        *place = &removed;
        return true;
    }

private:
    /// The first place, from where the address belongs, that holds the one sought or nothing.
    const void** find(const void* sought, const void* address)
    {
        std::size_t i = (reinterpret_cast<std::uintptr_t>(address) >> 4) * 0x9E3779B1U;
        while (places[i % places.size()] != sought && places[i % places.size()] != nullptr)
            ++i;
        return &places[i % places.size()];
    }

    static constexpr char removed = 0; // its address marks a place that was used
    std::array<const void*, std::size_t{1} << 16> places = {};
    std::size_t numUsed = 0;
};

constexpr std::size_t maxFollowed = 8;

// Plain values only: operator new is called before and after objects of this file live.
struct Watch
{
    bool hasFailed = false;
    bool hasFailedWithoutThrowing = false;
    bool hasFailedOnAnotherThread = false;
    std::size_t numAllocations = 0;
    std::size_t failingAllocation = 0;
    std::size_t numBytes = 0;
    std::ptrdiff_t numLive = 0;
    std::size_t numFollowed = 0;
    std::size_t numReleased = 0;
    const void* followed[maxFollowed] = {};
    const void* released[maxFollowed] = {};
};

std::atomic<bool> isOn{false};
std::atomic_flag isHeld = ATOMIC_FLAG_INIT; // guards what follows while the watch is on
Watch watch;
AddressSet live;
CodeRange qt{"libQt5Core"};
CodeRange standardLibrary{"libstdc++"};
thread_local bool isWatcher = false;

struct Hold
{
    Hold()
    {
        while (isHeld.test_and_set(std::memory_order_acquire))
        {
        }
    }
    ~Hold()
    {
        isHeld.clear(std::memory_order_release);
    }
    Hold(const Hold& other) = delete;
    Hold& operator=(const Hold& other) = delete;
};

int noteCode(dl_phdr_info* library, std::size_t /*size*/, void* wanted)
{
    auto& range = *static_cast<CodeRange*>(wanted);
    if (std::strstr(library->dlpi_name, range.name) == nullptr)
        return 0;
    for (int i = 0; i < library->dlpi_phnum; ++i)
    {
        const auto& segment = library->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0)
        {
            range.begin = library->dlpi_addr + segment.p_vaddr;
            range.end = range.begin + segment.p_memsz;
        }
    }
    return 1;
}

struct Caller
{
    std::uintptr_t address = 0;
    bool hasSeenLibrary = false;
};

/// The first frame below those of the standard library.
_Unwind_Reason_Code passStandardLibrary(_Unwind_Context* frame, void* found)
{
    auto& caller = *static_cast<Caller*>(found);
    caller.address = _Unwind_GetIP(frame);
    if (standardLibrary.contains(caller.address))
        caller.hasSeenLibrary = true;
    else if (caller.hasSeenLibrary)
        return _URC_NORMAL_STOP;
    return _URC_NO_REASON;
}

bool isForQt(const void* returnAddress)
{
    Caller caller;
    caller.address = reinterpret_cast<std::uintptr_t>(returnAddress);
    if (standardLibrary.contains(caller.address))
        _Unwind_Backtrace(passStandardLibrary, &caller);
    return qt.contains(caller.address);
}

bool isToFail(bool throws)
{
    const Hold hold;
    if (watch.numAllocations++ != watch.failingAllocation)
        return false;
    watch.hasFailed = true;
    watch.hasFailedWithoutThrowing = !throws;
    watch.hasFailedOnAnotherThread = !isWatcher;
    return true;
}

void* allocate(std::size_t size, std::size_t alignment, bool throws, const void* returnAddress)
{
    const bool isWatched = isOn.load(std::memory_order_acquire) && !isForQt(returnAddress);
    void* memory = nullptr;
    if (!isWatched || !isToFail(throws))
    {
        if (alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__)
            memory = std::malloc(size == 0 ? 1 : size);
        else if (posix_memalign(&memory, alignment, size) != 0)
            memory = nullptr;
    }
    if (memory == nullptr && throws)
        throw std::bad_alloc();
    if (isWatched && memory != nullptr)
    {
        const Hold hold;
        live.insert(memory);
        ++watch.numLive;
        watch.numBytes += size;
    }
    return memory;
}

void release(void* memory)
{
    if (memory != nullptr && isOn.load(std::memory_order_acquire))
    {
        const Hold hold;
        if (live.erase(memory))
            --watch.numLive;
        for (std::size_t i = 0; i < watch.numFollowed; ++i)
        {
            if (watch.followed[i] == memory && watch.numReleased < maxFollowed)
                watch.released[watch.numReleased++] = memory;
        }
    }
    std::free(memory);
}

constexpr std::size_t plain = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

std::size_t asNumber(std::align_val_t alignment)
{
    return static_cast<std::size_t>(alignment);
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size, plain, true, __builtin_return_address(0));
}

void* operator new[](std::size_t size)
{
    return allocate(size, plain, true, __builtin_return_address(0));
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, asNumber(alignment), true, __builtin_return_address(0));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return allocate(size, asNumber(alignment), true, __builtin_return_address(0));
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size, plain, false, __builtin_return_address(0));
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size, plain, false, __builtin_return_address(0));
}

void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size, asNumber(alignment), false, __builtin_return_address(0));
}

void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size, asNumber(alignment), false, __builtin_return_address(0));
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

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    release(memory);
}

void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept
{
    release(memory);
}

namespace fenn::test
{

AllocationWatch::AllocationWatch(std::size_t failingAllocation)
{
    if (dl_iterate_phdr(noteCode, &qt) == 0 || dl_iterate_phdr(noteCode, &standardLibrary) == 0)
        std::abort(); // what is theirs could not be told
    const Hold hold;  // a thread of an earlier watch may still be on its way out
    watch = Watch();
    live.clear();
    isWatcher = true;
    watch.failingAllocation = failingAllocation;
    isOn.store(true, std::memory_order_release);
}

AllocationWatch::~AllocationWatch()
{
    isOn.store(false, std::memory_order_release);
    isWatcher = false;
}

std::ptrdiff_t AllocationWatch::getNumLive() const
{
    const Hold hold;
    return watch.numLive;
}

std::size_t AllocationWatch::getNumBytes() const
{
    const Hold hold;
    return watch.numBytes;
}

bool AllocationWatch::hasFailed() const
{
    const Hold hold;
    return watch.hasFailed;
}

bool AllocationWatch::hasFailedWithoutThrowing() const
{
    const Hold hold;
    return watch.hasFailedWithoutThrowing;
}

bool AllocationWatch::hasFailedOnAnotherThread() const
{
    const Hold hold;
    return watch.hasFailedOnAnotherThread;
}

void AllocationWatch::follow(const void* address)
{
    const Hold hold;
    watch.followed[watch.numFollowed++] = address;
}

std::vector<const void*> AllocationWatch::getReleased() const
{
    std::size_t numReleased = 0;
    {
        const Hold hold;
        numReleased = watch.numReleased; // the vector's own memory is watched too
    }
    return std::vector<const void*>(watch.released, watch.released + numReleased);
}

} // namespace fenn::test
