// The two layouts of a matrix, and the tests that pick the aligned kernels.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace lyr {

// A multiple of 16 bytes: what a pointer must be for the aligned 128-bit kernels.
LYR_INLINE bool isAligned16(const void* p)
{
    return (reinterpret_cast<std::uintptr_t>(p) & 15U) == 0;
}

template <class... T>
LYR_INLINE bool areAligned16(const T*... p)
{
    return ((reinterpret_cast<std::uintptr_t>(p) | ...) & 15U) == 0;
}

// 1 if any of the first `height` row pointers is not a multiple of 16, else 0; also 0 for a height below 1.
int RowMatrAlErr(const void* const* mPtr, Elem32s height) noexcept;

// One block with a row stride: row r starts r * step elements after the first.
template <class T>
struct Block
{
    using Element = T;
    T* first;
    std::ptrdiff_t step;

    LYR_INLINE T* row(std::ptrdiff_t r) const { return first + r * step; }
    // The rows from r on.
    LYR_INLINE Block from(std::ptrdiff_t r) const { return {row(r), step}; }

    // Aligned rows: the first one, and a stride that is a multiple of `unit` elements (those of 16 bytes unless the
    // family demands more).
    LYR_INLINE bool isAligned(Elem32s /*height*/,
                              std::ptrdiff_t unit = 16 / static_cast<std::ptrdiff_t>(sizeof(T))) const
    {
        return isAligned16(first) && step % unit == 0;
    }
};

// A table of row pointers; rows may lie anywhere.
template <class T>
struct Table
{
    using Element = T;
    T* const* rows;

    LYR_INLINE T* row(std::ptrdiff_t r) const { return rows[r]; }
    // The rows from r on.
    LYR_INLINE Table from(std::ptrdiff_t r) const { return {rows + r}; }

    LYR_INLINE bool isAligned(Elem32s height, std::ptrdiff_t /*unit*/ = 0) const
    {
        return RowMatrAlErr(reinterpret_cast<const void* const*>(rows), height) == 0;
    }
};

// The plain element type of a layout, without its const.
template <class Rows>
using ElementOf = std::remove_const_t<typename Rows::Element>;

template <class T>
Block(T*, Elem32s) -> Block<T>;
template <class T>
Table(T* const*) -> Table<T>;

} // namespace lyr
