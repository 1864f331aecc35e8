// What the tests of filter banks share: the two kinds of bank side by side, and a bank against its oracle.
#pragma once

#include "frontend/filter_bank.hpp"
#include "lyrsr.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "oracle/filter_bank.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/vectors.hpp"

namespace lyr::test {

template <class State>
struct Api;

template <>
struct Api<FBankState_32f>
{
    using Weight = float;
    static constexpr auto size = lyrsMelFBankGetSize_32f;
    static constexpr auto init = lyrsMelFBankInit_32f;
    static constexpr auto initAlloc = lyrsMelFBankInitAlloc_32f;
    static constexpr auto melLinear = lyrsMelLinFBankInitAlloc_32f;
    static constexpr auto empty = lyrsEmptyFBankInitAlloc_32f;
    static constexpr auto lowSize = lyrsMelFBankGetSizeLow_Aurora_32f;
    static constexpr auto lowInit = lyrsMelFBankInitLow_Aurora_32f;
    static constexpr auto lowInitAlloc = lyrsMelFBankInitAllocLow_Aurora_32f;
    static constexpr auto highSize = lyrsMelFBankGetSizeHigh_Aurora_32f;
    static constexpr auto highInit = lyrsMelFBankInitHigh_Aurora_32f;
    static constexpr auto highInitAlloc = lyrsMelFBankInitAllocHigh_Aurora_32f;
    static constexpr auto free = lyrsFBankFree_32f;
    static constexpr auto getCenters = lyrsFBankGetCenters_32f;
    static constexpr auto setCenters = lyrsFBankSetCenters_32f;
    static constexpr auto getCoeffs = lyrsFBankGetCoeffs_32f;
    static constexpr auto setCoeffs = lyrsFBankSetCoeffs_32f;
    static float coefficient(float weight) { return weight; }
};

template <>
struct Api<FBankState_16s>
{
    using Weight = std::int32_t;
    static constexpr auto size = lyrsMelFBankGetSize_16s;
    static constexpr auto init = lyrsMelFBankInit_16s;
    static constexpr auto initAlloc = lyrsMelFBankInitAlloc_16s;
    static constexpr auto melLinear = lyrsMelLinFBankInitAlloc_16s;
    static constexpr auto empty = lyrsEmptyFBankInitAlloc_16s;
    static constexpr auto lowSize = lyrsMelFBankGetSizeLow_Aurora_16s;
    static constexpr auto lowInit = lyrsMelFBankInitLow_Aurora_16s;
    static constexpr auto lowInitAlloc = lyrsMelFBankInitAllocLow_Aurora_16s;
    static constexpr auto highSize = lyrsMelFBankGetSizeHigh_Aurora_16s;
    static constexpr auto highInit = lyrsMelFBankInitHigh_Aurora_16s;
    static constexpr auto highInitAlloc = lyrsMelFBankInitAllocHigh_Aurora_16s;
    static constexpr auto free = lyrsFBankFree_16s;
    static constexpr auto getCenters = lyrsFBankGetCenters_16s;
    static constexpr auto setCenters = lyrsFBankSetCenters_16s;
    static constexpr auto getCoeffs = lyrsFBankGetCoeffs_16s;
    static constexpr auto setCoeffs = lyrsFBankSetCoeffs_16s;
    static float coefficient(std::int32_t weight) { return static_cast<float>(weight) / 16384.0F; }
};

// A bank from an allocating form, released at the end.
template <class State>
struct Owned
{
    State* bank = nullptr;

