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

// The spectrum of N reals, times the gain.
template <class Gain>
class Spectrum
{
public:
    LYR_INLINE Spectrum(float* spectrum, std::ptrdiff_t count, Layout order, Gain factor, Phasors phasors)
        : u(phasors), gain(factor), dst(spectrum), n(count), layout(order), shift(order == Layout::Pack ? 1 : 0)
    {}

    // Element k stands at 2*k, or one ahead of that in the Pack layout.
    LYR_INLINE float* at(std::ptrdiff_t k) const { return dst + (2 * k - shift); }
    [[nodiscard]] LYR_INLINE float* data() const { return dst; }

    // R0 and R(N/2), which are sum and difference of the two parts of the first complex result, and the zeros that go
    // with them.
    LYR_INLINE void putEnds(Complex<float> z) const
    {
        const Complex<float> scaled = gain * z;
        const float last = scaled.re - scaled.im;
        dst[0] = scaled.re + scaled.im;
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

    // The fine phasors of a row.
    template <class V>
    LYR_INLINE Complex<V> phasors(std::ptrdiff_t k1) const
    {
        return loadRow<V>(u.fine + 2 * k1);
    }

    template <class V>
    LYR_INLINE void finish(Complex<V>& a, Complex<V>& b, Complex<V> fine, std::ptrdiff_t k2) const
    {
        recombine<false>(a, b, weight(fine, allOf<V>(u.coarse + 2 * k2)), gainOf<V>(gain));
    }

    // Where one lane of the fine phasors serves W values k2.
    template <class V>
    LYR_INLINE void finishLeads(Complex<V>& a, Complex<V>& b, std::ptrdiff_t k1, std::ptrdiff_t k2) const
    {
        constexpr std::ptrdiff_t w = width<V>;
        const float* const fine = u.fine + 2 * k1;
        const Complex<V> turn = {all<V>(fine[0]), all<V>(fine[w])};
        recombine<false>(a, b, weight(turn, loadPairs<V>(u.coarse + 2 * k2)), gainOf<V>(gain));
    }

    Phasors u;
    Gain gain;

private:
    float* dst;
    std::ptrdiff_t n;
    Layout layout;
    std::ptrdiff_t shift;
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
    template <class V>
    static LYR_INLINE std::ptrdiff_t count(const Plan& /*plan*/)
    {
        return width<V>;
    }
    LYR_INLINE std::ptrdiff_t operator[](std::ptrdiff_t k2) const { return k2; }
};

struct BitReversed
{
    const std::uint32_t* table;
    template <class V>
    static LYR_INLINE std::ptrdiff_t count(const Plan& plan)
    {
        return static_cast<std::ptrdiff_t>(plan.cols());
    }
    LYR_INLINE std::ptrdiff_t operator[](std::ptrdiff_t k2) const { return static_cast<std::ptrdiff_t>(table[k2]); }
};

// Lane 0 of the W rows k2, k2 + step, k2 + 2*step, ..., counted modulo C, in the lanes of one vector.
template <class V, class RowOf>
LYR_INLINE Complex<V> gatherLeads(const Plan& plan, const float* block, RowOf rowOf, std::ptrdiff_t k2, int step)
{
    const std::ptrdiff_t mask = RowOf::template count<V>(plan) - 1;
    const auto at = [&](int i) __attribute__((always_inline))
    {
        return block + rowOf[(k2 + step * i) & mask] * rowFloats<V>;
    };
    return [&]<int... I>(std::integer_sequence<int, I...>) __attribute__((always_inline))
    {
        return Complex<V>{V{*at(I)...}, V{at(I)[width<V>]...}};
    }
    (std::make_integer_sequence<int, width<V>>{});
}

// Each lane but the first `skipped` to a place of its own: lane i is element k + i*m.
template <class V, class Output>
LYR_INLINE void scatter(const Output& out, Complex<V> z, std::ptrdiff_t k, std::ptrdiff_t m, int skipped)
{
    float pairs[2 * width<V>];
    storePairs(pairs, z);
    for (int i = skipped; i < width<V>; ++i) {
        __builtin_memcpy(out.at(k + i * m), pairs + std::ptrdiff_t{2} * i, 2 * sizeof(float));
    }
}

// The k that pair among themselves: m*k2, and m/2 + m*k2.
template <class V, class RowOf, class Gain>
LYR_INLINE void putLeads(const Spectrum<Gain>& out, const Plan& plan, const float* a, const float* b, RowOf rowOf)
{
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    const std::ptrdiff_t c = RowOf::template count<V>(plan);
    for (std::ptrdiff_t k2 = 0; k2 < c; k2 += width<V>) {
        Complex<V> low = gatherLeads<V>(plan, a, rowOf, k2, 1);
        Complex<V> high = c == width<V>
                              ? Complex<V>{shuffle<Mirrored>(low.re, low.re), shuffle<Mirrored>(low.im, low.im)}
                              : gatherLeads<V>(plan, a, rowOf, c - k2, -1);
        out.template finishLeads<V>(low, high, 0, k2);
        scatter(out, low, m * k2, m, k2 == 0 ? 1 : 0);
        low = gatherLeads<V>(plan, b, rowOf, k2, 1);
        high = c == width<V> ? Complex<V>{shuffle<Backwards>(low.re, low.re), shuffle<Backwards>(low.im, low.im)}
                             : gatherLeads<V>(plan, b, rowOf, c - 1 - k2, -1);
        out.template finishLeads<V>(low, high, m / 2, k2);
        scatter(out, low, m / 2 + m * k2, m, 0);
    }
    const float* const first = a + rowOf[0] * rowFloats<V>;
    out.putEnds({first[0], first[width<V>]});
}

template <class V, class RowOf, bool Inverse>
LYR_INLINE void putLeads(const Points<Inverse>& out, const Plan& plan, const float* a, const float* b, RowOf rowOf)
{
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    const std::ptrdiff_t c = RowOf::template count<V>(plan);
    for (std::ptrdiff_t k2 = 0; k2 < c; k2 += width<V>) {
        Complex<V> low = gatherLeads<V>(plan, a, rowOf, k2, 1);
        Complex<V> high = gatherLeads<V>(plan, b, rowOf, k2, 1);
        out.finish(low, high, low, k2);
        scatter(out, low, m * k2, m, 0);
        scatter(out, high, m / 2 + m * k2, m, 0);
    }
}

// A pair of blocks, of the frequencies from k1 on, to its place.
template <class V, class Output, class RowOf>
LYR_INLINE void putBlocks(Output out, const Plan& plan, std::ptrdiff_t k1, const float* a, const float* b, RowOf rowOf)
{
    constexpr std::ptrdiff_t w = width<V>;
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    const std::ptrdiff_t c = RowOf::template count<V>(plan);
    const Complex<V> fine = out.template phasors<V>(k1);
    std::ptrdiff_t k2 = 0;
    if (k1 == 0) {
        // What lanes 0 of the first pair leave behind is overwritten afterwards, but in these two rows it has no place
        // at all: ahead of the vector and behind its end.
        Complex<V> low = loadRow<V>(a + rowOf[0] * rowFloats<V>);
        Complex<V> high = loadRow<V>(b + rowOf[c - 1] * rowFloats<V>);
        out.template finish<V>(low, high, fine, 0);
        float pairs[2 * w];
        storePairs(pairs, low);
        __builtin_memcpy(out.at(1), pairs + 2, static_cast<std::size_t>(2 * w - 2) * sizeof(float));
        storePairsReversed(pairs, high);
        __builtin_memcpy(out.at(m * c - w + 1), pairs, static_cast<std::size_t>(2 * w - 2) * sizeof(float));
        k2 = 1;
    }
    for (; k2 < c; ++k2) {
        Complex<V> low = loadRow<V>(a + rowOf[k2] * rowFloats<V>);
        Complex<V> high = loadRow<V>(b + rowOf[c - 1 - k2] * rowFloats<V>);
        out.template finish<V>(low, high, fine, k2);
        storePairs(out.at(k1 + m * k2), low);
        storePairsReversed(out.at(m - k1 - w + 1 + m * (c - 1 - k2)), high);
    }
    if (k1 == 0) {
        putLeads<V>(out, plan, a, b, rowOf);
    }
}

// The one tile of m = C = W: row k2 holds all k1, and lane k1 of it pairs with lane W - k1 of row W - 1 - k2, but lane
// 0 with that of row W - k2.
template <class V, class Gain>
LYR_INLINE void putTile(Spectrum<Gain> out, const Complex<V> (&z)[width<V>])
{
    constexpr int w = width<V>;
    const Complex<V> fine = out.template phasors<V>(0);
    unroll<w>([&](auto k2) __attribute__((always_inline)) {
        constexpr int row = w - 1 - k2;
        constexpr int leadRow = (w - k2) % w;
        Complex<V> low = z[k2];
        Complex<V> high = {shuffle<Mirrored>(z[row].re, z[leadRow].re), shuffle<Mirrored>(z[row].im, z[leadRow].im)};
        out.finish(low, high, fine, k2);
        if constexpr (k2 == 0) {
            float pairs[2 * w];
            storePairs(pairs, low);
            __builtin_memcpy(out.at(1), pairs + 2, (2 * w - 2) * sizeof(float));
        } else {
            storePairs(out.at(std::ptrdiff_t{w} * k2), low);
        }
    });
    out.putEnds({z[0].re[0], z[0].im[0]});
}

template <class V, bool Inverse>
LYR_INLINE void putTile(Points<Inverse> out, const Complex<V> (&z)[width<V>])
{
    unroll<width<V>>([&](auto k2) __attribute__((always_inline)) {
        Complex<V> low = z[k2];
        Complex<V> high = low;
        out.finish(low, high, low, k2);
        storePairs(out.at(std::ptrdiff_t{width<V>} * k2), low);
    });
}

} // namespace lyr::LYR_NS::fft
