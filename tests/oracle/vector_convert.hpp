// Conversions between element types, one element at a time.
#pragma once

#include "lyrsr.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace lyr::oracle {

// 2^(-s) as repeated halving or doubling of a single gives it: after some 150 steps it no longer changes.
inline float powerOfTwo(Elem32s s)
{
    float factor = 1.0F;
    for (int i = 0; i < 400 && i < s; ++i) {
        factor = factor * 0.5F;
    }
    for (int i = 0; i < 400 && i < -static_cast<std::int64_t>(s); ++i) {
        factor = factor * 2.0F;
    }
    return factor;
}

// An integer value: to nearest with ties to even, or toward zero. In the rounding mode that a program starts with.
template <class T>
T integral(T x, bool nearest)
{
    return nearest ? std::nearbyint(x) : std::trunc(x);
}

inline Elem16s convert32f16s(float x, Elem32s rndMode, Elem32s s)
{
    const float v = s == 0 ? x : x * powerOfTwo(s);
    if (std::isnan(v) || v > 32767.0F) {
        return 32767;
    }
    return v < -32768.0F ? Elem16s{-32768} : static_cast<Elem16s>(std::fmax(integral(v, rndMode != 0), -32768.0F));
}

inline Elem32s convert32f32s(float x, Elem32s rndMode, Elem32s s)
{
    const float v = s == 0 ? x : x * powerOfTwo(s);
    if (std::isnan(v)) {
        // The processor's NaN for 0 times an infinity has its sign set.
        return std::isnan(x) && !std::signbit(x) ? INT32_MAX : INT32_MIN;
    }
    if (v > 2147483520.0F) {
        return INT32_MAX;
    }
    return v < -2147483648.0F ? INT32_MIN : static_cast<Elem32s>(integral(v, rndMode != 0));
}

inline Elem32s convert64f32s(double x, Elem32s rndMode, Elem32s s)
{
    const double v = s == 0 ? x : x * static_cast<double>(powerOfTwo(s));
    if (std::isnan(v) || v > 2147483647.0) {
        return INT32_MAX;
    }
    return v < -2147483648.0 ? INT32_MIN : static_cast<Elem32s>(integral(v, rndMode != 0));
}

template <class T>
Elem16s limited16(T x)
{
    return static_cast<Elem16s>(x > 32767 ? 32767 : (x < -32768 ? -32768 : x));
}

// p / 2^n to nearest with ties to even, in integers wide enough that nothing overflows.
inline Elem64s roundedShift(Elem64s p, int n)
{
    return (p + (Elem64s{1} << (n - 1)) - 1 + ((p >> n) & 1)) >> n;
}

inline Elem16s convert32s16s(Elem32s x, Elem32s s)
{
    if (s == 0) {
        return limited16(x);
    }
    if (s > 0) {
        return limited16(roundedShift(x, s > 31 ? 31 : s));
    }
    return limited16(Elem64s{x} * (Elem64s{1} << (s < -15 ? 15 : -s)));
}

} // namespace lyr::oracle
