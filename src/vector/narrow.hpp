// 32-bit lanes as 16-bit elements.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

namespace detail {
// The lanes of v in the low half of a vector; each must be in the range of 16 bits.
LYR_INLINE I16 narrowed(I32 v)
{
#if LYR_WIDTH == 128
    return as<I16>(_mm_packs_epi32(as<__m128i>(v), as<__m128i>(v)));
#elif LYR_WIDTH == 256
    const __m256i packed = _mm256_packs_epi32(as<__m256i>(v), as<__m256i>(v));
    return as<I16>(_mm256_permute4x64_epi64(packed, 0x08));
#else
    return as<I16>(_mm512_castsi256_si512(_mm512_cvtepi32_epi16(as<__m512i>(v))));
#endif
}
} // namespace detail

// lanes<I32> elements at p, or the first n of them, 1 <= n < lanes<I32>.
LYR_INLINE void storeNarrow(std::int16_t* p, I32 v)
{
    const I16 half = detail::narrowed(v);
    std::memcpy(p, &half, sizeof half / 2);
}

LYR_INLINE void storeNarrowTail(std::int16_t* p, I32 v, int n)
{
    storeTail(p, detail::narrowed(v), n);
}

} // namespace lyr::LYR_NS
