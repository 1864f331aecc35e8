// Square roots, reciprocal square roots and reciprocals.

#include "lyrsr.h"

#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>
#include <xmmintrin.h>

#include "oracle/vector_functions.hpp"
#include "vector/elementwise.hpp"
#include "vector/reciprocal.hpp"

namespace {

using lyr::test::compareUnary;
using lyr::test::exactly;
using lyr::test::Expected;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;
using lyr::test::withSpecials;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

::testing::AssertionResult withinRelative(float actual, float expected, double most)
{
    const double error = std::fabs(double{actual} / double{expected} - 1.0);
    return error <= most
               ? ::testing::AssertionSuccess()
               : ::testing::AssertionFailure() << actual << " for " << expected << ", relative error " << error;
}

// -------------------------------------------------------------------------------------------------------------- square

TEST(VectorSqrt, MatchesOracle)
{
    const auto expect = [](const std::vector<double>& x) {
        Expected<double> expected;
        for (const double v : x) {
            expected.elements.push_back(std::sqrt(v));
            if (v < 0) {
                expected.status = StsWarnSqrtNeg;
            }
        }
        return expected;
    };
    for (const double low : {0.0, -50.0}) {
        compareUnary<double, double>(
            {[low](Random& random, std::size_t n) { return random.vector<double>(n, low, 50.0); },
             {},
             lyrsSqrt_64f_I,
             expect});
        compareUnary<double, double>(
            {[low](Random& random, std::size_t n) { return withSpecials(random, n, low, 50.0); },
             {},
             lyrsSqrt_64f_I,
             expect});
    }
}

TEST(VectorSqrt, NegativeSubnormalWarnsAndMinusZeroDoesNot)
{
    double x[] = {-0.0, 4, 9};
    EXPECT_EQ(lyrsSqrt_64f_I(x, 3), StsNoErr);
    EXPECT_TRUE(sameBits(x[0], -0.0));
    EXPECT_EQ(x[2], 3);
    double y[] = {4, -std::numeric_limits<double>::denorm_min(), 16};
    EXPECT_EQ(lyrsSqrt_64f_I(y, 3), StsWarnSqrtNeg);
    EXPECT_EQ(y[0], 2);
    EXPECT_TRUE(std::isnan(y[1]));
    EXPECT_EQ(y[2], 4) << "what stands behind a negative element is computed too";
    double z[] = {std::numeric_limits<double>::quiet_NaN(), 1};
    EXPECT_EQ(lyrsSqrt_64f_I(z, 2), StsNoErr);
}

TEST(VectorSqrt, KeepsTheFlags)
{
    for (const unsigned flags : {0x00U, 0x20U, 0x3FU}) {
        double x[] = {-1, 2, 1e-310};
        _mm_setcsr((_mm_getcsr() & ~0x3FU) | flags);
        const Status status = lyrsSqrt_64f_I(x, 3);
        const unsigned after = _mm_getcsr();
        _mm_setcsr(after & ~0x3FU);
        EXPECT_EQ(status, StsWarnSqrtNeg);
        EXPECT_EQ(after & 0x3FU, flags);
    }
}

// ---------------------------------------------------------------------------------------------------------- reciprocal

// An estimate to 1.5 * 2^-12 leaves 1.5 times its square after one step of Newton's method, 2.0e-7; the step itself
// rounds five times, two of them of a term of weight one half: 3 * 2^-24 = 1.8e-7. Specials are two roundings off.
::testing::AssertionResult nearRoot(float actual, float expected)
{
    if (std::isnan(actual) || std::isinf(expected) || expected == 0) {
        return sameBits(actual, expected);
    }
    return withinRelative(actual, expected, 4e-7);
}

template <class T>
Expected<T> expectRecSqrt(const std::vector<T>& x, T floor)
{
    Expected<T> expected;
    expected.status = StsWarnZero;
    for (const T v : x) {
        if (v > floor) {
            expected.status = StsNoErr;
        }
        expected.elements.push_back(v > floor ? static_cast<T>(1 / std::sqrt(static_cast<double>(v))) : floor);
    }
    return expected;
}

TEST(VectorRecSqrt, MatchesOracle)
{
    for (const float floor : {0.25F, 1e-40F, 1e30F, inf, 5.0F}) {
        compareUnary<float, float>(
            {[](Random& random, std::size_t n) { return withSpecials<float>(random, n, -2, 10); },
             {},
             [floor](float* p, Elem32s len) { return lyrsRecSqrt_32f(p, len, floor); },
             [floor](const std::vector<float>& x) { return expectRecSqrt(x, floor); },
             nearRoot});
    }
}

TEST(VectorRecSqrt, EveryMagnitude)
{
    std::vector<float> x;
    for (int e = -149; e <= 127; ++e) {
        x.insert(x.end(), {std::ldexp(1.0F, e), std::ldexp(1.37F, e), std::ldexp(1.99F, e)});
    }
    x.insert(x.end(), {std::numeric_limits<float>::max(), inf});
    const std::vector<float> source(x);
    // A floor of the smallest number keeps every other one.
    const float floor = std::numeric_limits<float>::denorm_min();
    ASSERT_EQ(lyrsRecSqrt_32f(x.data(), static_cast<Elem32s>(x.size()), floor), StsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto root = static_cast<float>(1 / std::sqrt(double{source[i]}));
        ASSERT_TRUE(nearRoot(x[i], source[i] > floor ? root : floor)) << source[i];
    }
}

TEST(VectorRecSqrt, ReplacedByTheFloorItself)
{
    float x[] = {4, 0.25F, 0.2F, -1, nan, 16, 16, 16, 16};
    EXPECT_EQ(lyrsRecSqrt_32f(x, 9, 0.25F), StsNoErr) << "a replacement of a part is silent";
    EXPECT_TRUE(nearRoot(x[0], 0.5F));
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(x[i], 0.25F) << "the floor, not its reciprocal root";
    }
    for (int len = 1; len <= 40; ++len) {
        std::vector<float> low(static_cast<std::size_t>(len), 3.0F);
        EXPECT_EQ(lyrsRecSqrt_32f(low.data(), len, 3.0F), StsWarnZero);
        EXPECT_EQ(low.back(), 3.0F);
        low.back() = 3.5F;
        EXPECT_EQ(lyrsRecSqrt_32f(low.data(), len, 3.0F), StsNoErr);
    }
}

