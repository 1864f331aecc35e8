// Natural logarithms, one element at a time.
#pragma once

#include "lyrsr.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace lyr::oracle {

// What the first element without a logarithm decides.
template <class T>
Status logStatus(const T* x, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i) {
        if (x[i] == 0) {
            return StsWarnInf;
        }
        if (x[i] < 0) {
            return StsWarnNan;
        }
    }
    return StsNoErr;
}

// The integer nearest to ln x: how many of the numbers e^(1/2), e^(3/2), ... are below x.
inline Elem32s nearestLog(Elem32s x)
{
    Elem32s result = 0;
    while (static_cast<long double>(x) > std::exp(static_cast<long double>(result) + 0.5L)) {
        ++result;
    }
    return result;
}

// The exact value that the scaled logarithm of an integer rounds; a scale of -2000 is as good as any below.
inline double scaledLog(Elem32s x, Elem32s s)
{
    return std::ldexp(std::log(static_cast<double>(static_cast<float>(x))), s < -2000 ? 2000 : -s);
}

} // namespace lyr::oracle
