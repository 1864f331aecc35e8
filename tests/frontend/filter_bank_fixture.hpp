// What the tests of filter banks share: the two kinds of bank side by side, and a bank against its oracle.
#pragma once

#include "frontend/filter_bank.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

#include "oracle/filter_bank.hpp"
#include "support/ulp.hpp"

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

inline ::testing::AssertionResult sameWeight(float actual, float expected)
{
    return sameBits(actual, expected);
}
inline ::testing::AssertionResult sameWeight(std::int32_t actual, std::int32_t expected)
{
    return actual == expected ? ::testing::AssertionSuccess()
                              : ::testing::AssertionFailure() << actual << " is not " << expected;
}

// One side of a filter as stored: the run that is told, and zeros behind it to the end of the row.
template <class Weight>
void expectRow(const Weight* row, const std::vector<Weight>& expected, std::size_t length, const std::string& name)
{
    for (std::size_t j = 0; j < length; ++j) {
        const Weight want = j < expected.size() ? expected[j] : Weight{0};
        ASSERT_TRUE(sameWeight(row[j], want)) << name << " element " << j;
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

using Kinds = ::testing::Types<FBankState_32f, FBankState_16s>;

} // namespace lyr::test
