// Element-wise fixed-point operations: products of 16 bits, magnitudes of 32-bit complex numbers.

#include "lyrsr.h"

#include <array>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "oracle/vector_fixed.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/vectors.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::vectorLengths;
using lyr::test::vectorOffsets;

// ------------------------------------------------------------------------------------------------------------- product

std::vector<Elem16s> factors()
{
    std::vector<Elem16s> values{0,   1,    -1,   2,     -2,     3,     5,      -3,    -5,    181,
                                182, -181, -182, 32767, -32768, 32766, -32767, 16384, -16384};
    Random random(5);
    for (int i = 0; i < 40; ++i) {
        values.push_back(static_cast<Elem16s>(random.uniform(-32768, 32767) >> random.uniform(0, 14)));
    }
    return values;
}

TEST(Mul16s, EveryPairAtEveryScale)
{
    const auto values = factors();
    std::vector<Elem16s> a;
    std::vector<Elem16s> b;
    for (const Elem16s x : values) {
        for (const Elem16s y : values) {
            a.push_back(x);
            b.push_back(y);
        }
    }
    std::vector<Elem32s> scales{INT32_MIN, INT32_MIN + 1, -1000, INT32_MAX, 1000, 64};
    for (Elem32s s = -33; s <= 33; ++s) {
        scales.push_back(s);
    }
    std::vector<Elem16s> y(a.size());
    for (const Elem32s s : scales) {
        std::fill(y.begin(), y.end(), Elem16s{77});
        ASSERT_EQ(lyrsMul_16s_Sfs(a.data(), b.data(), y.data(), static_cast<Elem32s>(a.size()), s), StsNoErr);
        for (std::size_t i = 0; i < a.size(); ++i) {
            ASSERT_EQ(y[i], lyr::oracle::multiply16s(a[i], b[i], s)) << a[i] << " * " << b[i] << " scale " << s;
        }
    }
}

TEST(Mul16s, EveryLengthAndOffset)
{
    Random random(6);
    for (const std::size_t len : vectorLengths()) {
        const auto a = random.vector<Elem16s>(len, -32768, 32767);
        const auto b = random.vector<Elem16s>(len, -300, 300);
        for (const std::size_t offset : vectorOffsets<Elem16s>(len)) {
            const Guarded<Elem16s> as(a, offset);
            const Guarded<Elem16s> bs(b, Guarded<Elem16s>::flush(len));
            for (const Elem32s s : {0, 1, 9, 31, -3}) {
                const Guarded<Elem16s> y(len, (offset + 6) % 64);
                ASSERT_EQ(lyrsMul_16s_Sfs(as.data(), bs.data(), y.data(), static_cast<Elem32s>(len), s), StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    ASSERT_EQ(y[i], lyr::oracle::multiply16s(a[i], b[i], s)) << i << " of " << len << " scale " << s;
                }
                ASSERT_TRUE(y.intact());
            }
            ASSERT_TRUE(as.intact() && bs.intact());
        }
    }
}

// Over the first source, over the second, over both.
TEST(Mul16s, InPlace)
{
    Random random(7);
    for (const std::size_t len : vectorLengths()) {
        const auto n = static_cast<Elem32s>(len);
        const auto a = random.vector<Elem16s>(len, -3000, 3000);
        const auto b = random.vector<Elem16s>(len, -3000, 3000);
        for (const Elem32s s : {0, 8, 31, -3}) {
            const Guarded<Elem16s> first(a, 2);
            const Guarded<Elem16s> second(b, 0);
            const Guarded<Elem16s> both(a, Guarded<Elem16s>::flush(len));
            ASSERT_EQ(lyrsMul_16s_Sfs(first.data(), second.data(), first.data(), n, s), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_EQ(first[i], lyr::oracle::multiply16s(a[i], b[i], s)) << i << " of " << len << " scale " << s;
                ASSERT_EQ(second[i], b[i]);
            }
            const Guarded<Elem16s> again(a, 2);
            ASSERT_EQ(lyrsMul_16s_Sfs(again.data(), second.data(), second.data(), n, s), StsNoErr);
            ASSERT_EQ(lyrsMul_16s_Sfs(both.data(), both.data(), both.data(), n, s), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_EQ(second[i], lyr::oracle::multiply16s(a[i], b[i], s)) << i << " of " << len << " scale " << s;
                ASSERT_EQ(both[i], lyr::oracle::multiply16s(a[i], a[i], s)) << i << " of " << len << " scale " << s;
            }
            ASSERT_TRUE(first.intact() && second.intact() && both.intact());
        }
    }
}

TEST(Mul16s, TheProductThatDoesNotFitAndTies)
{
    const std::array<Elem16s, 3> a{-32768, 3, 5};
    const std::array<Elem16s, 3> b{-32768, 1, 1};
    std::array<Elem16s, 3> y{};
    ASSERT_EQ(lyrsMul_16s_Sfs(a.data(), b.data(), y.data(), 3, 0), StsNoErr);
    EXPECT_EQ(y[0], 32767);
    ASSERT_EQ(lyrsMul_16s_Sfs(a.data(), b.data(), y.data(), 3, 1), StsNoErr);
    EXPECT_EQ(y[1], 2);
    EXPECT_EQ(y[2], 2);
    // Zeros from 31 on, though 2^30 / 2^31 would round to 0 only because a tie goes to even.
    ASSERT_EQ(lyrsMul_16s_Sfs(a.data(), b.data(), y.data(), 3, 31), StsNoErr);
    EXPECT_EQ(y, (std::array<Elem16s, 3>{}));
    ASSERT_EQ(lyrsMul_16s_Sfs(a.data(), b.data(), y.data(), 3, 30), StsNoErr);
    EXPECT_EQ(y[0], 1);
}

