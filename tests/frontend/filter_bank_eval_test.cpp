// Evaluation of filter banks against the dense matrix of weights: every length of a side, every alignment of a
// spectrum, every scale.

#include "frontend/filter_bank.hpp"
#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

#include "frontend/filter_bank_fixture.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using lyr::oracle::Product;
using lyr::test::Api;
using lyr::test::expectEnergies;
using lyr::test::Guarded;
using lyr::test::Owned;
using lyr::test::Random;

constexpr std::int64_t min16 = INT16_MIN;
constexpr std::int64_t max16 = INT16_MAX;
constexpr std::int64_t min32 = INT32_MIN;
constexpr std::int64_t max32 = INT32_MAX;

// An empty bank filled with centres and weights, and the same for the oracle.
template <class State>
struct Filled
{
    using Weight = typename Api<State>::Weight;

    Filled(int fftLen, const std::vector<Elem32s>& centers) : expected(fftLen, static_cast<int>(centers.size()) - 2)
    {
        Elem32s order = 0;
        EXPECT_EQ(Api<State>::empty(&owned.bank, &order, fftLen, expected.filters(), 1), StsNoErr);
        setCenters(centers);
    }

    void setCenters(const std::vector<Elem32s>& centers)
    {
        EXPECT_EQ(Api<State>::setCenters(owned.bank, centers.data()), StsNoErr);
        expected.c.assign(centers.begin(), centers.end());
        expected.clearSides();
    }

    // draw() makes a coefficient; integer weights are 2^14 of it.
    template <class Draw>
    void fill(Draw draw)
    {
        for (int i = 1; i <= expected.filters(); ++i) {
            const auto at = static_cast<std::size_t>(i);
            std::vector<float> coeffs(expected.left[at].size() + expected.right[at].size() + 1);
            std::generate(coeffs.begin(), coeffs.end(), draw);
            ASSERT_EQ(Api<State>::setCoeffs(owned.bank, i, coeffs.data()), StsNoErr);
            const auto weight = [](float c) {
                if constexpr (std::is_same_v<Weight, float>) {
                    return c;
                } else {
                    const double w = std::trunc(static_cast<double>(c) * 16384.0);
                    return static_cast<Weight>(std::clamp(w, -2147483648.0, 2147483647.0));
                }
            };
            std::transform(coeffs.begin(), coeffs.begin() + static_cast<std::ptrdiff_t>(expected.left[at].size()),
                           expected.left[at].begin(), weight);
            std::transform(coeffs.begin() + static_cast<std::ptrdiff_t>(expected.left[at].size()), coeffs.end() - 1,
                           expected.right[at].begin(), weight);
        }
    }

    Owned<State> owned;
    lyr::oracle::Bank<Weight> expected;
};

// Centres with the gaps given, from `first`.
std::vector<Elem32s> spaced(Elem32s first, const std::vector<Elem32s>& gaps)
{
    std::vector<Elem32s> centers{first};
    for (const Elem32s gap : gaps) {
        centers.push_back(centers.back() + gap);
    }
    return centers;
}

std::vector<std::vector<Elem32s>> layouts()
{
    std::vector<std::vector<Elem32s>> all;
    Random random(3);
    for (Elem32s gap = 0; gap <= 70; ++gap) { // every length of a side, in both places of a pair
        all.push_back(spaced(gap % 5, {gap, (gap * 7) % 71, gap, 70 - gap, 3}));
    }
    for (int filters = 1; filters <= 20; ++filters) {
        std::vector<Elem32s> gaps(static_cast<std::size_t>(filters) + 1);
        for (Elem32s& gap : gaps) {
            gap = random.uniform<Elem32s>(0, 9);
        }
        all.push_back(spaced(random.uniform<Elem32s>(0, 20), gaps));
    }
    all.push_back({0, 128, 256});
    all.push_back({0, 0, 0, 256, 256, 256});
    all.push_back({256, 256, 256});
    return all;
}

constexpr int fftLen = 512;
constexpr std::size_t bins = fftLen / 2 + 1;

// ------------------------------------------------------------------------------------------------------------- singles

