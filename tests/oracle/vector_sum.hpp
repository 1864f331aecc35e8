// Sums and dot products in extended precision or exact integers.
#pragma once

#include "lyrsr.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "oracle/vector_convert.hpp"

namespace lyr::oracle {

// A sum and the sum of the magnitudes, to which errors are proportional.
struct Sum
{
    long double value = 0;
    long double magnitude = 0;
    void add(long double x)
    {
        value += x;
        magnitude += std::fabs(x);
    }
};

template <class T>
Sum dot(const T* a, const T* b, std::size_t len)
{
    Sum sum;
    for (std::size_t i = 0; i < len; ++i) {
        sum.add(static_cast<long double>(a[i]) * static_cast<long double>(b[i]));
    }
    return sum;
}

// Eight accumulators in rotation, the elements behind the last full eight into one, joined in pairs; through a double
// to a single.
inline float accurateSum(const float* x, std::size_t len)
{
    std::array<long double, 8> acc{};
    for (std::size_t i = 0; i < len; ++i) {
        acc[i < len / 8 * 8 ? i % 8 : 0] += static_cast<long double>(x[i]);
    }
    for (std::size_t step = 1; step < 8; step *= 2) {
        for (std::size_t i = 0; i < 8; i += 2 * step) {
            acc[i] += acc[i + step];
        }
    }
    return static_cast<float>(static_cast<double>(acc[0]));
}

template <class T>
Elem64s integerSum(const T* x, std::size_t len)
{
    Elem64s sum = 0;
    for (std::size_t i = 0; i < len; ++i) {
        sum += x[i];
    }
    return sum;
}

inline Elem32s limited32(long double x)
{
    return x > 2147483647.0L ? INT32_MAX : (x < -2147483648.0L ? INT32_MIN : static_cast<Elem32s>(x));
}

// By repeated halving or doubling; `round` is the rounding in force. A thousand steps settle every sum.
template <class Round>
Elem32s scaledSum16s(Elem64s sum, Elem32s s, Round round)
{
    auto x = static_cast<double>(sum);
    for (int i = 0; i < 1000 && i < s; ++i) {
        x *= 0.5;
    }
    for (int i = 0; i < 900 && i < -static_cast<std::int64_t>(s); ++i) {
        x *= 2.0;
    }
    return limited32(round(x));
}

inline Elem32s scaledSum32s(Elem64s sum, Elem32s s)
{
    if (s > 0) {
        const int n = s > 63 ? 63 : s;
        // 2^63 does not fit where the addend for it would go; sums stay below 2^62, so that the result is 0 there.
        return n == 63 ? 0 : limited32(static_cast<long double>(roundedShift(sum, n)));
    }
    return limited32(std::ldexp(static_cast<long double>(sum), s < -31 ? 31 : -s));
}

} // namespace lyr::oracle
