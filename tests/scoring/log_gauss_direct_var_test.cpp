// The forms that take variances: what each of the three makes of zero, tiny, infinite and NaN variances, and the work
// memory of the one that inverts.

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "support/allocation.hpp"

namespace {

constexpr float inf32 = std::numeric_limits<float>::infinity();
constexpr float nan32 = std::numeric_limits<float>::quiet_NaN();
constexpr double inf64 = std::numeric_limits<double>::infinity();
constexpr double nan64 = std::numeric_limits<double>::quiet_NaN();

// A frame that is off the mean by `d` in every element. The variances are one, but those at the front.
template <class T>
struct Frame
{
    std::vector<T> x;
    std::vector<T> mean;
    std::vector<T> var;

    Frame(std::size_t len, T d, const std::vector<T>& front) : x(len, d), mean(len, T(0)), var(len, T(1))
    {
        std::copy(front.begin(), front.end(), var.begin());
    }
    [[nodiscard]] Elem32s len() const { return static_cast<Elem32s>(x.size()); }
};

// What a call returned and wrote; 17 is what stood there.
template <class T>
struct Outcome
{
    Status status;
    T score = 17;
};

Outcome<float> single(const Frame<float>& f, float gconst = 1)
{
    Outcome<float> o{};
    o.status = lyrsLogGaussSingle_DirectVar_32f(f.x.data(), f.mean.data(), f.var.data(), f.len(), &o.score, gconst);
    return o;
}

Outcome<double> widened(const Frame<float>& f, double gconst = 1)
{
    Outcome<double> o{};
    o.status = lyrsLogGaussSingle_DirectVar_32f64f(f.x.data(), f.mean.data(), f.var.data(), f.len(), &o.score, gconst);
    return o;
}

Outcome<double> twice(const Frame<double>& f, double gconst = 1)
{
    Outcome<double> o{};
    o.status = lyrsLogGaussSingle_DirectVar_64f(f.x.data(), f.mean.data(), f.var.data(), f.len(), &o.score, gconst);
    return o;
}

constexpr std::size_t lengths[] = {2, 3, 5, 8, 19, 40};

// Three routes, three answers to a zero variance; meant to differ.
TEST(LogGaussDirectVar, ZeroVariance)
{
    for (const std::size_t zeroAt : {std::size_t{0}, std::size_t{4}, std::size_t{8}}) {
        for (const bool equal : {false, true}) {
            std::vector<float> x(9, 2.0F);
            std::vector<float> m(9, 1.0F);
            std::vector<float> v(9, 1.0F);
            v[zeroAt] = zeroAt == 4 ? -0.0F : 0.0F;
            m[zeroAt] = equal ? x[zeroAt] : 1.0F;
            const auto wrong = [equal](double score) { return equal ? std::isnan(score) : score == -inf64; };

            float single = 17.0F;
            EXPECT_EQ(lyrsLogGaussSingle_DirectVar_32f(x.data(), m.data(), v.data(), 9, &single, 1.0F),
                      StsWarnOverflow);
            EXPECT_TRUE(wrong(single)) << single;

            double widened = 17.0;
            EXPECT_EQ(lyrsLogGaussSingle_DirectVar_32f64f(x.data(), m.data(), v.data(), 9, &widened, 1.0),
                      StsWarnOverflow);
            EXPECT_EQ(widened, 17.0) << "a warning without a result";

            const std::vector<double> x64(x.begin(), x.end());
            const std::vector<double> m64(m.begin(), m.end());
            std::vector<double> v64(v.begin(), v.end());
            v64[zeroAt] = 0.0;
            double twice = 17.0;
            EXPECT_EQ(lyrsLogGaussSingle_DirectVar_64f(x64.data(), m64.data(), v64.data(), 9, &twice, 1.0), StsNoErr);
            EXPECT_TRUE(wrong(twice)) << twice;
        }
    }
}

// One divides by minus zero as IEEE 754 does; the reciprocal of the other is that of plus zero whatever its sign.
TEST(LogGaussDirectVar, MinusZeroVariance)
{
    for (const std::size_t len : lengths) {
        const auto up = twice({len, 2.0, {-0.0}});
        EXPECT_EQ(up.status, StsNoErr);
        EXPECT_EQ(up.score, inf64) << len;
        const auto equal = twice({len, 0.0, {-0.0}});
        EXPECT_EQ(equal.status, StsNoErr);
        EXPECT_TRUE(std::isnan(equal.score)) << len;
        EXPECT_TRUE(std::isnan(twice({len, 2.0, {-0.0, 0.0}}).score)) << len;

        const auto down = single({len, 2.0F, {-0.0F, 0.0F}});
        EXPECT_EQ(down.status, StsWarnOverflow);
        EXPECT_EQ(down.score, -inf32) << len;
        EXPECT_EQ(widened({len, 2.0F, {-0.0F}}).status, StsWarnOverflow);
    }
}

// Up to 2^-128 the reciprocal of a single is an infinity, and no warning tells of it; the next larger one still has a
// reciprocal. Doubles divide such variances as any other.
TEST(LogGaussDirectVar, SubnormalVariance)
{
    for (const std::size_t len : lengths) {
        for (const float tiny : {0x1p-149F, 1e-39F, 0x1p-128F}) {
            const auto off = single({len, 2.0F, {tiny}});
            EXPECT_EQ(off.status, StsNoErr);
            EXPECT_EQ(off.score, -inf32) << tiny;
            EXPECT_EQ(single({len, 2.0F, {-tiny}}).score, inf32) << tiny;
            const auto equal = single({len, 0.0F, {tiny}});
            EXPECT_EQ(equal.status, StsNoErr);
            EXPECT_TRUE(std::isnan(equal.score)) << tiny;

            const auto quotient = widened({len, 0x1p-60F, {tiny}}, 0.0);
            EXPECT_EQ(quotient.status, StsNoErr);
            // The other terms of 2^-120 are far below the last place.
            EXPECT_EQ(quotient.score, -0.5 * (0x1p-120 / static_cast<double>(tiny))) << tiny;
            EXPECT_EQ(widened({len, 0.0F, {tiny}}).score, 1.0) << tiny;
        }
        const float least = std::nextafter(0x1p-128F, 1.0F);
        const auto finite = single({len, 0x1p-64F, {least}}, 0.0F);
        EXPECT_EQ(finite.status, StsNoErr);
        EXPECT_EQ(finite.score, -0.5F * (1 - 0x1p-21F)) << "2^-128 times 2^128 * (1 - 2^-21)";

        const auto deep = twice({len, 0x1p-530, {0x1p-1060}}, 0.0);
        EXPECT_EQ(deep.status, StsNoErr);
        EXPECT_EQ(deep.score, -0.5);
    }
}

// Not a zero, and no warning; where a zero stands beside it the warning is the zero's.
TEST(LogGaussDirectVar, NanVariance)
{
    for (const std::size_t len : lengths) {
        for (const float nan : {nan32, -nan32}) {
            for (const float d : {0.0F, 2.0F}) {
                EXPECT_EQ(single({len, d, {nan}}).status, StsNoErr);
                EXPECT_TRUE(std::isnan(single({len, d, {nan}}).score));
                EXPECT_EQ(widened({len, d, {nan}}).status, StsNoErr);
                EXPECT_TRUE(std::isnan(widened({len, d, {nan}}).score));
                for (const auto& front : {std::vector<float>{nan, 0.0F}, {0.0F, nan}}) {
                    const auto both = single({len, d, front});
                    EXPECT_EQ(both.status, StsWarnOverflow);
                    EXPECT_TRUE(std::isnan(both.score)) << len;
                    const auto ended = widened({len, d, front});
                    EXPECT_EQ(ended.status, StsWarnOverflow);
                    EXPECT_EQ(ended.score, 17.0) << "nothing is written";
                }
            }
        }
        EXPECT_TRUE(std::isnan(twice({len, 2.0, {nan64}}).score));
    }
}

// Weighs its element with zero, which leaves a finite score.
TEST(LogGaussDirectVar, InfiniteVariance)
{
    for (const std::size_t len : lengths) {
        const auto rest = static_cast<float>(len - 1);
        for (const float sign : {1.0F, -1.0F}) {
            EXPECT_EQ(single({len, 2.0F, {sign * inf32}}).score, 1.0F - 2.0F * rest);
            EXPECT_EQ(widened({len, 2.0F, {sign * inf32}}).score, 1.0 - 2.0 * rest);
            EXPECT_EQ(twice({len, 2.0, {sign * inf64}}).score, 1.0 - 2.0 * rest);
        }
        EXPECT_TRUE(std::isnan(twice({len, inf64, {inf64}}).score));
    }
}

TEST(LogGaussDirectVar, WorkMemoryThatCannotBeHad)
{
    const std::vector<float> x(5, 1.0F);
    float result = 17.0F;
    const int failed = lyr::test::failEachAllocation(
        [&] { return lyrsLogGaussSingle_DirectVar_32f(x.data(), x.data(), x.data(), 5, &result, 1.0F); }, {},
        [&] { EXPECT_EQ(result, 17.0F); });
    EXPECT_EQ(failed, 1);
}

// A length whose vector is beyond 2 GiB is asked for all the same; here it is refused before anything is read.
TEST(LogGaussDirectVar, WorkMemoryOfALongFrame)
{
    const float x = 1.0F;
    for (const Elem32s len : {1, 600000000}) {
        float result = 17.0F;
        lyr::test::failAllocationsAfter(0);
        const Status status = lyrsLogGaussSingle_DirectVar_32f(&x, &x, &x, len, &result, 1.0F);
        lyr::test::allowAllocations();
        EXPECT_EQ(status, StsMemAlloc);
        EXPECT_EQ(result, 17.0F);
        EXPECT_EQ(lyr::test::lastAllocationSize(), (static_cast<unsigned long>(len) + 32) * 4 + 32 + sizeof(void*));
    }
}

} // namespace
