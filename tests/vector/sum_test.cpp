// Sums and dot products.

#include "lyrsr.h"

#include <array>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/vector_sum.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/vectors.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::vectorLengths;
using lyr::test::vectorOffsets;

// A sum of `terms` roundings in any order stays within terms * u of the sum of magnitudes, u being half a unit (Higham,
// Accuracy and Stability of Numerical Algorithms, 2002, section 4.2).
template <class T>
double sumBound(std::size_t terms, long double magnitude)
{
    const long double u = static_cast<long double>(std::numeric_limits<T>::epsilon()) / 2;
    return static_cast<double>(static_cast<long double>(terms) * u * magnitude);
}

float sum32f(const float* x, std::size_t len, Elem32s hint)
{
    float sum = -1;
    EXPECT_EQ(lyrsSum_32f(x, static_cast<Elem32s>(len), &sum, hint), StsNoErr);
    return sum;
}

// ---------------------------------------------------------------------------------------------------- single precision

TEST(Sum32f, AccurateFollowsItsEightSums)
{
    Random random(21);
    for (const std::size_t len : vectorLengths()) {
        std::vector<float> x(len);
        for (float& v : x) {
            v = random.uniform(-1.0F, 1.0F) * std::ldexp(1.0F, random.uniform(-30, 30));
        }
        for (const std::size_t offset : vectorOffsets<float>(len)) {
            const Guarded<float> src(x, offset);
            for (const Elem32s hint : {0, 2, -1, INT32_MIN}) {
                ASSERT_EQ(sum32f(src.data(), len, hint), lyr::oracle::accurateSum(x.data(), len)) << len;
            }
        }
    }
}

// 2^40 + 2^-20 - 2^40 needs 61 bits, and one sum for all three (1, 9 and 17 are of the same).
TEST(Sum32f, AccurateKeepsSixtyFourBitsOfMantissa)
{
    std::array<float, 24> x{};
    x[1] = 0x1p40F;
    x[9] = 0x1p-20F;
    x[17] = -0x1p40F;
    EXPECT_EQ(sum32f(x.data(), x.size(), 0), 0x1p-20F);
    x[9] = 0x1p-23F;
    EXPECT_EQ(sum32f(x.data(), x.size(), 0), 0x1p-23F);
    x[9] = 0x1p-24F;
    EXPECT_EQ(sum32f(x.data(), x.size(), 0), 0.0F);
    // The range is extended, too.
    x = {};
    x[0] = x[8] = std::numeric_limits<float>::max();
    x[16] = -std::numeric_limits<float>::max();
    EXPECT_EQ(sum32f(x.data(), x.size(), 0), std::numeric_limits<float>::max());
}

// The total goes through a double: just above a tie of two singles it is rounded to the tie first, and then to the even
// single.
TEST(Sum32f, AccurateTotalPassesThroughADouble)
{
    const std::array<float, 3> x{1.0F, 0x1p-24F, 0x1p-60F};
    EXPECT_EQ(sum32f(x.data(), 3, 0), 1.0F);
}

TEST(Sum32f, FastIsWithinTheBoundOfItsOrder)
{
    Random random(22);
    for (const std::size_t len : vectorLengths()) {
        const auto x = random.vector<float>(len, -1.0F, 1.0F);
        lyr::oracle::Sum exact;
        for (const float v : x) {
            exact.add(static_cast<long double>(v));
        }
        // At 128 bits a lane of four accumulators takes in every 16th element, then four roundings join them and one
        // makes a single.
        const double bound = sumBound<float>(len / 16 + 6, exact.magnitude);
        for (const std::size_t offset : vectorOffsets<float>(len)) {
            const Guarded<float> src(x, offset);
            ASSERT_NEAR(static_cast<double>(sum32f(src.data(), len, 1)), static_cast<double>(exact.value), bound)
                << len;
            ASSERT_TRUE(src.intact());
        }
    }
}

// In single precision 2^24 ones are the most that can be counted one by one; sums of 32768 at a time go on.
TEST(Sum32f, FastAddsBlocksInExtendedPrecision)
{
    for (const std::size_t len : {32767U, 32768U, 32769U, 32768U * 3 + 5U}) {
        std::vector<float> x(len, 1.0F);
        EXPECT_EQ(sum32f(x.data(), len, 1), static_cast<float>(len));
    }
    // A block of its own: 2^30 in the first of them swallows the ones there, but not those of the second.
    std::vector<float> x(2 * 32768, 0.0F);
    x[0] = 0x1p30F;
    for (std::size_t i = 32768; i < x.size(); ++i) {
        x[i] = 1.0F;
    }
    const std::vector<float> aligned = x;
    const Guarded<float> src(aligned, 0);
    EXPECT_EQ(sum32f(src.data(), x.size(), 1), 0x1p30F + 32768.0F);
}

