// The vector layer of the kernels: one set of names over vectors of 128, 256 or 512 bits.
//
// The types are the compilers' own vector types, so + - * / & | ^ ~ << >>, comparisons (which give lanes of all ones or
// zero) and `m ? a : b` are written as for numbers. What the language has no operator for is a function of the headers
// below. Integer lanes that may leave their range are U32, U64, U16: signed ones may not overflow here any more than
// elsewhere.
//
// A load or store names its alignment: Aligned (the 16-byte rule of the interface) or Unaligned. A tail of n elements,
// 1 <= n < lanes (from 256 bits on also n = lanes), comes with loadTail: the lanes beyond are zero and no byte past the
// end is read, save in the aligned 128-bit form, whose load ends inside the 16-byte unit of the last element and so can
// touch no new page.
#pragma once

#include "frame/simd_arithmetic.hpp"
#include "frame/simd_memory.hpp"
#include "frame/simd_sums.hpp"
#include "frame/simd_types.hpp"
#include "frame/simd_widen.hpp"
