// Runs an element-wise function over lengths, offsets and guarded memory.
#pragma once

#include "lyrsr.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

#include "support/guarded.hpp"
#include "support/vectors.hpp"

namespace lyr::test {

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
        const auto srcOffsets = vectorOffsets<S>(len);
        const auto dstOffsets = vectorOffsets<D>(len);
        for (std::size_t k = 0; k < srcOffsets.size() || k < dstOffsets.size(); ++k) {
            const Guarded<S> src(x, srcOffsets[k % srcOffsets.size()]);
            const Guarded<D> dst(len, dstOffsets[(k + 1) % dstOffsets.size()]);
            ASSERT_EQ(call(src.data(), dst.data(), static_cast<Elem32s>(len)), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(exactly(dst[i], y[i])) << "element " << i << " of " << len << ", source " << x[i];
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
        ASSERT_TRUE(exactly(dst[i], expected(values[i]))) << "source " << values[i];
    }
}

} // namespace lyr::test
