// Log-subtraction against the oracle.

#include "lyrsr.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <vector>

#include "oracle/log_domain.hpp"
#include "scoring/log_sub.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

template <class T>
constexpr T inf = std::numeric_limits<T>::infinity();
template <class T>
constexpr T nan = std::numeric_limits<T>::quiet_NaN();

Status logSub(const float* a, float* b, Elem32s len)
{
    return lyrsLogSub_32f(a, b, len);
}
Status logSub(const double* a, double* b, Elem32s len)
{
    return lyrsLogSub_64f(a, b, len);
}
float reference(float a, float b)
{
    return lyr::oracle::logSub32(a, b);
}
double reference(double a, double b)
{
    return lyr::oracle::logSub64(a, b);
}

template <class T>
void compare()
{
    Random random(3);
    for (std::size_t len = 1; len <= 70; ++len) {
        std::vector<T> a(len);
        std::vector<T> b(len);
        for (std::size_t i = 0; i < len; ++i) {
            a[i] = random.uniform(T(-60), T(20));
            b[i] = a[i] - random.uniform(T(0.0001), random.uniform(0, 1) == 0 ? T(1) : T(30));
        }
        for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
            const Guarded<T> src(a, offset);
            const Guarded<T> dst(b, offset == 0 ? 0 : Guarded<T>::flush(len));
            ASSERT_EQ(logSub(src.data(), dst.data(), static_cast<Elem32s>(len)), StsNoErr);
            ASSERT_TRUE(src.intact() && dst.intact());
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(sameBits(dst[i], reference(a[i], b[i]))) << a[i] << " less " << b[i];
            }
        }
    }
}

TEST(LogSub, Single)
{
    compare<float>();
}
TEST(LogSub, Double)
{
    compare<double>();
}

template <class T>
T differenceOf(T a, T b)
{
    EXPECT_EQ(logSub(&a, &b, 1), StsNoErr);
    return b;
}

TEST(LogSub, Examples)
{
    EXPECT_NEAR(differenceOf(0.0F, -1.0F), std::log(1 - std::exp(-1.0)), 1e-7);
    EXPECT_NEAR(differenceOf(std::log(3.0), std::log(1.0)), std::log(2.0), 1e-15);
    EXPECT_EQ(differenceOf(0.0F, -20.0F), 0.0F) << "below the cut-off";
    EXPECT_EQ(differenceOf(-5000000.0F, -6000000.0F), -4500000.0F) << "no lower than the floor";
    EXPECT_EQ(differenceOf(0.0F, -1e-20F), -4500000.0F) << "exp rounds to one";
    EXPECT_EQ(differenceOf(0.0, -1e-20), -1e10);
    EXPECT_EQ(differenceOf(-9.5e9, -9.6e9), -1e10) << "the floor lies below its test";
    EXPECT_EQ(differenceOf(-8.9e9, -9.6e9), -8.9e9);
}

template <class T>
void compareSpecial(double cutOff)
{
    const T at = static_cast<T>(cutOff);
    const std::vector<T> values{T(0),
                                -T(0),
                                T(1),
                                T(-1e-30),
                                at,
                                std::nextafter(at, T(0)),
                                std::nextafter(at, T(-100)),
                                T(-4500000),
                                T(-4600000),
                                T(-9e9),
                                T(-2e10),
                                inf<T>,
                                -inf<T>,
                                nan<T>,
                                std::numeric_limits<T>::lowest(),
                                std::numeric_limits<T>::denorm_min()};
    for (const T a : values) {
        for (const T b : values) {
            T result = b;
            if (b - a >= 0) {
                EXPECT_EQ(logSub(&a, &result, 1), StsRange) << a << " less " << b;
                EXPECT_TRUE(sameBits(result, b));
            } else {
                EXPECT_EQ(logSub(&a, &result, 1), StsNoErr) << a << " less " << b;
                EXPECT_TRUE(sameBits(result, reference(a, b))) << a << " less " << b;
            }
        }
    }
}

