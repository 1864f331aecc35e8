// Lengths and places for the vectors of a test, and the exact comparison of their elements.
#pragma once

#include <cstddef>
#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

#include "support/guarded.hpp"
#include "support/ulp.hpp"

namespace lyr::test {

// 1 to 70, which is a few vectors of each width, and around the multiples of what kernels take at a time.
inline std::vector<std::size_t> vectorLengths()
{
    std::vector<std::size_t> lengths;
    for (std::size_t n = 1; n <= 70; ++n) {
        lengths.push_back(n);
    }
    lengths.insert(lengths.end(), {127, 128, 129, 255, 256, 257, 511, 512, 513, 1000});
    return lengths;
}

// Offsets from a 16-byte boundary that the type allows, and the one at which `len` elements end at the unmapped page.
template <class T>
std::vector<std::size_t> vectorOffsets(std::size_t len)
{
    std::vector<std::size_t> offsets;
    for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
        offsets.push_back(offset);
    }
    offsets.push_back(Guarded<T>::flush(len));
    return offsets;
}

template <class T>
::testing::AssertionResult exactly(T actual, T expected)
{
    if constexpr (std::is_floating_point_v<T>) {
        return sameBits(actual, expected);
    } else if (actual == expected) {
        return ::testing::AssertionSuccess();
    } else {
        return ::testing::AssertionFailure() << actual << " is not " << expected;
    }
}

} // namespace lyr::test
