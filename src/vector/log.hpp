// The natural logarithm of single-precision lanes, within 2 units in the last place.
//
// x = 2^k * m with m from sqrt(1/2) to sqrt(2), the split lying at the mantissa field 3474674; then ln x = k ln 2 + ln
// m, and ln m = f + f^2 P(f) with f = m - 1 and P of minimal relative error (Remez), 2^-25. As k is 0 wherever ln x is
// small, nothing cancels.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

namespace detail {

// ln x + exponent * ln 2 of positive normal lanes.
LYR_INLINE F32 lnNormal(F32 x, F32 exponent)
{
    constexpr std::int32_t rootOfHalf = 0x3F3504F3; // its mantissa field is the first above the split
    const U32 offset = as<U32>(x) - as<U32>(splat(rootOfHalf));
    const I32 k = as<I32>(offset) >> 23;
    const F32 f = as<F32>(as<U32>(x) - (as<U32>(k) << 23)) - splat(1.0F);
    F32 p = splat(0.0873484463F);
    p = mulAdd(p, f, splat(-0.143075213F));
    p = mulAdd(p, f, splat(0.149179727F));
    p = mulAdd(p, f, splat(-0.165705077F));
    p = mulAdd(p, f, splat(0.199620724F));
    p = mulAdd(p, f, splat(-0.250017554F));
    p = mulAdd(p, f, splat(0.333339512F));
    p = mulAdd(p, f, splat(-0.499999911F));
    const F32 lnM = mulAdd(f * f, p, f);
    return mulAdd(toFloat(k) + exponent, splat(0.693147182F), lnM);
}

} // namespace detail

// Lanes that are no positive normal number.
LYR_INLINE I32 beyondNormal(F32 x)
{
    // Moved so that the normal numbers, 0x00800000 to 0x7F7FFFFF, are the least of the signed integers.
    const I32 place = as<I32>(as<U32>(x) + as<U32>(splat(std::int32_t{0x7F800000})));
    return place > splat(std::int32_t{INT32_MIN + 0x7EFFFFFF});
}

// For positive normal lanes; others give any number.
LYR_INLINE F32 lnNormal(F32 x)
{
    return detail::lnNormal(x, F32{});
}

// For all lanes: a zero of either sign gives minus infinity, a negative number NaN; a NaN and plus infinity stay as
// they are.
LYR_INLINE F32 ln(F32 x)
{
    const auto subnormal = x < splat(0x1p-126F);
    const F32 y = detail::lnNormal(subnormal ? x * splat(0x1p23F) : x, subnormal ? splat(-23.0F) : F32{});
    const F32 positive = x < splat(__builtin_inff()) ? y : x;
    const F32 other = x == F32{} ? splat(-__builtin_inff()) : splat(__builtin_nanf(""));
    return x > F32{} ? positive : (x != x ? x : other);
}

} // namespace lyr::LYR_NS
