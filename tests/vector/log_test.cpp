// Natural logarithms of vectors.

#include "lyrsr.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/vector_log.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"
#include "support/vectors.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::vectorLengths;
using lyr::test::vectorOffsets;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float least = std::numeric_limits<float>::denorm_min();

// Half a unit from the last rounding, half from the polynomial, the rest from the roundings ahead of it and of ln 2.
// Over all positive singles the worst is 1.22.
constexpr double logUnits = 1.5;

// Where the processor rounds to one side each rounding is up to a unit. Over all positive singles the worst is 2.54.
constexpr double directedLogUnits = 3.0;

::testing::AssertionResult isLogOf(float actual, float x, double units = logUnits)
{
    const double exact = std::log(static_cast<double>(x));
    const double unit = static_cast<double>(lyr::test::ulp(static_cast<float>(exact)));
    if (std::fabs(static_cast<double>(actual) - exact) <= units * unit) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "ln " << x << " = " << exact << ", not " << actual;
}

// ---------------------------------------------------------------------------------------------------- single precision

TEST(Ln32f, WithinItsBoundFromTheLeastToTheGreatest)
{
    // A stride that is no multiple of a power of two reaches all exponents and all of the mantissa field.
    std::vector<float> x;
    for (std::uint32_t bits = 1; bits < 0x7F800000U; bits += 3989U) {
        x.push_back(std::bit_cast<float>(bits));
    }
    // The neighbourhoods of 1, where the result is small, of the split of the mantissa, and of the least normal number.
    for (const std::uint32_t centre : {0x3F800000U, 0x3F3504F3U, 0x3FB504F3U, 0x00800000U}) {
        for (std::uint32_t d = 0; d < 4000; ++d) {
            x.push_back(std::bit_cast<float>(centre - 2000U + d));
        }
    }
    x.push_back(std::numeric_limits<float>::max());
    auto y = x;
    ASSERT_EQ(lyrsLn_32f_I(y.data(), static_cast<Elem32s>(y.size())), StsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_TRUE(isLogOf(y[i], x[i]));
    }
}

TEST(Ln32f, WithinItsBoundInEveryRoundingMode)
{
    std::vector<float> x;
    for (std::uint32_t bits = 1; bits < 0x7F800000U; bits += 20011U) {
        x.push_back(std::bit_cast<float>(bits));
    }
    x.push_back(0x1.0f2eb4p+23F); // above a power of two, where the units of the steps are as large as they get
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        auto y = x;
        std::fesetround(mode);
        const Status status = lyrsLn_32f_I(y.data(), static_cast<Elem32s>(y.size()));
        const int after = std::fegetround();
        std::fesetround(FE_TONEAREST);
        ASSERT_EQ(status, StsNoErr);
        ASSERT_EQ(after, mode);
        for (std::size_t i = 0; i < x.size(); ++i) {
            ASSERT_TRUE(isLogOf(y[i], x[i], directedLogUnits)) << "mode " << mode;
        }
    }
}

TEST(Ln32f, EveryLengthAndOffset)
{
    Random random(11);
    for (const std::size_t len : vectorLengths()) {
        const auto x = random.vector<float>(len, 0.001F, 20.0F);
        for (const std::size_t offset : vectorOffsets<float>(len)) {
            const Guarded<float> y(x, offset);
            ASSERT_EQ(lyrsLn_32f_I(y.data(), static_cast<Elem32s>(len)), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(isLogOf(y[i], x[i])) << i << " of " << len;
            }
            ASSERT_TRUE(y.intact());
        }
    }
}

TEST(Ln32f, OneIsZero)
{
    std::array<float, 20> x{};
    x.fill(1.0F);
    ASSERT_EQ(lyrsLn_32f_I(x.data(), 20), StsNoErr);
    for (const float y : x) {
        EXPECT_TRUE(lyr::test::sameBits(y, 0.0F));
    }
}

