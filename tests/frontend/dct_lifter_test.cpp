// The DCT with liftering: sizes, records and weights of every form, exactly.

#include "lyrsr.h"

#include "frontend/dct_lifter.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "dct_forms.hpp"
#include "oracle/dct_lifter.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using namespace lyr::test::dct;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

// Tools read the records: the fields stand in this order, without gaps.
static_assert(offsetof(DCTLifterState_32f, nLifter) == 0 && offsetof(DCTLifterState_32f, lenDCT) == 4 &&
              offsetof(DCTLifterState_32f, lenCepstrum) == 8 && offsetof(DCTLifterState_32f, hasC0) == 12 &&
              offsetof(DCTLifterState_32f, pLifter) == 16 && offsetof(DCTLifterState_32f, pRows) == 16 + sizeof(void*));
static_assert(offsetof(DCTLifterState_16s, nLifter) == 0 && offsetof(DCTLifterState_16s, lenDCT) == 4 &&
              offsetof(DCTLifterState_16s, lenCepstrum) == 8 && offsetof(DCTLifterState_16s, hasC0) == 12 &&
              offsetof(DCTLifterState_16s, pLifter) == 16 && offsetof(DCTLifterState_16s, pTmp) == 16 + sizeof(void*) &&
              offsetof(DCTLifterState_16s, pRows) == 16 + 2 * sizeof(void*));

constexpr struct
{
    Elem32s lenDCT;
    Elem32s lenCepstrum;
    Elem32s nLifter;
} shapes[] = {{1, 1, 1},    {2, 1, 5},   {5, 5, 2},    {8, 3, 22},   {9, 8, 22},   {16, 16, 3},
              {23, 12, 22}, {24, 13, 1}, {26, 13, 22}, {40, 13, 22}, {70, 33, 11}, {129, 2, 1000}};

// The record in full: fields, weights and table bit by bit, rows at multiples of 32 bytes.
template <class State>
void expectRecord(const State& s, const Form<State>& form, const Arguments& a)
{
    EXPECT_EQ(s.nLifter, form.isSine ? a.nLifter : -1);
    EXPECT_EQ(s.lenDCT, a.lenDCT);
    EXPECT_EQ(s.lenCepstrum, a.lenCepstrum);
    EXPECT_EQ(s.hasC0, form.hasC0 ? 1 : 0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(s.pLifter) % 32, 0U);
    const auto weights = form.weights(a);
    for (Elem32s i = 0; i <= a.lenCepstrum; ++i) {
        ASSERT_TRUE(sameBits(s.pLifter[i], weights[static_cast<std::size_t>(i)])) << "weight " << i;
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(s.pRows[i]) % 32, 0U) << "row " << i;
        for (Elem32s j = 0; j < a.lenDCT; ++j) {
            ASSERT_TRUE(sameBits(s.pRows[i][j], lyr::oracle::cosine(i, j, a.lenDCT))) << "row " << i << ' ' << j;
        }
    }
    for (Elem32s j = 0; j < a.lenDCT; ++j) {
        ASSERT_EQ(s.pRows[0][j], 1.0F);
    }
}

const float* cepstraOf(const std::vector<float>& x, std::vector<float>& y, DCTLifterState_32f* state)
{
    EXPECT_EQ(lyrsDCTLifter_32f(x.data(), y.data(), state), StsNoErr);
    return y.data();
}

const float* cepstraOf(const std::vector<Elem16s>& x, std::vector<float>& y, DCTLifterState_16s* state)
{
    std::vector<Elem16s> rounded(y.size());
    EXPECT_EQ(lyrsDCTLifter_16s_Sfs(x.data(), rounded.data(), state, 0), StsNoErr);
    return state->pTmp;
}

template <class State>
void expectTransform(State* state, const Form<State>& form, const Arguments& a)
{
    using Element = std::conditional_t<std::is_same_v<State, DCTLifterState_32f>, float, Elem16s>;
    Random random(50);
    const auto x = random.vector<Element>(static_cast<std::size_t>(a.lenDCT), -20, 20);
    std::vector<float> y(static_cast<std::size_t>(a.lenCepstrum) + (form.hasC0 ? 1 : 0));
    expectCepstra(cepstraOf(x, y, state), x, form.weights(a), form.hasC0);
}