TEST(FilterBankEval, SinglesAreTheDenseProduct)
{
    Random random(1);
    for (const auto& centers : layouts()) {
        Filled<FBankState_32f> bank(fftLen, centers);
        bank.fill([&random] { return random.uniform(-1.0F, 1.0F); });
        const auto src = random.vector<float>(bins, -100, 100);
        const auto expected = lyr::oracle::energies(bank.expected, src.data());
        for (std::size_t offset = 0; offset < 20; offset += 4) {
            const Guarded<float> x(src, offset == 16 ? Guarded<float>::flush(bins) : offset);
            const Guarded<float> dst(expected.size(), offset == 16 ? Guarded<float>::flush(expected.size()) : offset);
            ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), bank.owned.bank), StsNoErr);
            expectEnergies(dst.data(), expected);
            ASSERT_TRUE(dst.intact());
            ASSERT_TRUE(x.intact());
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

// Banks as they are built, and the shortest ones.
TEST(FilterBankEval, BuiltBanks)
{
    Random random(2);
    for (const int length : {2, 4, 8, 16, 64, 256, 512, 1024}) {
        for (const int filters : {1, 2, 3, 4, 5, 8, 23, 40}) {
            for (const int flag : {1, 2}) {
                Owned<FBankState_32f> owned;
                Elem32s order = 0;
                ASSERT_EQ(
                    lyrsMelFBankInitAlloc_32f(&owned.bank, &order, length, 8000, 64, 4000, filters, 2595, 700, flag),
                    StsNoErr);
                const auto count = static_cast<std::size_t>(length) / 2 + 1;
                const Guarded<float> x(random.vector<float>(count, 0, 1000), Guarded<float>::flush(count));
                std::vector<float> dst(static_cast<std::size_t>(filters));
                ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), owned.bank), StsNoErr);
                const auto oracle = lyr::oracle::melBank<float>(length, filters, {8000, 64, 4000, 2595, 700}, flag);
                expectEnergies(dst.data(), lyr::oracle::energies(oracle, x.data()));
            }
        }
    }
}

// Weights that an earlier choice of centres left behind the present sides do not count, whatever they are.
TEST(FilterBankEval, WeightsBehindTheSidesDoNotCount)
{
    Filled<FBankState_32f> bank(fftLen, {0, 60, 120, 180, 240});
    bank.fill([] { return std::numeric_limits<float>::quiet_NaN(); });
    Filled<FBankState_16s> integers(fftLen, {0, 60, 120, 180, 240});
    integers.fill([] { return 1e30F; });
    for (Elem32s gap = 0; gap <= 40; ++gap) {
        const auto centers = spaced(3, {gap, gap, gap, gap});
        bank.setCenters(centers);
        bank.fill([] { return 1.0F; });
        integers.setCenters(centers);
        integers.fill([] { return 1.0F; });
        const std::vector<float> x(bins, 1.0F);
        const std::vector<Elem16s> n(bins, 1);
        std::vector<float> dst(3);
        std::vector<Elem16s> counts(3);
        ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), bank.owned.bank), StsNoErr);
        ASSERT_EQ(lyrsEvalFBank_16s_Sfs(n.data(), counts.data(), integers.owned.bank, 0), StsNoErr);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(dst[static_cast<std::size_t>(i)], static_cast<float>(2 * gap + 1));
            EXPECT_EQ(counts[static_cast<std::size_t>(i)], 2 * gap + 1);
        }
    }
}

