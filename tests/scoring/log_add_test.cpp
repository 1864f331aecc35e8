// Log-addition against the oracle: the same bits, wherever an element stands and at every width.

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <vector>

#include "oracle/log_domain.hpp"
#include "scoring/log_add_tables.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"
#include "support/vectors.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

template <class T>
constexpr T inf = std::numeric_limits<T>::infinity();
template <class T>
constexpr T nan = std::numeric_limits<T>::quiet_NaN();

std::vector<std::size_t> lengths()
{
    auto all = lyr::test::vectorLengths();
    all.insert(all.end(), {99, 100, 101});
    return all;
}

// Operands whose differences fall into every interval and below the cut-off, mixed from lane to lane.
template <class T>
std::vector<T> operands(Random& random, std::size_t n)
{
    std::vector<T> v(n);
    for (T& x : v) {
        const T spread[] = {T(1), T(5), T(12), T(30), T(300)};
        const T s = spread[random.uniform(0, 4)];
        x = random.uniform(-s, s);
    }
    return v;
}

Status logAdd(const float* a, float* b, Elem32s len, Elem32s hint)
{
    return lyrsLogAdd_32f(a, b, len, hint);
}
Status logAdd(const double* a, double* b, Elem32s len, Elem32s hint)
{
    return lyrsLogAdd_64f(a, b, len, hint);
}
float reference(float a, float b, int hint)
{
    return lyr::oracle::logAddHint(a, b, hint);
}
double reference(double a, double b, int /*hint*/)
{
    return lyr::oracle::logAdd64(a, b);
}

// ------------------------------------------------------------------------------------------------------------- tables

// The polynomials come within this of log(1 + exp(d)) on their intervals, and so do their tables in the library.
void expectPolynomials(const Elem64f* const (&tables)[3], const lyr::oracle::LogAddNumbers& numbers, std::size_t degree,
                       double bound)
{
    double above = 0;
    for (std::size_t k = 0; k < 3; ++k) {
        const auto& interval = numbers.intervals[k];
        ASSERT_EQ(interval.coefficients.size(), degree + 1);
        for (std::size_t i = 0; i <= degree; ++i) {
            EXPECT_EQ(tables[k][i], interval.coefficients[i]) << "interval " << k << " coefficient " << i;
        }
        const double below = k == 2 ? numbers.cutOff : interval.above;
        for (int i = 0; i <= 1000; ++i) {
            const double d = above + (below - above) * i / 1000;
            EXPECT_NEAR(lyr::oracle::horner(interval.coefficients, d - interval.start), std::log1p(std::exp(d)), bound);
        }
        above = below;
    }
}

TEST(LogAddTables, Single)
{
    const Elem64f* tables[3] = {};
    lyr::GetLogAddConst_F(&tables[0], &tables[1], &tables[2]);
    expectPolynomials(tables, lyr::oracle::singleNumbers, 10, 5e-9);
}

TEST(LogAddTables, Double)
{
    const Elem64f* tables[3] = {};
    lyr::GetLogAddConst(&tables[0], &tables[1], &tables[2]);
    expectPolynomials(tables, lyr::oracle::doubleNumbers, 21, 4e-15);
    for (const Elem64f* const table : tables) {
        EXPECT_EQ(table[22], 0.0) << "whole units of 32 bytes";
        EXPECT_EQ(table[23], 0.0);
    }
}

// ------------------------------------------------------------------------------------------------------ floating point

template <class T>
void compare(int hint)
{
    SCOPED_TRACE("hint " + std::to_string(hint));
    Random random(3);
    for (const std::size_t len : lengths()) {
        const auto a = operands<T>(random, len);
        const auto b = operands<T>(random, len);
        for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
            const Guarded<T> src(a, offset);
            const Guarded<T> dst(b, offset == 0 ? 0 : Guarded<T>::flush(len));
            ASSERT_EQ(logAdd(src.data(), dst.data(), static_cast<Elem32s>(len), hint), StsNoErr);
            ASSERT_TRUE(src.intact() && dst.intact());
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(sameBits(dst[i], reference(a[i], b[i], hint)))
                    << "element " << i << " of " << len << ": " << a[i] << " and " << b[i];
                ASSERT_EQ(src[i], a[i]);
            }
        }
    }
}

