// The log of the sum of the exponentials of a vector, by log-additions.
#pragma once

#include "scoring/log_add_lanes.hpp"
#include "vector/map.hpp"

namespace lyr::LYR_NS {

// ------------------------------------------------------------------------------------------------------ in fixed order

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

// ----------------------------------------------------------------------------------------------------------- by halves

// Lanes [H, 2H) at the place of the first H.
template <int H>
LYR_INLINE F32 upperLanes(F32 v)
{
    constexpr int all = H == 2 ? 0xEE : 0x55;
#if LYR_WIDTH == 128
    return _mm_shuffle_ps(v, v, all);
#elif LYR_WIDTH == 256
    if constexpr (H == 4) {
        return _mm256_permute2f128_ps(v, v, 1);
    } else {
        return _mm256_shuffle_ps(v, v, all);
    }
#else
    if constexpr (H == 8) {
        return _mm512_shuffle_f32x4(v, v, 0xEE);
    } else if constexpr (H == 4) {
        return _mm512_shuffle_f32x4(v, v, 0x55);
    } else {
        return _mm512_shuffle_ps(v, v, all);
    }
#endif
}

// The first n lanes summed, 1 <= n <= 2H. Lanes that stand alone are carried as they are.
template <int H>
LYR_INLINE Elem32f sumLanes(F32 v, int n)
{
    if (n > H) {
        const F32 sum = logAddFast(v, upperLanes<H>(v));
        v = n == 2 * H ? sum : (firstLanes32(n - H) ? sum : v);
        n = H;
    }
    if constexpr (H > 1) {
        return sumLanes<H / 2>(v, n);
    } else {
        return v[0];
    }
}

// Log-adds the upper half of x to the lower half, over and over, until a register holds what is left; returns how many
// elements that is. The chain of dependent additions grows with the logarithm of len only, and errors with it.
LYR_INLINE int logSumToRegister(Elem32f* x, int len)
{
    constexpr int L = lanes<F32>;
    while (len > L) {
        const int half = (len + 2 * L - 1) / (2 * L) * L;
        map(x + half, x, x, len - half, [](F32 a, F32 b) LYR_INLINE_LAMBDA { return logAddFast(a, b); });
        len = half;
    }
    return len;
}

// The rest of the way, from a register of len elements.
LYR_INLINE Elem32f logSumOfRegister(const Elem32f* x, int len)
{
    constexpr int L = lanes<F32>;
    return sumLanes<L / 2>(len == L ? load<Unaligned>(x) : loadTail<Unaligned>(x, len), len);
}

} // namespace lyr::LYR_NS
