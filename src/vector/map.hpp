// Element-wise operations: dst[i] = op(a[i], ...) over a vector, a whole register at a time and the tail under a mask.
//
// An operation is a function object on vectors. Sources and destination may be the same vector. Every element gets the
// same arithmetic wherever it stands, so that results depend neither on length nor on alignment.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

namespace detail {

// A vector of C from elements of S, and to elements of D: the same type, or singles widened to double and narrowed
// again.
template <class C, class S>
LYR_INLINE VectorOf<C> loadFrom(const S* p)
{
    if constexpr (__is_same(S, C)) {
        return load<Unaligned>(p);
    } else {
        return loadWide(p);
    }
}

template <class C, class S>
LYR_INLINE VectorOf<C> loadTailFrom(const S* p, int n)
{
    if constexpr (__is_same(S, C)) {
        return loadTail<Unaligned>(p, n);
    } else {
        return loadWideTail(p, n);
    }
}

template <class C, class D>
LYR_INLINE void storeTo(D* p, VectorOf<C> v)
{
    if constexpr (__is_same(D, C)) {
        store<Unaligned>(p, v);
    } else {
        storeNarrow(p, v);
    }
}

template <class C, class D>
LYR_INLINE void storeTailTo(D* p, VectorOf<C> v, int n)
{
    if constexpr (__is_same(D, C)) {
        storeTail(p, v, n);
    } else {
        storeNarrowTail(p, v, n);
    }
}

} // namespace detail

// With the operation in the type C, which each element is widened to and the result narrowed from.
template <class C, class S, class D, class Op>
LYR_INLINE void mapIn(const S* a, D* dst, Elem32s len, Op op)
{
    constexpr int L = lanes<VectorOf<C>>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        detail::storeTo<C>(dst + i, op(detail::loadFrom<C>(a + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        detail::storeTailTo<C>(dst + i, op(detail::loadTailFrom<C>(a + i, rest)), rest);
    }
}

template <class T, class Op>
LYR_INLINE void map(const T* a, T* dst, Elem32s len, Op op)
{
    mapIn<T>(a, dst, len, op);
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