TEST(VectorRecSqrt, FloorMustBeAboveZero)
{
    for (const float floor : {0.0F, -0.0F, -1.0F, nan, -inf}) {
        float x = 7;
        EXPECT_EQ(lyrsRecSqrt_32f(&x, 1, floor), StsBadArg);
        EXPECT_EQ(x, 7);
    }
    Elem32s n = 7;
    Elem16s s = 5;
    EXPECT_EQ(lyrsRecSqrt_32s_Sfs(&n, 1, 0, 0), StsBadArg);
    EXPECT_EQ(lyrsRecSqrt_32s16s_Sfs(&n, &s, 1, -3, 0), StsBadArg);
    EXPECT_EQ(lyrsRecSqrt_32s_Sfs(&n, 0, 0, 0), StsSize);
    EXPECT_EQ(n, 7);
    EXPECT_EQ(s, 5);
}

// ------------------------------------------------------------------------------------------------ reciprocal, integers

// Single precision rounds the quotient and the root, each within half of 2^-23, and the integer once more. Where the
// exact value is so near to a half that this decides, either neighbour is right.
template <class D>
::testing::AssertionResult nearInteger(D actual, long double exact)
{
    const long double top = std::numeric_limits<D>::max();
    const long double slack = std::fabs(exact) * 0x1p-23L;
    const long double limited = std::fmin(exact, top);
    const bool near = std::fabs(static_cast<long double>(actual) - limited) <= 0.5L + slack;
    return near ? ::testing::AssertionSuccess()
                : ::testing::AssertionFailure() << actual << " for " << static_cast<double>(exact);
}

