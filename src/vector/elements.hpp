// Whole vectors copied and cleared, for every function whose result is its input or zero.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstring>

namespace lyr {

// The vectors may overlap, be the same one among others.
template <class T>
LYR_INLINE void copyElements(const T* src, T* dst, Elem32s len)
{
    std::memmove(dst, src, static_cast<std::size_t>(len) * sizeof(T));
}

template <class T>
LYR_INLINE void zeroElements(T* dst, Elem32s len)
{
    std::memset(dst, 0, static_cast<std::size_t>(len) * sizeof(T));
}

} // namespace lyr
