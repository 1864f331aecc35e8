// Element-wise arithmetic, one element at a time.
#pragma once

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace lyr::oracle {

// The product with a constant: 1, and NaN, change nothing; 0 gives zero whatever the element.
template <class T>
T timesConstant(T x, T val)
{
    if (std::isnan(val) || val == T(1)) {
        return x;
    }
    return val == T(0) ? T(0) : x * val;
}

template <class T>
T plusConstant(T x, T val)
{
    return std::isnan(val) || val == T(0) ? x : x + val;
}

// A quotient whose zero divisor has no sign.
template <class T>
T quotient(T divisor, T dividend)
{
    if (divisor != T(0)) {
        return dividend / divisor;
    }
    if (dividend > T(0)) {
        return std::numeric_limits<T>::infinity();
    }
    return dividend < T(0) ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::quiet_NaN();
}

// The Pack spectrum x times the conjugate of y.
inline std::vector<Elem32f> mulPackConj(const std::vector<Elem32f>& x, const std::vector<Elem32f>& y)
{
    std::vector<Elem32f> product(x.size());
    product[0] = x[0] * y[0];
    std::size_t i = 1;
    for (; i + 1 < x.size(); i += 2) {
        const Elem32f a = x[i];
        const Elem32f b = x[i + 1];
        const Elem32f c = y[i];
        const Elem32f d = y[i + 1];
        const Elem32f ac = a * c;
        const Elem32f bd = b * d;
        const Elem32f bc = b * c;
        const Elem32f ad = a * d;
        product[i] = ac + bd;
        product[i + 1] = bc - ad;
    }
    if (i < x.size()) {
        product[i] = x[i] * y[i];
    }
    return product;
}

inline Elem32f magnitude(Elem32fc z)
{
    const Elem32f re = z.re * z.re;
    const Elem32f im = z.im * z.im;
    return std::sqrt(re + im);
}

} // namespace lyr::oracle