TEST(VectorRecSqrtIntegers, MatchesOracle)
{
    Random random(37);
    for (const std::size_t len : lyr::test::vectorLengths()) {
        const auto n = static_cast<Elem32s>(len);
        auto x = random.vector<Elem32s>(len, -10, 40);
        x[len / 2] = INT32_MAX;
        x[len / 3] = INT32_MIN;
        for (const Elem32s scale : {0, -3, -10, -15, -31, -32, -127, -128, INT32_MIN, 1, 150, INT32_MAX}) {
            for (const Elem32s floor : {1, 5, 1000, INT32_MAX}) {
                for (const std::size_t offset : lyr::test::vectorOffsets<Elem32s>(len)) {
                    SCOPED_TRACE(::testing::Message()
                                 << "len " << len << " scale " << scale << " floor " << floor << " offset " << offset);
                    const Guarded<Elem32s> both(x, offset);
                    const Guarded<Elem32s> src(x, offset);
                    const Guarded<Elem16s> dst(len, Guarded<Elem16s>::flush(len));
                    const Status wide = lyrsRecSqrt_32s_Sfs(both.data(), n, floor, scale);
                    const Status narrow = lyrsRecSqrt_32s16s_Sfs(src.data(), dst.data(), n, floor, scale);
                    Status expectedWide = StsWarnZero;
                    Status expectedNarrow = StsWarnZero;
                    const bool aligned = offset % 16 == 0;
                    for (std::size_t i = 0; i < len; ++i) {
                        // Compared in single precision, in which INT32_MAX is 2^31.
                        const bool from = static_cast<float>(x[i]) >= static_cast<float>(floor);
                        const bool above = static_cast<float>(x[i]) > static_cast<float>(floor);
                        const bool kept = aligned ? above : from;
                        expectedWide = kept ? StsNoErr : expectedWide;
                        expectedNarrow = from ? StsNoErr : expectedNarrow;
                        ASSERT_TRUE(nearInteger(both[i], lyr::oracle::recSqrt(x[i], floor, kept, scale))) << x[i];
                        ASSERT_TRUE(nearInteger(dst[i], lyr::oracle::recSqrt(x[i], floor, from, scale))) << x[i];
                    }
                    ASSERT_EQ(wide, expectedWide);
                    ASSERT_EQ(narrow, expectedNarrow);
                    ASSERT_TRUE(both.intact());
                    ASSERT_TRUE(dst.intact());
                }
            }
        }
    }
}

// The one place where alignment decides more than last bits, on purpose.
TEST(VectorRecSqrtIntegers, EqualToTheFloor)
{
    for (std::size_t len = 1; len <= 40; ++len) {
        const std::vector<Elem32s> x(len, 4);
        const auto n = static_cast<Elem32s>(len);
        const Guarded<Elem32s> aligned(x, 0);
        const Guarded<Elem32s> unaligned(x, 4);
        EXPECT_EQ(lyrsRecSqrt_32s_Sfs(aligned.data(), n, 4, -4), StsWarnZero);
        EXPECT_EQ(lyrsRecSqrt_32s_Sfs(unaligned.data(), n, 4, -4), StsNoErr);
        const Guarded<Elem32s> src(x, 0);
        const Guarded<Elem16s> dst(len, 0);
        EXPECT_EQ(lyrsRecSqrt_32s16s_Sfs(src.data(), dst.data(), n, 4, -4), StsNoErr);
        for (std::size_t i = 0; i < len; ++i) {
            EXPECT_EQ(aligned[i], 64) << "4 * 2^4";
            EXPECT_EQ(unaligned[i], 8) << "2^4 / 2";
            EXPECT_EQ(dst[i], 8);
        }
    }
}