// A record in a buffer of exactly the size told, which ends at an unmapped page, at every alignment that a caller's
// memory may have.
template <class State>
void compareInit(const Form<State>& form)
{
    for (const auto& shape : shapes) {
        SCOPED_TRACE(std::string(form.name) + ' ' + std::to_string(shape.lenDCT) + ' ' +
                     std::to_string(shape.lenCepstrum));
        const Arguments a = arguments(shape.lenDCT, shape.lenCepstrum, shape.nLifter);
        Elem32s size = 0;
        ASSERT_EQ(form.getSize(shape.lenDCT, shape.lenCepstrum, &size), StsNoErr);
        constexpr std::size_t unit = sizeof(void*);
        for (std::size_t offset = 0; offset < 64; offset += unit) {
            // A write ahead of the buffer or behind it shows in `intact`; the offset at which it ends nearest to the
            // unmapped page is among these.
            const Guarded<std::byte> buffer(static_cast<std::size_t>(size), offset);
            auto* const state = reinterpret_cast<State*>(buffer.data());
            ASSERT_EQ(form.init(state, a), StsNoErr);
            expectRecord(*state, form, a);
            expectTransform(state, form, a);
            EXPECT_TRUE(buffer.intact()) << offset;
        }
    }
}

template <class State>
void compareInitAlloc(const Form<State>& form)
{
    const long before = lyr::test::liveAllocations();
    for (const auto& shape : shapes) {
        SCOPED_TRACE(std::string(form.name) + ' ' + std::to_string(shape.lenDCT) + ' ' +
                     std::to_string(shape.lenCepstrum));
        const Arguments a = arguments(shape.lenDCT, shape.lenCepstrum, shape.nLifter);
        State* state = nullptr;
        ASSERT_EQ(form.initAlloc(&state, a), StsNoErr);
        expectRecord(*state, form, a);
        EXPECT_EQ(release(state), StsNoErr);
    }
    EXPECT_EQ(lyr::test::liveAllocations(), before);
}

TEST(DctLifter, RecordsInTheCallersMemory)
{
    for (const auto& form : single) {
        compareInit(form);
    }
    for (const auto& form : fixed) {
        compareInit(form);
    }
}

TEST(DctLifter, RecordsOfTheLibrary)
{
    for (const auto& form : single) {
        compareInitAlloc(form);
    }
    for (const auto& form : fixed) {
        compareInitAlloc(form);
    }
}

// A failure leaves the record in *ppState with what it had so far, and Free copes; only without a record nothing
// changes.
template <class State>
void failAllocations(const Form<State>& form, int allocations)
{
    SCOPED_TRACE(form.name);
    const Arguments a = arguments(23, 12);
    State* const unset = reinterpret_cast<State*>(alignof(State));
    State* state = unset;
    int failures = 0;
    const int made = lyr::test::failEachAllocation(
        [&] {
            state = unset;
            return form.initAlloc(&state, a);
        },
        [&] {
            if (state != unset) {
                EXPECT_EQ(release(state), StsNoErr);
            }
        },
        [&] {
            EXPECT_EQ(state == unset, failures == 0);
            if (state != unset) {
                EXPECT_EQ(state->lenDCT, 23);
                EXPECT_EQ(state->pLifter != nullptr, failures > 1);
                EXPECT_EQ(state->pRows, nullptr);
            }
            ++failures;
        });
    EXPECT_EQ(made, allocations);
    EXPECT_EQ(release(state), StsNoErr);
}

TEST(DctLifter, AllocationFailures)
{
    for (const auto& form : single) {
        failAllocations(form, 3);
    }
    for (const auto& form : fixed) {
        failAllocations(form, 4);
    }
}

TEST(DctLifter, LengthsBeyondMemoryFailAsExhaustedMemory)
{
    DCTLifterState_32f* state = nullptr;
    EXPECT_EQ(lyrsDCTLifterInitAlloc_32f(&state, INT32_MAX, INT32_MAX, 1, 1.0F), StsMemAlloc);
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
}

// ------------------------------------------------------------------------------------------------------------- sizes

