// Conversions between element types.

#include "lyrsr.h"

#include <array>
#include <cfenv>
#include <gtest/gtest.h>
#include <limits>
#include <vector>
#include <xmmintrin.h>

#include "oracle/vector_convert.hpp"
#include "support/random.hpp"
#include "vector/conversion_cases.hpp"

namespace {

using lyr::test::compareElements;
using lyr::test::compareValues;
using lyr::test::Random;

constexpr float inf32 = std::numeric_limits<float>::infinity();
constexpr double inf64 = std::numeric_limits<double>::infinity();
constexpr float nan32 = std::numeric_limits<float>::quiet_NaN();
constexpr double nan64 = std::numeric_limits<double>::quiet_NaN();

// Halves, the neighbourhoods of every limit, both zeros, infinities and NaN, then random numbers of all sizes.
template <class T>
std::vector<T> floatingValues()
{
    constexpr T inf = std::numeric_limits<T>::infinity();
    constexpr T nan = std::numeric_limits<T>::quiet_NaN();
    constexpr T least = std::numeric_limits<T>::denorm_min();
    std::vector<T> values;
    for (const T v : {T(0),
                      T(0.5),
                      T(1.5),
                      T(2.5),
                      T(3.5),
                      T(0.49999997),
                      T(0.75),
                      T(1),
                      T(32766.5),
                      T(32767),
                      T(32767.5),
                      T(32768),
                      T(32768.5),
                      T(32769),
                      T(65536.5),
                      T(8388607.5),
                      T(2147483520),
                      T(2147483646.5),
                      T(2147483647),
                      T(2147483647.5),
                      T(2147483648),
                      T(2147483648.5),
                      T(2147484160),
                      T(1e30),
                      std::numeric_limits<T>::max(),
                      std::numeric_limits<T>::min(),
                      least,
                      inf,
                      nan}) {
        values.push_back(v);
        values.push_back(-v);
    }
    Random random(3);
    for (int i = 0; i < 400; ++i) {
        values.push_back(random.uniform(T(-1), T(1)) * std::ldexp(T(1), random.uniform(-4, 36)));
    }
    return values;
}

std::vector<Elem32s> integerValues()
{
    std::vector<Elem32s> values;
    for (int bit = 0; bit < 31; ++bit) {
        for (int d = -2; d <= 2; ++d) {
            values.push_back((1 << bit) + d);
            values.push_back(-(1 << bit) + d);
            values.push_back((1 << bit) + (1 << bit) / 2 + d);
        }
    }
    values.insert(values.end(), {0, INT32_MAX, INT32_MAX - 1, INT32_MIN, INT32_MIN + 1, 32767, 32768, -32768, -32769});
    Random random(4);
    for (int i = 0; i < 300; ++i) {
        values.push_back(random.uniform(INT32_MIN, INT32_MAX) >> random.uniform(0, 30));
    }
    return values;
}

std::vector<Elem32s> scaleFactors()
{
    std::vector<Elem32s> all{INT32_MIN, INT32_MIN + 1, -1100, -1008, -150, -129,          -128,     -127, -126,
                             -113,      -112,          -111,  -97,   -96,  -95,           126,      127,  148,
                             149,       150,           151,   1022,  1100, INT32_MAX - 1, INT32_MAX};
    for (Elem32s s = -40; s <= 40; ++s) {
        all.push_back(s);
    }
    return all;
}

// --------------------------------------------------------------------------------------------------- to floating point

// Every length and offset, for one scale on each path.
TEST(Convert, EveryLengthAndOffset)
{
    const auto ints = integerValues();
    const auto singles = floatingValues<float>();
    const auto doubles = floatingValues<double>();
    std::vector<Elem16s> shorts;
    for (const Elem32s x : ints) {
        shorts.push_back(static_cast<Elem16s>(x & 0xFFFF));
    }
    compareElements<float>(
        shorts, [](const Elem16s* p, float* q, Elem32s n) { return lyrsConvert_16s32f_Sfs(p, q, n, 3); },
        [](Elem16s x) { return static_cast<float>(x) * 0.125F; });
    compareElements<float>(
        ints, [](const Elem32s* p, float* q, Elem32s n) { return lyrsConvert_32s32f_Sfs(p, q, n, -1); },
        [](Elem32s x) { return static_cast<float>(x) * 2.0F; });
    compareElements<double>(
        shorts, [](const Elem16s* p, double* q, Elem32s n) { return lyrsConvert_16s64f_Sfs(p, q, n, 1); },
        [](Elem16s x) { return x * 0.5; });
    for (const Elem32s rnd : {0, 1}) {
        compareElements<Elem16s>(
            singles, [=](const float* p, Elem16s* q, Elem32s n) { return lyrsConvert_32f16s_Sfs(p, q, n, rnd, 0); },
            [=](float x) { return lyr::oracle::convert32f16s(x, rnd, 0); });
        compareElements<Elem32s>(
            singles, [=](const float* p, Elem32s* q, Elem32s n) { return lyrsConvert_32f32s_Sfs(p, q, n, rnd, 1); },
            [=](float x) { return lyr::oracle::convert32f32s(x, rnd, 1); });
        compareElements<Elem32s>(
            doubles, [=](const double* p, Elem32s* q, Elem32s n) { return lyrsConvert_64f32s_Sfs(p, q, n, rnd, 1); },
            [=](double x) { return lyr::oracle::convert64f32s(x, rnd, 1); });
    }
    for (const Elem32s s : {0, 3, -2}) {
        compareElements<Elem16s>(
            ints, [=](const Elem32s* p, Elem16s* q, Elem32s n) { return lyrsConvert_32s16s_Sfs(p, q, n, s); },
            [=](Elem32s x) { return lyr::oracle::convert32s16s(x, s); });
    }
}

TEST(ConvertToFloat, KeepsValuesThatFit)
{
    std::vector<Elem8u> bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.push_back(static_cast<Elem8u>(i));
    }
    compareElements<float>(bytes, lyrsConvert_8u32f, [](Elem8u x) { return static_cast<float>(x); });