// Ahead of the first 16-byte boundary elements go to the extended total: 2^30 does not swallow the ones behind it.
TEST(Sum32f, FastTakesTheElementsAheadOfABoundaryByThemselves)
{
    std::vector<float> x(65, 4.0F);
    x[0] = 0x1p30F;
    const Guarded<float> src(x, 12);
    EXPECT_EQ(sum32f(src.data(), x.size(), 1), 0x1p30F + 256.0F);
}

TEST(Sum32f, ASourceAtAnyAddress)
{
    Random random(23);
    for (const std::size_t len : {1U, 3U, 4U, 15U, 16U, 17U, 64U, 70U, 257U, 33000U}) {
        const auto x = random.vector<float>(len, -1.0F, 1.0F);
        lyr::oracle::Sum exact;
        for (const float v : x) {
            exact.add(static_cast<long double>(v));
        }
        for (std::size_t offset = 0; offset < 16; ++offset) {
            const Guarded<char> src(4 * len, offset);
            std::memcpy(src.data(), x.data(), 4 * len);
            // Through an address, as no pointer to single may be off its alignment in the language.
            const auto* const p = reinterpret_cast<const float*>(reinterpret_cast<std::uintptr_t>(src.data()));
            EXPECT_EQ(sum32f(p, len, 0), lyr::oracle::accurateSum(x.data(), len)) << offset;
            EXPECT_NEAR(static_cast<double>(sum32f(p, len, 1)), static_cast<double>(exact.value),
                        sumBound<float>(len / 16 + 6, exact.magnitude))
                << offset;
        }
    }
}

// Off the alignment of its elements a vector has no boundary that a head could lead to: blocks are counted from the
// first element.
TEST(Sum32f, FastAddsBlocksOfASourceAtAnyAddress)
{
    std::vector<float> x(3 * 32768 + 5, 1.0F);
    std::fill(x.begin(), x.begin() + 32768, 0.0F);
    x[32767] = 0x1p30F; // the last of the first block
    for (const std::size_t offset : {1U, 2U, 3U, 5U, 14U, 15U}) {
        const Guarded<char> src(4 * x.size(), offset);
        std::memcpy(src.data(), x.data(), 4 * x.size());
        const auto* const p = reinterpret_cast<const float*>(reinterpret_cast<std::uintptr_t>(src.data()));
        EXPECT_EQ(sum32f(p, 32768 + 32768, 1), 0x1p30F + 32768.0F) << offset;
        EXPECT_EQ(sum32f(p, x.size(), 1), 0x1p30F + 65536.0F) << offset;
        EXPECT_EQ(sum32f(p + 32768, x.size() - 32768, 1), 65541.0F) << offset;
    }
}

TEST(Sum32f, SpecialValues)
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    for (const Elem32s hint : {0, 1}) {
        for (std::size_t at = 0; at < 21; ++at) {
            std::array<float, 21> x{};
            x[at] = inf;
            EXPECT_EQ(sum32f(x.data(), 21, hint), inf);
            x[20 - at] = -inf;
            x[at] = std::numeric_limits<float>::quiet_NaN();
            EXPECT_TRUE(std::isnan(sum32f(x.data(), 21, hint)));
        }
    }
}

// --------------------------------------------------------------------------------------------------------- fixed point

Elem32s sum16s(const std::vector<Elem16s>& x, Elem32s s)
{
    Elem32s sum = -1;
    EXPECT_EQ(lyrsSum_16s32s_Sfs(x.data(), static_cast<Elem32s>(x.size()), &sum, s), StsNoErr);
    return sum;
}

Elem32s sum32s(const std::vector<Elem32s>& x, Elem32s s)
{
    Elem32s sum = -1;
    EXPECT_EQ(lyrsSum_32s_Sfs(x.data(), static_cast<Elem32s>(x.size()), &sum, s), StsNoErr);
    return sum;
}

std::vector<Elem32s> scaleFactors()
{
    std::vector<Elem32s> all{INT32_MIN, INT32_MIN + 1, -2000, -1075, -1022, 1022, 1074, 1075, 1076, 2000, INT32_MAX};
    for (Elem32s s = -70; s <= 70; ++s) {
        all.push_back(s);
    }
    return all;
}

