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

} // namespace fenn::kernels

#endif
