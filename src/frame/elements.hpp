// Whole vectors copied and cleared: for functions whose result is their input or zero, and for sums that start at zero.
#pragma once

#include "frame/width.hpp"

#include <cstddef>
#include <cstring>

namespace lyr {

// The vectors may overlap, be the same one among others.
template <class T>
LYR_INLINE void copyElements(const T* src, T* dst, std::ptrdiff_t len)
{
    std::memmove(dst, src, static_cast<std::size_t>(len) * sizeof(T));
}

template <class T>
LYR_INLINE void zeroElements(T* dst, std::ptrdiff_t len)
{
    std::memset(dst, 0, static_cast<std::size_t>(len) * sizeof(T));
}

} // namespace lyr
