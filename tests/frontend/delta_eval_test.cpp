// Deltas over any window, in place, against the formula.

#include "lyrsr.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

#include "delta_stream.hpp"
#include "oracle/delta.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;

template <class T>
struct Shape
{
    Elem32s height;
    Elem32s width;
    Elem32s offset;
    Elem32s window;
    Elem32s gap;
    Elem32s scale;
};

template <class T>
void compare(const Shape<T>& s, bool mul, std::size_t address, Random& random)
{
    SCOPED_TRACE("height " + std::to_string(s.height) + " width " + std::to_string(s.width) + " offset " +
                 std::to_string(s.offset) + " window " + std::to_string(s.window) + " scale " +
                 std::to_string(s.scale) + (mul ? " Mul" : ""));
    const auto width = static_cast<std::size_t>(s.width);
    const auto offset = static_cast<std::size_t>(s.offset);
    const auto height = static_cast<std::size_t>(s.height);
    const std::size_t step = offset + 2 * width + static_cast<std::size_t>(s.gap);
    // The last row ends with its last delta.
    const auto data = lyr::test::frameData(random, (height - 1) * step + offset + 2 * width, T{});
    const auto gains = lyr::test::frameData(random, 2 * width, T{});
    const Guarded<T> gain(gains, Guarded<T>::flush(gains.size()));
    auto expected = data;
    for (std::size_t c = 0; c < width; ++c) {
        std::vector<T> x(height);
        for (std::size_t r = 0; r < height; ++r) {
            x[r] = data[r * step + offset + c];
        }
        const T g = mul ? gains[width + c] : gains[0];
        std::vector<T> d;
        if constexpr (std::is_same_v<T, float>) {
            d = lyr::oracle::evalDelta(x, s.window, g);
        } else {
            d = lyr::oracle::evalDelta(x, s.window, g, s.scale);
        }
        for (std::size_t r = 0; r < height; ++r) {
            expected[r * step + offset + width + c] = d[r];
        }
    }
    const Guarded<T> rows(data, address);
    const auto rowStep = static_cast<Elem32s>(step);
    Status status = StsFail;
    if constexpr (std::is_same_v<T, float>) {
        status = mul ? lyrsEvalDeltaMul_32f_D2(rows.data(), s.height, rowStep, gain.data(), s.width, s.offset, s.window)
                     : lyrsEvalDelta_32f_D2(rows.data(), s.height, rowStep, s.width, s.offset, s.window, gains[0]);
    } else {
        status = mul ? lyrsEvalDeltaMul_16s_D2Sfs(rows.data(), s.height, rowStep, gain.data(), s.width, s.offset,
                                                  s.window, s.scale)
                     : lyrsEvalDelta_16s_D2Sfs(rows.data(), s.height, rowStep, s.width, s.offset, s.window, gains[0],
                                               s.scale);
    }
    ASSERT_EQ(status, StsNoErr);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_TRUE(lyr::test::exactly(rows[i], expected[i]))
            << "row " << i / step << " column " << i % step << ": " << rows[i] << " is not " << expected[i];
    }
    EXPECT_TRUE(rows.intact());
}

template <class T>
void compareShapes()
{
    Random random(31);
    constexpr Elem32s scales[] = {0, 8, 16, 31, 40, -1, -7, -15, -20, 4};
    std::size_t k = 0;
    for (const bool mul : {false, true}) {
        for (Elem32s width = 1; width <= 70; ++width) {
            for (const Elem32s offset : {0, 3}) {
                const std::size_t address = static_cast<std::size_t>(width) * sizeof(T) % 16;
                compare<T>({9, width, offset, 2, width % 3, scales[k++ % std::size(scales)]}, mul, address, random);
            }
        }
        for (Elem32s window = 1; window <= 9; ++window) {
            for (const Elem32s more : {0, 1, 2, 7}) { // with 0 every row is an edge row
                compare<T>({2 * window + more, 13, 0, window, 0, 6}, mul, 0, random);
            }
        }
        for (std::size_t address = 0; address < 16; address += sizeof(T)) {
            compare<T>({12, 8, 0, 3, 0, 6}, mul, address, random);
            compare<T>({12, 16, 1, 3, 3, 6}, mul, address, random);
        }
        compare<T>({2100, 3, 0, 1000, 0, 20}, mul, 0, random); // sums that leave 32 bits
        for (const Elem32s scale : {INT32_MIN, INT32_MAX}) {
            compare<T>({9, 21, 0, 2, 1, scale}, mul, 0, random);
        }
    }
}