    std::vector<Elem16s> shorts;
    for (int i = -32768; i < 32768; i += 37) {
        shorts.push_back(static_cast<Elem16s>(i));
    }
    shorts.push_back(32767);
    compareElements<float>(shorts, lyrsConvert_16s32f, [](Elem16s x) { return static_cast<float>(x); });
}

TEST(ConvertToFloat, RoundsByTheModeInForce)
{
    const auto ints = integerValues();
    auto doubles = floatingValues<double>();
    doubles.insert(doubles.end(), {1e300, -1e300, 1e-300, -1e-300, 1.00000001, 1.4e-45, 0.7e-45, -1.00000001, 3.5e38});
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        SCOPED_TRACE(mode);
        std::fesetround(mode);
        // volatile: converted here and now, not by the compiler.
        compareElements<float>(ints, lyrsConvert_32s32f, [](Elem32s x) {
            const volatile Elem32s y = x;
            return static_cast<float>(y);
        });
        compareElements<float>(
            ints, [](const Elem32s* p, float* q, Elem32s n) { return lyrsConvert_32s32f_Sfs(p, q, n, 3); },
            [](Elem32s x) {
                const volatile Elem32s y = x;
                return static_cast<float>(y) * 0.125F;
            });
        compareElements<float>(doubles, lyrsConvert_64f32f, [](double x) {
            const volatile double y = x;
            return static_cast<float>(y);
        });
        std::fesetround(FE_TONEAREST);
    }
}

