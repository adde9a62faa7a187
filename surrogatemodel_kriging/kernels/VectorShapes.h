#ifndef FENN_KERNELS_VECTOR_SHAPES_H
#define FENN_KERNELS_VECTOR_SHAPES_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/Strips.h"

/// How much the kernels of dense systems take at a time. Chosen by what the vectors of an instruction set are like and
/// not by its name: a later one gets the shapes of those that are like it.
namespace fenn::kernels
{

struct VectorUnit
{
    std::size_t lanes;     // doubles in a vector, at most a strip
    std::size_t registers; // for vectors
    bool spreadsInMemory;  // a multiplication spreads one number from memory itself, at no arithmetic slot
};

/// Of the micro-kernel: rows times vectors whose sums stay in registers.
struct MicroKernelShape
{
    std::size_t rows;
    std::size_t vecs;
};

/// Where a number is spread in memory, one vector and as many rows as there are registers: a number that several
/// vectors share is spread into a register first and takes a slot of the arithmetic (Zen 4, 8 lanes, of 58.6 GFlop/s:
/// 24 rows x 1 vector 58, 8 x 3 44).
constexpr MicroKernelShape microKernelShape(VectorUnit unit)
{
    if (unit.spreadsInMemory && unit.registers >= 32)
        return {maxTileRows, 1};
    if (unit.registers >= 32 && unit.lanes <= 2)
        return {4, 4};
    return {4, 2};
}

/// Up to so many rows a matrix is factorised as a whole from a copy by columns. Its work grows with half the cube of
/// the rows instead of a third, and it soon needs more registers than there are. Both ways in us (Xeon, 2.9 GHz): 8
/// lanes, 64 rows 12.3 and 13.4, 80 rows 21.6 and 22.2; 4 lanes, 32 rows 3.9 and 3.6; 2 lanes, 24 rows 2.8 and 2.6.
constexpr std::size_t maxSmallRows(VectorUnit unit)
{
    return unit.lanes == 8 ? 64 : unit.lanes == 4 ? 32 : 16;
}

/// Of the substitutions: rows times vectors of a forward tile, strips side by side in the back substitution.
struct SubstitutionShape
{
    std::size_t rows;
    std::size_t vecs;
    std::size_t backStrips;
    std::size_t mixedFrom; // both ways are mixed from so many rows on; 0: never
};

/// One vector per row where a number is spread in memory, as above (Zen 4, GFlop/s: 8 rows x 1 vector 56, 8 x 2 41, 4 x
/// 6 48). Mixing needs 32 registers and pays once a group no longer stays in the first-level cache (Zen 4, GFlop/s,
/// apart and mixed: n = 129 41 and 40, 257 39 and 42, 500 38 and 43, 2000 29 and 38).
constexpr SubstitutionShape substitutionShape(VectorUnit unit)
{
    if (unit.spreadsInMemory && unit.registers >= 32)
        return {8, 1, 4, unit.lanes == stripWidth ? std::size_t{160} : 0};
    return {4, 2, unit.lanes >= 4 ? std::size_t{4} : unit.lanes, 0};
}

/// Whether the shapes fit the strips and the registers of a unit, with room for what is multiplied.
constexpr bool shapesFit(VectorUnit unit)
{
    const std::size_t vecsPerStrip = stripWidth / unit.lanes;
    const MicroKernelShape tile = microKernelShape(unit);
    const SubstitutionShape substitution = substitutionShape(unit);
    const bool factorsFit = tile.rows >= stripWidth ? maxTileRows % tile.rows == 0 : stripWidth % tile.rows == 0;
    return stripWidth % unit.lanes == 0 && factorsFit && vecsPerStrip % tile.vecs == 0 &&
           (tile.rows + 1) * tile.vecs + 2 <= unit.registers && maxSmallRows(unit) % stripWidth == 0 &&
           vecsPerStrip % substitution.vecs == 0 && substitution.rows % 4 == 0 &&
           (substitution.rows + 1) * substitution.vecs + 2 <= unit.registers &&
           (substitution.mixedFrom == 0 || vecsPerStrip == 1);
}

// Every kind of vector unit that the instruction sets of today have, of whatever name.
static_assert(shapesFit({1, 16, false})); // none at all
static_assert(shapesFit({2, 16, false})); // SSE
static_assert(shapesFit({2, 32, false})); // NEON
static_assert(shapesFit({4, 16, false})); // AVX2
static_assert(shapesFit({4, 32, true}));  // AVX10 with 256 bits
static_assert(shapesFit({8, 32, true}));  // AVX-512 and AVX10 with 512 bits
static_assert(shapesFit({2, 64, false})); // VSX

} // namespace fenn::kernels

#endif