TEST(LogSub, SpecialValues)
{
    compareSpecial<float>(-15.3195879547406);
    compareSpecial<double>(-23.0258509299405);
}

TEST(LogSub, NanAndEqualInfinitiesPassTheTest)
{
    EXPECT_TRUE(std::isnan(differenceOf(nan<float>, 0.0F)));
    EXPECT_TRUE(std::isnan(differenceOf(nan<float>, nan<float>)));
    EXPECT_TRUE(std::isnan(differenceOf(nan<double>, 0.0)));
    EXPECT_EQ(differenceOf(1.0F, nan<float>), 1.0F) << "not at or above the cut-off";
    EXPECT_EQ(differenceOf(inf<float>, inf<float>), inf<float>);
    EXPECT_EQ(differenceOf(-inf<float>, -inf<float>), -4500000.0F);
    EXPECT_EQ(differenceOf(-inf<double>, -inf<double>), -1e10);
}

// One element out of its domain, wherever it stands, and nothing is written, those ahead of it included.
template <class T, class Call>
void expectRange(Call call)
{
    for (std::size_t len = 1; len <= 40; ++len) {
        for (std::size_t bad = 0; bad < len; ++bad) {
            std::vector<T> a(len, T(10));
            std::vector<T> b(len, T(5));
            b[bad] = a[bad];
            const std::vector<T> before = b;
            ASSERT_EQ(call(a.data(), b.data(), static_cast<Elem32s>(len)), StsRange) << bad << " of " << len;
            ASSERT_EQ(b, before);
        }
    }
}

TEST(LogSub, EqualOperandsAnywhereWriteNothing)
{
    expectRange<float>([](const float* a, float* b, Elem32s n) { return lyrsLogSub_32f(a, b, n); });
    expectRange<double>([](const double* a, double* b, Elem32s n) { return lyrsLogSub_64f(a, b, n); });
    expectRange<Elem32s>([](const Elem32s* a, Elem32s* b, Elem32s n) { return lyrsLogSub_32s_Sfs(a, b, n, 2); });
    expectRange<Elem16s>([](const Elem16s* a, Elem16s* b, Elem32s n) { return lyrsLogSub_16s_Sfs(a, b, n, 2); });
}

TEST(LogSub, DomainTests)
{
    const float a = 1;
    const float b = 2;
    EXPECT_EQ(lyr::ParamErr32f(&a, &b, 1), 1);
    EXPECT_EQ(lyr::ParamErr32f(&b, &a, 1), 0);
    EXPECT_EQ(lyr::ParamErr32f(&a, &b, 0), 0) << "no elements, no error";
    EXPECT_EQ(lyr::ParamErr32f(&a, &b, -1), 0);
    const double wide[2] = {1, 1};
    EXPECT_EQ(lyr::ParamErr64f(wide, wide + 1, 1), 1);
    EXPECT_EQ(lyr::ParamErr64f(wide, wide + 1, 0), 0);
    const Elem32s low = INT32_MIN;
    const Elem32s high = INT32_MAX;
    EXPECT_EQ(lyr::ParamErr32s(&high, &low, 1), 1) << "low less high wraps to 1";
    EXPECT_EQ(lyr::ParamErr32s(&low, &high, 1), 0) << "high less low wraps to -1";
    const Elem16s low16 = INT16_MIN;
    const Elem16s high16 = INT16_MAX;
    EXPECT_EQ(lyr::ParamErr16s(&high16, &low16, 1), 0) << "16 bits do not wrap";
    EXPECT_EQ(lyr::ParamErr16s(&low16, &high16, 1), 1);
}

// -------------------------------------------------------------------------------------------------------- fixed point

Status logSubFixed(const Elem32s* a, Elem32s* b, Elem32s len, Elem32s scaleFactor)
{
    return lyrsLogSub_32s_Sfs(a, b, len, scaleFactor);
}
Status logSubFixed(const Elem16s* a, Elem16s* b, Elem32s len, Elem32s scaleFactor)
{
    return lyrsLogSub_16s_Sfs(a, b, len, scaleFactor);
}

