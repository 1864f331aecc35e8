// Arithmetic that no operator writes: fused sums, limits, roots, estimates, conversions in place, masks as one answer.
#pragma once

#include "frame/simd_types.hpp"

#include <cstdint>

namespace lyr::LYR_NS {

// a * b + c and c - a * b: fused where the processor has it. For sums whose order and roundings are free, and only
// there.
LYR_INLINE F32 mulAdd(F32 a, F32 b, F32 c)
{
#if LYR_WIDTH == 128
    return a * b + c;
#else
    return LYR_SIMD(fmadd_ps)(a, b, c);
#endif
}
LYR_INLINE F64 mulAdd(F64 a, F64 b, F64 c)
{
#if LYR_WIDTH == 128
    return a * b + c;
#else
    return LYR_SIMD(fmadd_pd)(a, b, c);
#endif
}
LYR_INLINE F32 mulSub(F32 a, F32 b, F32 c)
{
#if LYR_WIDTH == 128
    return c - a * b;
#else
    return LYR_SIMD(fnmadd_ps)(a, b, c);
#endif
}
LYR_INLINE F64 mulSub(F64 a, F64 b, F64 c)
{
#if LYR_WIDTH == 128
    return c - a * b;
#else
    return LYR_SIMD(fnmadd_pd)(a, b, c);
#endif
}

LYR_INLINE F32 min(F32 a, F32 b)
{
    return LYR_SIMD(min_ps)(a, b);
}
LYR_INLINE F32 max(F32 a, F32 b)
{
    return LYR_SIMD(max_ps)(a, b);
}
LYR_INLINE F64 min(F64 a, F64 b)
{
    return LYR_SIMD(min_pd)(a, b);
}
LYR_INLINE F64 max(F64 a, F64 b)
{
    return LYR_SIMD(max_pd)(a, b);
}
LYR_INLINE I32 min(I32 a, I32 b)
{
    return a < b ? a : b;
}
LYR_INLINE I32 max(I32 a, I32 b)
{
    return a > b ? a : b;
}

LYR_INLINE F32 sqrt(F32 a)
{
    return LYR_SIMD(sqrt_ps)(a);
}
LYR_INLINE F64 sqrt(F64 a)
{
    return LYR_SIMD(sqrt_pd)(a);
}

// To 32-bit integers in the rounding mode in force; out of range gives -2^31.
LYR_INLINE I32 toInt(F32 a)
{
    return as<I32>(LYR_SIMD(cvtps_epi32)(a));
}
LYR_INLINE I32 truncateToInt(F32 a)
{
    return as<I32>(LYR_SIMD(cvttps_epi32)(a));
}
LYR_INLINE F32 toFloat(I32 a)
{
    return LYR_SIMD(cvtepi32_ps)(as<detail::Register>(a));
}

// One bit for each lane's sign.
LYR_INLINE unsigned signBits(F32 a)
{
#if LYR_WIDTH == 512
    return _mm512_movepi32_mask(_mm512_castps_si512(a));
#else
    return static_cast<unsigned>(LYR_SIMD(movemask_ps)(a));
#endif
}
LYR_INLINE unsigned signBits(F64 a)
{
#if LYR_WIDTH == 512
    return _mm512_movepi64_mask(_mm512_castpd_si512(a));
#else
    return static_cast<unsigned>(LYR_SIMD(movemask_pd)(a));
#endif
}

// As toInt, limited to 32 bits; NaN gives 2^31 - 1.
LYR_INLINE I32 toIntLimited(F32 a)
{
    return a < splat(0x1p31F) ? toInt(a) : splat(std::int32_t{INT32_MAX});
}

LYR_INLINE F32 abs(F32 a)
{
    return as<F32>(as<I32>(a) & splat(std::int32_t{0x7FFFFFFF}));
}

// A mask from a comparison has any, or all, of its lanes set.
LYR_INLINE bool any(I32 mask)
{
    return signBits(as<F32>(mask)) != 0;
}
LYR_INLINE bool any(I64 mask)
{
    return signBits(as<F64>(mask)) != 0;
}
LYR_INLINE bool all(I32 mask)
{
    return signBits(as<F32>(mask)) == (1U << lanes<F32>)-1;
}
LYR_INLINE bool all(I64 mask)
{
    return signBits(as<F64>(mask)) == (1U << lanes<F64>)-1;
}

// Estimates with 12 bits, the same at every width: refined or not, a function promises what these and its formula give.
#if LYR_WIDTH != 512
LYR_INLINE F32 reciprocalEstimate(F32 a)
{
    return LYR_SIMD(rcp_ps)(a);
}
LYR_INLINE F32 reciprocalRootEstimate(F32 a)
{
    return LYR_SIMD(rsqrt_ps)(a);
}
#else
LYR_INLINE F32 reciprocalEstimate(F32 a)
{
    const __m256 low = _mm256_rcp_ps(_mm512_castps512_ps256(a));
    const __m256 high = _mm256_rcp_ps(_mm512_extractf32x8_ps(a, 1));
    return _mm512_insertf32x8(_mm512_castps256_ps512(low), high, 1);
}
LYR_INLINE F32 reciprocalRootEstimate(F32 a)
{
    const __m256 low = _mm256_rsqrt_ps(_mm512_castps512_ps256(a));
    const __m256 high = _mm256_rsqrt_ps(_mm512_extractf32x8_ps(a, 1));
    return _mm512_insertf32x8(_mm512_castps256_ps512(low), high, 1);
}
#endif

} // namespace lyr::LYR_NS