TEST(LogAdd, Single)
{
    for (const int hint : {0, 1, 2}) {
        compare<float>(hint);
    }
}

TEST(LogAdd, Double)
{
    for (const int hint : {0, 1, 2}) {
        compare<double>(hint);
    }
}

// The interval's ends and the cut-off, from both sides, and every pair of special values, in every lane.
template <class T>
void compareSpecial(int hint, const lyr::oracle::LogAddNumbers& numbers)
{
    SCOPED_TRACE("hint " + std::to_string(hint));
    std::vector<T> values{T(0),
                          -T(0),
                          inf<T>,
                          -inf<T>,
                          nan<T>,
                          -nan<T>,
                          T(1),
                          T(-1e-30),
                          T(-5000000),
                          T(-6000000),
                          T(-4500000),
                          T(-4500001),
                          T(-9e9),
                          T(-9.1e9),
                          T(-2e10),
                          std::numeric_limits<T>::max(),
                          std::numeric_limits<T>::lowest(),
                          std::numeric_limits<T>::denorm_min()};
    for (const double end : {numbers.cutOff, numbers.intervals[0].above, numbers.intervals[1].above}) {
        const T x = static_cast<T>(end);
        values.insert(values.end(), {x, std::nextafter(x, T(0)), std::nextafter(x, T(-100))});
    }
    std::vector<T> a;
    std::vector<T> b;
    for (const T x : values) {
        for (const T y : values) {
            a.push_back(x);
            b.push_back(y);
        }
    }
    for (std::size_t shift = 0; shift < 65; ++shift) { // another lane, and another vector of a group, each time
        std::vector<T> result = b;
        ASSERT_EQ(logAdd(a.data(), result.data(), static_cast<Elem32s>(a.size()), hint), StsNoErr);
        for (std::size_t i = 0; i < a.size(); ++i) {
            ASSERT_TRUE(sameBits(result[i], reference(a[i], b[i], hint))) << a[i] << " and " << b[i];
        }
        std::rotate(a.begin(), a.begin() + 1, a.end());
        std::rotate(b.begin(), b.begin() + 1, b.end());
    }
}

TEST(LogAdd, SpecialValues)
{
    for (const int hint : {0, 1, 2}) {
        compareSpecial<float>(hint, lyr::oracle::singleNumbers);
    }
    compareSpecial<double>(0, lyr::oracle::doubleNumbers);
}

// Where all smaller operands of a group of vectors are ignored it ends early; one that counts must not be missed.
template <class T>
void findOneThatCounts(int hint)
{
    SCOPED_TRACE("hint " + std::to_string(hint));
    constexpr std::size_t len = 131;
    for (std::size_t place = 0; place < len; ++place) {
        const std::vector<T> a(len, T(-100));
        std::vector<T> b(len);
        std::iota(b.begin(), b.end(), T(3));
        b[place] = T(-99);
        ASSERT_EQ(logAdd(a.data(), b.data(), static_cast<Elem32s>(len), hint), StsNoErr);
        for (std::size_t i = 0; i < len; ++i) {
            ASSERT_TRUE(sameBits(b[i], i == place ? reference(T(-100), T(-99), hint) : static_cast<T>(i + 3)))
                << i << " of " << place;
        }
    }
}

TEST(LogAdd, OneSumAmongIgnoredOperands)
{
    for (const int hint : {0, 1, 2}) {
        findOneThatCounts<float>(hint);
    }
    findOneThatCounts<double>(0);
}