// Beyond 2^24 an element and a floor that differ by one may be the same single, and then they are equal.
TEST(VectorRecSqrtIntegers, ComparedAsSingles)
{
    constexpr Elem32s single = 16777216;
    for (const Elem32s above : {0, 1}) {
        const Elem32s floor = single + 1 - above;
        for (std::size_t len = 1; len <= 40; ++len) {
            const std::vector<Elem32s> x(len, single + above);
            const auto n = static_cast<Elem32s>(len);
            const Guarded<Elem32s> aligned(x, 0);
            const Guarded<Elem32s> unaligned(x, 4);
            EXPECT_EQ(lyrsRecSqrt_32s_Sfs(aligned.data(), n, floor, 0), StsWarnZero);
            EXPECT_EQ(lyrsRecSqrt_32s_Sfs(unaligned.data(), n, floor, 0), StsNoErr);
            const Guarded<Elem32s> src(x, 0);
            const Guarded<Elem16s> dst(len, 0);
            EXPECT_EQ(lyrsRecSqrt_32s16s_Sfs(src.data(), dst.data(), n, floor, -20), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                EXPECT_EQ(aligned[i], single) << "the floor as a single";
                EXPECT_EQ(unaligned[i], 0);
                EXPECT_EQ(dst[i], 256) << "2^20 / 2^12";
            }
        }
    }
}

TEST(VectorRecSqrtIntegers, HalvesGoToTheEvenNeighbourInEveryRoundingMode)
{
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        Elem32s x[] = {4, 16, 4, 16};
        const Elem32s y[] = {4, 16, 64, 7};
        Elem16s s[4] = {};
        std::fesetround(mode);
        const unsigned before = _mm_getcsr();
        lyrsRecSqrt_32s_Sfs(x, 4, 1, 0);
        lyrsRecSqrt_32s16s_Sfs(y, s, 4, 1, -1);
        const unsigned after = _mm_getcsr();
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(before & 0xFFC0U, after & 0xFFC0U);
        EXPECT_EQ(x[0], 0); // a half
        EXPECT_EQ(x[1], 0);
        EXPECT_EQ(s[0], 1);
        EXPECT_EQ(s[1], 0); // a half
        EXPECT_EQ(s[2], 0);
        EXPECT_EQ(s[3], 1); // 0.756
    }
}

TEST(VectorRecSqrtIntegers, LimitedToTheRange)
{
    Elem32s x[] = {1, 5, 1};
    EXPECT_EQ(lyrsRecSqrt_32s_Sfs(x, 3, 1, -31), StsNoErr);
    EXPECT_EQ(x[1], std::lrint(0x1p31F * (1.0F / std::sqrt(5.0F))));
    Elem32s y[] = {0, 9};
    EXPECT_EQ(lyrsRecSqrt_32s_Sfs(y, 2, 3, -31), StsNoErr);
    EXPECT_EQ(y[0], INT32_MAX);
    const Elem32s z[] = {0, 9};
    Elem16s s[2] = {};
    EXPECT_EQ(lyrsRecSqrt_32s16s_Sfs(z, s, 2, 3, -16), StsNoErr);
    EXPECT_EQ(s[0], INT16_MAX);
    EXPECT_EQ(s[1], 21845);
}

// ---------------------------------------------------------------------------------------------- reciprocal by estimate

// r (2 - x r) leaves the square of the error of the estimate, 1.4e-7, and three roundings.
::testing::AssertionResult nearReciprocal(float actual, float expected)
{
    if (std::isnan(actual) || std::isinf(expected) || std::fabs(expected) < std::numeric_limits<float>::min()) {
        return sameBits(actual, expected);
    }
    return withinRelative(actual, expected, 3.3e-7);
}

