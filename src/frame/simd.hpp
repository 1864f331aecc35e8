// The vector layer of the kernels: one set of names over vectors of 128, 256 or 512 bits.
//
// The types are the compilers' own vector types, so + - * / & | ^ ~ << >>, comparisons (which give lanes of all ones or
// zero) and `m ? a : b` are written as for numbers. What the language has no operator for is a function below. Integer
// lanes that may leave their range are U32, U64, U16: signed ones may not overflow here any more than elsewhere.
//
// A load or store names its alignment: Aligned (the 16-byte rule of the interface) or Unaligned. A tail of n elements,
// 1 <= n < lanes (from 256 bits on also n = lanes), comes with loadTail: the lanes beyond are zero and no byte past the
// end is read, save in the aligned 128-bit form, whose load ends inside the 16-byte unit of the last element and so can
// touch no new page.
#pragma once

#include "frame/masks.hpp"
#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

#if !defined(LYR_WIDTH)
#error "simd.hpp is for kernel sources, which the build compiles once for each width"
#endif

// A memory checker would report the load of a whole last unit, so that under one the tail is taken as the unaligned
// kernels take it.
#if defined(__SANITIZE_ADDRESS__)
#define LYR_MEMORY_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define LYR_MEMORY_CHECKED 1
#endif
#endif
#if !defined(LYR_MEMORY_CHECKED)
#define LYR_MEMORY_CHECKED 0
#endif

