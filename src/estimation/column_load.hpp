// Elements of a row as lanes of the precision that a statistic is formed in.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

// lanes<VectorOf<T>> elements at p.
template <class T, class S>
LYR_INLINE VectorOf<T> loadColumns(const S* p)
{
    if constexpr (__is_same(S, T)) {
        return load<Unaligned>(p);
    } else if constexpr (__is_same(S, Elem32f)) {
        return loadWide(p);
    } else if constexpr (__is_same(T, Elem32f)) {
        return toFloat(loadWide(p));
    } else {
        return loadWideToDouble(p);
    }
}

// The first n of them, 1 <= n <= lanes, and zeros.
template <class T, class S>
LYR_INLINE VectorOf<T> loadColumns(const S* p, int n)
{
    if (n == lanes<VectorOf<T>>) {
        return loadColumns<T>(p);
    }
    if constexpr (__is_same(S, T)) {
        return loadTail<Unaligned>(p, n);
    } else if constexpr (__is_same(S, Elem32f)) {
        return loadWideTail(p, n);
    } else if constexpr (__is_same(T, Elem32f)) {
        return toFloat(loadWideTail(p, n));
    } else {
        return loadWideToDoubleTail(p, n);
    }
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