TEST(ConvertToFloat, ScalesByAPowerOfTwoWithinLimits)
{
    const auto ints = integerValues();
    std::vector<Elem16s> shorts;
    for (const Elem32s x : ints) {
        shorts.push_back(static_cast<Elem16s>(x & 0xFFFF));
    }
    const auto limit = [](Elem32s s, Elem32s low, Elem32s high) { return s < low ? low : (s > high ? high : s); };
    for (const Elem32s s : scaleFactors()) {
        SCOPED_TRACE(s);
        compareValues<float>(
            shorts, [s](const Elem16s* p, float* q, Elem32s n) { return lyrsConvert_16s32f_Sfs(p, q, n, s); },
            [&](Elem16s x) { return std::ldexp(static_cast<float>(x), -limit(s, -112, 126)); });
        compareValues<float>(
            ints, [s](const Elem32s* p, float* q, Elem32s n) { return lyrsConvert_32s32f_Sfs(p, q, n, s); },
            [&](Elem32s x) { return std::ldexp(static_cast<float>(x), -limit(s, -96, 126)); });
        compareValues<double>(
            shorts, [s](const Elem16s* p, double* q, Elem32s n) { return lyrsConvert_16s64f_Sfs(p, q, n, s); },
            [&](Elem16s x) { return std::ldexp(static_cast<double>(x), -limit(s, -1008, 1022)); });
    }
}

// --------------------------------------------------------------------------------------------------------- to integers

TEST(ConvertToIntegers, EveryScaleAndBothRoundings)
{
    const auto singles = floatingValues<float>();
    const auto doubles = floatingValues<double>();
    for (const Elem32s s : scaleFactors()) {
        for (const Elem32s rnd : {0, 1, -7, INT32_MIN}) {
            SCOPED_TRACE(testing::Message() << "scale " << s << " rounding " << rnd);
            compareValues<Elem16s>(
                singles, [=](const float* p, Elem16s* q, Elem32s n) { return lyrsConvert_32f16s_Sfs(p, q, n, rnd, s); },
                [=](float x) { return lyr::oracle::convert32f16s(x, rnd, s); });
            compareValues<Elem32s>(
                singles, [=](const float* p, Elem32s* q, Elem32s n) { return lyrsConvert_32f32s_Sfs(p, q, n, rnd, s); },
                [=](float x) { return lyr::oracle::convert32f32s(x, rnd, s); });
            compareValues<Elem32s>(
                doubles,
                [=](const double* p, Elem32s* q, Elem32s n) { return lyrsConvert_64f32s_Sfs(p, q, n, rnd, s); },
                [=](double x) { return lyr::oracle::convert64f32s(x, rnd, s); });
        }
    }
}

