// Complex arithmetic on vectors and the butterflies of radix 2 to 16.
#pragma once

#include "fft/fft_vector.hpp"

namespace lyr::LYR_NS::fft {

template <class V>
LYR_INLINE Complex<V> operator+(Complex<V> a, Complex<V> b)
{
    return {a.re + b.re, a.im + b.im};
}

template <class V>
LYR_INLINE Complex<V> operator-(Complex<V> a, Complex<V> b)
{
    return {a.re - b.re, a.im - b.im};
}

template <class V>
LYR_INLINE Complex<V> operator*(Complex<V> a, Complex<V> b)
{
    return {fusedSub(a.im, b.im, a.re * b.re), fusedAdd(a.re, b.im, a.im * b.re)};
}

template <class V>
LYR_INLINE Complex<V> operator*(V a, Complex<V> b)
{
    return {a * b.re, a * b.im};
}

// a * conj(b).
template <class V>
LYR_INLINE Complex<V> timesConj(Complex<V> a, Complex<V> b)
{
    return {fusedAdd(a.im, b.im, a.re * b.re), fusedSub(a.re, b.im, a.im * b.re)};
}

template <class V>
LYR_INLINE Complex<V> conj(Complex<V> a)
{
    return {a.re, -a.im};
}

template <class V>
LYR_INLINE Complex<V> swapParts(Complex<V> a)
{
    return {a.im, a.re};
}

// One number for all lanes.
template <class V>
LYR_INLINE Complex<V> allOf(const float* pair)
{
    return {all<V>(pair[0]), all<V>(pair[1])};
}

// The transform of 2^Bits numbers, X[f] = sum of x[n] * exp(-2*pi*i*n*f / 2^Bits), in place and in natural order.
template <int Bits, class V>
LYR_INLINE void butterfly(Complex<V> (&x)[1 << Bits])
{
    if constexpr (Bits == 1) {
        const Complex<V> a = x[0];
        x[0] = a + x[1];
        x[1] = a - x[1];
    } else if constexpr (Bits == 2) {
        const Complex<V> s02 = x[0] + x[2];
        const Complex<V> d02 = x[0] - x[2];
        const Complex<V> s13 = x[1] + x[3];
        const Complex<V> d13 = x[1] - x[3];
        x[0] = s02 + s13;
        x[2] = s02 - s13;
        x[1] = {d02.re + d13.im, d02.im - d13.re};
        x[3] = {d02.re - d13.im, d02.im + d13.re};
    } else if constexpr (Bits == 3) {
        // Two of 4 points, joined by the powers of (1 - i) / sqrt(2).
        Complex<V> e[4] = {x[0], x[2], x[4], x[6]};
        Complex<V> o[4] = {x[1], x[3], x[5], x[7]};
        butterfly<2>(e);
        butterfly<2>(o);
        const V r = all<V>(0.70710678118654752F);
        const Complex<V> o1 = {o[1].re + o[1].im, o[1].im - o[1].re};
        const Complex<V> o3 = {o[3].im - o[3].re, o[3].re + o[3].im};
        x[0] = e[0] + o[0];
        x[4] = e[0] - o[0];
        x[1] = {fusedAdd(r, o1.re, e[1].re), fusedAdd(r, o1.im, e[1].im)};
        x[5] = {fusedSub(r, o1.re, e[1].re), fusedSub(r, o1.im, e[1].im)};
        x[2] = {e[2].re + o[2].im, e[2].im - o[2].re};
        x[6] = {e[2].re - o[2].im, e[2].im + o[2].re};
        x[3] = {fusedAdd(r, o3.re, e[3].re), fusedSub(r, o3.im, e[3].im)};
        x[7] = {fusedSub(r, o3.re, e[3].re), fusedAdd(r, o3.im, e[3].im)};
    } else {
        static_assert(Bits == 4);
        // Four of 4 points, twiddles w^(j*f) with w = exp(-2*pi*i/16), and four of 4 points across.
        const V c1 = all<V>(0.92387953251128676F);
        const V s1 = all<V>(0.38268343236508977F);
        const V r = all<V>(0.70710678118654752F);
        Complex<V> y[4][4]; // y[j][f]
        unroll<4>([&](auto j) __attribute__((always_inline)) {
            y[j][0] = x[j];
            y[j][1] = x[j + 4];
            y[j][2] = x[j + 8];
            y[j][3] = x[j + 12];
            butterfly<2>(y[j]);
        });
        const Complex<V> w1 = {c1, -s1};
        const Complex<V> w3 = {s1, -c1};
        const auto times2 = [&](Complex<V> a) __attribute__((always_inline))
        {
            return Complex<V>{r * (a.re + a.im), r * (a.im - a.re)};
        };
        y[1][1] = y[1][1] * w1;
        y[1][2] = times2(y[1][2]);
        y[1][3] = y[1][3] * w3;
        y[2][1] = times2(y[2][1]);
        y[2][2] = {y[2][2].im, -y[2][2].re};
        y[2][3] = times2({y[2][3].im, -y[2][3].re});
        y[3][1] = y[3][1] * w3;
        y[3][2] = times2({y[3][2].im, -y[3][2].re});
        y[3][3] = y[3][3] * Complex<V>{-c1, s1};
        unroll<4>([&](auto f) __attribute__((always_inline)) {
            Complex<V> z[4] = {y[0][f], y[1][f], y[2][f], y[3][f]};
            butterfly<2>(z);
            x[f] = z[0];
            x[f + 4] = z[1];
            x[f + 8] = z[2];
            x[f + 12] = z[3];
        });
    }
}

} // namespace lyr::LYR_NS::fft
