// Centres and weights of a bank, the scale conversions, and the copy with padding.

#include "frontend/filter_bank.hpp"
#include "lyrsr.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "frontend/filter_bank_fixture.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using lyr::test::Api;
using lyr::test::Guarded;
using lyr::test::Owned;
using lyr::test::Random;

constexpr float inf32 = std::numeric_limits<float>::infinity();
constexpr float nan32 = std::numeric_limits<float>::quiet_NaN();

template <class State>
class FilterBankAccess : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Elem32s order = 0;
        ASSERT_EQ(Api<State>::empty(&owned.bank, &order, 64, 4, 0), StsNoErr);
    }
    Owned<State> owned;
};
TYPED_TEST_SUITE(FilterBankAccess, lyr::test::Kinds);

// ------------------------------------------------------------------------------------------------------------- centres

TYPED_TEST(FilterBankAccess, CentersOutAndIn)
{
    auto& bank = this->owned.bank;
    std::vector<Elem32s> out(6, -7);
    EXPECT_EQ(Api<TypeParam>::getCenters(bank, out.data()), StsFBankNotReady);
    EXPECT_EQ(out, std::vector<Elem32s>(6, -7));
    const Guarded<Elem32s> in(std::vector<Elem32s>{0, 3, 3, 10, 20, 32}, Guarded<Elem32s>::flush(6));
    ASSERT_EQ(Api<TypeParam>::setCenters(bank, in.data()), StsNoErr);
    EXPECT_EQ(bank->ready, 1);
    const Guarded<Elem32s> copy(6, Guarded<Elem32s>::flush(6));
    ASSERT_EQ(Api<TypeParam>::getCenters(bank, copy.data()), StsNoErr);
    EXPECT_EQ(copy.copy(), in.copy());
    EXPECT_EQ(bank->pCenters[6], 32);
}

TYPED_TEST(FilterBankAccess, CentersThatAreRefused)
{
    auto& bank = this->owned.bank;
    const std::vector<Elem32s> good{0, 3, 3, 10, 20, 32};
    const auto with = [&good](std::size_t i, Elem32s value) {
        std::vector<Elem32s> c = good;
        c[i] = value;
        return c;
    };
    for (const auto& bad : {with(0, -1), with(1, -1), with(1, 4), with(2, 2), with(3, 21), with(3, 2), with(2, 11),
                            with(5, 33), with(5, INT32_MAX), with(0, INT32_MIN)}) {
        EXPECT_EQ(Api<TypeParam>::setCenters(bank, bad.data()), StsFBankNotReady);
        EXPECT_EQ(bank->ready, 0) << "nothing stored";
    }
    ASSERT_EQ(Api<TypeParam>::setCenters(bank, good.data()), StsNoErr);
    EXPECT_EQ(Api<TypeParam>::setCenters(bank, with(0, -1).data()), StsFBankNotReady);
    EXPECT_EQ(bank->pCenters[0], 0);
    // How the last two stand to each other is not looked at: meant.
    for (const auto& odd : {with(4, 40), with(4, INT32_MAX), with(5, 5), with(5, -9)}) {
        EXPECT_EQ(Api<TypeParam>::setCenters(bank, odd.data()), StsNoErr);
        std::vector<Elem32s> out(6);
        EXPECT_EQ(Api<TypeParam>::getCenters(bank, out.data()), StsNoErr);
        EXPECT_EQ(out, odd);
    }
    // What stands in the record is looked at on the way out.
    bank->pCenters[1] = 25;
    std::vector<Elem32s> out(6, -7);
    EXPECT_EQ(Api<TypeParam>::getCenters(bank, out.data()), StsFBankNotReady);
    EXPECT_EQ(out, std::vector<Elem32s>(6, -7));
}

// ------------------------------------------------------------------------------------------------------------- weights

