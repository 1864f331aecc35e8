// How a complex transform of length M = 2^logM is cut into vector operations.
//
// The index is split as n = C*n1 + n2 and k = k1 + m*k2 with M = m*C (Cooley and Tukey 1965), so that
//
//     X[k1 + m*k2] = sum over n2 of  w_C^(n2*k2) * w_M^(n2*k1) * ( sum over n1 of  w_m^(n1*k1) * x[C*n1 + n2] )
//
// with w_n = exp(-2*pi*i/n).
//
// The inner sums are column transforms: W neighbouring columns n2 are the lanes of a vector and every butterfly is
// vertical, with twiddles that are the same for all lanes. A tile of W values k1 by W values n2 is then multiplied by
// w_M^(n2*k1) and transposed in registers, so that the outer sums are column transforms again, now with k1 in the
// lanes, and their results lie in order of k.
//
//  - small, C = W: a tile is all of the outer sum; it is a butterfly of radix W in registers (up to M = 2^16).
//  - large, C about sqrt(M): strips of W columns go through the cache one by one, the transposed tiles into a buffer as
//    large as the data, and the outer transforms run there (the four-step method: Bailey 1990).
//  - split: above 2^26 the data is parted into even and odd elements until a part is a large transform; radix-2
//    butterflies join the parts. That limits the buffer to 512 MiB and every size in bytes to 31 bits.
//
// Column transforms are decimated in frequency and in place: a frequency k ends in the row that has its bits reversed,
// and as whole rows are gathered into tiles, no pass over the data is ever spent on the reversal.
#pragma once

#include "frame/width.hpp"

#include <cstddef>
#include <cstdint>

namespace lyr::fft {

inline constexpr int largeFrom = 17;               // log2 of the first M of the large plan
inline constexpr int largeMost = 26;               // and of the last one
inline constexpr int logSplitFine = largeMost / 2; // fine phasors of a split level: see Phasors

struct Plan
{
    int lanes;   // W; 1 where M is too small for vectors
    int logM;    // of the whole complex transform
    int logRows; // log2 of m
    int logCols; // log2 of C
    int splits;  // levels of even and odd parts ahead of the large plan

    [[nodiscard]] LYR_INLINE constexpr std::size_t rows() const { return std::size_t{1} << logRows; }
    [[nodiscard]] LYR_INLINE constexpr std::size_t cols() const { return std::size_t{1} << logCols; }
    [[nodiscard]] LYR_INLINE constexpr std::size_t length() const { return std::size_t{1} << logM; }
    [[nodiscard]] LYR_INLINE constexpr bool isLarge() const { return logM >= largeFrom; }
    [[nodiscard]] LYR_INLINE constexpr std::size_t strips() const { return cols() / static_cast<std::size_t>(lanes); }
};

// A tile takes W rows: M >= W*W. With M = W*W there is one tile, whose lanes are paired among themselves; else the
// recombination pairs the tile of k1 with that of m - k1.
LYR_INLINE constexpr Plan planOf(int order, int widest)
{
    const int logM = order - 1;
    int logLanes = widest >= 16 ? 4 : (widest >= 8 ? 3 : 2);
    while (logLanes > 2 && 2 * logLanes > logM) {
        --logLanes;
    }
    if (2 * logLanes > logM) {
        return {1, logM, logM, 0, 0};
    }
    if (logM < largeFrom) {
        return {1 << logLanes, logM, logM - logLanes, logLanes, 0};
    }
    const int splits = logM > largeMost ? logM - largeMost : 0;
    const int logPart = logM - splits;
    return {1 << logLanes, logM, logPart / 2, logPart - logPart / 2, splits};
}

// Columns are transformed by passes of radix 8, and a last one, which is without twiddles, of up to 16. Logarithms:
inline constexpr int middleBits = 3;
inline constexpr int lastBits = 4;

LYR_INLINE constexpr int passBits(int logN)
{
    return logN <= lastBits ? logN : middleBits;
}
LYR_INLINE constexpr bool isLastPass(int logN)
{
    return passBits(logN) == logN;
}

// Complex twiddles of the pass over 2^logN rows: radix - 1 for each of its butterflies.
LYR_INLINE constexpr std::size_t passTwiddles(int logN)
{
    const int bits = passBits(logN);
    return isLastPass(logN) ? 0 : ((std::size_t{1} << bits) - 1) << (logN - bits);
}

LYR_INLINE constexpr std::size_t columnTwiddles(int logN)
{
    std::size_t count = 0;
    for (; !isLastPass(logN); logN -= passBits(logN)) {
        count += passTwiddles(logN);
    }
    return count;
}

LYR_INLINE constexpr std::uint32_t reverseBits(std::uint32_t x, int bits)
{
    std::uint32_t r = 0;
    for (int b = 0; b < bits; ++b) {
        r = (r << 1) | ((x >> b) & 1U);
    }
    return r;
}

// Parts of the table at FFTSpec_R_32f::pTwd, in floats from its start.
struct TwiddleParts
{
    std::size_t tile;   // w_M^(k1*i), k1 < m, in vectors over the lanes i: W real parts, W imaginary parts
    std::size_t strip;  // large: w_M^(k1*W*s) for the strips s, pairs
    std::size_t rows;   // column transforms of length m, pairs in order of use
    std::size_t cols;   // large: and of length C
    std::size_t floats; // in all
};

LYR_INLINE constexpr TwiddleParts twiddleParts(const Plan& p)
{
    TwiddleParts t{};
    t.strip = 2 * p.rows() * static_cast<std::size_t>(p.lanes);
    t.rows = t.strip + (p.isLarge() ? 2 * p.strips() * p.rows() : 0);
    t.cols = t.rows + 2 * columnTwiddles(p.logRows);
    t.floats = t.cols + (p.isLarge() ? 2 * columnTwiddles(p.logCols) : 0);
    return p.lanes == 1 ? TwiddleParts{} : t;
}

// A sequence of unit phasors f(k) kept as products: f(k1 + 2^logFine * k2) = fine[k1] * coarse[k2]. Instead of as many
// numbers as there are k, which would stream through the caches next to the data, it takes a few that stay there, and
// one more rounding.
struct Phasors
{
    const float* fine;   // in vectors: W real parts, W imaginary parts
    const float* coarse; // pairs
    int logFine;
};

LYR_INLINE constexpr std::size_t phasorFloats(int logFine, int logCount)
{
    return (std::size_t{2} << logFine) + (std::size_t{2} << (logCount - logFine));
}

LYR_INLINE constexpr Phasors phasorsAt(const float* table, int logFine)
{
    return {table, table + (std::size_t{2} << logFine), logFine};
}

} // namespace lyr::fft