namespace lyr::LYR_NS {

inline constexpr int vectorBytes = LYR_WIDTH / 8;

using F32 = float __attribute__((vector_size(vectorBytes)));
using F64 = double __attribute__((vector_size(vectorBytes)));
using I8 = signed char __attribute__((vector_size(vectorBytes)));
using U8 = unsigned char __attribute__((vector_size(vectorBytes)));
using I16 = std::int16_t __attribute__((vector_size(vectorBytes)));
using U16 = std::uint16_t __attribute__((vector_size(vectorBytes)));
using I32 = std::int32_t __attribute__((vector_size(vectorBytes)));
using U32 = std::uint32_t __attribute__((vector_size(vectorBytes)));
// Lanes of 64 bits: the type that the comparison of doubles gives.
using I64 = decltype(F64{} < F64{});
using U64 = unsigned long long __attribute__((vector_size(vectorBytes)));

template <class V>
inline constexpr int lanes = static_cast<int>(sizeof(V) / sizeof(V{}[0]));

// The vector of an element type: VectorOf<float> is F32.
template <class T>
struct VectorOfElement;
template <>
struct VectorOfElement<float>
{
    using type = F32;
};
template <>
struct VectorOfElement<double>
{
    using type = F64;
};
template <>
struct VectorOfElement<std::int16_t>
{
    using type = I16;
};
template <>
struct VectorOfElement<std::int32_t>
{
    using type = I32;
};
template <>
struct VectorOfElement<std::uint8_t>
{
    using type = U8;
};
template <class T>
using VectorOf = typename VectorOfElement<T>::type;

struct Unaligned
{};
#if LYR_WIDTH == 128
struct Aligned
{};
#else
using Aligned = Unaligned; // 16 bytes say nothing about a wider load, and the two kernels of a pair become one
#endif

// Same bits, another type of the same size.
template <class To, class From>
LYR_INLINE To as(From v)
{
    static_assert(sizeof(To) == sizeof(From));
    return reinterpret_cast<To>(v);
}

// --------------------------------------------------------------------------------------------------------------- splat

#if LYR_WIDTH == 128
LYR_INLINE F32 splat(float x)
{
    return _mm_set1_ps(x);
}
LYR_INLINE F64 splat(double x)
{
    return _mm_set1_pd(x);
}
LYR_INLINE I32 splat(std::int32_t x)
{
    return as<I32>(_mm_set1_epi32(x));
}
LYR_INLINE I16 splat(std::int16_t x)
{
    return as<I16>(_mm_set1_epi16(x));
}
#elif LYR_WIDTH == 256
LYR_INLINE F32 splat(float x)
{
    return _mm256_set1_ps(x);
}
LYR_INLINE F64 splat(double x)
{
    return _mm256_set1_pd(x);
}
LYR_INLINE I32 splat(std::int32_t x)
{
    return as<I32>(_mm256_set1_epi32(x));
}
LYR_INLINE I16 splat(std::int16_t x)
{
    return as<I16>(_mm256_set1_epi16(x));
}
#else
LYR_INLINE F32 splat(float x)
{
    return _mm512_set1_ps(x);
}
LYR_INLINE F64 splat(double x)
{
    return _mm512_set1_pd(x);
}
LYR_INLINE I32 splat(std::int32_t x)
{
    return as<I32>(_mm512_set1_epi32(x));
}
LYR_INLINE I16 splat(std::int16_t x)
{
    return as<I16>(_mm512_set1_epi16(x));
}
#endif

// ------------------------------------------------------------------------------------------------------ whole vectors

template <class A, class T>
LYR_INLINE VectorOf<T> load(const T* p)
{
    VectorOf<T> v;
    std::memcpy(&v, LYR_WIDTH == 128 && __is_same(A, Aligned) ? __builtin_assume_aligned(p, 16) : p, sizeof v);
    return v;
}

template <class A, class T>
LYR_INLINE void store(T* p, VectorOf<T> v)
{
    std::memcpy(LYR_WIDTH == 128 && __is_same(A, Aligned) ? __builtin_assume_aligned(p, 16) : p, &v, sizeof v);
}

// -------------------------------------------------------------------------------------------------------------- tails

// Lane masks: the first n lanes set. 0 <= n <= lanes.
#if LYR_WIDTH == 512
LYR_INLINE I32 firstLanes32(int n)
{
    return as<I32>(_mm512_movm_epi32(static_cast<__mmask16>((1U << n) - 1)));
}
LYR_INLINE I64 firstLanes64(int n)
{
    return as<I64>(_mm512_movm_epi64(static_cast<__mmask8>((1U << n) - 1)));
}
LYR_INLINE I16 firstLanes16(int n)
{
    return as<I16>(_mm512_movm_epi16(static_cast<__mmask32>((std::uint64_t{1} << n) - 1)));
}
#else
namespace detail {
template <class V>
LYR_INLINE V maskAt(int bytes)
{
    V v;
    std::memcpy(&v, reinterpret_cast<const char*>(slidingMask32 + 16) - bytes, sizeof v);
    return v;
}
} // namespace detail
LYR_INLINE I32 firstLanes32(int n)
{
    return detail::maskAt<I32>(4 * n);
}
LYR_INLINE I64 firstLanes64(int n)
{
    return detail::maskAt<I64>(8 * n);
}
LYR_INLINE I16 firstLanes16(int n)
{
    return detail::maskAt<I16>(2 * n);
}
#endif

// The mask for lanes of an element type.
template <class T>
LYR_INLINE auto firstLanes(int n)
{
    if constexpr (sizeof(T) == 8) {
        return firstLanes64(n);
    } else if constexpr (sizeof(T) == 4) {
        return firstLanes32(n);
    } else {
        return firstLanes16(n);
    }
}

namespace detail {

#if LYR_WIDTH == 128
// n bytes at p, 4 <= n <= 15 and a multiple of 4, in the low end of a vector of zeros.
LYR_INLINE __m128i loadWords(const void* p, int n)
{
    const auto* words = static_cast<const char*>(p);
    if (n < 8) {
        return _mm_loadu_si32(words);
    }
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(words));
    return n < 12 ? low : _mm_unpacklo_epi64(low, _mm_loadu_si32(words + 8));
}

LYR_INLINE void storeWords(void* p, __m128i v, int n)
{
    auto* words = static_cast<char*>(p);
    if (n < 8) {
        _mm_storeu_si32(words, v);
        return;
    }
    _mm_storel_epi64(reinterpret_cast<__m128i*>(words), v);
    if (n >= 12) {
        _mm_storeu_si32(words + 8, _mm_unpackhi_epi64(v, v));
    }
}
#endif

} // namespace detail