// The values of the tables, one by one.
TEST(ConvertToIntegers, Limits)
{
    const auto to16 = [](float x, Elem32s rnd, Elem32s s = 0) {
        Elem16s y = 1;
        EXPECT_EQ(lyrsConvert_32f16s_Sfs(&x, &y, 1, rnd, s), StsNoErr);
        return y;
    };
    const auto to32 = [](float x, Elem32s rnd, Elem32s s = 0) {
        Elem32s y = 1;
        EXPECT_EQ(lyrsConvert_32f32s_Sfs(&x, &y, 1, rnd, s), StsNoErr);
        return y;
    };
    const auto doubleTo32 = [](double x, Elem32s rnd, Elem32s s = 0) {
        Elem32s y = 1;
        EXPECT_EQ(lyrsConvert_64f32s_Sfs(&x, &y, 1, rnd, s), StsNoErr);
        return y;
    };
    EXPECT_EQ(to16(2.5F, 1), 2);
    EXPECT_EQ(to16(-2.5F, 0), -2);
    EXPECT_EQ(to16(-inf32, 1), -32768);
    EXPECT_EQ(to16(-40000.0F, 0), -32768);
    // A NaN of either sign is replaced by the upper limit.
    EXPECT_EQ(to16(nan32, 1), 32767);
    EXPECT_EQ(to16(-nan32, 0), 32767);
    EXPECT_EQ(doubleTo32(nan64, 1), INT32_MAX);
    EXPECT_EQ(doubleTo32(-nan64, 0), INT32_MAX);
    EXPECT_EQ(doubleTo32(-inf64, 1), INT32_MIN);
    EXPECT_EQ(doubleTo32(2147483647.5, 1), INT32_MAX);
    // Here the sign of a NaN decides.
    EXPECT_EQ(to32(nan32, 1), INT32_MAX);
    EXPECT_EQ(to32(-nan32, 1), INT32_MIN);
    EXPECT_EQ(to32(inf32, 1), INT32_MAX);
    EXPECT_EQ(to32(2147483648.0F, 1), INT32_MAX);
    EXPECT_EQ(to32(-2147483648.0F - 512.0F, 1), INT32_MIN);
    EXPECT_EQ(to32(2147483520.0F, 0), 2147483520);
    // 0 times an infinite factor, and an infinity times a factor of 0.
    EXPECT_EQ(to32(0.0F, 1, -128), INT32_MIN);
    EXPECT_EQ(to32(inf32, 1, 150), INT32_MIN);
    EXPECT_EQ(to16(0.0F, 1, -128), 32767);
    EXPECT_EQ(doubleTo32(0.0, 1, INT32_MIN), INT32_MAX);
    // The factor of the doubles is a single: 2^-150 is 0, 2^-149 is not.
    EXPECT_EQ(doubleTo32(0x1p151, 1, 150), 0);
    EXPECT_EQ(doubleTo32(0x1p151, 1, 149), 4);
}

TEST(ConvertToIntegers, RoundsToNearestInEveryModeAndTruncatesInEveryMode)
{
    const std::array<float, 20> x{2.5F, -2.5F, 1.25F, -1.25F, 0.75F, -0.75F, 3.5F, -3.5F, 1e9F, -1e9F,
                                  0.5F, -0.5F, 0.1F,  -0.1F,  1.9F,  -1.9F,  7.5F, 8.5F,  9.5F, 10.5F};
    const std::array<double, 5> xd{2.5, -2.5, 1.25, -0.75, 3.5};
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        for (const Elem32s rnd : {0, 1, -1}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << " rounding " << rnd);
            std::array<Elem16s, 20> y16{};
            std::array<Elem32s, 20> y32{};
            std::array<Elem32s, 5> yd{};
            std::fesetround(mode);
            lyrsConvert_32f16s_Sfs(x.data(), y16.data(), 20, rnd, 0);
            lyrsConvert_32f32s_Sfs(x.data(), y32.data(), 20, rnd, 0);
            lyrsConvert_64f32s_Sfs(xd.data(), yd.data(), 5, rnd, 0);
            const int after = std::fegetround();
            std::fesetround(FE_TONEAREST);
            EXPECT_EQ(after, mode);
            for (std::size_t i = 0; i < x.size(); ++i) {
                EXPECT_EQ(y16[i], lyr::oracle::convert32f16s(x[i], rnd, 0)) << x[i];
                EXPECT_EQ(y32[i], lyr::oracle::convert32f32s(x[i], rnd, 0)) << x[i];
            }
            for (std::size_t i = 0; i < xd.size(); ++i) {
                EXPECT_EQ(yd[i], lyr::oracle::convert64f32s(xd[i], rnd, 0)) << xd[i];
            }
        }
    }
}

