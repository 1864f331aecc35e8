// Log-additions of the single-precision family, one at a time and in a wider precision.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"
#include "scoring/log_add_tables.hpp"

namespace lyr {

// p(t) of degree 10, by Horner's rule.
struct Horner
{
    template <class Real>
    static LYR_INLINE Real evaluate(const Elem64f* c, Real t)
    {
        Real p = c[0];
        for (int i = 1; i <= 10; ++i) {
            p = p * t + c[i];
        }
        return p;
    }
};

// p(t) of degree 10 as two polynomials in t squared.
struct EvenOdd
{
    template <class Real>
    static LYR_INLINE Real evaluate(const Elem64f* c, Real t)
    {
        const Real square = t * t;
        Real even = c[0];
        Real odd = c[1];
        for (int i = 2; i <= 8; i += 2) {
            even = even * square + c[i];
            odd = odd * square + c[i + 1];
        }
        return even * square + c[10] + odd * t;
    }
};

// log(exp(a) + exp(b)). A NaN operand gives NaN.
template <class Polynomial, class Real>
LYR_INLINE Real logAddSingle(Real a, Real b)
{
    constexpr LogAddLimits limit = singleLogAdd;
    const Real m = a > b ? a : b;
    const Real d = a > b ? b - a : a - b;
    if (d < static_cast<Real>(limit.cutOff)) {
        return m < static_cast<Real>(limit.floorTest) ? static_cast<Real>(limit.floor) : m;
    }
    if (d > static_cast<Real>(limit.near)) {
        return m + Polynomial::evaluate(LogAddCoeff1_F, d);
    }
    if (d > static_cast<Real>(limit.middle)) {
        return m + Polynomial::evaluate(LogAddCoeff2_F, d - static_cast<Real>(limit.near));
    }
    return m + Polynomial::evaluate(LogAddCoeff3_F, d - static_cast<Real>(limit.middle));
}

} // namespace lyr