template <class T>
void compareFixed()
{
    Random random(13);
    constexpr T low = std::numeric_limits<T>::min() / 2;
    constexpr T high = std::numeric_limits<T>::max() / 2;
    for (std::size_t len = 1; len <= 40; ++len) {
        for (const int scaleFactor : {0, 1, 5, 8, 15, 31, 150, -1, -3, -20, -128, INT32_MIN, INT32_MAX}) {
            std::vector<T> a(len);
            std::vector<T> b(len);
            for (std::size_t i = 0; i < len; ++i) {
                a[i] = random.uniform<T>(low, high);
                b[i] = static_cast<T>(a[i] - random.uniform<T>(1, i % 2 == 0 ? T(100) : high));
            }
            const Guarded<T> src(a, Guarded<T>::flush(len));
            const Guarded<T> dst(b, Guarded<T>::flush(len));
            ASSERT_EQ(logSubFixed(src.data(), dst.data(), static_cast<Elem32s>(len), scaleFactor), StsNoErr);
            ASSERT_TRUE(src.intact() && dst.intact());
            for (std::size_t i = 0; i < len; ++i) {
                const auto r = static_cast<std::uint32_t>(lyr::oracle::logSubFixed(a[i], b[i], scaleFactor));
                const T expected = static_cast<T>(static_cast<std::make_unsigned_t<T>>(r));
                ASSERT_EQ(dst[i], expected) << a[i] << " less " << b[i] << " scale " << scaleFactor;
            }
        }
    }
}

TEST(LogSubFixedPoint, Elem32s)
{
    compareFixed<Elem32s>();
}
TEST(LogSubFixedPoint, Elem16s)
{
    compareFixed<Elem16s>();
}

// The difference is scaled down, the logarithm is added as it is: not what log-addition does, and meant.
TEST(LogSubFixedPoint, TheLogarithmIsNotScaled)
{
    const Elem32s a = 1024;
    Elem32s b = 1023;
    ASSERT_EQ(lyrsLogSub_32s_Sfs(&a, &b, 1, 10), StsNoErr);
    EXPECT_EQ(b, 1017) << "1024 + log(1 - exp(-1/1024)) = 1024 - 6.93";
}

// A scale of 2^-150 is zero: exp(0) leaves nothing, and the floor is stored by its low 16 bits.
TEST(LogSubFixedPoint, SixteenBitsDoNotSaturate)
{
    const Elem16s a = 100;
    Elem16s b = 90;
    ASSERT_EQ(lyrsLogSub_16s_Sfs(&a, &b, 1, 150), StsNoErr);
    EXPECT_EQ(b, static_cast<Elem16s>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(-4500000))));
}

TEST(LogSubFixedPoint, TheDifferenceOf32BitsWraps)
{
    const Elem32s high = INT32_MAX;
    Elem32s low = INT32_MIN;
    EXPECT_EQ(lyrsLogSub_32s_Sfs(&high, &low, 1, 0), StsRange) << "though it is far below";
    EXPECT_EQ(low, INT32_MIN);

    Elem32s above = INT32_MAX;
    const Elem32s below = INT32_MIN;
    EXPECT_EQ(lyrsLogSub_32s_Sfs(&below, &above, 1, 0), StsNoErr) << "though it is far above";
    EXPECT_EQ(above, -4500000) << "the floor";
    for (const Elem32s scaleFactor : {INT32_MIN, -5, 40, 150}) {
        Elem32s farAbove = INT32_MAX;
        EXPECT_EQ(lyrsLogSub_32s_Sfs(&below, &farAbove, 1, scaleFactor), StsNoErr);
        EXPECT_EQ(farAbove, -4500000) << "whatever its scale, scale factor " << scaleFactor;
    }
}

TEST(LogSubFixedPoint, NoLowerThanTheFloor)
{
    const Elem32s a = -2000000000;
    Elem32s b = -2100000000;
    ASSERT_EQ(lyrsLogSub_32s_Sfs(&a, &b, 1, 0), StsNoErr);
    EXPECT_EQ(b, -4500000);
}

} // namespace