// Against the function itself: the polynomial's 5e-9 (4e-15), the cut-off's exp(d), and roundings of the difference
// (at most 16 units, with a slope of at most exp(d)), of the polynomial and of the sum.
TEST(LogAdd, Accuracy)
{
    Random random(5);
    for (int i = 0; i < 20000; ++i) {
        const float a = random.uniform(-30.0F, 0.0F);
        const float b = random.uniform(-30.0F, 0.0F);
        const long double exact = lyr::oracle::exactLogAdd(a, b);
        const double rounding = std::fabs(static_cast<double>(exact)) * 0x1p-24;
        for (const int hint : {0, 1, 2}) {
            float result = b;
            lyrsLogAdd_32f(&a, &result, 1, hint);
            const double bound = 2.3e-7 + rounding + (hint == 2 ? 5e-9 : hint == 0 ? 0x1p-23 : 0x1p-21);
            ASSERT_NEAR(result, static_cast<double>(exact), bound) << "hint " << hint << ": " << a << ", " << b;
        }
        const double x = a;
        double wide = b;
        lyrsLogAdd_64f(&x, &wide, 1, 0);
        ASSERT_NEAR(wide, static_cast<double>(exact), 1.01e-10 + 1e-14) << a << ", " << b;
    }
}

template <class T>
T sumOf(T a, T b, int hint = 0)
{
    T result = b;
    EXPECT_EQ(logAdd(&a, &result, 1, hint), StsNoErr);
    return result;
}

TEST(LogAdd, Examples)
{
    for (const int hint : {0, 1, 2}) {
        EXPECT_NEAR(sumOf(0.0F, 0.0F, hint), 0.6931472, 1e-7);
        EXPECT_EQ(sumOf(0.0F, -20.0F, hint), 0.0F) << "below the cut-off";
        EXPECT_EQ(sumOf(-5000000.0F, -6000000.0F, hint), -4500000.0F) << "the floor raises the result";
        EXPECT_NEAR(sumOf(-5000000.0F, -5000000.0F, hint), -4999999.3, 0.3) << "no floor above the cut-off";
        EXPECT_NEAR(sumOf(-10000000.0F, -10000000.0F, hint), -9999999.3, 0.5);
    }
    // Sums so near to a tie of single precision that a fused step in the polynomial would tip them.
    for (const float s : {-0x1.9e525cp+2F, -0x1.3dfdbap+3F, -0x1.55125ep+3F}) {
        EXPECT_EQ(sumOf(0.0F, s, 0), lyr::oracle::logAddHint(0.0F, s, 0)) << s;
    }
    EXPECT_EQ(sumOf(-9.5e9, -9.6e9), -1e10) << "the floor lies below its test";
    EXPECT_EQ(sumOf(-8.9e9, -9.6e9), -8.9e9);
}

TEST(LogAdd, NanComesThrough)
{
    for (const int hint : {0, 1, 2}) {
        EXPECT_TRUE(std::isnan(sumOf(nan<float>, 0.0F, hint)));
        EXPECT_TRUE(std::isnan(sumOf(0.0F, nan<float>, hint)));
        EXPECT_TRUE(std::isnan(sumOf(-inf<float>, -inf<float>, hint)));
        EXPECT_EQ(sumOf(inf<float>, 0.0F, hint), inf<float>);
        EXPECT_EQ(sumOf(0.0F, -inf<float>, hint), 0.0F);
    }
}

TEST(LogAdd, UnknownHintDoesNothing)
{
    const float a = 0;
    const double wideA = 0;
    for (const Elem32s hint : {3, 4, -1, INT32_MAX, INT32_MIN}) {
        float b = -1;
        double wideB = -1;
        EXPECT_EQ(lyrsLogAdd_32f(&a, &b, 1, hint), StsNoErr);
        EXPECT_EQ(lyrsLogAdd_64f(&wideA, &wideB, 1, hint), StsNoErr);
        EXPECT_EQ(b, -1.0F);
        EXPECT_EQ(wideB, -1.0);
        EXPECT_EQ(lyrsLogAdd_32f(&a, &b, 0, hint), StsSize) << "checked all the same";
        EXPECT_EQ(lyrsLogAdd_32f(nullptr, &b, 1, hint), StsNullPtr);
    }
}