TEST(VectorReciprocal, MatchesOracle)
{
    Random random(41);
    for (const std::size_t len : lyr::test::vectorLengths()) {
        for (const bool zeros : {false, true}) {
            auto x = withSpecials<float>(random, len, -100, 100);
            bool anyZero = false;
            for (float& v : x) {
                v = v == 0 && !zeros ? 3.0F : v;
                anyZero = anyZero || v == 0;
            }
            Status status = StsNoErr;
            const Guarded<float> src(x, 0);
            const Guarded<float> dst(len, Guarded<float>::flush(len));
            lyr::lyrsReciprocal_32f(src.data(), dst.data(), static_cast<Elem32s>(len), &status);
            ASSERT_EQ(status, anyZero ? StsWarnOverflow : StsNoErr);
            Status inPlace = StsNoErr;
            lyr::lyrsReciprocal_32f(src.data(), src.data(), static_cast<Elem32s>(len), &inPlace);
            ASSERT_EQ(inPlace, status);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(nearReciprocal(dst[i], 1.0F / x[i])) << x[i];
                ASSERT_TRUE(sameBits(src[i], dst[i]));
            }
            ASSERT_TRUE(dst.intact());
        }
    }
}

TEST(VectorReciprocal, EveryMagnitude)
{
    std::vector<float> x;
    for (int e = -149; e <= 127; ++e) {
        x.insert(x.end(), {std::ldexp(1.0F, e), -std::ldexp(1.37F, e), std::ldexp(1.99F, e)});
    }
    const Guarded<float> src(x, 0);
    std::vector<float> y(x.size());
    Status status = StsNoErr;
    lyr::lyrsReciprocal_32f(src.data(), y.data(), static_cast<Elem32s>(x.size()), &status);
    EXPECT_EQ(status, StsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_TRUE(nearReciprocal(y[i], 1.0F / x[i])) << x[i];
    }
}

TEST(VectorReciprocal, InvalidOperations)
{
    const auto defaultNan = std::bit_cast<float>(0xFFC00000U);
    const auto signalling = std::bit_cast<float>(0x7FA00000U);
    alignas(16) const float x[] = {2, -0.0F, defaultNan, nan};
    alignas(16) const float quiet[] = {2, 4, defaultNan, nan};
    alignas(16) const float loud[] = {2, 4, signalling, 8};
    float y[4] = {};
    const unsigned before = _mm_getcsr();
    Status status = 77;
    lyr::lyrsReciprocal_32f(x, y, 4, &status);
    EXPECT_EQ(status, StsWarnOverflow);
    EXPECT_EQ(y[1], -inf) << "with the sign of the zero";
    EXPECT_EQ(y[2], -inf) << "the default NaN, replaced with its sign as meant";
    EXPECT_TRUE(std::isnan(y[3])) << "any other NaN stays";
    status = 77;
    lyr::lyrsReciprocal_32f(quiet, y, 4, &status);
    EXPECT_EQ(status, 77) << "not written unless an operation is invalid";
    EXPECT_TRUE(std::isnan(y[2]));
    lyr::lyrsReciprocal_32f(loud, y, 4, &status);
    EXPECT_EQ(status, StsWarnOverflow);
    EXPECT_TRUE(std::isnan(y[2]));
    EXPECT_EQ(_mm_getcsr(), before) << "the flags are as they were";
}

// What was invalid before the call is no fault of the call.
TEST(VectorReciprocal, AnInvalidFlagOfEarlierDoesNotCount)
{
    alignas(16) const float x[] = {2, 4, 8, 16};
    float y[4] = {};
    Status status = 77;
    const unsigned before = _mm_getcsr();
    _mm_setcsr(before | 0x1U);
    lyr::lyrsReciprocal_32f(x, y, 4, &status);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(status, 77);
    EXPECT_EQ(after, before | 0x1U) << "and it stays set";
    EXPECT_TRUE(nearReciprocal(y[3], 0.0625F));
}

} // namespace
