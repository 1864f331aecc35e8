// Aligned memory, row table blocks, the block-diagonal matrix record.

#include "frame/memory.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"

#include <array>
#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace {

using lyr::test::allocationCount;
using lyr::test::allowAllocations;
using lyr::test::failAllocationsAfter;
using lyr::test::lastAllocationSize;
using lyr::test::liveAllocations;

constexpr std::size_t word = sizeof(void*);

std::uintptr_t address(const void* p)
{
    return reinterpret_cast<std::uintptr_t>(p);
}

// -------------------------------------------------------------------------------------------------------- lyrsMalloc_*

template <class T>
void checkMalloc(T* (*allocate)(Elem32s))
{
    for (const Elem32s len : {1, 2, 3, 7, 31, 32, 33, 100, 1000, 65537}) {
        const long live = liveAllocations();
        T* const p = allocate(len);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(address(p) % 32, 0U);
        EXPECT_EQ(lastAllocationSize(), static_cast<std::size_t>(len) * sizeof(T) + 32 + word);
        void* raw = nullptr;
        std::memcpy(&raw, reinterpret_cast<const char*>(p) - word, word);
        const std::size_t ahead = address(p) - address(raw);
        EXPECT_GE(ahead, word) << "room for the stored pointer";
        EXPECT_LE(ahead, word + 31) << "the first multiple of 32 with that room";
        std::memset(p, 0x5A, static_cast<std::size_t>(len) * sizeof(T)); // all of it is the caller's
        EXPECT_EQ(liveAllocations(), live + 1);
        lyrsFree(p);
        EXPECT_EQ(liveAllocations(), live);
    }
    for (const Elem32s len : {0, -1, INT32_MIN}) {
        const long calls = allocationCount();
        EXPECT_EQ(allocate(len), nullptr);
        EXPECT_EQ(allocationCount(), calls) << "the C library is not asked";
    }
    failAllocationsAfter(0);
    T* const none = allocate(8);
    allowAllocations();
    EXPECT_EQ(none, nullptr);
}

TEST(Malloc, EveryElementType)
{
    checkMalloc<Elem8u>(lyrsMalloc_8u);
    checkMalloc<Elem16s>(lyrsMalloc_16s);
    checkMalloc<Elem32s>(lyrsMalloc_32s);
    checkMalloc<Elem32f>(lyrsMalloc_32f);
    checkMalloc<Elem64f>(lyrsMalloc_64f);
}

TEST(Malloc, SizesAreComputedInTheWidthOfTheAddressSpace)
{
    if constexpr (sizeof(std::size_t) == 8) {
        failAllocationsAfter(0); // only the size of the request matters
        EXPECT_EQ(lyrsMalloc_64f(INT32_MAX), nullptr);
        allowAllocations();
        EXPECT_EQ(lastAllocationSize(), std::size_t{INT32_MAX} * 8 + 40);
    } else {
        // Not tested for overflow, on purpose: 2^32 + 8 bytes are 8.
        Elem64f* const p = lyrsMalloc_64f(0x20000001);
        EXPECT_NE(p, nullptr);
        EXPECT_EQ(lastAllocationSize(), std::size_t{8 + 36});
        lyrsFree(p);
    }
}

TEST(Malloc, FreeOfNull)
{
    lyrsFree(nullptr);
}

TEST(WorkBuffer, IsReleased)
{
    const long live = liveAllocations();
    {
        const lyr::WorkBuffer<Elem64f> buffer(5);
        ASSERT_TRUE(buffer);
        EXPECT_EQ(address(buffer.data()) % 32, 0U);
        EXPECT_EQ(lastAllocationSize(), 5 * sizeof(Elem64f) + 32 + word);
        EXPECT_EQ(liveAllocations(), live + 1);
    }
    EXPECT_EQ(liveAllocations(), live);
    const long calls = allocationCount();
    EXPECT_FALSE(lyr::WorkBuffer<Elem64f>(0));
    EXPECT_FALSE(lyr::WorkBuffer<Elem64f>(-3));
    EXPECT_FALSE(lyr::WorkBuffer<Elem8u>(Elem64s{INT32_MAX} + 1)) << "beyond what a length can say";
    EXPECT_FALSE(lyr::WorkBuffer<Elem64f>(Elem64s{INT32_MAX} + 1)) << "beyond what a length can say";
    EXPECT_EQ(allocationCount(), calls);
}

