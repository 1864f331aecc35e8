// Loads and stores: whole vectors, lane masks, tails of fewer elements.
#pragma once

#include "frame/masks.hpp"
#include "frame/simd_types.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>

// A memory checker would report the load of a whole last unit, and a thread checker one whose rest another thread
// writes or has freed, so that under them the tail is taken as the unaligned kernels take it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define LYR_MEMORY_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define LYR_MEMORY_CHECKED 1
#endif
#endif
#if !defined(LYR_MEMORY_CHECKED)
#define LYR_MEMORY_CHECKED 0
#endif

namespace lyr::LYR_NS {

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

} // namespace lyr::LYR_NS