// The first n elements at p and zeros behind them, 1 <= n < lanes.
template <class A>
LYR_INLINE F32 loadTail(const float* p, int n)
{
#if LYR_WIDTH == 128
    if constexpr (__is_same(A, Aligned) && !LYR_MEMORY_CHECKED) {
        return _mm_and_ps(_mm_load_ps(p), _mm_load_ps(reinterpret_cast<const float*>(OutMask32f[n])));
    } else {
        return _mm_castsi128_ps(detail::loadWords(p, 4 * n));
    }
#elif LYR_WIDTH == 256
    return _mm256_maskload_ps(p, as<__m256i>(firstLanes32(n)));
#else
    return _mm512_maskz_loadu_ps(static_cast<__mmask16>((1U << n) - 1), p);
#endif
}

template <class A>
LYR_INLINE I32 loadTail(const std::int32_t* p, int n)
{
#if LYR_WIDTH == 128
    if constexpr (__is_same(A, Aligned) && !LYR_MEMORY_CHECKED) {
        return as<I32>(_mm_and_si128(_mm_load_si128(reinterpret_cast<const __m128i*>(p)),
                                     _mm_load_si128(reinterpret_cast<const __m128i*>(OutMask32f[n]))));
    } else {
        return as<I32>(detail::loadWords(p, 4 * n));
    }
#elif LYR_WIDTH == 256
    return as<I32>(_mm256_maskload_epi32(p, as<__m256i>(firstLanes32(n))));
#else
    return as<I32>(_mm512_maskz_loadu_epi32(static_cast<__mmask16>((1U << n) - 1), p));
#endif
}

template <class A>
LYR_INLINE F64 loadTail(const double* p, [[maybe_unused]] int n)
{
#if LYR_WIDTH == 128
    return _mm_load_sd(p);
#elif LYR_WIDTH == 256
    return _mm256_maskload_pd(p, as<__m256i>(firstLanes64(n)));
#else
    return _mm512_maskz_loadu_pd(static_cast<__mmask8>((1U << n) - 1), p);
#endif
}

template <class A>
LYR_INLINE I16 loadTail(const std::int16_t* p, int n)
{
#if LYR_WIDTH == 128
    if constexpr (__is_same(A, Aligned) && !LYR_MEMORY_CHECKED) {
        return as<I16>(_mm_and_si128(_mm_load_si128(reinterpret_cast<const __m128i*>(p)),
                                     _mm_load_si128(reinterpret_cast<const __m128i*>(OutMask[n]))));
    } else {
        const __m128i even = n < 2 ? _mm_setzero_si128() : detail::loadWords(p, 2 * n & ~3);
        if ((n & 1) == 0) {
            return as<I16>(even);
        }
        const __m128i last = _mm_and_si128(_mm_set1_epi16(p[n - 1]), as<__m128i>(firstLanes16(n)));
        return as<I16>(_mm_or_si128(even, _mm_andnot_si128(as<__m128i>(firstLanes16(n - 1)), last)));
    }
#elif LYR_WIDTH == 256
    const __m256i even = _mm256_maskload_epi32(reinterpret_cast<const int*>(p), as<__m256i>(firstLanes32(n / 2)));
    if ((n & 1) == 0) {
        return as<I16>(even);
    }
    const __m256i last = _mm256_and_si256(_mm256_set1_epi16(p[n - 1]), as<__m256i>(firstLanes16(n)));
    return as<I16>(_mm256_or_si256(even, _mm256_andnot_si256(as<__m256i>(firstLanes16(n - 1)), last)));
#else
    return as<I16>(_mm512_maskz_loadu_epi16(static_cast<__mmask32>((std::uint64_t{1} << n) - 1), p));
#endif
}

