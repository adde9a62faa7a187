#ifndef FENN_SURROGATEMODEL_KRIGING_KERNELS_UNROLL_H
#define FENN_SURROGATEMODEL_KRIGING_KERNELS_UNROLL_H

// Before a loop of constant length over an array of vectors: only unrolled does the array stay in registers.
#if defined(__clang__)
#define FENN_UNROLL _Pragma("clang loop unroll(full)")
#elif defined(__GNUC__)
#define FENN_UNROLL _Pragma("GCC unroll 32")
#else
#define FENN_UNROLL
#endif

// Makes the compiler forget what it knows of an integer, so that it computes addresses from it where they are used.
#if defined(__GNUC__)
#define FENN_KEEP_IN_REGISTER(value) __asm__("" : "+r"(value))
#else
#define FENN_KEEP_IN_REGISTER(value)
#endif

#endif
