#ifndef FENN_KERNELS_PACKED_TRIANGLE_H
#define FENN_KERNELS_PACKED_TRIANGLE_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/Strips.h"

namespace fenn::kernels
{

/// Rows of a tile of a packed triangle: as many as the multiplication of two strips takes at a time.
constexpr std::size_t triangleTileRows = maxTileRows;
constexpr std::size_t triangleTileStrips = triangleTileRows / stripWidth;

/// count rounded up to whole tiles.
constexpr std::size_t roundUpToTile(std::size_t count)
{
    return (count + triangleTileRows - 1) / triangleTileRows * triangleTileRows;
}

/// Lower triangle of a symmetric matrix, cut into tiles of 24 rows, each into three strips of eight. Strip s of tile t
/// holds 24 (t + 1) lines, one for each column up to the end of the tile, a line being the eight rows' elements of that
/// column. So a strip can stand on either side of a product, and nothing is ever copied: n^2 / 2 + 12 n doubles in all.
/// Elements right of the diagonal exist in the tiles on it only. The last tile may have fewer strips.
///
/// The first numPositive rows, whole tiles, are positive definite; what is left of the others once these are eliminated
/// is negative definite. A plain value that refers to cells, aligned to 64 bytes.
struct PackedTriangle
{
    double* cells = nullptr;
    std::size_t numRows = 0;     // whole strips
    std::size_t numPositive = 0; // whole tiles

    static std::size_t tileOffset(std::size_t tile)
    {
        return triangleTileRows * triangleTileRows / 2 * tile * (tile + 1);
    }

    /// Doubles from one strip of a tile to the next.
    static std::size_t stripStride(std::size_t tile)
    {
        return stripWidth * triangleTileRows * (tile + 1);
    }

    static std::size_t sizeFor(std::size_t numRows_)
    {
        const std::size_t tile = numRows_ / triangleTileRows;
        return tileOffset(tile) + numRows_ % triangleTileRows / stripWidth * stripStride(tile);
    }

    std::size_t numTiles() const
    {
        return (numRows + triangleTileRows - 1) / triangleTileRows;
    }

    std::size_t numStripsOf(std::size_t tile) const
    {
        const std::size_t numStrips = numRows / stripWidth - triangleTileStrips * tile;
        return numStrips < triangleTileStrips ? numStrips : triangleTileStrips;
    }

    /// Line 0 of a strip of a tile.
    double* strip(std::size_t tile, std::size_t strip_) const
    {
        return cells + tileOffset(tile) + strip_ * stripStride(tile);
    }

    /// Element of row i and column j, which is at most the last one of the row's tile.
    double& at(std::size_t i, std::size_t j) const
    {
        const std::size_t tile = i / triangleTileRows;
        return strip(tile, i % triangleTileRows / stripWidth)[stripWidth * j + i % stripWidth];
    }
};

} // namespace fenn::kernels

#endif
