// Logarithm and exponential in 64-bit integers, digit by digit (cf. Muller, Elementary Functions, 2006, chapters 5 and
// 6): a bank that is built from them is the same on every processor.
//
// Numbers have 22 fraction bits (Q22) unless the name says otherwise. Products wrap at 64 bits, which no sensible
// band comes near.
#pragma once

#include "frame/fixed_point.hpp"
#include "lyrsr.h"

#include <bit>
#include <cstdint>

namespace lyr::q22 {

inline constexpr int fractionBits = 22;
inline constexpr Elem64s one = Elem64s{1} << fractionBits;

inline constexpr Elem64s ln2Q31 = 1488522236;
inline constexpr Elem64s log2eQ31 = 0xB8AA3B29;

constexpr Elem64s wrappingProduct(Elem64s a, Elem64s b)
{
    return static_cast<Elem64s>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

constexpr Elem64s wrappingShift(Elem64s a, int count)
{
    return static_cast<Elem64s>(static_cast<std::uint64_t>(a) << count);
}

// ln(1 + 2^-(k+1)) and ln(1 - 2^-(k+1)) with 31 fraction bits, to the nearest integer.
inline constexpr int stepCount = 32;
inline constexpr Elem32s lnOnePlus[stepCount] = {
    870729689, 479197128, 252937143, 130190384, 66081634, 33294987, 16712019, 8372267, 4190213, 2096129, 1048320,
    524224,    262128,    131068,    65535,     32768,    16384,    8192,     4096,    2048,    1024,    512,
    256,       128,       64,        32,        16,       8,        4,        2,       1,       0};
inline constexpr Elem32s lnOneMinus[stepCount] = {
    -1488522236, -617792546, -286756482, -138595419, -68179810, -33819339, -16843095, -8405035,
    -4198405,    -2098177,   -1048832,   -524352,    -262160,   -131076,   -65537,    -32768,
    -16384,      -8192,      -4096,      -2048,      -1024,     -512,      -256,      -128,
    -64,         -32,        -16,        -8,         -4,        -2,        -1,        -1};

// ln(v), v above 0. The mantissa is squared 31 times; each time it reaches 2 gives a binary digit of the base-2
// logarithm.
constexpr Elem64s ln(Elem64s v)
{
    constexpr int mantissaBits = 29;
    const int exponent = static_cast<int>(std::bit_width(static_cast<std::uint64_t>(v))) - 1;
    Elem64s m = exponent > mantissaBits ? v >> (exponent - mantissaBits) : v << (mantissaBits - exponent);
    Elem64s fraction = 0;
    for (int digit = 0; digit < 31; ++digit) {
        m = m * m >> mantissaBits;
        fraction *= 2;
        if (m >= Elem64s{1} << (mantissaBits + 1)) {
            m >>= 1;
            fraction |= 1;
        }
    }
    return ((exponent - fractionBits) * ln2Q31 + (fraction * ln2Q31 >> 31)) >> 9;
}

// exp(q); what reaches 2^31 becomes 0x7FFFFFFF. The fraction of the base-2 exponent, back in natural units, is taken
// apart into logarithms of factors that cost one shift and one addition each.
constexpr Elem64s exp(Elem64s q)
{
    const Elem64s t = wrappingProduct(q, log2eQ31) >> fractionBits;
    const Elem64s whole = t >> 31;
    Elem64s rest = (t & INT32_MAX) * ln2Q31 >> 31;
    Elem64s y = Elem64s{1} << 31;
    for (int k = 0; k < stepCount; ++k) {
        if (rest > lnOnePlus[k]) {
            rest -= lnOnePlus[k];
            y += y >> (k + 1);
        } else if (rest < lnOneMinus[k]) {
            rest -= lnOneMinus[k];
            y -= y >> (k + 1);
        }
    }
    const Elem64s shift = whole - 9;
    if (shift <= 0) {
        y = shift < -63 ? 0 : y >> -shift;
    } else {
        y = shift > 30 ? INT32_MAX : y << shift;
    }
    return y > INT32_MAX ? INT32_MAX : y;
}

} // namespace lyr::q22
