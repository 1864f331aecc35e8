// Construction of filter banks: every form against its formulas, weight by weight; sizes, placement and memory.

#include "frontend/filter_bank.hpp"
#include "lyrsr.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <tuple>
#include <vector>

#include "frontend/filter_bank_fixture.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"

namespace {

using lyr::oracle::Band;
using lyr::test::Api;
using lyr::test::expectBank;
using lyr::test::expectFields;
using lyr::test::Guarded;
using lyr::test::Owned;

constexpr float nan32 = std::numeric_limits<float>::quiet_NaN();

template <class State>
class FilterBank : public ::testing::Test
{};
TYPED_TEST_SUITE(FilterBank, lyr::test::Kinds);

const std::vector<Band>& bands()
{
    static const std::vector<Band> all{
        {8000.0F, 64.0F, 4000.0F, 2595.0F, 700.0F},   {8000.0F, 100.0F, 3400.0F, 1127.01F, 700.0F},
        {16000.0F, 20.0F, 8000.0F, 2595.0F, 700.0F},  {11025.0F, 133.3F, 5512.5F, 1000.0F, 1000.0F},
        {44100.0F, 1.0F, 22050.0F, 2595.0F, 700.0F},  {8000.0F, 1000.0F, 1000.0F, 2595.0F, 700.0F},
        {48000.0F, 0.01F, 24000.0F, 1.0F, 100000.0F}, {8000.0F, 300.0F, 310.0F, 2595.0F, 0.5F},
        {1.0F, 1e-6F, 0.5F, 2595.0F, 700.0F},         {8000.0F, 64.0F, 4000.0F, 3.0e38F, 700.0F}};
    return all;
}

constexpr int lengths[] = {1, 2, 3, 4, 7, 16, 31, 64, 200, 256, 500, 512, 1024};
constexpr int filterCounts[] = {1, 2, 3, 4, 5, 19, 23, 40, 70};

// -------------------------------------------------------------------------------------------------------------- record

// Tools read the fields of a record where they have always stood.
TEST(FilterBankRecord, FieldsInOrder)
{
    constexpr std::size_t p = sizeof(void*);
    EXPECT_EQ(offsetof(FBankState_32f, pCenters), 0U);
    EXPECT_EQ(offsetof(FBankState_32f, pCoefLeft), p);
    EXPECT_EQ(offsetof(FBankState_32f, pCoefRight), 2 * p);
    EXPECT_EQ(offsetof(FBankState_32f, flag), 3 * p);
    EXPECT_EQ(offsetof(FBankState_32f, fftLen), 3 * p + 4);
    EXPECT_EQ(offsetof(FBankState_32f, fftOrder), 3 * p + 8);
    EXPECT_EQ(offsetof(FBankState_32f, nFilter), 3 * p + 12);
    EXPECT_EQ(offsetof(FBankState_32f, nLinear), 3 * p + 16);
    EXPECT_EQ(offsetof(FBankState_32f, melMul), 3 * p + 20);
    EXPECT_EQ(offsetof(FBankState_32f, melDiv), 3 * p + 24);
    EXPECT_EQ(offsetof(FBankState_32f, ready), 3 * p + 28);
    EXPECT_EQ(offsetof(FBankState_32f, pFFTSpec), 3 * p + 32);
    EXPECT_EQ(offsetof(FBankState_32f, pWork), 4 * p + 32);
    EXPECT_EQ(offsetof(FBankState_16s, pFFTSpec), 3 * p + 32);
    EXPECT_EQ(offsetof(FBankState_16s, pWork), 4 * p + 32);
    EXPECT_EQ(offsetof(FBankState_16s, scale), 5 * p + 32);
    EXPECT_EQ(offsetof(FBankState_32s, flag), 3 * p);
    EXPECT_EQ(offsetof(FBankState_32s, nFilter), 3 * p + 4);
    EXPECT_EQ(offsetof(FBankState_32s, nBins), 3 * p + 8);
}

// ------------------------------------------------------------------------------------------------------------ mel bank

TYPED_TEST(FilterBank, MelBankIsItsFormulas)
{
    using Weight = typename Api<TypeParam>::Weight;
    for (const Band& band : bands()) {
        for (const int length : lengths) {
            for (const int filters : filterCounts) {
                for (const int flag : {1, 2}) {
                    SCOPED_TRACE(::testing::Message() << "rate " << band.fs << " low " << band.low << " length "
                                                      << length << " filters " << filters << " flag " << flag);
                    Owned<TypeParam> owned;
                    Elem32s order = -1;
                    ASSERT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, length, band.fs, band.low, band.high,
                                                        filters, band.mul, band.div, flag),
                              StsNoErr);
                    if (band.mul > 1e38F) {
                        continue; // the scale overflows: only that nothing else does
                    }
                    const auto rounded = static_cast<Elem32s>(lyr::oracle::roundedLength(length));
                    EXPECT_EQ(order, lyr::oracle::orderOf(rounded));
                    expectFields(*owned, flag, rounded, order, filters, band.mul, band.div);
                    EXPECT_EQ(owned->pFFTSpec, nullptr);
                    EXPECT_EQ(owned->pWork, nullptr);
                    expectBank(*owned, lyr::oracle::melBank<Weight>(length, filters, band, flag));
                    if (this->HasFatalFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TYPED_TEST(FilterBank, LengthsRoundUpToPowersOfTwo)
{
    for (const auto& [request, length, order] : {std::tuple{1, 2, 1},
                                                 {2, 2, 1},
                                                 {3, 4, 2},
                                                 {4, 4, 2},
                                                 {5, 8, 3},
                                                 {255, 256, 8},
                                                 {256, 256, 8},
                                                 {257, 512, 9}}) {
        Owned<TypeParam> owned;
        Elem32s told = 0;
        ASSERT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &told, request, 8000, 64, 4000, 1, 2595, 700, 1), StsNoErr);
        EXPECT_EQ(owned->fftLen, length);
        EXPECT_EQ(owned->fftOrder, order);
        EXPECT_EQ(told, order);
    }
}

// Half the rate is the last bin; the lower limit may coincide with the upper one.
TYPED_TEST(FilterBank, LimitsOfTheBand)
{
    Elem32s order = 0;
    {
        Owned<TypeParam> owned;
        ASSERT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, 256, 8000, 64, 4000, 20, 2595, 700, 2), StsNoErr);
        EXPECT_EQ(owned->pCenters[21], 128);
        TypeParam* none = nullptr;
        EXPECT_EQ(
            Api<TypeParam>::initAlloc(&none, &order, 256, 8000, 64, std::nextafter(4000.0F, 5000.0F), 20, 2595, 700, 2),
            StsFBankFreq);
        EXPECT_EQ(Api<TypeParam>::initAlloc(&none, &order, 256, 8000, 0, 4000, 20, 2595, 700, 2), StsSize);
        EXPECT_EQ(none, nullptr);
    }
    Owned<TypeParam> owned;
    ASSERT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, 256, 8000, 1000, 1000, 5, 2595, 700, 2), StsNoErr);
    for (int i = 0; i <= 6; ++i) {
        EXPECT_EQ(owned->pCenters[i], 32);
    }
    float coefficient = -1;
    ASSERT_EQ(Api<TypeParam>::getCoeffs(owned.bank, 3, &coefficient), StsNoErr); // one left weight, none on the right
    EXPECT_EQ(coefficient, 1.0F);
}

