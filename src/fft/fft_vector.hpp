// Vectors of 4, 8 and 16 singles side by side, for the kernels of the real transform: a small transform takes narrow
// vectors whatever the widest are. Included by kernel sources only.
#pragma once

#include "frame/simd.hpp"
#include "frame/simd_shuffle.hpp"

#include <type_traits>
#include <utility>

namespace lyr::LYR_NS::fft {

// clang-format off
template <int W> struct VectorOfLanes;
template <> struct VectorOfLanes<1> { using type = float; };
template <> struct VectorOfLanes<4> { using type = float __attribute__((vector_size(16))); };
template <> struct VectorOfLanes<8> { using type = float __attribute__((vector_size(32))); };
template <> struct VectorOfLanes<16> { using type = float __attribute__((vector_size(64))); };
// clang-format on
template <int W>
using Vec = typename VectorOfLanes<W>::type;

template <class V>
inline constexpr int width = static_cast<int>(sizeof(V) / sizeof(float));

// A complex number in each lane.
template <class V>
struct Complex
{
    V re;
    V im;
};

template <class V>
LYR_INLINE V loadAt(const float* p)
{
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
LYR_INLINE void storeAt(float* p, V v)
{
    __builtin_memcpy(p, &v, sizeof v);
}

template <class V>
LYR_INLINE V all(float x)
{
    if constexpr (sizeof(V) == 4) {
        return x;
    } else if constexpr (sizeof(V) == 16) {
        return reinterpret_cast<V>(_mm_set1_ps(x));
#if LYR_WIDTH >= 256
    } else if constexpr (sizeof(V) == 32) {
        return reinterpret_cast<V>(_mm256_set1_ps(x));
#endif
#if LYR_WIDTH >= 512
    } else {
        return reinterpret_cast<V>(_mm512_set1_ps(x));
#endif
    }
}

// a * b + c and c - a * b: fused where the processor has it, as roundings are free here.
template <class V>
LYR_INLINE V fusedAdd(V a, V b, V c)
{
#if LYR_WIDTH >= 256
    if constexpr (sizeof(V) == 4) {
        return __builtin_fmaf(a, b, c);
    } else if constexpr (sizeof(V) == 16) {
        return reinterpret_cast<V>(_mm_fmadd_ps(a, b, c));
    } else if constexpr (sizeof(V) == 32) {
        return reinterpret_cast<V>(_mm256_fmadd_ps(a, b, c));
#if LYR_WIDTH >= 512
    } else {
        return reinterpret_cast<V>(_mm512_fmadd_ps(a, b, c));
#endif
    }
#else
    return a * b + c;
#endif
}

template <class V>
LYR_INLINE V fusedSub(V a, V b, V c)
{
#if LYR_WIDTH >= 256
    if constexpr (sizeof(V) == 4) {
        return __builtin_fmaf(-a, b, c);
    } else if constexpr (sizeof(V) == 16) {
        return reinterpret_cast<V>(_mm_fnmadd_ps(a, b, c));
    } else if constexpr (sizeof(V) == 32) {
        return reinterpret_cast<V>(_mm256_fnmadd_ps(a, b, c));
#if LYR_WIDTH >= 512
    } else {
        return reinterpret_cast<V>(_mm512_fnmadd_ps(a, b, c));
#endif
    }
#else
    return c - a * b;
#endif
}

// --------------------------------------------------------------------------------------------------------- statements

// A number as a type. The standard's has a conversion that, where nothing is inlined, is a function outside the width's
// namespace.
template <int N>
struct Constant
{
    LYR_INLINE constexpr operator int() const { return N; }
};

// body(0), body(1), ... body(N - 1) with the number as a constant, so that arrays indexed by it stay in registers.
template <int N, class Body>
LYR_INLINE void unroll(Body body)
{
    [&]<int... I>(std::integer_sequence<int, I...>) __attribute__((always_inline))
    {
        (body(Constant<I>{}), ...);
    }
    (std::make_integer_sequence<int, N>{});
}

// ----------------------------------------------------------------------------------------------------------- shuffles

// clang-format off
struct InterleaveLow { LYR_INLINE static constexpr int at(int i, int w) { return i / 2 + (i % 2) * w; } };
struct InterleaveHigh { LYR_INLINE static constexpr int at(int i, int w) { return (w + i) / 2 + (i % 2) * w; } };
struct ReversedLow { LYR_INLINE static constexpr int at(int i, int w) { return w - 1 - i / 2 + (i % 2) * w; } };
struct ReversedHigh { LYR_INLINE static constexpr int at(int i, int w) { return w / 2 - 1 - i / 2 + (i % 2) * w; } };
// The lanes of a in the order 0, W-1, W-2, ..., 1, with lane 0 from b.
struct Mirrored { LYR_INLINE static constexpr int at(int i, int w) { return i == 0 ? w : w - i; } };
struct Backwards { LYR_INLINE static constexpr int at(int i, int w) { return w - 1 - i; } };
struct EvenReversed { LYR_INLINE static constexpr int at(int i, int w) { return 2 * (w - 1 - i); } };
struct OddReversed { LYR_INLINE static constexpr int at(int i, int w) { return 2 * (w - 1 - i) + 1; } };
// Within each 128 bits, and then these as units.
struct UnpackLow1 { LYR_INLINE static constexpr int at(int i, int w) { return i / 4 * 4 + (i % 4) / 2 + (i % 2) * w; } };
struct UnpackHigh1 { LYR_INLINE static constexpr int at(int i, int w) { return i / 4 * 4 + 2 + (i % 4) / 2 + (i % 2) * w; } };
struct UnpackLow2 { LYR_INLINE static constexpr int at(int i, int w) { return i / 4 * 4 + i % 2 + (i % 4) / 2 * w; } };
struct UnpackHigh2 { LYR_INLINE static constexpr int at(int i, int w) { return i / 4 * 4 + 2 + i % 2 + (i % 4) / 2 * w; } };
struct EvenUnits { LYR_INLINE static constexpr int at(int i, int) { return i / 4 * 8 + i % 4; } };
struct OddUnits { LYR_INLINE static constexpr int at(int i, int) { return i / 4 * 8 + 4 + i % 4; } };
// clang-format on

// W complex numbers (re, im, re, im, ...) as two vectors, and back; the reversed forms take or leave the last number
// first.
template <class V>
LYR_INLINE Complex<V> loadPairs(const float* p)
{
    if constexpr (width<V> == 1) {
        return {p[0], p[1]};
    } else {
        const V a = loadAt<V>(p);
        const V b = loadAt<V>(p + width<V>);
        return {shuffle<EvenLanes>(a, b), shuffle<OddLanes>(a, b)};
    }
}

template <class V>
LYR_INLINE Complex<V> loadPairsReversed(const float* p)
{
    if constexpr (width<V> == 1) {
        return loadPairs<V>(p);
    } else {
        const V a = loadAt<V>(p);
        const V b = loadAt<V>(p + width<V>);
        return {shuffle<EvenReversed>(a, b), shuffle<OddReversed>(a, b)};
    }
}

template <class V>
LYR_INLINE void storePairs(float* p, Complex<V> z)
{
    if constexpr (width<V> == 1) {
        p[0] = z.re;
        p[1] = z.im;
    } else {
        storeAt(p, shuffle<InterleaveLow>(z.re, z.im));
        storeAt(p + width<V>, shuffle<InterleaveHigh>(z.re, z.im));
    }
}

template <class V>
LYR_INLINE void storePairsReversed(float* p, Complex<V> z)
{
    if constexpr (width<V> == 1) {
        storePairs(p, z);
    } else {
        storeAt(p, shuffle<ReversedLow>(z.re, z.im));
        storeAt(p + width<V>, shuffle<ReversedHigh>(z.re, z.im));
    }
}

// W real parts and behind them W imaginary parts.
template <class V>
LYR_INLINE Complex<V> loadRow(const float* p)
{
    return {loadAt<V>(p), loadAt<V>(p + width<V>)};
}

template <class V>
LYR_INLINE void storeRow(float* p, Complex<V> z)
{
    storeAt(p, z.re);
    storeAt(p + width<V>, z.im);
}

// Rows become columns: W vectors of W lanes.
template <class V>
LYR_INLINE void transpose(V (&v)[width<V>])
{
    constexpr int w = width<V>;
    constexpr int units = w / 4;
    V u[units][4]; // unit q of u[g][c]: column 4*q + c of the rows 4*g to 4*g + 3
    unroll<units>([&](auto g) __attribute__((always_inline)) {
        const V low01 = shuffle<UnpackLow1>(v[4 * g], v[4 * g + 1]);
        const V high01 = shuffle<UnpackHigh1>(v[4 * g], v[4 * g + 1]);
        const V low23 = shuffle<UnpackLow1>(v[4 * g + 2], v[4 * g + 3]);
        const V high23 = shuffle<UnpackHigh1>(v[4 * g + 2], v[4 * g + 3]);
        u[g][0] = shuffle<UnpackLow2>(low01, low23);
        u[g][1] = shuffle<UnpackHigh2>(low01, low23);
        u[g][2] = shuffle<UnpackLow2>(high01, high23);
        u[g][3] = shuffle<UnpackHigh2>(high01, high23);
    });
    unroll<4>([&](auto c) __attribute__((always_inline)) {
        if constexpr (units == 1) {
            v[c] = u[0][c];
        } else if constexpr (units == 2) {
            v[c] = shuffle<EvenUnits>(u[0][c], u[1][c]);
            v[4 + c] = shuffle<OddUnits>(u[0][c], u[1][c]);
        } else {
            const V even01 = shuffle<EvenUnits>(u[0][c], u[1][c]);
            const V even23 = shuffle<EvenUnits>(u[2][c], u[3][c]);
            const V odd01 = shuffle<OddUnits>(u[0][c], u[1][c]);
            const V odd23 = shuffle<OddUnits>(u[2][c], u[3][c]);
            v[c] = shuffle<EvenUnits>(even01, even23);
            v[8 + c] = shuffle<OddUnits>(even01, even23);
            v[4 + c] = shuffle<EvenUnits>(odd01, odd23);
            v[12 + c] = shuffle<OddUnits>(odd01, odd23);
        }
    });
}

} // namespace lyr::LYR_NS::fft