// Each special value at each place of vectors that go through every part of the kernels.
TEST(Ln32f, SpecialValues)
{
    struct Case
    {
        float x;
        float y;
        Status status;
    };
    const float negativeNan = -std::bit_cast<float>(0x7FC12345);
    for (const Case c :
         {Case{0.0F, -inf, StsWarnInf}, Case{-0.0F, -inf, StsWarnInf}, Case{-1.0F, nan, StsWarnNan},
          Case{-least, nan, StsWarnNan}, Case{-inf, nan, StsWarnNan}, Case{inf, inf, StsNoErr},
          Case{nan, nan, StsNoErr}, Case{negativeNan, negativeNan, StsNoErr}, Case{least, std::log(least), StsNoErr}}) {
        for (const std::size_t len : {1U, 7U, 16U, 33U, 64U, 70U, 300U}) {
            for (std::size_t at = 0; at < len; ++at) {
                std::vector<float> x(len, 2.5F);
                x[at] = c.x;
                ASSERT_EQ(lyrsLn_32f_I(x.data(), static_cast<Elem32s>(len)), c.status) << c.x << " at " << at;
                for (std::size_t i = 0; i < len; ++i) {
                    if (i != at) {
                        ASSERT_TRUE(isLogOf(x[i], 2.5F));
                    } else if (std::isnan(c.x)) {
                        ASSERT_EQ(std::bit_cast<std::uint32_t>(x[i]), std::bit_cast<std::uint32_t>(c.x));
                    } else {
                        ASSERT_TRUE(lyr::test::withinUlps(x[i], c.y, std::isfinite(c.y) ? 1 : 0)) << c.x;
                    }
                }
            }
        }
    }
}

