// Work memory, row table blocks and the block-diagonal matrix record, all from lyrsMalloc_*.
#pragma once

#include "lyrsr.h"

#include <concepts>
#include <cstddef>
#include <cstdint>

namespace lyr {

// lyrsMalloc_* align to this many bytes, which is twice what the aligned kernels ask for; row tables align every row to
// it.
inline constexpr std::size_t blockAlignment = 32;

template <std::unsigned_integral N>
constexpr N alignUp(N n, std::size_t unit = blockAlignment)
{
    return (n + unit - 1) / unit * unit;
}

template <class T>
T* alignUp(T* p, std::size_t unit = blockAlignment)
{
    return reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(p) + unit - 1) / unit * unit);
}

// `bytes` as lyrsMalloc_* give them, of a size that 32 bits need not hold; null if memory is exhausted.
void* allocateBlock(std::size_t bytes) noexcept;

// A block as from lyrsMalloc_* that is released on every path out of a call.
template <class T>
class WorkBuffer
{
public:
    // `count` elements; null where that is below 1 or leaves 32 bits, or memory is exhausted.
    explicit WorkBuffer(Elem64s count) noexcept
        : block(count > 0 && count <= INT32_MAX && static_cast<std::uint64_t>(count) <= most
                    ? static_cast<T*>(allocateBlock(static_cast<std::size_t>(count) * sizeof(T)))
                    : nullptr)
    {}
    ~WorkBuffer() { lyrsFree(block); }
    WorkBuffer(const WorkBuffer&) = delete;
    WorkBuffer& operator=(const WorkBuffer&) = delete;

    [[nodiscard]] T* data() const noexcept { return block; }
    explicit operator bool() const noexcept { return block != nullptr; }

private:
    // Beyond this the size and what the allocator adds to it would wrap.
    static constexpr std::size_t most = (SIZE_MAX - 2 * blockAlignment) / sizeof(T);

    T* block;
};

// A row table block: `rows` row pointers and behind them as many rows of `cols` 4-byte elements, each at a multiple of
// 32 bytes.
Elem32f** Alloc2_32f(Elem32s rows, Elem32s cols) noexcept;
Elem32s** Alloc2_32s(Elem32s rows, Elem32s cols) noexcept;
Elem32f** Alloc2_32fd(Elem32s rows, Elem32s cols) noexcept;

// Bytes of such a block: the pointers, the rows padded to 8 elements, and 7 words of slack for the alignment of the
// first row.
std::uint32_t GetSize2_32f(Elem32s rows, Elem32s cols) noexcept;
std::uint32_t GetSize2_32s(Elem32s rows, Elem32s cols) noexcept;

// Lays the row pointers over a caller's buffer of that size, which need be aligned as a pointer is and no further.
void Init2_32f(void* buffer, Elem32s rows, Elem32s cols) noexcept;
void Init2_32s(void* buffer, Elem32s rows, Elem32s cols) noexcept;
void Init2_32fd(void* buffer, Elem32s rows, Elem32s cols) noexcept;

void Free2(void* block) noexcept;
void Free2d(void* block) noexcept;

// A block-diagonal matrix: the rows of every block, one behind the other. Released by lyrsFree of `rawBlock`.
template <class T>
struct BlockMatrix
{
    T** rows;
    Elem32s* blockSizes;
    void* rawBlock;
    std::uint16_t numBlocks;
    std::uint16_t numRows;
};

// The record with its rows laid out and not filled; null for a block size below 1, for more rows than the record can
// count, or for exhausted memory.
BlockMatrix<Elem16s>* allocMatrix_16s(const Elem32s* blockSizes, Elem32s numBlocks) noexcept;
BlockMatrix<Elem32f>* allocMatrix_32f(const Elem32s* blockSizes, Elem32s numBlocks) noexcept;
BlockMatrix<Elem64f>* allocMatrix_64f(const Elem32s* blockSizes, Elem32s numBlocks) noexcept;

} // namespace lyr
