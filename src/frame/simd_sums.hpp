// The lanes of a vector added up, of one vector or of several at a time.
#pragma once

#include "frame/simd_types.hpp"

namespace lyr::LYR_NS {

namespace detail {
// Halves of a vector added until 128 bits are left.
#if LYR_WIDTH == 128
LYR_INLINE __m128 fold(F32 v)
{
    return v;
}
LYR_INLINE __m128d fold(F64 v)
{
    return v;
}
#elif LYR_WIDTH == 256
LYR_INLINE __m128 fold(F32 v)
{
    return _mm_add_ps(_mm256_castps256_ps128(v), _mm256_extractf128_ps(v, 1));
}
LYR_INLINE __m128d fold(F64 v)
{
    return _mm_add_pd(_mm256_castpd256_pd128(v), _mm256_extractf128_pd(v, 1));
}
#else
LYR_INLINE __m128 fold(F32 v)
{
    const __m256 half = _mm256_add_ps(_mm512_castps512_ps256(v), _mm512_extractf32x8_ps(v, 1));
    return _mm_add_ps(_mm256_castps256_ps128(half), _mm256_extractf128_ps(half, 1));
}
LYR_INLINE __m128d fold(F64 v)
{
    const __m256d half = _mm256_add_pd(_mm512_castpd512_pd256(v), _mm512_extractf64x4_pd(v, 1));
    return _mm_add_pd(_mm256_castpd256_pd128(half), _mm256_extractf128_pd(half, 1));
}
#endif
} // namespace detail

// All lanes added.
LYR_INLINE float sum(F32 v)
{
    const __m128 four = detail::fold(v);
    const __m128 two = _mm_add_ps(four, _mm_movehl_ps(four, four));
    return _mm_cvtss_f32(_mm_add_ss(two, _mm_shuffle_ps(two, two, 1)));
}

LYR_INLINE double sum(F64 v)
{
    const __m128d two = detail::fold(v);
    return _mm_cvtsd_f64(_mm_add_sd(two, _mm_unpackhi_pd(two, two)));
}

// The sums of four vectors, in the lanes of one: a transposition costs less than four separate sums.
LYR_INLINE __m128 sumEach(F32 a, F32 b, F32 c, F32 d)
{
    __m128 r0 = detail::fold(a);
    __m128 r1 = detail::fold(b);
    __m128 r2 = detail::fold(c);
    __m128 r3 = detail::fold(d);
    _MM_TRANSPOSE4_PS(r0, r1, r2, r3);
    return _mm_add_ps(_mm_add_ps(r0, r1), _mm_add_ps(r2, r3));
}

// The sums of as many vectors as one has lanes, in the lanes of one: a transposition by halves, where each step adds
// what it brings together, costs less than separate sums.
namespace detail {
// Neighbouring lanes of 32 or 64 bits of two vectors, inside each 128 bits.
LYR_INLINE F32 addPairs(F32 a, F32 b)
{
    return LYR_SIMD(add_ps)(LYR_SIMD(unpacklo_ps)(a, b), LYR_SIMD(unpackhi_ps)(a, b));
}
LYR_INLINE F64 addPairs(F64 a, F64 b)
{
    return LYR_SIMD(add_pd)(LYR_SIMD(unpacklo_pd)(a, b), LYR_SIMD(unpackhi_pd)(a, b));
}
LYR_INLINE F32 addHalves(F32 a, F32 b)
{
#if LYR_WIDTH == 128
    return _mm_add_ps(_mm_movelh_ps(a, b), _mm_movehl_ps(b, a));
#else
    return LYR_SIMD(add_ps)(LYR_SIMD(shuffle_ps)(a, b, 0x44), LYR_SIMD(shuffle_ps)(a, b, 0xEE));
#endif
}

// The vectors k, k + stride, ... of v as one vector with 128 bits for each.
#if LYR_WIDTH == 128
LYR_INLINE F32 gather128(const F32* v, int /*stride*/)
{
    return v[0];
}
LYR_INLINE F64 gather128(const F64* v, int /*stride*/)
{
    return v[0];
}
#elif LYR_WIDTH == 256
LYR_INLINE F32 gather128(const F32* v, int stride)
{
    return _mm256_add_ps(_mm256_permute2f128_ps(v[0], v[stride], 0x20), _mm256_permute2f128_ps(v[0], v[stride], 0x31));
}
LYR_INLINE F64 gather128(const F64* v, int stride)
{
    return _mm256_add_pd(_mm256_permute2f128_pd(v[0], v[stride], 0x20), _mm256_permute2f128_pd(v[0], v[stride], 0x31));
}
#else
LYR_INLINE F32 gather128(const F32* v, int stride)
{
    const F32 low =
        _mm512_add_ps(_mm512_shuffle_f32x4(v[0], v[stride], 0x44), _mm512_shuffle_f32x4(v[0], v[stride], 0xEE));
    const F32 high = _mm512_add_ps(_mm512_shuffle_f32x4(v[2 * stride], v[3 * stride], 0x44),
                                   _mm512_shuffle_f32x4(v[2 * stride], v[3 * stride], 0xEE));
    return _mm512_add_ps(_mm512_shuffle_f32x4(low, high, 0x88), _mm512_shuffle_f32x4(low, high, 0xDD));
}
LYR_INLINE F64 gather128(const F64* v, int stride)
{
    const F64 low =
        _mm512_add_pd(_mm512_shuffle_f64x2(v[0], v[stride], 0x44), _mm512_shuffle_f64x2(v[0], v[stride], 0xEE));
    const F64 high = _mm512_add_pd(_mm512_shuffle_f64x2(v[2 * stride], v[3 * stride], 0x44),
                                   _mm512_shuffle_f64x2(v[2 * stride], v[3 * stride], 0xEE));
    return _mm512_add_pd(_mm512_shuffle_f64x2(low, high, 0x88), _mm512_shuffle_f64x2(low, high, 0xDD));
}
#endif
} // namespace detail

LYR_INLINE F32 sumEach(const F32* v)
{
    using namespace detail;
    return addHalves(addPairs(gather128(v, 4), gather128(v + 1, 4)),
                     addPairs(gather128(v + 2, 4), gather128(v + 3, 4)));
}

LYR_INLINE F64 sumEach(const F64* v)
{
    return detail::addPairs(detail::gather128(v, 2), detail::gather128(v + 1, 2));
}

} // namespace lyr::LYR_NS
