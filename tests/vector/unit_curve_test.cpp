// The smooth step from 0 to 2, exactly.

#include "lyrsr.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/vector_functions.hpp"
#include "vector/elementwise.hpp"

namespace {

using lyr::test::compareUnary;
using lyr::test::eachElement;
using lyr::test::Random;

TEST(VectorUnitCurve, Single)
{
    compareUnary<float, float>(
        {[](Random& random, std::size_t n) { return lyr::test::withSpecials<float>(random, n, -0.5F, 2.5F); },
         lyrsUnitCurve_32f, lyrsUnitCurve_32f_I,
         eachElement<float>([](float x) { return lyr::oracle::unitCurve(x); })});
}

TEST(VectorUnitCurve, AtTheSeams)
{
    const float below2 = std::nextafter(2.0F, 0.0F);
    const float x[] = {-0.0F, 1, 2, below2, 0.5F, 1.5F, std::numeric_limits<float>::quiet_NaN(), -1};
    float y[8] = {};
    ASSERT_EQ(lyrsUnitCurve_32f(x, y, 8), StsNoErr);
    EXPECT_EQ(y[0], 0);
    EXPECT_EQ(y[1], 1);
    EXPECT_EQ(y[2], 2);
    EXPECT_EQ(y[3], 2);
    EXPECT_EQ(y[4], 0.25F);
    EXPECT_EQ(y[5], 1.75F);
    EXPECT_EQ(y[6], 2) << "not a number counts as large";
    EXPECT_EQ(y[7], 0);
}

TEST(VectorUnitCurve, Integers)
{
    for (const Elem32s fraction : {7, 14, 15}) {
        for (const Elem32s scale : {0, -20}) {
            SCOPED_TRACE(::testing::Message() << "fraction " << fraction << " scale " << scale);
            const auto top = static_cast<Elem16s>(fraction > 13 ? 32767 : (5 << fraction) / 2);
            compareUnary<Elem16s, Elem16s>(
                {[top](Random& random, std::size_t n) { return lyr::test::withSpecials<Elem16s>(random, n, -5, top); },
                 [&](const Elem16s* src, Elem16s* dst, Elem32s len) {
                     return lyrsUnitCurve_16s_Sfs(src, fraction, dst, len, scale);
                 },
                 [&](Elem16s* p, Elem32s len) { return lyrsUnitCurve_16s_ISfs(p, fraction, len, scale); },
                 eachElement<Elem16s>([&](Elem16s x) { return lyr::oracle::unitCurve(x, fraction, scale); })});
        }
    }
}

// Every element there is, at every number of fractional bits and at scales within and beyond every shift.
TEST(VectorUnitCurve, EveryInteger)
{
    std::vector<Elem16s> x;
    for (int v = INT16_MIN; v <= INT16_MAX; ++v) {
        x.push_back(static_cast<Elem16s>(v));
    }
    std::vector<Elem16s> y(x.size());
    for (const Elem32s fraction : {INT32_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, INT32_MAX}) {
        for (const Elem32s scale :
             {0, -3, -10, -14, -20, -28, -29, -43, -100, INT32_MIN, 2, 3, 17, 30, 31, 32, 100, INT32_MAX}) {
            ASSERT_EQ(lyrsUnitCurve_16s_Sfs(x.data(), fraction, y.data(), static_cast<Elem32s>(x.size()), scale),
                      StsNoErr);
            for (std::size_t i = 0; i < x.size(); ++i) {
                ASSERT_EQ(y[i], lyr::oracle::unitCurve(x[i], fraction, scale))
                    << x[i] << " fraction " << fraction << " scale " << scale;
            }
        }
    }
}

// To the right by truncation, deliberately: three quarters are not rounded to one.
TEST(VectorUnitCurve, IntegersAreTruncated)
{
    const Elem16s x[] = {7, 8};
    Elem16s y[2] = {};
    ASSERT_EQ(lyrsUnitCurve_16s_Sfs(x, 3, y, 2, 0), StsNoErr);
    EXPECT_EQ(y[0], 0); // 49 / 64
    EXPECT_EQ(y[1], 1); // 64 / 64
}

TEST(VectorUnitCurve, FractionThatDoesNotFitClears)
{
    for (const Elem32s fraction : {15, -1}) {
        const Elem16s x[] = {100, 20000};
        Elem16s y[] = {1, 2};
        EXPECT_EQ(lyrsUnitCurve_16s_Sfs(x, fraction, y, 2, 0), StsNoErr);
        EXPECT_EQ(y[0], 0);
        EXPECT_EQ(y[1], 0);
    }
}

} // namespace