// The first n lanes to p, 1 <= n < lanes; nothing behind them is written.
LYR_INLINE void storeTail(float* p, F32 v, int n)
{
#if LYR_WIDTH == 128
    detail::storeWords(p, _mm_castps_si128(v), 4 * n);
#elif LYR_WIDTH == 256
    _mm256_maskstore_ps(p, as<__m256i>(firstLanes32(n)), v);
#else
    _mm512_mask_storeu_ps(p, static_cast<__mmask16>((1U << n) - 1), v);
#endif
}

LYR_INLINE void storeTail(std::int32_t* p, I32 v, int n)
{
#if LYR_WIDTH == 128
    detail::storeWords(p, as<__m128i>(v), 4 * n);
#elif LYR_WIDTH == 256
    _mm256_maskstore_epi32(p, as<__m256i>(firstLanes32(n)), as<__m256i>(v));
#else
    _mm512_mask_storeu_epi32(p, static_cast<__mmask16>((1U << n) - 1), as<__m512i>(v));
#endif
}

LYR_INLINE void storeTail(double* p, F64 v, [[maybe_unused]] int n)
{
#if LYR_WIDTH == 128
    _mm_store_sd(p, v);
#elif LYR_WIDTH == 256
    _mm256_maskstore_pd(p, as<__m256i>(firstLanes64(n)), v);
#else
    _mm512_mask_storeu_pd(p, static_cast<__mmask8>((1U << n) - 1), v);
#endif
}

LYR_INLINE void storeTail(std::int16_t* p, I16 v, int n)
{
#if LYR_WIDTH == 512
    _mm512_mask_storeu_epi16(p, static_cast<__mmask32>((std::uint64_t{1} << n) - 1), as<__m512i>(v));
#else
#if LYR_WIDTH == 128
    if (n >= 2) {
        detail::storeWords(p, as<__m128i>(v), 2 * n & ~3);
    }
#else
    _mm256_maskstore_epi32(reinterpret_cast<int*>(p), as<__m256i>(firstLanes32(n / 2)), as<__m256i>(v));
#endif
    if ((n & 1) != 0) {
        alignas(vectorBytes) std::int16_t lane[lanes<I16>];
        store<Aligned>(lane, v);
        p[n - 1] = lane[n - 1];
    }
#endif
}

// ----------------------------------------------------------------------------------------------------------- widening

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

// --------------------------------------------------------------------------------------------------------- arithmetic

