// Data whose weighted sums of squares are exact in any order, so that scores are so to the bit.
#pragma once

#include <cstddef>
#include <vector>

#include "support/random.hpp"

namespace lyr::test {

template <class T>
std::vector<T> wholeNumbers(Random& random, std::size_t n)
{
    std::vector<T> v(n);
    for (T& x : v) {
        x = static_cast<T>(random.uniform<int>(-8, 8));
    }
    return v;
}

// A difference that no weight but zero hides.
template <class T>
inline constexpr T vast = T(0x1p40);

enum class Zeros
{
    None,
    Some
};

// Powers of two of both signs, and zeros.
template <class T>
T signedWeight(Random& random, Zeros zeros)
{
    constexpr T weights[] = {T(-2), T(-1), T(-0.5), T(0.5), T(1), T(2), T(0), T(-0.0)};
    return weights[random.uniform<int>(0, zeros == Zeros::Some ? 7 : 5)];
}

// 1 to 70, and the narrow ones, whose weights are few, ten times over.
inline std::vector<std::size_t> signedWidths()
{
    std::vector<std::size_t> widths;
    for (std::size_t n = 1; n <= 70; ++n) {
        widths.insert(widths.end(), n < 4 ? 10 : 1, n);
    }
    return widths;
}

} // namespace lyr::test
