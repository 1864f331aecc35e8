// Lanes that change their width: narrow elements loaded into wide lanes, wide lanes stored as narrow elements, products
// of 16-bit lanes. Tails are those of simd.hpp: 1 <= n < lanes, nothing read or written beyond element n.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

// ------------------------------------------------------------------------------------------------------------- loading

namespace detail {

#if LYR_WIDTH != 512
// n bytes, 1 <= n <= 7, in the low end of zeros.
LYR_INLINE __m128i loadBytes(const std::uint8_t* p, int n)
{
    std::uint64_t bytes = 0;
    if (n >= 4) {
        std::uint32_t low = 0;
        std::uint32_t high = 0;
        std::memcpy(&low, p, sizeof low);
        std::memcpy(&high, p + n - 4, sizeof high);
        bytes = low | std::uint64_t{high} << (8 * (n - 4));
    } else {
        bytes = static_cast<std::uint64_t>(p[0]) | std::uint64_t{p[n / 2]} << (8 * (n / 2)) |
                std::uint64_t{p[n - 1]} << (8 * (n - 1));
    }
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&bytes));
}
#endif

} // namespace detail

// lanes<I32> unsigned bytes as 32-bit lanes, and fewer.
#if LYR_WIDTH == 128
namespace detail {
LYR_INLINE I32 widenBytes(__m128i v)
{
    const __m128i zero = _mm_setzero_si128();
    return as<I32>(_mm_unpacklo_epi16(_mm_unpacklo_epi8(v, zero), zero));
}
} // namespace detail
LYR_INLINE I32 loadWide(const std::uint8_t* p)
{
    return detail::widenBytes(_mm_loadu_si32(p));
}
LYR_INLINE I32 loadWideTail(const std::uint8_t* p, int n)
{
    return detail::widenBytes(detail::loadBytes(p, n));
}
#elif LYR_WIDTH == 256
LYR_INLINE I32 loadWide(const std::uint8_t* p)
{
    return as<I32>(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
LYR_INLINE I32 loadWideTail(const std::uint8_t* p, int n)
{
    return as<I32>(_mm256_cvtepu8_epi32(detail::loadBytes(p, n)));
}
#else
LYR_INLINE I32 loadWide(const std::uint8_t* p)
{
    return as<I32>(_mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
LYR_INLINE I32 loadWideTail(const std::uint8_t* p, int n)
{
    return as<I32>(_mm512_cvtepu8_epi32(_mm_maskz_loadu_epi8(static_cast<__mmask16>((1U << n) - 1), p)));
}
#endif

// ------------------------------------------------------------------------------------------------------------- storing

namespace detail {

#if LYR_WIDTH != 512
// The low n 16-bit lanes, n <= 7.
LYR_INLINE void storeHalfWords(std::int16_t* p, __m128i v, int n)
{
    if ((n & 4) != 0) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
        v = _mm_srli_si128(v, 8);
        p += 4;
    }
    if ((n & 2) != 0) {
        _mm_storeu_si32(p, v);
        v = _mm_srli_si128(v, 4);
        p += 2;
    }
    if ((n & 1) != 0) {
        *p = static_cast<std::int16_t>(_mm_extract_epi16(v, 0));
    }
}
#endif

} // namespace detail

// lanes<I32> 32-bit lanes as 16-bit elements, each limited to the range of these.
#if LYR_WIDTH == 128
LYR_INLINE void storeSaturated(std::int16_t* p, I32 v)
{
    const auto native = as<__m128i>(v);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packs_epi32(native, native));
}
LYR_INLINE void storeSaturatedTail(std::int16_t* p, I32 v, int n)
{
    const auto native = as<__m128i>(v);
    detail::storeHalfWords(p, _mm_packs_epi32(native, native), n);
}
#elif LYR_WIDTH == 256
namespace detail {
LYR_INLINE __m128i saturate(I32 v)
{
    const auto native = as<__m256i>(v);
    return _mm_packs_epi32(_mm256_castsi256_si128(native), _mm256_extracti128_si256(native, 1));
}
} // namespace detail
LYR_INLINE void storeSaturated(std::int16_t* p, I32 v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), detail::saturate(v));
}
LYR_INLINE void storeSaturatedTail(std::int16_t* p, I32 v, int n)
{
    detail::storeHalfWords(p, detail::saturate(v), n);
}
#else
LYR_INLINE void storeSaturated(std::int16_t* p, I32 v)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtsepi32_epi16(as<__m512i>(v)));
}
LYR_INLINE void storeSaturatedTail(std::int16_t* p, I32 v, int n)
{
    // Narrowed in a register: the form of the instruction that stores by itself is slow on some processors.
    _mm256_mask_storeu_epi16(p, static_cast<__mmask16>((1U << n) - 1), _mm512_cvtsepi32_epi16(as<__m512i>(v)));
}
#endif

// ------------------------------------------------------------------------------ doubles and lanes<F64> 32-bit integers

// The integers of one vector of doubles, in the low end of a register. toInts rounds by the mode in force; out of range
// gives -2^31.
#if LYR_WIDTH == 128
using HalfInts = __m128i;
LYR_INLINE HalfInts toInts(F64 v)
{
    return _mm_cvtpd_epi32(v);
}
LYR_INLINE HalfInts truncateToInts(F64 v)
{
    return _mm_cvttpd_epi32(v);
}
LYR_INLINE void storeInts(std::int32_t* p, HalfInts v)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
}
LYR_INLINE void storeIntsTail(std::int32_t* p, HalfInts v, int /*n*/)
{
    _mm_storeu_si32(p, v);
}
#elif LYR_WIDTH == 256
using HalfInts = __m128i;
LYR_INLINE HalfInts toInts(F64 v)
{
    return _mm256_cvtpd_epi32(v);
}
LYR_INLINE HalfInts truncateToInts(F64 v)
{
    return _mm256_cvttpd_epi32(v);
}
LYR_INLINE void storeInts(std::int32_t* p, HalfInts v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}
LYR_INLINE void storeIntsTail(std::int32_t* p, HalfInts v, int n)
{
    _mm_maskstore_epi32(p, _mm256_castsi256_si128(as<__m256i>(firstLanes32(n))), v);
}
#else
using HalfInts = __m256i;
LYR_INLINE HalfInts toInts(F64 v)
{
    return _mm512_cvtpd_epi32(v);
}
LYR_INLINE HalfInts truncateToInts(F64 v)
{
    return _mm512_cvttpd_epi32(v);
}
LYR_INLINE void storeInts(std::int32_t* p, HalfInts v)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}
LYR_INLINE void storeIntsTail(std::int32_t* p, HalfInts v, int n)
{
    _mm256_mask_storeu_epi32(p, static_cast<__mmask8>((1U << n) - 1), v);
}
#endif

// ------------------------------------------------------------------------------------------------- products of 16 bits

// a[2i] * b[2i] + a[2i + 1] * b[2i + 1], where four factors of -2^15 make -2^31 of 2^31 and nothing else does.
LYR_INLINE I32 dotPairs(I16 a, I16 b)
{
#if LYR_WIDTH == 128
    return as<I32>(_mm_madd_epi16(as<__m128i>(a), as<__m128i>(b)));
#elif LYR_WIDTH == 256
    return as<I32>(_mm256_madd_epi16(as<__m256i>(a), as<__m256i>(b)));
#else
    return as<I32>(_mm512_madd_epi16(as<__m512i>(a), as<__m512i>(b)));
#endif
}

} // namespace lyr::LYR_NS
