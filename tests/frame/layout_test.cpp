// Blocks and row tables, the 16-byte tests, the lane masks.

#include "frame/layout.hpp"
#include "frame/masks.hpp"

#include <array>
#include <gtest/gtest.h>

namespace {

using lyr::Block;
using lyr::RowMatrAlErr;
using lyr::Table;

alignas(16) std::array<Elem32f, 64> data{};

TEST(RowMatrAlErr, AnyRowOffSixteenBytes)
{
    for (std::size_t bad = 0; bad < 5; ++bad) {
        for (std::size_t offset = 0; offset < 16; ++offset) {
            std::array<const void*, 5> rows{};
            for (std::size_t r = 0; r < 5; ++r) {
                rows[r] = data.data() + 4 * r;
            }
            rows[bad] = reinterpret_cast<const char*>(data.data() + 16) + offset;
            EXPECT_EQ(RowMatrAlErr(rows.data(), 5), offset == 0 ? 0 : 1) << bad << " by " << offset;
            EXPECT_EQ(RowMatrAlErr(rows.data(), static_cast<Elem32s>(bad)), 0) << "rows that are not asked for";
        }
    }
}

TEST(RowMatrAlErr, CountBelowOneIsAligned)
{
    const void* const rows[] = {reinterpret_cast<const char*>(data.data()) + 1};
    EXPECT_EQ(RowMatrAlErr(rows, 0), 0);
    EXPECT_EQ(RowMatrAlErr(rows, -1), 0);
    EXPECT_EQ(RowMatrAlErr(nullptr, INT32_MIN), 0);
}

TEST(Layout, BlockRowsAndAlignment)
{
    const Block<Elem32f> block{data.data(), 5};
    EXPECT_EQ(block.row(3), data.data() + 15);
    EXPECT_FALSE(block.isAligned(2)) << "the stride is no multiple of four singles";
    EXPECT_TRUE((Block<Elem32f>{data.data(), 8}.isAligned(2)));
    EXPECT_FALSE((Block<Elem32f>{data.data() + 1, 8}.isAligned(2)));
    const auto* const doubles = reinterpret_cast<const Elem64f*>(data.data());
    EXPECT_TRUE((Block<const Elem64f>{doubles, 6}.isAligned(2)));
    EXPECT_FALSE((Block<const Elem64f>{doubles, 6}.isAligned(2, 4))) << "families may ask for more";
    const auto* const shorts = reinterpret_cast<const Elem16s*>(data.data());
    EXPECT_FALSE((Block<const Elem16s>{shorts, 12}.isAligned(2)));
    EXPECT_TRUE((Block<const Elem16s>{shorts, 16}.isAligned(2)));
    // A stride times a row number beyond 32 bits: the address is formed in the width of a pointer.
    if constexpr (sizeof(void*) == 8) {
        constexpr auto start = static_cast<std::uintptr_t>(0x100000000ULL);
        const Block<Elem8u> far{reinterpret_cast<Elem8u*>(start), INT32_MAX};
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(far.row(3)), start + 3 * std::uintptr_t{INT32_MAX});
    }
}

TEST(Layout, TableRowsAndAlignment)
{
    Elem32f* const rows[] = {data.data(), data.data() + 4, data.data() + 9};
    const Table<Elem32f> table{rows};
    EXPECT_EQ(table.row(2), data.data() + 9);
    EXPECT_TRUE(table.isAligned(2));
    EXPECT_FALSE(table.isAligned(3));
}

TEST(Layout, AlignmentOfPointers)
{
    const auto* const bytes = reinterpret_cast<const char*>(data.data());
    for (std::size_t k = 0; k < 32; ++k) {
        EXPECT_EQ(lyr::isAligned16(bytes + k), k % 16 == 0);
        EXPECT_EQ(lyr::areAligned16(bytes, bytes + k, data.data()), k % 16 == 0);
    }
}

TEST(Masks, RowsHaveTheirFirstLanesSet)
{
    for (std::size_t r = 0; r < 4; ++r) {
        for (std::size_t lane = 0; lane < 4; ++lane) {
            EXPECT_EQ(lyr::OutMask32f[r][lane], lane < r ? 0xFFFFFFFFU : 0U);
        }
    }
    for (std::size_t r = 0; r < 9; ++r) {
        for (std::size_t lane = 0; lane < 8; ++lane) {
            EXPECT_EQ(lyr::OutMask[r][lane], lane < r ? 0xFFFFU : 0U);
        }
    }
    EXPECT_TRUE(lyr::isAligned16(lyr::OutMask32f));
    EXPECT_TRUE(lyr::isAligned16(lyr::OutMask));
    for (std::size_t k = 0; k < 32; ++k) {
        EXPECT_EQ(lyr::slidingMask32[k], k < 16 ? 0xFFFFFFFFU : 0U);
    }
}

} // namespace
