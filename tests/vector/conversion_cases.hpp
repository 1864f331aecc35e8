// Runs an element-wise function over lengths, offsets and guarded memory.
#pragma once

#include "lyrsr.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

#include "support/guarded.hpp"
#include "support/ulp.hpp"

namespace lyr::test {

// 1 to 70, and around the multiples of what kernels take at a time.
inline std::vector<std::size_t> vectorLengths()
{
    std::vector<std::size_t> lengths;
    for (std::size_t n = 1; n <= 70; ++n) {
        lengths.push_back(n);
    }
    lengths.insert(lengths.end(), {127, 128, 129, 255, 256, 257, 511, 512, 513, 1000});
    return lengths;
}

template <class T>
::testing::AssertionResult same(T actual, T expected)
{
    if constexpr (std::is_floating_point_v<T>) {
        return sameBits(actual, expected);
    } else if (actual == expected) {
        return ::testing::AssertionSuccess();
    } else {
        return ::testing::AssertionFailure() << actual << " is not " << expected;
    }
}

// Every offset within 16 bytes that the type allows, and the one at which `count` elements end at the unmapped page.
template <class T>
std::vector<std::size_t> offsets(std::size_t count)
{
    std::vector<std::size_t> all;
    for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
        all.push_back(offset);
    }
    all.push_back(Guarded<T>::flush(count));
    return all;
}

// call(src, dst, len) against expected(element), for stretches of `values` of every length.
template <class D, class S, class Call, class Expected>
void compareElements(const std::vector<S>& values, Call call, Expected expected)
{
    std::size_t at = 0;
    for (const std::size_t len : vectorLengths()) {
        std::vector<S> x(len);
        std::vector<D> y(len);
        for (std::size_t i = 0; i < len; ++i, ++at) {
            x[i] = values[at % values.size()];
            y[i] = expected(x[i]);
        }
        const auto srcOffsets = offsets<S>(len);
        const auto dstOffsets = offsets<D>(len);
        for (std::size_t k = 0; k < srcOffsets.size() || k < dstOffsets.size(); ++k) {
            const Guarded<S> src(x, srcOffsets[k % srcOffsets.size()]);
            const Guarded<D> dst(len, dstOffsets[(k + 1) % dstOffsets.size()]);
            ASSERT_EQ(call(src.data(), dst.data(), static_cast<Elem32s>(len)), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(same(dst[i], y[i])) << "element " << i << " of " << len << ", source " << x[i];
            }
            ASSERT_TRUE(src.intact() && dst.intact()) << len;
        }
    }
}

// All of `values` in one call: for what depends on values and arguments and not on place.
template <class D, class S, class Call, class Expected>
void compareValues(const std::vector<S>& values, Call call, Expected expected)
{
    std::vector<D> dst(values.size());
    ASSERT_EQ(call(values.data(), dst.data(), static_cast<Elem32s>(values.size())), StsNoErr);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_TRUE(same(dst[i], expected(values[i]))) << "source " << values[i];
    }
}

} // namespace lyr::test
