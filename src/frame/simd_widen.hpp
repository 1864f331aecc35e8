// Lanes of twice the width: elements loaded into them and stored from them, and the halves of a vector.
#pragma once

#include "frame/simd_memory.hpp"

#include <cstdint>

namespace lyr::LYR_NS {

// lanes<I32> 16-bit or 8-bit integers as 32-bit lanes; lanes<F64> singles or integers as doubles. Each has a tail form
// of 1 <= n < that count.
#if LYR_WIDTH == 128
LYR_INLINE I32 widenLow(__m128i v)
{
    return as<I32>(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16));
}
LYR_INLINE I32 loadWide(const std::int16_t* p)
{
    return widenLow(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
LYR_INLINE I32 loadWideTail(const std::int16_t* p, int n)
{
    return widenLow(as<__m128i>(loadTail<Unaligned>(p, n)));
}
LYR_INLINE F64 loadWide(const float* p)
{
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
LYR_INLINE F64 loadWideTail(const float* p, int /*n*/)
{
    return _mm_cvtps_pd(_mm_load_ss(p));
}
LYR_INLINE F64 loadWideToDouble(const std::int32_t* p)
{
    return _mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
LYR_INLINE F64 loadWideToDouble(const std::int16_t* p)
{
    return _mm_cvtepi32_pd(as<__m128i>(widenLow(_mm_loadu_si32(p))));
}
LYR_INLINE F64 loadWideToDoubleTail(const std::int16_t* p, int /*n*/)
{
    return F64{static_cast<double>(*p), 0.0};
}
// lanes<F64> doubles as singles at p.
LYR_INLINE void storeNarrow(float* p, F64 v)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_castps_si128(_mm_cvtpd_ps(v)));
}
LYR_INLINE void storeNarrowTail(float* p, F64 v, int /*n*/)
{
    _mm_store_ss(p, _mm_cvtpd_ps(v));
}
#elif LYR_WIDTH == 256
LYR_INLINE I32 loadWide(const std::int16_t* p)
{
    return as<I32>(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
LYR_INLINE I32 loadWideTail(const std::int16_t* p, int n)
{
    return as<I32>(_mm256_cvtepi16_epi32(_mm256_castsi256_si128(as<__m256i>(loadTail<Unaligned>(p, n)))));
}
LYR_INLINE F64 loadWide(const float* p)
{
    return _mm256_cvtps_pd(_mm_loadu_ps(p));
}
LYR_INLINE F64 loadWideTail(const float* p, int n)
{
    return _mm256_cvtps_pd(_mm256_castps256_ps128(loadTail<Unaligned>(p, n)));
}
LYR_INLINE F64 loadWideToDouble(const std::int32_t* p)
{
    return _mm256_cvtepi32_pd(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
LYR_INLINE F64 loadWideToDouble(const std::int16_t* p)
{
    return _mm256_cvtepi32_pd(_mm_cvtepi16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
}
LYR_INLINE F64 loadWideToDoubleTail(const std::int16_t* p, int n)
{
    return _mm256_cvtepi32_pd(_mm256_castsi256_si128(as<__m256i>(loadWideTail(p, n))));
}
LYR_INLINE void storeNarrow(float* p, F64 v)
{
    _mm_storeu_ps(p, _mm256_cvtpd_ps(v));
}
LYR_INLINE void storeNarrowTail(float* p, F64 v, int n)
{
    storeTail(p, _mm256_castps128_ps256(_mm256_cvtpd_ps(v)), n);
}
#else
LYR_INLINE I32 loadWide(const std::int16_t* p)
{
    return as<I32>(_mm512_cvtepi16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
}
LYR_INLINE I32 loadWideTail(const std::int16_t* p, int n)
{
    return as<I32>(_mm512_cvtepi16_epi32(_mm256_maskz_loadu_epi16(static_cast<__mmask16>((1U << n) - 1), p)));
}
LYR_INLINE F64 loadWide(const float* p)
{
    return _mm512_cvtps_pd(_mm256_loadu_ps(p));
}
LYR_INLINE F64 loadWideTail(const float* p, int n)
{
    return _mm512_cvtps_pd(_mm256_maskz_loadu_ps(static_cast<__mmask8>((1U << n) - 1), p));
}
LYR_INLINE F64 loadWideToDouble(const std::int32_t* p)
{
    return _mm512_cvtepi32_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
}
LYR_INLINE F64 loadWideToDouble(const std::int16_t* p)
{
    return _mm512_cvtepi32_pd(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
}
LYR_INLINE F64 loadWideToDoubleTail(const std::int16_t* p, int n)
{
    return _mm512_cvtepi32_pd(_mm256_cvtepi16_epi32(_mm_maskz_loadu_epi16(static_cast<__mmask8>((1U << n) - 1), p)));
}
LYR_INLINE void storeNarrow(float* p, F64 v)
{
    _mm256_storeu_ps(p, _mm512_cvtpd_ps(v));
}
LYR_INLINE void storeNarrowTail(float* p, F64 v, int n)
{
    _mm256_mask_storeu_ps(p, static_cast<__mmask8>((1U << n) - 1), _mm512_cvtpd_ps(v));
}
#endif

// The lower and the upper half of the lanes, each at twice the width, and two vectors of doubles as one of singles.
#if LYR_WIDTH == 128
LYR_INLINE F64 widenLower(F32 v)
{
    return _mm_cvtps_pd(v);
}
LYR_INLINE F64 widenUpper(F32 v)
{
    return _mm_cvtps_pd(_mm_movehl_ps(v, v));
}
LYR_INLINE I64 widenLower(I32 v)
{
    return as<I64>(_mm_unpacklo_epi32(as<__m128i>(v), as<__m128i>(v < 0)));
}
LYR_INLINE I64 widenUpper(I32 v)
{
    return as<I64>(_mm_unpackhi_epi32(as<__m128i>(v), as<__m128i>(v < 0)));
}
LYR_INLINE F32 narrow(F64 lower, F64 upper)
{
    return _mm_movelh_ps(_mm_cvtpd_ps(lower), _mm_cvtpd_ps(upper));
}
#elif LYR_WIDTH == 256
LYR_INLINE F64 widenLower(F32 v)
{
    return _mm256_cvtps_pd(_mm256_castps256_ps128(v));
}
LYR_INLINE F64 widenUpper(F32 v)
{
    return _mm256_cvtps_pd(_mm256_extractf128_ps(v, 1));
}
LYR_INLINE I64 widenLower(I32 v)
{
    return as<I64>(_mm256_cvtepi32_epi64(_mm256_castsi256_si128(as<__m256i>(v))));
}
LYR_INLINE I64 widenUpper(I32 v)
{
    return as<I64>(_mm256_cvtepi32_epi64(_mm256_extracti128_si256(as<__m256i>(v), 1)));
}
LYR_INLINE F32 narrow(F64 lower, F64 upper)
{
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(lower)), _mm256_cvtpd_ps(upper), 1);
}
#else
LYR_INLINE F64 widenLower(F32 v)
{
    return _mm512_cvtps_pd(_mm512_castps512_ps256(v));
}
LYR_INLINE F64 widenUpper(F32 v)
{
    return _mm512_cvtps_pd(_mm512_extractf32x8_ps(v, 1));
}
LYR_INLINE I64 widenLower(I32 v)
{
    return as<I64>(_mm512_cvtepi32_epi64(_mm512_castsi512_si256(as<__m512i>(v))));
}
LYR_INLINE I64 widenUpper(I32 v)
{
    return as<I64>(_mm512_cvtepi32_epi64(_mm512_extracti32x8_epi32(as<__m512i>(v), 1)));
}
LYR_INLINE F32 narrow(F64 lower, F64 upper)
{
    return _mm512_insertf32x8(_mm512_castps256_ps512(_mm512_cvtpd_ps(lower)), _mm512_cvtpd_ps(upper), 1);
}
#endif

} // namespace lyr::LYR_NS
