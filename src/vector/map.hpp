// Element-wise operations: dst[i] = op(a[i], ...) over a vector, a whole register at a time and the tail under a mask.
//
// An operation is a function object on vectors. Sources and destination may be the same vector. Every element gets the
// same arithmetic wherever it stands, so that results depend neither on length nor on alignment.
#pragma once

#include "frame/simd_lanes.hpp"

namespace lyr::LYR_NS {

// With the operation in the type C, which each element is widened to and the result narrowed from.
template <class C, class S, class D, class Op>
LYR_INLINE void mapIn(const S* a, D* dst, Elem32s len, Op op)
{
    constexpr int L = lanes<VectorOf<C>>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        storeLanes<C>(dst + i, op(loadLanes<C>(a + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        storeLanesTail<C>(dst + i, op(loadLanesTail<C>(a + i, rest)), rest);
    }
}

template <class T, class Op>
LYR_INLINE void map(const T* a, T* dst, Elem32s len, Op op)
{
    mapIn<T>(a, dst, len, op);
}

// With `filler` in the lanes behind a tail, where an operation does not take zeros there as it takes elements.
template <class T, class Op>
LYR_INLINE void mapFilled(const T* a, T* dst, Elem32s len, T filler, Op op)
{
    constexpr int L = lanes<VectorOf<T>>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        store<Unaligned>(dst + i, op(load<Unaligned>(a + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const VectorOf<T> x = loadTail<Unaligned>(a + i, rest);
        storeTail(dst + i, op(firstLanes<T>(rest) ? x : splat(filler)), rest);
    }
}

template <class T, class Op>
LYR_INLINE void map(const T* a, const T* b, T* dst, Elem32s len, Op op)
{
    constexpr int L = lanes<VectorOf<T>>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        store<Unaligned>(dst + i, op(load<Unaligned>(a + i), load<Unaligned>(b + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        storeTail(dst + i, op(loadTail<Unaligned>(a + i, rest), loadTail<Unaligned>(b + i, rest)), rest);
    }
}

} // namespace lyr::LYR_NS
