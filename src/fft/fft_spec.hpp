// The state records of the real transform.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstdint>

// Opaque to callers, but tools read the fields, so that their order is part of the record.
struct FFTSpec_R_32f
{
    std::uint32_t idCtx;
    Elem32s order;
    Elem32s fwdNorm;
    Elem32s invNorm;
    Elem32f normFactor;
    Elem32s hint;
    Elem32s bufSize;
    Elem32s ownsMemory;
    std::uint32_t* pBitRev; // row permutations of the column transforms
    float* pTwd;            // twiddles of the complex transform
    float* pRealRec;        // forward recombination
    float* pCcsRec;         // inverse recombination, which reads the same numbers conjugated
    float* pBlkTwd[3];      // the split levels of the largest orders, outermost first
};

struct FFTSpec_R_16s32s
{
    std::uint32_t idCtx;
    Elem32s order;
    Elem32s hint;
    Elem32s bufSize;
    Elem32s ownsMemory;
    FFTSpec_R_32f* pSpec;
};

namespace lyr::fft {

inline constexpr std::uint32_t realTag = 6;
inline constexpr std::uint32_t fixedTag = 0x434D414F;
inline constexpr int maxOrder = 30;
inline constexpr int directBelow = 4; // orders below run a direct kernel without tables

// Records, tables and buffers start at multiples of this; a caller's memory is told this much larger.
inline constexpr std::size_t tableAlignment = 32;

// From a caller's address, 8-byte aligned on 64 bits, at most 24 bytes are lost to the alignment: the record fits the
// 112 bytes of orders 0 to 3.
static_assert(sizeof(FFTSpec_R_32f) <= 112 - (tableAlignment - sizeof(void*)));
static_assert(sizeof(FFTSpec_R_16s32s) <= 32);

// Where a spectrum of N reals has its elements: R0 comes first in all of them, R(N/2) last, second, or last with a zero
// behind it.
enum class Layout
{
    Pack,
    Perm,
    Ccs
};

} // namespace lyr::fft