TEST(SumFixed, EveryLengthAndOffset)
{
    Random random(24);
    for (const std::size_t len : vectorLengths()) {
        const auto x16 = random.vector<Elem16s>(len, -32768, 32767);
        const auto x32 = random.vector<Elem32s>(len, INT32_MIN, INT32_MAX);
        const Elem64s exact16 = lyr::oracle::integerSum(x16.data(), len);
        const Elem64s exact32 = lyr::oracle::integerSum(x32.data(), len);
        for (const std::size_t offset : vectorOffsets<Elem16s>(len)) {
            const Guarded<Elem16s> src(x16, offset);
            Elem32s sum = -1;
            ASSERT_EQ(lyrsSum_16s32s_Sfs(src.data(), static_cast<Elem32s>(len), &sum, 0), StsNoErr);
            ASSERT_EQ(sum, exact16) << len;
            ASSERT_TRUE(src.intact());
        }
        for (const std::size_t offset : vectorOffsets<Elem32s>(len)) {
            const Guarded<Elem32s> src(x32, offset);
            Elem32s sum = -1;
            ASSERT_EQ(lyrsSum_32s_Sfs(src.data(), static_cast<Elem32s>(len), &sum, 10), StsNoErr);
            ASSERT_EQ(sum, lyr::oracle::scaledSum32s(exact32, 10)) << len;
            ASSERT_TRUE(src.intact());
        }
    }
}

TEST(SumFixed, SixteenBitsRoundByTheModeInForce)
{
    const auto round = [](double x) { return std::nearbyint(x); };
    for (const std::vector<Elem16s>& x : std::vector<std::vector<Elem16s>>{{0},
                                                                           {1},
                                                                           {-1},
                                                                           {3},
                                                                           {5},
                                                                           {-3},
                                                                           {-5},
                                                                           {7, 0, -7},
                                                                           {32767, 32767, 1},
                                                                           {-32768, -32768, -32768},
                                                                           std::vector<Elem16s>(70000, 32767),
                                                                           std::vector<Elem16s>(70000, -32768)}) {
        const Elem64s exact = lyr::oracle::integerSum(x.data(), x.size());
        for (const Elem32s s : scaleFactors()) {
            for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
                std::fesetround(mode);
                const Elem32s expected = lyr::oracle::scaledSum16s(exact, s, round);
                const Elem32s actual = sum16s(x, s);
                const int after = std::fegetround();
                std::fesetround(FE_TONEAREST);
                ASSERT_EQ(actual, expected) << exact << " scale " << s << " mode " << mode;
                ASSERT_EQ(after, mode);
            }
        }
    }
}

// Where the scale would make an infinity of the factor.
TEST(SumFixed, AZeroSumIsZeroAtEveryScale)
{
    for (const Elem32s s : scaleFactors()) {
        EXPECT_EQ(sum16s({5, -5}, s), 0) << s;
        EXPECT_EQ(sum32s({5, -5}, s), 0) << s;
    }
}

TEST(SumFixed, ThirtyTwoBitsRoundToEvenAndSaturateByTheExactValue)
{
    for (const std::vector<Elem32s>& x : std::vector<std::vector<Elem32s>>{{1},
                                                                           {-1},
                                                                           {3},
                                                                           {5},
                                                                           {7},
                                                                           {-3},
                                                                           {-5},
                                                                           {INT32_MAX},
                                                                           {INT32_MIN},
                                                                           {INT32_MAX, INT32_MAX},
                                                                           {INT32_MIN, INT32_MIN},
                                                                           {INT32_MAX, INT32_MAX, INT32_MIN},
                                                                           std::vector<Elem32s>(1000, INT32_MIN),
                                                                           std::vector<Elem32s>(1000, INT32_MAX)}) {
        const Elem64s exact = lyr::oracle::integerSum(x.data(), x.size());
        for (const Elem32s s : scaleFactors()) {
            ASSERT_EQ(sum32s(x, s), lyr::oracle::scaledSum32s(exact, s)) << exact << " scale " << s;
        }
    }
    EXPECT_EQ(sum32s({1, 2}, 1), 2);
    EXPECT_EQ(sum32s({1, 4}, 1), 2);
    EXPECT_EQ(sum32s({INT32_MAX, INT32_MAX}, -31), INT32_MAX);
    EXPECT_EQ(sum32s({INT32_MIN, INT32_MIN}, -31), INT32_MIN);
}

// -------------------------------------------------------------------------------------------------------- dot products