// Bins outside the filters may hold anything.
TEST(FilterBankEval, OnlyTheSpanIsTouched)
{
    Filled<FBankState_32f> bank(fftLen, {10, 17, 20, 33});
    bank.fill([] { return 0.5F; });
    std::vector<float> x(bins, std::numeric_limits<float>::quiet_NaN());
    std::fill(x.begin() + 10, x.begin() + 34, 2.0F);
    std::vector<float> dst(2);
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), bank.owned.bank), StsNoErr);
    EXPECT_EQ(dst[0], 11.0F);
    EXPECT_EQ(dst[1], 17.0F);
    x[12] = std::numeric_limits<float>::infinity();
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), bank.owned.bank), StsNoErr);
    EXPECT_EQ(dst[0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(dst[1], 17.0F);
}

// The last two centres are never compared, so that one may lie outside the spectrum or below its neighbour; with one
// filter it may lie below zero. What lies inside counts.
TEST(FilterBankEval, CentersOutsideTheSpectrum)
{
    Random random(5);
    const std::vector<std::vector<Elem32s>> odd{{0, 3, 1000000, 8}, {0, 3, 9, 4},      {0, -1, 20},
                                                {0, -1, 256},       {0, -7, 20},       {5, 5, INT32_MAX, 256},
                                                {0, 256, -9},       {0, INT32_MIN, 7}, {2, 200, 240, 250, -4}};
    for (const auto& centers : odd) {
        Owned<FBankState_32f> owned;
        Elem32s order = 0;
        const int filters = static_cast<int>(centers.size()) - 2;
        ASSERT_EQ(lyrsEmptyFBankInitAlloc_32f(&owned.bank, &order, fftLen, filters, 1), StsNoErr);
        ASSERT_EQ(lyrsFBankSetCenters_32f(owned.bank, centers.data()), StsNoErr);
        for (int r = 0; r < filters; ++r) {
            for (int j = 0; j <= fftLen / 2; ++j) {
                owned->pCoefLeft[r][j] = random.uniform(0.5F, 1.0F);
                if (j < fftLen / 2) {
                    owned->pCoefRight[r][j] = random.uniform(0.5F, 1.0F);
                }
            }
        }
        lyr::test::expectLiteralSums(*owned);
    }
}

TEST(FilterBankEval, AnEmptyBankIsZeroUntilItIsFilled)
{
    Owned<FBankState_32f> owned;
    Elem32s order = 0;
    ASSERT_EQ(lyrsEmptyFBankInitAlloc_32f(&owned.bank, &order, 64, 2, 4), StsNoErr);
    const std::vector<float> x(33, 5.0F);
    std::vector<float> dst{-1, -1};
    EXPECT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), owned.bank), StsFBankNotReady);
    EXPECT_EQ(dst[0], -1);
    const std::vector<Elem32s> centers{0, 8, 20, 32};
    ASSERT_EQ(lyrsFBankSetCenters_32f(owned.bank, centers.data()), StsNoErr);
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), owned.bank), StsNoErr);
    EXPECT_EQ(dst, (std::vector<float>{0, 0}));
    const std::vector<float> ones(40, 1.0F);
    ASSERT_EQ(lyrsFBankSetCoeffs_32f(owned.bank, 2, ones.data()), StsNoErr);
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), owned.bank), StsNoErr);
    EXPECT_EQ(dst, (std::vector<float>{0, 125}));
    // The last filter may reach the last bin from bin 0: its left side is one element longer than half the transform.
    const std::vector<Elem32s> wide{0, 0, 32, 32};
    ASSERT_EQ(lyrsFBankSetCenters_32f(owned.bank, wide.data()), StsNoErr);
    ASSERT_EQ(lyrsFBankSetCoeffs_32f(owned.bank, 2, ones.data()), StsNoErr);
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), owned.bank), StsNoErr);
    EXPECT_EQ(dst[1], 165);
}

// ------------------------------------------------------------------------------------------------------------ integers

TEST(FilterBankEval, IntegersAreTheDenseProduct)
{
    Random random(4);
    const int scales[] = {-80, -60, -40, -20, -15, -14, -13, -5, -1, 0, 1, 2, 7, 17, 18, 40, 60, INT32_MAX, INT32_MIN};
    for (const float size : {1.0F, 100.0F, 131072.0F}) {
        for (const auto& centers : layouts()) {
            Filled<FBankState_16s> bank(fftLen, centers);
            bank.fill([&random, size] { return random.uniform(-size, size); });
            auto src = random.vector<Elem16s>(bins, INT16_MIN, INT16_MAX);
            src[bins / 2] = INT16_MIN;
            const auto sums = lyr::oracle::sums(bank.expected, src.data(), Product::Wide);
            for (const int scale : scales) {
                const std::size_t offset = static_cast<std::size_t>(scale & 7) * 2;
                const Guarded<Elem16s> x(src, offset == 0 ? Guarded<Elem16s>::flush(bins) : offset);
                const Guarded<Elem16s> narrow(sums.size(), Guarded<Elem16s>::flush(sums.size()));
                const Guarded<Elem32s> wide(sums.size(), Guarded<Elem32s>::flush(sums.size()));
                ASSERT_EQ(lyrsEvalFBank_16s_Sfs(x.data(), narrow.data(), bank.owned.bank, scale), StsNoErr);
                ASSERT_EQ(lyrsEvalFBank_16s32s_Sfs(x.data(), wide.data(), bank.owned.bank, scale), StsNoErr);
                const std::int64_t shift = std::int64_t{14} + scale;
                for (std::size_t i = 0; i < sums.size(); ++i) {
                    ASSERT_EQ(narrow[i], lyr::oracle::scaled(sums[i], shift, min16, max16)) << sums[i] << ' ' << scale;
                    ASSERT_EQ(wide[i], lyr::oracle::scaled(sums[i], shift, min32, max32)) << sums[i] << ' ' << scale;
                }
                ASSERT_TRUE(narrow.intact() && wide.intact() && x.intact());
            }
        }
    }
}