// ----------------------------------------------------------------------------------------------------------- magnitude

std::vector<Elem32sc> complexValues()
{
    std::vector<Elem32s> parts{0,  1,    -1,     2,          3,         -4,        5,
                               12, 1000, -65536, 0x40000000, INT32_MAX, INT32_MIN, INT32_MIN + 1};
    Random random(8);
    for (int i = 0; i < 8; ++i) {
        parts.push_back(random.uniform(INT32_MIN, INT32_MAX) >> random.uniform(0, 28));
    }
    std::vector<Elem32sc> values;
    for (const Elem32s re : parts) {
        for (const Elem32s im : parts) {
            values.push_back({re, im});
        }
    }
    return values;
}

TEST(Magnitude32sc, EveryScaleInEveryRoundingMode)
{
    const auto z = complexValues();
    std::vector<Elem32s> scales{INT32_MIN, -1000, 1000, INT32_MAX};
    for (Elem32s s = -34; s <= 36; ++s) {
        scales.push_back(s);
    }
    std::vector<Elem32s> y(z.size());
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        for (const Elem32s s : scales) {
            std::fesetround(mode);
            const Status status = lyrsMagnitude_32sc_Sfs(z.data(), y.data(), static_cast<Elem32s>(z.size()), s);
            const int after = std::fegetround();
            std::fesetround(FE_TONEAREST);
            ASSERT_EQ(status, StsNoErr);
            ASSERT_EQ(after, mode);
            for (std::size_t i = 0; i < z.size(); ++i) {
                ASSERT_EQ(y[i], lyr::oracle::magnitude32sc(z[i], s))
                    << "(" << z[i].re << ", " << z[i].im << ") scale " << s << " mode " << mode;
            }
        }
    }
}

TEST(Magnitude32sc, EveryLengthAndOffset)
{
    Random random(9);
    for (const std::size_t len : vectorLengths()) {
        const auto parts = random.vector<Elem32s>(2 * len, -100000, 100000);
        for (std::size_t offset = 0; offset < 16; offset += 4) {
            for (const std::size_t placed : {offset, Guarded<Elem32s>::flush(2 * len)}) {
                const Guarded<Elem32s> src(parts, placed);
                const Guarded<Elem32s> dst(len, offset == 0 ? Guarded<Elem32s>::flush(len) : offset);
                ASSERT_EQ(lyrsMagnitude_32sc_Sfs(reinterpret_cast<const Elem32sc*>(src.data()), dst.data(),
                                                 static_cast<Elem32s>(len), 1),
                          StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    ASSERT_EQ(dst[i], lyr::oracle::magnitude32sc({parts[2 * i], parts[2 * i + 1]}, 1))
                        << i << " of " << len;
                }
                ASSERT_TRUE(src.intact() && dst.intact());
            }
        }
    }
}

// The magnitudes over the numbers that they come from, at scales within the working range and beyond either end.
TEST(Magnitude32sc, OverTheStartOfTheSource)
{
    Random random(10);
    for (const std::size_t len : vectorLengths()) {
        auto parts = random.vector<Elem32s>(2 * len, -100000, 100000);
        parts[2 * (len / 2)] = parts[2 * (len / 2) + 1] = 0;
        for (const std::size_t offset : lyr::test::vectorOffsets<Elem32s>(2 * len)) {
            for (const Elem32s s : {1, 33, -31}) {
                const Guarded<Elem32s> both(parts, offset);
                ASSERT_EQ(lyrsMagnitude_32sc_Sfs(reinterpret_cast<const Elem32sc*>(both.data()), both.data(),
                                                 static_cast<Elem32s>(len), s),
                          StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    ASSERT_EQ(both[i], lyr::oracle::magnitude32sc({parts[2 * i], parts[2 * i + 1]}, s))
                        << i << " of " << len << " scale " << s;
                }
                for (std::size_t i = len; i < 2 * len; ++i) {
                    ASSERT_EQ(both[i], parts[i]) << "behind the result";
                }
                ASSERT_TRUE(both.intact());
            }
        }
    }
}

// Each square is rounded, and then the sum: fused, this one would come out one higher.
TEST(Magnitude32sc, RoundsTheSquaresOneByOne)
{
    const std::vector<Elem32sc> z(9, {98601635, 42829119});
    std::vector<Elem32s> y(z.size());
    ASSERT_EQ(lyrsMagnitude_32sc_Sfs(z.data(), y.data(), 9, -4), StsNoErr);
    for (const Elem32s m : y) {
        EXPECT_EQ(m, 1720027226);
    }
}

TEST(Magnitude32sc, BeyondTheWorkingRangeOnlyZeroOrNotDecides)
{
    const std::array<Elem32sc, 4> z{{{0, 0}, {0, -1}, {INT32_MIN, 0}, {3, 4}}};
    std::array<Elem32s, 4> y{};
    ASSERT_EQ(lyrsMagnitude_32sc_Sfs(z.data(), y.data(), 4, -31), StsNoErr);
    EXPECT_EQ(y, (std::array<Elem32s, 4>{0, INT32_MAX, INT32_MAX, INT32_MAX}));
    ASSERT_EQ(lyrsMagnitude_32sc_Sfs(z.data(), y.data(), 4, 33), StsNoErr);
    EXPECT_EQ(y, (std::array<Elem32s, 4>{}));
    // 2^31 / 2^32 is a half, which goes to the even 0; just inside the range, with sqrt(2) * 2^31, it is 1.
    const Elem32sc corner{INT32_MIN, INT32_MIN};
    ASSERT_EQ(lyrsMagnitude_32sc_Sfs(&corner, y.data(), 1, 32), StsNoErr);
    EXPECT_EQ(y[0], 1);
}

} // namespace