    Owned() = default;
    ~Owned()
    {
        if (bank != nullptr) {
            EXPECT_EQ(Api<State>::free(bank), StsNoErr);
        }
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    State* operator->() const { return bank; }
    State& operator*() const { return *bank; }
};

// One side of a filter as stored: the run that is told, and zeros behind it to the end of the row.
template <class Weight>
void expectRow(const Weight* row, const std::vector<Weight>& expected, std::size_t length, const std::string& name)
{
    for (std::size_t j = 0; j < length; ++j) {
        const Weight want = j < expected.size() ? expected[j] : Weight{0};
        ASSERT_TRUE(exactly(row[j], want)) << name << " element " << j;
    }
}

inline bool isAligned(const void* p, std::size_t unit)
{
    return reinterpret_cast<std::uintptr_t>(p) % unit == 0;
}

// Centres, weights, and the alignment that evaluation relies on.
template <class State>
void expectBank(const State& bank, const oracle::Bank<typename Api<State>::Weight>& expected)
{
    using Weight = typename Api<State>::Weight;
    ASSERT_EQ(bank.nFilter, expected.filters());
    const auto filters = static_cast<std::size_t>(bank.nFilter);
    for (std::size_t i = 0; i < filters + 2; ++i) {
        ASSERT_EQ(bank.pCenters[i], expected.c[i]) << "centre " << i;
    }
    ASSERT_EQ(bank.pCenters[filters + 2], bank.pCenters[filters + 1]) << "the spare entry";
    EXPECT_EQ(bank.ready, 1);
    const auto half = static_cast<std::size_t>(bank.fftLen) / 2;
    for (std::size_t r = 0; r < filters + 2; ++r) {
        ASSERT_TRUE(isAligned(bank.pCoefLeft[r] + 1, 16)) << "element 1 of left row " << r;
        ASSERT_TRUE(isAligned(bank.pCoefRight[r], 32)) << "right row " << r;
        const bool isFilter = r < filters;
        const std::vector<Weight> none;
        expectRow(bank.pCoefLeft[r], isFilter ? expected.left[r + 1] : none, half + 1, "left row " + std::to_string(r));
        expectRow(bank.pCoefRight[r], isFilter ? expected.right[r + 1] : none, half, "right row " + std::to_string(r));
    }
}

// The two kinds hold the same fields.
template <class State>
void expectFields(const State& bank, std::int32_t flag, std::int32_t fftLen, std::int32_t order, std::int32_t nLinear,
                  float melMul, float melDiv)
{
    EXPECT_EQ(bank.flag, flag);
    EXPECT_EQ(bank.fftLen, fftLen);
    EXPECT_EQ(bank.fftOrder, order);
    EXPECT_EQ(bank.nLinear, nLinear);
    EXPECT_EQ(bank.melMul, melMul);
    EXPECT_EQ(bank.melDiv, melDiv);
    if constexpr (std::is_same_v<State, FBankState_16s>) {
        EXPECT_EQ(bank.scale, 14);
    }
}

// ---------------------------------------------------------------------------------------------------------- evaluation

// Every sum of n products in any order is within n + 1 roundings of the exact one, each at most half a unit of the sum
// of the magnitudes (Higham, Accuracy and Stability of Numerical Algorithms, 2002, section 3.1); the lanes' final
// additions are among them. One more for subnormal products. Where terms are infinite or no numbers, so is the sum.
inline void expectEnergies(const float* dst, const std::vector<oracle::Energy>& expected)
{
    constexpr long double unit = std::numeric_limits<float>::epsilon() / 2;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& e = expected[i];
        if (std::isnan(e.sum)) {
            ASSERT_TRUE(std::isnan(dst[i])) << "filter " << i + 1;
            continue;
        }
        if (std::isinf(e.sum)) {
            ASSERT_EQ(dst[i], static_cast<float>(e.sum)) << "filter " << i + 1;
            continue;
        }
        const long double bound = unit * (e.terms + 2) * e.magnitude +
                                  std::numeric_limits<float>::denorm_min() * static_cast<long double>(e.terms + 1);
        ASSERT_LE(std::fabs(dst[i] - e.sum), bound) << "filter " << i + 1 << " of " << e.terms << " bins";
    }
}

// The sums as they are told, from the rows of a record whatever its centres: visit(filter from 0, weight, bin) for the
// bins that lie in the spectrum, up to bin `top`, and whose weights lie in the row.
template <class State, class Visit>
void visitBins(const State& bank, std::int64_t top, Visit visit)
{
    for (std::int32_t f = 0; f < bank.nFilter; ++f) {
        const std::int64_t lower = bank.pCenters[f];
        const std::int64_t centre = bank.pCenters[f + 1];
        const std::int64_t upper = bank.pCenters[f + 2];
        for (std::int64_t k = 0; k <= top; ++k) {
            const auto i = static_cast<std::size_t>(f);
            const auto bin = static_cast<std::size_t>(k);
            if (k >= lower && k <= centre && k - lower <= top) {
                visit(i, bank.pCoefLeft[f][k - lower], bin);
            }
            if (k > centre && k <= upper && k - centre <= top) {
                visit(i, bank.pCoefRight[f][k - centre - 1], bin);
            }
        }
    }
}

inline std::vector<oracle::Energy> literalEnergies(const FBankState_32f& bank, const float* src)
{
    std::vector<oracle::Energy> result(static_cast<std::size_t>(bank.nFilter), {0, 0, 0});
    visitBins(bank, bank.fftLen / 2, [&](std::size_t f, float weight, std::size_t bin) {
        const long double term = static_cast<long double>(weight) * src[bin];
        result[f].sum += term;
        result[f].magnitude += std::fabs(term);
        ++result[f].terms;
    });
    return result;
}

// Modulo 2^64; each product is shifted right by `shift` before it is added.
template <class State, class S>
std::vector<std::int64_t> literalSums(const State& bank, std::int64_t top, const S* src, int shift)
{
    std::vector<std::int64_t> result(static_cast<std::size_t>(bank.nFilter));
    visitBins(bank, top, [&](std::size_t f, std::int32_t weight, std::size_t bin) {
        const std::int64_t term = std::int64_t{weight} * src[bin] >> shift;
        result[f] = static_cast<std::int64_t>(static_cast<std::uint64_t>(result[f]) + static_cast<std::uint64_t>(term));
    });
    return result;
}

// Evaluation of any bank that takes a spectrum, from one that ends at an unmapped page.
inline void expectLiteralSums(const FBankState_32f& bank)
{
    const auto bins = static_cast<std::size_t>(bank.fftLen) / 2 + 1;
    const Guarded<float> x(Random(11).vector<float>(bins, 1, 2), Guarded<float>::flush(bins));
    std::vector<float> dst(static_cast<std::size_t>(bank.nFilter));
    ASSERT_EQ(lyrsEvalFBank_32f(x.data(), dst.data(), &bank), StsNoErr);
    expectEnergies(dst.data(), literalEnergies(bank, x.data()));
}

inline void expectLiteralSums(const FBankState_16s& bank)
{
    const auto bins = static_cast<std::size_t>(bank.fftLen) / 2 + 1;
    const Guarded<Elem16s> x(Random(11).vector<Elem16s>(bins, 1, 2000), Guarded<Elem16s>::flush(bins));
    std::vector<Elem16s> narrow(static_cast<std::size_t>(bank.nFilter));
    std::vector<Elem32s> wide(narrow.size());
    ASSERT_EQ(lyrsEvalFBank_16s_Sfs(x.data(), narrow.data(), &bank, 0), StsNoErr);
    ASSERT_EQ(lyrsEvalFBank_16s32s_Sfs(x.data(), wide.data(), &bank, 0), StsNoErr);
    const auto sums = literalSums(bank, bank.fftLen / 2, x.data(), 0);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        ASSERT_EQ(narrow[i], oracle::scaled(sums[i], 14, INT16_MIN, INT16_MAX)) << "filter " << i + 1;
        ASSERT_EQ(wide[i], oracle::scaled(sums[i], 14, INT32_MIN, INT32_MAX)) << "filter " << i + 1;
    }
}

using Kinds = ::testing::Types<FBankState_32f, FBankState_16s>;

} // namespace lyr::test