// No rounding: toward minus infinity. Sums beyond the type are limited.
TEST(FilterBankEval, IntegerScale)
{
    Filled<FBankState_16s> bank(64, {0, 1, 2});
    bank.fill([] { return 1.0F; });
    const std::vector<Elem16s> x{-1, 0, 0};
    Elem16s dst = 0;
    ASSERT_EQ(lyrsEvalFBank_16s_Sfs(x.data(), &dst, bank.owned.bank, 1), StsNoErr);
    EXPECT_EQ(dst, -1);
    const std::vector<Elem16s> three{3, 0, 0};
    ASSERT_EQ(lyrsEvalFBank_16s_Sfs(three.data(), &dst, bank.owned.bank, 1), StsNoErr);
    EXPECT_EQ(dst, 1);
    const std::vector<Elem16s> large{32767, 32767, 32767};
    ASSERT_EQ(lyrsEvalFBank_16s_Sfs(large.data(), &dst, bank.owned.bank, 0), StsNoErr);
    EXPECT_EQ(dst, 32767);
    const std::vector<Elem16s> low{-32768, -32768, -32768};
    ASSERT_EQ(lyrsEvalFBank_16s_Sfs(low.data(), &dst, bank.owned.bank, 1), StsNoErr);
    EXPECT_EQ(dst, -32768);
}

// -------------------------------------------------------------------------------------------------- internal transform

// Orders from 1 with both shapes of a bank that takes frames.
std::vector<std::pair<int, int>> ordersAndFlags(int largest)
{
    std::vector<std::pair<int, int>> all;
    for (int order = 1; order <= largest; ++order) {
        all.emplace_back(order, FBankFromFrames + FBankMelShape);
        all.emplace_back(order, FBankFromFrames + FBankBinShape);
    }
    return all;
}

// The transform and the magnitudes are those of the public functions, and nothing is allocated.
TEST(FilterBankEval, FramesOfSingles)
{
    Random random(6);
    for (const auto& [order, flag] : ordersAndFlags(12)) {
        const int length = 1 << order;
        const auto n = static_cast<std::size_t>(length);
        Elem32s told = 0;
        Owned<FBankState_32f> owned;
        ASSERT_EQ(lyrsMelFBankInitAlloc_32f(&owned.bank, &told, length, 8000, 64, 4000, 7, 2595, 700, flag), StsNoErr);
        Elem32s size = 0;
        ASSERT_EQ(lyrsMelFBankGetSize_32f(length, 7, flag, &size), StsNoErr);
        const Guarded<Elem8u> memory(static_cast<std::size_t>(size), 8);
        auto* const placed = reinterpret_cast<FBankState_32f*>(memory.data());
        ASSERT_EQ(lyrsMelFBankInit_32f(placed, &told, length, 8000, 64, 4000, 7, 2595, 700, flag), StsNoErr);

        const Guarded<float> frame(random.vector<float>(n, -1000, 1000), Guarded<float>::flush(n));
        std::vector<float> dst(7);
        std::vector<float> again(7);
        const long before = lyr::test::allocationCount();
        ASSERT_EQ(lyrsEvalFBank_32f(frame.data(), dst.data(), owned.bank), StsNoErr);
        ASSERT_EQ(lyrsEvalFBank_32f(frame.data(), again.data(), placed), StsNoErr);
        EXPECT_EQ(lyr::test::allocationCount(), before);
        EXPECT_TRUE(memory.intact());

        FFTSpec_R_32f* spec = nullptr;
        ASSERT_EQ(lyrsFFTInitAlloc_R_32f(&spec, order, 8, 2), StsNoErr);
        std::vector<Elem32fc> spectrum(n / 2 + 1);
        std::vector<float> magnitudes(n / 2 + 1);
        ASSERT_EQ(lyrsFFTFwd_RToCCS_32f(frame.data(), &spectrum[0].re, spec, nullptr), StsNoErr);
        ASSERT_EQ(lyrsMagnitude_32fc(spectrum.data(), magnitudes.data(), length / 2 + 1), StsNoErr);
        ASSERT_EQ(lyrsFFTFree_R_32f(spec), StsNoErr);
        Owned<FBankState_32f> plain;
        ASSERT_EQ(lyrsMelFBankInitAlloc_32f(&plain.bank, &told, length, 8000, 64, 4000, 7, 2595, 700, flag & 3),
                  StsNoErr);
        std::vector<float> expected(7);
        ASSERT_EQ(lyrsEvalFBank_32f(magnitudes.data(), expected.data(), plain.bank), StsNoErr);
        for (std::size_t i = 0; i < 7; ++i) {
            // The same operations in the same order, wherever the vectors lie: the same bits.
            EXPECT_TRUE(lyr::test::sameBits(dst[i], expected[i])) << "order " << order;
            EXPECT_TRUE(lyr::test::sameBits(again[i], expected[i])) << "order " << order;
        }
    }
}

