// Roots, bell, sinc and unit curve of one element.
#pragma once

#include "lyrsr.h"

#include <cmath>
#include <cstdint>

namespace lyr::oracle {

// The argument is rounded to the working type; what follows is as good as exact.
template <class T>
T expNegSqr(T x)
{
    const T argument = -(x * x);
    return static_cast<T>(std::exp(static_cast<long double>(argument)));
}

template <class T>
T sinc(T x)
{
    if (x == T(0)) {
        return T(1);
    }
    const auto exact = static_cast<long double>(x);
    return static_cast<T>(std::sin(exact) / exact);
}

inline Elem32f unitCurve(Elem32f x)
{
    if (x <= 0.0F) {
        return 0.0F;
    }
    if (x <= 1.0F) {
        return x * x;
    }
    if (x < 2.0F) {
        const Elem32f square = x * x;
        const Elem32f line = 4.0F * x;
        return line - square - 2.0F;
    }
    return 2.0F;
}

inline Elem16s unitCurve(Elem16s x, Elem32s fraction, Elem32s scaleFactor)
{
    if (fraction < 0 || fraction > 14) {
        return 0;
    }
    const std::int64_t one = std::int64_t{1} << fraction;
    const std::int64_t two = 2 * one;
    std::int64_t y = two * one;
    if (x < 1) {
        y = 0;
    } else if (x < one) {
        y = std::int64_t{x} * x;
    } else if (x < two) {
        y = two * one - (two - x) * (two - x);
    }
    const std::int64_t shift = std::int64_t{scaleFactor} + 2 * fraction;
    if (shift > 0) {
        y = shift > 62 ? 0 : y >> shift; // truncated
    } else {
        for (std::int64_t i = 0; i > shift && y > 0 && y <= 32767; --i) {
            y *= 2;
        }
    }
    return static_cast<Elem16s>(y > 32767 ? 32767 : y);
}

// x where it is kept, `floor` elsewhere, times 2^(-scaleFactor), exactly; rounded to an integer and limited by the
// caller.
inline long double recSqrt(Elem32s x, Elem32s floor, bool kept, Elem32s scaleFactor)
{
    const long double value = kept ? 1.0L / std::sqrt(static_cast<long double>(static_cast<Elem32f>(x)))
                                   : static_cast<long double>(static_cast<Elem32f>(floor));
    return std::ldexp(value, -(scaleFactor < -200 ? -200 : (scaleFactor > 200 ? 200 : scaleFactor)));
}

} // namespace lyr::oracle