// The first zero or negative element decides, also across blocks of 256; NaN and infinities decide nothing.
TEST(Ln32f, TheFirstSpecialElementDecidesTheStatus)
{
    for (const std::size_t len : {5U, 70U, 300U, 1000U}) {
        for (std::size_t first = 0; first + 1 < len; first += 1 + len / 40) {
            for (std::size_t second = first + 1; second < len; second += 1 + len / 30) {
                for (const bool zeroFirst : {false, true}) {
                    std::vector<float> x(len, 3.0F);
                    x[first] = zeroFirst ? 0.0F : -2.0F;
                    x[second] = zeroFirst ? -2.0F : 0.0F;
                    if (first > 0) {
                        x[first - 1] = nan;
                    }
                    ASSERT_EQ(lyrsLn_32f_I(x.data(), static_cast<Elem32s>(len)), zeroFirst ? StsWarnInf : StsWarnNan)
                        << first << " " << second << " of " << len;
                    ASSERT_EQ(x[zeroFirst ? first : second], -inf);
                    ASSERT_TRUE(std::isnan(x[zeroFirst ? second : first]));
                }
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------------------ integers

std::vector<Elem32s> integers()
{
    std::vector<Elem32s> values{1, 2, 3, 89, 90, 91, 92, INT32_MAX, INT32_MAX - 1};
    for (int k = 1; k <= 21; ++k) {
        const auto edge = static_cast<Elem32s>(std::exp(k - 0.5));
        values.insert(values.end(), {std::max(1, edge - 1), std::max(1, edge), edge + 1, edge + 2});
    }
    Random random(12);
    for (int i = 0; i < 500; ++i) {
        values.push_back(std::max(1, random.uniform(1, INT32_MAX) >> random.uniform(0, 30)));
    }
    return values;
}

TEST(Ln32s, NearestIntegerShiftedWithoutRounding)
{
    auto values = integers();
    values.insert(values.begin() + 40, {-5, 0});
    std::vector<Elem32s> y(values.size());
    // The count is taken modulo 32, as the scales from 32 on show.
    for (const Elem32s s : {0, 1, 2, 3, 4, 5, 30, 31, 32, 33, 34, 64, 65, INT32_MAX}) {
        ASSERT_EQ(lyrsLn_32s_Sfs(values.data(), y.data(), static_cast<Elem32s>(y.size()), s), StsWarnNan);
        for (std::size_t i = 0; i < y.size(); ++i) {
            ASSERT_EQ(y[i], values[i] < 1 ? INT32_MIN : lyr::oracle::nearestLog(values[i]) >> (s % 32))
                << values[i] << " scale " << s;
        }
    }
}

TEST(Ln32s, KnownValues)
{
    const std::array<Elem32s, 5> x{1, 0, 90, 91, INT32_MAX};
    std::array<Elem32s, 5> y{};
    EXPECT_EQ(lyrsLn_32s_Sfs(x.data(), y.data(), 5, 0), StsWarnInf);
    EXPECT_EQ(y, (std::array<Elem32s, 5>{0, INT32_MIN, 4, 5, 21}));
}

TEST(Ln32s, ScaledUpInEveryRoundingMode)
{
    auto values = integers();
    values.insert(values.begin() + 40, {0, -5, INT32_MIN});
    std::vector<Elem32s> y(values.size());
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        for (const Elem32s s : {-1,  -2,  -8,  -16,  -20,  -26,  -27,  -28,  -29,           -30,
                                -31, -32, -33, -100, -127, -128, -129, -200, INT32_MIN + 1, INT32_MIN}) {
            std::fesetround(mode);
            const Status status = lyrsLn_32s_Sfs(values.data(), y.data(), static_cast<Elem32s>(y.size()), s);
            const int after = std::fegetround();
            std::fesetround(FE_TONEAREST);
            ASSERT_EQ(status, StsWarnInf);
            ASSERT_EQ(after, mode);
            for (std::size_t i = 0; i < y.size(); ++i) {
                if (values[i] < 1) {
                    ASSERT_EQ(y[i], INT32_MIN);
                    continue;
                }
                if (values[i] == 1) {
                    ASSERT_EQ(y[i], 0) << s;
                    continue;
                }
                // The logarithm within its bound, in units of the scaled result, and half from the rounding.
                const double exact = lyr::oracle::scaledLog(values[i], s);
                if (exact > 2147484000.0) {
                    ASSERT_EQ(y[i], INT32_MAX) << values[i] << " scale " << s;
                    continue;
                }
                const double bound = 0.5 + logUnits * static_cast<double>(lyr::test::ulp(static_cast<float>(exact)));
                ASSERT_NEAR(static_cast<double>(y[i]), exact, bound) << values[i] << " scale " << s << " mode " << mode;
            }
        }
    }
}

TEST(Ln32s, EveryLengthAndOffsetInBothForms)
{
    const auto values = integers();
    std::size_t at = 0;
    for (const std::size_t len : vectorLengths()) {
        std::vector<Elem32s> x(len);
        for (Elem32s& v : x) {
            v = values[at++ % values.size()];
        }
        for (const std::size_t offset : vectorOffsets<Elem32s>(len)) {
            for (const Elem32s s : {0, -10}) {
                std::vector<Elem32s> expected(len);
                const Guarded<Elem32s> src(x, offset);
                const Guarded<Elem32s> dst(len, Guarded<Elem32s>::flush(len));
                const Guarded<Elem32s> both(x, offset);
                const Guarded<Elem32s> same(x, offset);
                ASSERT_EQ(lyrsLn_32s_Sfs(src.data(), dst.data(), static_cast<Elem32s>(len), s), StsNoErr);
                ASSERT_EQ(lyrsLn_32s_ISfs(both.data(), static_cast<Elem32s>(len), s), StsNoErr);
                ASSERT_EQ(lyrsLn_32s_Sfs(same.data(), same.data(), static_cast<Elem32s>(len), s), StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    const double exact = s == 0 ? lyr::oracle::nearestLog(x[i]) : lyr::oracle::scaledLog(x[i], s);
                    // At this scale results stay below 2^15: the logarithm's error is below 0.01.
                    ASSERT_NEAR(dst[i], exact, s == 0 ? 0.0 : 0.51) << x[i];
                    ASSERT_EQ(both[i], dst[i]);
                    ASSERT_EQ(same[i], dst[i]);
                }
                ASSERT_TRUE(src.intact() && dst.intact() && both.intact() && same.intact());
            }
        }
    }
}

TEST(Ln32s, TheFirstSpecialElementDecidesTheStatus)
{
    for (const Elem32s s : {0, -4}) {
        for (std::size_t first = 0; first < 70; ++first) {
            for (std::size_t second = first + 1; second < 70; ++second) {
                for (const bool zeroFirst : {false, true}) {
                    std::vector<Elem32s> x(70, 3);
                    x[first] = zeroFirst ? 0 : -1;
                    x[second] = zeroFirst ? -1 : 0;
                    const Status expected = lyr::oracle::logStatus(x.data(), x.size());
                    ASSERT_EQ(lyrsLn_32s_ISfs(x.data(), 70, s), expected);
                    ASSERT_EQ(x[first], INT32_MIN);
                    ASSERT_EQ(x[second], INT32_MIN);
                }
            }
        }
    }
}

} // namespace
