// Feature rows for the tests of statistics: the same values as a block and as a row table, with strangers in between.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lyrsr.h"
#include "oracle/column_statistics.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace lyr::test {

struct Shape
{
    std::size_t height;
    std::size_t width;
    std::size_t gap;    // elements between two rows of the block
    std::size_t offset; // of the block, in bytes past a multiple of 64

    [[nodiscard]] std::size_t step() const { return width + gap; }
    [[nodiscard]] Elem32s h() const { return static_cast<Elem32s>(height); }
    [[nodiscard]] Elem32s w() const { return static_cast<Elem32s>(width); }
    [[nodiscard]] Elem32s s() const { return static_cast<Elem32s>(step()); }
    [[nodiscard]] std::string text() const
    {
        return std::to_string(height) + " rows of " + std::to_string(width) + ", gap " + std::to_string(gap) +
               ", offset " + std::to_string(offset);
    }
};

// Every width to 70 at every offset that elements of `unit` bytes can have, with strides above the width; then widths
// and heights around the blocks, tiles and panels of the kernels.
inline std::vector<Shape> shapes(std::size_t unit, std::size_t leastHeight)
{
    const std::size_t heights[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33};
    std::vector<Shape> all;
    std::size_t n = 0;
    for (std::size_t width = 1; width <= 70; ++width) {
        for (std::size_t offset = 0; offset < 16; offset += unit) {
            all.push_back({std::max(leastHeight, heights[n % 12]), width, n % 3 == 0 ? 0 : n % 5, offset});
            ++n;
        }
        all.push_back({std::max(leastHeight, heights[n % 12]), width, (16 - width % 16) % 16, 0}); // aligned rows
    }
    for (const int width : {127, 128, 129, 255, 256, 257, 300, 513, 600}) {
        all.push_back({19, static_cast<std::size_t>(width), 0, 0});
        all.push_back({130, static_cast<std::size_t>(width), 3, unit});
    }
    for (const int width : {1, 13, 16, 26, 39, 63, 65, 100}) {
        all.push_back({1003, static_cast<std::size_t>(width), 1, 0});
    }
    return all;
}

template <class T>
class FeatureRows
{
public:
    FeatureRows(const Shape& shape, Random& random, T low, T high)
        : shape(shape), rows((shape.height - 1) * shape.step() + shape.width, shape.offset)
    {
        // What lies between the rows would spoil every sum.
        constexpr T stranger =
            std::is_floating_point_v<T> ? std::numeric_limits<T>::quiet_NaN() : std::numeric_limits<T>::max();
        std::fill_n(rows.data(), rows.size(), stranger);
        for (std::size_t r = 0; r < shape.height; ++r) {
            T* const row = rows.data() + r * shape.step();
            for (std::size_t c = 0; c < shape.width; ++c) {
                row[c] = random.uniform<T>(low, high);
            }
            // Few rows stand apart, each in front of an unmapped page; of many, the table points into the block.
            const T* entry = row;
            if (shape.height <= 20) {
                const std::size_t offset = r % 2 == 0 ? Guarded<T>::flush(shape.width) : r * sizeof(T) % 16;
                apart.emplace_back(std::vector<T>(row, row + shape.width), shape.gap % 2 == 0 ? 0 : offset);
                entry = apart.back().data();
            }
            pointers.push_back(entry);
        }
    }

    [[nodiscard]] const T* block() const { return rows.data(); }
    [[nodiscard]] const T* const* table() const { return pointers.data(); }
    [[nodiscard]] std::vector<T> column(std::size_t c) const
    {
        std::vector<T> values;
        for (std::size_t r = 0; r < shape.height; ++r) {
            values.push_back(pointers[r][c]);
        }
        return values;
    }

private:
    Shape shape;
    Guarded<T> rows;
    std::vector<Guarded<T>> apart;
    std::vector<const T*> pointers;
};

// A vector of results at the end of its page, to be overwritten.
template <class T>
Guarded<T> results(std::size_t n, std::size_t offset = 0)
{
    Guarded<T> g(n, offset == 0 ? Guarded<T>::flush(n) : offset);
    std::fill_n(g.data(), n, T(77));
    return g;
}

template <class T>
::testing::AssertionResult within(T actual, const oracle::Estimate& expected)
{
    const long double distance = std::fabs(static_cast<long double>(actual) - expected.value);
    if (distance <= expected.error) { // false for a NaN
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << actual << " is " << static_cast<double>(distance) << " from "
                                         << static_cast<double>(expected.value) << ", allowed are "
                                         << static_cast<double>(expected.error);
}

// An integer that rounding and saturation may make of a number so near to the expected one.
template <class Int>
::testing::AssertionResult roundsTo(Int actual, const oracle::Estimate& expected)
{
    const auto low = oracle::toInteger<Int>(expected.value - expected.error);
    const auto high = oracle::toInteger<Int>(expected.value + expected.error);
    if (low <= actual && actual <= high) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << actual << " is not in [" << low << ", " << high << "]";
}

} // namespace lyr::test
