// Exponential and sine of whole vectors, within two units in the last place of the exact value as rounded. A quotient
// of the sine adds one of its own: sin(x) / x in double precision is within three. Polynomials interpolate at the
// Chebyshev nodes of the reduced range, the coefficients rounded to the type; reductions subtract a constant in parts
// short enough that their products with the multiple are exact (Cody and Waite, Software Manual for the Elementary
// Functions, 1980).
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

// The nearest whole number, whatever the rounding mode; |x| below 2^31.
LYR_INLINE F32 nearest(F32 x)
{
#if LYR_WIDTH == 128
    const F32 half = as<F32>((as<U32>(x) & 0x80000000U) | as<U32>(splat(0.5F)));
    return toFloat(truncateToInt(x + half));
#elif LYR_WIDTH == 256
    return _mm256_round_ps(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
#else
    return _mm512_roundscale_ps(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
#endif
}

LYR_INLINE F64 nearest(F64 x)
{
#if LYR_WIDTH == 128
    const F64 half = as<F64>((as<U64>(x) & as<U64>(splat(-0.0))) | as<U64>(splat(0.5)));
    return _mm_cvtepi32_pd(_mm_cvttpd_epi32(x + half));
#elif LYR_WIDTH == 256
    return _mm256_round_pd(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
#else
    return _mm512_roundscale_pd(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
#endif
}

namespace detail {

// A whole number, in the low bits of the sum with this: 1.5 * 2^52.
inline constexpr double wholeInLowBits = 0x1.8p52;

// 2^n for a whole n, 2^n normal.
LYR_INLINE F32 powerOfTwo(F32 n)
{
    return as<F32>((as<U32>(toInt(n)) + 127U) << 23U);
}
LYR_INLINE F64 powerOfTwo(F64 n)
{
    return as<F64>((as<U64>(n + wholeInLowBits) + 1023ULL) << 52U);
}

// x * 2^n in two steps, so that neither an n at the ends of the range nor a subnormal result is out of reach.
template <class V>
LYR_INLINE V scaled(V x, V n)
{
    using T = decltype(V{}[0] + V{}[0]);
    const V half = nearest(n * T(0.5));
    return x * powerOfTwo(half) * powerOfTwo(n - half);
}

// c[0] + c[1] x + ... + c[N-1] x^(N-1)
template <class V, class T, int N>
LYR_INLINE V polynomial(V x, const T (&c)[N])
{
    V sum = splat(c[N - 1]);
    for (int i = N - 2; i >= 0; --i) {
        sum = mulAdd(sum, x, splat(c[i]));
    }
    return sum;
}

template <class T>
struct ExponentialConstants;

// Relative error of the polynomials: 2^-26 in single, 2^-55 in double precision.
template <>
struct ExponentialConstants<float>
{
    static constexpr float lowest = -105.0F; // where even the smallest number is far off
    static constexpr float highest = 89.0F;
    static constexpr float perLn2 = 1.44269504F;
    static constexpr float ln2High = 0x1.62e4p-1F; // 15 bits
    static constexpr float ln2Low = 0x1.7f7d1cp-20F;
    static constexpr float c[] = {0.5F, 0x1.5554dcp-3F, 0x1.55551ap-5F, 0x1.120b6ep-7F, 0x1.6d110ap-10F};
};

template <>
struct ExponentialConstants<double>
{
    static constexpr double lowest = -746.0;
    static constexpr double highest = 710.0;
    static constexpr double perLn2 = 1.4426950408889634;
    static constexpr double ln2High = 0x1.62e42fefa38p-1; // 42 bits
    static constexpr double ln2Low = 0x1.ef35793c76730p-45;
    static constexpr double c[] = {0x1.0000000000001p-1,  0x1.5555555555556p-3,  0x1.5555555553d63p-5,
                                   0x1.11111111109b3p-7,  0x1.6c16c1788bd90p-10, 0x1.a01a01a7c41d5p-13,
                                   0x1.a019b90d2ae7ap-16, 0x1.71de0dae63bb3p-19, 0x1.289185613a3d6p-22,
                                   0x1.af38a9b0ec855p-26};
};

} // namespace detail

// e^x: infinity above the range, subnormal results and zero below it, NaN for NaN.
template <class V>
LYR_INLINE V exp(V x)
{
    using Constants = detail::ExponentialConstants<decltype(V{}[0] + V{}[0])>;
    // These give their second operand where one is NaN.
    const V limited = min(splat(Constants::highest), max(splat(Constants::lowest), x));
    const V n = nearest(limited * Constants::perLn2);
    const V r = mulSub(n, splat(Constants::ln2Low), mulSub(n, splat(Constants::ln2High), limited));
    const V tail = mulAdd(r * r, detail::polynomial(r, Constants::c), r);
    return detail::scaled(decltype(V{}[0] + V{}[0]){1} + tail, n);
}

namespace detail {

// sin(r) / r - 1 over r^2, on |r| <= pi / 2: relative error of the sine 2^-33 and 2^-54.
struct SineToSingle
{
    static constexpr double c[] = {-0.16666666663878466, 0.008333332768305049, -0.00019841086452506194,
                                   2.753645532390914e-06, -2.407999973210464e-08};
};

struct SineToDouble
{
    static constexpr double c[] = {-0.16666666666666666,   0.008333333333333316,    -0.00019841269841254955,
                                   2.755731921915843e-06,  -2.5052107616384595e-08, 1.6058977272815506e-10,
                                   -7.643969031052769e-13, 2.731428986122616e-15};
};

} // namespace detail

// Up to this magnitude the products of the reduction are exact.
inline constexpr double largestForSine = 0x1p21;

// sin x for |x| <= largestForSine; NaN for NaN.
template <class Precision>
LYR_INLINE F64 sin(F64 x)
{
    const F64 n = nearest(x * 0.3183098861837907);
    // Pi in parts of 33, 33 and 53 bits.
    F64 r = mulSub(n, splat(0x1.921fb544p+1), x);
    r = mulSub(n, splat(0x1.0b4611a6p-33), r);
    r = mulSub(n, splat(0x1.3198a2e037073p-68), r);
    const F64 square = r * r;
    const F64 sine = mulAdd(r * square, detail::polynomial(square, Precision::c), r);
    const U64 odd = as<U64>(n + detail::wholeInLowBits) << 63U;
    return as<F64>(as<U64>(sine) ^ odd);
}

} // namespace lyr::LYR_NS
