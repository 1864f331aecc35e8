// The last step of a transform: results that lie in rows of W frequencies k1 to k1 + W - 1 go to their places in order
// of k.
//
// Rows come in two blocks of C each. Row k2 of block A holds X[k1 + m*k2] for k1 = b + lane, row k2 of block B the
// mirrored X[k1' + m*k2] for k1' = m - b - lane. As (k1 + m*k2) + (k1' + m*(C-1-k2)) = M, a lane of row k2 of A and the
// same lane of row C-1-k2 of B are what the recombination pairs, and no lane has to move. In the first pair of blocks
// lane 0 of A is k1 = 0, which pairs with itself, so that lane 0 of B is free for the other one that does, k1 = m/2.
#pragma once

#include "fft/fft_recombine.hpp"
#include "fft/fft_spec.hpp"

namespace lyr::LYR_NS::fft {

using lyr::fft::Layout;
using lyr::fft::Plan;

// The spectrum of N reals: element k stands at 2*k, or one ahead of that in the Pack layout.
struct Spectrum
{
    float* dst;
    std::ptrdiff_t n;
    Layout layout;
    float norm;
    Phasors u;

    LYR_INLINE float* at(std::ptrdiff_t k) const { return dst + 2 * k - (layout == Layout::Pack ? 1 : 0); }

    // R0 and R(N/2), which are sum and difference of the two parts of the first complex result, and the zeros that go
    // with them.
    LYR_INLINE void putEnds(Complex<float> z) const
    {
        const float last = norm * (z.re - z.im);
        dst[0] = norm * (z.re + z.im);
        switch (layout) {
        case Layout::Pack:
            dst[n - 1] = last;
            break;
        case Layout::Perm:
            dst[1] = last;
            break;
        case Layout::Ccs:
            dst[1] = 0.0F;
            dst[n] = last;
            dst[n + 1] = 0.0F;
            break;
        }
    }

    template <class V>
    LYR_INLINE Complex<V> phasors(std::ptrdiff_t k1) const
    {
        return loadRow<V>(u.fine + 2 * k1);
    }

    template <class V>
    LYR_INLINE void finish(Complex<V>& a, Complex<V>& b, Complex<V> fine, std::ptrdiff_t k2) const
    {
        recombine<false>(a, b, fine * allOf<V>(u.coarse + 2 * k2), all<V>(0.5F * norm));
    }
};

// Plain complex results of the forward, or for the inverse of the exchanged, transform.
template <bool Inverse>
struct Points
{
    float* dst;

    LYR_INLINE float* at(std::ptrdiff_t k) const { return dst + 2 * k; }

    template <class V>
    LYR_INLINE Complex<V> phasors(std::ptrdiff_t /*k1*/) const
    {
        return {all<V>(0.0F), all<V>(0.0F)};
    }

    template <class V>
    LYR_INLINE void finish(Complex<V>& a, Complex<V>& b, Complex<V> /*fine*/, std::ptrdiff_t /*k2*/) const
    {
        if constexpr (Inverse) {
            a = swapParts(a);
            b = swapParts(b);
        }
    }
};

// Which row a k2 is in: the rows of a tile are in order, those of a column transform in order of reversed bits.
struct InOrder
{
    LYR_INLINE std::ptrdiff_t operator[](std::ptrdiff_t k2) const { return k2; }
};

struct BitReversed
{
    const std::uint32_t* table;
    LYR_INLINE std::ptrdiff_t operator[](std::ptrdiff_t k2) const { return static_cast<std::ptrdiff_t>(table[k2]); }
};

// Lane 0 of row k2.
template <class V>
LYR_INLINE Complex<float> leadOf(const float* block, std::ptrdiff_t row)
{
    const float* const p = block + row * rowFloats<V>;
    return {p[0], p[width<V>]};
}

// The k that pair among themselves: m*k2, and m/2 + m*k2.
template <class V, class RowOf>
void finishLeads(const Spectrum& out, const Plan& plan, const float* a, const float* b, RowOf rowOf)
{
    constexpr int w = width<V>;
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    const auto c = static_cast<std::ptrdiff_t>(plan.cols());
    out.putEnds(leadOf<V>(a, rowOf[0]));
    for (std::ptrdiff_t k2 = 1; k2 <= c / 2; ++k2) {
        Complex<float> low = leadOf<V>(a, rowOf[k2]);
        Complex<float> high = leadOf<V>(a, rowOf[c - k2]);
        recombine<false>(low, high, phasorAt<w>(out.u, m * k2), 0.5F * out.norm);
        storePairs(out.at(m * (c - k2)), high);
        storePairs(out.at(m * k2), low);
    }
    for (std::ptrdiff_t k2 = 0; k2 < c / 2; ++k2) {
        Complex<float> low = leadOf<V>(b, rowOf[k2]);
        Complex<float> high = leadOf<V>(b, rowOf[c - 1 - k2]);
        recombine<false>(low, high, phasorAt<w>(out.u, m / 2 + m * k2), 0.5F * out.norm);
        storePairs(out.at(m / 2 + m * k2), low);
        storePairs(out.at(m / 2 + m * (c - 1 - k2)), high);
    }
}

template <class V, class RowOf, bool Inverse>
void finishLeads(const Points<Inverse>& out, const Plan& plan, const float* a, const float* b, RowOf rowOf)
{
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    for (std::ptrdiff_t k2 = 0; k2 < static_cast<std::ptrdiff_t>(plan.cols()); ++k2) {
        Complex<float> low = leadOf<V>(a, rowOf[k2]);
        Complex<float> high = leadOf<V>(b, rowOf[k2]);
        out.finish(low, high, low, k2);
        storePairs(out.at(m * k2), low);
        storePairs(out.at(m / 2 + m * k2), high);
    }
}

// A pair of blocks, of the frequencies from b = k1 on, to its place.
template <class V, class Output, class RowOf>
LYR_INLINE void putBlocks(const Output& out, const Plan& plan, std::ptrdiff_t k1, const float* a, const float* b,
                          RowOf rowOf)
{
    constexpr std::ptrdiff_t w = width<V>;
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    const auto c = static_cast<std::ptrdiff_t>(plan.cols());
    const Complex<V> fine = out.template phasors<V>(k1);
    for (std::ptrdiff_t k2 = 0; k2 < c; ++k2) {
        Complex<V> low = loadRow<V>(a + rowOf[k2] * rowFloats<V>);
        Complex<V> high = loadRow<V>(b + rowOf[c - 1 - k2] * rowFloats<V>);
        out.template finish<V>(low, high, fine, k2);
        float* const lowAt = out.at(k1 + m * k2);
        float* const highAt = out.at(m - k1 - w + 1 + m * (c - 1 - k2));
        if (k1 == 0 && k2 == 0) {
            // What lanes 0 of the first pair leave behind is overwritten afterwards, but in these two rows it has no place
            // at all: ahead of the vector and behind its end.
            float lanes[4 * w];
            storePairs(lanes, low);
            storePairsReversed(lanes + 2 * w, high);
            __builtin_memcpy(lowAt + 2, lanes + 2, static_cast<std::size_t>(2 * w - 2) * sizeof(float));
            __builtin_memcpy(highAt, lanes + 2 * w, static_cast<std::size_t>(2 * w - 2) * sizeof(float));
        } else {
            storePairs(lowAt, low);
            storePairsReversed(highAt, high);
        }
    }
    if (k1 == 0) {
        finishLeads<V>(out, plan, a, b, rowOf);
    }
}

} // namespace lyr::LYR_NS::fft
