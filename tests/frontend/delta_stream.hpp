// Feeds an utterance to a streamed delta function in calls of chosen sizes, and compares feature matrices.
#pragma once

#include "lyrsr.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/vectors.hpp"

namespace lyr::test {

// Sizes of the calls for `frames` frames: the first takes the history, the others `chunk` each, and the last ends the
// utterance: with the frames that are left, or with none where `flush` says so.
inline std::vector<int> calls(int frames, int history, int chunk, bool flush)
{
    std::vector<int> sizes{history};
    for (int rest = frames - history; rest > 0; rest -= chunk) {
        sizes.push_back(std::min(rest, chunk));
    }
    if (flush) {
        sizes.push_back(0);
    }
    return sizes;
}

// call(src, dst, height, mode) with the frames of one call, which end at an unmapped page, and the last rows of the
// call before.
template <class T, class Call>
void feed(const std::vector<T>& frames, std::size_t inputs, int history, const std::vector<int>& sizes, T* dst,
          std::ptrdiff_t step, Call call)
{
    std::ptrdiff_t done = 0;
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        const auto first = frames.begin() + done * static_cast<std::ptrdiff_t>(inputs);
        const std::vector<T> part(first, first + sizes[k] * static_cast<std::ptrdiff_t>(inputs));
        const Guarded<T> src(part, Guarded<T>::flush(part.size()));
        const Elem32s mode = (k == 0 ? DeltaBegin : 0) | (k + 1 == sizes.size() ? DeltaEnd : 0);
        T* const at = dst + (k == 0 ? 0 : done - history) * step;
        ASSERT_EQ(call(src.data(), at, sizes[k], mode), StsNoErr) << "call " << k;
        ASSERT_TRUE(part.empty() || std::memcmp(src.data(), part.data(), part.size() * sizeof(T)) == 0) << "call " << k;
        done += sizes[k];
    }
}

// The first `columns` of every row are those of the packed `expected`; what lies between the rows still is `filler`.
template <class T>
void expectRows(const T* rows, std::size_t step, std::size_t columns, const std::vector<T>& expected, T filler)
{
    const std::size_t height = expected.size() / columns;
    for (std::size_t r = 0; r < height; ++r) {
        for (std::size_t c = 0; c < columns; ++c) {
            ASSERT_TRUE(exactly(rows[r * step + c], expected[r * columns + c]))
                << "row " << r << " column " << c << ": " << rows[r * step + c] << " is not "
                << expected[r * columns + c];
        }
        for (std::size_t c = columns; c < step && r + 1 < height; ++c) {
            ASSERT_TRUE(exactly(rows[r * step + c], filler)) << "row " << r << " column " << c << " is outside";
        }
    }
}

// Random data with the whole range of a type's specialities. Which NaN a NaN is does not count in `same`.
inline std::vector<float> frameData(Random& random, std::size_t n, float /*tag*/)
{
    auto x = random.vector<float>(n, -30, 30);
    constexpr float inf = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float odd[] = {0.0F, -0.0F, 1e-40F, -1e-39F, -3e38F, 3.4e38F, 1e-45F, inf, -inf, nan, -nan};
    for (std::size_t i = 0; i < n; i += 47) {
        x[i] = odd[static_cast<std::size_t>(random.uniform<int>(0, static_cast<int>(std::size(odd)) - 1))];
    }
    return x;
}

inline std::vector<Elem16s> frameData(Random& random, std::size_t n, Elem16s /*tag*/)
{
    auto x = random.vector<Elem16s>(n, -32768, 32767);
    for (std::size_t i = 0; i < n; ++i) {
        if (i % 3 == 0) { // small ones, whose results do not saturate
            x[i] = random.uniform<Elem16s>(-100, 100);
        } else if (i % 31 == 0) {
            x[i] = i % 2 == 0 ? Elem16s{-32768} : Elem16s{32767};
        }
    }
    return x;
}

} // namespace lyr::test