TEST(DctLifter, SizesAgreeWithinAPrecision)
{
    for (const auto& shape : shapes) {
        Elem32s first = 0;
        Elem32s size = 0;
        ASSERT_EQ(lyrsDCTLifterGetSize_32f(shape.lenDCT, shape.lenCepstrum, &first), StsNoErr);
        for (const auto& form : single) {
            ASSERT_EQ(form.getSize(shape.lenDCT, shape.lenCepstrum, &size), StsNoErr);
            EXPECT_EQ(size, first) << form.name;
        }
        ASSERT_EQ(lyrsDCTLifterGetSize_16s(shape.lenDCT, shape.lenCepstrum, &first), StsNoErr);
        for (const auto* form = fixed; form != fixed + 3; ++form) {
            ASSERT_EQ(form->getSize(shape.lenDCT, shape.lenCepstrum, &size), StsNoErr);
            EXPECT_EQ(size, first) << form->name;
        }
    }
    // Rows count padded to 8 elements; in the one form of its own they count as they are, with 32 bytes of slack each.
    Elem32s a = 0;
    Elem32s b = 0;
    ASSERT_EQ(lyrsDCTLifterGetSize_32f(17, 4, &a), StsNoErr);
    ASSERT_EQ(lyrsDCTLifterGetSize_32f(24, 4, &b), StsNoErr);
    EXPECT_EQ(a, b);
    ASSERT_EQ(lyrsDCTLifterGetSize_MulC0_16s(17, 4, &a), StsNoErr);
    ASSERT_EQ(lyrsDCTLifterGetSize_MulC0_16s(24, 4, &b), StsNoErr);
    EXPECT_EQ(b - a, 5 * 7 * 4);
}

TEST(DctLifter, OneFormAloneIsBoundTo8192Inputs)
{
    for (const auto& form : single) {
        Elem32s size = -1;
        EXPECT_EQ(form.getSize(8193, 4, &size), StsNoErr) << form.name;
    }
    for (const auto& form : fixed) {
        Elem32s size = -1;
        const bool isBound = std::string(form.name) == "MulC0_16s";
        EXPECT_EQ(form.getSize(8193, 4, &size), isBound ? StsSize : StsNoErr) << form.name;
        EXPECT_EQ(size == -1, isBound);
        EXPECT_EQ(form.getSize(8192, 4, &size), StsNoErr) << form.name;
    }
    // The bound is of the size alone, not of the state.
    const Arguments a = arguments(8200, 2);
    DCTLifterState_16s* state = nullptr;
    ASSERT_EQ(lyrsDCTLifterInitAlloc_MulC0_16s(&state, 8200, a.wholeWeights.data(), 2), StsNoErr);
    EXPECT_EQ(lyrsDCTLifterFree_16s(state), StsNoErr);
}

TEST(DctLifter, SizesBeyond32BitsAreErrors)
{
    Elem32s size = -1;
    EXPECT_EQ(lyrsDCTLifterGetSize_32f(INT32_MAX, INT32_MAX, &size), StsSize);
    EXPECT_EQ(lyrsDCTLifterGetSize_16s(INT32_MAX, 1, &size), StsSize);
    EXPECT_EQ(lyrsDCTLifterGetSize_32f(40000, 20000, &size), StsSize);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(lyrsDCTLifterGetSize_32f(20000, 20000, &size), StsNoErr);
    EXPECT_GT(size, 20000 * 20000 * 4);
}

// Numbers of coefficients whose weights alone leave 32 bits.
template <class State>
void expectTooLarge(const Form<State>& form)
{
    for (const Elem32s lenCepstrum : {1073741823, 1073741824, 1500000000, 2000000000}) {
        Elem32s size = -1;
        EXPECT_EQ(form.getSize(INT32_MAX, lenCepstrum, &size), StsSize) << form.name << ' ' << lenCepstrum;
        EXPECT_EQ(size, -1);
    }
}

TEST(DctLifter, NoNumberOfCoefficientsWrapsTheSize)
{
    for (const auto& form : single) {
        expectTooLarge(form);
    }
    for (const auto& form : fixed) {
        expectTooLarge(form);
    }
}

// Record, weights, two rows with their pointers, and the slack of each part.
TEST(DctLifter, TheLargestSizesAreTold)
{
    constexpr auto rest = static_cast<Elem32s>(sizeof(DCTLifterState_32f) + 32 + 32 + 2 * sizeof(void*) + 28);
    Elem32s size = -1;
    ASSERT_EQ(lyrsDCTLifterGetSize_32f(268435400, 1, &size), StsNoErr);
    EXPECT_EQ(size, 2 * 1073741600 + rest);
    if (sizeof(void*) == 8) {
        EXPECT_EQ(size, 2147483340);
    }
    const Elem32s longest = 268435400 + (INT32_MAX - size) / 64 * 8;
    ASSERT_EQ(lyrsDCTLifterGetSize_32f(longest, 1, &size), StsNoErr);
    EXPECT_GT(size, INT32_MAX - 64);
    size = -1;
    EXPECT_EQ(lyrsDCTLifterGetSize_32f(longest + 1, 1, &size), StsSize);
    EXPECT_EQ(size, -1);
}