// Hint 2 goes from the last element to the first: with a source one element ahead of the destination each sum takes the
// untouched neighbour, with one behind it the neighbour's sum.
TEST(LogAdd, ScalarFormStartsAtTheEnd)
{
    std::vector<float> v{-1, -2, -3, -4, -5};
    std::vector<float> expected = v;
    for (std::size_t i = 4; i >= 1; --i) {
        expected[i] = lyr::oracle::logAddHint(expected[i - 1], expected[i], 2);
    }
    ASSERT_EQ(lyrsLogAdd_32f(v.data(), v.data() + 1, 4, 2), StsNoErr);
    EXPECT_EQ(v, expected);

    v = {-1, -2, -3, -4, -5};
    expected = v;
    for (std::size_t i = 4; i-- > 0;) {
        expected[i] = lyr::oracle::logAddHint(expected[i + 1], expected[i], 2);
    }
    ASSERT_EQ(lyrsLogAdd_32f(v.data() + 1, v.data(), 4, 2), StsNoErr);
    EXPECT_EQ(v, expected);
}

// -------------------------------------------------------------------------------------------------------- fixed point

Status logAddFixed(const Elem32s* a, Elem32s* b, Elem32s len, Elem32s scaleFactor, Elem32s hint)
{
    return lyrsLogAdd_32s_Sfs(a, b, len, scaleFactor, hint);
}
Status logAddFixed(const Elem16s* a, Elem16s* b, Elem32s len, Elem32s scaleFactor, Elem32s hint)
{
    return lyrsLogAdd_16s_Sfs(a, b, len, scaleFactor, hint);
}

template <class T>
void compareFixed()
{
    Random random(9);
    constexpr T low = std::numeric_limits<T>::min();
    constexpr T high = std::numeric_limits<T>::max();
    for (const std::size_t len : lengths()) {
        for (const int scaleFactor : {0, 1, 5, 8, 15, 24, 31, 40, 120, -1, -3, -20, -90}) {
            auto a = random.vector<T>(len, low, high);
            auto b = random.vector<T>(len, low, high);
            for (std::size_t i = 0; i < len; i += 3) { // near enough to be added
                b[i] = static_cast<T>(a[i] / 2 + random.uniform(-90, 90));
                a[i] = static_cast<T>(a[i] / 2);
            }
            for (const int hint : {0, 1, 2, 3, -1}) {
                const Guarded<T> src(a, Guarded<T>::flush(len));
                const Guarded<T> dst(b, Guarded<T>::flush(len));
                ASSERT_EQ(logAddFixed(src.data(), dst.data(), static_cast<Elem32s>(len), scaleFactor, hint), StsNoErr);
                ASSERT_TRUE(src.intact() && dst.intact());
                for (std::size_t i = 0; i < len; ++i) {
                    ASSERT_EQ(dst[i], lyr::oracle::logAddFixed(a[i], b[i], scaleFactor, hint))
                        << a[i] << " and " << b[i] << " scale " << scaleFactor << " hint " << hint << " length " << len;
                }
            }
        }
    }
}

TEST(LogAddFixedPoint, Elem32s)
{
    compareFixed<Elem32s>();
}
TEST(LogAddFixedPoint, Elem16s)
{
    compareFixed<Elem16s>();
}

TEST(LogAddFixedPoint, UnknownHintStillGoesThroughSinglePrecision)
{
    const Elem32s a[2] = {0, 0};
    Elem32s b[2] = {16777217, -33554435};
    ASSERT_EQ(lyrsLogAdd_32s_Sfs(a, b, 2, 0, 3), StsNoErr);
    EXPECT_EQ(b[0], 16777216);
    EXPECT_EQ(b[1], -33554436);

    const Elem16s c[2] = {0, 0};
    Elem16s d[2] = {32767, -32768};
    ASSERT_EQ(lyrsLogAdd_16s_Sfs(c, d, 2, 0, 3), StsNoErr);
    EXPECT_EQ(d[0], 32767);
    EXPECT_EQ(d[1], -32768);
}

TEST(LogAddFixedPoint, TruncatesAndSaturates)
{
    const Elem16s a[3] = {32767, -10, 100};
    Elem16s b[3] = {32767, -10, 100};
    ASSERT_EQ(lyrsLogAdd_16s_Sfs(a, b, 3, 0, 0), StsNoErr);
    EXPECT_EQ(b[0], 32767) << "32767.69";
    EXPECT_EQ(b[1], -9) << "-9.31 toward zero";
    EXPECT_EQ(b[2], 100) << "100.69 toward zero";
}

