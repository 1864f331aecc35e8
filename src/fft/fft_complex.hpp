// The plans of the complex transform: see fft_plan.hpp.
#pragma once

#include "fft/fft_columns.hpp"
#include "fft/fft_output.hpp"

namespace lyr::LYR_NS::fft {

using lyr::fft::TwiddleParts;
using lyr::fft::twiddleParts;

// What a plan reads of a record.
struct Tables
{
    Plan plan;
    const float* tile;
    const float* strip;
    const float* rows;
    const float* cols;
    const std::uint32_t* rowOf;
    const std::uint32_t* colOf;
};

LYR_INLINE Tables tablesOf(const FFTSpec_R_32f& spec, const Plan& plan)
{
    const TwiddleParts parts = twiddleParts(plan);
    return {plan,
            spec.pTwd + parts.tile,
            spec.pTwd + parts.strip,
            spec.pTwd + parts.rows,
            spec.pTwd + parts.cols,
            spec.pBitRev,
            spec.pBitRev + plan.rows()};
}

// The tile of W frequencies k1: `lead` and then first - 1, first - 2, ... or first + 1, first + 2, ... by `Step`. Its
// row of each k1 is multiplied by w_M^(n2*k1) and the whole transposed: z[i] has n2 = i of all these frequencies in its
// lanes.
template <int Step, class V>
LYR_INLINE void loadTile(Complex<V> (&z)[width<V>], const Tables& t, const float* rows, std::ptrdiff_t strip,
                         std::ptrdiff_t first, std::ptrdiff_t lead)
{
    V re[width<V>];
    V im[width<V>];
    unroll<width<V>>([&](auto i) __attribute__((always_inline)) {
        const std::ptrdiff_t k1 = i == 0 ? lead : first + Step * i;
        Complex<V> x = loadRow<V>(rows + static_cast<std::ptrdiff_t>(t.rowOf[k1]) * rowFloats<V>);
        x = x * loadRow<V>(t.tile + k1 * rowFloats<V>);
        if (strip != 0) {
            x = x * allOf<V>(t.strip + 2 * (strip * static_cast<std::ptrdiff_t>(t.plan.rows()) + k1));
        }
        re[i] = x.re;
        im[i] = x.im;
    });
    transpose(re);
    transpose(im);
    unroll<width<V>>([&](auto i) __attribute__((always_inline)) { z[i] = {re[i], im[i]}; });
}

template <class V>
LYR_INLINE void storeTile(float* block, const Complex<V> (&z)[width<V>])
{
    unroll<width<V>>([&](auto i) __attribute__((always_inline)) { storeRow(block + i * rowFloats<V>, z[i]); });
}

// The mirrored frequency of lane 0 of the tile at k1.
LYR_INLINE std::ptrdiff_t mirrorLead(const Plan& plan, std::ptrdiff_t k1)
{
    const auto m = static_cast<std::ptrdiff_t>(plan.rows());
    return k1 == 0 ? m / 2 : m - k1;
}

// C = W: the tile is transformed in registers. `work` holds M points.
template <class V, class Source, class Output>
void smallTransform(const Tables& t, Source source, const Output& out, float* work)
{
    constexpr int w = width<V>;
    constexpr int bits = w == 16 ? 4 : (w == 8 ? 3 : 2);
    const auto m = static_cast<std::ptrdiff_t>(t.plan.rows());
    transformColumns<V>(source, work, t.plan.logRows, t.rows);
    if (m == w) {
        Complex<V> z[w];
        loadTile<1>(z, t, work, 0, 0, 0);
        butterfly<bits>(z);
        return putTile<V>(out, z);
    }
    for (std::ptrdiff_t k1 = 0; k1 < m / 2; k1 += w) {
        alignas(64) float a[w * 2 * w];
        alignas(64) float b[w * 2 * w];
        Complex<V> z[w];
        loadTile<1>(z, t, work, 0, k1, k1);
        butterfly<bits>(z);
        storeTile(a, z);
        loadTile<-1>(z, t, work, 0, m - k1, mirrorLead(t.plan, k1));
        butterfly<bits>(z);
        storeTile(b, z);
        putBlocks<V>(out, t.plan, k1, a, b, InOrder{});
    }
}

// C columns in strips of W; the tiles go to blocks of C rows in `work`, which holds M points and behind them a strip.
template <class V, bool Inverse, class Output>
void largeTransform(const Tables& t, const float* src, const Output& out, float* work)
{
    constexpr std::ptrdiff_t w = width<V>;
    const auto m = static_cast<std::ptrdiff_t>(t.plan.rows());
    const auto c = static_cast<std::ptrdiff_t>(t.plan.cols());
    const std::ptrdiff_t block = c * rowFloats<V>;
    float* const strip = work + 2 * m * c;
    for (std::ptrdiff_t s = 0; s < c / w; ++s) {
        transformColumns<V>(PairRows<V, Inverse>{src + 2 * w * s, 2 * c}, strip, t.plan.logRows, t.rows);
        float* tile = work + s * w * rowFloats<V>;
        for (std::ptrdiff_t k1 = 0; k1 < m / 2; k1 += w, tile += 2 * block) {
            Complex<V> z[w];
            loadTile<1>(z, t, strip, s, k1, k1);
            storeTile(tile, z);
            loadTile<-1>(z, t, strip, s, m - k1, mirrorLead(t.plan, k1));
            storeTile(tile + block, z);
        }
    }
    float* a = work;
    for (std::ptrdiff_t k1 = 0; k1 < m / 2; k1 += w, a += 2 * block) {
        float* const b = a + block;
        transformColumns<V>(Rows<V>{a}, a, t.plan.logCols, t.cols);
        transformColumns<V>(Rows<V>{b}, b, t.plan.logCols, t.cols);
        putBlocks<V>(out, t.plan, k1, a, b, BitReversed{t.colOf});
    }
}

// Elements 0, 2, 4, ... of `count` ahead of 1, 3, 5, ...; `work` holds `room` points. Each half is parted by itself,
// and the two middle quarters change places.
inline void partEvenOdd(Elem32fc* x, std::ptrdiff_t count, Elem32fc* work, std::ptrdiff_t room)
{
    const std::ptrdiff_t half = count / 2;
    if (half <= room) {
        for (std::ptrdiff_t i = 0; i < half; ++i) {
            work[i] = x[2 * i + 1];
            x[i] = x[2 * i];
        }
        __builtin_memcpy(x + half, work, static_cast<std::size_t>(half) * sizeof(Elem32fc));
        return;
    }
    partEvenOdd(x, half, work, room);
    partEvenOdd(x + half, half, work, room);
    Elem32fc* const odd = x + half / 2;
    for (std::ptrdiff_t i = 0; i < half / 2; ++i) {
        const Elem32fc moved = odd[i];
        odd[i] = x[half + i];
        x[half + i] = moved;
    }
}

// X[k] = E[k] + w^k * O[k] and X[k + half] = E[k] - w^k * O[k], from the transforms E and O of the even and the odd
// elements.
template <class V, bool Inverse>
void joinEvenOdd(float* even, std::ptrdiff_t half, const Phasors& w)
{
    float* const odd = even + 2 * half;
    for (std::ptrdiff_t k = 0; k < half; k += width<V>) {
        const Complex<V> e = loadPairs<V>(even + 2 * k);
        const Complex<V> o = loadPairs<V>(odd + 2 * k);
        const Complex<V> turn = finePhasors<V>(w, k) * coarsePhasor<V>(w, k);
        const Complex<V> t = Inverse ? timesConj(o, turn) : o * turn;
        storePairs(even + 2 * k, e + t);
        storePairs(odd + 2 * k, e - t);
    }
}

// In place at x, of the part at `level`.
template <class V, bool Inverse>
void splitTransform(const Tables& t, float* const* splitTables, int level, float* x, float* work)
{
    if (level == t.plan.splits) {
        return largeTransform<V, Inverse>(t, x, Points<Inverse>{x}, work);
    }
    const std::ptrdiff_t half = std::ptrdiff_t{1} << (t.plan.logM - level - 1);
    partEvenOdd(reinterpret_cast<Elem32fc*>(x), 2 * half, reinterpret_cast<Elem32fc*>(work),
                static_cast<std::ptrdiff_t>(t.plan.rows() * t.plan.cols()));
    splitTransform<V, Inverse>(t, splitTables, level + 1, x, work);
    splitTransform<V, Inverse>(t, splitTables, level + 1, x + 2 * half, work);
    joinEvenOdd<V, Inverse>(x, half, lyr::fft::phasorsAt(splitTables[level], lyr::fft::logSplitFine));
}

} // namespace lyr::LYR_NS::fft