// Init refuses what has no size, with nothing touched.
template <class State>
void expectNotPlaced(const Form<State>& form, Elem32s lenDCT, Elem32s lenCepstrum)
{
    SCOPED_TRACE(std::string(form.name) + ' ' + std::to_string(lenDCT) + ' ' + std::to_string(lenCepstrum));
    Elem32s size = -1;
    EXPECT_EQ(form.getSize(lenDCT, lenCepstrum, &size), StsSize);
    Arguments a = arguments(1, 1);
    a.lenDCT = lenDCT;
    a.lenCepstrum = lenCepstrum;
    const Guarded<std::byte> memory(sizeof(State), 0);
    const std::vector<std::byte> before = memory.copy();
    EXPECT_EQ(form.init(reinterpret_cast<State*>(memory.data()), a), StsSize);
    EXPECT_EQ(memory.copy(), before);
    EXPECT_TRUE(memory.intact());
}

template <class State>
void expectNotPlaced(const Form<State>& form)
{
    for (const Elem32s lenCepstrum : {20000, 1073741823, 2000000000, INT32_MAX}) {
        expectNotPlaced(form, std::max(lenCepstrum, 40000), lenCepstrum);
        expectNotPlaced(form, INT32_MAX, lenCepstrum);
    }
    // The first number of coefficients that is too large for a number of inputs, as the padded rows have it.
    for (const Elem32s lenDCT : {23200, 30000, 1000000, 268435400}) {
        Elem32s most = 0;
        for (Elem32s step = 1 << 28; step > 0; step /= 2) {
            Elem32s size = 0;
            if (most + step <= lenDCT && lyrsDCTLifterGetSize_32f(lenDCT, most + step, &size) == StsNoErr) {
                most += step;
            }
        }
        ASSERT_LT(most, lenDCT);
        expectNotPlaced(form, lenDCT, most + 1);
    }
    expectNotPlaced(form, INT32_MAX, 1);
}

TEST(DctLifter, WhatHasNoSizeIsNotPlaced)
{
    for (const auto& form : single) {
        expectNotPlaced(form);
    }
    for (const auto& form : fixed) {
        expectNotPlaced(form);
    }
}

template <class State>
void expectSizeErrors(const Form<State>& form)
{
    SCOPED_TRACE(form.name);
    const Arguments good = arguments(8, 8);
    std::vector<std::byte> buffer(20000, std::byte{0x5A});
    auto* const state = reinterpret_cast<State*>(buffer.data());
    State* allocated = nullptr;
    for (const auto& [lenDCT, lenCepstrum, nLifter] :
         {std::array{0, 8, 22}, {8, 0, 22}, {-1, -1, 22}, {7, 8, 22}, {8, 9, 22}, {INT32_MIN, 1, 1}}) {
        Arguments a = good;
        a.lenDCT = lenDCT;
        a.lenCepstrum = lenCepstrum;
        a.nLifter = nLifter;
        Elem32s size = -1;
        EXPECT_EQ(form.getSize(lenDCT, lenCepstrum, &size), StsSize);
        EXPECT_EQ(form.getSize(lenDCT, lenCepstrum, nullptr), StsNullPtr);
        EXPECT_EQ(size, -1);
        EXPECT_EQ(form.init(state, a), StsSize);
        EXPECT_EQ(form.initAlloc(&allocated, a), StsSize);
        EXPECT_EQ(form.init(nullptr, a), StsNullPtr);
        EXPECT_EQ(form.initAlloc(nullptr, a), StsNullPtr);
    }
    Arguments a = good;
    a.nLifter = 0;
    EXPECT_EQ(form.init(state, a), form.isSine ? StsSize : StsNoErr);
    if (form.isSine) {
        EXPECT_EQ(form.initAlloc(&allocated, a), StsSize);
        EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](std::byte b) { return b == std::byte{0x5A}; }));
    }
    EXPECT_EQ(allocated, nullptr);
}

TEST(DctLifter, SizeErrors)
{
    for (const auto& form : single) {
        expectSizeErrors(form);
    }
    for (const auto& form : fixed) {
        expectSizeErrors(form);
    }
}

// ----------------------------------------------------------------------------------------------------------- weights

TEST(DctLifter, ALifterOfLengthOneWeighsEveryCoefficientAlike)
{
    DCTLifterState_32f* state = nullptr;
    ASSERT_EQ(lyrsDCTLifterInitAlloc_32f(&state, 16, 12, 1, 3.0F), StsNoErr);
    for (int i = 0; i <= 12; ++i) {
        EXPECT_NEAR(state->pLifter[i], 3.0F, 1e-6F) << i;
    }
    EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
}

