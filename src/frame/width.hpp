// The vector width that a translation unit is compiled for, and the namespace that everything in it lives in.
//
// A kernel source X_kernels.cpp is compiled once for each width with LYR_WIDTH set; every other source without it. What
// such a source defines stands in namespace lyr::LYR_NS or has internal linkage: an inline function in plain lyr,
// emitted with wide instructions and merged by the linker with its narrow copy, would crash an older processor.
// LYR_INLINE functions leave no such copy behind.
#pragma once

#define LYR_INLINE __attribute__((always_inline)) inline
// Of a lambda, behind its parameters.
#define LYR_INLINE_LAMBDA __attribute__((always_inline))

#if defined(LYR_WIDTH)
#if LYR_WIDTH == 128
#define LYR_NS w128
#elif LYR_WIDTH == 256
#define LYR_NS w256
#elif LYR_WIDTH == 512
#define LYR_NS w512
#else
#error "LYR_WIDTH is 128, 256 or 512"
#endif
#endif
