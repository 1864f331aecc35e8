// Sums of columns for pooling, and the accumulation of single frames.

#include "estimation/feature_rows.hpp"
#include "oracle/vector_convert.hpp"
#include "support/ulp.hpp"

#include <array>
#include <cmath>

namespace {

using lyr::oracle::columnSums;
using lyr::oracle::rounded;
using lyr::oracle::toInteger;
using lyr::test::FeatureRows;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::results;
using lyr::test::roundsTo;
using lyr::test::sameBits;
using lyr::test::Shape;
using lyr::test::shapes;
using lyr::test::within;

template <class S>
using SumMeanVar = Status (*)(const S*, Elem32s, Elem32s, Elem32f*, Elem32f*, Elem32s);

template <class S>
void compare(SumMeanVar<S> overwriting, SumMeanVar<S> adding, S low, S high)
{
    Random random(21);
    for (const Shape& s : shapes(sizeof(S), 1)) {
        SCOPED_TRACE(s.text());
        const FeatureRows<S> x(s, random, low, high);
        const auto sum = results<float>(s.width, s.offset / 4 * 4);
        const auto sumSq = results<float>(s.width);
        const auto old = random.vector<float>(s.width, -50.0F, 50.0F);
        const auto oldSq = random.vector<float>(s.width, 0.0F, 90.0F);
        const Guarded<float> added(old, Guarded<float>::flush(s.width));
        const Guarded<float> addedSq(oldSq, s.offset / 4 * 4);
        ASSERT_EQ(overwriting(x.block(), s.s(), s.h(), sum.data(), sumSq.data(), s.w()), StsNoErr);
        ASSERT_EQ(adding(x.block(), s.s(), s.h(), added.data(), addedSq.data(), s.w()), StsNoErr);
        for (std::size_t c = 0; c < s.width; ++c) {
            const auto t = columnSums(x.column(c));
            ASSERT_TRUE(within(sum[c], rounded<float>(t.sum, t.magnitude, s.height))) << c;
            ASSERT_TRUE(within(sumSq[c], rounded<float>(t.squares, t.squareMagnitude, s.height))) << c;
            const auto o = static_cast<long double>(old[c]);
            const auto oSq = static_cast<long double>(oldSq[c]);
            ASSERT_TRUE(within(added[c], rounded<float>(t.sum + o, t.magnitude + std::fabs(o), s.height + 1))) << c;
            ASSERT_TRUE(within(addedSq[c], rounded<float>(t.squares + oSq, t.squareMagnitude + oSq, s.height + 1)))
                << c;
        }
        ASSERT_TRUE(sum.intact() && sumSq.intact() && added.intact() && addedSq.intact());
    }
}

TEST(SumMeanVar, Singles)
{
    compare<float>(lyrsSumMeanVar_32f, lyrsSumMeanVar_32f_I, -3.0F, 5.0F);
}
TEST(SumMeanVar, Shorts)
{
    compare<Elem16s>(lyrsSumMeanVar_16s32f, lyrsSumMeanVar_16s32f_I, INT16_MIN, INT16_MAX);
}

// Sums that single precision holds exactly: integers to the bit.
TEST(SumMeanVar, IntegersAtEveryScale)
{
    constexpr Elem32s scales[] = {0, 1, 2, -1, 7, -9, 30, -20, 200, -200};
    Random random(22);
    std::size_t n = 0;
    for (const Shape& s : shapes(sizeof(Elem16s), 1)) {
        SCOPED_TRACE(s.text());
        const FeatureRows<Elem16s> x(s, random, -120, 120);
        const Elem32s scale = scales[n++ % std::size(scales)];
        const auto sum = results<Elem32s>(s.width, s.offset / 4 * 4);
        const auto sumSq = results<Elem32s>(s.width);
        const auto old = random.vector<Elem32s>(s.width, -90000, 90000);
        const auto oldSq = random.vector<Elem32s>(s.width, -90000, 90000);
        const Guarded<Elem32s> added(old, Guarded<Elem32s>::flush(s.width));
        const Guarded<Elem32s> addedSq(oldSq, s.offset / 4 * 4);
        ASSERT_EQ(lyrsSumMeanVar_16s32s_Sfs(x.block(), s.s(), s.h(), sum.data(), sumSq.data(), s.w(), scale), StsNoErr);
        ASSERT_EQ(lyrsSumMeanVar_16s32s_ISfs(x.block(), s.s(), s.h(), added.data(), addedSq.data(), s.w(), scale),
                  StsNoErr);
        for (std::size_t c = 0; c < s.width; ++c) {
            const auto t = columnSums(x.column(c));
            const auto expected = [scale](long double exact) {
                // The power of two is one of single precision: zero at scale 200, infinite at -200, and zero times that
                // counts as the lowest.
                if (scale == -200) {
                    return exact > 0 ? INT32_MAX : INT32_MIN;
                }
                return toInteger<Elem32s>(scale == 200 ? 0 : std::ldexp(exact, -scale));
            };
            ASSERT_EQ(sum[c], expected(t.sum)) << c << " scale " << scale;
            ASSERT_EQ(sumSq[c], expected(t.squares)) << c << " scale " << scale;
            // The old integers are part of what is scaled.
            ASSERT_EQ(added[c], expected(t.sum + old[c])) << c << " scale " << scale;
            ASSERT_EQ(addedSq[c], expected(t.squares + oldSq[c])) << c << " scale " << scale;
        }
        ASSERT_TRUE(sum.intact() && sumSq.intact() && added.intact() && addedSq.intact());
    }
}

// The integers hold what single precision kept of the sum, on purpose: 2^24 + 1 is no single.
TEST(SumMeanVar, IntegersLoseWhatSinglesLose)
{
    const std::array<Elem16s, 3> x{4095, 91, 0}; // 4095^2 + 91^2 = 2^24 + 90
    Elem32s sum = 0;
    Elem32s sumSq = 1;
    ASSERT_EQ(lyrsSumMeanVar_16s32s_Sfs(x.data(), 1, 3, &sum, &sumSq, 1, 0), StsNoErr);
    EXPECT_EQ(sum, 4186);
    EXPECT_EQ(sumSq, 16777306);
    const std::array<Elem16s, 3> y{4095, 91, 1}; // an odd sum beyond 2^24
    ASSERT_EQ(lyrsSumMeanVar_16s32s_Sfs(y.data(), 1, 3, &sum, &sumSq, 1, 0), StsNoErr);
    EXPECT_EQ(sumSq % 2, 0);
}

// What the in-place form finds goes through single precision as well: 2^24 + 1 is rounded, and 2^31 - 1 becomes 2^31,
// which saturates back.
TEST(SumMeanVar, OldIntegersLoseWhatSinglesLose)
{
    constexpr std::array<Elem32s, 9> old{16777217,       16777219, -16777217, INT32_MAX, INT32_MIN,
                                         INT32_MAX - 63, 33554435, 16777216,  -33554435};
    for (const Elem32s scale : {0, 1, 4, -1}) {
        for (const Elem16s element : {Elem16s{0}, Elem16s{3}}) {
            const std::vector<Elem16s> x(old.size(), element);
            auto sum = old;
            auto sumSq = old;
            ASSERT_EQ(lyrsSumMeanVar_16s32s_ISfs(x.data(), static_cast<Elem32s>(x.size()), 1, sum.data(), sumSq.data(),
                                                 static_cast<Elem32s>(x.size()), scale),
                      StsNoErr);
            for (std::size_t i = 0; i < old.size(); ++i) {
                const auto expected = [&](float added) {
                    return lyr::oracle::convert32f32s(static_cast<float>(old[i]) + added, 1, scale);
                };
                EXPECT_EQ(sum[i], expected(element)) << old[i] << " scale " << scale;
                EXPECT_EQ(sumSq[i], expected(static_cast<float>(element * element))) << old[i] << " scale " << scale;
            }
        }
    }
    const std::array<Elem16s, 3> zeros{};
    std::array<Elem32s, 3> sum{16777217, INT32_MAX, 16777219};
    auto sumSq = sum;
    ASSERT_EQ(lyrsSumMeanVar_16s32s_ISfs(zeros.data(), 3, 1, sum.data(), sumSq.data(), 3, 0), StsNoErr);
    EXPECT_EQ(sum, (std::array<Elem32s, 3>{16777216, INT32_MAX, 16777220}));
    EXPECT_EQ(sumSq, sum);
}

TEST(SumMeanVar, IntegersSaturate)
{
    const std::vector<Elem16s> x(5, INT16_MIN);
    Elem32s sum = 0;
    Elem32s sumSq = 0;
    ASSERT_EQ(lyrsSumMeanVar_16s32s_Sfs(x.data(), 1, 5, &sum, &sumSq, 1, 0), StsNoErr);
    EXPECT_EQ(sum, 5 * INT16_MIN);
    EXPECT_EQ(sumSq, INT32_MAX);
    ASSERT_EQ(lyrsSumMeanVar_16s32s_Sfs(x.data(), 1, 5, &sum, &sumSq, 1, -20), StsNoErr);
    EXPECT_EQ(sum, INT32_MIN);
}

TEST(SumMeanVar, StrideThenPointersThenSizes)
{
    const float x = 1.0F;
    float sum = 7.0F;
    EXPECT_EQ(lyrsSumMeanVar_32f(nullptr, 1, 0, &sum, &sum, 2), StsStep);
    EXPECT_EQ(lyrsSumMeanVar_32f(&x, 2, 0, nullptr, &sum, 2), StsNullPtr);
    EXPECT_EQ(lyrsSumMeanVar_32f_I(&x, 2, 0, &sum, &sum, 2), StsSize);
    EXPECT_EQ(sum, 7.0F);
}

// ---------------------------------------------------------------------------------------------------------- one frame

template <class T>
void compareAccumulation(Status (*accumulate)(const T*, const T*, T*, T*, Elem32s, T))
{
    Random random(23);
    for (std::size_t len = 1; len <= 70; ++len) {
        for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
            const auto x = random.vector<T>(len, T(-4), T(4));
            const auto m = random.vector<T>(len, T(-4), T(4));
            const auto mean = random.vector<T>(len, T(-4), T(4));
            const auto var = random.vector<T>(len, T(-4), T(4));
            const T val = random.uniform<T>(T(-1), T(1));
            const Guarded<T> xs(x, offset);
            const Guarded<T> ms(m, Guarded<T>::flush(len));
            const Guarded<T> means(mean, Guarded<T>::flush(len));
            const Guarded<T> vars(var, (offset + sizeof(T)) % 16);
            ASSERT_EQ(accumulate(xs.data(), ms.data(), means.data(), vars.data(), static_cast<Elem32s>(len), val),
                      StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                const T d = x[i] - m[i];
                const T weighted = d * val;
                const T square = d * weighted;
                ASSERT_TRUE(sameBits(means[i], static_cast<T>(mean[i] + weighted))) << i << " of " << len;
                ASSERT_TRUE(sameBits(vars[i], static_cast<T>(var[i] + square))) << i << " of " << len;
            }
            ASSERT_TRUE(means.intact() && vars.intact());
        }
    }
}