TYPED_TEST(FilterBankAccess, WeightsOutAndIn)
{
    auto& bank = this->owned.bank;
    const std::vector<float> none(40);
    EXPECT_EQ(Api<TypeParam>::setCoeffs(bank, 0, none.data()), StsFBankNotReady) << "before the number is looked at";
    const std::vector<Elem32s> centers{0, 3, 3, 10, 20, 32};
    ASSERT_EQ(Api<TypeParam>::setCenters(bank, centers.data()), StsNoErr);
    Random random(1);
    for (int i = 1; i <= 4; ++i) {
        const auto count = static_cast<std::size_t>(centers[static_cast<std::size_t>(i) + 1] -
                                                    centers[static_cast<std::size_t>(i) - 1] + 1);
        std::vector<float> values(count);
        for (float& v : values) {
            v = static_cast<float>(random.uniform<int>(-20000, 20000)) / 16384.0F;
        }
        const Guarded<float> in(values, Guarded<float>::flush(count));
        const Guarded<float> out(count, Guarded<float>::flush(count));
        ASSERT_EQ(Api<TypeParam>::setCoeffs(bank, i, in.data()), StsNoErr);
        ASSERT_EQ(Api<TypeParam>::getCoeffs(bank, i, out.data()), StsNoErr);
        EXPECT_EQ(out.copy(), values);
        EXPECT_TRUE(out.intact());
        const int below = centers[static_cast<std::size_t>(i)] - centers[static_cast<std::size_t>(i) - 1];
        EXPECT_EQ(Api<TypeParam>::coefficient(bank->pCoefLeft[i - 1][0]), values[0]);
        if (static_cast<std::size_t>(below) + 1 < count) {
            EXPECT_EQ(Api<TypeParam>::coefficient(bank->pCoefRight[i - 1][0]),
                      values[static_cast<std::size_t>(below) + 1]);
        }
    }
}

