// The log of the sum of the exponentials of a vector, by log-additions.
#pragma once

#include "scoring/log_add_lanes.hpp"

namespace lyr::LYR_NS {

// Elements from `i` on, one at a time. All lanes hold the same, so that a step whose smaller operand is ignored costs
// no polynomial.
template <class V, class T, class LogAdd>
LYR_INLINE T logSumSerial(T total, const T* x, Elem32s i, Elem32s len, LogAdd logAdd)
{
    V sum = total - V{};
    for (; i < len; ++i) {
        sum = logAdd(sum, x[i] - V{});
    }
    return sum[0];
}

// From 8 elements on four accumulators, whatever the width of the registers: the order is part of the result.
LYR_INLINE Elem32f logSum(const Elem32f* x, Elem32s len)
{
    constexpr auto logAdd = [](Quad a, Quad b) LYR_INLINE_LAMBDA { return logAddSingle(a, b); };
    if (len < 8) {
        return logSumSerial<Quad>(x[0], x, 1, len, logAdd);
    }
    Quad sum = _mm_loadu_ps(x);
    Elem32s i = 4;
    for (; i + 4 <= len; i += 4) {
        sum = logAdd(sum, _mm_loadu_ps(x + i));
    }
    sum = logAdd(sum, _mm_movehl_ps(sum, sum));
    sum = logAdd(sum, _mm_shuffle_ps(sum, sum, 1));
    return logSumSerial<Quad>(sum[0], x, i, len, logAdd);
}

// From 5 elements on two accumulators.
LYR_INLINE Elem64f logSum(const Elem64f* x, Elem32s len)
{
    constexpr auto logAdd = [](Pair a, Pair b) LYR_INLINE_LAMBDA { return logAddDouble(a, b); };
    if (len < 5) {
        return logSumSerial<Pair>(x[0], x, 1, len, logAdd);
    }
    Pair sum = _mm_loadu_pd(x);
    Elem32s i = 2;
    for (; i + 2 <= len; i += 2) {
        sum = logAdd(sum, _mm_loadu_pd(x + i));
    }
    sum = logAdd(sum, _mm_unpackhi_pd(sum, sum));
    return logSumSerial<Pair>(sum[0], x, i, len, logAdd);
}

} // namespace lyr::LYR_NS