TEST(ConvertToIntegers, OverflowLeavesTheControlWordAndTheInvalidFlagAlone)
{
    const std::array<float, 19> x{1e20F, -1e20F, nan32, inf32, -inf32, 0.0F};
    std::array<double, 19> xd{1e20, -1e20, nan64, inf64, -inf64, 0.0};
    std::array<Elem16s, 19> y16{};
    std::array<Elem32s, 19> y32{};
    const unsigned saved = _mm_getcsr();
    constexpr unsigned invalid = 1U;
    constexpr unsigned flags = 0x3FU;
    for (const unsigned rounding : {0x0000U, 0x2000U, 0x4000U, 0x6000U}) {
        for (const unsigned flag : {0U, invalid}) {
            // The invalid exception unmasked in half of the runs: it must not be raised.
            for (const unsigned masks : {0x1F80U, 0x1F00U}) {
                for (const Elem32s rnd : {0, 1}) {
                    for (const Elem32s s : {0, -128, 1}) {
                        const unsigned before = masks | rounding | flag;
                        std::array<unsigned, 3> after{};
                        _mm_setcsr(before);
                        lyrsConvert_32f16s_Sfs(x.data(), y16.data(), 19, rnd, s);
                        after[0] = _mm_getcsr();
                        lyrsConvert_32f32s_Sfs(x.data(), y32.data(), 19, rnd, s);
                        after[1] = _mm_getcsr();
                        lyrsConvert_64f32s_Sfs(xd.data(), y32.data(), 19, rnd, s);
                        after[2] = _mm_getcsr();
                        _mm_setcsr(saved);
                        for (const unsigned a : after) {
                            EXPECT_EQ(a & ~flags, before & ~flags);
                            EXPECT_EQ(a & invalid, flag);
                        }
                    }
                }
            }
        }
    }
}

// At lengths that end with an overlapping register, and at those that begin with a short one.
TEST(ConvertToIntegers, InPlace)
{
    for (const std::size_t len : {3U, 37U, 193U, 300U}) {
        std::vector<float> x(len);
        for (std::size_t i = 0; i < len; ++i) {
            x[i] = static_cast<float>(i) * 1.5F - 20.0F;
        }
        for (const std::size_t offset : {0U, 4U, 28U, 48U}) {
            const lyr::test::Guarded<float> both(x, offset);
            auto* const ints = reinterpret_cast<Elem32s*>(both.data());
            ASSERT_EQ(lyrsConvert_32f32s_Sfs(both.data(), ints, static_cast<Elem32s>(len), 1, 0), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_EQ(std::bit_cast<Elem32s>(both[i]), lyr::oracle::convert32f32s(x[i], 1, 0))
                    << i << " of " << len;
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------- integers to 16 bits

TEST(ConvertIntegers, EveryScale)
{
    const auto values = integerValues();
    for (const Elem32s s : scaleFactors()) {
        SCOPED_TRACE(s);
        compareValues<Elem16s>(
            values, [s](const Elem32s* p, Elem16s* q, Elem32s n) { return lyrsConvert_32s16s_Sfs(p, q, n, s); },
            [s](Elem32s x) { return lyr::oracle::convert32s16s(x, s); });
    }
}

TEST(ConvertIntegers, TiesGoToEven)
{
    const std::array<Elem32s, 4> x{1, 3, 5, 7};
    std::array<Elem16s, 4> y{};
    ASSERT_EQ(lyrsConvert_32s16s_Sfs(x.data(), y.data(), 4, 1), StsNoErr);
    EXPECT_EQ(y, (std::array<Elem16s, 4>{0, 2, 2, 4}));
}

// Where the rounding addend would leave 32 bits.
TEST(ConvertIntegers, TheTopOfTheRangeRoundsLikeTheRest)
{
    const std::array<Elem32s, 3> x{INT32_MAX, 0x60000000, 0x40000000};
    std::array<Elem16s, 3> y{};
    ASSERT_EQ(lyrsConvert_32s16s_Sfs(x.data(), y.data(), 3, 31), StsNoErr);
    EXPECT_EQ(y, (std::array<Elem16s, 3>{1, 1, 0}));
    ASSERT_EQ(lyrsConvert_32s16s_Sfs(x.data(), y.data(), 3, 30), StsNoErr);
    EXPECT_EQ(y, (std::array<Elem16s, 3>{2, 2, 1}));
}

} // namespace
