// Log-sum against the oracle: the same bits, in the same order of additions at every width.

#include "lyrsr.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/log_domain.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

Status logSum(const float* x, float* r, Elem32s len)
{
    return lyrsLogSum_32f(x, r, len);
}
Status logSum(const double* x, double* r, Elem32s len)
{
    return lyrsLogSum_64f(x, r, len);
}
float reference(const float* x, std::size_t len)
{
    return lyr::oracle::logSum32(x, len);
}
double reference(const double* x, std::size_t len)
{
    return lyr::oracle::logSum64(x, len);
}

template <class T>
void compare()
{
    Random random(3);
    for (std::size_t len = 1; len <= 300; ++len) {
        for (const T spread : {T(1), T(10), T(40), T(1e7)}) {
            for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
                const auto v = random.vector<T>(len, -spread, spread / 8);
                const Guarded<T> x(v, offset == 0 ? Guarded<T>::flush(len) : offset);
                T result = 17;
                ASSERT_EQ(logSum(x.data(), &result, static_cast<Elem32s>(len)), StsNoErr);
                ASSERT_TRUE(sameBits(result, reference(v.data(), len))) << "length " << len << " spread " << spread;
            }
        }
    }
}

TEST(LogSum, Single)
{
    compare<float>();
}
TEST(LogSum, Double)
{
    compare<double>();
}

// A special value at each place of vectors that take each path.
template <class T>
void compareSpecial()
{
    const T inf = std::numeric_limits<T>::infinity();
    for (const T special : {std::numeric_limits<T>::quiet_NaN(), inf, -inf, T(-1e11)}) {
        for (std::size_t len = 1; len <= 21; ++len) {
            for (std::size_t at = 0; at < len; ++at) {
                std::vector<T> v(len, T(-3));
                v[at] = special;
                T result = 17;
                ASSERT_EQ(logSum(v.data(), &result, static_cast<Elem32s>(len)), StsNoErr);
                ASSERT_TRUE(sameBits(result, reference(v.data(), len))) << special << " at " << at << " of " << len;
                ASSERT_EQ(std::isnan(result), std::isnan(special));
            }
        }
    }
}

TEST(LogSum, SpecialValues)
{
    compareSpecial<float>();
    compareSpecial<double>();
}

TEST(LogSum, Examples)
{
    const std::vector<float> equal(1000, 0.0F);
    float result = 0;
    ASSERT_EQ(lyrsLogSum_32f(equal.data(), &result, 1000), StsNoErr);
    EXPECT_NEAR(result, std::log(1000.0), 1e-4);

    const float low[2] = {-5000000.0F, -6000000.0F};
    ASSERT_EQ(lyrsLogSum_32f(low, &result, 1), StsNoErr);
    EXPECT_EQ(result, -5000000.0F) << "one element alone meets no floor";
    ASSERT_EQ(lyrsLogSum_32f(low, &result, 2), StsNoErr);
    EXPECT_EQ(result, -4500000.0F);
}

// -------------------------------------------------------------------------------------------------------- fixed point

Status logSumFixed(const Elem32s* x, Elem32s* r, Elem32s len, Elem32s scaleFactor)
{
    return lyrsLogSum_32s_Sfs(x, r, len, scaleFactor);
}
Status logSumFixed(const Elem16s* x, Elem16s* r, Elem32s len, Elem32s scaleFactor)
{
    return lyrsLogSum_16s_Sfs(x, r, len, scaleFactor);
}

template <class T>
void compareFixed()
{
    Random random(17);
    constexpr T low = std::numeric_limits<T>::min();
    constexpr T high = std::numeric_limits<T>::max();
    std::vector<std::size_t> lengths{126, 127, 128, 129, 130, 134, 135, 255, 256, 257, 258, 384, 385, 1000};
    for (std::size_t len = 1; len <= 40; ++len) {
        lengths.push_back(len);
    }
    for (const std::size_t len : lengths) {
        for (const int scaleFactor :
             {0,         1,  5,  8,   15,  24,   31,   100,  150,   160,   1074,  1087,     2000,
              INT32_MAX, -1, -3, -20, -90, -127, -128, -200, -1023, -1024, -2000, INT32_MIN}) {
            for (const bool close : {false, true}) {
                const auto v = close ? random.vector<T>(len, T(-1000), T(1000)) : random.vector<T>(len, low, high);
                const Guarded<T> x(v, Guarded<T>::flush(len));
                T result = 17;
                ASSERT_EQ(logSumFixed(x.data(), &result, static_cast<Elem32s>(len), scaleFactor), StsNoErr);
                ASSERT_EQ(result, lyr::oracle::logSumFixed(v.data(), len, scaleFactor))
                    << "length " << len << " scale " << scaleFactor;
            }
        }
    }
}

