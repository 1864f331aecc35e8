// Between the complex transform of M points and the spectrum of the N = 2*M reals whose even samples are its real parts
// and odd samples its imaginary parts (Cooley, Lewis and Welch 1970; Sorensen, Jones, Heideman and Burrus 1987).
//
// With u[k] = -i * exp(-2*pi*i*k/N), v[k] = (1 + u[k]) / 2 and e = v[k] * (z[k] - conj(z[M-k])) the spectrum is
//
//     X[k] = conj(z[M-k]) + e    and    X[M-k] = conj(z[k] - e).
//
// The way back has the same form with conj(v[k]), and gives z: twice of it is the doubling that makes the gain of the
// unnormalised inverse N. The scale comes ahead of the difference, which is at most twice the largest result; as |v[k]|
// is at most sqrt(1/2), nothing behind it is larger.
#pragma once

#include "fft/fft_butterfly.hpp"
#include "fft/fft_plan.hpp"

namespace lyr::LYR_NS::fft {

using lyr::fft::Phasors;

// A gain of 1, which costs no multiplication.
struct Unscaled
{};

template <class V>
LYR_INLINE Complex<V> operator*(Unscaled /*gain*/, Complex<V> z)
{
    return z;
}

template <class V>
LYR_INLINE V fusedAdd(Unscaled /*gain*/, V b, V c)
{
    return b + c;
}

template <class V>
LYR_INLINE V fusedSub(Unscaled /*gain*/, V b, V c)
{
    return c - b;
}

// A gain in all lanes.
template <class V>
LYR_INLINE V gainOf(float gain)
{
    return all<V>(gain);
}

template <class V>
LYR_INLINE Unscaled gainOf(Unscaled gain)
{
    return gain;
}

// `low` and `high` are z[k] and z[M-k] and become X[k] and X[M-k], times `gain`.
template <bool Inverse, class V, class Gain>
LYR_INLINE void recombine(Complex<V>& low, Complex<V>& high, Complex<V> v, Gain gain)
{
    const Complex<V> twin = gain * high;
    const Complex<V> d = {fusedAdd(gain, low.re, -twin.re), fusedAdd(gain, low.im, twin.im)};
    const Complex<V> e = Inverse ? timesConj(d, v) : d * v;
    high = {fusedAdd(gain, low.re, -e.re), fusedSub(gain, low.im, e.im)};
    low = conj(twin) + e;
}

// v[k], from half the fine phasor and the coarse one, of which u[k] is the product.
template <class V>
LYR_INLINE Complex<V> weight(Complex<V> fine, Complex<V> coarse)
{
    return {fusedSub(fine.im, coarse.im, fusedAdd(fine.re, coarse.re, all<V>(0.5F))),
            fusedAdd(fine.re, coarse.im, fine.im * coarse.re)};
}

// v[k] for any one k.
template <int W>
LYR_INLINE Complex<float> weightAt(const Phasors& table, std::ptrdiff_t k)
{
    const std::ptrdiff_t low = k & ((std::ptrdiff_t{1} << table.logFine) - 1);
    const float* const fine = table.fine + low / W * 2 * W + low % W;
    const float* const coarse = table.coarse + 2 * (k >> table.logFine);
    return weight(Complex<float>{fine[0], fine[W]}, Complex<float>{coarse[0], coarse[1]});
}

// The fine phasors and the coarse one of k to k + W - 1, for k a multiple of W.
template <class V>
LYR_INLINE Complex<V> finePhasors(const Phasors& table, std::ptrdiff_t k)
{
    return loadRow<V>(table.fine + 2 * (k & ((std::ptrdiff_t{1} << table.logFine) - 1)));
}

template <class V>
LYR_INLINE Complex<V> coarsePhasor(const Phasors& table, std::ptrdiff_t k)
{
    return allOf<V>(table.coarse + 2 * (k >> table.logFine));
}

// The recombination of elements 1 to M - 1 in natural order, from src, whose element k stands `shift` floats ahead of
// 2*k, to dst, where it stands at 2*k. Source and destination may be the same vector although a shift of 1 makes each
// store overlap the next load from below: that load always comes first.
template <int W, bool Inverse, class Gain>
void recombineInOrder(const float* src, std::ptrdiff_t shift, float* dst, std::ptrdiff_t m, const Phasors& u, Gain gain)
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
        recombine<Inverse>(low[k], high[k], weightAt<W>(u, k), gain);
        storePairs(dst + 2 * k, low[k]);
        storePairs(dst + 2 * (m - k), high[k]);
    }
    const auto gains = gainOf<V>(gain);
    for (std::ptrdiff_t k = W; k < m / 2; k += W) {
        Complex<V> a = next;
        Complex<V> b = loadPairsReversed<V>(at(m - k - W + 1));
        next = loadPairs<V>(at(k + W < m / 2 ? k + W : k));
        recombine<Inverse>(a, b, weight(finePhasors<V>(u, k), coarsePhasor<V>(u, k)), gains);
        storePairs(dst + 2 * k, a);
        storePairsReversed(dst + 2 * (m - k - W + 1), b);
    }
    recombine<Inverse>(middle, middleTwin, weightAt<W>(u, m / 2), gain);
    storePairs(dst + m, middle);
}

} // namespace lyr::LYR_NS::fft
