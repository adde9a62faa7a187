#ifndef FENN_KERNELS_STRIPS_H
#define FENN_KERNELS_STRIPS_H

#include <cstddef>

namespace fenn::kernels
{

/// Values side by side in a strip, whatever the width of a vector. A strip is a sequence of lines, aligned to 64 bytes:
/// value t of line k stands at strip[stripWidth * k + t]. Side by side stand rows of a matrix, columns, or targets.
constexpr std::size_t stripWidth = 8;

/// Rows that the micro-kernel takes at most at a time; a tile is as many rows times one strip.
constexpr std::size_t maxTileRows = 3 * stripWidth;

constexpr std::size_t roundUpToStrip(std::size_t count)
{
    return (count + stripWidth - 1) / stripWidth * stripWidth;
}

/// Strips that a group may hold.
constexpr std::size_t maxGroupStrips = 4;

/// Up to maxGroupStrips strips that are worked on together. Each is aligned to 64 bytes; they do not overlap. What one
/// target holds never influences another: lanes without a target may hold anything.
struct StripGroup
{
    double* strips = nullptr;
    std::size_t stride = 0; // doubles from one strip to the next
    std::size_t numStrips = 0;
};

} // namespace fenn::kernels

#endif