// ---------------------------------------------------------------------------------------------------------- row tables

std::size_t padded(Elem32s cols)
{
    return (static_cast<std::size_t>(cols) + 7) / 8 * 8;
}

std::size_t tableSize(Elem32s rows, Elem32s cols)
{
    const auto n = static_cast<std::size_t>(rows);
    return n * word + (padded(cols) * n + 7) * 4;
}

// Every row at the next multiple of 32 behind the table, as far apart as they are padded, and inside the block.
template <class T>
void checkRows(T* const* table, const void* block, std::size_t size, Elem32s rows, Elem32s cols)
{
    ASSERT_EQ(address(table), address(block));
    const std::uintptr_t tableEnd = address(table + rows);
    for (Elem32s r = 0; r < rows; ++r) {
        const std::uintptr_t expected = (tableEnd + 31) / 32 * 32 + static_cast<std::size_t>(r) * padded(cols) * 4;
        ASSERT_EQ(address(table[r]), expected) << r;
        ASSERT_EQ(address(table[r]) % 32, 0U);
        ASSERT_LE(expected + padded(cols) * 4, address(block) + size);
    }
}

template <class T>
void checkTables(T** (*allocate)(Elem32s, Elem32s) noexcept, void (*release)(void*) noexcept,
                 void (*init)(void*, Elem32s, Elem32s) noexcept, std::uint32_t (*getSize)(Elem32s, Elem32s) noexcept)
{
    for (const Elem32s rows : {1, 2, 3, 4, 5, 7, 8, 20}) {
        for (const Elem32s cols : {1, 5, 7, 8, 9, 16, 40}) {
            SCOPED_TRACE(std::to_string(rows) + " rows of " + std::to_string(cols));
            const std::size_t size = tableSize(rows, cols);
            ASSERT_EQ(getSize(rows, cols), size);
            T** const table = allocate(rows, cols);
            ASSERT_NE(table, nullptr);
            EXPECT_EQ(lastAllocationSize(), size + 32 + word);
            checkRows(table, table, size, rows, cols);
            release(table);

            // A caller's buffer of exactly that size, aligned as a pointer is.
            for (std::size_t offset = 0; offset < 64; offset += word) {
                const lyr::test::Guarded<std::byte> buffer(size, offset);
                init(buffer.data(), rows, cols);
                auto** const laid = reinterpret_cast<T**>(buffer.data());
                checkRows(laid, buffer.data(), size, rows, cols);
                for (Elem32s r = 0; r < rows; ++r) {
                    std::memset(laid[r], 0, padded(cols) * 4);
                }
                ASSERT_TRUE(buffer.intact());
            }
        }
    }
    // Rows of no columns take no room: all of them stand at the first multiple of 32.
    for (const Elem32s rows : {1, 3, 8}) {
        const std::size_t size = static_cast<std::size_t>(rows) * word + 28;
        ASSERT_EQ(getSize(rows, 0), size);
        T** const table = allocate(rows, 0);
        ASSERT_NE(table, nullptr);
        EXPECT_EQ(lastAllocationSize(), size + 32 + word);
        checkRows(table, table, size, rows, 0);
        release(table);
        const lyr::test::Guarded<std::byte> buffer(size, word);
        init(buffer.data(), rows, 0);
        checkRows(reinterpret_cast<T**>(buffer.data()), buffer.data(), size, rows, 0);
        ASSERT_TRUE(buffer.intact());
    }
    failAllocationsAfter(0);
    T** const none = allocate(3, 5);
    allowAllocations();
    EXPECT_EQ(none, nullptr);
    for (const Elem32s rows : {0, -4}) {
        T** const empty = allocate(rows, 5);
        EXPECT_NE(empty, nullptr) << "a block without entries";
        release(empty);
        init(nullptr, rows, 5); // touches nothing
    }
    const long calls = allocationCount();
    EXPECT_EQ(allocate(INT32_MAX, INT32_MAX), nullptr);
    EXPECT_EQ(allocationCount(), calls) << "a size beyond 32 bits does not wrap to a small one";
}

