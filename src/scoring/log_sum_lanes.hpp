// The log of the sum of the exponentials of a vector, by log-additions.
#pragma once

#include "scoring/log_add_lanes.hpp"

namespace lyr::LYR_NS {

// Which element is added to which: four accumulators in single precision and two in double, whatever the width of the
// registers. The order is part of the result.
template <class T>
struct SumOrder;

template <>
struct SumOrder<Elem32f>
{
    using Lanes = Quad;
    static constexpr Elem32s lanes = 4;
    static constexpr Elem32s fewest = 8; // elements that are worth accumulators

    static LYR_INLINE Quad load(const Elem32f* x) { return _mm_loadu_ps(x); }
    static LYR_INLINE Quad withFirst(Elem32f first, Quad x) { return _mm_move_ss(x, _mm_set_ss(first)); }
    static LYR_INLINE Quad logAdd(Quad a, Quad b)
    {
        Quad sum[1] = {a};
        logAddSingle<1>(sum, {b});
        return sum[0];
    }
    static LYR_INLINE Elem32f fold(Quad sum)
    {
        sum = logAdd(sum, _mm_movehl_ps(sum, sum));
        return logAdd(sum, _mm_shuffle_ps(sum, sum, 1))[0];
    }
};

template <>
struct SumOrder<Elem64f>
{
    using Lanes = Pair;
    static constexpr Elem32s lanes = 2;
    static constexpr Elem32s fewest = 5;

    static LYR_INLINE Pair load(const Elem64f* x) { return _mm_loadu_pd(x); }
    static LYR_INLINE Pair withFirst(Elem64f first, Pair x) { return _mm_move_sd(x, _mm_set_sd(first)); }
    static LYR_INLINE Pair logAdd(Pair a, Pair b)
    {
        Pair sum[1] = {a};
        logAddDouble<1>(sum, {b});
        return sum[0];
    }
    static LYR_INLINE Elem64f fold(Pair sum) { return logAdd(sum, _mm_unpackhi_pd(sum, sum))[0]; }
};

// One more element. All lanes hold the same, so that a step whose smaller operand is ignored costs no polynomial.
template <class T>
LYR_INLINE T logAddOne(T total, T x)
{
    using Lanes = typename SumOrder<T>::Lanes;
    return SumOrder<T>::logAdd(total - Lanes{}, x - Lanes{})[0];
}

template <class T>
LYR_INLINE T logSum(const T* x, Elem32s len)
{
    using Order = SumOrder<T>;
    T total = x[0];
    std::ptrdiff_t i = 1;
    if (len >= Order::fewest) {
        auto sum = Order::load(x);
        for (i = Order::lanes; i + Order::lanes <= len; i += Order::lanes) {
            sum = Order::logAdd(sum, Order::load(x + i));
        }
        total = Order::fold(sum);
    }
    for (; i < len; ++i) {
        total = logAddOne(total, x[i]);
    }
    return total;
}

} // namespace lyr::LYR_NS
