#include "vector/divide_kernels.hpp"

#include "frame/simd.hpp"

#include <utility>

namespace lyr::LYR_NS {
namespace {

// The processor's own division: correctly rounded, and no slower than an estimate with its refinement. A zero divisor
// counts as plus zero whatever its sign, on purpose: the sign of the infinity is that of the dividend.
template <class V>
LYR_INLINE V quotient(V n, V d)
{
    return n / (d == V{} ? V{} : d);
}

template <class V>
LYR_INLINE bool holdsZero(V d)
{
    return signBits(as<V>(d == V{})) != 0;
}

// With `nan` for what a divisor of zero or NaN has made no number of.
template <class V, class T>
LYR_INLINE V substituted(V q, V d, T nan)
{
    return d > V{} ? q : (d < V{} ? q : (q == q ? q : splat(nan)));
}

// In every lane, whether one of its group of four is set.
template <class M, int... I>
LYR_INLINE M anyOfFour(M m, std::integer_sequence<int, I...> /*lanes*/)
{
    const M pairs = m | __builtin_shufflevector(m, m, (I ^ 1)...);
    return pairs | __builtin_shufflevector(pairs, pairs, (I ^ 2)...);
}

// Elements go in groups of four from the first: in one that holds a zero divisor, and only there, NaN is substituted.
// This is for vectors of whole groups.
template <class T>
bool divideGroups(const T* divisor, const T* dividend, T* dst, Elem32s len, T nan)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    bool zero = false;
    const auto step = [&zero, nan](V n, V d) {
        const V q = quotient(n, d);
        if (!holdsZero(d)) [[likely]] {
            return q;
        }
        zero = true;
        const V other = substituted(q, d, nan);
        if constexpr (L == 4) {
            return other;
        } else {
            return anyOfFour(d == V{}, std::make_integer_sequence<int, L>{}) ? other : q;
        }
    };
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        store<Unaligned>(dst + i, step(load<Unaligned>(dividend + i), load<Unaligned>(divisor + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const V n = loadTail<Unaligned>(dividend + i, rest);
        const V d = loadTail<Unaligned>(divisor + i, rest);
        storeTail(dst + i, step(n, firstLanes<T>(rest) ? d : splat(T{1})), rest);
    }
    return zero;
}

// Two vectors make a group.
template <class T>
bool divideHalves(const T* divisor, const T* dividend, T* dst, Elem32s len, T nan)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    static_assert(L == 2);
    bool zero = false;
    struct Group
    {
        V low;
        V high;
    };
    const auto step = [&zero, nan](Group n, Group d) {
        const Group q{quotient(n.low, d.low), quotient(n.high, d.high)};
        if (!holdsZero(d.low) && !holdsZero(d.high)) [[likely]] {
            return q;
        }
        zero = true;
        return Group{substituted(q.low, d.low, nan), substituted(q.high, d.high, nan)};
    };
    std::ptrdiff_t i = 0;
    for (; i + 2 * L <= len; i += 2 * L) {
        const Group q = step({load<Unaligned>(dividend + i), load<Unaligned>(dividend + i + L)},
                             {load<Unaligned>(divisor + i), load<Unaligned>(divisor + i + L)});
        store<Unaligned>(dst + i, q.low);
        store<Unaligned>(dst + i + L, q.high);
    }
    const auto first = [](const T* p) { return firstLanes<T>(1) ? loadTail<Unaligned>(p, 1) : splat(T{1}); };
    const V ones = splat(T{1});
    if (const int rest = static_cast<int>(len - i); rest == 1) {
        storeTail(dst + i, step({first(dividend + i), ones}, {first(divisor + i), ones}).low, 1);
    } else if (rest == 2) {
        const Group q = step({load<Unaligned>(dividend + i), ones}, {load<Unaligned>(divisor + i), ones});
        store<Unaligned>(dst + i, q.low);
    } else if (rest == 3) {
        const Group q = step({load<Unaligned>(dividend + i), first(dividend + i + L)},
                             {load<Unaligned>(divisor + i), first(divisor + i + L)});
        store<Unaligned>(dst + i, q.low);
        storeTail(dst + i + L, q.high, 1);
    }
    return zero;
}

template <class T>
bool divide(const T* divisor, const T* dividend, T* dst, Elem32s len, T nan)
{
    if constexpr (lanes<VectorOf<T>> < 4) {
        return divideHalves(divisor, dividend, dst, len, nan);
    } else {
        return divideGroups(divisor, dividend, dst, len, nan);
    }
}

} // namespace

const DivideKernels divideKernels{.divide32f = divide<Elem32f>, .divide64f = divide<Elem64f>};

} // namespace lyr::LYR_NS