// Half the rate computes to just below the last bin here. In the mel shape the centre is truncated all the same: meant.
TYPED_TEST(FilterBank, LastCenterIsTruncatedInTheMelShape)
{
    for (const auto& [flag, last] : {std::pair{1, 127}, {2, 128}}) {
        Owned<TypeParam> owned;
        Elem32s order = 0;
        ASSERT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, 256, 8000, 64, 4000, 23, 2595, 700, flag), StsNoErr);
        EXPECT_EQ(owned->pCenters[24], last) << "flag " << flag;
    }
}

TYPED_TEST(FilterBank, ShapeInBinsReachesOneAndNeverZero)
{
    Owned<TypeParam> owned;
    Elem32s order = 0;
    ASSERT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, 512, 8000, 64, 4000, 20, 2595, 700, 2), StsNoErr);
    for (int i = 1; i <= 20; ++i) {
        const int below = owned->pCenters[i] - owned->pCenters[i - 1];
        const int above = owned->pCenters[i + 1] - owned->pCenters[i];
        std::vector<float> w(static_cast<std::size_t>(below + above + 1));
        ASSERT_EQ(Api<TypeParam>::getCoeffs(owned.bank, i, w.data()), StsNoErr);
        EXPECT_EQ(w[static_cast<std::size_t>(below)], 1.0F);
        EXPECT_GT(w.front(), 0.0F);
        EXPECT_GT(w.back(), 0.0F);
    }
}

