#include "surrogatemodel_kriging/ElementStore.h"

#include <limits>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace fenn
{

namespace
{

constexpr std::size_t cacheLine = 64;
constexpr std::size_t hugePage = std::size_t{2} << 20;

} // namespace

ElementStore::~ElementStore()
{
    release();
}

void ElementStore::allocate(std::size_t count)
{
    release();
    if (count > std::numeric_limits<std::size_t>::max() / (2 * sizeof(double)))
        throw std::bad_alloc();
    const std::size_t numBytes = count * sizeof(double);
    const bool large = numBytes >= 2 * hugePage;
    alignment = large ? hugePage : cacheLine;
    elements = static_cast<double*>(::operator new (numBytes, std::align_val_t{alignment}));
#ifdef __linux__
    // Only a request: without huge pages everything works the same, a little slower.
    if (large)
        madvise(elements, numBytes, MADV_HUGEPAGE);
#endif
}

void ElementStore::release()
{
    if (elements != nullptr)
        ::operator delete (elements, std::align_val_t{alignment});
    elements = nullptr;
}

} // namespace fenn
