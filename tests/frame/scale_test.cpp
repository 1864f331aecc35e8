// Powers of two for scale factors, against the C library's.

#include "frame/scale.hpp"
#include "support/ulp.hpp"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using lyr::GetScale_32s32f;
using lyr::GetScale_32s64f;
using lyr::test::sameBits;

std::vector<Elem32s> factors()
{
    std::vector<Elem32s> all{INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, INT32_MAX};
    for (Elem32s s = -1200; s <= 1300; ++s) {
        all.push_back(s);
    }
    return all;
}

TEST(GetScale, Singles)
{
    for (const Elem32s s : factors()) {
        const int exponent = -std::clamp(s, -128, 150);
        EXPECT_TRUE(sameBits(GetScale_32s32f(s), std::ldexp(1.0F, exponent))) << s;
    }
}

TEST(GetScale, Doubles)
{
    for (const Elem32s s : factors()) {
        const int exponent = -std::clamp(s, -1024, 1087);
        EXPECT_TRUE(sameBits(GetScale_32s64f(s), std::ldexp(1.0, exponent))) << s;
    }
}

// No product is rounded, and what is below the smallest number is zero even where the caller rounds upward.
TEST(GetScale, DoublesInEveryRoundingMode)
{
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        for (const Elem32s s : factors()) {
            std::fesetround(mode);
            const Elem64f scale = GetScale_32s64f(s);
            std::fesetround(FE_TONEAREST);
            EXPECT_TRUE(sameBits(scale, std::ldexp(1.0, -std::clamp(s, -1024, 1087)))) << s << " mode " << mode;
        }
    }
}

TEST(GetScale, Ends)
{
    EXPECT_EQ(GetScale_32s32f(150), 0.0F);
    EXPECT_EQ(GetScale_32s32f(149), std::numeric_limits<float>::denorm_min());
    EXPECT_EQ(GetScale_32s32f(-127), 0x1p127F);
    EXPECT_EQ(GetScale_32s32f(-128), std::numeric_limits<float>::infinity());
    EXPECT_EQ(GetScale_32s64f(1074), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(GetScale_32s64f(1075), 0.0);
    EXPECT_EQ(GetScale_32s64f(-1023), 0x1p1023);
    EXPECT_EQ(GetScale_32s64f(-1024), std::numeric_limits<double>::infinity());
}

} // namespace