// A tone of one bin: its energy is half the length times its weight. The two peaks of its spectrum make a norm of
// sqrt(2) * 128; the rounding of the samples adds an error of 2^-24 of that, and the eight levels of the transform one
// of 2^-24 * sqrt(8) (Schatzman, Accuracy of the discrete Fourier transform and the fast Fourier transform, 1996). What
// a filter takes in of an error is no more than the norm of its weights times the error's. To this come the roundings
// of the peak's magnitude, of its product and of the sum, each at most 2^-24 of the energy.
TEST(FilterBankEval, AToneInAFrame)
{
    Owned<FBankState_32f> owned;
    Elem32s order = 0;
    ASSERT_EQ(lyrsMelFBankInitAlloc_32f(&owned.bank, &order, 256, 8000, 64, 4000, 20, 2595, 700, 6), StsNoErr);
    const int bin = owned->pCenters[9];
    std::vector<float> frame(256);
    for (int t = 0; t < 256; ++t) {
        frame[static_cast<std::size_t>(t)] =
            static_cast<float>(std::cos(2.0 * std::numbers::pi * static_cast<double>(bin) * t / 256.0));
    }
    std::vector<float> dst(20);
    ASSERT_EQ(lyrsEvalFBank_32f(frame.data(), dst.data(), owned.bank), StsNoErr);
    std::vector<double> weightOfTone(20);
    std::vector<double> squares(20);
    std::vector<int> terms(20);
    lyr::test::visitBins(*owned, 128, [&](std::size_t i, float weight, std::size_t k) {
        weightOfTone[i] += k == static_cast<std::size_t>(bin) ? double{weight} : 0.0;
        squares[i] += double{weight} * weight;
        ++terms[i];
    });
    for (std::size_t i = 0; i < 20; ++i) {
        const double energy = 128 * weightOfTone[i];
        const double spread = std::numbers::sqrt2 * 128 * (1 + std::sqrt(8.0)) * std::sqrt(squares[i]);
        EXPECT_NEAR(dst[i], energy, std::ldexp(spread + (terms[i] + 4) * energy, -24)) << "filter " << i + 1;
    }
}