template <class T, class R, class Call>
void compareDot(Call call)
{
    Random random(25);
    for (const std::size_t len : vectorLengths()) {
        const auto a = random.vector<T>(len, T(-4), T(4));
        const auto b = random.vector<T>(len, T(-4), T(4));
        const auto exact = lyr::oracle::dot(a.data(), b.data(), len);
        // Each product and each sum rounds once.
        const double bound = sumBound<R>(len + 1, exact.magnitude);
        for (const std::size_t offset : vectorOffsets<T>(len)) {
            for (const std::size_t other : {offset, std::size_t{0}, Guarded<T>::flush(len)}) {
                const Guarded<T> as(a, offset);
                const Guarded<T> bs(b, other);
                R result = -1;
                ASSERT_EQ(call(as.data(), bs.data(), static_cast<Elem32s>(len), &result), StsNoErr);
                ASSERT_NEAR(static_cast<double>(result), static_cast<double>(exact.value), bound) << len;
                ASSERT_TRUE(as.intact() && bs.intact());
            }
        }
    }
}

TEST(DotProd, FloatingPoint)
{
    compareDot<float, float>(lyrsDotProd_32f);
    compareDot<double, double>(lyrsDotProd_64f);
    compareDot<float, double>(lyrsDotProd_32f64f);
}

// Each element counts once: powers of two of which the sum keeps every one.
TEST(DotProd, EveryElementCountsOnce)
{
    for (std::size_t len = 1; len <= 300; ++len) {
        std::vector<float> a(len, 1.0F);
        std::vector<float> b(len);
        double expected = 0;
        for (std::size_t i = 0; i < len; ++i) {
            b[i] = static_cast<float>(i % 128 + 1);
            expected += static_cast<double>(b[i]);
        }
        float single = 0;
        double widened = 0;
        ASSERT_EQ(lyrsDotProd_32f(a.data(), b.data(), static_cast<Elem32s>(len), &single), StsNoErr);
        ASSERT_EQ(lyrsDotProd_32f64f(a.data(), b.data(), static_cast<Elem32s>(len), &widened), StsNoErr);
        ASSERT_EQ(static_cast<double>(single), expected);
        ASSERT_EQ(widened, expected);
    }
}

// 2^200 needs the range of a double, (1 + 2^-20)^2 its precision.
TEST(DotProd, SinglesAreWidenedAheadOfTheProduct)
{
    const std::array<float, 2> a{0x1p100F, 1.0F + 0x1p-20F};
    const std::array<float, 2> b{0x1p100F, 1.0F + 0x1p-20F};
    double y = 0;
    ASSERT_EQ(lyrsDotProd_32f64f(a.data(), b.data(), 1, &y), StsNoErr);
    EXPECT_EQ(y, 0x1p200);
    ASSERT_EQ(lyrsDotProd_32f64f(a.data() + 1, b.data() + 1, 1, &y), StsNoErr);
    EXPECT_EQ(y, 1.0 + 0x1p-19 + 0x1p-40);
}

TEST(DotProd, SixteenBitsAreExact)
{
    Random random(26);
    for (const std::size_t len : vectorLengths()) {
        for (const bool extreme : {false, true}) {
            // -32768 in every place makes pairs of products that 32 bits cannot hold.
            const auto a = extreme ? std::vector<Elem16s>(len, -32768) : random.vector<Elem16s>(len, -32768, 32767);
            const auto b = extreme ? std::vector<Elem16s>(len, len % 3 == 0 ? 32767 : -32768)
                                   : random.vector<Elem16s>(len, -32768, 32767);
            Elem64s exact = 0;
            for (std::size_t i = 0; i < len; ++i) {
                exact += Elem64s{a[i]} * b[i];
            }
            for (const std::size_t offset : vectorOffsets<Elem16s>(len)) {
                const Guarded<Elem16s> as(a, offset);
                const Guarded<Elem16s> bs(b, Guarded<Elem16s>::flush(len));
                Elem64s whole = -1;
                float single = -1;
                ASSERT_EQ(lyrsDotProd_16s64s(as.data(), bs.data(), static_cast<Elem32s>(len), &whole), StsNoErr);
                ASSERT_EQ(lyrsDotProd_16s32f(as.data(), bs.data(), static_cast<Elem32s>(len), &single), StsNoErr);
                ASSERT_EQ(whole, exact) << len;
                ASSERT_EQ(single, static_cast<float>(exact)) << len;
                ASSERT_TRUE(as.intact() && bs.intact());
            }
        }
    }
}

// 2^25 + 3: rounded at the end it is 2^25 + 4, rounded on the way 2^25.
TEST(DotProd, SixteenBitsToSingleRoundOnce)
{
    const std::array<Elem16s, 4> a{8192, 1, 1, 1};
    const std::array<Elem16s, 4> b{4096, 1, 1, 1};
    float y = 0;
    ASSERT_EQ(lyrsDotProd_16s32f(a.data(), b.data(), 4, &y), StsNoErr);
    EXPECT_EQ(y, 33554436.0F);
}

} // namespace