// a * b + c and c - a * b: fused where the processor has it. For sums whose order and roundings are free, and only
// there.
#if LYR_WIDTH == 128
LYR_INLINE F32 mulAdd(F32 a, F32 b, F32 c)
{
    return a * b + c;
}
LYR_INLINE F64 mulAdd(F64 a, F64 b, F64 c)
{
    return a * b + c;
}
LYR_INLINE F32 mulSub(F32 a, F32 b, F32 c)
{
    return c - a * b;
}
LYR_INLINE F64 mulSub(F64 a, F64 b, F64 c)
{
    return c - a * b;
}
LYR_INLINE F32 min(F32 a, F32 b)
{
    return _mm_min_ps(a, b);
}
LYR_INLINE F32 max(F32 a, F32 b)
{
    return _mm_max_ps(a, b);
}
LYR_INLINE F64 min(F64 a, F64 b)
{
    return _mm_min_pd(a, b);
}
LYR_INLINE F64 max(F64 a, F64 b)
{
    return _mm_max_pd(a, b);
}
LYR_INLINE F32 sqrt(F32 a)
{
    return _mm_sqrt_ps(a);
}
LYR_INLINE F64 sqrt(F64 a)
{
    return _mm_sqrt_pd(a);
}
// To 32-bit integers in the rounding mode in force; out of range gives -2^31.
LYR_INLINE I32 toInt(F32 a)
{
    return as<I32>(_mm_cvtps_epi32(a));
}
LYR_INLINE I32 truncateToInt(F32 a)
{
    return as<I32>(_mm_cvttps_epi32(a));
}
LYR_INLINE F32 toFloat(I32 a)
{
    return _mm_cvtepi32_ps(as<__m128i>(a));
}
// One bit for each lane's sign.
LYR_INLINE unsigned signBits(F32 a)
{
    return static_cast<unsigned>(_mm_movemask_ps(a));
}
LYR_INLINE unsigned signBits(F64 a)
{
    return static_cast<unsigned>(_mm_movemask_pd(a));
}
#elif LYR_WIDTH == 256
LYR_INLINE F32 mulAdd(F32 a, F32 b, F32 c)
{
    return _mm256_fmadd_ps(a, b, c);
}
LYR_INLINE F64 mulAdd(F64 a, F64 b, F64 c)
{
    return _mm256_fmadd_pd(a, b, c);
}
LYR_INLINE F32 mulSub(F32 a, F32 b, F32 c)
{
    return _mm256_fnmadd_ps(a, b, c);
}
LYR_INLINE F64 mulSub(F64 a, F64 b, F64 c)
{
    return _mm256_fnmadd_pd(a, b, c);
}
LYR_INLINE F32 min(F32 a, F32 b)
{
    return _mm256_min_ps(a, b);
}
LYR_INLINE F32 max(F32 a, F32 b)
{
    return _mm256_max_ps(a, b);
}
LYR_INLINE F64 min(F64 a, F64 b)
{
    return _mm256_min_pd(a, b);
}
LYR_INLINE F64 max(F64 a, F64 b)
{
    return _mm256_max_pd(a, b);
}
LYR_INLINE F32 sqrt(F32 a)
{
    return _mm256_sqrt_ps(a);
}
LYR_INLINE F64 sqrt(F64 a)
{
    return _mm256_sqrt_pd(a);
}
LYR_INLINE I32 toInt(F32 a)
{
    return as<I32>(_mm256_cvtps_epi32(a));
}
LYR_INLINE I32 truncateToInt(F32 a)
{
    return as<I32>(_mm256_cvttps_epi32(a));
}
LYR_INLINE F32 toFloat(I32 a)
{
    return _mm256_cvtepi32_ps(as<__m256i>(a));
}
LYR_INLINE unsigned signBits(F32 a)
{
    return static_cast<unsigned>(_mm256_movemask_ps(a));
}
LYR_INLINE unsigned signBits(F64 a)
{
    return static_cast<unsigned>(_mm256_movemask_pd(a));
}
#else
LYR_INLINE F32 mulAdd(F32 a, F32 b, F32 c)
{
    return _mm512_fmadd_ps(a, b, c);
}
LYR_INLINE F64 mulAdd(F64 a, F64 b, F64 c)
{
    return _mm512_fmadd_pd(a, b, c);
}
LYR_INLINE F32 mulSub(F32 a, F32 b, F32 c)
{
    return _mm512_fnmadd_ps(a, b, c);
}
LYR_INLINE F64 mulSub(F64 a, F64 b, F64 c)
{
    return _mm512_fnmadd_pd(a, b, c);
}
LYR_INLINE F32 min(F32 a, F32 b)
{
    return _mm512_min_ps(a, b);
}
LYR_INLINE F32 max(F32 a, F32 b)
{
    return _mm512_max_ps(a, b);
}
LYR_INLINE F64 min(F64 a, F64 b)
{
    return _mm512_min_pd(a, b);
}
LYR_INLINE F64 max(F64 a, F64 b)
{
    return _mm512_max_pd(a, b);
}
LYR_INLINE F32 sqrt(F32 a)
{
    return _mm512_sqrt_ps(a);
}
LYR_INLINE F64 sqrt(F64 a)
{
    return _mm512_sqrt_pd(a);
}
LYR_INLINE I32 toInt(F32 a)
{
    return as<I32>(_mm512_cvtps_epi32(a));
}
LYR_INLINE I32 truncateToInt(F32 a)
{
    return as<I32>(_mm512_cvttps_epi32(a));
}
LYR_INLINE F32 toFloat(I32 a)
{
    return _mm512_cvtepi32_ps(as<__m512i>(a));
}
LYR_INLINE unsigned signBits(F32 a)
{
    return _mm512_movepi32_mask(_mm512_castps_si512(a));
}
LYR_INLINE unsigned signBits(F64 a)
{
    return _mm512_movepi64_mask(_mm512_castpd_si512(a));
}
#endif

