// Between the complex transform of M points and the spectrum of the N = 2*M reals whose even samples are its real parts
// and odd samples its imaginary parts (Cooley, Lewis and Welch 1970; Sorensen, Jones, Heideman and Burrus 1987).
//
// With u[k] = -i * exp(-2*pi*i*k/N), s = z[k] + conj(z[M-k]) and d = z[k] - conj(z[M-k]) the spectrum is
//
//     X[k] = (s + u[k]*d) / 2    and    X[M-k] = conj(s - u[k]*d) / 2.
//
// The way back has the same form with conj(u[k]), and without the halves gives 2*z: the doubling that makes the gain of
// the unnormalised inverse N.
#pragma once

#include "fft/fft_butterfly.hpp"
#include "fft/fft_plan.hpp"

namespace lyr::LYR_NS::fft {

using lyr::fft::Phasors;

// `low` and `high` are z[k] and z[M-k] and become X[k] and X[M-k], times twice `scale`; u comes multiplied by it.
template <bool Inverse, class V>
LYR_INLINE void recombine(Complex<V>& low, Complex<V>& high, Complex<V> u, V scale)
{
    const Complex<V> s = low + conj(high);
    const Complex<V> d = low - conj(high);
    const Complex<V> t = Inverse ? timesConj(d, u) : d * u;
    low = {fusedAdd(scale, s.re, t.re), fusedAdd(scale, s.im, t.im)};
    high = {fusedAdd(scale, s.re, -t.re), fusedSub(scale, s.im, t.im)};
}

// u[k] for any one k.
template <int W>
LYR_INLINE Complex<float> phasorAt(const Phasors& table, std::ptrdiff_t k)
{
    const std::ptrdiff_t low = k & ((std::ptrdiff_t{1} << table.logFine) - 1);
    const float* const fine = table.fine + low / W * 2 * W + low % W;
    const float* const coarse = table.coarse + 2 * (k >> table.logFine);
    return Complex<float>{fine[0], fine[W]} * Complex<float>{coarse[0], coarse[1]};
}

// The phasors of k to k + W - 1, for k a multiple of W.
template <class V>
LYR_INLINE Complex<V> phasorsFrom(const Phasors& table, std::ptrdiff_t k)
{
    const std::ptrdiff_t low = k & ((std::ptrdiff_t{1} << table.logFine) - 1);
    return loadRow<V>(table.fine + 2 * low) * allOf<V>(table.coarse + 2 * (k >> table.logFine));
}

// The recombination of elements 1 to M - 1 in natural order, from src, whose element k stands `shift` floats ahead of
// 2*k, to dst, where it stands at 2*k. Source and destination may be the same vector although a shift of 1 makes each
// store overlap the next load from below: that load always comes first.
template <int W, bool Inverse>
void recombineInOrder(const float* src, std::ptrdiff_t shift, float* dst, std::ptrdiff_t m, const Phasors& u,
                      float scale)
{
    using V = Vec<W>;
    const auto at = [&](std::ptrdiff_t k) __attribute__((always_inline))
    {
        return src + 2 * k - shift;
    };
    Complex<float> middle = loadPairs<float>(at(m / 2));
    Complex<float> middleTwin = middle;

    Complex<float> low[W];
    Complex<float> high[W];
    for (int k = 1; k < W; ++k) {
        low[k] = loadPairs<float>(at(k));
        high[k] = loadPairs<float>(at(m - k));
    }
    Complex<V> next = loadPairs<V>(at(W));
    for (int k = 1; k < W; ++k) {
        recombine<Inverse>(low[k], high[k], scale * phasorAt<W>(u, k), scale);
        storePairs(dst + 2 * k, low[k]);
        storePairs(dst + 2 * (m - k), high[k]);
    }
    const V scales = all<V>(scale);
    for (std::ptrdiff_t k = W; k < m / 2; k += W) {
        Complex<V> a = next;
        Complex<V> b = loadPairsReversed<V>(at(m - k - W + 1));
        next = loadPairs<V>(at(k + W < m / 2 ? k + W : k));
        recombine<Inverse>(a, b, scales * phasorsFrom<V>(u, k), scales);
        storePairs(dst + 2 * k, a);
        storePairsReversed(dst + 2 * (m - k - W + 1), b);
    }
    recombine<Inverse>(middle, middleTwin, scale * phasorAt<W>(u, m / 2), scale);
    storePairs(dst + m, middle);
}

} // namespace lyr::LYR_NS::fft
