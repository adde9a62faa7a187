// Per-target guard: Highway includes this file once for every instruction set.
#if defined(FENN_KERNELS_VECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef FENN_KERNELS_VECTORS_INL_H
#undef FENN_KERNELS_VECTORS_INL_H
#else
#define FENN_KERNELS_VECTORS_INL_H
#endif

#include <cstddef>

#include "hwy/highway.h"
#include "surrogatemodel_kriging/kernels/Strips.h"
#include "surrogatemodel_kriging/kernels/VectorShapes.h"

// The tests build the dense kernels once more as a processor would have them that is not there: with fewer lanes and
// another number of registers than the instruction set at hand.
#ifndef FENN_KERNELS_MOST_LANES
#define FENN_KERNELS_MOST_LANES 8
#endif

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
/// Vectors of the kernels of dense systems, and the shapes that fit them.
namespace dense
{

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<double, FENN_KERNELS_MOST_LANES>;
using Vec = hn::Vec<Tag>;

constexpr std::size_t kLanes = hn::MaxLanes(Tag());
constexpr std::size_t kVecsPerStrip = stripWidth / kLanes;

#if defined(FENN_KERNELS_REGISTERS)
constexpr std::size_t kRegisters = FENN_KERNELS_REGISTERS;
#elif HWY_ARCH_X86
// Of two instruction sets the better one has the lower number. From AVX-512 on there are 32 registers.
constexpr std::size_t kRegisters = HWY_TARGET < HWY_AVX2 ? 32 : 16;
#elif HWY_ARCH_ARM_A64 || HWY_ARCH_PPC
constexpr std::size_t kRegisters = 32;
#else
constexpr std::size_t kRegisters = 16;
#endif

constexpr VectorUnit kUnit = {kLanes, kRegisters, HWY_ARCH_X86 != 0 && kRegisters >= 32};
static_assert(shapesFit(kUnit));

} // namespace dense
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