TEST(RowTable, EveryName)
{
    const long live = liveAllocations();
    checkTables<Elem32f>(lyr::Alloc2_32f, lyr::Free2, lyr::Init2_32f, lyr::GetSize2_32f);
    checkTables<Elem32s>(lyr::Alloc2_32s, lyr::Free2, lyr::Init2_32s, lyr::GetSize2_32s);
    checkTables<Elem32f>(lyr::Alloc2_32fd, lyr::Free2d, lyr::Init2_32fd, lyr::GetSize2_32f);
    EXPECT_EQ(liveAllocations(), live);
}

TEST(RowTable, RowsWithoutElements)
{
    for (const Elem32s cols : {0, -1, INT32_MIN}) {
        EXPECT_EQ(lyr::GetSize2_32f(3, cols), 3 * word + 28) << "the table and the slack";
        Elem32f** const table = lyr::Alloc2_32f(3, cols);
        ASSERT_NE(table, nullptr);
        EXPECT_EQ(lastAllocationSize(), 3 * word + 28 + 32 + word);
        EXPECT_EQ(address(table[0]), address(table) + 32);
        EXPECT_EQ(table[1], table[0]);
        EXPECT_EQ(table[2], table[0]);
        lyr::Free2(table);
    }
}

TEST(RowTable, MoreThanTheAllocatorCounts)
{
    const long calls = allocationCount();
    EXPECT_EQ(lyr::Alloc2_32f(50000, 50000), nullptr);
    EXPECT_EQ(lyr::Alloc2_32s(INT32_MAX, 1), nullptr);
    EXPECT_EQ(allocationCount(), calls);
}

TEST(RowTable, ThreeRowsOfFive)
{
    EXPECT_EQ(lyr::GetSize2_32s(3, 5), word == 4 ? 136U : 148U);
    Elem32f** const table = lyr::Alloc2_32f(3, 5);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(address(table[0]) - address(table), 32U);
    EXPECT_EQ(table[1] - table[0], 8);
    EXPECT_EQ(table[2] - table[1], 8);
    lyrsFree(table); // the same as Free2
}

// ----------------------------------------------------------------------------------------------- block-diagonal matrix

template <class T>
void checkMatrix(lyr::BlockMatrix<T>* (*allocate)(const Elem32s*, Elem32s) noexcept, const std::vector<Elem32s>& sizes)
{
    const auto up = [](std::size_t n) { return (n + 15) / 16 * 16; };
    std::size_t numRows = 0;
    std::size_t squares = 0;
    for (const Elem32s n : sizes) {
        const std::size_t row = up(static_cast<std::size_t>(n) * sizeof(T));
        numRows += static_cast<std::size_t>(n);
        squares += row * row; // generous on purpose
    }
    const std::size_t size = up(sizes.size() * 4) + squares + up(numRows * word) + 31;
    const long live = liveAllocations();
    auto* const m = allocate(sizes.data(), static_cast<Elem32s>(sizes.size()));
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(lastAllocationSize(), size + 32 + word);
    EXPECT_EQ(address(m), address(m->rawBlock)) << "a block is aligned already";
    EXPECT_EQ(m->numBlocks, sizes.size());
    EXPECT_EQ(m->numRows, numRows);
    // The areas in order, each at the next multiple of 16.
    std::uintptr_t at = address(m) + up(sizeof *m);
    EXPECT_EQ(address(m->blockSizes), at);
    at = up(at + sizes.size() * sizeof(Elem32s));
    EXPECT_EQ(address(m->rows), at);
    at = up(at + numRows * word);
    std::size_t r = 0;
    for (std::size_t b = 0; b < sizes.size(); ++b) {
        EXPECT_EQ(m->blockSizes[b], sizes[b]);
        for (Elem32s i = 0; i < sizes[b]; ++i, ++r) {
            ASSERT_EQ(address(m->rows[r]), at);
            std::memset(m->rows[r], 0, static_cast<std::size_t>(sizes[b]) * sizeof(T));
            at += up(static_cast<std::size_t>(sizes[b]) * sizeof(T));
        }
    }
    EXPECT_LE(at, address(m) + size);
    lyrsFree(m->rawBlock);
    EXPECT_EQ(liveAllocations(), live);
}

