#ifndef FENN_KERNELS_CHOLESKY_PLAN_H
#define FENN_KERNELS_CHOLESKY_PLAN_H

#include <algorithm>
#include <cstddef>

#include "surrogatemodel_kriging/kernels/PackedTriangle.h"

namespace fenn::kernels
{

/// How a packed triangle is cut into blocks for its factorisation, which work follows which.
///
/// Rows and columns form the same blocks of some tiles each; none reaches across the end of the positive definite part.
/// The work is one list that pieces take from in order: the blocks of the lower triangle, column by column. Block (I,
/// J) has the products of all columns before J subtracted and is then solved with block (J, J). Whatever it waits for
/// stands before it in the list, so the first unfinished one can always go on.
class CholeskyPlan
{
public:
    struct Task
    {
        std::size_t row;    // block
        std::size_t column; // block; numBlocks when nothing is left
    };

    /// Whole tiles, from begin to end - 1.
    struct Tiles
    {
        std::size_t begin;
        std::size_t end;
    };

    explicit CholeskyPlan(const PackedTriangle& triangle)
        : numTiles(triangle.numTiles()),
          numPositiveTiles(triangle.numPositive / triangleTileRows),
          blockTiles(chooseBlockTiles(numTiles)),
          numPositiveBlocks((numPositiveTiles + blockTiles - 1) / blockTiles),
          numBlocks(numPositiveBlocks + (numTiles - numPositiveTiles + blockTiles - 1) / blockTiles)
    {
    }

    Tiles block(std::size_t index) const
    {
        if (index < numPositiveBlocks)
            return {index * blockTiles, std::min(numPositiveTiles, (index + 1) * blockTiles)};
        const std::size_t begin = numPositiveTiles + (index - numPositiveBlocks) * blockTiles;
        return {begin, std::min(numTiles, begin + blockTiles)};
    }

    Task task(std::size_t number) const
    {
        std::size_t column = 0;
        while (column < numBlocks && number >= numBlocks - column)
        {
            number -= numBlocks - column;
            ++column;
        }
        return {column + number, column};
    }

    const std::size_t numTiles;
    const std::size_t numPositiveTiles;
    const std::size_t blockTiles;
    const std::size_t numPositiveBlocks;
    const std::size_t numBlocks;

private:
    // Three blocks are at work at a time and share the second-level cache.
    static std::size_t chooseBlockTiles(std::size_t numTiles)
    {
        return numTiles <= 24 ? 4 : 8;
    }
};

} // namespace fenn::kernels

#endif
