#include "frame/memory.hpp"

#include <cstdlib>

namespace lyr {
namespace {

constexpr std::size_t word = sizeof(void*);

// The size is computed in the address width and not tested for overflow.
template <class T>
T* allocate(Elem32s len) noexcept
{
    return len < 1 ? nullptr : static_cast<T*>(allocateBlock(static_cast<std::size_t>(len) * sizeof(T)));
}

// Row tables hold elements of four bytes only, whatever their type.
constexpr std::size_t element = 4;

std::size_t paddedColumns(Elem32s cols) noexcept
{
    return cols < 1 ? 0 : alignUp(static_cast<std::size_t>(cols), 8);
}

std::uint64_t tableBytes(Elem32s rows, Elem32s cols) noexcept
{
    const std::uint64_t count = rows < 1 ? 0 : static_cast<std::uint64_t>(rows);
    return count * word + (paddedColumns(cols) * count + 7) * element;
}

// Sizes are computed in 64 bits: what the allocator's 32-bit length cannot say is memory that cannot be had.
void* allocateBytes(std::uint64_t bytes) noexcept
{
    return bytes > INT32_MAX ? nullptr : lyrsMalloc_8u(static_cast<Elem32s>(bytes));
}

template <class T>
void layTable(void* buffer, Elem32s rows, Elem32s cols) noexcept
{
    static_assert(sizeof(T) == element);
    auto** const table = static_cast<T**>(buffer);
    if (rows < 1) {
        return;
    }
    T* row = alignUp(reinterpret_cast<T*>(table + rows));
    for (Elem32s r = 0; r < rows; ++r, row += paddedColumns(cols)) {
        table[r] = row;
    }
}

template <class T>
T** allocateTable(Elem32s rows, Elem32s cols) noexcept
{
    // A row that is no length by itself would make the 64 bits of the size wrap.
    if (paddedColumns(cols) > INT32_MAX / element) {
        return nullptr;
    }
    // A table without rows is a block all the same, with the slack alone in it.
    void* const block = allocateBytes(tableBytes(rows, cols));
    if (block == nullptr) {
        return nullptr;
    }
    layTable<T>(block, rows, cols);
    return static_cast<T**>(block);
}

constexpr std::size_t matrixUnit = 16;

template <class T>
BlockMatrix<T>* allocateMatrix(const Elem32s* blockSizes, Elem32s numBlocks) noexcept
{
    std::uint64_t numRows = 0;
    std::uint64_t rowBytes = 0;
    for (Elem32s b = 0; b < numBlocks; ++b) {
        if (blockSizes[b] < 1) {
            return nullptr;
        }
        const auto n = static_cast<std::uint64_t>(blockSizes[b]);
        const std::uint64_t row = (n * sizeof(T) + matrixUnit - 1) / matrixUnit * matrixUnit;
        numRows += n;
        // The padded row length squared, and not times the number of rows: meant to be generous, and part of the size
        // that callers account for.
        rowBytes += row * row;
    }
    // The slack of the squares holds the record itself, and there is none without a block. The record counts rows, and
    // with them blocks, in 16 bits.
    if (numBlocks < 1 || numRows > UINT16_MAX) {
        return nullptr;
    }
    const auto count = static_cast<std::size_t>(numBlocks);
    const std::uint64_t bytes = alignUp(count * sizeof(Elem32s), matrixUnit) + rowBytes +
                                (numRows * word + matrixUnit - 1) / matrixUnit * matrixUnit + 31;
    void* const block = allocateBytes(bytes);
    if (block == nullptr) {
        return nullptr;
    }
    auto* const matrix = alignUp(static_cast<BlockMatrix<T>*>(block), matrixUnit);
    matrix->rawBlock = block;
    matrix->numBlocks = static_cast<std::uint16_t>(numBlocks);
    matrix->numRows = static_cast<std::uint16_t>(numRows);
    matrix->blockSizes = alignUp(reinterpret_cast<Elem32s*>(matrix + 1), matrixUnit);
    matrix->rows = alignUp(reinterpret_cast<T**>(matrix->blockSizes + count), matrixUnit);
    auto* row = alignUp(reinterpret_cast<std::byte*>(matrix->rows + numRows), matrixUnit);
    std::size_t r = 0;
    for (std::size_t b = 0; b < count; ++b) {
        matrix->blockSizes[b] = blockSizes[b];
        const auto n = static_cast<std::size_t>(blockSizes[b]);
        for (std::size_t i = 0; i < n; ++i, ++r, row += alignUp(n * sizeof(T), matrixUnit)) {
            matrix->rows[r] = reinterpret_cast<T*>(row);
        }
    }
    return matrix;
}

} // namespace

void* allocateBlock(std::size_t bytes) noexcept
{
    void* const raw = std::malloc(bytes + blockAlignment + word);
    if (raw == nullptr) {
        return nullptr;
    }
    // The first multiple of 32 with room for one word in front of it: the raw pointer, for lyrsFree.
    auto address = reinterpret_cast<std::uintptr_t>(raw) + word + blockAlignment - 1;
    address -= address % blockAlignment;
    reinterpret_cast<void**>(address)[-1] = raw;
    __builtin_prefetch(reinterpret_cast<const void*>(address + 128), 1);
    return reinterpret_cast<void*>(address);
}

Elem32f** Alloc2_32f(Elem32s rows, Elem32s cols) noexcept
{
    return allocateTable<Elem32f>(rows, cols);
}
Elem32s** Alloc2_32s(Elem32s rows, Elem32s cols) noexcept
{
    return allocateTable<Elem32s>(rows, cols);
}
Elem32f** Alloc2_32fd(Elem32s rows, Elem32s cols) noexcept
{
    return allocateTable<Elem32f>(rows, cols);
}
std::uint32_t GetSize2_32f(Elem32s rows, Elem32s cols) noexcept
{
    return static_cast<std::uint32_t>(tableBytes(rows, cols));
}
std::uint32_t GetSize2_32s(Elem32s rows, Elem32s cols) noexcept
{
    return static_cast<std::uint32_t>(tableBytes(rows, cols));
}
void Init2_32f(void* buffer, Elem32s rows, Elem32s cols) noexcept
{
    layTable<Elem32f>(buffer, rows, cols);
}
void Init2_32s(void* buffer, Elem32s rows, Elem32s cols) noexcept
{
    layTable<Elem32s>(buffer, rows, cols);
}
void Init2_32fd(void* buffer, Elem32s rows, Elem32s cols) noexcept
{
    layTable<Elem32f>(buffer, rows, cols);
}
void Free2(void* block) noexcept
{
    lyrsFree(block);
}
void Free2d(void* block) noexcept
{
    lyrsFree(block);
}

BlockMatrix<Elem16s>* allocMatrix_16s(const Elem32s* blockSizes, Elem32s numBlocks) noexcept
{
    return allocateMatrix<Elem16s>(blockSizes, numBlocks);
}

BlockMatrix<Elem32f>* allocMatrix_32f(const Elem32s* blockSizes, Elem32s numBlocks) noexcept
{
    return allocateMatrix<Elem32f>(blockSizes, numBlocks);
}

BlockMatrix<Elem64f>* allocMatrix_64f(const Elem32s* blockSizes, Elem32s numBlocks) noexcept
{
    return allocateMatrix<Elem64f>(blockSizes, numBlocks);
}

} // namespace lyr

Elem8u* lyrsMalloc_8u(Elem32s len)
{
    return lyr::allocate<Elem8u>(len);
}
Elem16s* lyrsMalloc_16s(Elem32s len)
{
    return lyr::allocate<Elem16s>(len);
}
Elem32s* lyrsMalloc_32s(Elem32s len)
{
    return lyr::allocate<Elem32s>(len);
}
Elem32f* lyrsMalloc_32f(Elem32s len)
{
    return lyr::allocate<Elem32f>(len);
}
Elem64f* lyrsMalloc_64f(Elem32s len)
{
    return lyr::allocate<Elem64f>(len);
}

void lyrsFree(void* p)
{
    if (p != nullptr) {
        std::free(static_cast<void**>(p)[-1]);
    }
}