template <class T>
void checkMatrices(lyr::BlockMatrix<T>* (*allocate)(const Elem32s*, Elem32s) noexcept)
{
    for (const std::vector<Elem32s>& sizes :
         std::vector<std::vector<Elem32s>>{{1}, {3, 2}, {1, 1, 1, 1, 1}, {8}, {9, 16, 17}, {13, 13, 13}, {4, 1, 100}}) {
        checkMatrix(allocate, sizes);
    }
    checkMatrix(allocate, std::vector<Elem32s>(65535, 1)); // as many rows as the record can count
    const long calls = allocationCount();
    const std::array<Elem32s, 3> zero{3, 0, 2};
    EXPECT_EQ(allocate(zero.data(), 3), nullptr);
    const std::array<Elem32s, 1> negative{-1};
    EXPECT_EQ(allocate(negative.data(), 1), nullptr);
    EXPECT_EQ(allocate(zero.data(), 0), nullptr);
    EXPECT_EQ(allocate(zero.data(), -1), nullptr);
    const std::array<Elem32s, 1> huge{INT32_MAX};
    EXPECT_EQ(allocate(huge.data(), 1), nullptr);
    const std::array<Elem32s, 1> tooLarge{65535}; // its rows can be counted, its bytes not
    EXPECT_EQ(allocate(tooLarge.data(), 1), nullptr);
    // One row more than 16 bits count: a block a row, and in fewer blocks.
    const std::vector<Elem32s> ones(65536, 1);
    EXPECT_EQ(allocate(ones.data(), 65536), nullptr);
    const std::vector<Elem32s> pairs(32768, 2);
    EXPECT_EQ(allocate(pairs.data(), 32768), nullptr);
    EXPECT_EQ(allocationCount(), calls);
    failAllocationsAfter(0);
    const auto* const none = allocate(zero.data(), 1);
    allowAllocations();
    EXPECT_EQ(none, nullptr);
}

TEST(BlockMatrix, EveryElementType)
{
    checkMatrices<Elem16s>(lyr::allocMatrix_16s);
    checkMatrices<Elem32f>(lyr::allocMatrix_32f);
    checkMatrices<Elem64f>(lyr::allocMatrix_64f);
}

TEST(BlockMatrix, BlocksOfThreeAndTwo)
{
    const std::array<Elem32s, 2> sizes{3, 2};
    auto* const m = lyr::allocMatrix_32f(sizes.data(), 2);
    ASSERT_NE(m, nullptr);
    const std::size_t pointers = word == 4 ? 32 : 48; // five, rounded up to 16 bytes
    EXPECT_EQ(lastAllocationSize(), 16 + 256 + 256 + pointers + 31 + 32 + word);
    for (std::size_t r = 1; r < 5; ++r) {
        EXPECT_EQ(address(m->rows[r]) - address(m->rows[r - 1]), 16U);
    }
    lyrsFree(m->rawBlock);
}

TEST(BlockMatrix, RecordLayout)
{
    using Record = lyr::BlockMatrix<Elem32f>;
    EXPECT_EQ(offsetof(Record, rows), 0U);
    EXPECT_EQ(offsetof(Record, blockSizes), word);
    EXPECT_EQ(offsetof(Record, rawBlock), 2 * word);
    EXPECT_EQ(offsetof(Record, numBlocks), 3 * word);
    EXPECT_EQ(offsetof(Record, numRows), 3 * word + 2);
}

} // namespace