// A frequency that is no number passes the checks. What comes of it is no bank, but nothing outside its memory is
// touched.
TYPED_TEST(FilterBank, FrequenciesThatAreNoNumbersPass)
{
    const auto at = [](int which, int n) { return which == n; };
    int belowZero = 0;
    for (int which = 0; which < 5; ++which) {
        for (const float nan : {nan32, -nan32}) {
            for (const int flag : {1, 2}) {
                const float fs = at(which, 0) ? nan : 8000.0F;
                const float low = at(which, 1) ? nan : 64.0F;
                const float high = at(which, 2) ? nan : 4000.0F;
                const float mul = at(which, 3) ? nan : 2595.0F;
                const float div = at(which, 4) ? nan : 700.0F;
                Elem32s size = 0;
                ASSERT_EQ(Api<TypeParam>::size(64, 5, flag, &size), StsNoErr);
                const Guarded<Elem8u> memory(static_cast<std::size_t>(size), 0);
                Elem32s order = 0;
                EXPECT_EQ(Api<TypeParam>::init(reinterpret_cast<TypeParam*>(memory.data()), &order, 64, fs, low, high,
                                               5, mul, div, flag),
                          StsNoErr);
                EXPECT_TRUE(memory.intact());
                lyr::test::expectLiteralSums(*reinterpret_cast<const TypeParam*>(memory.data()));
                Owned<TypeParam> owned;
                ASSERT_EQ(
                    Api<TypeParam>::melLinear(&owned.bank, &order, 64, fs, low, high, 5, 1000.0F, 2, mul, div, flag),
                    StsNoErr);
                lyr::test::expectLiteralSums(*owned);
                belowZero += owned->pCenters[0] < 0 && owned->pCenters[2] > 0 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(belowZero, 0) << "no filter from far below the spectrum into it";
    // With an upper limit that is no number nothing bounds the linear part: its filters end at the last bin.
    Owned<TypeParam> owned;
    Elem32s order = 0;
    ASSERT_EQ(Api<TypeParam>::melLinear(&owned.bank, &order, 64, 8000, 64, nan32, 4, 1e9F, 4, 2595, 700, 2), StsNoErr);
    lyr::test::expectLiteralSums(*owned);
}

TYPED_TEST(FilterBank, RefusedFlags)
{
    for (int flag = -1; flag <= 16; ++flag) {
        const bool legal = flag == 1 || flag == 2 || flag == 5 || flag == 6;
        Elem32s size = -3;
        EXPECT_EQ(Api<TypeParam>::size(64, 5, flag, &size), legal ? StsNoErr : StsFBankFlag) << flag;
        EXPECT_EQ(size == -3, !legal);
        Owned<TypeParam> owned;
        Elem32s order = -3;
        EXPECT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, 64, 8000, 64, 4000, 5, 2595, 700, flag),
                  legal ? StsNoErr : StsFBankFlag);
        EXPECT_EQ(owned.bank == nullptr, !legal);
        EXPECT_EQ(order == -3, !legal);
    }
}

// ----------------------------------------------------------------------------------------------------------- placement

// A placed bank stays inside the size told, from every alignment that a caller's memory may have, and equals an
// allocated one.
TYPED_TEST(FilterBank, PlacedBankStaysInsideItsMemory)
{
    using Weight = typename Api<TypeParam>::Weight;
    const Band band{8000.0F, 64.0F, 4000.0F, 2595.0F, 700.0F};
    for (const int length : {1, 2, 4, 8, 16, 256, 512, 4096}) {
        for (const int filters : {1, 2, 7, 23}) {
            for (const int flag : {1, 2, 5, 6}) {
                Elem32s size = 0;
                ASSERT_EQ(Api<TypeParam>::size(length, filters, flag, &size), StsNoErr);
                std::vector<std::size_t> offsets;
                for (std::size_t offset = 0; offset < 64; offset += sizeof(void*)) {
                    offsets.push_back(offset);
                }
                offsets.push_back(Guarded<Elem8u>::flush(static_cast<std::size_t>(size)) / sizeof(void*) *
                                  sizeof(void*));
                for (const std::size_t offset : offsets) {
                    SCOPED_TRACE(::testing::Message() << "length " << length << " filters " << filters << " flag "
                                                      << flag << " offset " << offset);
                    const Guarded<Elem8u> memory(static_cast<std::size_t>(size), offset);
                    auto* const bank = reinterpret_cast<TypeParam*>(memory.data());
                    Elem32s order = 0;
                    ASSERT_EQ(Api<TypeParam>::init(bank, &order, length, band.fs, band.low, band.high, filters,
                                                   band.mul, band.div, flag),
                              StsNoErr);
                    ASSERT_TRUE(memory.intact());
                    expectFields(*bank, flag, static_cast<Elem32s>(lyr::oracle::roundedLength(length)), order, filters,
                                 band.mul, band.div);
                    expectBank(*bank, lyr::oracle::melBank<Weight>(length, filters, band, flag));
                    EXPECT_EQ(bank->pFFTSpec != nullptr, (flag & 4) != 0);
                    EXPECT_EQ(bank->pWork != nullptr, (flag & 4) != 0);
                    if ((flag & 4) != 0) {
                        // The scratch, to its last element, is the bank's own memory.
                        const auto* const end = reinterpret_cast<const Elem8u*>(bank->pWork + bank->fftLen + 2);
                        EXPECT_LE(end, memory.data() + size);
                        EXPECT_TRUE(lyr::test::isAligned(bank->pWork, 32));
                    }
                    if (this->HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TYPED_TEST(FilterBank, SizesThat32BitsCannotTell)
{
    Elem32s size = -3;
    EXPECT_EQ(Api<TypeParam>::size(1 << 30, 100, 1, &size), StsSize);
    EXPECT_EQ(Api<TypeParam>::size(INT32_MAX, 1, 1, &size), StsSize);
    EXPECT_EQ(Api<TypeParam>::size(256, INT32_MAX, 1, &size), StsSize);
    EXPECT_EQ(size, -3);
    EXPECT_EQ(Api<TypeParam>::size(1 << 20, 100, 5, &size), StsNoErr);
    EXPECT_GT(size, 102 * (1 << 20) * 4);
    for (const auto& [length, filters] : {std::pair{1 << 30, 100}, {256, INT32_MAX}}) {
        Owned<TypeParam> owned;
        Elem32s order = -3;
        EXPECT_EQ(Api<TypeParam>::initAlloc(&owned.bank, &order, length, 8000, 64, 4000, filters, 2595, 700, 1),
                  StsMemAlloc);
    }
}

// The Init form refuses what has no size, with nothing touched.
TYPED_TEST(FilterBank, WhatHasNoSizeIsNotPlaced)
{
    const auto expectRefused = [](Elem32s length, Elem32s filters, Elem32s flag) {
        SCOPED_TRACE(::testing::Message() << "length " << length << " filters " << filters << " flag " << flag);
        Elem32s size = -3;
        EXPECT_EQ(Api<TypeParam>::size(length, filters, flag, &size), StsSize);
        EXPECT_EQ(size, -3);
        const Guarded<Elem8u> memory(sizeof(TypeParam), 0);
        const std::vector<Elem8u> before = memory.copy();
        Elem32s order = -3;
        EXPECT_EQ(Api<TypeParam>::init(reinterpret_cast<TypeParam*>(memory.data()), &order, length, 8000, 64, 4000,
                                       filters, 2595, 700, flag),
                  StsSize);
        EXPECT_EQ(order, -3);
        EXPECT_EQ(memory.copy(), before);
        EXPECT_TRUE(memory.intact());
    };
    expectRefused(2, 30000000, 1);
    expectRefused(2, 50000000, 2);
    expectRefused(1024, 518000, 1);
    expectRefused(256, INT32_MAX, 1);
    expectRefused(INT32_MAX, 1, 1);
    // The first number of filters that is too large, with and without a transform.
    for (const Elem32s length : {2, 8, 256, 1 << 20, 1 << 27}) {
        for (const Elem32s flag : {1, 6}) {
            Elem32s most = 0;
            for (Elem32s step = 1 << 28; step > 0; step /= 2) {
                Elem32s size = 0;
                if (Api<TypeParam>::size(length, most + step, flag, &size) == StsNoErr) {
                    most += step;
                }
            }
            expectRefused(length, most + 1, flag);
        }
    }
}

// --------------------------------------------------------------------------------------------------------- mel-linear

TYPED_TEST(FilterBank, MelLinearBankIsItsFormulas)
{
    using Weight = typename Api<TypeParam>::Weight;
    for (const Band& band : bands()) {
        if (band.mul > 1e38F) {
            continue;
        }
        for (const float part : {0.0F, 0.3F, 1.0F}) {
            const float highLin = band.low + part * (band.high - band.low);
            for (const int length : {2, 16, 200, 512}) {
                for (const int filters : {1, 2, 3, 8, 24}) {
                    for (const int linear : {1, 2, filters / 2, filters - 1, filters}) {
                        if (linear < 1 || linear > filters || highLin > band.high) {
                            continue;
                        }
                        for (const int flag : {1, 2}) {
                            SCOPED_TRACE(::testing::Message()
                                         << "rate " << band.fs << " low " << band.low << " linear to " << highLin
                                         << " length " << length << " filters " << filters << " linear " << linear
                                         << " flag " << flag);
                            Owned<TypeParam> owned;
                            Elem32s order = 0;
                            ASSERT_EQ(Api<TypeParam>::melLinear(&owned.bank, &order, length, band.fs, band.low,
                                                                band.high, filters, highLin, linear, band.mul, band.div,
                                                                flag),
                                      StsNoErr);
                            EXPECT_EQ(order, owned->fftOrder);
                            expectFields(*owned, flag, static_cast<Elem32s>(lyr::oracle::roundedLength(length)), order,
                                         linear, band.mul, band.div);
                            expectBank(*owned, lyr::oracle::melLinearBank<Weight>(length, filters, band, highLin,
                                                                                  linear, flag));
                            if (this->HasFatalFailure()) {
                                return;
                            }
                        }
                    }
                }
            }
        }
    }
}

// The seam of a mixed bank, meant: a bin number less a mel value over a width in bins, which is zero in all usual
// bands.
TYPED_TEST(FilterBank, MelLinearSeamIsUsuallyZero)
{
    Owned<TypeParam> owned;
    Elem32s order = 0;
    ASSERT_EQ(Api<TypeParam>::melLinear(&owned.bank, &order, 512, 8000, 100, 4000, 20, 1000, 8, 2595, 700, 1),
              StsNoErr);
    const int width = owned->pCenters[9] - owned->pCenters[8];
    ASSERT_GT(width, 3);
    for (int j = 0; j < width; ++j) {
        EXPECT_EQ(owned->pCoefRight[7][j], 0);
    }
    // A tiny factor makes mel values smaller than bin numbers.
    Owned<TypeParam> small;
    ASSERT_EQ(Api<TypeParam>::melLinear(&small.bank, &order, 512, 8000, 100, 4000, 20, 1000, 8, 1e-3F, 700, 1),
              StsNoErr);
    EXPECT_GT(small->pCoefRight[7][0], 0);
}

// Filters on one spot: quotients with a width of zero stay inside their rows; the integers among them become 0, also
// where the single is infinite or no number.
TYPED_TEST(FilterBank, MelLinearBankOfNoWidth)
{
    using Weight = typename Api<TypeParam>::Weight;
    for (const float frequency : {1000.0F, 2000.0F, 3000.0F}) {
        Owned<TypeParam> owned;
        Elem32s order = 0;
        ASSERT_EQ(
            Api<TypeParam>::melLinear(&owned.bank, &order, 64, 8000, frequency, 4000, 6, frequency, 6, 2595, 700, 1),
            StsNoErr);
        const auto bin = static_cast<Elem32s>(frequency / 125.0F);
        for (int i = 0; i <= 7; ++i) {
            EXPECT_EQ(owned->pCenters[i], bin);
        }
        const Band band{8000, frequency, 4000, 2595, 700};
        expectBank(*owned, lyr::oracle::melLinearBank<Weight>(64, 6, band, frequency, 6, 1));
        if constexpr (std::is_same_v<Weight, std::int32_t>) {
            for (int r = 0; r < 6; ++r) {
                EXPECT_EQ(owned->pCoefLeft[r][0], 0) << r;
            }
        }
    }
}

// All edges in the middle of two bins, from 0.5 to 8.5: the even one is taken.
TYPED_TEST(FilterBank, CentersBetweenTwoBinsGoToTheEvenOne)
{
    Owned<TypeParam> owned;
    Elem32s order = 0;
    ASSERT_EQ(Api<TypeParam>::melLinear(&owned.bank, &order, 32, 16000, 250, 8000, 3, 4250, 3, 2595, 700, 2), StsNoErr);
    for (int i = 0; i <= 4; ++i) {
        EXPECT_EQ(owned->pCenters[i], 2 * i);
    }
}

// The upper limit plays no part in a bank of linear filters, and is looked at all the same: meant.
TYPED_TEST(FilterBank, TheUpperLimitOfALinearBankIsChecked)
{
    for (const auto& [high, status] :
         {std::pair{500.0F, StsFBankFreq}, {5000.0F, StsFBankFreq}, {1000.0F, StsNoErr}, {4000.0F, StsNoErr}}) {
        Owned<TypeParam> owned;
        Elem32s order = -3;
        EXPECT_EQ(Api<TypeParam>::melLinear(&owned.bank, &order, 64, 8000, 100, high, 4, 1000, 4, 2595, 700, 2), status)
            << high;
        EXPECT_EQ(owned.bank == nullptr, status != StsNoErr);
        EXPECT_EQ(order == -3, status != StsNoErr);
    }
}

// The mel of the highest linear frequency stays in double: in single it would move a centre of this bank.
TYPED_TEST(FilterBank, MelLinearSeamKeepsItsPrecision)
{
    using Weight = typename Api<TypeParam>::Weight;
    const Band band{16000, 100, 8000, 2595, 700};
    constexpr float highLin = 519.405396F;
    Owned<TypeParam> owned;
    Elem32s order = 0;
    ASSERT_EQ(Api<TypeParam>::melLinear(&owned.bank, &order, 4096, band.fs, band.low, band.high, 37, highLin, 11,
                                        band.mul, band.div, 1),
              StsNoErr);
    expectBank(*owned, lyr::oracle::melLinearBank<Weight>(4096, 37, band, highLin, 11, 1));
}

// --------------------------------------------------------------------------------------------------------------- empty

TYPED_TEST(FilterBank, EmptyBank)
{
    using Weight = typename Api<TypeParam>::Weight;
    for (const int flag : {0, 1, 2, 4, 6, -1, 99, INT32_MIN}) {
        for (const int length : {1, 2, 100}) {
            Owned<TypeParam> owned;
            Elem32s order = -1;
            ASSERT_EQ(Api<TypeParam>::empty(&owned.bank, &order, length, 3, flag), StsNoErr) << flag;
            const auto rounded = static_cast<Elem32s>(lyr::oracle::roundedLength(length));
            EXPECT_EQ(order, lyr::oracle::orderOf(rounded));
            // The stored option does not depend on the one that was given, meant so.
            expectFields(*owned, 1, rounded, order, 3, 0.0F, 1.0F);
            EXPECT_EQ(owned->ready, 0);
            EXPECT_EQ(owned->pFFTSpec != nullptr, (flag & 4) != 0);
            EXPECT_EQ(owned->pWork != nullptr, (flag & 4) != 0);
            for (int r = 0; r < 5; ++r) {
                for (int j = 0; j < rounded / 2; ++j) {
                    ASSERT_EQ(owned->pCoefLeft[r][j], Weight{0});
                    ASSERT_EQ(owned->pCoefRight[r][j], Weight{0});
                }
            }
        }
    }
}

// -------------------------------------------------------------------------------------------------------------- Aurora

template <class State, class Size, class Init>
void expectPlacedAurora(Size size, Init init, const lyr::oracle::Bank<typename Api<State>::Weight>& expected, int order)
{
    Elem32s bytes = 0;
    ASSERT_EQ(size(&bytes), StsNoErr);
    for (std::size_t offset = 0; offset < 64; offset += sizeof(void*)) {
        const Guarded<Elem8u> memory(static_cast<std::size_t>(bytes), offset);
        auto* const bank = reinterpret_cast<State*>(memory.data());
        ASSERT_EQ(init(bank), StsNoErr);
        ASSERT_TRUE(memory.intact());
        expectFields(*bank, 2, 128, order, expected.filters(), 2595.0F, 700.0F);
        expectBank(*bank, expected);
    }
}

TYPED_TEST(FilterBank, LowAuroraBank)
{
    using Weight = typename Api<TypeParam>::Weight;
    const auto expected = lyr::oracle::lowAuroraBank<Weight>();
    Owned<TypeParam> owned;
    ASSERT_EQ(Api<TypeParam>::lowInitAlloc(&owned.bank), StsNoErr);
    EXPECT_EQ(owned->pFFTSpec, nullptr);
    // Rows hold what the filters were made of before the centres moved up; the spans that evaluation sees are compared
    // here.
    for (std::size_t i = 0; i < 27; ++i) {
        ASSERT_EQ(owned->pCenters[i], expected.c[i]);
    }
    for (std::size_t e = 1; e <= 25; ++e) {
        lyr::test::expectRow(owned->pCoefLeft[e - 1], expected.left[e], expected.left[e].size(), "left");
        lyr::test::expectRow(owned->pCoefRight[e - 1], expected.right[e], expected.right[e].size(), "right");
    }
    for (int j = 0; j < 64; ++j) {
        EXPECT_EQ(owned->pCoefLeft[25][j], Weight{0}) << "row 25 stays zero";
        EXPECT_EQ(owned->pCoefRight[25][j], Weight{0}) << "row 25 stays zero";
    }
    EXPECT_EQ(owned->pCenters[0], 0);
    EXPECT_EQ(owned->pCenters[1], 0);
    EXPECT_EQ(owned->pCenters[2], 1) << "the width of the first filter";
    EXPECT_EQ(owned->pCenters[25], 64);
    EXPECT_EQ(owned->pCenters[26], 64);
    EXPECT_EQ(owned->pCenters[27], 64);
    // Edge 24 and not edge 26 falls on half the rate.
    EXPECT_LT(owned->pCenters[24], 64);

    Elem32s bytes = 0;
    ASSERT_EQ(Api<TypeParam>::lowSize(&bytes), StsNoErr);
    for (std::size_t offset = 0; offset < 64; offset += sizeof(void*)) {
        const Guarded<Elem8u> memory(static_cast<std::size_t>(bytes), offset);
        auto* const bank = reinterpret_cast<TypeParam*>(memory.data());
        ASSERT_EQ(Api<TypeParam>::lowInit(bank), StsNoErr);
        ASSERT_TRUE(memory.intact());
        expectFields(*bank, 2, 128, 0, 25, 2595.0F, 700.0F);
        for (int r = 0; r < 27; ++r) {
            for (int j = 0; j < 65; ++j) {
                ASSERT_TRUE(lyr::test::exactly(bank->pCoefLeft[r][j], owned->pCoefLeft[r][j]));
                if (j < 64) {
                    ASSERT_TRUE(lyr::test::exactly(bank->pCoefRight[r][j], owned->pCoefRight[r][j]));
                }
            }
        }
    }
}

// Every filter but the first has weights that add up to one. The first is divided by the sum of both of its runs,
// although only one element of the left run counts: meant.
TYPED_TEST(FilterBank, LowAuroraWeightsAddUpToOne)
{
    Owned<TypeParam> owned;
    ASSERT_EQ(Api<TypeParam>::lowInitAlloc(&owned.bank), StsNoErr);
    for (int i = 1; i <= 25; ++i) {
        std::vector<float> w(200, 0.0F);
        ASSERT_EQ(Api<TypeParam>::getCoeffs(owned.bank, i, w.data()), StsNoErr);
        const double sum = std::accumulate(w.begin(), w.end(), 0.0);
        // 16-bit weights lose less than 2^-14 each.
        EXPECT_LE(sum, 1.0 + 1e-6);
        EXPECT_GT(sum, 1.0 - 64.0 / 16384.0) << i;
    }
}

TYPED_TEST(FilterBank, HighAuroraBank)
{
    using Weight = typename Api<TypeParam>::Weight;
    const auto expected = lyr::oracle::highAuroraBank<Weight>();
    Owned<TypeParam> owned;
    ASSERT_EQ(Api<TypeParam>::highInitAlloc(&owned.bank), StsNoErr);
    expectFields(*owned, 2, 128, 7, 3, 2595.0F, 700.0F);
    expectBank(*owned, expected);
    expectPlacedAurora<TypeParam>(Api<TypeParam>::highSize, Api<TypeParam>::highInit, expected, 7);
    EXPECT_EQ(owned->pCenters[4], 64);
}

// -------------------------------------------------------------------------------------------------------------- memory

// A failed form leaves what it has taken in *ppFBank, and the release takes it as it is.
TYPED_TEST(FilterBank, FailedAllocations)
{
    TypeParam* bank = nullptr;
    Elem32s order = 0;
    const auto release = [&bank] {
        if (bank != nullptr) {
            EXPECT_EQ(Api<TypeParam>::free(bank), StsNoErr);
            bank = nullptr;
        }
    };
    const auto run = [&](auto call, int least) {
        const long before = lyr::test::liveAllocations();
        order = -7;
        EXPECT_GE(lyr::test::failEachAllocation(call, release, [&order] { EXPECT_EQ(order, -7); }), least);
        release();
        EXPECT_EQ(lyr::test::liveAllocations(), before);
    };
    for (const int length : {4, 256, 4096}) {
        for (const int flag : {1, 6}) {
            const int transform = flag == 6 ? 2 : 0;
            run([&] { return Api<TypeParam>::initAlloc(&bank, &order, length, 8000, 64, 4000, 5, 2595, 700, flag); },
                6 + transform);
            run(
                [&] {
                    return Api<TypeParam>::melLinear(&bank, &order, length, 8000, 64, 4000, 5, 500, 2, 2595, 700, flag);
                },
                6 + transform);
            run([&] { return Api<TypeParam>::empty(&bank, &order, length, 5, flag); }, 4 + transform);
        }
    }
    run([&] { return Api<TypeParam>::lowInitAlloc(&bank); }, 6);
    run([&] { return Api<TypeParam>::highInitAlloc(&bank); }, 6);
}

TYPED_TEST(FilterBank, NullPointers)
{
    Elem32s order = 0;
    TypeParam* bank = nullptr;
    EXPECT_EQ(Api<TypeParam>::size(0, 0, 0, nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::initAlloc(nullptr, &order, 0, 0, 0, 0, 0, 0, 0, 0), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::initAlloc(&bank, nullptr, 0, 0, 0, 0, 0, 0, 0, 0), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::init(nullptr, &order, 0, 0, 0, 0, 0, 0, 0, 0), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::lowSize(nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::lowInit(nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::highInitAlloc(nullptr), StsNullPtr);
    EXPECT_EQ(Api<TypeParam>::free(nullptr), StsNullPtr);
}

} // namespace
