// Elements of one type as the lanes of another, where the type that is computed in is a parameter: the same type,
// singles and integers widened to double, 16-bit integers widened to 32 bits, integers as singles; and back.
#pragma once

#include "frame/simd_mixed.hpp"

#include <cstdint>

namespace lyr::LYR_NS {

// lanes<VectorOf<T>> elements at p. Only what is not widened is loaded as A says.
template <class T, class A = Unaligned, class S>
LYR_INLINE VectorOf<T> loadLanes(const S* p)
{
    if constexpr (__is_same(S, T)) {
        return load<A>(p);
    } else if constexpr (__is_same(T, double) && !__is_same(S, float)) {
        return loadWideToDouble(p);
    } else if constexpr (__is_same(T, float)) {
        return toFloat(loadLanes<std::int32_t, A>(p));
    } else {
        return loadWide(p);
    }
}

// The first n of them and zeros behind them, 1 <= n < lanes.
template <class T, class A = Unaligned, class S>
LYR_INLINE VectorOf<T> loadLanesTail(const S* p, int n)
{
    if constexpr (__is_same(S, T)) {
        return loadTail<A>(p, n);
    } else if constexpr (__is_same(T, double) && !__is_same(S, float)) {
        return loadWideToDoubleTail(p, n);
    } else if constexpr (__is_same(T, float)) {
        return toFloat(loadLanesTail<std::int32_t, A>(p, n));
    } else {
        return loadWideTail(p, n);
    }
}

// Lanes of T as elements at p: doubles rounded to singles, 32 bits limited to 16.
template <class T, class D>
LYR_INLINE void storeLanes(D* p, VectorOf<T> v)
{
    if constexpr (__is_same(D, T)) {
        store<Unaligned>(p, v);
    } else if constexpr (__is_same(T, double)) {
        storeNarrow(p, v);
    } else {
        storeSaturated(p, v);
    }
}

template <class T, class D>
LYR_INLINE void storeLanesTail(D* p, VectorOf<T> v, int n)
{
    if constexpr (__is_same(D, T)) {
        storeTail(p, v, n);
    } else if constexpr (__is_same(T, double)) {
        storeNarrowTail(p, v, n);
    } else {
        storeSaturatedTail(p, v, n);
    }
}

} // namespace lyr::LYR_NS
