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

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{
/// Vectors of the kernels of dense systems, and the shapes that fit them.
namespace dense
{

namespace hn = hwy::HWY_NAMESPACE;

// Of two instruction sets of x86 the better one has the lower number; from AVX-512 on there are 32 registers, and
// multiplications spread a number from memory. The tests build the kernels once more as for a processor that is not
// there: FENN_KERNELS_UNIT is what its vectors would be like.
#if defined(FENN_KERNELS_UNIT)
constexpr VectorUnit kLikeUnit = {FENN_KERNELS_UNIT};
#elif HWY_ARCH_X86
constexpr VectorUnit kLikeUnit =
    HWY_TARGET < HWY_AVX2 ? VectorUnit{stripWidth, 32, true} : VectorUnit{stripWidth, 16, false};
#elif HWY_ARCH_ARM_A64 || HWY_ARCH_PPC
constexpr VectorUnit kLikeUnit = {stripWidth, 32, false};
#else
constexpr VectorUnit kLikeUnit = {stripWidth, 16, false};
#endif

using Tag = hn::CappedTag<double, kLikeUnit.lanes>;
using Vec = hn::Vec<Tag>;

constexpr std::size_t kLanes = hn::MaxLanes(Tag());
constexpr std::size_t kVecsPerStrip = stripWidth / kLanes;

constexpr VectorUnit kUnit = {kLanes, kLikeUnit.registers, kLikeUnit.spreadsInMemory};
static_assert(shapesFit(kUnit));

} // namespace dense
} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#endif
