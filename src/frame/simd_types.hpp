// The vector types of a width, their lanes, and one number in every lane.
#pragma once

#include "frame/width.hpp"

#include <cstdint>
#include <immintrin.h>

#if !defined(LYR_WIDTH)
#error "the vector layer is for kernel sources, which the build compiles once for each width"
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

// The processor's functions, whose names differ between the widths in their beginning alone, and its register of
// integers.
namespace detail {
#if LYR_WIDTH == 128
#define LYR_SIMD(NAME) _mm_##NAME
using Register = __m128i;
#elif LYR_WIDTH == 256
#define LYR_SIMD(NAME) _mm256_##NAME
using Register = __m256i;
#else
#define LYR_SIMD(NAME) _mm512_##NAME
using Register = __m512i;
#endif
} // namespace detail

// Same bits, another type of the same size.
template <class To, class From>
LYR_INLINE To as(From v)
{
    static_assert(sizeof(To) == sizeof(From));
    return reinterpret_cast<To>(v);
}

// --------------------------------------------------------------------------------------------------------------- splat

LYR_INLINE F32 splat(float x)
{
    return LYR_SIMD(set1_ps)(x);
}
LYR_INLINE F64 splat(double x)
{
    return LYR_SIMD(set1_pd)(x);
}
LYR_INLINE I32 splat(std::int32_t x)
{
    return as<I32>(LYR_SIMD(set1_epi32)(x));
}
LYR_INLINE I16 splat(std::int16_t x)
{
    return as<I16>(LYR_SIMD(set1_epi16)(x));
}

} // namespace lyr::LYR_NS
