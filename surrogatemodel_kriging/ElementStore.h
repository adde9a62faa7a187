#ifndef FENN_SURROGATEMODEL_KRIGING_ELEMENTSTORE_H
#define FENN_SURROGATEMODEL_KRIGING_ELEMENTSTORE_H

#include <cstddef>

namespace fenn
{

/// Owns an array of doubles, aligned to a cache line. Its values are undefined at first: clearing would take as long as
/// filling. A large array asks the system for huge pages (the first touch of 32 MB takes 1 ms instead of 11).
class ElementStore
{
public:
    ElementStore() = default;
    ElementStore(const ElementStore& other) = delete;
    ElementStore& operator=(const ElementStore& other) = delete;
    ~ElementStore();

    /// Makes room for count doubles of undefined value; what was there before is lost. Throws std::bad_alloc; the store
    /// is then empty.
    void allocate(std::size_t count);

    /// Null when empty.
    double* data() const
    {
        return elements;
    }

private:
    void release();

    double* elements = nullptr;
    std::size_t alignment = 0;
};

} // namespace fenn

#endif
