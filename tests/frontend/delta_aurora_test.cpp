// The regression of the Aurora front end against the formulas over the whole utterance, fed in calls of every size.

#include "lyrsr.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "delta_stream.hpp"
#include "oracle/delta.hpp"

namespace {

using lyr::oracle::auroraFeatures;
using lyr::test::calls;
using lyr::test::expectRows;
using lyr::test::feed;
using lyr::test::Guarded;
using lyr::test::Random;

constexpr int history = 8;
constexpr std::size_t inputs = 14;
constexpr std::size_t columns = 39;

Status call(const Elem32f* src, const Elem32f* gains, Elem32f* dst, Elem32s step, Elem32s height, Elem32s mode,
            Elem32s /*scale*/)
{
    return gains == nullptr ? lyrsDeltaDelta_Aurora_32f_D2(src, dst, step, height, mode)
                            : lyrsDeltaDeltaMul_Aurora_32f_D2(src, gains, dst, step, height, mode);
}

Status call(const Elem16s* src, const Elem16s* gains, Elem16s* dst, Elem32s step, Elem32s height, Elem32s mode,
            Elem32s scale)
{
    return gains == nullptr ? lyrsDeltaDelta_Aurora_16s_D2Sfs(src, dst, step, height, mode, scale)
                            : lyrsDeltaDeltaMul_Aurora_16s_D2Sfs(src, gains, dst, step, height, mode, scale);
}

template <class T>
void compare(bool mul, int frames, const std::vector<int>& sizes, std::size_t gap, std::size_t offset, int scale,
             Random& random)
{
    SCOPED_TRACE("frames " + std::to_string(frames) + " calls " + std::to_string(sizes.size()) + " gap " +
                 std::to_string(gap) + " offset " + std::to_string(offset) + " scale " + std::to_string(scale) +
                 (mul ? " Mul" : ""));
    const auto x = lyr::test::frameData(random, static_cast<std::size_t>(frames) * inputs, T{});
    auto gains = lyr::test::frameData(random, mul ? columns : 0, T{});
    const Guarded<T> gain(gains, Guarded<T>::flush(gains.size()));
    const auto expected = auroraFeatures(x, gains, scale);
    const std::size_t step = columns + gap;
    const Guarded<T> rows((static_cast<std::size_t>(frames) - 1) * step + columns, offset);
    std::fill_n(rows.data(), rows.size(), T{77});
    feed(x, inputs, history, sizes, rows.data(), static_cast<std::ptrdiff_t>(step),
         [&](const T* src, T* dst, int height, Elem32s mode) {
             return call(src, mul ? gain.data() : nullptr, dst, static_cast<Elem32s>(step), height, mode, scale);
         });
    expectRows(rows.data(), step, columns, expected, T{77});
    EXPECT_TRUE(rows.intact());
}

template <class T>
void compareCalls()
{
    Random random(21);
    for (const bool mul : {false, true}) {
        for (int frames = history; frames <= history + 12; ++frames) {
            for (int chunk = 1; chunk <= frames - history + 1; ++chunk) {
                for (const bool flush : {false, true}) {
                    compare<T>(mul, frames, calls(frames, history, chunk, flush), 0, 0, 0, random);
                }
            }
            compare<T>(mul, frames, {frames}, 1, sizeof(T), 5, random);
            compare<T>(mul, frames + 2, {frames, 2, 0}, 25, 0, 5, random);
        }
        for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
            compare<T>(mul, 17, {17}, 0, offset, 3, random);
            compare<T>(mul, 17, {9, 8}, 9, offset, 3, random);
        }
    }
}

TEST(AuroraDelta, EveryCallSizeInSinglePrecision)
{
    compareCalls<Elem32f>();
}
TEST(AuroraDelta, EveryCallSizeInFixedPoint)
{
    compareCalls<Elem16s>();
}

// Counts are taken modulo 32, so that a negative one shifts to the right as well; deltas are shifted by two more, and
// for 30 and 31 by 0 and 1.
TEST(AuroraDelta, EveryScaleFactor)
{
    Random random(22);
    for (const bool mul : {false, true}) {
        for (int scale = -70; scale <= 70; ++scale) {
            compare<Elem16s>(mul, 20, {20}, 0, 0, scale, random);
        }
        for (const int scale : {INT32_MIN, INT32_MAX, INT32_MAX - 1}) {
            compare<Elem16s>(mul, 20, {20}, 0, 0, scale, random);
        }
    }
}

