#ifndef FENN_KERNELS_HIGHWAY_TARGETS_H
#define FENN_KERNELS_HIGHWAY_TARGETS_H

// Included before any Highway header, so that every kernel source is generated for the same instruction sets. SVE is
// left out: its vectors have no size at compile time and cannot stand in the arrays that hold a tile.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)

#endif