// With a transform each product of the 16-bit result wraps at 32 bits and each of the 32-bit result does not: meant.
TEST(FilterBankEval, FramesOfIntegers)
{
    Random random(8);
    bool wrapped = false;
    for (const auto& [order, flag] : ordersAndFlags(11)) {
        const int length = 1 << order;
        const auto n = static_cast<std::size_t>(length);
        for (const int amplitude : {3, 300, 32767}) {
            Elem32s told = 0;
            Owned<FBankState_16s> owned;
            ASSERT_EQ(lyrsMelFBankInitAlloc_16s(&owned.bank, &told, length, 8000, 64, 4000, 5, 2595, 700, flag),
                      StsNoErr);
            Elem32s size = 0;
            ASSERT_EQ(lyrsMelFBankGetSize_16s(length, 5, flag, &size), StsNoErr);
            const Guarded<Elem8u> memory(static_cast<std::size_t>(size), sizeof(void*));
            auto* const placed = reinterpret_cast<FBankState_16s*>(memory.data());
            ASSERT_EQ(lyrsMelFBankInit_16s(placed, &told, length, 8000, 64, 4000, 5, 2595, 700, flag), StsNoErr);

            const auto frame =
                random.vector<Elem16s>(n, static_cast<Elem16s>(-amplitude), static_cast<Elem16s>(amplitude));
            FFTSpec_R_16s32s* spec = nullptr;
            ASSERT_EQ(lyrsFFTInitAlloc_R_16s32s(&spec, order, 8, 2), StsNoErr);
            std::vector<Elem32sc> spectrum(n / 2 + 1);
            std::vector<Elem32s> magnitudes(n / 2 + 1);
            ASSERT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(frame.data(), &spectrum[0].re, spec, -3, nullptr), StsNoErr);
            ASSERT_EQ(lyrsMagnitude_32sc_Sfs(spectrum.data(), magnitudes.data(), length / 2 + 1, -3), StsNoErr);
            ASSERT_EQ(lyrsFFTFree_R_16s32s(spec), StsNoErr);

            const auto bank = lyr::oracle::melBank<std::int32_t>(length, 5, {8000, 64, 4000, 2595, 700}, flag & 3);
            const auto narrowSums = lyr::oracle::sums(bank, magnitudes.data(), Product::Wrapped);
            const auto wideSums = lyr::oracle::sums(bank, magnitudes.data(), Product::Wide);
            wrapped = wrapped || narrowSums != wideSums;
            // Of the last two 32 bits would make shifts to the left.
            for (const int scale : {-30, -20, -14, -3, 0, 2, 9, INT32_MIN, INT32_MAX - 14, INT32_MAX}) {
                const std::int64_t shift = std::int64_t{14} + 6 + scale;
                for (const FBankState_16s* const each :
                     {static_cast<const FBankState_16s*>(owned.bank), static_cast<const FBankState_16s*>(placed)}) {
                    std::vector<Elem16s> narrow(5);
                    std::vector<Elem32s> wide(5);
                    const long before = lyr::test::allocationCount();
                    ASSERT_EQ(lyrsEvalFBank_16s_Sfs(frame.data(), narrow.data(), each, scale), StsNoErr);
                    ASSERT_EQ(lyrsEvalFBank_16s32s_Sfs(frame.data(), wide.data(), each, scale), StsNoErr);
                    EXPECT_EQ(lyr::test::allocationCount(), before);
                    EXPECT_TRUE(memory.intact());
                    for (std::size_t i = 0; i < 5; ++i) {
                        ASSERT_EQ(narrow[i], lyr::oracle::scaled(narrowSums[i], shift, min16, max16)) << order;
                        ASSERT_EQ(wide[i], lyr::oracle::scaled(wideSums[i], shift, min32, max32)) << order;
                    }
                }
            }
        }
    }
    EXPECT_TRUE(wrapped) << "no case in which the wrapping shows";
}

// -------------------------------------------------------------------------------------------------------- Aurora banks

TEST(FilterBankEval, AuroraBanks)
{
    Random random(9);
    const Guarded<float> x(random.vector<float>(65, 0, 100), Guarded<float>::flush(65));
    const Guarded<Elem16s> n(random.vector<Elem16s>(65, 0, 20000), Guarded<Elem16s>::flush(65));
    Owned<FBankState_32f> low;
    Owned<FBankState_32f> high;
    Owned<FBankState_16s> low16;
    Owned<FBankState_16s> high16;
    ASSERT_EQ(lyrsMelFBankInitAllocLow_Aurora_32f(&low.bank), StsNoErr);
    ASSERT_EQ(lyrsMelFBankInitAllocHigh_Aurora_32f(&high.bank), StsNoErr);
    ASSERT_EQ(lyrsMelFBankInitAllocLow_Aurora_16s(&low16.bank), StsNoErr);
    ASSERT_EQ(lyrsMelFBankInitAllocHigh_Aurora_16s(&high16.bank), StsNoErr);
    std::vector<float> dst(25);
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), low.bank), StsNoErr);
    expectEnergies(dst.data(), lyr::oracle::energies(lyr::oracle::lowAuroraBank<float>(), x.data()));
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), high.bank), StsNoErr);
    expectEnergies(dst.data(), lyr::oracle::energies(lyr::oracle::highAuroraBank<float>(), x.data()));
    std::vector<Elem16s> out(25);
    const auto compare = [&](const FBankState_16s* bank, const lyr::oracle::Bank<std::int32_t>& expected) {
        ASSERT_EQ(lyrsEvalFBank_16s_Sfs(n.data(), out.data(), bank, 1), StsNoErr);
        const auto sums = lyr::oracle::sums(expected, n.data(), Product::Wide);
        for (std::size_t i = 0; i < sums.size(); ++i) {
            EXPECT_EQ(out[i], lyr::oracle::scaled(sums[i], 15, min16, max16)) << i;
        }
    };
    compare(low16.bank, lyr::oracle::lowAuroraBank<std::int32_t>());
    compare(high16.bank, lyr::oracle::highAuroraBank<std::int32_t>());
}