// One more can be read than written, on purpose: the row behind the last filter, with an empty right side.
TYPED_TEST(FilterBankAccess, FilterNumbers)
{
    auto& bank = this->owned.bank;
    const std::vector<Elem32s> centers{0, 3, 3, 10, 20, 32};
    ASSERT_EQ(Api<TypeParam>::setCenters(bank, centers.data()), StsNoErr);
    const Guarded<float> out(13, Guarded<float>::flush(13));
    EXPECT_EQ(Api<TypeParam>::getCoeffs(bank, 5, out.data()), StsNoErr);
    EXPECT_EQ(out.copy(), std::vector<float>(13, 0.0F));
    EXPECT_EQ(Api<TypeParam>::setCoeffs(bank, 5, out.data()), StsSize);
    for (const int bad : {0, -1, 6, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(Api<TypeParam>::getCoeffs(bank, bad, out.data()), StsSize);
        EXPECT_EQ(Api<TypeParam>::setCoeffs(bank, bad, out.data()), StsSize);
    }
    EXPECT_TRUE(out.intact());
}

TYPED_TEST(FilterBankAccess, WeightsBeyondTheRowAreNotStored)
{
    auto& bank = this->owned.bank;
    const std::vector<Elem32s> centers{0, 3, 3, 10, 110, 32};
    ASSERT_EQ(Api<TypeParam>::setCenters(bank, centers.data()), StsNoErr);
    const std::vector<float> ones(101, 1.0F);
    ASSERT_EQ(Api<TypeParam>::setCoeffs(bank, 4, ones.data()), StsNoErr);
    std::vector<float> out(102, -1.0F);
    ASSERT_EQ(Api<TypeParam>::getCoeffs(bank, 4, out.data()), StsNoErr);
    for (std::size_t j = 0; j <= 100; ++j) {
        EXPECT_EQ(out[j], j <= 32 ? 1.0F : 0.0F) << j;
    }
    EXPECT_EQ(out[101], -1.0F);
}

// A middle centre below zero makes a right side that is longer than its row, and no left side.
TYPED_TEST(FilterBankAccess, RightSidesBeyondTheRowAreNotStored)
{
    constexpr std::size_t half = 16;
    constexpr std::size_t count = 27;
    Owned<TypeParam> owned;
    Elem32s order = 0;
    ASSERT_EQ(Api<TypeParam>::empty(&owned.bank, &order, 2 * half, 1, 0), StsNoErr);
    const std::vector<Elem32s> centers{0, -11, 16};
    ASSERT_EQ(Api<TypeParam>::setCenters(owned.bank, centers.data()), StsNoErr);
    const Guarded<float> in(std::vector<float>(count, 1.0F), Guarded<float>::flush(count));
    ASSERT_EQ(Api<TypeParam>::setCoeffs(owned.bank, 1, in.data()), StsNoErr);
    for (std::size_t j = 0; j < half; ++j) {
        EXPECT_EQ(Api<TypeParam>::coefficient(owned->pCoefRight[0][j]), 1.0F) << j;
        EXPECT_EQ(owned->pCoefRight[1][j], 0) << "in the row behind";
        EXPECT_EQ(owned->pCoefLeft[0][j], 0);
    }
    const Guarded<float> out(count, Guarded<float>::flush(count));
    ASSERT_EQ(Api<TypeParam>::getCoeffs(owned.bank, 1, out.data()), StsNoErr);
    for (std::size_t j = 0; j < count; ++j) {
        EXPECT_EQ(out[j], j < half ? 1.0F : 0.0F) << j;
    }
    EXPECT_TRUE(out.intact());
}

TEST(FilterBankAccess16s, CoefficientsBecomeIntegers)
{
    Owned<FBankState_16s> owned;
    Elem32s order = 0;
    ASSERT_EQ(lyrsEmptyFBankInitAlloc_16s(&owned.bank, &order, 64, 1, 0), StsNoErr);
    const std::vector<Elem32s> centers{0, 9, 9};
    ASSERT_EQ(lyrsFBankSetCenters_16s(owned.bank, centers.data()), StsNoErr);
    const std::vector<float> in{1.0F,       -1.0F, 0.99999F, -0.99999F,  131072.0F,
                                -131072.0F, inf32, -inf32,   131071.99F, nan32};
    const std::vector<Elem32s> expected{16384,     -16384,    16383,
                                        -16383,    INT32_MAX, INT32_MIN,
                                        INT32_MAX, INT32_MIN, static_cast<Elem32s>(131071.99F * 16384.0F),
                                        INT32_MIN};
    ASSERT_EQ(lyrsFBankSetCoeffs_16s(owned.bank, 1, in.data()), StsNoErr);
    for (std::size_t i = 0; i < in.size(); ++i) {
        EXPECT_EQ(owned->pCoefLeft[0][i], expected[i]) << in[i];
    }
    std::vector<float> out(10);
    ASSERT_EQ(lyrsFBankGetCoeffs_16s(owned.bank, 1, out.data()), StsNoErr);
    EXPECT_EQ(out[0], 1.0F);
    EXPECT_EQ(out[2], 16383.0F / 16384.0F);
    EXPECT_EQ(out[4], 131072.0F);
}

TYPED_TEST(FilterBankAccess, NullPointers)
{
    auto& bank = this->owned.bank;
    Elem32s center = 0;
    float coefficient = 0;
    EXPECT_EQ(Api<TypeParam>::getCenters(nullptr, &center), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::getCenters(bank, nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::setCenters(nullptr, &center), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::setCenters(bank, nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::getCoeffs(nullptr, 1, &coefficient), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::getCoeffs(bank, 0, nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::setCoeffs(nullptr, 1, &coefficient), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::setCoeffs(bank, 0, nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::getCoeffs(bank, 0, &coefficient), StsFBankNotReady);
}

// -------------------------------------------------------------------------------------------------------------- scales

TEST(MelScale, Conversions)
{
    Random random(1);
    for (std::size_t len = 1; len <= 40; ++len) {
        for (const float mul : {2595.0F, 1127.01F, 0.1F}) {
            for (const float div : {700.0F, 1000.0F, 3.0F}) {
                const Guarded<float> x(random.vector<float>(len, 0, mul * 3), Guarded<float>::flush(len));
                const Guarded<float> dst(len, Guarded<float>::flush(len));
                ASSERT_EQ(lyrsMelToLinear_32f(x.data(), dst.data(), static_cast<Elem32s>(len), mul, div), StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    const double reciprocal = 1.0 / double(mul);
                    ASSERT_EQ(dst[i], static_cast<float>(double(div) * (std::exp(double(x[i]) * reciprocal) - 1.0)));
                }
                ASSERT_EQ(lyrsLinearToMel_32f(x.data(), dst.data(), static_cast<Elem32s>(len), mul, div), StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    const double reciprocal = 1.0 / double(div);
                    ASSERT_EQ(dst[i], static_cast<float>(double(mul) * std::log(1.0 + double(x[i]) * reciprocal)));
                }
                ASSERT_TRUE(dst.intact());
            }
        }
    }
}

TEST(MelScale, SpecialValuesAndPlace)
{
    std::vector<float> x{0.0F, inf32, -inf32, nan32};
    ASSERT_EQ(lyrsMelToLinear_32f(x.data(), x.data(), 4, 2595, 700), StsNoErr);
    EXPECT_EQ(x[0], 0.0F);
    EXPECT_EQ(x[1], inf32);
    EXPECT_EQ(x[2], -700.0F);
    EXPECT_TRUE(std::isnan(x[3]));
    x = {0.0F, inf32, -700.0F, -701.0F};
    ASSERT_EQ(lyrsLinearToMel_32f(x.data(), x.data(), 4, 2595, 700), StsNoErr);
    EXPECT_EQ(x[0], 0.0F);
    EXPECT_EQ(x[1], inf32);
    EXPECT_EQ(x[2], -inf32);
    EXPECT_TRUE(std::isnan(x[3]));
}

TEST(MelScale, Checks)
{
    for (const auto convert : {lyrsMelToLinear_32f, lyrsLinearToMel_32f}) {
        float x = 1;
        EXPECT_EQ(convert(nullptr, &x, 0, 0, 0), StsNullPtr);
        EXPECT_EQ(convert(&x, nullptr, 0, 0, 0), StsNullPtr);
        EXPECT_EQ(convert(&x, &x, 0, 1, 1), StsSize);
        EXPECT_EQ(convert(&x, &x, 1, 0, 1), StsSize);
        EXPECT_EQ(convert(&x, &x, 1, 1, -1), StsSize);
        EXPECT_EQ(convert(&x, &x, 1, -0.0F, 1), StsSize);
        for (const float nan : {nan32, -nan32}) { // not above 0
            EXPECT_EQ(convert(&x, &x, 1, nan, 1), StsSize);
            EXPECT_EQ(convert(&x, &x, 1, 1, nan), StsSize);
        }
        EXPECT_EQ(x, 1);
        EXPECT_EQ(convert(&x, &x, 1, inf32, std::numeric_limits<float>::denorm_min()), StsNoErr);
    }
}

// ------------------------------------------------------------------------------------------------------------- padding

template <class T, class Copy>
void expectPadding(Copy copy)
{
    Random random(1);
    for (std::size_t from = 1; from <= 40; ++from) {
        for (std::size_t to = from; to <= from + 40; to += 3) {
            const Guarded<T> x(random.vector<T>(from, T(-100), T(100)), Guarded<T>::flush(from));
            const Guarded<T> dst(to, Guarded<T>::flush(to));
            ASSERT_EQ(copy(x.data(), static_cast<Elem32s>(from), dst.data(), static_cast<Elem32s>(to)), StsNoErr);
            for (std::size_t i = 0; i < to; ++i) {
                ASSERT_EQ(dst[i], i < from ? x[i] : T{0});
            }
            ASSERT_TRUE(dst.intact());
        }
    }
    T x{1};
    T dst{7};
    EXPECT_EQ(copy(nullptr, 0, &dst, 0), StsNullPtr);
    EXPECT_EQ(copy(&x, 0, nullptr, 0), StsNullPtr);
    EXPECT_EQ(copy(&x, 0, &dst, 1), StsSize);
    EXPECT_EQ(copy(&x, 1, &dst, 0), StsSize);
    EXPECT_EQ(copy(&x, 2, &dst, 1), StsSize);
    EXPECT_EQ(dst, T{7});
}

TEST(CopyWithPadding, Singles)
{
    expectPadding<float>(lyrsCopyWithPadding_32f);
}
TEST(CopyWithPadding, Integers)
{
    expectPadding<Elem16s>(lyrsCopyWithPadding_16s);
}

} // namespace
