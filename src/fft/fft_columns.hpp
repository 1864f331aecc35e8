// Column transforms: each lane of the rows is a column of its own, and every butterfly is vertical.
#pragma once

#include "fft/fft_butterfly.hpp"
#include "fft/fft_plan.hpp"

namespace lyr::LYR_NS::fft {

using lyr::fft::lastBits;
using lyr::fft::middleBits;
using lyr::fft::passTwiddles;
using lyr::fft::reverseBits;

template <class V>
inline constexpr std::ptrdiff_t rowFloats = 2 * width<V>;

// Rows where they are, in real and imaginary parts.
template <class V>
struct Rows
{
    const float* first;
    LYR_INLINE Complex<V> operator[](std::ptrdiff_t row) const { return loadRow<V>(first + row * rowFloats<V>); }
};

// Rows out of a vector of (re, im) pairs. The inverse transform is the forward one between two exchanges of real and
// imaginary parts.
template <class V, bool Inverse>
struct PairRows
{
    const float* first;
    std::ptrdiff_t stride;
    LYR_INLINE Complex<V> operator[](std::ptrdiff_t row) const
    {
        const Complex<V> z = loadPairs<V>(first + row * stride);
        return Inverse ? swapParts(z) : z;
    }
};

// One pass over 2^logN rows with butterflies of radix R = 2^Bits: row j + i*q with q = 2^logN / R is input i of
// butterfly j, and its output of frequency f goes to row j + rev(f)*q, times w^(f*j) unless this is the last pass. Then
// each q rows are columns of their own.
template <int Bits, bool Last, class V, class Source>
LYR_INLINE void columnPass(Source source, float* rows, int logN, const float* twiddles)
{
    constexpr int radix = 1 << Bits;
    const std::ptrdiff_t q = Last ? 1 : std::ptrdiff_t{1} << (logN - Bits);
    for (std::ptrdiff_t j = 0; j < q; ++j) {
        Complex<V> x[radix];
        unroll<radix>([&](auto i) __attribute__((always_inline)) { x[i] = source[j + i * q]; });
        butterfly<Bits>(x);
        float* const out = rows + j * rowFloats<V>;
        storeRow(out, x[0]);
        unroll<radix - 1>([&](auto i) __attribute__((always_inline)) {
            constexpr int slot = i + 1;
            Complex<V> y = x[reverseBits(slot, Bits)];
            if constexpr (!Last) {
                y = y * allOf<V>(twiddles + 2 * i);
            }
            storeRow(out + slot * q * rowFloats<V>, y);
        });
        twiddles += Last ? 0 : 2 * (radix - 1);
    }
}

// The transforms of the columns of 2^logN rows, from the source into `rows`, frequencies in bit-reversed rows. Depth
// first: once the rows of a part fit a cache they stay there until they are done, whatever its size.
template <class V, class Source>
void transformColumns(Source source, float* rows, int logN, const float* twiddles)
{
    static_assert(lastBits <= 4 && lastBits - middleBits >= 1);
    if (logN == 2) {
        return columnPass<2, true, V>(source, rows, logN, twiddles);
    }
    if (logN == 3) {
        return columnPass<3, true, V>(source, rows, logN, twiddles);
    }
    if (logN == lastBits) {
        return columnPass<lastBits, true, V>(source, rows, logN, twiddles);
    }
    columnPass<middleBits, false, V>(source, rows, logN, twiddles);
    for (int part = 0; part < 1 << middleBits; ++part) {
        float* const first = rows + (static_cast<std::ptrdiff_t>(part) << (logN - middleBits)) * rowFloats<V>;
        transformColumns<V>(Rows<V>{first}, first, logN - middleBits, twiddles + 2 * passTwiddles(logN));
    }
}

} // namespace lyr::LYR_NS::fft