template <class T>
T fixedSum(T a, T b, Elem32s scaleFactor, Elem32s hint = 0)
{
    T result = b;
    EXPECT_EQ(logAddFixed(&a, &result, 1, scaleFactor, hint), StsNoErr);
    return result;
}

// Where a scale is zero, subnormal or infinite as a single, on the way there or back.
template <class T>
void compareExtremeScales()
{
    constexpr T low = std::numeric_limits<T>::min();
    constexpr T high = std::numeric_limits<T>::max();
    const std::vector<T> values{0, 1, -1, 4, 5, -5, 100, -100, high, low};
    for (const Elem32s scaleFactor : {INT32_MIN, -2000, -1024, -200, -150, -149, -129, -128, -127, -113,     112,
                                      126,       127,   128,   148,  149,  150,  151,  1074, 2000, INT32_MAX}) {
        for (const Elem32s hint : {0, 1, 2, 3}) {
            for (const T a : values) {
                for (const T b : values) {
                    ASSERT_EQ(fixedSum(a, b, scaleFactor, hint), lyr::oracle::logAddFixed(a, b, scaleFactor, hint))
                        << a << " and " << b << " scale " << scaleFactor << " hint " << hint;
                }
            }
        }
    }
}

TEST(LogAddFixedPoint, ExtremeScaleFactors)
{
    compareExtremeScales<Elem32s>();
    compareExtremeScales<Elem16s>();
    for (const Elem32s scaleFactor : {150, 2000, INT32_MAX}) {
        EXPECT_EQ(fixedSum<Elem32s>(5, 4, scaleFactor), INT32_MAX) << "log 2 times infinity";
        EXPECT_EQ(fixedSum<Elem16s>(-5, 4, scaleFactor), INT16_MAX);
    }
    EXPECT_EQ(fixedSum<Elem32s>(1000000, -1000000, 149), INT32_MAX)
        << "both scale to next to nothing, and log 2 back up to the limit";
    EXPECT_EQ(fixedSum<Elem32s>(5, -5, -128), INT32_MAX) << "infinity, and the sign of the larger one";
}

// 2^128 is infinite as a single, though not as a double: 0 times it is NaN, where a double would leave 0.
TEST(LogAddFixedPoint, ScaleIsRoundedToSingle)
{
    for (const Elem32s scaleFactor : {-128, -200, -1000}) {
        for (const Elem32s hint : {0, 1, 2}) {
            EXPECT_EQ(fixedSum<Elem32s>(0, 5, scaleFactor, hint), INT32_MIN);
            EXPECT_EQ(fixedSum<Elem32s>(0, -5, scaleFactor, hint), INT32_MIN);
            EXPECT_EQ(fixedSum<Elem16s>(0, -5, scaleFactor, hint), INT16_MAX);
        }
    }
}

// What the conversions of singles make of NaN: the lower limit in 32 bits, where its sign is set, the upper one in 16.
TEST(LogAddFixedPoint, NanIsLowIn32BitsAndHighIn16)
{
    for (const Elem32s scaleFactor : {INT32_MIN, -2000, -150, -128}) {
        for (const Elem32s hint : {0, 1, 2}) {
            EXPECT_EQ(fixedSum<Elem32s>(0, 0, scaleFactor, hint), INT32_MIN) << "NaN of 0 times infinity";
            EXPECT_EQ(fixedSum<Elem16s>(0, 0, scaleFactor, hint), INT16_MAX);
            EXPECT_EQ(fixedSum<Elem32s>(7, 9, scaleFactor, hint), INT32_MIN) << "NaN of two infinities";
            EXPECT_EQ(fixedSum<Elem16s>(7, 9, scaleFactor, hint), INT16_MAX);
        }
        EXPECT_EQ(fixedSum<Elem32s>(0, 0, scaleFactor, 3), INT32_MIN) << "NaN without an addition";
        EXPECT_EQ(fixedSum<Elem16s>(0, 0, scaleFactor, 3), INT16_MAX);
    }
}

} // namespace
