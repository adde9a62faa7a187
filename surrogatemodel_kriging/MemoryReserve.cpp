#include "surrogatemodel_kriging/MemoryReserve.h"

#include <cstddef>
#include <new>

#ifdef __linux__
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace fenn
{

namespace
{

// Qt 5.15 takes 752 bytes for a pool and 8 KiB, in pieces, for a thread. The C library takes up to 132 KiB from the
// system for the first piece. The rest is for what the tasks begun first take while the last thread is being started.
constexpr std::size_t poolMemory = std::size_t{4} << 10;
constexpr std::size_t threadMemory = std::size_t{1} << 20;

#ifdef __linux__

std::size_t stackSize()
{
    constexpr std::size_t usual = std::size_t{8} << 20;
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return usual;
    std::size_t size = 0;
    const bool isKnown = pthread_attr_getstacksize(&attributes, &size) == 0;
    pthread_attr_destroy(&attributes);
    return isKnown ? size : usual;
}

bool isLimited(decltype(RLIMIT_AS) resource)
{
    rlimit limits{};
    return getrlimit(resource, &limits) == 0 && limits.rlim_cur != RLIM_INFINITY;
}

/// Whether the system gives away no more memory than it has: mode 2 of what proc(5) describes.
bool isStrict()
{
    char mode = '0';
    const int file = open("/proc/sys/vm/overcommit_memory", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool isRead = read(file, &mode, 1) == 1;
    close(file);
    return isRead && mode == '2';
}

/// Whether a process can be refused memory at all. Asking for it takes 4 us, a tenth of a small request.
bool canBeRefused()
{
    static const bool isSystemStrict = isStrict();
    return isSystemStrict || isLimited(RLIMIT_AS) || isLimited(RLIMIT_DATA);
}

#endif

} // namespace

void reserveMemoryForPool()
{
    ::operator delete(::operator new(poolMemory));
}

bool hasMemoryForThreads(int numThreads)
{
    const auto count = static_cast<std::size_t>(numThreads);
#ifdef __linux__
    if (!canBeRefused())
        return true;
    // Not through operator new: blocks of this size would change the C library's thresholds, for the host too.
    const std::size_t numBytes = count * (stackSize() + threadMemory);
    void* const memory = mmap(nullptr, numBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && munmap(memory, numBytes) == 0;
#else
    void* const memory = ::operator new(count* threadMemory, std::nothrow);
    ::operator delete(memory, std::nothrow);
    return memory != nullptr;
#endif
}

} // namespace fenn
