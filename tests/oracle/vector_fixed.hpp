// Element-wise fixed-point operations, one element at a time.
#pragma once

#include "lyrsr.h"

#include <cmath>
#include <cstdint>

#include "oracle/vector_convert.hpp"

namespace lyr::oracle {

inline Elem16s multiply16s(Elem16s a, Elem16s b, Elem32s s)
{
    const Elem32s p = Elem32s{a} * b;
    if (s > 30) {
        return 0;
    }
    if (s > 0) {
        return limited16(roundedShift(p, s));
    }
    if (s == 0) {
        return limited16(p);
    }
    if (s >= -15) {
        return limited16(Elem64s{limited16(p)} * (Elem64s{1} << -s));
    }
    if (a == 0 || b == 0) {
        return 0;
    }
    return (a < 0) == (b < 0) ? Elem16s{32767} : Elem16s{-32768};
}

inline Elem32s magnitude32sc(Elem32sc z, Elem32s s)
{
    if (s > 32) {
        return 0;
    }
    if (s < -30) {
        return z.re != 0 || z.im != 0 ? INT32_MAX : 0;
    }
    // volatile: squares and sum rounded one by one.
    const volatile double re2 = static_cast<double>(z.re) * z.re;
    const volatile double im2 = static_cast<double>(z.im) * z.im;
    const volatile double squares = re2 + im2;
    const double scaled = std::ldexp(std::sqrt(squares), -s);
    return scaled > 2147483647.0 ? INT32_MAX : static_cast<Elem32s>(std::nearbyint(scaled));
}

} // namespace lyr::oracle