// -------------------------------------------------------------------------------------------------------------- checks

TEST(FilterBankEval, RecordsWithoutCentersAreRefused)
{
    const FBankState_32f none{};
    const FBankState_16s none16{};
    const std::vector<float> x(8);
    const std::vector<Elem16s> n(8);
    float dst = 7;
    Elem16s narrow = 7;
    Elem32s wide = 7;
    EXPECT_EQ(lyrsEvalFBank_32f(x.data(), &dst, &none), StsNullPtr);
    EXPECT_EQ(lyrsEvalFBank_16s_Sfs(n.data(), &narrow, &none16, 0), StsNullPtr);
    EXPECT_EQ(lyrsEvalFBank_16s32s_Sfs(n.data(), &wide, &none16, 0), StsNullPtr);
    Owned<FBankState_16s> owned;
    Elem32s order = 0;
    ASSERT_EQ(lyrsEmptyFBankInitAlloc_16s(&owned.bank, &order, 8, 1, 0), StsNoErr);
    EXPECT_EQ(lyrsEvalFBank_16s_Sfs(n.data(), &narrow, owned.bank, 0), StsFBankNotReady);
    EXPECT_EQ(lyrsEvalFBank_16s32s_Sfs(n.data(), &wide, owned.bank, 0), StsFBankNotReady);
    EXPECT_EQ(dst, 7);
    EXPECT_EQ(narrow, 7);
    EXPECT_EQ(wide, 7);
}

// A record whose work memory a tool has left out still works, as the transform then takes its own; if that cannot be
// had, the call says so and writes nothing.
TEST(FilterBankEval, ATransformThatFailsIsTold)
{
    Elem32s order = 0;
    Owned<FBankState_32f> singles;
    Owned<FBankState_16s> integers;
    ASSERT_EQ(lyrsMelFBankInitAlloc_32f(&singles.bank, &order, 256, 8000, 64, 4000, 5, 2595, 700, 5), StsNoErr);
    ASSERT_EQ(lyrsMelFBankInitAlloc_16s(&integers.bank, &order, 256, 8000, 64, 4000, 5, 2595, 700, 5), StsNoErr);
    Random random(12);
    const auto x = random.vector<float>(256, -100, 100);
    const auto n = random.vector<Elem16s>(256, -100, 100);
    std::vector<float> energies(5);
    std::vector<Elem16s> narrow(5);
    std::vector<Elem32s> wide(5);
    const auto evaluate = [&] {
        return std::vector<Status>{lyrsEvalFBank_32f(x.data(), energies.data(), singles.bank),
                                   lyrsEvalFBank_16s_Sfs(n.data(), narrow.data(), integers.bank, -20),
                                   lyrsEvalFBank_16s32s_Sfs(n.data(), wide.data(), integers.bank, -20)};
    };
    ASSERT_EQ(evaluate(), std::vector<Status>(3, StsNoErr));
    const auto expected = std::make_tuple(energies, narrow, wide);

    auto* const memory = std::exchange(singles->pFFTBuffer, nullptr);
    auto* const memory16 = std::exchange(integers->pFFTBuffer, nullptr);
    energies.assign(5, -7);
    narrow.assign(5, -7);
    wide.assign(5, -7);
    lyr::test::failAllocationsAfter(0);
    const std::vector<Status> failed = evaluate();
    lyr::test::allowAllocations();
    EXPECT_EQ(failed, std::vector<Status>(3, StsMemAlloc));
    EXPECT_EQ(energies, std::vector<float>(5, -7));
    EXPECT_EQ(narrow, std::vector<Elem16s>(5, -7));
    EXPECT_EQ(wide, std::vector<Elem32s>(5, -7));
    EXPECT_EQ(evaluate(), std::vector<Status>(3, StsNoErr));
    EXPECT_EQ(std::make_tuple(energies, narrow, wide), expected);
    singles->pFFTBuffer = memory;
    integers->pFFTBuffer = memory16;
}

} // namespace