TEST(LogSumFixedPoint, Elem32s)
{
    compareFixed<Elem32s>();
}
TEST(LogSumFixedPoint, Elem16s)
{
    compareFixed<Elem16s>();
}

TEST(LogSumFixedPoint, OneElementIsNotConverted)
{
    const Elem32s x = 16777217;
    Elem32s result = 0;
    ASSERT_EQ(lyrsLogSum_32s_Sfs(&x, &result, 1, 5), StsNoErr);
    EXPECT_EQ(result, 16777217);
}

TEST(LogSumFixedPoint, TruncatesAndSaturates)
{
    const Elem16s top[2] = {32767, 32767};
    const Elem16s small[2] = {-10, -10};
    Elem16s result = 0;
    ASSERT_EQ(lyrsLogSum_16s_Sfs(top, &result, 2, 0), StsNoErr);
    EXPECT_EQ(result, 32767);
    ASSERT_EQ(lyrsLogSum_16s_Sfs(small, &result, 2, 0), StsNoErr);
    EXPECT_EQ(result, -9) << "-9.31 toward zero";
    const std::vector<Elem16s> many(1000, 0);
    ASSERT_EQ(lyrsLogSum_16s_Sfs(many.data(), &result, 1000, 8), StsNoErr);
    EXPECT_EQ(result, 1768) << "256 * log(1000) = 1768.4";
}

template <class T>
T fixedSum(const std::vector<T>& x, Elem32s scaleFactor)
{
    T result = 17;
    EXPECT_EQ(logSumFixed(x.data(), &result, static_cast<Elem32s>(x.size()), scaleFactor), StsNoErr);
    return result;
}

// The scale stays a double: nine zeros times 2^200 are zeros, where times an infinite single they would be NaN.
TEST(LogSumFixedPoint, ScaleIsNotRoundedToSingle)
{
    for (const std::size_t len : {2U, 6U, 7U, 9U, 130U}) {
        for (const Elem32s scaleFactor : {-128, -200, -1023}) {
            EXPECT_EQ(fixedSum(std::vector<Elem32s>(len, 0), scaleFactor), 0) << "log(len) / 2^200";
            EXPECT_EQ(fixedSum(std::vector<Elem16s>(len, 0), scaleFactor), 0);
        }
    }
    EXPECT_EQ(fixedSum<Elem32s>({5, 4}, -200), INT32_MAX) << "beyond single precision, and divided by the scale";
    EXPECT_EQ(fixedSum<Elem16s>({5, 4}, -200), INT16_MAX);
    EXPECT_EQ(fixedSum<Elem16s>({-5, -7}, -200), 0) << "the floor, divided by the scale";
}

TEST(LogSumFixedPoint, NanIsTheLowerLimit)
{
    const std::vector<Elem16s> seven(7, 5);
    EXPECT_EQ(fixedSum(seven, -128), INT16_MIN) << "two infinities make NaN";
    EXPECT_EQ(fixedSum(seven, -200), INT16_MIN);
    EXPECT_EQ(fixedSum(std::vector<Elem32s>(7, 5), -200), INT32_MIN);
    for (const std::size_t len : {2U, 6U, 7U, 9U, 130U}) {
        for (const Elem32s scaleFactor : {-1024, -2000, INT32_MIN}) {
            EXPECT_EQ(fixedSum(std::vector<Elem16s>(len, 0), scaleFactor), INT16_MIN) << "0 times infinity";
            EXPECT_EQ(fixedSum(std::vector<Elem16s>(len, 5), scaleFactor), INT16_MIN);
            EXPECT_EQ(fixedSum(std::vector<Elem32s>(len, 0), scaleFactor), INT32_MIN);
            EXPECT_EQ(fixedSum(std::vector<Elem32s>(len, 5), scaleFactor), INT32_MIN);
        }
    }
}

// A scale of nothing: the operands are 0, and their sum divided by it is beyond any limit.
TEST(LogSumFixedPoint, ScaleOfNothing)
{
    for (const std::size_t len : {2U, 6U, 7U, 130U}) {
        for (const Elem32s scaleFactor : {150, 1087, 2000, INT32_MAX}) {
            EXPECT_EQ(fixedSum(std::vector<Elem32s>(len, -5), scaleFactor), INT32_MAX);
            EXPECT_EQ(fixedSum(std::vector<Elem16s>(len, -5), scaleFactor), INT16_MAX);
        }
    }
}

} // namespace