// Likewise, limited to 32 bits; NaN gives 2^31 - 1.
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
#if LYR_WIDTH == 128
LYR_INLINE F32 reciprocalEstimate(F32 a)
{
    return _mm_rcp_ps(a);
}
LYR_INLINE F32 reciprocalRootEstimate(F32 a)
{
    return _mm_rsqrt_ps(a);
}
#elif LYR_WIDTH == 256
LYR_INLINE F32 reciprocalEstimate(F32 a)
{
    return _mm256_rcp_ps(a);
}
LYR_INLINE F32 reciprocalRootEstimate(F32 a)
{
    return _mm256_rsqrt_ps(a);
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

// --------------------------------------------------------------------------------------------------------- reductions

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
#if LYR_WIDTH == 128
LYR_INLINE F32 addPairs(F32 a, F32 b)
{
    return _mm_add_ps(_mm_unpacklo_ps(a, b), _mm_unpackhi_ps(a, b));
}
LYR_INLINE F32 addHalves(F32 a, F32 b)
{
    return _mm_add_ps(_mm_movelh_ps(a, b), _mm_movehl_ps(b, a));
}
LYR_INLINE F64 addPairs(F64 a, F64 b)
{
    return _mm_add_pd(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(a, b));
}
// The vectors k, k + stride, ... of v as one vector with 128 bits for each.
LYR_INLINE F32 gather128(const F32* v, int /*stride*/)
{
    return v[0];
}
LYR_INLINE F64 gather128(const F64* v, int /*stride*/)
{
    return v[0];
}
#elif LYR_WIDTH == 256
LYR_INLINE F32 addPairs(F32 a, F32 b)
{
    return _mm256_add_ps(_mm256_unpacklo_ps(a, b), _mm256_unpackhi_ps(a, b));
}
LYR_INLINE F32 addHalves(F32 a, F32 b)
{
    return _mm256_add_ps(_mm256_shuffle_ps(a, b, 0x44), _mm256_shuffle_ps(a, b, 0xEE));
}
LYR_INLINE F64 addPairs(F64 a, F64 b)
{
    return _mm256_add_pd(_mm256_unpacklo_pd(a, b), _mm256_unpackhi_pd(a, b));
}
LYR_INLINE F32 gather128(const F32* v, int stride)
{
    return _mm256_add_ps(_mm256_permute2f128_ps(v[0], v[stride], 0x20), _mm256_permute2f128_ps(v[0], v[stride], 0x31));
}
LYR_INLINE F64 gather128(const F64* v, int stride)
{
    return _mm256_add_pd(_mm256_permute2f128_pd(v[0], v[stride], 0x20), _mm256_permute2f128_pd(v[0], v[stride], 0x31));
}
#else
LYR_INLINE F32 addPairs(F32 a, F32 b)
{
    return _mm512_add_ps(_mm512_unpacklo_ps(a, b), _mm512_unpackhi_ps(a, b));
}
LYR_INLINE F32 addHalves(F32 a, F32 b)
{
    return _mm512_add_ps(_mm512_shuffle_ps(a, b, 0x44), _mm512_shuffle_ps(a, b, 0xEE));
}
LYR_INLINE F64 addPairs(F64 a, F64 b)
{
    return _mm512_add_pd(_mm512_unpacklo_pd(a, b), _mm512_unpackhi_pd(a, b));
}
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