TEST(AuroraDelta, NegativeScaleFactorsShiftRightByTheirLowFiveBits)
{
    const std::vector<Elem16s> x(8 * inputs, 64);
    std::vector<Elem16s> rows(8 * columns);
    ASSERT_EQ(lyrsDeltaDelta_Aurora_16s_D2Sfs(x.data(), rows.data(), 39, 8, DeltaBegin | DeltaEnd, -28), StsNoErr);
    EXPECT_EQ(rows[0], 64 >> 4);
    ASSERT_EQ(lyrsDeltaDelta_Aurora_16s_D2Sfs(x.data(), rows.data(), 39, 8, DeltaBegin | DeltaEnd, -1), StsNoErr);
    EXPECT_EQ(rows[0], 0);
}

// The product of a delta and its gain has 32 bits and wraps: meant.
TEST(AuroraDelta, ProductsOfDeltasWrap)
{
    std::vector<Elem16s> x(8 * inputs, 0);
    for (std::size_t r = 0; r < 8; ++r) {
        x[r * inputs] = r < 4 ? INT16_MIN : INT16_MAX;
    }
    std::vector<Elem16s> gains(columns, 1);
    gains[13] = INT16_MAX;
    std::vector<Elem16s> rows(8 * columns);
    ASSERT_EQ(lyrsDeltaDeltaMul_Aurora_16s_D2Sfs(x.data(), gains.data(), rows.data(), 39, 8, DeltaBegin | DeltaEnd, 0),
              StsNoErr);
    // With 64 bits all of them would be 32767.
    constexpr Elem16s expected[] = {-32768, 32767, 32767, -32768, -32768, 32767, 32767, -32768};
    for (std::size_t r = 0; r < 8; ++r) {
        EXPECT_EQ(rows[r * columns + 13], expected[r]) << r;
    }
}

// The thirteenth static is the mix, and its derivatives are those of the mix.
TEST(AuroraDelta, TheLastStaticIsMixedAndItsDeltaIsTakenOnTheMix)
{
    std::vector<float> x(9 * inputs, 0.0F);
    for (std::size_t r = 0; r < 9; ++r) {
        x[r * inputs + 12] = static_cast<float>(r * r);
        x[r * inputs + 13] = static_cast<float>(10 * r);
    }
    std::vector<float> rows(9 * columns);
    ASSERT_EQ(lyrsDeltaDelta_Aurora_32f_D2(x.data(), rows.data(), 39, 9, DeltaBegin | DeltaEnd), StsNoErr);
    for (std::size_t r = 0; r < 9; ++r) {
        const auto c0 = static_cast<float>(r * r);
        EXPECT_EQ(rows[r * columns + 12], c0 * 0.6F / 23.0F + static_cast<float>(10 * r) * 0.4F) << r;
    }
    // At row 4, by the weights t / 4: c0 = r^2 gives 120, log energy 10 r gives 150.
    EXPECT_NEAR(rows[4 * columns + 25], 120 * 0.6 / 23 + 150 * 0.4, 1e-4);
    EXPECT_EQ(rows[4 * columns + 13], 0.0F);
}

// Weights and order of the sums, with each frame's own weight read off an impulse.
TEST(AuroraDelta, WeightsOfAnImpulse)
{
    std::vector<float> x(17 * inputs, 0.0F);
    x[8 * inputs + 3] = 1.0F;
    std::vector<float> rows(17 * columns);
    ASSERT_EQ(lyrsDeltaDelta_Aurora_32f_D2(x.data(), rows.data(), 39, 17, DeltaBegin | DeltaEnd), StsNoErr);
    constexpr float second[9] = {1.0F, 0.25F, -0.285714F, -0.607143F, -0.714286F, -0.607143F, -0.285714F, 0.25F, 1.0F};
    for (std::size_t k = 0; k < 9; ++k) {
        const std::size_t row = 12 - k; // the impulse stands at t = k - 4
        EXPECT_EQ(rows[row * columns + 16], (static_cast<float>(k) - 4.0F) * 0.25F) << k;
        EXPECT_EQ(rows[row * columns + 29], second[k]) << k;
    }
}

TEST(AuroraDelta, FramesThatDoNotFit)
{
    const std::vector<float> x(20 * inputs, 1.0F);
    std::vector<float> rows(20 * columns, 7.0F);
    const std::vector<float> before = rows;
    const auto run = [&](Elem32s step, Elem32s height, Elem32s mode) {
        return lyrsDeltaDelta_Aurora_32f_D2(x.data(), rows.data(), step, height, mode);
    };
    EXPECT_EQ(run(39, 7, DeltaBegin | DeltaEnd), StsSize);
    EXPECT_EQ(run(38, 7, DeltaBegin), StsStep);
    EXPECT_EQ(run(38, -1, DeltaEnd), StsSize);
    EXPECT_EQ(run(39, 0, 0), StsSize);
    EXPECT_EQ(run(38, 8, DeltaBegin), StsStep);
    EXPECT_EQ(rows, before);
}

} // namespace
