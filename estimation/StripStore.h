#ifndef FENN_ESTIMATION_STRIPSTORE_H
#define FENN_ESTIMATION_STRIPSTORE_H

#include <cstddef>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

namespace fenn::estimation
{

/// Owns strips of right-hand sides, each of eight columns side by side. Values are undefined until written.
class StripStore
{
public:
    /// Throws std::bad_alloc.
    StripStore(std::size_t numRows, std::size_t numStrips_)
        // An odd number of cache lines: equal rows of the strips fall into different sets of the cache.
        : stride(kernels::stripWidth * (numRows | 1)), numStrips(numStrips_)
    {
        elements.allocate(stride * numStrips);
    }

    kernels::StripGroup getGroup(std::size_t count) const
    {
        return {elements.data(), stride, count};
    }

    kernels::StripGroup getGroup() const
    {
        return getGroup(numStrips);
    }

    double* getStrip(std::size_t s) const
    {
        return elements.data() + stride * s;
    }

    /// Entry i of a column is at column[stripWidth * i].
    double* getColumn(std::size_t c) const
    {
        return getStrip(c / kernels::stripWidth) + c % kernels::stripWidth;
    }

private:
    std::size_t stride;
    std::size_t numStrips;
    ElementStore elements;
};

} // namespace fenn::estimation

#endif
