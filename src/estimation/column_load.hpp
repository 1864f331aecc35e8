// Elements of a row as lanes of the precision that a statistic is formed in.
#pragma once

#include "frame/simd_lanes.hpp"

namespace lyr::LYR_NS {

// The first n elements at p, 1 <= n <= lanes, and zeros.
template <class T, class S>
LYR_INLINE VectorOf<T> loadColumns(const S* p, int n = lanes<VectorOf<T>>)
{
    return n == lanes<VectorOf<T>> ? loadLanes<T>(p) : loadLanesTail<T>(p, n);
}

// The first n lanes to p, 1 <= n <= lanes.
template <class T>
LYR_INLINE void storeColumns(T* p, VectorOf<T> v, int n)
{
    if (n == lanes<VectorOf<T>>) {
        store<Unaligned>(p, v);
    } else {
        storeTail(p, v, n);
    }
}

} // namespace lyr::LYR_NS