TEST(EvalDelta, EveryShapeInSinglePrecision)
{
    compareShapes<Elem32f>();
}
TEST(EvalDelta, EveryShapeInFixedPoint)
{
    compareShapes<Elem16s>();
}

// In the first rows the row 0 stands for every earlier one, also where row r - t exists; streamed forms clamp instead.
TEST(EvalDelta, TheFirstRowStandsForAllOnItsSide)
{
    std::vector<float> rows;
    for (const float x : {1.0F, 10.0F, 100.0F, 1000.0F, 10000.0F}) {
        rows.push_back(x);
        rows.push_back(0);
    }
    ASSERT_EQ(lyrsEvalDelta_32f_D2(rows.data(), 5, 2, 1, 0, 2, 1.0F), StsNoErr);
    EXPECT_EQ(rows[1], (10 - 1) + 2 * (100 - 1));
    EXPECT_EQ(rows[3], (100 - 1) + 2 * (1000 - 1)); // x[0] for t = 1 too
    EXPECT_EQ(rows[5], (1000 - 10) + 2 * (10000 - 1));
    EXPECT_EQ(rows[7], (10000 - 100) + 2 * (10000 - 10)); // the last row for t = 1 too
    EXPECT_EQ(rows[9], (10000 - 1000) + 2 * (10000 - 100));
}

// A sum starts from plus zero, to which terms of minus zero add nothing.
TEST(EvalDelta, TermsOfMinusZeroAddUpToPlusZero)
{
    std::vector<float> rows{0.0F, 7, -0.0F, 7, -0.0F, 7, -0.0F, 7};
    const std::vector<float> gains{1, 1};
    for (const float gain : {1.0F, -1.0F}) {
        ASSERT_EQ(lyrsEvalDelta_32f_D2(rows.data(), 4, 2, 1, 0, 2, gain), StsNoErr);
        EXPECT_TRUE(lyr::test::exactly(rows[1], gain * 0.0F));
    }
    ASSERT_EQ(lyrsEvalDeltaMul_32f_D2(rows.data(), 4, 2, gains.data(), 1, 0, 2), StsNoErr);
    EXPECT_TRUE(lyr::test::exactly(rows[1], 0.0F));
}

TEST(EvalDelta, TheGainsOfTheStaticsAreSkipped)
{
    std::vector<float> rows{1, 0, 3, 0};
    const std::vector<float> gains{1000, 2};
    ASSERT_EQ(lyrsEvalDeltaMul_32f_D2(rows.data(), 2, 2, gains.data(), 1, 0, 1), StsNoErr);
    EXPECT_EQ(rows, (std::vector<float>{1, 4, 3, 4}));
}

TEST(EvalDelta, Sizes)
{
    std::vector<Elem16s> rows(100, 3);
    const std::vector<Elem16s> before = rows;
    const auto call = [&](Elem32s height, Elem32s step, Elem32s width, Elem32s offset, Elem32s window) {
        return lyrsEvalDelta_16s_D2Sfs(rows.data(), height, step, width, offset, window, 1, 0);
    };
    EXPECT_EQ(call(3, 4, 2, 0, 2), StsSize);
    EXPECT_EQ(call(4, 4, 2, -1, 2), StsSize);
    EXPECT_EQ(call(4, 4, 2, 0, 0), StsSize);
    EXPECT_EQ(call(4, 4, 0, 0, 2), StsSize);
    EXPECT_EQ(call(0, 4, 2, 0, 2), StsSize);
    EXPECT_EQ(call(4, 3, 2, 0, 2), StsStep);
    EXPECT_EQ(call(4, 4, 2, 1, 2), StsStep);
    EXPECT_EQ(call(3, 3, 2, 0, 2), StsSize);
    EXPECT_EQ(call(4, 4, 2, 0, INT32_MAX), StsSize);
    EXPECT_EQ(call(4, INT32_MAX, INT32_MAX, INT32_MAX, 1), StsStep);
    EXPECT_EQ(rows, before);
    EXPECT_EQ(call(4, 5, 2, 1, 2), StsNoErr);
}

} // namespace