TEST(DctLifter, BeyondTheLengthOfTheLifterTheSineIsNegative)
{
    DCTLifterState_32f* state = nullptr;
    ASSERT_EQ(lyrsDCTLifterInitAlloc_32f(&state, 16, 12, 6, 2.0F), StsNoErr);
    for (int i = 7; i < 12; ++i) {
        EXPECT_LT(state->pLifter[i], 2.0F) << i;
    }
    EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
}

// Half the length is rounded to single, which a length above 2^25 shows.
TEST(DctLifter, HalfOfALongLifterIsASingle)
{
    constexpr int count = 64;
    int shown = 0;
    for (const Elem32s nLifter : {(1 << 25) + 2, (1 << 26) + 6, (1 << 30) + 64, INT32_MAX}) {
        DCTLifterState_32f* state = nullptr;
        ASSERT_EQ(lyrsDCTLifterInitAlloc_32f(&state, count, count, nLifter, 1.0F), StsNoErr);
        for (int i = 0; i <= count; ++i) {
            EXPECT_TRUE(sameBits(state->pLifter[i], lyr::oracle::sineWeight(i, nLifter, 1.0F))) << nLifter << ' ' << i;
            const double exactHalf = nLifter * 0.5;
            shown += state->pLifter[i] != static_cast<float>(1.0 + std::sin(i * lyr::oracle::pi / nLifter) * exactHalf);
        }
        EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
    }
    EXPECT_GT(shown, 0) << "no weight that shows the rounding";
}

// All weights are one before the first of the caller's is read, which a caller sees who hands over the state's own: the
// bits of 1.0 are the whole number 1065353216.
TEST(DctLifter, WholeWeightsFromTheStateItselfAreThoseOfOnes)
{
    constexpr Elem32s count = 5;
    const Arguments a = arguments(8, count);
    Elem32s size = 0;
    ASSERT_EQ(lyrsDCTLifterGetSize_MulC0_16s(8, count, &size), StsNoErr);
    const Guarded<std::byte> buffer(static_cast<std::size_t>(size), 0);
    auto* const state = reinterpret_cast<DCTLifterState_16s*>(buffer.data());
    ASSERT_EQ(lyrsDCTLifterInit_MulC0_16s(state, 8, a.wholeWeights.data(), count), StsNoErr);
    // Entry i is read where weight i + 1 goes.
    ASSERT_EQ(lyrsDCTLifterInit_MulC0_16s(state, 8, reinterpret_cast<const Elem32s*>(state->pLifter + 1), count),
              StsNoErr);
    for (int i = 1; i <= count; ++i) {
        EXPECT_EQ(state->pLifter[i], 1065353216.0F) << i;
    }
}

// No zero or NaN of an argument is an error.
TEST(DctLifter, AnyValueIsAWeight)
{
    DCTLifterState_32f* state = nullptr;
    ASSERT_EQ(lyrsDCTLifterInitAlloc_C0_32f(&state, 4, 2, 2, 0.0F, std::numeric_limits<float>::quiet_NaN()), StsNoErr);
    EXPECT_EQ(state->pLifter[1], 0.0F);
    EXPECT_TRUE(std::isnan(state->pLifter[0]));
    EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
}

// The last weight of the MulC0 forms serves two outputs, the highest coefficient and the zeroth.
TEST(DctLifter, TheLastGivenWeightChangesTwoOutputs)
{
    const std::vector<float> x{1, 2, 3, 4, 5, 7};
    std::vector<float> y[2];
    for (const float last : {1.0F, 2.0F}) {
        const std::vector<float> weights{1, 1, last};
        DCTLifterState_32f* state = nullptr;
        ASSERT_EQ(lyrsDCTLifterInitAlloc_MulC0_32f(&state, 6, weights.data(), 3), StsNoErr);
        auto& out = y[last == 1.0F ? 0 : 1];
        out.resize(4);
        ASSERT_EQ(lyrsDCTLifter_32f(x.data(), out.data(), state), StsNoErr);
        EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
    }
    EXPECT_EQ(y[0][0], y[1][0]);
    EXPECT_EQ(y[0][1], y[1][1]);
    EXPECT_EQ(2 * y[0][2], y[1][2]);
    EXPECT_EQ(y[0][3], 22.0F);
    EXPECT_EQ(y[1][3], 44.0F);
}

} // namespace