TEST(MeanVarAcc, Singles)
{
    compareAccumulation<float>(lyrsMeanVarAcc_32f);
}
TEST(MeanVarAcc, Doubles)
{
    compareAccumulation<double>(lyrsMeanVarAcc_64f);
}

TEST(MeanVarAcc, WeightZeroChangesNothing)
{
    Random random(24);
    const auto x = random.vector<float>(19, -4.0F, 4.0F);
    const auto m = random.vector<float>(19, -4.0F, 4.0F);
    auto mean = random.vector<float>(19, -4.0F, 4.0F);
    auto var = random.vector<float>(19, -4.0F, 4.0F);
    const auto oldMean = mean;
    const auto oldVar = var;
    ASSERT_EQ(lyrsMeanVarAcc_32f(x.data(), m.data(), mean.data(), var.data(), 19, 0.0F), StsNoErr);
    EXPECT_EQ(mean, oldMean);
    EXPECT_EQ(var, oldVar);
}

TEST(MeanVarAcc, TheMeanMayBeTheRunningOne)
{
    for (const Elem32s len : {1, 5, 40}) {
        const std::vector<float> x(static_cast<std::size_t>(len), 3.0F);
        std::vector<float> mean(x.size(), 1.0F);
        std::vector<float> var(x.size(), 0.5F);
        ASSERT_EQ(lyrsMeanVarAcc_32f(x.data(), mean.data(), mean.data(), var.data(), len, 0.25F), StsNoErr);
        EXPECT_EQ(mean, std::vector<float>(x.size(), 1.5F));
        EXPECT_EQ(var, std::vector<float>(x.size(), 1.5F));
    }
}

} // namespace
